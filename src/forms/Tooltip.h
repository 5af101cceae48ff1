#pragma once

#include <windows.h>
#include <commctrl.h>

#include <cstddef>
#include <string>

// The tip of one control. Its window belongs to no other window: one that is owned by the form can keep SetWindowPos
// from making the form topmost under Wine. It is made when the mouse first comes over a control with a text: a window
// that few users ever see would be a large part of what the form costs to show.
class Tooltip {
public:
    Tooltip() = default;
    ~Tooltip();
    Tooltip(const Tooltip&) = delete;
    Tooltip& operator=(const Tooltip&) = delete;

    // An empty text takes the tip away. The control's window must outlive the tip or be given again when it is made
    // again.
    void SetText(HWND control, const std::wstring& text);
    // The tip does not own the font.
    void SetFont(HFONT font);
    // To be called for each mouse message of the control.
    void OnMouse(UINT message, WPARAM wParam, LPARAM lParam);

private:
    void AddTool();
    HWND tip_ = nullptr;
    HWND control_ = nullptr;
    HFONT font_ = nullptr;
    std::wstring text_;
    bool added_ = false;  // since the last message of the mouse
};

// The size of TTTOOLINFOW without the member that came last: common controls of every version take it.
inline constexpr UINT TooltipInfoSize = offsetof(TTTOOLINFOW, lpReserved);

// An empty tooltip window of that kind, for controls that manage the tools of their tip themselves.
HWND CreateTooltipWindow();
