#include "forms/CommandButton.h"

#include "forms/Twips.h"

namespace {
// Between the caption and the sides, and above and below it, together; twips.
constexpr float MarginAcross = 180;
constexpr float MarginDown = 45;
}  // namespace

void CommandButton::Create(HWND container, int id, const std::wstring& caption) {
    CreateWindowOf(L"Button", BS_PUSHBUTTON | WS_TABSTOP | WS_VISIBLE | WS_CLIPSIBLINGS, 0, container, id,
                   caption.c_str());
}

void CommandButton::SetPressed(bool pressed) {
    if (((Send(BM_GETSTATE) & BST_PUSHED) != 0) != pressed) Send(BM_SETSTATE, pressed);
}

void CommandButton::SetFont(HFONT font) {
    font_ = font;
    Control::SetFont(font);
    tip_.SetFont(font);
    UpdateTip();
}

SIZE CommandButton::CaptionSize() const {
    const std::wstring caption = WindowCaption();
    SIZE size{};
    const HDC context = GetDC(Handle());
    const HGDIOBJ previous = SelectObject(context, font_);
    GetTextExtentPoint32W(context, caption.c_str(), static_cast<int>(caption.size()), &size);
    SelectObject(context, previous);
    ReleaseDC(Handle(), context);
    return size;
}

float CommandButton::LeastWidth() const {
    return PixelsToTwips(static_cast<int>(CaptionSize().cx), Dpi()) + MarginAcross;
}

float CommandButton::LeastHeight() const {
    return PixelsToTwips(static_cast<int>(CaptionSize().cy), Dpi()) + MarginDown;
}

void CommandButton::UpdateTip() {
    constexpr int Frame = 4;  // pixels
    RECT client;
    GetClientRect(Handle(), &client);
    const bool cutOff = client.right > 0 && CaptionSize().cx + Frame > client.right;
    tip_.SetText(Handle(), cutOff ? WindowCaption() : std::wstring());
}

LRESULT CommandButton::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_MOUSEMOVE) tip_.OnMouse(message, wParam, lParam);
    const LRESULT result = Control::OnMessage(message, wParam, lParam);
    if (message == WM_SIZE) UpdateTip();
    return result;
}

bool CommandButton::OnReflected(UINT message, WPARAM wParam, LPARAM, LRESULT&) {
    if (message != WM_COMMAND || HIWORD(wParam) != BN_CLICKED) return false;
    if (Click) Click();
    return true;
}
