#include "forms/Events.h"

#include <gtest/gtest.h>

#include "forms/CommandButton.h"
#include "forms/PictureBox.h"
#include "support/Errors.h"
#include "support/TopWindow.h"

namespace {

struct Page {
    TopWindow Top;
    PictureBox Box;
    CommandButton Button;
    Page() {
        Box.Create(Top.Handle(), 1);
        Button.Create(Box.Handle(), 2, L"Press");
        Box.Move(0, 0, 1500, 1500);
        Button.Move(0, 0, 1500, 300);  // a click hits a button that has a size only
    }
};

}  // namespace

TEST(Events, WhatAnEventLetsOutComesFromTheCallThatRaisedIt) {
    Page page;
    page.Button.Click = [] { RaiseError(77); };
    EXPECT_EQ(77, NumberOf([&] { page.Button.Send(BM_CLICK); }));
    // Nothing of it is left behind.
    page.Button.Click = nullptr;
    EXPECT_EQ(0, NumberOf([&] { page.Button.Send(BM_CLICK); }));
}

TEST(Events, TheFirstErrorWins) {
    Page page;
    int calls = 0;
    page.Button.Click = [&] { RaiseError(++calls); };
    Events::Call call;
    SendMessageW(page.Button.Handle(), BM_CLICK, 0, 0);
    SendMessageW(page.Button.Handle(), BM_CLICK, 0, 0);
    EXPECT_EQ(1, NumberOf([&] { call.Rethrow(); }));
    EXPECT_EQ(0, NumberOf([&] { call.Rethrow(); }));
    EXPECT_EQ(2, calls);
}

// A host that pumps messages inside a call of ours: what comes of them goes to the loop, not to our next call.
TEST(Events, ACallThrowsWhatWasKeptInsideItAndNothingOlder) {
    Page page;
    page.Button.Click = [] { RaiseError(77); };
    Events::Call loop;
    SendMessageW(page.Button.Handle(), BM_CLICK, 0, 0);
    EXPECT_EQ(0, NumberOf([&] { page.Box.Send(WM_NULL); }));
    {
        const Events::Call between;
        SendMessageW(page.Button.Handle(), BM_CLICK, 0, 0);
    }
    EXPECT_EQ(77, NumberOf([&] { loop.Rethrow(); }));
    EXPECT_EQ(0, NumberOf([&] { loop.Rethrow(); }));
}

TEST(Events, WhatACallDidNotThrowGoesToTheOneAroundIt) {
    Page page;
    page.Button.Click = [] { RaiseError(77); };
    Events::Call loop;
    {
        const Events::Call between;
        SendMessageW(page.Button.Handle(), BM_CLICK, 0, 0);
    }
    EXPECT_EQ(77, NumberOf([&] { loop.Rethrow(); }));
    // Unless another one is on its way there already.
    EXPECT_EQ(5, NumberOf([&] {
                  const Events::Call between;
                  SendMessageW(page.Button.Handle(), BM_CLICK, 0, 0);
                  RaiseError(5);
              }));
    EXPECT_EQ(0, NumberOf([&] { loop.Rethrow(); }));
}

TEST(Events, WhatNobodyWaitsForIsDropped) {
    Page page;
    page.Button.Click = [] { RaiseError(77); };
    SendMessageW(page.Button.Handle(), BM_CLICK, 0, 0);
    Events::Call call;
    EXPECT_EQ(0, NumberOf([&] { call.Rethrow(); }));
    EXPECT_EQ(0, NumberOf([&] { page.Box.Send(WM_NULL); }));
}

TEST(Events, WhatTheOutermostCallKeptAndNobodyThrewIsDropped) {
    {
        Events::Call call;
        Events::Raise([] { RaiseError(77); });
    }
    Events::Call call;
    EXPECT_EQ(0, NumberOf([&] { call.Rethrow(); }));
}

// Any window of the thread is asked whether it is a control of ours, under the mouse the host's too.
TEST(Events, AnAnswerOfAForeignWindowIsNoControl) {
    const HWND foreign =
        CreateWindowExW(0, L"Static", L"host", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    SetWindowLongPtrW(foreign, GWLP_WNDPROC,
                      reinterpret_cast<LONG_PTR>(+[](HWND, UINT, WPARAM, LPARAM) WINAPI -> LRESULT { return 1; }));
    EXPECT_EQ(nullptr, Control::From(foreign));
    Page page;
    EXPECT_EQ(&page.Button, Control::From(page.Button.Handle()));
    EXPECT_EQ(nullptr, Control::From(foreign));
    DestroyWindow(foreign);
}

TEST(Events, MessagesThatPointToNothingAreNobodys) {
    Page page;
    for (const LPARAM nowhere : {0, 1, 0xFFFF}) {
        for (const UINT message : {WM_NOTIFY, WM_DRAWITEM, WM_COMMAND, WM_CTLCOLORSTATIC}) {
            EXPECT_EQ(0, NumberOf([&] { page.Box.Send(message, 0, nowhere); })) << message;
        }
    }
}

TEST(Events, ASetterPassesOnWhatItsEventLetsOut) {
    Page page;
    page.Box.Resize = [] { RaiseError(5); };
    EXPECT_EQ(5, NumberOf([&] { page.Box.Move(0, 0, 3000, 3000); }));
}

TEST(Events, ReachTheControlWhenAnotherProcedureLiesOverIts) {
    Page page;
    int clicks = 0;
    page.Button.Click = [&] { ++clicks; };
    static WNDPROC below;
    below = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
        page.Button.Handle(), GWLP_WNDPROC,
        reinterpret_cast<LONG_PTR>(+[](HWND w, UINT m, WPARAM a, LPARAM b)
                                        WINAPI -> LRESULT { return CallWindowProcW(below, w, m, a, b); })));
    page.Button.Send(BM_CLICK);
    EXPECT_EQ(1, clicks);
}

TEST(Control, ASizeIsNeverNegative) {
    Page page;
    page.Box.Move(-150, -150, -300, -450);
    EXPECT_EQ(-150, page.Box.Left());
    EXPECT_EQ(-150, page.Box.Top());
    EXPECT_EQ(0, page.Box.Width());
    EXPECT_EQ(0, page.Box.Height());
}

TEST(Events, MouseEventsCarryButtonsShiftAndTwips) {
    Page page;
    page.Box.Move(0, 0, 3000, 3000);
    struct Seen {
        int Button, Shift;
        float X, Y;
    } seen{};
    page.Box.MouseMove = [&](int button, int shift, float x, float y) { seen = {button, shift, x, y}; };
    page.Box.Send(WM_MOUSEMOVE, MK_LBUTTON | MK_RBUTTON, MAKELPARAM(10, static_cast<WORD>(-4)));
    EXPECT_EQ(MouseButton::Left | MouseButton::Right, seen.Button);
    EXPECT_FLOAT_EQ(10 * 1440.0F / page.Box.Dpi(), seen.X);
    EXPECT_FLOAT_EQ(-4 * 1440.0F / page.Box.Dpi(), seen.Y);
    page.Box.Send(WM_MOUSEMOVE, MK_LBUTTON | MK_MBUTTON, MAKELPARAM(10, 4));
    EXPECT_EQ(MouseButton::Left | MouseButton::Middle, seen.Button);
}
