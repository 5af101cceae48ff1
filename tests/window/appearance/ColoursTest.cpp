#include "Appearance.h"

#include <uxtheme.h>

#include <array>
#include <cmath>
#include <map>
#include <ranges>
#include <set>

namespace {

// How many pixels of each colour there are.
std::map<COLORREF, int> PixelsOf(HWND window) {
    RECT client;
    GetClientRect(window, &client);
    const HDC context = GetDC(window);
    const HDC memory = CreateCompatibleDC(context);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), client.right, -client.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, client.right, client.bottom, context, 0, 0, SRCCOPY);
    GdiFlush();
    std::map<COLORREF, int> pixels;
    const auto* pixel = static_cast<const DWORD*>(bits);
    for (int at = 0; at < client.right * client.bottom; ++at) {
        ++pixels[RGB((pixel[at] >> 16) & 0xFF, (pixel[at] >> 8) & 0xFF, pixel[at] & 0xFF)];
    }
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(window, context);
    return pixels;
}

COLORREF MostOf(const std::map<COLORREF, int>& pixels) {
    return std::ranges::max_element(pixels, {}, [](const auto& entry) { return entry.second; })->first;
}

// Paints everything and lets the queue run empty.
void Paint() {
    RedrawWindow(EditorWindow::Find(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    MSG message;
    while (PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE)) DispatchMessageW(&message);
}

// Other system colours while it lives.
class OtherColours {
public:
    explicit OtherColours(const std::map<int, COLORREF>& colours) {
        for (const auto& [index, colour] : colours) {
            indices_.push_back(index);
            former_.push_back(GetSysColor(index));
            values_.push_back(colour);
        }
        SetSysColors(static_cast<int>(indices_.size()), indices_.data(), values_.data());
    }
    ~OtherColours() { SetSysColors(static_cast<int>(indices_.size()), indices_.data(), former_.data()); }
    OtherColours(const OtherColours&) = delete;
    OtherColours& operator=(const OtherColours&) = delete;

private:
    std::vector<int> indices_;
    std::vector<COLORREF> former_;
    std::vector<COLORREF> values_;
};

class ColoursTest : public AppearanceFixture {
protected:
    // What the container says the control is to draw with.
    struct Pair {
        COLORREF Text, Ground, Brush;
    };
    static Pair Told(HWND control, UINT message) {
        const HDC screen = GetDC(nullptr);
        const HDC context = CreateCompatibleDC(screen);
        const HBITMAP bitmap = CreateCompatibleBitmap(screen, 4, 4);
        const HGDIOBJ before = SelectObject(context, bitmap);
        const auto brush = reinterpret_cast<HBRUSH>(SendMessageW(
            GetParent(control), message, reinterpret_cast<WPARAM>(context), reinterpret_cast<LPARAM>(control)));
        EXPECT_NE(nullptr, brush);
        const RECT all{0, 0, 4, 4};
        FillRect(context, &all, brush);
        const Pair pair{GetTextColor(context), GetBkColor(context), GetPixel(context, 2, 2)};
        SelectObject(context, before);
        DeleteObject(bitmap);
        DeleteDC(context);
        ReleaseDC(nullptr, screen);
        return pair;
    }
    static void ExpectSystemColours(const char* what, const Pair& pair, int text, int ground) {
        EXPECT_EQ(GetSysColor(text), pair.Text) << what;
        EXPECT_EQ(GetSysColor(ground), pair.Ground) << what;
        EXPECT_EQ(GetSysColor(ground), pair.Brush) << what;
    }
    // The control's ground and its text, both as the system has them.
    static void ExpectPainted(const char* what, HWND control, int text, int ground) {
        const auto pixels = PixelsOf(control);
        EXPECT_EQ(GetSysColor(ground), MostOf(pixels)) << what;
        EXPECT_TRUE(pixels.contains(GetSysColor(text))) << what << " shows no text in its colour";
        // What smooths the edges of letters lies between the two, or belongs to other things of the system.
        EXPECT_GE(Contrast(GetSysColor(text), GetSysColor(ground)), 4.5) << what;
    }
};

}  // namespace

