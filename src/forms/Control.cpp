#include "forms/Control.h"

#include <commctrl.h>
#include <windowsx.h>

#include <cstdlib>
#include <utility>

#include "automation/App.h"
#include "automation/RuntimeError.h"
#include "forms/Dpi.h"
#include "forms/Events.h"
#include "forms/Form.h"
#include "forms/Messages.h"
#include "forms/Surroundings.h"
#include "forms/Twips.h"

namespace {

UINT WhoAreYou() noexcept {
    static const UINT message = RegisterWindowMessageW(L"brvControl.WhoAreYou");
    return message;
}

// Where our window procedure stores its answer to that message. The message's result is ignored: any window of the
// thread is asked, and a host's may return anything.
Control* answered = nullptr;

}  // namespace

Control::~Control() { Destroy(); }

void Control::CreateWindowOf(const wchar_t* windowClass, DWORD style, DWORD exStyle, HWND container, int id,
                             const wchar_t* text) {
    const Surroundings surroundings;
    const bool popup = (style & WS_POPUP) != 0;
    const HWND window =
        CreateWindowExW(exStyle, windowClass, text, popup ? style : style | WS_CHILD, 0, 0, 0, 0, container,
                        popup ? nullptr : reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), App::Module(), nullptr);
    if (window == nullptr) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    handle_ = window;
    form_ = Form::Of(GetAncestor(container, GA_ROOT));
    visible_ = (style & WS_VISIBLE) != 0;
    // The platform's classes leave GWLP_USERDATA to the program: the way from handle to control is one read.
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    original_ =
        reinterpret_cast<WNDPROC>(SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Control::Thunk)));
}

void Control::Destroy() noexcept {
    Dragging::Forget(*this);
    if (handle_ != nullptr) DestroyWindow(handle_);
    handle_ = nullptr;
}

void Control::DestroyFormer(HWND former) noexcept {
    SetWindowLongPtrW(former, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(original_));
    DestroyWindow(former);
}

bool Control::FormVisible() const noexcept { return form_ != nullptr && form_->Visible(); }

void Control::TakeBack(HWND former) noexcept {
    if (handle_ == former) return;
    DestroyFormer(std::exchange(handle_, former));
}

UINT Control::Dpi() const noexcept { return DpiOf(handle_); }

float Control::ScaleWidth() const noexcept {
    RECT client{};
    GetClientRect(handle_, &client);
    return PixelsToTwips(client.right, Dpi());
}

float Control::ScaleHeight() const noexcept {
    RECT client{};
    GetClientRect(handle_, &client);
    return PixelsToTwips(client.bottom, Dpi());
}

void Control::Move(float left, float top, float width, float height) {
    left_ = left;
    top_ = top;
    width_ = width < 0 ? 0 : width;
    height_ = height < 0 ? 0 : height;
    const UINT dpi = Dpi();
    // Both edges are rounded, not the size: neighbours in twips stay neighbours in pixels.
    const int x = TwipsToPixels(left_, dpi);
    const int y = TwipsToPixels(top_, dpi);
    const RECT place{x, y, TwipsToPixels(left_ + width_, dpi), TwipsToPixels(top_ + height_, dpi)};
    // A window is laid out more often than its controls move.
    RECT now{};
    GetWindowRect(handle_, &now);
    MapWindowPoints(nullptr, GetParent(handle_), reinterpret_cast<POINT*>(&now), 2);
    if (EqualRect(&place, &now)) return;
    Events::Call call;
    SetWindowPos(handle_, nullptr, x, y, place.right - x, place.bottom - y,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
    call.Rethrow();
}

void Control::SetVisible(bool visible) {
    visible_ = visible;
    Events::Call call;
    ShowWindow(handle_, visible ? SW_SHOWNA : SW_HIDE);
    call.Rethrow();
}

void Control::SetEnabled(bool enabled) {
    Events::Call call;
    EnableWindow(handle_, enabled);
    call.Rethrow();
}

void Control::PlaceAfter(HWND after) {
    Events::Call call;
    SetWindowPos(handle_, after, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
    call.Rethrow();
}

void Control::BringToFront() { PlaceAfter(HWND_TOP); }

void Control::SendToBack() { PlaceAfter(HWND_BOTTOM); }

void Control::PlaceBehind(const Control& other) { PlaceAfter(other.handle_); }

void Control::SetFocus() {
    Events::Call call;
    ::SetFocus(handle_);
    call.Rethrow();
}

bool Control::HasFocus() const noexcept {
    const HWND focus = GetFocus();
    return focus != nullptr && (focus == handle_ || IsChild(handle_, focus));
}

void Control::SetFont(HFONT font) { Send(WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE); }

std::wstring Control::WindowCaption() const {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(handle_)), L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(handle_, text.data(), static_cast<int>(text.size()) + 1)));
    return text;
}

