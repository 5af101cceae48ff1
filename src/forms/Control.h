#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "forms/Drag.h"

class Form;

// Mouse buttons and shift states as the events carry them: one value on MouseDown and MouseUp, a sum on MouseMove.
namespace MouseButton {
inline constexpr int Left = 1;
inline constexpr int Right = 2;
inline constexpr int Middle = 4;
}  // namespace MouseButton

namespace ShiftState {
inline constexpr int Shift = 1;
inline constexpr int Ctrl = 2;
inline constexpr int Alt = 4;
}  // namespace ShiftState

// A child window of one of the platform's own classes, or a container of controls. Positions and sizes are in twips,
// relative to the container's client area. A failure of Windows is error 7 at creation; every call that can raise an
// event passes on what the event procedure let out.
class Control {
public:
    using Event = std::function<void()>;
    // Button(s), shift state, position in twips relative to the control.
    using MouseEvent = std::function<void(int button, int shift, float x, float y)>;
    // The control that is dragged, the mouse in twips relative to the control that raises the event.
    using DragEvent = std::function<void(Control& source, float x, float y, DragState state)>;
    using DropEvent = std::function<void(Control& source, float x, float y)>;
    using PointEvent = std::function<void(const POINT& screen)>;

    Control() = default;
    virtual ~Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    HWND Handle() const noexcept { return handle_; }
    UINT Dpi() const noexcept;

    // What was set last, to the twip, whatever the pixels made of it.
    float Left() const noexcept { return left_; }
    float Top() const noexcept { return top_; }
    float Width() const noexcept { return width_; }
    float Height() const noexcept { return height_; }
    // Inside the borders, as the pixels make it.
    float ScaleWidth() const noexcept;
    float ScaleHeight() const noexcept;
    // Raises Resize when the size in pixels changes.
    void Move(float left, float top, float width, float height);
    void SetLeft(float left) { Move(left, top_, width_, height_); }
    void SetHeight(float height) { Move(left_, top_, width_, height); }

    bool Visible() const noexcept { return visible_; }  // as set; a control in a hidden container may be visible
    void SetVisible(bool visible);
    void SetEnabled(bool enabled);
    void BringToFront();
    void SendToBack();
    // Puts the control behind another one of the same container; the Tab key comes to it after that one.
    void PlaceBehind(const Control& other);
    virtual void SetFocus();
    bool HasFocus() const noexcept;
    // The control does not own the font.
    virtual void SetFont(HFONT font);
    std::wstring WindowCaption() const;
    void SetWindowCaption(const std::wstring& text);

    // Edges, in pixels, that are transparent to hit tests: the narrow splitter can be grabbed a little beyond its
    // bounds.
    void SetMouseEdges(int left, int right) noexcept;

    Event Click;
    Event Resize;
    Event GotFocus;
    Event LostFocus;
    MouseEvent MouseDown;
    MouseEvent MouseMove;
    MouseEvent MouseUp;
    Event CaptureLost;  // the capture was lost in the middle of a drag
    // A context menu is wanted, after the control's own handling: the right button was released, the key was pressed,
    // or a finger or pen was held. The place is in pixels of the screen.
    PointEvent ContextMenu;

    // Starts, ends or cancels a drag of this control: given from its MouseMove and MouseUp. Begin takes effect when the
    // mouse has left the little area around the place where the button was pressed, and there was something to drag.
    void Drag(DragAction action);
    // What the mouse shows while this control is dragged.
    virtual std::wstring DragCaption() const { return {}; }
    DragEvent DragOver;  // a drag enters, leaves, moves over this control
    DropEvent DragDrop;  // a drag ended over this control
    std::function<bool(Control& source)>
        AcceptsDrag;  // asked on entering, for the mouse pointer alone; without it: yes

    // Where the selected row or the caret is, in pixels of the screen: its left end, below it.
    POINT SelectedPlace() const { return MenuPoint(); }

    // A message to the control's window; what its events let out is thrown when it is back.
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;

    // The control of a window handle, or null when the window is not ours.
    static Control* From(HWND window) noexcept;
    // Containers pass a notification on to the child that sent it. Returns whether there was one.
    static bool Reflect(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

protected:
    // Makes the window and takes its messages over. Called once, or again after Destroy. With WS_POPUP in `style` it is
    // a top-level window that `container` owns.
    void CreateWindowOf(const wchar_t* windowClass, DWORD style, DWORD exStyle, HWND container, int id,
                        const wchar_t* text);
    void Destroy() noexcept;
    // Destroys the window that this control had before it was re-created.
    void DestroyFormer(HWND former) noexcept;
    // The new one failed half-way: it goes, and the control has its former window again.
    void TakeBack(HWND former) noexcept;

    virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // A notification that the container reflected: WM_COMMAND, WM_NOTIFY, WM_CTLCOLORSTATIC, ... False: not taken.
    virtual bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    // Calls the window class's default handling of the message.
    LRESULT Original(UINT message, WPARAM wParam, LPARAM lParam);

    bool FormVisible() const noexcept;                // the control's form is shown
    static int ShiftKeys() noexcept;                  // the sum of the keys that are down (ShiftState)
    static int MouseButtons(WPARAM wParam) noexcept;  // the sum of the buttons that a mouse message says are down
    void RaiseMouse(const MouseEvent& event, int button, LPARAM lParam);
    // Whether what the button was pressed on can be dragged.
    virtual bool HoldsSomething() const { return true; }
    // Ends the control's own mouse tracking because a drag begins. `press`: where the button went down.
    virtual void EndTracking(LPARAM press);
    // Where the context-menu key opens a menu, in pixels of the screen.
    virtual POINT MenuPoint() const;

private:
    friend class PaintingHeld;
    static LRESULT CALLBACK Thunk(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void PlaceAfter(HWND after);
    void FollowMouse(UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    bool OnDragMessage(UINT message, WPARAM wParam, LPARAM lParam);

    HWND handle_ = nullptr;
    WNDPROC original_ = nullptr;
    Form* form_ = nullptr;  // whose window the control's window is in, if it is a form's
    float left_ = 0;
    float top_ = 0;
    float width_ = 0;
    float height_ = 0;
    bool visible_ = true;
    int paintingHeld_ = 0;
    int leftEdge_ = 0;
    int rightEdge_ = 0;
    bool menuShown_ = false;  // WM_CONTEXTMENU has come since the right button was released
    bool pressed_ = false;    // the left button went down here, at press_
    LPARAM press_ = 0;
    LPARAM mouse_ = 0;  // the last place of the mouse that the control was told of
};
