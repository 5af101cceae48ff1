#include "support/Menus.h"

#include "support/EditorWindow.h"

namespace {

std::wstring EntriesOf(HMENU menu) {
    std::wstring entries;
    for (int at = 0; at < GetMenuItemCount(menu); ++at) {
        const UINT state = GetMenuState(menu, static_cast<UINT>(at), MF_BYPOSITION);
        if ((state & MF_SEPARATOR) != 0 && (state & MF_POPUP) == 0) continue;
        if (!entries.empty()) entries += L"|";
        entries += PlainCaption(menu, at) + ((state & (MF_GRAYED | MF_DISABLED)) != 0 ? L"-" : L"+");
        if (const HMENU below = GetSubMenu(menu, at)) entries += L"[" + EntriesOf(below) + L"]";
    }
    return entries;
}

MenuCatcher* catcher = nullptr;

}  // namespace

std::wstring CaptionOf(HMENU menu, int position) {
    wchar_t text[200]{};
    GetMenuStringW(menu, static_cast<UINT>(position), text, 200, MF_BYPOSITION);
    const std::wstring caption = text;
    return caption.substr(0, caption.find(L'\t'));
}

std::wstring PlainCaption(HMENU menu, int position) {
    std::wstring caption = CaptionOf(menu, position);
    for (size_t mark; (mark = caption.find(L'&')) != std::wstring::npos;) caption.erase(mark, 1);
    return caption;
}

std::wstring MenuEntries(const wchar_t* menu) {
    const HMENU bar = GetMenu(EditorWindow::Find());
    for (int at = 0; at < GetMenuItemCount(bar); ++at) {
        if (CaptionOf(bar, at) == std::wstring(L"&") + menu) return EntriesOf(GetSubMenu(bar, at));
    }
    return L"<no such menu>";
}

MenuCatcher::MenuCatcher() {
    catcher = this;
    hook_ = SetWindowsHookExW(
        WH_CALLWNDPROC,
        [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
            const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lParam);
            if (code == HC_ACTION && catcher != nullptr && message.message == WM_INITMENUPOPUP) {
                ++catcher->Menus;
                catcher->Entries = EntriesOf(reinterpret_cast<HMENU>(message.wParam));
            }
            return CallNextHookEx(nullptr, code, wParam, lParam);
        },
        nullptr, GetCurrentThreadId());
    timer_ = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) WINAPI {
        const HWND shown = FindWindowW(L"#32768", nullptr);
        if (shown == nullptr || catcher == nullptr) return;
        RECT place;
        GetWindowRect(shown, &place);
        catcher->At = {place.left, place.top};
        EndMenu();
    });
}

MenuCatcher::~MenuCatcher() {
    UnhookWindowsHookEx(hook_);
    KillTimer(nullptr, timer_);
    catcher = nullptr;
}
