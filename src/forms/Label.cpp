#include "forms/Label.h"

#include <algorithm>

#include "forms/Handles.h"
#include "forms/Twips.h"

void Label::Create(HWND container, int id, const std::wstring& caption) {
    // SS_NOTIFY lets the mouse reach the tooltip; SS_NOPREFIX keeps an ampersand in a table's name.
    CreateWindowOf(L"Static", SS_LEFT | SS_NOPREFIX | SS_NOTIFY | WS_VISIBLE | WS_CLIPSIBLINGS, 0, container, id,
                   caption.c_str());
    caption_ = caption;
}

void Label::SetCaption(const std::wstring& caption) {
    if (caption == caption_) return;
    caption_ = caption;
    SetWindowCaption(caption);
    UpdateTip();
}

void Label::SetFont(HFONT font) {
    font_ = font;
    Control::SetFont(font);
    tip_.SetFont(font);
    UpdateTip();
}

float Label::LineHeight() const {
    const WindowDc context(Handle());
    const SelectedObject font(context, font_);
    TEXTMETRICW metrics{};
    GetTextMetricsW(context, &metrics);
    return PixelsToTwips(metrics.tmHeight, Dpi());
}

float Label::HeightFor(float width) const {
    const UINT dpi = Dpi();
    RECT area{0, 0, TwipsToPixels(width, dpi), 0};
    const WindowDc context(Handle());
    const SelectedObject font(context, font_);
    DrawTextW(context, caption_.c_str(), static_cast<int>(caption_.size()), &area,
              DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    return PixelsToTwips(area.bottom, dpi);
}

void Label::UpdateTip() { tip_.SetText(Handle(), HeightFor(ScaleWidth()) > ScaleHeight() ? caption_ : std::wstring()); }

bool Label::OnReflected(UINT message, WPARAM wParam, LPARAM, LRESULT& result) {
    if (message != WM_CTLCOLORSTATIC) return false;
    // The default pairs window text with button face, unreadable in some contrast schemes.
    const auto context = reinterpret_cast<HDC>(wParam);
    SetTextColor(context, GetSysColor(COLOR_BTNTEXT));
    SetBkColor(context, GetSysColor(COLOR_BTNFACE));
    result = reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_BTNFACE));
    return true;
}

// The margins are the window's frame: inside it the class draws and measures as it always does.
void Label::PaintMargins() const {
    const WindowDc context(Handle(), GetWindowDC(Handle()));
    if (context == nullptr) return;
    RECT whole;
    GetWindowRect(Handle(), &whole);
    RECT client;
    GetClientRect(Handle(), &client);
    MapWindowPoints(Handle(), nullptr, reinterpret_cast<POINT*>(&client), 2);
    OffsetRect(&client, -whole.left, -whole.top);
    OffsetRect(&whole, -whole.left, -whole.top);
    ExcludeClipRect(context, client.left, client.top, client.right, client.bottom);
    FillRect(context, &whole, GetSysColorBrush(COLOR_BTNFACE));
}

LRESULT Label::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCALCSIZE) {
        const LRESULT result = Control::OnMessage(message, wParam, lParam);
        auto& client = *reinterpret_cast<RECT*>(lParam);  // the first member of what comes with wParam TRUE
        const int across = TwipsToPixels(MarginAcross, Dpi());
        const int down = TwipsToPixels(MarginDown, Dpi());
        client.left = std::min<LONG>(client.left + across, client.right);
        client.right = std::max<LONG>(client.right - across, client.left);
        client.top = std::min<LONG>(client.top + down, client.bottom);
        client.bottom = std::max<LONG>(client.bottom - down, client.top);
        return result;
    }
    if (message == WM_NCPAINT) {
        PaintMargins();
        return 0;
    }
    if (message == WM_MOUSEMOVE) tip_.OnMouse(message, wParam, lParam);
    if (message == WM_SIZE) {
        const LRESULT result = Control::OnMessage(message, wParam, lParam);
        UpdateTip();
        InvalidateRect(Handle(), nullptr, TRUE);
        return result;
    }
    return Control::OnMessage(message, wParam, lParam);
}
