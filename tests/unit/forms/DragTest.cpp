#include "forms/Drag.h"

#include <gtest/gtest.h>

#include <memory>

#include "forms/Twips.h"
#include "support/Errors.h"
#include "support/PatchedFunction.h"
#include "support/TopWindow.h"

namespace {

HWND under = nullptr;
DWORD now = 0;

// Two boxes that take part in drags and one that is dragged. The test says which of them the mouse is over, and the
// time.
struct Boxes {
    TopWindow Top;
    PictureBox Source;
    PictureBox One;
    PictureBox Two;
    std::wstring Log;
    const PatchedFunction Window{
        L"user32.dll", "WindowFromPoint",
        reinterpret_cast<void*>(static_cast<HWND(WINAPI*)(POINT)>([](POINT) WINAPI { return under; }))};
    const PatchedFunction Clock{L"kernel32.dll", "GetTickCount",
                                reinterpret_cast<void*>(static_cast<DWORD(WINAPI*)()>([]() WINAPI { return now; }))};

    Boxes() {
        EXPECT_TRUE(Window);
        EXPECT_TRUE(Clock);
        Source.Create(Top.Handle(), 2);
        Source.Move(0, 0, 3000, 3000);
        One.Create(Top.Handle(), 3);
        One.Move(3000, 150, 3000, 3000);
        Two.Create(Top.Handle(), 4);
        Two.Move(6000, 300, 3000, 3000);
        Record(One, L"1");
        Record(Two, L"2");
        under = nullptr;
        now = 1000;
    }
    ~Boxes() {
        One.DragOver = nullptr;
        Two.DragOver = nullptr;
        Dragging::Cancel();
        Dragging::Released();
    }
    void Record(Control& box, const std::wstring& name) {
        box.DragOver = [this, name, &box](Control& source, float x, float y, DragState state) {
            EXPECT_EQ(&Source, &source);
            const wchar_t* const states[] = {L" enter ", L" leave ", L" over "};
            Log += name + states[static_cast<int>(state)] + Place(x, y, box) + L"; ";
        };
        box.DragDrop = [this, name, &box](Control& source, float x, float y) {
            EXPECT_EQ(&Source, &source);
            EXPECT_FALSE(Dragging::Active());
            Log += name + L" drop " + Place(x, y, box) + L"; ";
        };
    }
    static std::wstring Place(float x, float y, const Control& box) {
        return std::to_wstring(TwipsToPixels(x, box.Dpi())) + L"," + std::to_wstring(TwipsToPixels(y, box.Dpi()));
    }
    static POINT At(const Control& box, LONG x, LONG y) {
        POINT at{x, y};
        ClientToScreen(box.Handle(), &at);
        return at;
    }
    void MoveOver(const Control& box, LONG x, LONG y) {
        under = box.Handle();
        Dragging::Move(At(box, x, y));
    }
    void Begin(const Control& over, LONG x, LONG y) {
        under = over.Handle();
        Dragging::Begin(Source, At(over, x, y));
        EXPECT_TRUE(Dragging::IsFrom(Source));
    }
    std::wstring Taken() { return std::exchange(Log, {}); }
};

// While one lives, the left button is down for this thread.
class HeldButton {
public:
    HeldButton() { Set(0x80); }
    ~HeldButton() { Set(0); }
    HeldButton(const HeldButton&) = delete;
    HeldButton& operator=(const HeldButton&) = delete;

private:
    static void Set(BYTE state) {
        BYTE keys[256];
        GetKeyboardState(keys);
        keys[VK_LBUTTON] = state;
        SetKeyboardState(keys);
    }
};

HCURSOR Standard(const wchar_t* name) { return LoadCursorW(nullptr, name); }

bool Translate(UINT message, WPARAM key) {
    MSG posted{};
    posted.message = message;
    posted.wParam = key;
    return Dragging::Translate(posted);
}

}  // namespace

