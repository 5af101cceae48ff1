#include "forms/Drag.h"

#include "forms/Control.h"
#include "forms/DragCursor.h"
#include "forms/Events.h"
#include "forms/Twips.h"

namespace {

struct Session {
    Control* Source = nullptr;
    Control* Over = nullptr;
    bool Accepted = false;  // the target would take something from this source
    CursorHandle Copy;      // an arrow with what is dragged
    POINT At{};
    DWORD Moved = 0;     // when it moved last
    bool Spent = false;  // cancelled, with the button still down
};

// A thread has one mouse, and the form lives on one thread.
Session& Current() noexcept {
    static Session session;
    return session;
}

// The nearest control at a point, or around what is there, that takes part in drags.
Control* TargetAt(POINT screen) noexcept {
    for (HWND window = WindowFromPoint(screen); window != nullptr; window = GetAncestor(window, GA_PARENT)) {
        Control* const control = Control::From(window);
        if (control != nullptr && (control->DragOver || control->DragDrop)) return control;
    }
    return nullptr;
}

void Raise(Control& target, Control& source, DragState state, POINT screen) {
    if (!target.DragOver) return;
    ScreenToClient(target.Handle(), &screen);
    const UINT dpi = target.Dpi();
    target.DragOver(source, PixelsToTwips(screen.x, dpi), PixelsToTwips(screen.y, dpi), state);
}

void ShowCursor(const Session& session) noexcept {
    const bool copy = session.Over != nullptr && session.Accepted && session.Copy;
    SetCursor(copy ? session.Copy.get() : LoadCursorW(nullptr, IDC_NO));
}

}  // namespace

bool Dragging::Active() noexcept { return Current().Source != nullptr; }

bool Dragging::IsFrom(const Control& control) noexcept { return Current().Source == &control; }

void Dragging::Begin(Control& source, POINT screen) {
    Session& session = Current();
    if (session.Source != nullptr || session.Spent) return;
    session.Copy = MakeDragCursor(source.Handle(), source.DragCaption());
    session.Source = &source;
    session.Over = nullptr;
    {
        Events::Call call;
        SetCapture(source.Handle());
        call.Rethrow();
    }
    Move(screen);
}

void Dragging::Move(POINT screen) {
    Session& session = Current();
    if (session.Source == nullptr) return;
    session.At = screen;
    session.Moved = GetTickCount();
    Control& source = *session.Source;
    Control* const target = TargetAt(screen);
    if (target != session.Over) {
        Control* const left = session.Over;
        session.Over = nullptr;
        if (left != nullptr) Raise(*left, source, DragState::Leave, screen);
        if (session.Source != &source) return;  // an event ended the drag
        session.Over = target;
        if (target != nullptr) {
            session.Accepted = !target->AcceptsDrag || target->AcceptsDrag(source);
            Raise(*target, source, DragState::Enter, screen);
        }
    }
    if (session.Source == &source && session.Over != nullptr) Raise(*session.Over, source, DragState::Over, screen);
    if (session.Source == &source) ShowCursor(session);
}

void Dragging::Repeat() {
    const Session& session = Current();
    if (session.Source != nullptr && GetTickCount() - session.Moved >= RepeatInterval) Move(session.At);
}

namespace {
// The session ends before the events of its end, so that these find no drag under way.
void Finish() noexcept {
    Session& session = Current();
    const HWND window = session.Source->Handle();
    session.Source = nullptr;
    session.Over = nullptr;
    session.Copy.reset();
    if (GetCapture() == window) ReleaseCapture();
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));
}
}  // namespace

void Dragging::End() {
    Session& session = Current();
    if (session.Source == nullptr) return;
    Control& source = *session.Source;
    Control* const target = session.Over;
    POINT at = session.At;
    Finish();
    session.Spent = GetKeyState(VK_LBUTTON) < 0;  // another button ended it
    if (target == nullptr || !target->DragDrop) return;
    ScreenToClient(target->Handle(), &at);
    const UINT dpi = target->Dpi();
    target->DragDrop(source, PixelsToTwips(at.x, dpi), PixelsToTwips(at.y, dpi));
}

void Dragging::Cancel() {
    Session& session = Current();
    if (session.Source == nullptr) return;
    Control& source = *session.Source;
    Control* const target = session.Over;
    const POINT at = session.At;
    Finish();
    session.Spent = GetKeyState(VK_LBUTTON) < 0;
    if (target != nullptr) Raise(*target, source, DragState::Leave, at);
}

void Dragging::Released() noexcept { Current().Spent = false; }

bool Dragging::Translate(const MSG& message) {
    if (!Active() || message.message < WM_KEYFIRST || message.message > WM_KEYLAST) return false;
    if (message.message == WM_KEYDOWN && message.wParam == VK_ESCAPE) Cancel();
    return true;
}

void Dragging::Forget(const Control& control) noexcept {
    Session& session = Current();
    if (session.Over == &control) session.Over = nullptr;
    if (session.Source == &control) {
        session.Source = nullptr;
        session.Over = nullptr;
        session.Copy.reset();
    }
}
