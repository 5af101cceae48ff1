#pragma once

#include <windows.h>

#include <vector>

#include "forms/Control.h"

// Holds the painting of a control while many items change: each one would be laid out on its own. The outermost one
// counts. The control must be visible, since the message that ends it shows a hidden one.
class PaintingHeld {
public:
    explicit PaintingHeld(Control& control);
    ~PaintingHeld();
    PaintingHeld(const PaintingHeld&) = delete;
    PaintingHeld& operator=(const PaintingHeld&) = delete;

private:
    Control& control_;
};

// While somebody looks at a message, controls whose painting is held show what they have.
class PaintingResumed {
public:
    PaintingResumed();
    ~PaintingResumed();
    PaintingResumed(const PaintingResumed&) = delete;
    PaintingResumed& operator=(const PaintingResumed&) = delete;

private:
    std::vector<HWND> windows_;
};