TEST_F(ColoursTest, TextAndGroundBelongTogether) {
    Inside([] {
        // One that somebody made, whose texts can be read on their own ground only.
        const OtherColours odd({{COLOR_WINDOW, RGB(0, 0, 64)},
                                {COLOR_WINDOWTEXT, RGB(255, 255, 0)},
                                {COLOR_BTNFACE, RGB(255, 255, 192)},
                                {COLOR_BTNTEXT, RGB(64, 0, 0)}});
        ExpectSystemColours("description", Told(Description(), WM_CTLCOLORSTATIC), COLOR_BTNTEXT, COLOR_BTNFACE);
        for (const int list : {1, 3}) {
            ExpectSystemColours("list", Told(View(list), WM_CTLCOLORLISTBOX), COLOR_WINDOWTEXT, COLOR_WINDOW);
        }
        for (const int tree : {0, 2}) {
            for (const UINT message : {TVM_GETBKCOLOR, TVM_GETTEXTCOLOR}) {
                const auto colour = static_cast<COLORREF>(SendMessageW(View(tree), message, 0, 0));
                const int index = message == TVM_GETBKCOLOR ? COLOR_WINDOW : COLOR_WINDOWTEXT;
                // No colour of its own: whatever the system has.
                EXPECT_TRUE(colour == CLR_NONE || colour == GetSysColor(index));
            }
        }
        CHARFORMAT2W format{};
        format.cbSize = sizeof format;
        SendMessageW(EditorWindow::Editor(), EM_GETCHARFORMAT, SCF_DEFAULT, reinterpret_cast<LPARAM>(&format));
        EXPECT_NE(0U, format.dwEffects & CFE_AUTOCOLOR);
    });
}

TEST_F(ColoursTest, WhatIsPaintedIsOfTheScheme) {
    if (IsThemeActive()) GTEST_SKIP() << "a theme paints in colours of its own";
    Inside(L"SELECT HHH\r\nFROM LLLL", [] {
        SetWindowPos(EditorWindow::Find(), HWND_TOPMOST, 10, 10, 0, 0, SWP_NOSIZE);
        SendMessageW(Tab(1), BM_CLICK, 0, 0);
        SendMessageW(View(1), LB_SETCURSEL, 1, 0);
        SendMessageW(Page(1), WM_COMMAND, MAKEWPARAM(IdView + 1, LBN_SELCHANGE), reinterpret_cast<LPARAM>(View(1)));
        SetFocus(EditorWindow::Editor());
        Paint();
        ExpectPainted("editor", EditorWindow::Editor(), COLOR_WINDOWTEXT, COLOR_WINDOW);
        ExpectPainted("list", View(1), COLOR_WINDOWTEXT, COLOR_WINDOW);
        ExpectPainted("selected row", View(1), COLOR_HIGHLIGHT, COLOR_WINDOW);
        ExpectPainted("description", Description(), COLOR_BTNTEXT, COLOR_BTNFACE);
        ExpectPainted("toolbar", Toolbar(), COLOR_BTNTEXT, COLOR_BTNFACE);
        ExpectPainted("status bar", StatusBar(), COLOR_BTNTEXT, COLOR_BTNFACE);
        ExpectPainted("button", Tab(2), COLOR_BTNTEXT, COLOR_BTNFACE);
        ExpectPainted("collapse button", Control(IdHide), COLOR_BTNTEXT, COLOR_BTNFACE);
        SendMessageW(Tab(0), BM_CLICK, 0, 0);
        SetFocus(EditorWindow::Editor());
        Paint();
        ExpectPainted("tree", View(0), COLOR_WINDOWTEXT, COLOR_WINDOW);
    });
}

namespace {

void ExpectThatTheButtonInFrontIsToldApart(int front) {
    SCOPED_TRACE(front);
    SetFocus(EditorWindow::Editor());
    Paint();
    const auto tab = [](int index) { return EditorWindow::Control(IdLeftButton + index); };
    const auto shown = PixelsOf(tab(front));
    for (int index = 0; index < 4; ++index) {
        const LRESULT state = SendMessageW(tab(index), BM_GETCHECK, 0, 0);
        EXPECT_EQ(index == front ? BST_CHECKED : BST_UNCHECKED, state) << index;
        if (index == front) continue;
        EXPECT_NE(MostOf(shown), MostOf(PixelsOf(tab(index)))) << index;
    }
    if (IsThemeActive()) return;
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), MostOf(shown));
    EXPECT_TRUE(shown.contains(GetSysColor(COLOR_HIGHLIGHTTEXT))) << "no caption in its colour";
}

}  // namespace

