#include "forms/CommandButton.h"

#include "forms/Handles.h"
#include "forms/SystemFunctions.h"
#include "forms/Twips.h"

namespace {
// Between the caption and the sides, and above and below it, together; twips.
constexpr float MarginAcross = 180;
constexpr float MarginDown = 45;
}  // namespace

void CommandButton::Create(HWND container, int id, const std::wstring& caption) {
    // A check box in a button's shape: being checked is a state that outlasts the focus and the mouse, that themes draw
    // and that screen readers say, where the highlight of a push button is there for a moment. Not a radio button:
    // those click themselves when the focus comes to them.
    CreateWindowOf(L"Button", BS_CHECKBOX | BS_PUSHLIKE | WS_TABSTOP | WS_VISIBLE | WS_CLIPSIBLINGS, 0, container, id,
                   caption.c_str());
}

bool CommandButton::Pressed() const { return Send(BM_GETCHECK) == BST_CHECKED; }

void CommandButton::SetPressed(bool pressed) {
    if (Pressed() != pressed) Send(BM_SETCHECK, pressed ? BST_CHECKED : BST_UNCHECKED);
}

// Without a theme a checked button is told by its edge alone, and its ground is mixed of two colours of which one may
// be that of its text; a contrast theme may draw all buttons alike. There it is drawn in the colours of what is
// selected.
bool CommandButton::PaintsItself() const {
    if (!Pressed()) return false;
    HIGHCONTRASTW contrast{};
    contrast.cbSize = sizeof contrast;
    return System::GetWindowTheme(Handle()) == nullptr ||
           (SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
            (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0);
}

void CommandButton::Paint(HDC context) const {
    const std::wstring caption = WindowCaption();
    RECT client;
    GetClientRect(Handle(), &client);
    FillRect(context, &client, GetSysColorBrush(COLOR_HIGHLIGHT));
    FrameRect(context, &client, GetSysColorBrush(COLOR_BTNTEXT));
    const int saved = SaveDC(context);
    SelectObject(context, font_);
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, GetSysColor(COLOR_HIGHLIGHTTEXT));
    DrawTextW(context, caption.c_str(), static_cast<int>(caption.size()), &client,
              DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_HIDEPREFIX);
    if (GetFocus() == Handle() && (SendMessageW(Handle(), WM_QUERYUISTATE, 0, 0) & UISF_HIDEFOCUS) == 0) {
        SetBkColor(context, GetSysColor(COLOR_HIGHLIGHT));
        constexpr int Inside = 3;  // pixels
        InflateRect(&client, -Inside, -Inside);
        DrawFocusRect(context, &client);
    }
    RestoreDC(context, saved);
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
    const WindowDc context(Handle());
    const SelectedObject font(context, font_);
    GetTextExtentPoint32W(context, caption.c_str(), static_cast<int>(caption.size()), &size);
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
    switch (message) {
        case WM_MOUSEMOVE:
            tip_.OnMouse(message, wParam, lParam);
            break;
        case WM_PAINT: {
            if (wParam != 0 || !PaintsItself()) break;
            PAINTSTRUCT paint;
            Paint(BeginPaint(Handle(), &paint));
            EndPaint(Handle(), &paint);
            return 0;
        }
        case WM_PRINTCLIENT:
            if (!PaintsItself()) break;
            Paint(reinterpret_cast<HDC>(wParam));
            return 0;
        default:
            break;
    }
    const LRESULT result = Control::OnMessage(message, wParam, lParam);
    switch (message) {
        case WM_SIZE:
            UpdateTip();
            break;
        // Without a theme the control draws at once what these change, past WM_PAINT.
        case BM_SETCHECK:
        case BM_SETSTATE:
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
        case WM_ENABLE:
        case WM_SETTEXT:
        case WM_UPDATEUISTATE:
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP:
        case WM_MOUSEMOVE:
        case WM_CAPTURECHANGED:
        case WM_KEYDOWN:
        case WM_KEYUP:
            if (PaintsItself()) InvalidateRect(Handle(), nullptr, FALSE);
            break;
        default:
            break;
    }
    return result;
}

bool CommandButton::OnReflected(UINT message, WPARAM wParam, LPARAM, LRESULT&) {
    if (message != WM_COMMAND || HIWORD(wParam) != BN_CLICKED) return false;
    if (Click) Click();
    return true;
}