void Control::SetWindowCaption(const std::wstring& text) {
    Events::Call call;
    SetWindowTextW(handle_, text.c_str());
    call.Rethrow();
}

void Control::SetMouseEdges(int left, int right) noexcept {
    leftEdge_ = left;
    rightEdge_ = right;
}

LRESULT Control::Send(UINT message, WPARAM wParam, LPARAM lParam) const {
    Events::Call call;
    const LRESULT result = SendMessageW(handle_, message, wParam, lParam);
    call.Rethrow();
    return result;
}

Control* Control::From(HWND window) noexcept {
    // Asked by a message, so that the answer arrives even when another procedure subclasses ours.
    if (window == nullptr || GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) return nullptr;
    answered = nullptr;
    SendMessageW(window, WhoAreYou(), 0, 0);
    return std::exchange(answered, nullptr);
}

bool Control::Reflect(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    HWND child = nullptr;
    switch (message) {
        case WM_COMMAND:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORSTATIC:
            child = reinterpret_cast<HWND>(lParam);
            break;
        case WM_NOTIFY:
            child = reinterpret_cast<const NMHDR*>(lParam)->hwndFrom;
            break;
        case WM_DRAWITEM:
            child = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)->hwndItem;
            break;
        default:
            return false;
    }
    Control* control = From(child);
    return control != nullptr && control->OnReflected(message, wParam, lParam, result);
}

LRESULT Control::Original(UINT message, WPARAM wParam, LPARAM lParam) {
    // Somebody may have destroyed the window.
    return handle_ != nullptr ? CallWindowProcW(original_, handle_, message, wParam, lParam) : 0;
}

bool Control::OnReflected(UINT, WPARAM, LPARAM, LRESULT&) { return false; }

int Control::ShiftKeys() noexcept {
    int state = 0;
    if (GetKeyState(VK_SHIFT) < 0) state |= ShiftState::Shift;
    if (GetKeyState(VK_CONTROL) < 0) state |= ShiftState::Ctrl;
    if (GetKeyState(VK_MENU) < 0) state |= ShiftState::Alt;
    return state;
}

int Control::MouseButtons(WPARAM wParam) noexcept {
    int buttons = 0;
    if (wParam & MK_LBUTTON) buttons |= MouseButton::Left;
    if (wParam & MK_RBUTTON) buttons |= MouseButton::Right;
    if (wParam & MK_MBUTTON) buttons |= MouseButton::Middle;
    return buttons;
}

void Control::RaiseMouse(const MouseEvent& event, int button, LPARAM lParam) {
    if (!event) return;
    const UINT dpi = Dpi();
    event(button, ShiftKeys(), PixelsToTwips(GET_X_LPARAM(lParam), dpi), PixelsToTwips(GET_Y_LPARAM(lParam), dpi));
}

void Control::Drag(DragAction action) {
    switch (action) {
        case DragAction::Begin: {
            if (Dragging::Active() || !HoldsSomething()) return;
            // A hand is not steady: a press that moves a little is still a click.
            if (pressed_ && std::abs(GET_X_LPARAM(mouse_) - GET_X_LPARAM(press_)) < GetSystemMetrics(SM_CXDRAG) &&
                std::abs(GET_Y_LPARAM(mouse_) - GET_Y_LPARAM(press_)) < GetSystemMetrics(SM_CYDRAG)) {
                return;
            }
            EndTracking(press_);
            POINT screen{GET_X_LPARAM(mouse_), GET_Y_LPARAM(mouse_)};
            ClientToScreen(handle_, &screen);
            Dragging::Begin(*this, screen);
            break;
        }
        case DragAction::End:
            if (Dragging::IsFrom(*this)) Dragging::End();
            break;
        default:
            if (Dragging::IsFrom(*this)) Dragging::Cancel();
            break;
    }
}

void Control::EndTracking(LPARAM) {}

POINT Control::MenuPoint() const {
    POINT point{};
    ClientToScreen(handle_, &point);
    return point;
}

// The mouse is the drag's, not the control's.
bool Control::OnDragMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    switch (message) {
        case WM_MOUSEMOVE:
            ClientToScreen(handle_, &at);
            Dragging::Move(at);
            return true;
        case WM_LBUTTONUP:
        case WM_RBUTTONUP:
        case WM_MBUTTONUP: {
            POINT screen = at;
            ClientToScreen(handle_, &screen);
            Dragging::Move(screen);
            const int button = message == WM_LBUTTONUP   ? MouseButton::Left
                               : message == WM_RBUTTONUP ? MouseButton::Right
                                                         : MouseButton::Middle;
            RaiseMouse(MouseUp, button, lParam);
            // A drag ends with the button, whatever the event did.
            if (message == WM_LBUTTONUP && Dragging::IsFrom(*this)) Dragging::Cancel();
            return true;
        }
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDOWN:
        case WM_RBUTTONDBLCLK:
        case WM_MBUTTONDOWN:
        case WM_MBUTTONDBLCLK:
            return true;
        case WM_CAPTURECHANGED:
            if (reinterpret_cast<HWND>(lParam) != handle_) Dragging::Cancel();
            return false;
        case WM_CANCELMODE:
            Dragging::Cancel();
            return false;
        default:
            (void)wParam;
            return false;
    }
}

