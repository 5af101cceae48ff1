#include "forms/Placement.h"

#include <gtest/gtest.h>

#include <ostream>

#include "forms/Twips.h"
#include "support/Errors.h"

bool operator==(const RECT& one, const RECT& other) { return EqualRect(&one, &other) != FALSE; }

std::ostream& operator<<(std::ostream& out, const RECT& place) {
    return out << place.left << ',' << place.top << ' ' << place.right - place.left << 'x' << place.bottom - place.top;
}

namespace {

RECT Place(LONG left, LONG top, LONG width, LONG height) { return {left, top, left + width, top + height}; }

// A laptop of 192 dots per inch, the primary one with a taskbar at its bottom, and an ordinary screen to its right.
const Desktop Mixed{{Place(0, 0, 2560, 1600), Place(0, 0, 2560, 1520), 192},
                    {Place(2560, 0, 1920, 1080), Place(2560, 0, 1920, 1080), 96}};
const Desktop LaptopAlone{Mixed[0]};
// An ordinary screen with one of 144 dots to its left, whose coordinates are negative.
const Desktop LeftOne{{Place(0, 0, 1920, 1080), Place(0, 40, 1920, 1040), 96},
                      {Place(-2560, -200, 2560, 1440), Place(-2560, -200, 2500, 1440), 144}};

struct Stored {
    float Left, Top, Width, Height;
};

// What is written when the window is closed there.
Stored Close(const RECT& place, const Desktop& desktop) {
    const UINT dpi = MonitorOf(place, desktop).Dpi;
    return {PixelsToTwips(place.left, CornerDpi), PixelsToTwips(place.top, CornerDpi),
            PixelsToTwips(place.right - place.left, dpi), PixelsToTwips(place.bottom - place.top, dpi)};
}

RECT Open(const Stored& stored, const Desktop& desktop) {
    Placement placement(desktop, {0, 0, 0, 0});
    placement.SetLeft(stored.Left);
    placement.SetTop(stored.Top);
    placement.SetWidth(stored.Width);
    placement.SetHeight(stored.Height);
    return placement.Pixels();
}

}  // namespace

TEST(PlacementTest, AWindowComesBackToThePixelOnEveryMonitor) {
    for (const Desktop* desktop : {&Mixed, &LeftOne}) {
        for (const RECT& place : {Place(100, 80, 800, 600), Place(3900, 200, 434, 433), Place(2560, 0, 500, 500),
                                  Place(-1500, -100, 900, 700), Place(1800, 900, 300, 300), Place(-40, -31, 640, 480),
                                  Place(2300, 100, 1000, 700), Place(2500, 100, 600, 400)}) {
            const Stored stored = Close(place, *desktop);
            EXPECT_EQ(place, Open(stored, *desktop));
        }
    }
}

TEST(PlacementTest, TheCornerIsOneUnitForAllMonitors) {
    // 15 twips a pixel, whatever the dots: what an ordinary screen has always written.
    EXPECT_EQ(58500, Close(Place(3900, 0, 10, 10), Mixed).Left);
    EXPECT_EQ(1500, Close(Place(100, 0, 10, 10), Mixed).Left);
    EXPECT_EQ(Place(3900, 100, 433, 433), Open({58500, 1500, 6500, 6500}, Mixed));
    EXPECT_EQ(Place(100, 100, 867, 867), Open({1500, 1500, 6500, 6500}, Mixed));
    EXPECT_EQ(Place(-1000, 100, 650, 650), Open({-15000, 1500, 6500, 6500}, LeftOne));
}

TEST(PlacementTest, WhatWasNotSetStaysAsItIs) {
    Placement placement(Mixed, Place(10, 20, 300, 200));
    EXPECT_EQ(Place(10, 20, 300, 200), placement.Pixels());
    placement.SetLeft(45000);
    EXPECT_EQ(Place(3000, 20, 300, 200), placement.Pixels());
    placement.SetTop(1500);
    EXPECT_EQ(Place(3000, 100, 300, 200), placement.Pixels());
    placement.SetWidth(6000);
    EXPECT_EQ(Place(3000, 100, 400, 200), placement.Pixels());
}