TEST_F(ColoursTest, TheButtonOfThePageInFrontIsToldApart) {
    Inside([] {
        SetWindowPos(EditorWindow::Find(), HWND_TOPMOST, 10, 10, 0, 0, SWP_NOSIZE);
        ExpectThatTheButtonInFrontIsToldApart(0);
        for (const int page : {1, 2, 3, 0}) {
            SendMessageW(Tab(page), BM_CLICK, 0, 0);
            ExpectThatTheButtonInFrontIsToldApart(page);
        }
        // Pressed, and the mouse is drawn away before it is let go: nothing was chosen.
        for (const int page : {0, 2}) {
            SendMessageW(Tab(page), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
            SendMessageW(Tab(page), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, 500));
            SendMessageW(Tab(page), WM_LBUTTONUP, 0, MAKELPARAM(5, 500));
            ExpectThatTheButtonInFrontIsToldApart(0);
        }
        // The focus comes and goes by the keyboard.
        for (const int page : {0, 1}) {
            SetFocus(Tab(page));
            ExpectThatTheButtonInFrontIsToldApart(0);
        }
    });
}

TEST_F(ColoursTest, TheBorderOfTheEditorIsThatOfItsNeighbours) {
    Inside([] {
        SetWindowPos(EditorWindow::Find(), HWND_TOPMOST, 10, 10, 0, 0, SWP_NOSIZE);
        SetFocus(View(0));
        RedrawWindow(EditorWindow::Find(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
        Paint();
        const auto border = [](HWND window) {
            std::vector<COLORREF> colours;
            const HDC context = GetWindowDC(window);
            const int right = WidthOf(window) - 1;
            const int bottom = HeightOf(window) - 1;
            for (int depth = 0; depth < 2; ++depth) {
                colours.push_back(GetPixel(context, depth, bottom / 2));
                colours.push_back(GetPixel(context, right / 2, depth));
                colours.push_back(GetPixel(context, right - depth, bottom / 2));
                colours.push_back(GetPixel(context, right / 2, bottom - depth));
            }
            ReleaseDC(window, context);
            return colours;
        };
        EXPECT_EQ(border(View(0)), border(EditorWindow::Editor()));
    });
}

TEST_F(ColoursTest, TheDescriptionHasRoomAroundItsText) {
    Inside([] {
        SetWindowPos(EditorWindow::Find(), HWND_TOPMOST, 10, 10, 0, 0, SWP_NOSIZE);
        SendMessageW(Tab(1), BM_CLICK, 0, 0);
        Paint();
        RECT client;
        GetClientRect(Description(), &client);
        MapWindowPoints(Description(), nullptr, reinterpret_cast<POINT*>(&client), 2);
        const RECT whole = Place(Description());
        for (const LONG room : {client.left - whole.left, whole.right - client.right}) {
            EXPECT_NEAR(Pixels(60), room, 1);
        }
        for (const LONG room : {client.top - whole.top, whole.bottom - client.bottom}) {
            EXPECT_NEAR(Pixels(30), room, 1);
        }
        const HDC context = GetWindowDC(Description());
        const LONG bottom = whole.bottom - whole.top - 1;
        for (LONG y = 0; y <= bottom; y += bottom) EXPECT_EQ(GetSysColor(COLOR_BTNFACE), GetPixel(context, 1, y)) << y;
        ReleaseDC(Description(), context);
    });
}

// The system tells the top-level window only; the controls have to hear of it.
TEST_F(ColoursTest, OtherColoursAreFollowed) {
    static std::set<HWND> told;
    told.clear();
    Inside(L"select 1", [] {
        SetWindowPos(EditorWindow::Find(), HWND_TOPMOST, 10, 10, 0, 0, SWP_NOSIZE);
        const HHOOK hook = SetWindowsHookExW(
            WH_CALLWNDPROC,
            [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
                const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
                if (code == HC_ACTION && sent.message == WM_SYSCOLORCHANGE) told.insert(sent.hwnd);
                return CallNextHookEx(nullptr, code, wParam, lParam);
            },
            nullptr, GetCurrentThreadId());
        ASSERT_NE(nullptr, hook);
        Paint();
        {
            const OtherColours green({{COLOR_WINDOW, RGB(0, 64, 0)}, {COLOR_WINDOWTEXT, RGB(255, 255, 255)}});
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
            EXPECT_EQ(RGB(0, 64, 0), MostOf(PixelsOf(EditorWindow::Editor())));
            EXPECT_EQ(RGB(0, 64, 0), MostOf(PixelsOf(View(0))));
        }
        UnhookWindowsHookEx(hook);
        EXPECT_TRUE(told.contains(EditorWindow::Find()));
        for (const HWND control : {Toolbar(), StatusBar(), Description(), EditorWindow::Editor(), Tab(0), View(0),
                                   View(1), View(2), View(3)}) {
            EXPECT_TRUE(told.contains(control)) << GetDlgCtrlID(control);
        }
    });
}
