#pragma once

#include <windows.h>

// Any program may post a message that should carry an address with 0 or a small number in its place, and window
// procedures, ours and the platform's, would dereference it.

// Whether a parameter can be an address: nothing lies in the first and the last 64 KB of a process.
inline bool IsAddress(LPARAM parameter) noexcept {
    constexpr ULONG_PTR Margin = 0x10000;
    const auto address = static_cast<ULONG_PTR>(parameter);
    return address >= Margin && address <= ~ULONG_PTR{0} - Margin;
}

// Whether it is a message below WM_USER that needs an address and has none. Messages above WM_USER are private to each
// control class and are not checked.
inline bool LacksAddress(UINT message, WPARAM first, LPARAM parameter) noexcept {
    const bool odd = parameter != 0 && !IsAddress(parameter);
    switch (message) {
        case WM_CREATE:
        case WM_NCCREATE:
        case WM_NCCALCSIZE:
        case WM_GETMINMAXINFO:
        case WM_WINDOWPOSCHANGING:
        case WM_WINDOWPOSCHANGED:
        case WM_STYLECHANGING:
        case WM_STYLECHANGED:
        case WM_SIZING:
        case WM_MOVING:
        case WM_NEXTMENU:
        case WM_NOTIFY:
        case WM_DRAWITEM:
        case WM_MEASUREITEM:
        case WM_DELETEITEM:
        case WM_COMPAREITEM:
        case WM_COPYDATA:
        case WM_HELP:
        case WM_MDICREATE:
        case WM_DPICHANGED:
        case WM_GETDPISCALEDSIZE:
        case EM_GETRECT:
        case EM_GETLINE:
        case EM_CHARFROMPOS:
        case LB_ADDSTRING:
        case LB_INSERTSTRING:
        case LB_SELECTSTRING:
        case LB_FINDSTRING:
        case LB_FINDSTRINGEXACT:
        case LB_DIR:
        case LB_ADDFILE:
        case LB_GETTEXT:
        case LB_GETITEMRECT:
            return !IsAddress(parameter);
        case WM_GETTEXT:
            return first != 0 && !IsAddress(parameter);
        case WM_SETTEXT:
        case WM_SETTINGCHANGE:
        case WM_DEVMODECHANGE:
        case EM_SETRECT:
        case EM_SETRECTNP:
        case EM_REPLACESEL:
            return odd;
        case EM_GETSEL:
            return odd || (first != 0 && !IsAddress(static_cast<LPARAM>(first)));
        case EM_POSFROMCHAR:  // the rich edit control's has it in the first
            return static_cast<LPARAM>(first) < 0 && !IsAddress(static_cast<LPARAM>(first));
        default:
            return false;
    }
}
