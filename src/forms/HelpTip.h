#pragma once

#include <windows.h>

#include <string>

// A tip that stands beside a line until it is hidden, wherever the mouse is. It takes no focus, and is topmost.
class HelpTip {
public:
    HelpTip() = default;
    ~HelpTip() { Hide(); }
    HelpTip(const HelpTip&) = delete;
    HelpTip& operator=(const HelpTip&) = delete;

    // `owner`: the window that the tip belongs to while it shows. `line`: in pixels of the screen; the tip stands below
    // it, or above where there is more room, and on its monitor. `font` is not owned. Nothing shows when Windows makes
    // no window.
    void Show(HWND owner, const RECT& line, HFONT font, const std::wstring& text);
    void Hide() noexcept;
    bool IsShown() const noexcept { return tip_ != nullptr; }

private:
    HWND tip_ = nullptr;
};
