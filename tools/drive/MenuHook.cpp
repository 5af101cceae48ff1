#include "MenuHook.h"

#include <string>

namespace {

// "E&xit\tAlt+F4" is called Exit. A doubled ampersand is one.
std::wstring PlainCaption(const std::wstring& caption) {
    std::wstring plain;
    for (size_t at = 0; at < caption.size() && caption[at] != L'\t'; ++at) {
        if (caption[at] == L'&' && ++at >= caption.size()) break;
        plain += caption[at];
    }
    return plain;
}

struct Entry {
    std::wstring Caption;
    UINT Id = 0;
    UINT State = 0;
    HMENU Popup = nullptr;
    bool Separator = false;
};

Entry ReadEntry(HMENU menu, int position) {
    wchar_t text[512] = L"";
    MENUITEMINFOW info = {};
    info.cbSize = sizeof info;
    info.fMask = MIIM_STRING | MIIM_ID | MIIM_STATE | MIIM_SUBMENU | MIIM_FTYPE;
    info.dwTypeData = text;
    info.cch = ARRAYSIZE(text);
    Entry entry;
    if (!GetMenuItemInfoW(menu, position, TRUE, &info)) return entry;
    entry.Caption = text;
    entry.Id = info.wID;
    entry.State = info.fState;
    entry.Popup = info.hSubMenu;
    entry.Separator = (info.fType & MFT_SEPARATOR) != 0;
    return entry;
}

// The window prepares a popup when it is about to open.
void Prepare(HWND window, HMENU popup, int position) {
    SendMessageW(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(popup), MAKELPARAM(position, FALSE));
}

void Find(HWND window, MenuRequest& request) {
    HMENU menu = GetMenu(window);
    for (uint32_t level = 0; menu && level < request.Depth && level < ARRAYSIZE(request.Path); ++level) {
        HMENU next = nullptr;
        for (int position = 0, count = GetMenuItemCount(menu); position < count; ++position) {
            const Entry entry = ReadEntry(menu, position);
            if (entry.Separator || PlainCaption(entry.Caption) != request.Path[level]) continue;
            if (level + 1 == request.Depth) {
                request.Found = 1;
                request.Id = entry.Id;
                request.State = entry.State;
            } else if (entry.Popup) {
                next = entry.Popup;
                Prepare(window, next, position);
            }
            break;
        }
        menu = next;
    }
}

void Answer(uint32_t process) {
    wchar_t name[64];
    MenuRequestName(name, process);
    HANDLE mapping = OpenFileMappingW(FILE_MAP_WRITE | FILE_MAP_READ, FALSE, name);
    if (!mapping) return;
    if (auto* request = static_cast<MenuRequest*>(
            MapViewOfFile(mapping, FILE_MAP_WRITE | FILE_MAP_READ, 0, 0, sizeof(MenuRequest)))) {
        Find(reinterpret_cast<HWND>(static_cast<uintptr_t>(request->Window)), *request);
        UnmapViewOfFile(request);
    }
    CloseHandle(mapping);
}

}  // namespace

// For WH_CALLWNDPROC: runs in the thread of the window, before its window procedure sees the message.
extern "C" __declspec(dllexport) LRESULT CALLBACK MenuHook(int code, WPARAM wParam, LPARAM lParam) {
    static const UINT message = RegisterWindowMessageW(MenuMessage);
    const auto* sent = reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && sent->message == message) Answer(static_cast<uint32_t>(sent->wParam));
    return CallNextHookEx(nullptr, code, wParam, lParam);
}
