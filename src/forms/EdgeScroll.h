#pragma once

#include <windows.h>

// When a drag that is held at the edge of a control scrolls it, and which way. Asked again and again while the drag is
// over the control; after a moment at the edge it scrolls by steps.
class EdgeScroll {
public:
    // Milliseconds; what OLE recommends (DD_DEFSCROLLDELAY, DD_DEFSCROLLINTERVAL).
    static constexpr DWORD Delay = 50;
    static constexpr DWORD Interval = 50;

    // -1 to the left or up, 1 to the right or down, 0 for not.
    struct Step {
        int Across = 0;
        int Down = 0;
    };
    // The mouse's place in or around a client area, the width of its edges (both in pixels), and the time in
    // milliseconds.
    Step At(POINT mouse, const RECT& client, int inset, DWORD now) noexcept;

private:
    bool waiting_ = false;
    DWORD asked_ = 0;
    DWORD due_ = 0;
};
