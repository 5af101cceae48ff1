#pragma once

#include "forms/Control.h"

// Holds the painting of a control while many items change: each one would be laid out on its own. The outermost one counts. The
// control must be visible, since the message that ends it shows a hidden one.
class PaintingHeld {
public:
    explicit PaintingHeld(Control& control) : control_(control) {
        if (control_.paintingHeld_++ == 0) SendMessageW(control_.Handle(), WM_SETREDRAW, FALSE, 0);
    }
    ~PaintingHeld() {
        if (--control_.paintingHeld_ > 0) return;
        SendMessageW(control_.Handle(), WM_SETREDRAW, TRUE, 0);
        InvalidateRect(control_.Handle(), nullptr, TRUE);
    }
    PaintingHeld(const PaintingHeld&) = delete;
    PaintingHeld& operator=(const PaintingHeld&) = delete;

private:
    Control& control_;
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
