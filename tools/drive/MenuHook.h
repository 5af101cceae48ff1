#pragma once

#include <windows.h>

#include <cstdint>
#include <cwchar>

// How drive.exe asks drive_menu.dll, which a hook brings into the process of the window, about that window's menu bar.
// Windows lets a program read the menu of another process; Wine does not, so both do it this way.

// Shared memory of one request; its name carries the process id of drive.exe, which also travels as the wParam of the
// message registered as MenuMessage.
struct MenuRequest {
    uint64_t Window;
    uint32_t Depth;        // captions in Path
    wchar_t Path[6][128];  // "File", "Close": without ampersands and what follows a tab

    uint32_t Found;  // the answers
    uint32_t Id;
    uint32_t State;  // MFS_...
};

constexpr wchar_t MenuMessage[] = L"brvSQLEditor.drive.menu";

inline void MenuRequestName(wchar_t (&name)[64], uint32_t process) {
    swprintf(name, 64, L"Local\\brvSQLEditor.drive.%u", static_cast<unsigned>(process));
}
