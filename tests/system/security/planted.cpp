#include <windows.h>

// Tells that it was loaded: writes a file named as the environment variable BRV_PLANTED says.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    wchar_t path[MAX_PATH];
    if (reason == DLL_PROCESS_ATTACH && GetEnvironmentVariableW(L"BRV_PLANTED", path, MAX_PATH) != 0) {
        const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    }
    return TRUE;
}