// Where the mouse is and where it was pressed, whatever a class does with its messages.
void Control::FollowMouse(UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message >= WM_MOUSEFIRST && message <= WM_MBUTTONDBLCLK) mouse_ = lParam;
    if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) {
        pressed_ = true;
        press_ = lParam;
    } else if (message == WM_LBUTTONUP || (message == WM_MOUSEMOVE && (wParam & MK_LBUTTON) == 0)) {
        pressed_ = false;
        Dragging::Released();
    }
}

LRESULT Control::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NCHITTEST:
            if (leftEdge_ > 0 || rightEdge_ > 0) {
                RECT bounds;
                GetWindowRect(handle_, &bounds);
                const int x = GET_X_LPARAM(lParam);
                if (x < bounds.left + leftEdge_ || x >= bounds.right - rightEdge_) return HTTRANSPARENT;
            }
            break;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            RaiseMouse(MouseDown, MouseButton::Left, lParam);
            break;
        case WM_RBUTTONDOWN:
            RaiseMouse(MouseDown, MouseButton::Right, lParam);
            break;
        case WM_MBUTTONDOWN:
            RaiseMouse(MouseDown, MouseButton::Middle, lParam);
            break;
        case WM_MOUSEMOVE:
            RaiseMouse(MouseMove, MouseButtons(wParam), lParam);
            break;
        case WM_LBUTTONUP:
            RaiseMouse(MouseUp, MouseButton::Left, lParam);
            break;
        case WM_RBUTTONUP: {
            RaiseMouse(MouseUp, MouseButton::Right, lParam);
            menuShown_ = false;
            const LRESULT result = Original(message, wParam, lParam);
            // Most classes leave it to the system to ask for a menu then; some keep the button for themselves.
            if (ContextMenu && !menuShown_) {
                POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
                ClientToScreen(handle_, &at);
                SendMessageW(handle_, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(handle_), MAKELPARAM(at.x, at.y));
            }
            return result;
        }
        case WM_MBUTTONUP:
            RaiseMouse(MouseUp, MouseButton::Middle, lParam);
            break;
        case WM_CAPTURECHANGED:
            if (CaptureLost) CaptureLost();
            break;
        case WM_CONTEXTMENU: {
            menuShown_ = true;
            if (!ContextMenu) break;
            const POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
            if (at.x == -1 && at.y == -1) {
                ContextMenu(MenuPoint());
                return 0;
            }
            POINT inside = at;
            ScreenToClient(handle_, &inside);
            RECT client;
            GetClientRect(handle_, &client);
            if (!PtInRect(&client, inside)) break;  // a scroll bar has its own menu
            ContextMenu(at);
            return 0;
        }
        case WM_SETFOCUS: {
            const LRESULT result = Original(message, wParam, lParam);
            if (GotFocus) GotFocus();
            return result;
        }
        case WM_KILLFOCUS: {
            const LRESULT result = Original(message, wParam, lParam);
            if (LostFocus) LostFocus();
            return result;
        }
        case WM_SIZE: {
            const LRESULT result = Original(message, wParam, lParam);
            if (Resize) Resize();
            return result;
        }
        default:
            break;
    }
    return Original(message, wParam, lParam);
}

LRESULT CALLBACK Control::Thunk(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* control = reinterpret_cast<Control*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (control == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    // The window exists before this procedure is installed: these two messages would create it again.
    if (message == WM_NCCREATE || message == WM_CREATE || LacksAddress(message, wParam, lParam)) return 0;
    if (message == WhoAreYou()) {
        answered = control;
        return 0;
    }
    // Handling the message may release the window with all its controls.
    const std::shared_ptr<void> held = control->form_ != nullptr ? control->form_->Hold() : nullptr;
    LRESULT result = 0;
    control->FollowMouse(message, wParam, lParam);
    Events::Raise([&] {
        const bool taken = Dragging::IsFrom(*control) && control->OnDragMessage(message, wParam, lParam);
        if (!taken) result = control->OnMessage(message, wParam, lParam);
    });
    if (message == WM_NCDESTROY) control->handle_ = nullptr;
    return result;
}
