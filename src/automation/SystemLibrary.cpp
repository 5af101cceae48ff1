#include "automation/SystemLibrary.h"

HMODULE LoadSystemLibrary(const wchar_t* name) noexcept {
    wchar_t path[MAX_PATH];
    const UINT folder = GetSystemDirectoryW(path, MAX_PATH);
    if (folder == 0 || folder + 1 + static_cast<UINT>(lstrlenW(name)) >= MAX_PATH) return nullptr;
    path[folder] = L'\\';
    lstrcpyW(path + folder + 1, name);
    // Its own imports are then resolved from its folder and not from the program's.
    return LoadLibraryExW(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}