TEST(PlacementTest, EachValueIsRefusedWhenItIsSet) {
    for (const float huge : {1e30F, -1e30F, 4e10F}) {
        Placement placement(Mixed, Place(10, 20, 300, 200));
        EXPECT_EQ(ErrorNumber::Overflow, NumberOf([&] { placement.SetLeft(huge); })) << huge;
        EXPECT_EQ(ErrorNumber::Overflow, NumberOf([&] { placement.SetTop(huge); })) << huge;
        EXPECT_EQ(ErrorNumber::Overflow, NumberOf([&] { placement.SetWidth(huge); })) << huge;
        EXPECT_EQ(ErrorNumber::Overflow, NumberOf([&] { placement.SetHeight(huge); })) << huge;
    }
    // Both fit, their sum does not.
    Placement placement(Mixed, Place(0, 0, 300, 200));
    placement.SetLeft(3.0e10F);
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([&] { placement.SetWidth(3.0e10F); }));
    // Fits the screen of 96 dots, not the one that it is for.
    Placement wide(Mixed, Place(0, 0, 300, 200));
    wide.SetWidth(2.0e10F);
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([&] { wide.Pixels(); }));
}

TEST(PlacementTest, AMonitorHasTheWindowWhenItHasMostOfIt) {
    EXPECT_EQ(192U, MonitorOf(Place(2500, 100, 100, 100), Mixed).Dpi);
    EXPECT_EQ(96U, MonitorOf(Place(2520, 100, 100, 100), Mixed).Dpi);
    // None has any of it: the nearest.
    EXPECT_EQ(96U, MonitorOf(Place(9000, 0, 100, 100), Mixed).Dpi);
    EXPECT_EQ(192U, MonitorOf(Place(-9000, 0, 100, 100), Mixed).Dpi);
    EXPECT_EQ(96U, MonitorOf(Place(4000, 1200, 100, 100), Mixed).Dpi);
    EXPECT_EQ(192U, MonitorOf(Place(2000, 1700, 100, 100), Mixed).Dpi);
}

TEST(PlacementTest, AWindowOfWhichAPixelShowsIsLeftAlone) {
    for (const RECT& place : {Place(100, 80, 800, 600), Place(-799, -599, 800, 600), Place(4479, 1079, 800, 600),
                              Place(-100, -100, 9000, 9000), Place(2559, 1599, 10, 10)}) {
        EXPECT_EQ(place, BroughtIntoView(place, Mixed));
    }
}

TEST(PlacementTest, AWindowOfWhichNothingShowsComesToTheNearestWorkArea) {
    // The screen on the right is unplugged.
    EXPECT_EQ(Place(2126, 100, 434, 433), BroughtIntoView(Place(3900, 100, 434, 433), LaptopAlone));
    // One pixel beyond each side.
    EXPECT_EQ(Place(0, 100, 800, 600), BroughtIntoView(Place(-800, 100, 800, 600), LaptopAlone));
    EXPECT_EQ(Place(100, 0, 800, 600), BroughtIntoView(Place(100, -600, 800, 600), LaptopAlone));
    EXPECT_EQ(Place(1760, 100, 800, 600), BroughtIntoView(Place(2560, 100, 800, 600), LaptopAlone));
    // Above the taskbar, not over it.
    EXPECT_EQ(Place(100, 920, 800, 600), BroughtIntoView(Place(100, 1600, 800, 600), LaptopAlone));
    // Under the second screen there is nothing.
    EXPECT_EQ(Place(3800, 680, 500, 400), BroughtIntoView(Place(3800, 1400, 500, 400), Mixed));
    // No larger than where it comes to.
    EXPECT_EQ(Place(0, 0, 2560, 1520), BroughtIntoView(Place(3000, 2000, 4000, 3000), LaptopAlone));
    EXPECT_EQ(Place(-2560, 100, 2500, 300), BroughtIntoView(Place(-9000, 100, 4000, 300), LeftOne));
    // As far away as a stored number can say.
    EXPECT_EQ(Place(1760, 920, 800, 600),
              BroughtIntoView({2147482000, 2147482000, 2147482800, 2147482600}, LaptopAlone));
    EXPECT_EQ(Place(0, 0, 800, 600),
              BroughtIntoView({-2147483647, -2147483647, -2147482847, -2147483047}, LaptopAlone));
}

TEST(PlacementTest, AnEmptyWindowShowsNothing) {
    EXPECT_EQ(Place(100, 100, 0, 0), BroughtIntoView(Place(100, 100, 0, 0), LaptopAlone));
}

TEST(PlacementTest, TheDesktopOfThisMachineHasMonitors) {
    const Desktop desktop = GetDesktop();
    ASSERT_FALSE(desktop.empty());
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), desktop.front().Bounds.right - desktop.front().Bounds.left);
    const HDC screen = GetDC(nullptr);
    EXPECT_EQ(static_cast<UINT>(GetDeviceCaps(screen, LOGPIXELSX)), desktop.front().Dpi);
    ReleaseDC(nullptr, screen);
}
