#include <windows.h>
#include <commctrl.h>
#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

#include "Bench.h"
#include "RawWindow.h"
#include "Shown.h"
#include "support/Browsed.h"

// What the window costs in memory while it shows many tables, against a window of bare controls that shows the same.
// Each side has processes of its own, so that nothing of the other is in its heap: this program, started again for a
// test that is disabled otherwise.
namespace {

constexpr const wchar_t* TablesVariable = L"BRV_BENCH_TABLES";
constexpr const wchar_t* PlanVariable = L"BRV_BENCH_PLAN";
constexpr const wchar_t* ResultVariable = L"BRV_BENCH_RESULT";

std::wstring Variable(const wchar_t* name) {
    wchar_t value[1000]{};
    GetEnvironmentVariableW(name, value, 1000);
    return value;
}

std::wstring Temporary(const wchar_t* prefix) {
    wchar_t folder[MAX_PATH], file[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    GetTempFileNameW(folder, prefix, 0, file);
    return file;
}

// Bytes that are committed to this process alone. Wine does not count them: there, what the memory map says.
size_t PrivateBytes() {
    PROCESS_MEMORY_COUNTERS_EX counters{};
    counters.cb = sizeof counters;
    K32GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                            sizeof counters);
    if (counters.PrivateUsage != 0) return counters.PrivateUsage;
    size_t bytes = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;
         at = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
        const bool own = region.Type == MEM_PRIVATE || (region.Type == MEM_IMAGE && region.Protect == PAGE_READWRITE);
        if (region.State == MEM_COMMIT && own) bytes += region.RegionSize;
    }
    return bytes;
}

void Answer() {
    if (FILE* file = _wfopen(Variable(ResultVariable).c_str(), L"w")) {
        std::fprintf(file, "%.0f", static_cast<double>(PrivateBytes()));
        std::fclose(file);
    }
}

// The host's names are in every process.
Variant HostNames() {
    std::vector<Variant> names;
    const auto size = static_cast<size_t>(_wtoi(Variable(TablesVariable).c_str()));
    for (size_t at = 0; at < size; ++at) names.push_back(Variant(L"TABLE_" + std::to_wstring(at)));
    return Variant(MakeCollection(std::move(names)));
}

// Megabytes of a process of this program that runs the one test.
double InProcess(const wchar_t* test, size_t tables, const std::wstring& plan) {
    const std::wstring result = Temporary(L"brv");
    SetEnvironmentVariableW(TablesVariable, std::to_wstring(tables).c_str());
    SetEnvironmentVariableW(PlanVariable, plan.c_str());
    SetEnvironmentVariableW(ResultVariable, result.c_str());
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring command =
        L"\"" + std::wstring(program) + L"\" --gtest_also_run_disabled_tests --gtest_brief=1 --gtest_filter=" + test;
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr,
                               &start, &process));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process.hProcess, 60000));
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    double bytes = 0;
    if (FILE* file = _wfopen(result.c_str(), L"r")) {
        EXPECT_EQ(1, std::fscanf(file, "%lf", &bytes));
        std::fclose(file);
    }
    DeleteFileW(result.c_str());
    EXPECT_LT(0, bytes);
    return bytes / (1024 * 1024);
}

class MemoryBench : public BrowsedFixture {};
// The same without the component in the process.
class MemoryBenchRaw : public testing::Test {};

}  // namespace

TEST_F(MemoryBench, DISABLED_Ours) {
    const Variant names = HostNames();
    Database.DictionaryMembers[L"Objects"] = [&](const Arguments&) { return names; };
    Inside([&] {
        for (const auto path : {std::initializer_list<int>{}, {0}, {0, 0}}) {
            SendMessageW(Tree.Handle(), TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(Tree.At(path)));
        }
        PaintNow(ShownEditor());
        EXPECT_LE(_wtoi(Variable(TablesVariable).c_str()) * 3, Tree.Count());
        Answer();
    });
}

TEST_F(MemoryBenchRaw, DISABLED_Nothing) {
    const Variant names = HostNames();
    Answer();
}

TEST_F(MemoryBenchRaw, DISABLED_Raw) {
    const Variant names = HostNames();
    const WindowPlan plan = WindowPlan::Read(Variable(PlanVariable));
    const RawWindow window(plan);
    window.Show();
    Answer();
}

TEST_F(MemoryBench, WithTheTablesOpen) {
    for (const size_t size : Sizes({1000, 10000}, 50)) {
        // What the editor shows with as many tables, to be made again by bare calls.
        const std::wstring file = Temporary(L"brv");
        std::vector<Variant> list;
        for (size_t at = 0; at < size; ++at) list.push_back(Variant(L"TABLE_" + std::to_wstring(at)));
        const Variant names(MakeCollection(std::move(list)));
        Database.DictionaryMembers[L"Objects"] = [&](const Arguments&) { return names; };
        Inside([&] {
            for (const auto path : {std::initializer_list<int>{}, {0}, {0, 0}}) {
                SendMessageW(Tree.Handle(), TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(Tree.At(path)));
            }
            WindowPlan::OfEditor().Write(file);
        });
        std::vector<double> ours, raw, nothing;
        for (int round = 0; round < (FullSizes() ? 5 : 1); ++round) {
            ours.push_back(InProcess(L"MemoryBench.DISABLED_Ours", size, file));
            raw.push_back(InProcess(L"MemoryBenchRaw.DISABLED_Raw", size, file));
            nothing.push_back(InProcess(L"MemoryBenchRaw.DISABLED_Nothing", size, file));
        }
        DeleteFileW(file.c_str());
        PrintRow({"private memory of the process, tables open", size, 1.5}, "MB", Median(ours), Median(raw));
        PrintRow({"the same, less what the process has without a window", size, 1.5}, "MB",
                 Median(ours) - Median(nothing), Median(raw) - Median(nothing));
    }
}