TEST(Drag, TellsItsTargetsWhereTheMouseIs) {
    Boxes boxes;
    boxes.Begin(boxes.One, 10, 20);
    EXPECT_EQ(boxes.Source.Handle(), GetCapture());
    EXPECT_EQ(L"1 enter 10,20; 1 over 10,20; ", boxes.Taken());
    boxes.MoveOver(boxes.One, 11, 22);
    EXPECT_EQ(L"1 over 11,22; ", boxes.Taken());
    boxes.MoveOver(boxes.Two, 5, 6);
    EXPECT_EQ(L"1 leave 205,16; 2 enter 5,6; 2 over 5,6; ", boxes.Taken());
    // What takes no part lies in one that does.
    PictureBox child;
    child.Create(boxes.One.Handle(), 9);
    child.Move(1500, 1500, 600, 600);
    under = child.Handle();
    Dragging::Move(Boxes::At(boxes.One, 110, 111));
    EXPECT_EQ(L"2 leave -90,101; 1 enter 110,111; 1 over 110,111; ", boxes.Taken());
    under = nullptr;
    Dragging::Move(Boxes::At(boxes.One, 0, -5));
    EXPECT_EQ(L"1 leave 0,-5; ", boxes.Taken());
    boxes.MoveOver(boxes.Source, 1, 1);
    EXPECT_EQ(L"", boxes.Taken());
    boxes.MoveOver(boxes.Two, 7, 8);
    boxes.Taken();
    Dragging::End();
    EXPECT_EQ(L"2 drop 7,8; ", boxes.Taken());
    EXPECT_FALSE(Dragging::Active());
    EXPECT_EQ(nullptr, GetCapture());
    Dragging::Move(Boxes::At(boxes.One, 10, 20));
    Dragging::End();
    Dragging::Cancel();
    EXPECT_EQ(L"", boxes.Taken());
}

TEST(Drag, WithoutATargetIsDroppedNowhere) {
    Boxes boxes;
    boxes.Begin(boxes.Source, 1, 1);
    Dragging::End();
    // One that hears only of what passes.
    boxes.One.DragDrop = nullptr;
    boxes.Begin(boxes.One, 1, 1);
    Dragging::End();
    EXPECT_EQ(L"1 enter 1,1; 1 over 1,1; ", boxes.Taken());
    // One that hears only of the end.
    boxes.Two.DragOver = nullptr;
    boxes.Begin(boxes.Two, 2, 3);
    Dragging::End();
    EXPECT_EQ(L"2 drop 2,3; ", boxes.Taken());
    boxes.Begin(boxes.Two, 2, 3);
    Dragging::Cancel();
    EXPECT_EQ(L"", boxes.Taken());
}

TEST(Drag, TheCursorSaysWhetherItWouldBeTaken) {
    Boxes boxes;
    int asked = 0;
    bool accepts = false;
    boxes.Two.AcceptsDrag = [&](Control& source) {
        EXPECT_EQ(&boxes.Source, &source);
        ++asked;
        return accepts;
    };
    const auto copies = [] {
        const HCURSOR shown = GetCursor();
        return shown != nullptr && shown != Standard(IDC_NO) && shown != Standard(IDC_ARROW);
    };
    boxes.Begin(boxes.Source, 1, 1);
    EXPECT_EQ(Standard(IDC_NO), GetCursor());
    boxes.MoveOver(boxes.One, 1, 1);
    EXPECT_TRUE(copies());
    boxes.MoveOver(boxes.Two, 1, 1);
    EXPECT_EQ(Standard(IDC_NO), GetCursor());
    boxes.MoveOver(boxes.Two, 2, 1);
    EXPECT_EQ(1, asked) << "on entering";
    boxes.MoveOver(boxes.One, 1, 1);
    accepts = true;
    boxes.MoveOver(boxes.Two, 1, 1);
    EXPECT_TRUE(copies());
    EXPECT_EQ(2, asked);
    under = nullptr;
    Dragging::Move({});
    EXPECT_EQ(Standard(IDC_NO), GetCursor());
    Dragging::End();
    EXPECT_EQ(Standard(IDC_ARROW), GetCursor());
    boxes.Begin(boxes.One, 1, 1);
    EXPECT_TRUE(copies());
    Dragging::Cancel();
    EXPECT_EQ(Standard(IDC_ARROW), GetCursor());
}

