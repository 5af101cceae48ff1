#include "Bench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <utility>

double Now() noexcept {
    LARGE_INTEGER frequency, now;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    return static_cast<double>(now.QuadPart) * 1000 / static_cast<double>(frequency.QuadPart);
}

double Took(const std::function<void()>& work) {
    const double before = Now();
    work();
    return Now() - before;
}

bool FullSizes() {
    wchar_t value[10];
    return GetEnvironmentVariableW(L"BRV_BENCH", value, 10) > 0;
}

std::vector<size_t> Sizes(std::initializer_list<size_t> full, size_t small) {
    return FullSizes() ? std::vector<size_t>(full) : std::vector<size_t>{small};
}

namespace {

constexpr int FewestRounds = 7;
constexpr int MostRounds = 31;       // of what is over quickly
constexpr double LongEnough = 4000;  // milliseconds of one row

int rows = 0;
int missed = 0;

// Says in the end what nobody should have to look for in the table.
class Summary : public testing::Environment {
public:
    void TearDown() override {
        if (rows > 0 && FullSizes()) std::printf("  %d rows, %d do not hold\n", rows, missed);
    }
};
[[maybe_unused]] const auto* const summary = testing::AddGlobalTestEnvironment(new Summary);

}  // namespace

double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void PrintRow(const Row& row, const char* unit, double ours, double raw) {
    if (rows++ == 0) {
        std::printf("  %-62s %8s %10s %10s     %6s %6s\n", "operation", "size", "ours", "raw", "ratio", "bar");
    }
    const double ratio = ours / raw;
    const bool holds = ratio <= row.Bar;
    if (!holds) ++missed;
    const std::string size = row.Size == 0 ? "" : std::to_string(row.Size);
    std::printf("  %-62s %8s %10.3f %10.3f %-3s %6.2f %6.2f  %s\n", row.Operation.c_str(), size.c_str(), ours, raw,
                unit, ratio, row.Bar,
                !FullSizes() ? "-"
                : holds      ? "holds"
                             : "DOES NOT HOLD");
    std::fflush(stdout);
}

void Compare(const Row& row, const std::function<double()>& ours, const std::function<double()>& raw) {
    std::vector<double> times[2];
    double total = 0;
    const auto measure = [&](int side) { return side == 0 ? ours() : raw(); };
    const int fewest = FullSizes() ? FewestRounds : 1;
    if (FullSizes()) {
        measure(0);
        measure(1);
    }
    for (int at = 0; at < fewest || (FullSizes() && at < MostRounds && total < LongEnough); ++at) {
        for (const int side : {at % 2, 1 - at % 2}) {
            const double time = measure(side);
            times[side].push_back(time);
            total += time;
        }
    }
    PrintRow(row, "ms", Median(times[0]), Median(times[1]));
}

void CompareRounds(const std::vector<Row>& measured, const std::function<std::vector<Round>()>& round) {
    const int rounds = FullSizes() ? FewestRounds : 1;
    std::vector<std::vector<double>> ours(measured.size()), raw(measured.size());
    for (int at = 0; at < rounds; ++at) {
        const std::vector<Round> times = round();
        for (size_t row = 0; row < measured.size(); ++row) {
            ours[row].push_back(times[row].Ours);
            raw[row].push_back(times[row].Raw);
        }
    }
    for (size_t row = 0; row < measured.size(); ++row)
        PrintRow(measured[row], "ms", Median(ours[row]), Median(raw[row]));
}
