#include <gtest/gtest.h>
#include <windowsx.h>

#include "forms/EdgeScroll.h"
#include "forms/WindowClass.h"
#include "support/TopWindow.h"

// ---- where a menu opens

namespace {

LRESULT CALLBACK KeepsTheButton(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return message == WM_RBUTTONUP ? 0 : DefWindowProcW(window, message, wParam, lParam);
}

// A control of a class that asks for a menu when the right button comes up, or of one that keeps it for itself.
struct Sample : Control {
    TopWindow Top;
    std::vector<POINT> Menus;
    std::wstring Order;
    explicit Sample(bool keeps) {
        const wchar_t* const name = keeps ? L"brvKeepsTheButton" : L"brvLeavesTheButton";
        RegisterWindowClass(name, keeps ? &KeepsTheButton : &DefWindowProcW, 0);
        CreateWindowOf(name, WS_VISIBLE | WS_HSCROLL, 0, Top.Handle(), 7, L"");
        Move(300, 300, 3000, 3000);
        ContextMenu = [this](const POINT& at) {
            Menus.push_back(at);
            Order += L'm';
        };
        MouseDown = [this](int, int, float, float) { Order += L'd'; };
        MouseUp = [this](int, int, float, float) { Order += L'u'; };
    }
    ~Sample() override { Destroy(); }
    POINT OnScreen(LONG x, LONG y) const {
        POINT at{x, y};
        ClientToScreen(Handle(), &at);
        return at;
    }
};

}  // namespace

TEST(ContextMenu, OpensOnceWhenTheRightButtonComesUpWhateverTheClassDoes) {
    for (const bool keeps : {false, true}) {
        Sample sample(keeps);
        sample.Send(WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(10, 20));
        EXPECT_EQ(0U, sample.Menus.size());
        sample.Send(WM_RBUTTONUP, 0, MAKELPARAM(12, 21));
        ASSERT_EQ(1U, sample.Menus.size()) << keeps;
        const POINT at = sample.OnScreen(12, 21);
        EXPECT_EQ(at.x, sample.Menus[0].x);
        EXPECT_EQ(at.y, sample.Menus[0].y);
        EXPECT_EQ(L"dum", sample.Order);
    }
}

TEST(ContextMenu, OpensByTheKeyInTheControlAndNotOverAScrollBar) {
    Sample sample(false);
    sample.Send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(sample.Handle()), -1);
    sample.Send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(sample.Handle()), MAKELPARAM(-1, -1));
    ASSERT_EQ(2U, sample.Menus.size());
    RECT bounds;
    GetWindowRect(sample.Handle(), &bounds);
    EXPECT_TRUE(PtInRect(&bounds, sample.Menus[0]));
    RECT client;
    GetClientRect(sample.Handle(), &client);
    const POINT bar = sample.OnScreen(5, client.bottom + 4);
    ASSERT_TRUE(PtInRect(&bounds, bar));
    sample.Send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(sample.Handle()), MAKELPARAM(bar.x, bar.y));
    EXPECT_EQ(2U, sample.Menus.size());
}

// ---- scrolling at the edges

namespace {

constexpr RECT Area{0, 0, 200, 100};
constexpr int Inset = 11;

std::wstring Steps(EdgeScroll& scroll, POINT at, DWORD from, DWORD to, DWORD every) {
    std::wstring steps;
    for (DWORD now = from; now != to; now += every) {
        const EdgeScroll::Step step = scroll.At(at, Area, Inset, now);
        if (step.Across != 0 || step.Down != 0)
            steps += std::to_wstring(now - from) + L":" + std::to_wstring(step.Across) + L"," +
                     std::to_wstring(step.Down) + L" ";
    }
    return steps;
}

}  // namespace

TEST(EdgeScroll, ScrollsAfterAMomentAndByStepsWhicheverWayTheEdgeLies) {
    const struct {
        POINT At;
        const wchar_t* Steps;
    } cases[] = {
        {{100, 50}, L""},
        {{100, 10}, L"50:0,-1 100:0,-1 150:0,-1 "},
        {{100, 11}, L""},
        {{100, 89}, L"50:0,1 100:0,1 150:0,1 "},
        {{100, 88}, L""},
        {{100, 300}, L"50:0,1 100:0,1 150:0,1 "},  // over a scroll bar, or a border
        {{3, 50}, L"50:-1,0 100:-1,0 150:-1,0 "},
        {{199, 99}, L"50:1,1 100:1,1 150:1,1 "},
    };
    for (const auto& tried : cases) {
        EdgeScroll scroll;
        EXPECT_EQ(tried.Steps, Steps(scroll, tried.At, 1000, 1200, 10)) << tried.At.x << "," << tried.At.y;
        EdgeScroll late;  // the clock of the system begins again at 0
        EXPECT_EQ(tried.Steps, Steps(late, tried.At, 0xFFFFFFB0, 0xFFFFFFB0 + 200, 10));
    }
}

TEST(EdgeScroll, WaitsAgainWhenTheMouseWasElsewhere) {
    EdgeScroll scroll;
    EXPECT_EQ(L"50:0,-1 100:0,-1 ", Steps(scroll, {100, 5}, 0, 150, 10));
    scroll.At({100, 50}, Area, Inset, 155);
    EXPECT_EQ(L"50:0,-1 ", Steps(scroll, {100, 5}, 160, 260, 10));
    // A drag that came back much later was elsewhere too.
    EXPECT_EQ(L"50:0,-1 ", Steps(scroll, {100, 5}, 5000, 5100, 10));
}

TEST(EdgeScroll, WhatIsAllEdgeDoesNotScroll) {
    EdgeScroll scroll;
    const RECT low{0, 0, 200, 30};
    for (DWORD now = 0; now < 500; now += 10) {
        const EdgeScroll::Step step = scroll.At({100, 2}, low, Inset, now);
        EXPECT_EQ(0, step.Down);
    }
}
