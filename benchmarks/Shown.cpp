#include "Shown.h"

namespace {
WhenWaiting* waiting = nullptr;
constexpr UINT Wake = WM_APP + 0x0B57;
}  // namespace

HWND ShownEditor() { return FindWindowW(L"brvSQLEditorForm", nullptr); }

UINT CommandOf(int menu, const wchar_t* entry) {
    const HMENU popup = GetSubMenu(GetMenu(ShownEditor()), menu);
    for (int at = 0; at < GetMenuItemCount(popup); ++at) {
        wchar_t text[100]{};
        GetMenuStringW(popup, static_cast<UINT>(at), text, 100, MF_BYPOSITION);
        if (lstrcmpW(text, entry) == 0) return GetMenuItemID(popup, at);
    }
    ADD_FAILURE() << "no such entry";
    return 0;
}

WhenWaiting::WhenWaiting(std::function<void()> step)
    : step_(std::move(step)),
      hook_(SetWindowsHookExW(WH_GETMESSAGE, &WhenWaiting::Hook, nullptr, GetCurrentThreadId())) {
    waiting = this;
    PostThreadMessageW(GetCurrentThreadId(), Wake, 0, 0);
}

WhenWaiting::~WhenWaiting() {
    UnhookWindowsHookEx(hook_);
    waiting = nullptr;
    EXPECT_TRUE(ran_);
}

LRESULT CALLBACK WhenWaiting::Hook(int code, WPARAM wParam, LPARAM lParam) {
    const auto& message = *reinterpret_cast<const MSG*>(lParam);
    if (code == HC_ACTION && wParam == PM_REMOVE && message.hwnd == nullptr && message.message == Wake &&
        waiting != nullptr && !waiting->ran_) {
        waiting->ran_ = true;
        waiting->step_();
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}