TEST(Drag, HasTheKeyboardAndEscapeEndsIt) {
    Boxes boxes;
    EXPECT_FALSE(Translate(WM_KEYDOWN, VK_ESCAPE));
    boxes.Begin(boxes.One, 1, 2);
    boxes.Taken();
    EXPECT_FALSE(Translate(WM_KEYFIRST - 1, VK_ESCAPE));
    EXPECT_FALSE(Translate(WM_KEYLAST + 1, VK_ESCAPE));
    EXPECT_FALSE(Translate(WM_MOUSEMOVE, VK_ESCAPE));
    EXPECT_TRUE(Translate(WM_KEYDOWN, 'A'));
    EXPECT_TRUE(Translate(WM_KEYUP, VK_ESCAPE));
    EXPECT_TRUE(Translate(WM_SYSKEYDOWN, VK_ESCAPE));
    EXPECT_TRUE(Translate(WM_KEYLAST, VK_ESCAPE));
    EXPECT_TRUE(Dragging::Active());
    EXPECT_EQ(L"", boxes.Taken());
    EXPECT_TRUE(Translate(WM_KEYDOWN, VK_ESCAPE));
    EXPECT_FALSE(Dragging::Active());
    EXPECT_EQ(L"1 leave 1,2; ", boxes.Taken());
}

TEST(Drag, IsRepeatedWhileItIsHeldStill) {
    Boxes boxes;
    Dragging::Repeat();
    now = 0xFFFFFFF0;  // the clock of the system begins again at 0
    boxes.Begin(boxes.One, 1, 2);
    boxes.Taken();
    now += Dragging::RepeatInterval - 1;
    Dragging::Repeat();
    EXPECT_EQ(L"", boxes.Taken());
    ++now;
    Dragging::Repeat();
    EXPECT_EQ(L"1 over 1,2; ", boxes.Taken());
    Dragging::Repeat();
    EXPECT_EQ(L"", boxes.Taken());
    now += Dragging::RepeatInterval + 1;
    Dragging::Repeat();
    EXPECT_EQ(L"1 over 1,2; ", boxes.Taken());
    Dragging::End();
    boxes.Taken();
    now += 1000;
    Dragging::Repeat();
    EXPECT_EQ(L"", boxes.Taken());
}

TEST(Drag, BeginsWhereTheMouseIsOnceItHasLeftThePlaceOfThePress) {
    Boxes boxes;
    boxes.Source.MouseMove = [&](int button, int, float, float) {
        if (button == MouseButton::Left) boxes.Source.Drag(DragAction::Begin);
    };
    const int across = GetSystemMetrics(SM_CXDRAG);
    const int down = GetSystemMetrics(SM_CYDRAG);
    const auto begins = [&](UINT press, int x, int y) {
        under = boxes.Source.Handle();
        boxes.Source.Send(press, MK_LBUTTON, MAKELPARAM(50, 60));
        boxes.Source.Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(50 + x, 60 + y));
        const bool begun = Dragging::Active();
        boxes.Source.Send(WM_LBUTTONUP, 0, MAKELPARAM(50 + x, 60 + y));
        EXPECT_FALSE(Dragging::Active());
        return begun;
    };
    for (const UINT press : {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}) {
        EXPECT_FALSE(begins(press, across - 1, down - 1));
        EXPECT_FALSE(begins(press, 1 - across, 1 - down));
        EXPECT_TRUE(begins(press, across, 0));
        EXPECT_TRUE(begins(press, -across, 0));
        EXPECT_TRUE(begins(press, 0, down));
        EXPECT_TRUE(begins(press, 0, -down));
    }
    // Without a press it begins wherever the mouse was seen last, whichever message said so.
    boxes.Record(boxes.Source, L"s");
    boxes.Source.MouseMove = nullptr;
    int x = 20;
    for (const UINT message : {WM_MOUSEMOVE, WM_LBUTTONUP, WM_RBUTTONDOWN, WM_RBUTTONUP, WM_RBUTTONDBLCLK,
                               WM_MBUTTONDOWN, WM_MBUTTONUP, WM_MBUTTONDBLCLK}) {
        ++x;
        under = nullptr;
        boxes.Source.Send(message, 0, MAKELPARAM(x, 30));
        boxes.Source.Send(WM_MOUSEWHEEL, 0, MAKELPARAM(1, 2));  // its place is that on the screen
        boxes.Taken();
        under = boxes.Source.Handle();
        boxes.Source.Drag(DragAction::Begin);
        const std::wstring place = std::to_wstring(x) + L",30; ";
        EXPECT_EQ(L"s enter " + place + L"s over " + place, boxes.Taken()) << message;
        boxes.Source.Drag(DragAction::Cancel);
        EXPECT_FALSE(Dragging::Active());
    }
}

