#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "automation/SystemLibrary.h"

extern "C" uintptr_t __stack_chk_guard;

namespace {

std::wstring PathOf(HMODULE module) {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(module, path, MAX_PATH);
    return path;
}

volatile int beyond = 40;

// Where undefined behaviour ends in a trap, this one must not: it is for the guard.
__attribute__((stack_protect, noinline, no_sanitize("undefined"))) int Overrun() {
    char text[16] = "";
    for (int at = 0; at < beyond; ++at) const_cast<volatile char*>(text)[at] = 'x';
    return text[5];
}

// Starts this program for one of its tests that are left out otherwise; its exit code.
DWORD ExitCodeOf(const wchar_t* test) {
    std::wstring command =
        L"\"" + PathOf(nullptr) + L"\" --gtest_also_run_disabled_tests --gtest_brief=1 --gtest_filter=" + test;
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &made)) return 0;
    DWORD code = STILL_ACTIVE;
    if (WaitForSingleObject(made.hProcess, 60000) == WAIT_OBJECT_0) GetExitCodeProcess(made.hProcess, &code);
    TerminateProcess(made.hProcess, 1);
    CloseHandle(made.hThread);
    CloseHandle(made.hProcess);
    return code;
}

}  // namespace

TEST(SystemLibraryTest, ALibraryComesFromTheSystemsFolder) {
    wchar_t folder[MAX_PATH] = L"";
    GetSystemDirectoryW(folder, MAX_PATH);
    const HMODULE library = LoadSystemLibrary(L"msftedit.dll");
    ASSERT_NE(nullptr, library);
    EXPECT_EQ(0, lstrcmpiW((folder + std::wstring(L"\\msftedit.dll")).c_str(), PathOf(library).c_str()));
}

TEST(SystemLibraryTest, NothingIsLookedForElsewhere) {
    // A library that lies beside this program, in the first folder of the usual search.
    const std::wstring path = PathOf(nullptr);
    const std::wstring beside = path.substr(0, path.find_last_of(L'\\') + 1) + L"brvError.dll";
    const HMODULE there = LoadLibraryExW(beside.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(nullptr, there);
    FreeLibrary(there);
    EXPECT_EQ(nullptr, LoadSystemLibrary(L"brvError.dll"));
    EXPECT_EQ(nullptr, LoadSystemLibrary(std::wstring(300, L'x').c_str()));
}

TEST(SystemFunctionTest, AFunctionIsBoundWhenItIsFirstCalled) {
    static int loads = 0;
    const SystemFunction<decltype(::GetCurrentProcessId)> processId{[]() noexcept {
                                                                        ++loads;
                                                                        return LoadSystemLibrary(L"kernel32.dll");
                                                                    },
                                                                    "GetCurrentProcessId"};
    EXPECT_EQ(0, loads);
    EXPECT_EQ(GetCurrentProcessId(), processId());
    EXPECT_TRUE(processId);
    EXPECT_EQ(GetCurrentProcessId(), processId());
    EXPECT_EQ(1, loads);
}

TEST(SystemFunctionTest, WhatIsNotThereAnswersZeroAndIsLookedUpOnce) {
    static int loads = 0;
    const SystemFunction<int WINAPI(int)> noFunction{[]() noexcept {
                                                         ++loads;
                                                         return LoadSystemLibrary(L"kernel32.dll");
                                                     },
                                                     "NoFunctionHasThisName"};
    EXPECT_FALSE(noFunction);
    EXPECT_EQ(0, noFunction(7));
    EXPECT_EQ(1, loads);
    const SystemFunction<int WINAPI(int)> noLibrary{[]() noexcept { return LoadSystemLibrary(L"brvError.dll"); },
                                                    "DllCanUnloadNow"};
    EXPECT_FALSE(noLibrary);
    EXPECT_EQ(0, noLibrary(7));
}

TEST(StackGuardTest, TheGuardDiffersFromRunToRunAndEndsTexts) {
    EXPECT_EQ(0U, __stack_chk_guard & 0xFF);
    EXPECT_NE(0U, __stack_chk_guard);
    // What the file has, in both widths.
    EXPECT_NE(static_cast<uintptr_t>(0x9D4F2B7AE61C8300ULL), __stack_chk_guard);
    EXPECT_NE(static_cast<uintptr_t>(0x9D4F2B00), __stack_chk_guard);
}

TEST(StackGuardTest, AnOverrunEndsTheProcess) {
    EXPECT_EQ(static_cast<DWORD>(STATUS_STACK_BUFFER_OVERRUN), ExitCodeOf(L"StackGuardTest.DISABLED_Overrun"));
}

TEST(StackGuardTest, DISABLED_Overrun) {
    SetErrorMode(SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS);
    EXPECT_EQ('x', Overrun());
}
