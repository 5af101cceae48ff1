#include "forms/PopupList.h"

#include <gtest/gtest.h>
#include <commctrl.h>

#include "forms/DialogTemplate.h"
#include "forms/Placement.h"
#include "support/PatchedFunction.h"
#include "support/TopWindow.h"

namespace {

// A monitor with a task bar on its left and one on its top; none for a caller that does not say how large the answer
// may be.
BOOL WINAPI SmallMonitor(HMONITOR, MONITORINFO* info) noexcept {
    if (info->cbSize != sizeof *info) return FALSE;
    info->rcMonitor = {0, 0, 500, 400};
    info->rcWork = {100, 50, 500, 400};
    return TRUE;
}

BOOL WINAPI NoMonitor(HMONITOR, MONITORINFO*) noexcept { return FALSE; }

BOOL WINAPI NoMonitors(HDC, LPCRECT, MONITORENUMPROC, LPARAM) noexcept { return TRUE; }

template <class Function>
class Monitors {
public:
    Monitors(const char* name, Function* instead) : patched_(L"user32.dll", name, reinterpret_cast<void*>(instead)) {
        EXPECT_TRUE(patched_);
    }

private:
    PatchedFunction patched_;
};

std::wstring TextOf(const RECT& place) {
    std::wstring text;
    for (const LONG edge : {place.left, place.top, place.right, place.bottom}) text += std::to_wstring(edge) + L" ";
    return text;
}

std::wstring PlaceOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return TextOf(place);
}

UINT flags = 0;

BOOL WINAPI RedrawInstead(HWND, const RECT*, HRGN, UINT given) noexcept {
    flags = given;
    return TRUE;
}

LRESULT CALLBACK Reflecting(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    return Control::Reflect(message, wParam, lParam, result) ? result : DefWindowProcW(window, message, wParam, lParam);
}

struct NameList {
    TopWindow Top;
    PopupList List;
    NameList() {
        // Its owner passes on what the list says, as a form does.
        SetWindowLongPtrW(Top.Top(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Reflecting));
        List.RowOf = [](size_t row) { return PopupList::Row{L"name " + std::to_wstring(row), L"note"}; };
        List.Open(Top.Top(), {10, 10, 10, 30}, static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)), L"names");
    }
    // What the control asks when it draws a row.
    LRESULT Draw(DWORD stage, size_t row, NMLVCUSTOMDRAW& draw) const {
        draw.nmcd.hdr.hwndFrom = List.Handle();
        draw.nmcd.hdr.code = static_cast<UINT>(NM_CUSTOMDRAW);
        draw.nmcd.dwDrawStage = stage;
        draw.nmcd.dwItemSpec = row;
        LRESULT result = -1;
        EXPECT_TRUE(Control::Reflect(WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&draw), result));
        return result;
    }
};

}  // namespace

TEST(PopupList, StandsInTheWorkAreaOfItsMonitor) {
    {
        const Monitors monitors("GetMonitorInfoW", &SmallMonitor);
        EXPECT_EQ(L"100 60 300 160 ", TextOf(PopupList::PlaceBeside({20, 40, 20, 60}, {200, 100})));
        EXPECT_EQ(L"300 250 500 350 ", TextOf(PopupList::PlaceBeside({450, 350, 450, 370}, {200, 100})));
        EXPECT_EQ(L"100 60 500 400 ", TextOf(PopupList::PlaceBeside({20, 40, 20, 60}, {900, 900})));
    }
    const Monitors monitors("GetMonitorInfoW", &NoMonitor);
    const LONG width = GetSystemMetrics(SM_CXSCREEN);
    const LONG height = GetSystemMetrics(SM_CYSCREEN);
    ASSERT_NE(width, height);
    EXPECT_EQ(TextOf({0, 0, width, height}), TextOf(PopupList::PlaceBeside({5, 0, 5, 0}, {9999, 9999})));
}

