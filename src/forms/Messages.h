#pragma once

#include <windows.h>

// Whether a parameter of a message can be an address: nothing lies in the first 64 KB of a process, and any program may
// post a message that should carry an address with 0 or a small number in it.
inline bool IsAddress(LPARAM parameter) noexcept {
    constexpr ULONG_PTR Lowest = 0x10000;
    return static_cast<ULONG_PTR>(parameter) >= Lowest;
}
