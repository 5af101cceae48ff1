#include <windows.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "HeapSweep.h"

// That the traps and the checking of the heap are on: this program is started again to do one wrong thing, and has to
// be ended at it.
namespace {

// Values that the compiler does not know.
volatile int largest = INT_MAX;
volatile int width = 32;
volatile int zero = 0;
volatile int five = 5;
volatile double huge = 1e30;
volatile unsigned char two = 2;
int* volatile nowhere = nullptr;
volatile int sink;
int table[5];
char* volatile kept;

struct Tail {
    int Count;
    char Text[4];
    int More;
} tail;

void Fill(char* text, int count) {
    for (int at = 0; at < count; ++at) const_cast<volatile char*>(text)[at] = 'x';
}
void (*volatile fill)(char*, int) = &Fill;

struct Wrong {
    const char* Name;
    DWORD Code;  // with which the process ends
    void (*Do)();
};

constexpr DWORD Trap = STATUS_ILLEGAL_INSTRUCTION;
constexpr DWORD Abort = 3;
constexpr DWORD FastFail = STATUS_STACK_BUFFER_OVERRUN;  // how the component's own guard of the stack ends a process

void Overrun(int at) {
    kept = new char[20];
    fill(kept, 20);
    kept[at] = 'x';
    delete[] kept;
}

void OverrunStack() {
    char text[20];
    fill(text, 20 + width);
    sink = text[static_cast<size_t>(five)];
}

void DeleteTwice() {
    char* const block = kept = new char[20];
    delete[] block;
    delete[] kept;
}

const Wrong all[] = {
    {"a signed sum that does not fit", Trap, [] { sink = largest + five; }},
    {"a shift by all bits", Trap, [] { sink = five << width; }},
    {"a division by zero", Trap, [] { sink = five / zero; }},
    {"a number that no integer holds", Trap, [] { sink = static_cast<int>(huge); }},
    {"nothing taken for something", Trap, [] { sink = *nowhere; }},
    {"an address that is not aligned", Trap,
     [] { sink = *reinterpret_cast<int*>(reinterpret_cast<char*>(table) + zero + 1); }},
    {"an index behind a table", Trap, [] { sink = table[five]; }},
    {"an index behind the inner table of a structure", Trap, [] { sink = tail.Text[five]; }},
    {"a truth value that is neither", Trap,
     [] {
         bool value;
         const unsigned char byte = two;
         std::memcpy(&value, &byte, 1);
         sink = value;
     }},
    {"an index behind a vector", Abort,
     [] {
         sink = std::vector<int>{1, 2}[static_cast<size_t>(five)];
     }},
    {"the character behind a view", Abort, [] { sink = std::wstring_view(L"five")[static_cast<size_t>(five)]; }},
    {"the frame of a procedure", FastFail, OverrunStack},
    {"a byte behind a block", Trap, [] { Overrun(20); }},
    {"a byte before a block", Trap, [] { Overrun(-1); }},
    {"a block deleted twice", Trap, DeleteTwice},
    {"an array deleted as one", Trap,
     [] {
         kept = new char[20];
         delete kept;
     }},
    {"a block written after its end", Trap,
     [] {
         kept = new char[200];
         delete[] kept;
         kept[100] = 'x';
         if (!HeapsAreWhole()) __builtin_trap();
     }},
};

LONG WINAPI End(EXCEPTION_POINTERS* what) {
    // Windows' own way would ask for a debugger.
    TerminateProcess(GetCurrentProcess(), what->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

DWORD ExitCodeOf(const std::wstring& arguments) {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring line = L"\"" + std::wstring(program) + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;  // none: what it says is no part of this test's result
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return ~0U;
    DWORD code = ~0U;
    if (WaitForSingleObject(process.hProcess, 30000) == WAIT_OBJECT_0) GetExitCodeProcess(process.hProcess, &code);
    TerminateProcess(process.hProcess, 1);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

}  // namespace

TEST(TrapsTest, EndAtWhatIsWrong) {
    for (size_t at = 0; at < std::size(all); ++at) {
        EXPECT_EQ(all[at].Code, ExitCodeOf(L"--do " + std::to_wstring(at))) << all[at].Name;
    }
}

TEST(TrapsTest, LetPassWhatIsRight) { EXPECT_EQ(0U, ExitCodeOf(L"--do " + std::to_wstring(std::size(all)))); }

TEST(TrapsTest, ATestThatDamagesTheHeapFails) {
    EXPECT_EQ(1U, ExitCodeOf(L"--gtest_also_run_disabled_tests --gtest_filter=*.DISABLED_WriteBehindABlock"));
    EXPECT_EQ(0U, ExitCodeOf(L"--gtest_also_run_disabled_tests --gtest_filter=*.DISABLED_WriteABlock"));
}

// Only for the test before.
namespace {
void WriteBlock(int count) {
    auto* const block = static_cast<char*>(HeapAlloc(GetProcessHeap(), 0, 24));
    ASSERT_NE(nullptr, block);
    fill(block, count);
}
}  // namespace
TEST(TrapsTest, DISABLED_WriteABlock) { WriteBlock(24); }
TEST(TrapsTest, DISABLED_WriteBehindABlock) { WriteBlock(25); }

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--do") {
        SetUnhandledExceptionFilter(End);
        const auto which = static_cast<size_t>(std::stoi(argv[2]));
        if (which < std::size(all)) all[which].Do();
        return 0;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
