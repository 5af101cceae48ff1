#include "forms/HelpTip.h"

#include <commctrl.h>

#include "forms/Dpi.h"
#include "forms/PopupList.h"
#include "forms/Tooltip.h"
#include "forms/Twips.h"

namespace {
constexpr float Widest = 6000;  // twips
}

void HelpTip::Show(HWND owner, const RECT& line, HFONT font, const std::wstring& text) {
    Hide();
    tip_ = CreateTooltipWindow();
    if (tip_ == nullptr) return;
    if (font != nullptr) SendMessageW(tip_, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    std::wstring shown = text;  // the control takes a text that may be written to
    TTTOOLINFOW tool{};
    tool.cbSize = TooltipInfoSize;
    tool.uFlags = TTF_TRACK | TTF_ABSOLUTE;
    tool.hwnd = owner;
    tool.uId = 1;
    tool.lpszText = shown.data();
    const auto given = reinterpret_cast<LPARAM>(&tool);
    SendMessageW(tip_, TTM_SETMAXTIPWIDTH, 0, TwipsToPixels(Widest, DpiOf(owner)));
    SendMessageW(tip_, TTM_ADDTOOLW, 0, given);
    SendMessageW(tip_, TTM_TRACKPOSITION, 0, MAKELPARAM(line.left, line.bottom));
    SendMessageW(tip_, TTM_TRACKACTIVATE, TRUE, given);
    // How large it is is known when it shows: Wine measures no tip before (TTM_GETBUBBLESIZE).
    RECT window{};
    GetWindowRect(tip_, &window);
    const RECT place = PopupList::PlaceBeside(line, {window.right - window.left, window.bottom - window.top});
    if (place.left != window.left || place.top != window.top)
        SendMessageW(tip_, TTM_TRACKPOSITION, 0, MAKELPARAM(place.left, place.top));
}

void HelpTip::Hide() noexcept {
    if (tip_ != nullptr) DestroyWindow(tip_);
    tip_ = nullptr;
}
