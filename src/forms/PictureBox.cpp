#include "forms/PictureBox.h"

#include "forms/Events.h"
#include <oleacc.h>

#include "forms/WindowClass.h"

namespace {
constexpr const wchar_t* PictureBoxClass = L"brvPictureBox";
}

void PictureBox::Create(HWND container, int id, DWORD style, DWORD exStyle) {
    RegisterWindowClass(PictureBoxClass, DefWindowProcW, 0);
    CreateWindowOf(PictureBoxClass, style, exStyle, container, id, L"");
}

void PictureBox::SetBackColor(int systemColor) noexcept {
    backColor_ = systemColor;
    InvalidateRect(Handle(), nullptr, TRUE);
}

void PictureBox::SetMousePointer(const wchar_t* systemCursor) noexcept { cursor_ = LoadCursorW(nullptr, systemCursor); }

void PictureBox::SetPushButton() {
    pushButton_ = true;
    SetWindowLongPtrW(Handle(), GWL_STYLE, GetWindowLongPtrW(Handle(), GWL_STYLE) | WS_TABSTOP);
}

std::optional<LRESULT> PictureBox::OnButton(UINT message, WPARAM wParam, LPARAM lParam) {
    // Asks which of the system's classes the window behaves as: a button, whose default action is BM_CLICK.
    constexpr LRESULT AsButton = 65536 + 2;
    if (!pushButton_) return {};
    switch (message) {
        case WM_GETOBJECT:
            if (static_cast<LONG>(lParam) == OBJID_QUERYCLASSNAMEIDX) return AsButton;
            return {};
        case WM_GETDLGCODE:
            return DLGC_BUTTON;
        case BM_GETSTATE:
            return (HasFocus() ? BST_FOCUS : 0) | (spaceDown_ || clicking_ ? BST_PUSHED : 0);
        case BM_CLICK:
            if (Click && IsWindowEnabled(Handle()) && IsWindowVisible(Handle())) Click();
            return 0;
        case WM_KEYDOWN:
            if (wParam == VK_SPACE) spaceDown_ = true;
            return {};
        case WM_KEYUP:
            if (wParam == VK_SPACE && spaceDown_) {
                spaceDown_ = false;
                if (Click) Click();
            }
            return {};
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
        case WM_UPDATEUISTATE:
            spaceDown_ = false;
            InvalidateRect(Handle(), nullptr, TRUE);
            return {};
        default:
            return {};
    }
}

LRESULT PictureBox::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (Reflect(message, wParam, lParam, result)) return result;
    if (const std::optional<LRESULT> answer = OnButton(message, wParam, lParam)) return *answer;
    switch (message) {
        case WM_ERASEBKGND: {
            RECT client;
            GetClientRect(Handle(), &client);
            FillRect(reinterpret_cast<HDC>(wParam), &client, GetSysColorBrush(backColor_));
            return TRUE;
        }
        case WM_PAINT:
            if (Paint) {
                PAINTSTRUCT paint;
                const HDC context = BeginPaint(Handle(), &paint);
                RECT client;
                GetClientRect(Handle(), &client);
                Events::Raise([&] { Paint(context, client); });
                if (pushButton_ && HasFocus() &&
                    (SendMessageW(Handle(), WM_QUERYUISTATE, 0, 0) & UISF_HIDEFOCUS) == 0) {
                    RECT inner = client;
                    InflateRect(&inner, -2, -2);
                    SetTextColor(context, GetSysColor(COLOR_BTNTEXT));
                    SetBkColor(context, GetSysColor(COLOR_BTNFACE));
                    DrawFocusRect(context, &inner);
                }
                EndPaint(Handle(), &paint);
                return 0;
            }
            break;
        case WM_SETCURSOR:
            if (cursor_ != nullptr && LOWORD(lParam) == HTCLIENT && reinterpret_cast<HWND>(wParam) == Handle()) {
                SetCursor(cursor_);
                return TRUE;
            }
            break;
        case WM_CLOSE:
            // WM_CLOSE comes from a control that believes it is in a dialog, or from another program. It would destroy
            // the pane.
            return 0;
        case WM_LBUTTONDOWN:
            // The button-like boxes (collapse, restore) answer to a press and a release, both inside.
            if (Click) {
                clicking_ = true;
                SetCapture(Handle());
            }
            break;
        case WM_LBUTTONUP:
            if (clicking_) {
                RECT client;
                GetClientRect(Handle(), &client);
                const POINT point{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
                clicking_ = false;
                ReleaseCapture();
                if (PtInRect(&client, point)) Click();
            }
            break;
        case WM_CAPTURECHANGED:
            if (reinterpret_cast<HWND>(lParam) != Handle()) clicking_ = false;
            break;
        default:
            break;
    }
    return Control::OnMessage(message, wParam, lParam);
}
