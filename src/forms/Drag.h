#pragma once

#include <windows.h>

class Control;

// How a drag that passes over a control stands to it.
enum class DragState { Enter = 0, Leave = 1, Over = 2 };

// What a control does with a drag of its own.
enum class DragAction { Cancel = 0, Begin = 1, End = 2 };

// The one drag from control to control that can be under way: between Begin, given by the source's MouseMove, and End,
// given by its MouseUp. The source has the mouse meanwhile; a control takes part as a target when it has a DragOver or
// a DragDrop event. Escape, another button and the loss of the mouse cancel it.
namespace Dragging {
bool Active() noexcept;
// Whether the control is the source of a drag that is under way.
bool IsFrom(const Control& control) noexcept;

// `screen`: where the mouse is, in pixels of the screen. After a drag was cancelled the button has to be released
// before another one begins.
void Begin(Control& source, POINT screen);
// Drops on the control under the mouse, if that is a target.
void End();
void Cancel();

// The mouse at a point of the screen, in pixels: raises the targets' events and sets the cursor.
void Move(POINT screen);
// A drag that is held still moves again and again, so that what it is held over can scroll: called at least once in an
// interval, in milliseconds, while one is active.
constexpr DWORD RepeatInterval = 50;
void Repeat();
// The button that was held after a cancelled drag is up.
void Released() noexcept;
// A message for the thread's loop: the keyboard belongs to the drag, and Escape ends it. True: it is swallowed.
bool Translate(const MSG& message);
// A control goes: it is neither source nor target any more.
void Forget(const Control& control) noexcept;
}  // namespace Dragging
