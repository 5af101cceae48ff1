#include "forms/Control.h"

#include <gtest/gtest.h>

#include "forms/CommandButton.h"
#include "forms/Label.h"
#include "forms/Twips.h"
#include "support/Errors.h"
#include "support/PatchedFunction.h"
#include "support/TopWindow.h"

namespace {

// A box that fails when it is told of one thing.
struct FailingBox : PictureBox {
    TopWindow Top;
    UINT Failing = 0;
    FailingBox() {
        Create(Top.Handle(), 2);
        Move(0, 0, 1500, 1500);
    }
    ~FailingBox() override { Destroy(); }

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        const LRESULT result = PictureBox::OnMessage(message, wParam, lParam);
        if (message == Failing) RaiseError(42);
        return result;
    }
};

template <class Act>
long Failure(FailingBox& box, UINT message, Act&& act) {
    box.Failing = message;
    const long number = NumberOf(act);
    box.Failing = 0;
    return number;
}

struct Drawn {
    std::wstring Text;
    RECT Place;
    UINT Format;
    COLORREF Colour;
    int Ground;
    HGDIOBJ Font;
};
Drawn drawn;

int WINAPI DrawTextInstead(HDC context, const wchar_t* text, int length, RECT* place, UINT format) noexcept {
    drawn = {length < 0 ? std::wstring(text) : std::wstring(text, static_cast<size_t>(length)),
             *place,
             format,
             GetTextColor(context),
             GetBkMode(context),
             GetCurrentObject(context, OBJ_FONT)};
    return 1;
}

// A bitmap to paint into.
class Picture {
public:
    Picture() : Context(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = 100;
        info.bmiHeader.biHeight = -100;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        before_ = SelectObject(Context, bitmap_);
    }
    ~Picture() {
        SelectObject(Context, before_);
        DeleteObject(bitmap_);
        DeleteDC(Context);
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    COLORREF At(int x, int y) const { return GetPixel(Context, x, y); }
    WPARAM Parameter() const { return reinterpret_cast<WPARAM>(Context); }
    const HDC Context;

private:
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ before_ = nullptr;
};

}  // namespace

TEST(Control, EveryCallPassesOnWhatItsEventsLetOut) {
    FailingBox box;
    PictureBox other;
    other.Create(box.Top.Handle(), 3);
    EXPECT_EQ(42, Failure(box, WM_SHOWWINDOW, [&] { box.SetVisible(false); }));
    EXPECT_FALSE(box.Visible());
    EXPECT_EQ(42, Failure(box, WM_SHOWWINDOW, [&] { box.SetVisible(true); }));
    EXPECT_TRUE(box.Visible());
    EXPECT_EQ(42, Failure(box, WM_ENABLE, [&] { box.SetEnabled(false); }));
    EXPECT_FALSE(IsWindowEnabled(box.Handle()));
    EXPECT_EQ(42, Failure(box, WM_ENABLE, [&] { box.SetEnabled(true); }));
    EXPECT_TRUE(IsWindowEnabled(box.Handle()));
    EXPECT_EQ(42, Failure(box, WM_SIZE, [&] { box.Move(0, 0, 3000, 3000); }));
    EXPECT_FLOAT_EQ(3000, box.Width());
    EXPECT_EQ(0, Failure(box, WM_SIZE, [&] { box.Move(0, 0, 3000, 3000); })) << "it is there already";
    EXPECT_EQ(42, Failure(box, WM_WINDOWPOSCHANGING, [&] { box.BringToFront(); }));
    EXPECT_EQ(42, Failure(box, WM_WINDOWPOSCHANGING, [&] { box.SendToBack(); }));
    EXPECT_EQ(42, Failure(box, WM_WINDOWPOSCHANGING, [&] { box.PlaceBehind(other); }));
    EXPECT_EQ(42, Failure(box, WM_SETTEXT, [&] { box.SetWindowCaption(L"caption"); }));
    EXPECT_EQ(L"caption", box.WindowCaption());
    EXPECT_EQ(42, Failure(box, WM_SETFONT, [&] { box.SetFont(nullptr); }));
    EXPECT_EQ(42, Failure(box, WM_USER, [&] { box.Send(WM_USER); }));
    EXPECT_EQ(0, Failure(box, 0, [&] { box.Send(WM_USER); }));
}

