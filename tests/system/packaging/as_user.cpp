#include <windows.h>

#include <cstdio>
#include <string>

// as_user PROGRAM [ARGUMENTS AS THEY ARE]: starts a program without the rights of an administrator, as a double click
// does where the control of user accounts is on, and ends with its exit code.
int wmain(int count, wchar_t** values) {
    if (count < 2) return 100;
    // All behind the name of this program, which has no blank.
    std::wstring line = GetCommandLineW();
    line.erase(0, line.find(values[1]) - (line[line.find(values[1]) - 1] == L'"' ? 1 : 0));

    HANDLE token = nullptr;
    HANDLE lesser = nullptr;
    BYTE administrators[SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof administrators;
    SID_AND_ATTRIBUTES refused{administrators, 0};
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &token) ||
        !CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators, &size) ||
        !CreateRestrictedToken(token, 0, 1, &refused, 0, nullptr, 0, nullptr, &lesser)) {
        std::fwprintf(stderr, L"no token: error %lu\n", GetLastError());
        return 101;
    }
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessAsUserW(lesser, nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                              &process)) {
        std::fwprintf(stderr, L"not started: error %lu\n", GetLastError());
        return 102;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 103;
    GetExitCodeProcess(process.hProcess, &code);
    return static_cast<int>(code);
}