TEST(Dialog, IsCentredAndKeptInTheWorkAreaOfItsMonitor) {
    const auto make = [](int x, int y, int width, int height) {
        return CreateWindowExW(0, L"Static", L"", WS_POPUP, x, y, width, height, nullptr, nullptr, nullptr, nullptr);
    };
    const HWND owner = make(210, 110, 100, 60);
    const HWND dialog = make(0, 0, 50, 40);
    {
        const Monitors monitors("GetMonitorInfoW", &SmallMonitor);
        CentreOn(dialog, owner);
        EXPECT_EQ(L"235 120 285 160 ", PlaceOf(dialog));
        SetWindowPos(owner, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        CentreOn(dialog, owner);
        EXPECT_EQ(L"100 50 150 90 ", PlaceOf(dialog));
        SetWindowPos(owner, nullptr, 460, 380, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        CentreOn(dialog, owner);
        EXPECT_EQ(L"450 360 500 400 ", PlaceOf(dialog));
        // One that is larger begins where the area does.
        SetWindowPos(dialog, nullptr, 0, 0, 600, 500, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        CentreOn(dialog, owner);
        EXPECT_EQ(L"100 50 700 550 ", PlaceOf(dialog));
    }
    const Monitors monitors("GetMonitorInfoW", &NoMonitor);
    SetWindowPos(owner, nullptr, -100, -100, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    SetWindowPos(dialog, nullptr, 0, 0, 50, 40, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    CentreOn(dialog, owner);
    EXPECT_EQ(L"-75 -90 -25 -50 ", PlaceOf(dialog)) << "in the middle, wherever that is";
    DestroyWindow(dialog);
    DestroyWindow(owner);
}

TEST(PlacementTest, WithoutAMonitorTheDesktopIsAsLargeAsTheScreen) {
    const LONG width = GetSystemMetrics(SM_CXSCREEN);
    const LONG height = GetSystemMetrics(SM_CYSCREEN);
    ASSERT_NE(width, height);
    const auto expectScreen = [&] {
        const Desktop desktop = GetDesktop();
        ASSERT_EQ(1U, desktop.size());
        EXPECT_EQ(TextOf({0, 0, width, height}), TextOf(desktop[0].Bounds));
        EXPECT_EQ(TextOf({0, 0, width, height}), TextOf(desktop[0].WorkArea));
        EXPECT_LT(0U, desktop[0].Dpi);
    };
    {
        const Monitors monitors("EnumDisplayMonitors", &NoMonitors);
        expectScreen();
    }
    const Monitors monitors("GetMonitorInfoW", &NoMonitor);
    expectScreen();
}

TEST(PlacementTest, AMonitorHasItsBoundsAndItsWorkArea) {
    const Monitors monitors("GetMonitorInfoW", &SmallMonitor);
    const Desktop desktop = GetDesktop();
    ASSERT_LE(1U, desktop.size());
    EXPECT_EQ(L"0 0 500 400 ", TextOf(desktop[0].Bounds));
    EXPECT_EQ(L"100 50 500 400 ", TextOf(desktop[0].WorkArea));
}

TEST(PlacementTest, SixteenMonitorsAreEnough) {
    static int told;
    const PatchedFunction many(
        L"user32.dll", "EnumDisplayMonitors",
        reinterpret_cast<void*>(static_cast<BOOL(WINAPI*)(HDC, LPCRECT, MONITORENUMPROC, LPARAM)>(
            [](HDC, LPCRECT, MONITORENUMPROC tell, LPARAM parameter) WINAPI {
                for (told = 0; told < 20; ++told) {
                    if (!tell(nullptr, nullptr, nullptr, parameter)) break;
                }
                return TRUE;
            })));
    ASSERT_TRUE(many);
    const Monitors monitors("GetMonitorInfoW", &SmallMonitor);
    EXPECT_EQ(16U, GetDesktop().size());
    EXPECT_EQ(16, told);
}

TEST(PopupList, TheSelectedRowHasTheColoursOfASelection) {
    NameList names;
    names.List.SetRows(3, L"");
    names.List.Move(1);
    ASSERT_EQ(1, names.List.Selected());
    NMLVCUSTOMDRAW draw{};
    EXPECT_EQ(CDRF_NOTIFYITEMDRAW, names.Draw(CDDS_PREPAINT, 0, draw));
    EXPECT_EQ(CDRF_DODEFAULT, names.Draw(CDDS_POSTPAINT, 0, draw));
    const UINT others = CDIS_HOT | CDIS_GRAYED;
    draw.nmcd.uItemState = CDIS_SELECTED | CDIS_FOCUS | others;
    EXPECT_EQ(CDRF_NEWFONT, names.Draw(CDDS_ITEMPREPAINT, 1, draw));
    // Without these the control would use the colours of a list without the focus.
    EXPECT_EQ(others, draw.nmcd.uItemState);
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHTTEXT), draw.clrText);
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), draw.clrTextBk);
    for (const size_t row : {0, 2}) {
        NMLVCUSTOMDRAW other{};
        other.nmcd.uItemState = others;
        other.clrText = 1;
        other.clrTextBk = 2;
        EXPECT_EQ(CDRF_NEWFONT, names.Draw(CDDS_ITEMPREPAINT, row, other));
        EXPECT_EQ(others, other.nmcd.uItemState);
        EXPECT_EQ(1U, other.clrText);
        EXPECT_EQ(2U, other.clrTextBk);
    }
    // The reason why there is nothing is no row.
    names.List.SetRows(0, L"none");
    NMLVCUSTOMDRAW none{};
    none.clrText = 1;
    names.Draw(CDDS_ITEMPREPAINT, 0, none);
    EXPECT_EQ(1U, none.clrText);
}

TEST(PopupList, TheFrameIsPaintedAgainWhenTheNumberOfRowsChanges) {
    NameList names;
    names.List.SetRows(3, L"");
    const PatchedFunction redraw(L"user32.dll", "RedrawWindow", reinterpret_cast<void*>(&RedrawInstead));
    ASSERT_TRUE(redraw);
    const auto after = [&](size_t rows) {
        flags = 0;
        names.List.SetRows(rows, L"");
        return flags;
    };
    constexpr UINT Rows = RDW_INVALIDATE;
    EXPECT_EQ(Rows | RDW_FRAME, after(30));
    EXPECT_EQ(Rows, after(30));
    EXPECT_EQ(Rows | RDW_FRAME, after(2));
    EXPECT_EQ(Rows | RDW_FRAME, after(0));
    EXPECT_EQ(Rows, after(1)) << "there was one row with the reason";
}

TEST(PopupList, APressElsewhereIsOneOfAnyButton) {
    NameList names;
    MSG message{};
    message.hwnd = names.Top.Top();
    const auto elsewhere = [&](UINT number) {
        message.message = number;
        return names.List.IsPressElsewhere(message);
    };
    for (const UINT press : {WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN, WM_NCLBUTTONDOWN, WM_NCRBUTTONDOWN})
        EXPECT_TRUE(elsewhere(press)) << press;
    for (const UINT other : {WM_LBUTTONUP, WM_RBUTTONUP, WM_MBUTTONUP, WM_MOUSEMOVE, WM_NCMOUSEMOVE, WM_KEYDOWN})
        EXPECT_FALSE(elsewhere(other)) << other;
    message.hwnd = names.List.Handle();
    EXPECT_FALSE(elsewhere(WM_LBUTTONDOWN));
    message.hwnd = names.Top.Top();
    names.List.Close();
    EXPECT_FALSE(elsewhere(WM_LBUTTONDOWN));
}

TEST(PopupList, AnAskerWithoutRoomGetsNothing) {
    NameList names;
    names.List.SetRows(3, L"");
    wchar_t room[20] = L"before";
    const auto asked = [&](UINT mask, wchar_t* text, int length) {
        NMLVDISPINFOW info{};
        info.hdr.hwndFrom = names.List.Handle();
        info.hdr.code = static_cast<UINT>(LVN_GETDISPINFOW);
        info.item.mask = mask;
        info.item.iItem = 1;
        info.item.pszText = text;
        info.item.cchTextMax = length;
        LRESULT result = 0;
        EXPECT_TRUE(Control::Reflect(WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&info), result));
        return std::wstring(room);
    };
    EXPECT_EQ(L"before", asked(LVIF_TEXT, nullptr, 20));
    EXPECT_EQ(L"before", asked(LVIF_TEXT, room, 0));
    EXPECT_EQ(L"before", asked(LVIF_TEXT, room, -1));
    EXPECT_EQ(L"before", asked(LVIF_IMAGE, room, 20));
    EXPECT_EQ(L"nam", asked(LVIF_TEXT, room, 4));
    EXPECT_EQ(L"name 1", asked(LVIF_TEXT, room, 20));
}
