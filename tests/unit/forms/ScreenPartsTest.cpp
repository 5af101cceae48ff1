#include <gtest/gtest.h>
#include <windows.h>

#include <memory>

#include "forms/DialogTemplate.h"
#include "forms/Dpi.h"
#include "forms/DragCursor.h"
#include "forms/Keyboard.h"
#include "forms/MsgBox.h"
#include "forms/Painting.h"
#include "support/PatchedFunction.h"
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

namespace {

// The colours of a picture without their opaqueness, row by row from the top.
std::vector<DWORD> PixelsOf(HBITMAP bitmap, SIZE size) {
    std::vector<DWORD> pixels(static_cast<size_t>(size.cx) * static_cast<size_t>(size.cy));
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size.cx;
    info.bmiHeader.biHeight = -size.cy;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const HDC screen = GetDC(nullptr);
    EXPECT_EQ(size.cy, GetDIBits(screen, bitmap, 0, static_cast<UINT>(size.cy), pixels.data(), &info, DIB_RGB_COLORS));
    ReleaseDC(nullptr, screen);
    for (DWORD& pixel : pixels) pixel &= 0xFFFFFF;
    return pixels;
}

DWORD Dib(int systemColour) {
    const COLORREF colour = GetSysColor(systemColour);
    return RGB(GetBValue(colour), GetGValue(colour), GetRValue(colour));
}

}  // namespace

TEST(DragCursor, IsAnArrowWithALabelBelowItAndClearAroundThem) {
    if (DpiOf(nullptr) != 96) GTEST_SKIP() << "the places below are those of 96 dots per inch";
    for (const std::wstring text : {L"", L"some text"}) {
        const CursorHandle cursor = MakeDragCursor(nullptr, text);
        const SIZE size = SizeOf(cursor);
        ICONINFO info{};
        ASSERT_TRUE(GetIconInfo(cursor.get(), &info));
        EXPECT_FALSE(info.fIcon);
        EXPECT_EQ(0U, info.xHotspot);
        EXPECT_EQ(0U, info.yHotspot);
        const std::vector<DWORD> colours = PixelsOf(info.hbmColor, size);
        const std::vector<DWORD> mask = PixelsOf(info.hbmMask, size);
        DeleteObject(info.hbmColor);
        DeleteObject(info.hbmMask);
        const auto at = [&](const std::vector<DWORD>& pixels, LONG x, LONG y) {
            return pixels[static_cast<size_t>(y * size.cx + x)];
        };
        const auto clear = [&](LONG x, LONG y) { return at(mask, x, y) != 0; };
        EXPECT_FALSE(clear(0, 0));
        EXPECT_FALSE(clear(0, 16));
        EXPECT_EQ(0U, at(colours, 0, 0));
        EXPECT_FALSE(clear(2, 8));
        EXPECT_EQ(0xFFFFFFU, at(colours, 2, 8));
        for (const POINT around : {POINT{1, 0}, {15, 8}, {15, 0}, {16, 15}, {5, 25}, {0, 19}, {size.cx - 1, 0}}) {
            EXPECT_TRUE(clear(around.x, around.y)) << around.x << "," << around.y;
            EXPECT_EQ(0U, at(colours, around.x, around.y)) << around.x << "," << around.y;
        }
        EXPECT_EQ(text.empty(), clear(10, 20));
        EXPECT_EQ(text.empty(), clear(20, 28));
        if (text.empty()) {
            EXPECT_EQ(32, size.cx);
            EXPECT_EQ(32, size.cy);
            continue;
        }
        EXPECT_TRUE(clear(9, 20));
        EXPECT_TRUE(clear(10, 19));
        const LONG right = size.cx - 1;
        const LONG bottom = size.cy - 1;
        for (const POINT frame : {POINT{10, 20}, {right, 20}, {10, bottom}, {right, bottom}})
            EXPECT_EQ(Dib(COLOR_INFOTEXT), at(colours, frame.x, frame.y));
        for (const POINT ground : {POINT{11, 21}, {right - 1, 21}, {11, bottom - 1}, {right - 1, bottom - 1}})
            EXPECT_EQ(Dib(COLOR_INFOBK), at(colours, ground.x, ground.y));
    }
}

