#include "automation/App.h"

namespace App {

HMODULE Module() noexcept {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&Module), &module);
    return module;
}

std::wstring ModulePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(Module(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return path.substr(0, length);
        path.resize(path.size() * 2);
    }
}

}  // namespace App