TEST(Control, FocusPassesOnWhatItsEventsLetOut) {
    FailingBox box;
    ShowWindow(box.Top.Top(), SW_SHOWNA);
    box.GotFocus = [] { RaiseError(43); };
    box.LostFocus = [] { RaiseError(44); };
    EXPECT_EQ(43, NumberOf([&] { box.SetFocus(); }));
    EXPECT_TRUE(box.HasFocus());
    EXPECT_EQ(44, NumberOf([&] { box.SetVisible(false); }));
    EXPECT_FALSE(box.HasFocus());
}

TEST(Control, LiesAndIsReachedWhereItWasPut) {
    TopWindow top;
    PictureBox boxes[3];
    for (int at = 0; at < 3; ++at) boxes[at].Create(top.Handle(), 10 + at);
    const auto order = [&] {
        std::wstring ids;
        for (HWND child = GetWindow(top.Handle(), GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
            ids += std::to_wstring(GetDlgCtrlID(child)) + L" ";
        return ids;
    };
    EXPECT_EQ(L"10 11 12 ", order());
    boxes[2].BringToFront();
    EXPECT_EQ(L"12 10 11 ", order());
    boxes[2].SendToBack();
    EXPECT_EQ(L"10 11 12 ", order());
    boxes[0].Move(150, 300, 1500, 600);
    boxes[0].PlaceBehind(boxes[1]);
    EXPECT_EQ(L"11 10 12 ", order());
    // Neither its place nor its size changes.
    RECT place{};
    GetWindowRect(boxes[0].Handle(), &place);
    MapWindowPoints(nullptr, top.Handle(), reinterpret_cast<POINT*>(&place), 2);
    const UINT dpi = boxes[0].Dpi();
    EXPECT_EQ(TwipsToPixels(150, dpi), place.left);
    EXPECT_EQ(TwipsToPixels(300, dpi), place.top);
    EXPECT_EQ(TwipsToPixels(1650, dpi), place.right);
    EXPECT_EQ(TwipsToPixels(900, dpi), place.bottom);
}

// The window below is asked: the splitter, which is narrow, is grabbed beyond its bounds.
TEST(Control, ItsEdgesLetTheMouseThrough) {
    FailingBox box;
    RECT bounds{};
    GetWindowRect(box.Handle(), &bounds);
    const auto at = [&](LONG x) { return box.Send(WM_NCHITTEST, 0, MAKELPARAM(x, bounds.top + 5)); };
    EXPECT_EQ(HTCLIENT, at(bounds.left));
    box.SetMouseEdges(3, 0);
    EXPECT_EQ(HTTRANSPARENT, at(bounds.left));
    EXPECT_EQ(HTTRANSPARENT, at(bounds.left + 2));
    EXPECT_EQ(HTCLIENT, at(bounds.left + 3));
    EXPECT_EQ(HTCLIENT, at(bounds.right - 1));
    box.SetMouseEdges(0, 2);
    EXPECT_EQ(HTCLIENT, at(bounds.left));
    EXPECT_EQ(HTCLIENT, at(bounds.right - 3));
    EXPECT_EQ(HTTRANSPARENT, at(bounds.right - 2));
    EXPECT_EQ(HTTRANSPARENT, at(bounds.right - 1));
}

TEST(PictureBox, PaintsWhatItIsToldAndPassesOnAFailure) {
    FailingBox box;
    std::vector<RECT> painted;
    box.Paint = [&](HDC context, const RECT& client) {
        EXPECT_NE(nullptr, context);
        painted.push_back(client);
        if (painted.size() == 2) RaiseError(42);
    };
    box.Send(WM_PAINT);
    ASSERT_EQ(1U, painted.size());
    EXPECT_EQ(TwipsToPixels(1500, box.Dpi()), painted[0].right);
    EXPECT_EQ(TwipsToPixels(1500, box.Dpi()), painted[0].bottom);
    EXPECT_EQ(42, NumberOf([&] { box.Send(WM_PAINT); }));
    EXPECT_EQ(0, NumberOf([&] { box.Send(WM_PAINT); }));
    EXPECT_EQ(3U, painted.size());
}

TEST(PictureBox, HasItsGroundAndItsPointer) {
    FailingBox box;
    const Picture picture;
    EXPECT_EQ(TRUE, box.Send(WM_ERASEBKGND, picture.Parameter()));
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), picture.At(0, 0));
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), picture.At(99, 99));
    box.SetBackColor(COLOR_HIGHLIGHT);
    box.Send(WM_ERASEBKGND, picture.Parameter());
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), picture.At(50, 50));

    const HCURSOR arrow = LoadCursorW(nullptr, IDC_ARROW);
    const HCURSOR wide = LoadCursorW(nullptr, IDC_SIZEWE);
    const auto over = [&](const Control& window, WORD where) {
        SetCursor(arrow);
        box.Send(WM_SETCURSOR, reinterpret_cast<WPARAM>(window.Handle()), MAKELPARAM(where, WM_MOUSEMOVE));
        return GetCursor();
    };
    EXPECT_EQ(arrow, over(box, HTCLIENT));
    box.SetMousePointer(IDC_SIZEWE);
    EXPECT_EQ(wide, over(box, HTCLIENT));
    EXPECT_EQ(arrow, over(box, HTBORDER));
    PictureBox child;
    child.Create(box.Handle(), 3);
    EXPECT_EQ(arrow, over(child, HTCLIENT)) << "that one has its own";
    box.Send(WM_CLOSE);
    EXPECT_TRUE(IsWindow(box.Handle()));
}

