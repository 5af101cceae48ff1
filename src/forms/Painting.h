#pragma once

#include "forms/Control.h"

// Holds the painting of a control while many items change: each one would be laid out on its own. The control must be visible,
// since the message that ends it shows a hidden one.
class PaintingHeld {
public:
    explicit PaintingHeld(const Control& control) : window_(control.Handle()) { SendMessageW(window_, WM_SETREDRAW, FALSE, 0); }
    ~PaintingHeld() {
        SendMessageW(window_, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(window_, nullptr, TRUE);
    }
    PaintingHeld(const PaintingHeld&) = delete;
    PaintingHeld& operator=(const PaintingHeld&) = delete;

private:
    HWND window_;
};

// Shows the hourglass while a host is asked for something that may take its time.
class WaitCursor {
public:
    WaitCursor() noexcept : before_(SetCursor(LoadCursorW(nullptr, IDC_WAIT))) {}
    ~WaitCursor() { SetCursor(before_); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    HCURSOR before_;
};
