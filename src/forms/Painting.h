#pragma once

#include <windows.h>

#include <vector>

#include "forms/Control.h"

// Suspends painting of a control while many items change, since each change would cause a layout. The outermost one
// counts. The control must be visible, because the message that ends it shows a hidden one.
class PaintingHeld {
public:
    explicit PaintingHeld(Control& control);
    ~PaintingHeld();
    PaintingHeld(const PaintingHeld&) = delete;
    PaintingHeld& operator=(const PaintingHeld&) = delete;

private:
    Control& control_;
};

// While a message box is open, controls whose painting is suspended show their present state.
class PaintingResumed {
public:
    PaintingResumed();
    ~PaintingResumed();
    PaintingResumed(const PaintingResumed&) = delete;
    PaintingResumed& operator=(const PaintingResumed&) = delete;

private:
    std::vector<HWND> windows_;
};
