#include <gtest/gtest.h>
#include <windows.h>

#include <memory>

#include "forms/DialogTemplate.h"
#include "forms/DragCursor.h"
#include "forms/Keyboard.h"
#include "forms/MsgBox.h"
#include "forms/Painting.h"
#include "support/TopWindow.h"

// The smaller parts of what the user sees and presses.
namespace {

SIZE SizeOf(const CursorHandle& cursor) {
    ICONINFO info{};
    EXPECT_TRUE(GetIconInfo(cursor.get(), &info));
    BITMAP bitmap{};
    EXPECT_NE(0, GetObjectW(info.hbmColor, sizeof bitmap, &bitmap));
    DeleteObject(info.hbmColor);
    DeleteObject(info.hbmMask);
    return {bitmap.bmWidth, bitmap.bmHeight};
}

// Suspending its painting takes this style from a window.
bool IsPainted(const Control& control) { return (GetWindowLongW(control.Handle(), GWL_STYLE) & WS_VISIBLE) != 0; }

struct PaintedBox {
    TopWindow Top;
    PictureBox Box;
    PaintedBox() {
        Box.Create(Top.Handle(), 2);
        Box.Move(0, 0, 1000, 1000);
    }
};

}  // namespace

TEST(DragCursor, ShowsTheFirstLineOfWhatIsDragged) {
    const SIZE one = SizeOf(MakeDragCursor(nullptr, L"first line"));
    for (const wchar_t* const more :
         {L"first line\r\nsecond, which is longer", L"first line\nsecond", L"first line\r"}) {
        const SIZE size = SizeOf(MakeDragCursor(nullptr, more));
        EXPECT_EQ(one.cx, size.cx);
        EXPECT_EQ(one.cy, size.cy);
    }
    EXPECT_GT(SizeOf(MakeDragCursor(nullptr, L"first line and more")).cx, one.cx);
    // No longer than forty characters.
    EXPECT_EQ(SizeOf(MakeDragCursor(nullptr, std::wstring(41, L'x'))).cx,
              SizeOf(MakeDragCursor(nullptr, std::wstring(400, L'x'))).cx);
}

TEST(Keyboard, CharactersWithShiftAreOnTheKeyboardToo) {
    EXPECT_TRUE(HasCharacter(L'a'));
    EXPECT_TRUE(HasCharacter(L'A'));
    EXPECT_TRUE(WritesCharacter('A', true, L'A'));
    EXPECT_FALSE(WritesCharacter('A', false, L'A'));
    EXPECT_TRUE(WritesCharacter('A', false, L'a'));
    EXPECT_FALSE(WritesCharacter('A', true, L'a'));
    EXPECT_FALSE(HasCharacter(L'\x4E2D'));
    EXPECT_TRUE(WritesCharacter(VK_DIVIDE, false, L'/'));
    EXPECT_FALSE(WritesCharacter(VK_DIVIDE, false, L'+'));
}

TEST(Painting, WhatEndsUnderABoxIsPaintedAfterIt) {
    PaintedBox painted;
    auto held = std::make_unique<PaintingHeld>(painted.Box);
    EXPECT_FALSE(IsPainted(painted.Box));
    {
        const PaintingResumed resumed;
        EXPECT_TRUE(IsPainted(painted.Box));
    }
    EXPECT_FALSE(IsPainted(painted.Box));
    {
        const PaintingResumed resumed;
        held.reset();
    }
    EXPECT_TRUE(IsPainted(painted.Box));
}

TEST(Painting, GoesOnUnderAMessageBox) {
    static const PaintedBox* under = nullptr;
    static bool seen = false;
    const PaintedBox painted;
    under = &painted;
    seen = false;
    const PaintingHeld held(const_cast<PictureBox&>(painted.Box));
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) WINAPI {
        const HWND box = FindWindowW(L"#32770", L"ScreenPartsTest");
        if (box == nullptr) return;
        seen = IsPainted(under->Box);
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(IDOK, MsgBox(nullptr, L"a question", MB_OK, L"ScreenPartsTest"));
    KillTimer(nullptr, timer);
    EXPECT_TRUE(seen);
    EXPECT_FALSE(IsPainted(painted.Box));
}

TEST(PictureBoxButton, IsPressedByABlankThatWentDownOnIt) {
    PaintedBox painted;
    int clicks = 0;
    painted.Box.SetPushButton();
    painted.Box.Click = [&clicks] { ++clicks; };
    painted.Box.Send(WM_KEYUP, VK_SPACE, 0);  // of a blank that was pressed elsewhere
    EXPECT_EQ(0, clicks);
    painted.Box.Send(WM_KEYDOWN, VK_SPACE, 0);
    painted.Box.Send(WM_KEYUP, VK_SPACE, 0);
    EXPECT_EQ(1, clicks);
    painted.Box.Send(WM_KEYUP, VK_SPACE, 0);
    EXPECT_EQ(1, clicks);
}

TEST(Dialog, OfAWindowAtTheEdgeStaysOnTheScreen) {
    RECT work{};
    ASSERT_TRUE(SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0));
    const auto make = [](int x, int y, int width, int height) {
        return CreateWindowExW(0, L"Static", L"", WS_POPUP, x, y, width, height, nullptr, nullptr, nullptr, nullptr);
    };
    const HWND dialog = make(0, 0, 300, 200);
    for (const POINT at : {POINT{work.left, work.top}, POINT{work.right - 40, work.top},
                           POINT{work.left, work.bottom - 40}, POINT{work.right - 40, work.bottom - 40}}) {
        const HWND owner = make(at.x, at.y, 40, 40);
        CentreOn(dialog, owner);
        DestroyWindow(owner);
        RECT place{};
        GetWindowRect(dialog, &place);
        EXPECT_LE(work.left, place.left);
        EXPECT_LE(work.top, place.top);
        EXPECT_LE(place.right, work.right);
        EXPECT_LE(place.bottom, work.bottom);
        EXPECT_EQ(300, place.right - place.left);
    }
    DestroyWindow(dialog);
}