TEST(PictureBox, IsClickedByAPressAndAReleaseInside) {
    FailingBox box;
    int clicks = 0;
    const LONG edge = TwipsToPixels(1500, box.Dpi());
    const auto click = [&](LONG x, LONG y) {
        clicks = 0;
        box.Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
        box.Send(WM_LBUTTONUP, 0, MAKELPARAM(x, y));
        EXPECT_EQ(nullptr, GetCapture());
        return clicks;
    };
    EXPECT_EQ(0, click(5, 5));
    box.Click = [&] { ++clicks; };
    EXPECT_EQ(1, click(5, 5));
    EXPECT_EQ(1, click(0, 0));
    EXPECT_EQ(1, click(edge - 1, edge - 1));
    EXPECT_EQ(0, click(edge, 5));
    EXPECT_EQ(0, click(5, edge));
    EXPECT_EQ(0, click(-1, 5));
    EXPECT_EQ(0, click(5, -1));
    clicks = 0;
    box.Send(WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(0, clicks) << "it was pressed elsewhere";
    box.Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(box.Handle(), GetCapture());
    ReleaseCapture();
    box.Send(WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(0, clicks) << "the mouse was taken away";
}

TEST(PictureBoxButton, SaysWhatItIsAndWhetherItIsDown) {
    FailingBox box;
    ShowWindow(box.Top.Top(), SW_SHOWNA);
    int clicks = 0;
    box.Click = [&] { ++clicks; };
    EXPECT_EQ(0, box.Send(WM_GETDLGCODE) & DLGC_BUTTON);
    EXPECT_EQ(0, GetWindowLongW(box.Handle(), GWL_STYLE) & WS_TABSTOP);
    box.SetPushButton();
    EXPECT_EQ(DLGC_BUTTON, box.Send(WM_GETDLGCODE));
    EXPECT_NE(0, GetWindowLongW(box.Handle(), GWL_STYLE) & WS_TABSTOP);
    EXPECT_EQ(0, box.Send(BM_GETSTATE));
    box.Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(BST_PUSHED, box.Send(BM_GETSTATE));
    box.Send(WM_LBUTTONUP, 0, MAKELPARAM(500, 5));
    EXPECT_EQ(0, box.Send(BM_GETSTATE));
    box.Send(WM_KEYDOWN, VK_RETURN);
    EXPECT_EQ(0, box.Send(BM_GETSTATE));
    box.Send(WM_KEYDOWN, VK_SPACE);
    EXPECT_EQ(BST_PUSHED, box.Send(BM_GETSTATE));
    box.Send(WM_KEYUP, VK_RETURN);
    EXPECT_EQ(0, clicks);
    for (const UINT message : {WM_SETFOCUS, WM_KILLFOCUS}) {
        box.Send(WM_KEYDOWN, VK_SPACE);
        box.Send(message);
        EXPECT_EQ(0, box.Send(BM_GETSTATE) & BST_PUSHED);
        box.Send(WM_KEYUP, VK_SPACE);
        EXPECT_EQ(0, clicks) << "the focus was elsewhere meanwhile";
    }
    box.SetFocus();
    EXPECT_EQ(BST_FOCUS, box.Send(BM_GETSTATE));
    box.Send(BM_CLICK);
    EXPECT_EQ(1, clicks);
    box.SetEnabled(false);
    box.Send(BM_CLICK);
    box.SetEnabled(true);
    box.SetVisible(false);
    box.Send(BM_CLICK);
    EXPECT_EQ(1, clicks);
}

TEST(CommandButton, PaintsItselfOnlyWhenItIsPressedAndAskedByTheSystem) {
    const PatchedFunction draw(L"user32.dll", "DrawTextW", reinterpret_cast<void*>(&DrawTextInstead));
    ASSERT_TRUE(draw);
    TopWindow top;
    CommandButton button;
    button.Create(top.Handle(), 2, L"Tables");
    button.Move(0, 0, 900, 600);
    const Picture picture;
    const auto paints = [&](UINT message, WPARAM context) {
        drawn = {};
        button.Send(message, context, PRF_CLIENT);
        // The class has its own format, if it comes this way at all.
        return drawn.Text == L"Tables" && drawn.Colour == GetSysColor(COLOR_HIGHLIGHTTEXT) &&
               drawn.Format == static_cast<UINT>(DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_HIDEPREFIX);
    };
    EXPECT_FALSE(paints(WM_PAINT, 0));
    EXPECT_FALSE(paints(WM_PRINTCLIENT, picture.Parameter()));
    button.SetPressed(true);
    EXPECT_TRUE(paints(WM_PAINT, 0));
    EXPECT_TRUE(paints(WM_PRINTCLIENT, picture.Parameter()));
    EXPECT_FALSE(paints(WM_PAINT, picture.Parameter())) << "of somebody who subclasses the control";
    EXPECT_FALSE(paints(WM_PAINT, 1));
    button.SetPressed(false);
    EXPECT_FALSE(paints(WM_PAINT, 0));
}

TEST(CommandButton, ShowsThatItHasTheFocusWhenItIsPressed) {
    static RECT shown;
    static COLORREF ground;
    const PatchedFunction focus(
        L"user32.dll", "DrawFocusRect",
        reinterpret_cast<void*>(static_cast<BOOL(WINAPI*)(HDC, const RECT*)>([](HDC context, const RECT* place) WINAPI {
            shown = *place;
            ground = GetBkColor(context);
            return TRUE;
        })));
    ASSERT_TRUE(focus);
    TopWindow top;
    ShowWindow(top.Top(), SW_SHOWNA);
    CommandButton button;
    button.Create(top.Handle(), 2, L"Tables");
    button.Move(0, 0, 900, 600);
    button.SetPressed(true);
    const Picture picture;
    const auto paint = [&] {
        shown = {};
        button.Send(WM_PRINTCLIENT, picture.Parameter(), PRF_CLIENT);
        return shown.right != 0;
    };
    SendMessageW(top.Top(), WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
    EXPECT_FALSE(paint());
    button.SetFocus();
    EXPECT_TRUE(paint());
    EXPECT_EQ(3, shown.left);
    EXPECT_EQ(3, shown.top);
    EXPECT_EQ(TwipsToPixels(900, button.Dpi()) - 3, shown.right);
    EXPECT_EQ(TwipsToPixels(600, button.Dpi()) - 3, shown.bottom);
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), ground);
}

TEST(Label, ItsMarginsArePaintedAroundItsText) {
    static RECT filled;
    static RECT clip;
    static HBRUSH brush;
    TopWindow top;
    Label label;
    label.Create(top.Handle(), 2, L"text");
    label.Move(0, 0, 1500, 900);
    RECT client{};
    GetClientRect(label.Handle(), &client);
    const LONG width = TwipsToPixels(1500, label.Dpi());
    const LONG height = TwipsToPixels(900, label.Dpi());
    EXPECT_LT(client.right, width);
    EXPECT_LT(client.bottom, height);
    const PatchedFunction fill(L"user32.dll", "FillRect",
                               reinterpret_cast<void*>(static_cast<int(WINAPI*)(HDC, const RECT*, HBRUSH)>(
                                   [](HDC, const RECT* area, HBRUSH with) WINAPI {
                                       filled = *area;
                                       brush = with;
                                       return 1;
                                   })));
    const PatchedFunction exclude(L"gdi32.dll", "ExcludeClipRect",
                                  reinterpret_cast<void*>(static_cast<int(WINAPI*)(HDC, int, int, int, int)>(
                                      [](HDC, int left, int upper, int right, int lower) WINAPI {
                                          clip = {left, upper, right, lower};
                                          return SIMPLEREGION;
                                      })));
    ASSERT_TRUE(fill);
    ASSERT_TRUE(exclude);
    filled = clip = {};
    EXPECT_EQ(0, label.Send(WM_NCPAINT, 1));
    EXPECT_EQ(0, filled.left);
    EXPECT_EQ(0, filled.top);
    EXPECT_EQ(width, filled.right);
    EXPECT_EQ(height, filled.bottom);
    EXPECT_EQ(GetSysColorBrush(COLOR_BTNFACE), brush);
    EXPECT_EQ(client.right, clip.right - clip.left);
    EXPECT_EQ(client.bottom, clip.bottom - clip.top);
    EXPECT_EQ(clip.left, width - clip.right) << "as much on the right as on the left";
    EXPECT_EQ(clip.top, height - clip.bottom);
    EXPECT_LT(0, clip.left);
    EXPECT_LT(0, clip.top);
}

TEST(CommandButton, WritesItsCaptionWhenItIsPressed) {
    const PatchedFunction draw(L"user32.dll", "DrawTextW", reinterpret_cast<void*>(&DrawTextInstead));
    ASSERT_TRUE(draw);
    TopWindow top;
    CommandButton button;
    button.Create(top.Handle(), 2, L"&Tables");
    button.Move(0, 0, 900, 600);
    const auto font = static_cast<HFONT>(GetStockObject(ANSI_VAR_FONT));
    button.SetFont(font);
    button.SetPressed(true);
    const Picture picture;
    SetBkMode(picture.Context, OPAQUE);
    drawn = {};
    button.Send(WM_PRINTCLIENT, picture.Parameter(), PRF_CLIENT);
    EXPECT_EQ(L"&Tables", drawn.Text);
    EXPECT_EQ(TwipsToPixels(900, button.Dpi()), drawn.Place.right);
    EXPECT_EQ(TwipsToPixels(600, button.Dpi()), drawn.Place.bottom);
    EXPECT_EQ(static_cast<UINT>(DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_HIDEPREFIX), drawn.Format);
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHTTEXT), drawn.Colour);
    EXPECT_EQ(TRANSPARENT, drawn.Ground);
    EXPECT_EQ(font, drawn.Font);
    EXPECT_EQ(GetSysColor(COLOR_BTNTEXT), picture.At(0, 0));
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), picture.At(1, 1));
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), picture.At(10, 10));
    EXPECT_EQ(OPAQUE, GetBkMode(picture.Context)) << "the context is as it was";
}