TEST(Drag, HasTheMouse) {
    Boxes boxes;
    std::wstring mouse;
    boxes.Source.MouseDown = [&](int, int, float, float) { mouse += L"down "; };
    boxes.Source.MouseMove = [&](int, int, float, float) { mouse += L"move "; };
    boxes.Source.MouseUp = [&](int button, int, float x, float) {
        mouse += L"up " + std::to_wstring(button) + L" " + std::to_wstring(TwipsToPixels(x, boxes.Source.Dpi())) + L" ";
    };
    boxes.Begin(boxes.One, 1, 2);
    boxes.Taken();
    for (const UINT message :
         {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, WM_RBUTTONDOWN, WM_RBUTTONDBLCLK, WM_MBUTTONDOWN, WM_MBUTTONDBLCLK}) {
        boxes.Source.Send(message, MK_LBUTTON, MAKELPARAM(201, 13));
    }
    EXPECT_EQ(L"", mouse);
    EXPECT_EQ(L"", boxes.Taken());
    boxes.Source.Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(203, 14));
    EXPECT_EQ(L"", mouse);
    EXPECT_EQ(L"1 over 3,4; ", boxes.Taken());
    boxes.Source.Send(WM_RBUTTONUP, MK_LBUTTON, MAKELPARAM(204, 15));
    boxes.Source.Send(WM_MBUTTONUP, MK_LBUTTON, MAKELPARAM(205, 16));
    EXPECT_EQ(L"1 over 4,5; 1 over 5,6; ", boxes.Taken());
    EXPECT_EQ(L"up 2 204 up 4 205 ", std::exchange(mouse, {}));
    EXPECT_TRUE(Dragging::Active());
    boxes.Source.Send(WM_LBUTTONUP, 0, MAKELPARAM(206, 17));
    EXPECT_EQ(L"up 1 206 ", std::exchange(mouse, {}));
    EXPECT_EQ(L"1 over 6,7; 1 leave 6,7; ", boxes.Taken()) << "nobody dropped it";
    EXPECT_FALSE(Dragging::Active());
    boxes.Source.MouseUp = [&](int, int, float, float) { boxes.Source.Drag(DragAction::End); };
    boxes.Begin(boxes.One, 1, 2);
    boxes.Taken();
    boxes.Source.Send(WM_LBUTTONUP, 0, MAKELPARAM(207, 18));
    EXPECT_EQ(L"1 over 7,8; 1 drop 7,8; ", boxes.Taken());
}

TEST(Drag, EndsWhenTheMouseIsTakenAway) {
    Boxes boxes;
    boxes.Begin(boxes.One, 1, 2);
    boxes.Source.Send(WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(boxes.Source.Handle()));
    EXPECT_TRUE(Dragging::Active());
    boxes.Taken();
    boxes.Source.Send(WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(boxes.One.Handle()));
    EXPECT_FALSE(Dragging::Active());
    EXPECT_EQ(L"1 leave 1,2; ", boxes.Taken());
    boxes.Begin(boxes.One, 1, 2);
    boxes.Taken();
    boxes.Source.Send(WM_CANCELMODE);
    EXPECT_FALSE(Dragging::Active());
    EXPECT_EQ(L"1 leave 1,2; ", boxes.Taken());
}

