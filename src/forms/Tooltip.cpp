#include "forms/Tooltip.h"

#include "automation/App.h"
#include "forms/Dpi.h"
#include "forms/Surroundings.h"
#include "forms/Twips.h"

namespace {

TTTOOLINFOW ToolOf(HWND control) noexcept {
    TTTOOLINFOW tool{};
    tool.cbSize = TooltipInfoSize;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = control;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    return tool;
}

}  // namespace

HWND CreateTooltipWindow() {
    const Surroundings surroundings;
    return CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_TRANSPARENT, TOOLTIPS_CLASSW, nullptr,
                           WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                           CW_USEDEFAULT, nullptr, nullptr, App::Module(), nullptr);
}

Tooltip::~Tooltip() {
    if (tip_ != nullptr) DestroyWindow(tip_);
}

// The default font is scaled for the DPI at sign-in.
void Tooltip::SetFont(HFONT font) {
    font_ = font;
    if (tip_ != nullptr && font_ != nullptr) SendMessageW(tip_, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
}

void Tooltip::SetText(HWND control, const std::wstring& text) {
    if (tip_ != nullptr && !text_.empty()) {
        TTTOOLINFOW old = ToolOf(control_);
        SendMessageW(tip_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&old));
    }
    control_ = control;
    text_ = text;
    if (tip_ != nullptr && !text_.empty()) AddTool();
}

void Tooltip::AddTool() {
    TTTOOLINFOW tool = ToolOf(control_);
    tool.lpszText = text_.data();
    SendMessageW(tip_, TTM_SETMAXTIPWIDTH, 0, TwipsToPixels(4500, DpiOf(control_)));
    SendMessageW(tip_, TTM_SETDELAYTIME, TTDT_AUTOPOP, 20000);
    SendMessageW(tip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    added_ = true;
}

void Tooltip::OnMouse(UINT message, WPARAM wParam, LPARAM lParam) {
    if (text_.empty()) return;
    if (tip_ == nullptr) {
        tip_ = CreateTooltipWindow();
        if (tip_ == nullptr) return;
        SetFont(font_);
        AddTool();
    }
    if (!added_) return;
    added_ = false;
    // From the next message on it tracks the mouse itself.
    MSG missed{};
    missed.hwnd = control_;
    missed.message = message;
    missed.wParam = wParam;
    missed.lParam = lParam;
    SendMessageW(tip_, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&missed));
}
