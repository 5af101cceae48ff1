#pragma once

#include <windows.h>

// A function of user32 that not every release of Windows has; null where it is missing.
template <class Function>
Function UserFunction(const char* name) noexcept {
    const HMODULE user = GetModuleHandleW(L"user32.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(user, name)));
}
