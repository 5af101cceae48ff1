#include "forms/NotTopmost.h"

#include "forms/Form.h"

namespace {

void PlaceAfter(HWND form, HWND after) noexcept {
    SetWindowPos(form, after, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
}

bool IsOfThisThread(HWND window) noexcept { return GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId(); }

}  // namespace

NotTopmost::NotTopmost() noexcept {
    const HWND shown = Form::Shown();
    if (shown == nullptr || !IsOfThisThread(shown)) return;
    if ((GetWindowLongPtrW(shown, GWL_EXSTYLE) & WS_EX_TOPMOST) == 0) return;
    form_ = shown;
    active_ = GetActiveWindow() == shown;
    if (Form* form = Form::Of(shown)) form->HiddenToolsGo();
    PlaceAfter(shown, HWND_NOTOPMOST);
}

NotTopmost::~NotTopmost() {
    // The form may have been closed and shown again meanwhile.
    if (form_ == nullptr || Form::Shown() != form_) return;
    PlaceAfter(form_, HWND_TOPMOST);
    // A box owned by a window of the host returns the activation to that window, which is disabled.
    if (!active_) return;
    const HWND now = GetActiveWindow();
    if (now == nullptr || !IsWindowEnabled(now)) SetActiveWindow(form_);
}
