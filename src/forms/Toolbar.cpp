#include "forms/Toolbar.h"

#include <algorithm>

#include "automation/RuntimeError.h"
#include "forms/Handles.h"
#include "forms/SystemFunctions.h"
#include "forms/Tooltip.h"
#include "forms/Twips.h"

namespace {
constexpr int FirstCommand = 0x7000;
}

void Toolbar::Create(HWND container, int id) {
    CreateWindowOf(TOOLBARCLASSNAMEW,
                   TBSTYLE_FLAT | TBSTYLE_LIST | CCS_TOP | CCS_NODIVIDER | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP, 0,
                   container, id, L"");
    Send(TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON));
    Send(TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS | TBSTYLE_EX_DOUBLEBUFFER);
}

// Tips of our own making, since those that the toolbar makes are owned by the form, and not before the mouse comes (see
// Tooltip). The toolbar makes tools of the buttons that are added after its tips alone.
void Toolbar::MakeTips() {
    if (tips_ != nullptr) return;
    tips_ = CreateTooltipWindow();
    if (tips_ == nullptr) return;
    SendMessageW(tips_, WM_SETFONT, static_cast<WPARAM>(Send(WM_GETFONT)), FALSE);
    Send(TB_SETTOOLTIPS, reinterpret_cast<WPARAM>(tips_));
    for (size_t at = 0; at < buttons_.size(); ++at) {
        TTTOOLINFOW tool{};
        tool.cbSize = TTTOOLINFOW_V2_SIZE;
        tool.hwnd = Handle();
        tool.uId = static_cast<UINT_PTR>(FirstCommand) + at;
        tool.lpszText = LPSTR_TEXTCALLBACKW;
        Send(TB_GETITEMRECT, at, reinterpret_cast<LPARAM>(&tool.rect));
        SendMessageW(tips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
    Send(TB_SETSTYLE, 0, Send(TB_GETSTYLE) | TBSTYLE_TOOLTIPS);
}

Toolbar::~Toolbar() {
    if (tips_ != nullptr) DestroyWindow(tips_);
}

void Toolbar::SetFont(HFONT font) {
    Control::SetFont(font);
    if (tips_ != nullptr) SendMessageW(tips_, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    MeasureButtons();
}

void Toolbar::SetImageList(HIMAGELIST images) {
    Send(TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
    MeasureButtons();
}

// A button keeps the width that it had with another font or image until its text is given again.
// The height of all buttons grows with a larger font or image and stays, unless it is set: to what font and image take.
void Toolbar::MeasureButtons() {
    constexpr int Around = 7;  // pixels that the control leaves round what it shows
    int imageWidth = 0;
    int imageHeight = 0;
    if (const auto images = reinterpret_cast<HIMAGELIST>(Send(TB_GETIMAGELIST))) {
        System::ImageList_GetIconSize(images, &imageWidth, &imageHeight);
    }
    TEXTMETRICW metrics{};
    {
        const WindowDc context(Handle());
        const SelectedObject font(context, reinterpret_cast<HFONT>(Send(WM_GETFONT)));
        GetTextMetricsW(context, &metrics);
    }
    const int height = std::max(imageHeight, static_cast<int>(metrics.tmHeight)) + Around;
    Send(TB_SETBUTTONSIZE, 0, MAKELPARAM(0, height));
    for (size_t at = 0; at < buttons_.size(); ++at) {
        TBBUTTONINFOW info{};
        info.cbSize = sizeof info;
        info.dwMask = TBIF_TEXT;
        info.pszText = buttons_[at].Caption.data();
        Send(TB_SETBUTTONINFOW, static_cast<WPARAM>(FirstCommand) + at, reinterpret_cast<LPARAM>(&info));
    }
}

void Toolbar::AddButton(const Button& button) {
    TBBUTTON made{};
    made.iBitmap = button.Image;
    made.idCommand = FirstCommand + static_cast<int>(buttons_.size());
    made.fsState = TBSTATE_ENABLED;
    made.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | BTNS_SHOWTEXT;
    made.iString = reinterpret_cast<INT_PTR>(button.Caption.c_str());
    if (!Send(TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&made))) RaiseError(ErrorNumber::OutOfMemory);
    buttons_.push_back(button);
}

float Toolbar::Arrange() {
    Send(TB_AUTOSIZE);
    RECT bar;
    GetWindowRect(Handle(), &bar);
    return PixelsToTwips(bar.bottom - bar.top, Dpi());
}

bool Toolbar::OnReflected(UINT message, WPARAM wParam, LPARAM, LRESULT&) {
    if (message != WM_COMMAND) return false;
    const int position = LOWORD(wParam) - FirstCommand;
    if (position < 0 || position >= static_cast<int>(buttons_.size())) return false;
    if (ButtonClick) ButtonClick(buttons_[static_cast<size_t>(position)]);
    return true;
}

LRESULT Toolbar::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_MOUSEMOVE || message == TB_GETTOOLTIPS) MakeTips();
    // The tip window asks the toolbar's parent for the text; it is answered here already, where the texts are.
    if (message == WM_NOTIFY) {
        const auto* header = reinterpret_cast<const NMHDR*>(lParam);
        if (header->hwndFrom == tips_ && header->code == static_cast<UINT>(TTN_GETDISPINFOW)) {
            const auto position = static_cast<size_t>(header->idFrom) - FirstCommand;
            if (position < buttons_.size()) {
                auto* info = reinterpret_cast<NMTTDISPINFOW*>(lParam);
                info->lpszText = buttons_[position].ToolTipText.data();
                return 0;
            }
        }
    }
    return Control::OnMessage(message, wParam, lParam);
}
