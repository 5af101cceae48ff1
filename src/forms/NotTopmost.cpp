#include "forms/NotTopmost.h"

#include <algorithm>
#include <array>
#include <span>

#include "forms/Form.h"

namespace {

bool IsOfThisThread(HWND window) noexcept { return GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId(); }

void PlaceAfter(HWND window, HWND after) noexcept {
    SetWindowPos(window, after, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
}

// The windows that a form owns and that show, such as that of Ctrl+H.
class Owned {
public:
    explicit Owned(HWND form) noexcept : form_(form) {
        EnumThreadWindows(GetCurrentThreadId(), &Owned::Add, reinterpret_cast<LPARAM>(this));
    }
    std::span<const HWND> All() const noexcept { return {windows_.data(), count_}; }

private:
    static BOOL CALLBACK Add(HWND window, LPARAM parameter) noexcept {
        Owned& self = *reinterpret_cast<Owned*>(parameter);
        if (GetWindow(window, GW_OWNER) == self.form_ && IsWindowVisible(window)) self.windows_[self.count_++] = window;
        return self.count_ < self.windows_.size();
    }

    HWND form_;
    std::array<HWND, 8> windows_{};  // there are never more than two
    size_t count_ = 0;
};

// Moves the form to or from the top, with what it owns.
void Place(HWND form, HWND after) noexcept {
    PlaceAfter(form, after);
    const Owned owned(form);
    const auto isPlaced = [after](HWND window) { return IsTopmost(window) == (after == HWND_TOPMOST); };
    if (isPlaced(form) && std::ranges::all_of(owned.All(), isPlaced)) return;
    // Windows takes what a window owns along. Wine 8 only keeps the two together, and so may move neither: they are
    // moved one after the other, as if nobody owned them.
    for (const HWND tool : owned.All()) SetWindowLongPtrW(tool, GWLP_HWNDPARENT, 0);
    PlaceAfter(form, after);
    for (const HWND tool : owned.All()) {
        PlaceAfter(tool, after);
        SetWindowLongPtrW(tool, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(form));
    }
}

}  // namespace

bool IsTopmost(HWND window) noexcept { return (GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0; }

NotTopmost::NotTopmost() noexcept {
    const HWND shown = Form::Shown();
    if (shown == nullptr || !IsOfThisThread(shown) || !IsTopmost(shown)) return;
    form_ = shown;
    active_ = GetActiveWindow() == shown;
    if (Form* form = Form::Of(shown)) form->HiddenToolsGo();
    Place(shown, HWND_NOTOPMOST);
}

NotTopmost::~NotTopmost() {
    // The form may have been closed and shown again meanwhile.
    if (form_ == nullptr || Form::Shown() != form_) return;
    Place(form_, HWND_TOPMOST);
    // A box owned by a window of the host returns the activation to that window, which is disabled.
    if (!active_) return;
    const HWND now = GetActiveWindow();
    if (now == nullptr || !IsWindowEnabled(now)) SetActiveWindow(form_);
}
