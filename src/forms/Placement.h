#pragma once

#include <windows.h>

#include <optional>
#include <utility>
#include <vector>

// Where a window stands on a desktop whose monitors may differ in their dots per inch: the arithmetic alone, without a
// call to Windows except GetDesktop.

struct Monitor {
    RECT Bounds;    // in pixels of the virtual screen, as WorkArea
    RECT WorkArea;  // without the taskbar
    UINT Dpi;
};
using Desktop = std::vector<Monitor>;

// The monitors as they are now. Never empty; as physical pixels for a thread that is aware of each monitor's dots per
// inch.
Desktop GetDesktop();

// The corner of a window in twips is one unit for all monitors, 15 twips for each pixel of the virtual screen: a number
// that means a place whichever monitor the window comes from. A window's size is in twips of the monitor it stands on.
inline constexpr UINT CornerDpi = 96;

// The monitor that has most of the rectangle, or the nearest one when none has any of it.
const Monitor& MonitorOf(const RECT& place, const Desktop& desktop) noexcept;

// Takes the four values of a window's place one by one, since each may be wrong; what was not set stays as it is.
class Placement {
public:
    // `now`: where the window stands, in pixels.
    Placement(Desktop desktop, const RECT& now) noexcept : desktop_(std::move(desktop)), now_(now) {}

    // In twips. Error 6 when no window coordinate can hold the value.
    void SetLeft(float left);
    void SetTop(float top);
    void SetWidth(float width);
    void SetHeight(float height);

    // The place in pixels. A size is converted by the monitor that has most of the window when it has that size.
    // Error 6 when its dots per inch make a coordinate too large.
    RECT Pixels() const;

private:
    RECT PixelsAt(UINT dpi) const;
    Desktop desktop_;
    RECT now_;
    std::optional<float> width_;
    std::optional<float> height_;
};

// The place itself when a pixel of it lies on a monitor. Else the nearest place inside the nearest monitor's work area,
// as large as that at most.
RECT BroughtIntoView(const RECT& place, const Desktop& desktop) noexcept;
