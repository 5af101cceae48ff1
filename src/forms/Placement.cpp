#include "forms/Placement.h"

#include <algorithm>
#include <cstdint>

#include "automation/RuntimeError.h"
#include "forms/Dpi.h"
#include "forms/SystemFunctions.h"
#include "forms/Twips.h"

namespace {

// In 64 bits: a place that was stored may be anywhere.
int64_t Common(LONG from, LONG to, LONG otherFrom, LONG otherTo) noexcept {
    return std::max<int64_t>(0, static_cast<int64_t>(std::min(to, otherTo)) - std::max(from, otherFrom));
}

int64_t CommonArea(const RECT& one, const RECT& other) noexcept {
    return Common(one.left, one.right, other.left, other.right) * Common(one.top, one.bottom, other.top, other.bottom);
}

double Gap(LONG from, LONG to, LONG otherFrom, LONG otherTo) noexcept {
    return std::max({0.0, static_cast<double>(otherFrom) - to, static_cast<double>(from) - otherTo});
}

double Distance(const RECT& one, const RECT& other) noexcept {
    const double across = Gap(one.left, one.right, other.left, other.right);
    const double down = Gap(one.top, one.bottom, other.top, other.bottom);
    return across * across + down * down;
}

// Moves a stretch into another one, and shortens it where it must be.
void MoveInto(LONG& from, LONG& to, LONG least, LONG most) noexcept {
    const auto length = static_cast<LONG>(std::min<int64_t>(static_cast<int64_t>(to) - from, most - least));
    from = std::clamp(from, least, most - length);
    to = from + length;
}

LONG Sum(LONG corner, int length) {
    LONG sum = 0;
    if (__builtin_add_overflow(corner, length, &sum)) RaiseError(ErrorNumber::Overflow);
    return sum;
}

UINT DpiOfMonitor(HMONITOR monitor) noexcept {
    UINT across = 0;
    UINT down = 0;
    if (SUCCEEDED(System::GetDpiForMonitor(monitor, MDT_EFFECTIVE_DPI, &across, &down)) && across > 0) return across;
    return DpiOf(nullptr);
}

}  // namespace

Desktop GetDesktop() {
    Desktop desktop;
    desktop.reserve(16);  // no exception may cross the enumeration
    EnumDisplayMonitors(
        nullptr, nullptr,
        [](HMONITOR monitor, HDC, LPRECT, LPARAM parameter) WINAPI -> BOOL {
            auto& desktop = *reinterpret_cast<Desktop*>(parameter);
            if (desktop.size() == desktop.capacity()) return FALSE;
            MONITORINFO info{};
            info.cbSize = sizeof info;
            if (GetMonitorInfoW(monitor, &info))
                desktop.push_back({info.rcMonitor, info.rcWork, DpiOfMonitor(monitor)});
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&desktop));
    if (desktop.empty()) {
        // A session without a screen: as large as it says it is.
        RECT screen{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
        desktop.push_back({screen, screen, DpiOf(nullptr)});
    }
    return desktop;
}

const Monitor& MonitorOf(const RECT& place, const Desktop& desktop) noexcept {
    const Monitor* most = &desktop.front();
    for (const Monitor& monitor : desktop) {
        const int64_t area = CommonArea(place, monitor.Bounds);
        const int64_t before = CommonArea(place, most->Bounds);
        if (area > before ||
            (area == 0 && before == 0 && Distance(place, monitor.Bounds) < Distance(place, most->Bounds))) {
            most = &monitor;
        }
    }
    return *most;
}

void Placement::SetLeft(float left) {
    const LONG width = now_.right - now_.left;
    now_.left = TwipsToPixels(left, CornerDpi);
    now_.right = Sum(now_.left, width);
}

void Placement::SetTop(float top) {
    const LONG height = now_.bottom - now_.top;
    now_.top = TwipsToPixels(top, CornerDpi);
    now_.bottom = Sum(now_.top, height);
}

void Placement::SetWidth(float width) {
    Sum(now_.left, TwipsToPixels(width, CornerDpi));
    width_ = width;
}

void Placement::SetHeight(float height) {
    Sum(now_.top, TwipsToPixels(height, CornerDpi));
    height_ = height;
}

RECT Placement::PixelsAt(UINT dpi) const {
    RECT place = now_;
    if (width_) place.right = Sum(place.left, std::max(TwipsToPixels(*width_, dpi), 0));
    if (height_) place.bottom = Sum(place.top, std::max(TwipsToPixels(*height_, dpi), 0));
    return place;
}

RECT Placement::Pixels() const {
    // The size depends on the monitor and the monitor on the size: the one that fits itself is where the window came
    // from. Where two do, as on the border between them, it is the one with the corner.
    const RECT corner{now_.left, now_.top, now_.left + 1, now_.top + 1};
    const Monitor& first = MonitorOf(corner, desktop_);
    const RECT usual = PixelsAt(first.Dpi);
    if (MonitorOf(usual, desktop_).Dpi == first.Dpi) return usual;
    for (const Monitor& monitor : desktop_) {
        const RECT place = PixelsAt(monitor.Dpi);
        if (MonitorOf(place, desktop_).Dpi == monitor.Dpi) return place;
    }
    return usual;
}

RECT BroughtIntoView(const RECT& place, const Desktop& desktop) noexcept {
    for (const Monitor& monitor : desktop) {
        if (CommonArea(place, monitor.Bounds) > 0) return place;
    }
    const RECT& area = MonitorOf(place, desktop).WorkArea;
    RECT moved = place;
    MoveInto(moved.left, moved.right, area.left, area.right);
    MoveInto(moved.top, moved.bottom, area.top, area.bottom);
    return moved;
}
