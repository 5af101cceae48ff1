#include "Bench.h"

#include <algorithm>
#include <cstdio>
#include <utility>

double Took(const std::function<void()>& work) {
    LARGE_INTEGER frequency, before, after;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&before);
    work();
    QueryPerformanceCounter(&after);
    return static_cast<double>(after.QuadPart - before.QuadPart) * 1000 / static_cast<double>(frequency.QuadPart);
}

bool FullSizes() {
    wchar_t value[10];
    return GetEnvironmentVariableW(L"BRV_BENCH", value, 10) > 0;
}

std::vector<size_t> Sizes(std::initializer_list<size_t> full, size_t small) {
    return FullSizes() ? std::vector<size_t>(full) : std::vector<size_t>{small};
}

namespace {

double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

}  // namespace

void PrintRows(const std::vector<std::string>& operations, size_t size, const std::vector<double>& bars,
               const std::function<std::vector<Round>()>& round) {
    static bool headed = false;
    if (!std::exchange(headed, true)) {
        std::printf("  %-44s %9s %11s %11s %7s %6s\n", "operation", "size", "ours ms", "raw ms", "ratio", "bar");
    }
    const int rounds = FullSizes() ? 7 : 1;
    std::vector<std::vector<double>> ours(operations.size()), raw(operations.size());
    for (int at = 0; at < rounds; ++at) {
        const std::vector<Round> measured = round();
        for (size_t row = 0; row < operations.size(); ++row) {
            ours[row].push_back(measured[row].Ours);
            raw[row].push_back(measured[row].Raw);
        }
    }
    for (size_t row = 0; row < operations.size(); ++row) {
        const double ratio = Median(ours[row]) / Median(raw[row]);
        std::printf("  %-44s %9zu %11.3f %11.3f %7.2f %6.2f  %s\n", operations[row].c_str(), size, Median(ours[row]),
                    Median(raw[row]), ratio, bars[row], ratio <= bars[row] ? "holds" : "DOES NOT HOLD");
        std::fflush(stdout);
    }
}

void PrintRow(const std::string& operation, size_t size, double bar, const std::function<Round()>& round) {
    PrintRows({operation}, size, {bar}, [&] { return std::vector<Round>{round()}; });
}