TEST(DragCursor, ItsArrowIsABlackLineAroundWhite) {
    if (DpiOf(nullptr) != 96) GTEST_SKIP() << "the places below are those of 96 dots per inch";
    static std::wstring points;
    const PatchedFunction polygon(
        L"gdi32.dll", "Polygon",
        reinterpret_cast<void*>(
            static_cast<BOOL(WINAPI*)(HDC, const POINT*, int)>([](HDC context, const POINT* corners, int count) WINAPI {
                EXPECT_EQ(GetStockObject(BLACK_PEN), GetCurrentObject(context, OBJ_PEN));
                EXPECT_EQ(GetStockObject(WHITE_BRUSH), GetCurrentObject(context, OBJ_BRUSH));
                for (int at = 0; at < count; ++at)
                    points += std::to_wstring(corners[at].x) + L"," + std::to_wstring(corners[at].y) + L" ";
                return TRUE;
            })));
    ASSERT_TRUE(polygon);
    points.clear();
    MakeDragCursor(nullptr, L"");
    EXPECT_EQ(L"0,0 0,16 4,12 6,18 9,17 7,11 11,11 ", points);
}

TEST(DragCursor, ItsLabelIsWrittenOnItsGround) {
    if (DpiOf(nullptr) != 96) GTEST_SKIP() << "the places below are those of 96 dots per inch";
    static std::wstring written;
    static UINT planes;
    const PatchedFunction out(L"gdi32.dll", "TextOutW",
                              reinterpret_cast<void*>(static_cast<BOOL(WINAPI*)(HDC, int, int, const wchar_t*, int)>(
                                  [](HDC context, int x, int y, const wchar_t* text, int length) WINAPI {
                                      EXPECT_EQ(TRANSPARENT, GetBkMode(context));
                                      EXPECT_EQ(GetSysColor(COLOR_INFOTEXT), GetTextColor(context));
                                      written = std::to_wstring(x) + L"," + std::to_wstring(y) + L" " +
                                                std::wstring(text, static_cast<size_t>(length));
                                      return TRUE;
                                  })));
    ASSERT_TRUE(out);
    MakeDragCursor(nullptr, L"first\r\nsecond");
    EXPECT_EQ(L"14,22 first", written);
    MakeDragCursor(nullptr, std::wstring(40, L'x'));
    EXPECT_EQ(L"14,22 " + std::wstring(40, L'x'), written);
    MakeDragCursor(nullptr, std::wstring(41, L'x'));
    EXPECT_EQ(L"14,22 " + std::wstring(39, L'x') + L"\x2026", written);
    written.clear();
    MakeDragCursor(nullptr, L"\r\nsecond");
    EXPECT_EQ(L"", written);
    const PatchedFunction bitmap(
        L"gdi32.dll", "CreateBitmap",
        reinterpret_cast<void*>(static_cast<HBITMAP(WINAPI*)(int, int, UINT, UINT, const void*)>(
            [](int, int, UINT count, UINT bits, const void*) WINAPI -> HBITMAP {
                EXPECT_EQ(1U, bits);
                planes = count;
                return nullptr;
            })));
    ASSERT_TRUE(bitmap);
    planes = 0;
    MakeDragCursor(nullptr, L"text");
    EXPECT_EQ(1U, planes);
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
    // The keys of the number pad write the same with and without Shift.
    const std::pair<int, wchar_t> pad[] = {{VK_DIVIDE, L'/'}, {VK_ADD, L'+'}, {VK_SUBTRACT, L'-'}, {VK_NUMPAD0, L'0'}};
    for (const auto& [key, written] : pad) {
        for (const auto& [other, character] : pad) {
            EXPECT_EQ(key == other, WritesCharacter(key, false, character)) << key;
            EXPECT_EQ(key == other, WritesCharacter(key, true, character)) << key;
        }
    }
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