TEST(Drag, AnotherOneBeginsOnlyAfterTheButtonWasUp) {
    Boxes boxes;
    for (const bool dropped : {false, true}) {
        {
            const HeldButton held;
            boxes.Begin(boxes.One, 1, 2);
            if (dropped) {
                Dragging::End();
            } else {
                Dragging::Cancel();
            }
            Dragging::Begin(boxes.Source, {});
            EXPECT_FALSE(Dragging::Active());
            boxes.Source.Send(WM_MOUSEMOVE, MK_LBUTTON, 0);
            Dragging::Begin(boxes.Source, {});
            EXPECT_FALSE(Dragging::Active());
        }
        boxes.Source.Send(WM_MOUSEMOVE, 0, 0);
        boxes.Begin(boxes.One, 1, 2);
        Dragging::Cancel();
    }
}

TEST(Drag, IsEndedByItsSourceAlone) {
    Boxes boxes;
    boxes.Begin(boxes.One, 1, 2);
    boxes.One.Drag(DragAction::End);
    boxes.One.Drag(DragAction::Cancel);
    boxes.One.Drag(DragAction::Begin);
    Dragging::Begin(boxes.Two, {});
    EXPECT_TRUE(Dragging::IsFrom(boxes.Source));
    EXPECT_EQ(L"1 enter 1,2; 1 over 1,2; ", boxes.Taken());
    boxes.Source.Drag(DragAction::End);
    EXPECT_FALSE(Dragging::Active());
    EXPECT_EQ(L"1 drop 1,2; ", boxes.Taken());
}

TEST(Drag, AnEventMayEndIt) {
    Boxes boxes;
    boxes.Begin(boxes.One, 1, 2);
    boxes.One.DragOver = [](Control&, float, float, DragState) { Dragging::Cancel(); };
    boxes.Taken();
    boxes.MoveOver(boxes.Two, 1, 2);
    EXPECT_EQ(L"", boxes.Taken());
    EXPECT_EQ(Standard(IDC_ARROW), GetCursor());
    int events = 0;
    boxes.One.DragOver = [&](Control&, float, float, DragState state) {
        ++events;
        if (state == DragState::Enter) Dragging::Cancel();
    };
    under = boxes.One.Handle();
    Dragging::Begin(boxes.Source, {});
    EXPECT_FALSE(Dragging::Active());
    EXPECT_EQ(2, events) << "enter and leave";
    EXPECT_EQ(Standard(IDC_ARROW), GetCursor());
}

TEST(Drag, WhatAnEventLetsOutComesOutOfTheMessage) {
    Boxes boxes;
    boxes.Begin(boxes.Source, 1, 2);
    boxes.One.DragOver = [](Control&, float, float, DragState) { RaiseError(42); };
    under = boxes.One.Handle();
    EXPECT_EQ(42, NumberOf([&] { boxes.Source.Send(WM_MOUSEMOVE, MK_LBUTTON, 0); }));
    EXPECT_TRUE(Dragging::Active());
}

TEST(Drag, ForgetsWhatGoes) {
    Boxes boxes;
    auto passing = std::make_unique<PictureBox>();
    passing->Create(boxes.Top.Handle(), 5);
    passing->DragOver = [](Control&, float, float, DragState) {};
    boxes.Begin(*passing, 1, 2);
    passing.reset();
    EXPECT_TRUE(Dragging::IsFrom(boxes.Source));
    boxes.MoveOver(boxes.One, 1, 2);
    EXPECT_EQ(L"1 enter 1,2; 1 over 1,2; ", boxes.Taken());
    Dragging::Cancel();
    boxes.Taken();
    passing = std::make_unique<PictureBox>();
    passing->Create(boxes.Top.Handle(), 5);
    under = nullptr;
    Dragging::Begin(*passing, {});
    EXPECT_TRUE(Dragging::IsFrom(*passing));
    passing.reset();
    EXPECT_FALSE(Dragging::Active());
    // A window that went is told nothing more.
    struct Going : PictureBox {
        using PictureBox::Destroy;
    } going;
    going.Create(boxes.Top.Handle(), 5);
    std::vector<DragState> told;
    going.DragOver = [&](Control&, float, float, DragState state) { told.push_back(state); };
    boxes.Begin(going, 1, 2);
    going.Destroy();
    boxes.MoveOver(boxes.One, 1, 2);
    EXPECT_EQ((std::vector<DragState>{DragState::Enter, DragState::Over}), told);
    Dragging::Cancel();
}
