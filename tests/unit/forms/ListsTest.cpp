#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>

#include "forms/Label.h"
#include "forms/ListBox.h"
#include "forms/StatusBar.h"
#include "forms/Twips.h"
#include "support/Errors.h"
#include "support/TopWindow.h"

TEST(ListBox, KeepsRowsAndTheirNumbers) {
    TopWindow top;
    ListBox list;
    list.Create(top.Handle(), 1);
    EXPECT_EQ(0, list.AddItem(L"one"));
    EXPECT_EQ(1, list.AddItem(L"an apple"));
    list.SetItemData(0, -7);
    list.SetItemData(1, 282);
    EXPECT_EQ(2, list.ListCount());
    EXPECT_EQ(L"one", list.List(0));
    EXPECT_EQ(L"an apple", list.List(1));  // rows stay in the order in which they were added
    EXPECT_EQ(-7, list.ItemData(0));
    EXPECT_EQ(282, list.ItemData(1));
    EXPECT_EQ(L"", list.List(2));
    EXPECT_EQ(-1, list.ListIndex());
    for (const int row : {2, -2}) {
        EXPECT_EQ(ErrorNumber::InvalidPropertyValue, NumberOf([&] { list.SetItemData(row, 1); })) << row;
        EXPECT_EQ(-1, list.ItemData(row)) << row;
    }
    EXPECT_EQ(-7, list.ItemData(0));
    EXPECT_EQ(282, list.ItemData(1));
    list.Clear();
    EXPECT_EQ(0, list.ListCount());
}

TEST(ListBox, SettingTheRowRaisesClickAlsoForTheSameRow) {
    TopWindow top;
    ListBox list;
    list.Create(top.Handle(), 1);
    list.AddItem(L"one");
    int clicks = 0;
    list.Click = [&] { ++clicks; };
    list.SetListIndex(0);
    list.SetListIndex(0);
    EXPECT_EQ(2, clicks);
    list.SetListIndex(-1);
    EXPECT_EQ(3, clicks);
    EXPECT_EQ(-1, list.ListIndex());
    EXPECT_EQ(ErrorNumber::InvalidPropertyValue, NumberOf([&] { list.SetListIndex(1); }));
    EXPECT_EQ(ErrorNumber::InvalidPropertyValue, NumberOf([&] { list.SetListIndex(-2); }));
    EXPECT_EQ(3, clicks);
}

TEST(ListBox, IsClickedByTheUserAndDraggedByItsRow) {
    TopWindow top;
    ListBox list;
    list.Create(top.Handle(), 1);
    list.AddItem(L"one");
    list.AddItem(L"two");
    int clicks = 0;
    list.Click = [&] { ++clicks; };
    const auto notify = [&](WORD code) {
        LRESULT result = 0;
        return Control::Reflect(WM_COMMAND, MAKEWPARAM(1, code), reinterpret_cast<LPARAM>(list.Handle()), result);
    };
    EXPECT_TRUE(notify(LBN_SELCHANGE));
    EXPECT_EQ(1, clicks);
    for (const int code : {LBN_DBLCLK, LBN_SELCANCEL, LBN_SETFOCUS, LBN_KILLFOCUS})
        EXPECT_FALSE(notify(static_cast<WORD>(code))) << code;
    EXPECT_EQ(1, clicks);
    EXPECT_EQ(L"", list.DragCaption());
    list.SetListIndex(1);
    EXPECT_EQ(L"two", list.DragCaption());
}

TEST(ListBox, ItsMenuOpensBelowTheSelectedRow) {
    TopWindow top;
    ListBox list;
    list.Create(top.Handle(), 1);
    list.Move(0, 0, 1500, 1500);
    for (int row = 0; row < 40; ++row) list.AddItem(L"row");
    const auto place = [&] {
        POINT at = list.SelectedPlace();
        ScreenToClient(list.Handle(), &at);
        return at;
    };
    RECT client{};
    GetClientRect(list.Handle(), &client);
    EXPECT_EQ(0, place().x);
    EXPECT_EQ(0, place().y);
    list.SetListIndex(1);
    const auto height = static_cast<LONG>(list.Send(LB_GETITEMHEIGHT));
    EXPECT_EQ(height, place().x);
    EXPECT_EQ(2 * height, place().y);
    list.SetListIndex(39);
    list.Send(LB_SETTOPINDEX, 0);
    EXPECT_EQ(client.bottom, place().y) << "a row below the list";
    list.SetListIndex(0);
    list.Send(LB_SETTOPINDEX, 20);
    EXPECT_EQ(0, place().y) << "a row above it";
}

TEST(StatusBar, PanelsAreCountedFromOne) {
    TopWindow top;
    StatusBar bar;
    bar.Create(top.Handle(), 1, {1000});
    bar.SetPanelText(1, L"Oracle 8i & more");
    wchar_t shown[100]{};
    bar.Send(SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(shown));
    EXPECT_STREQ(L"Oracle 8i & more", shown);
    EXPECT_EQ(ErrorNumber::IndexOutOfBounds, NumberOf([&] { bar.SetPanelText(0, L""); }));
    EXPECT_EQ(ErrorNumber::IndexOutOfBounds, NumberOf([&] { bar.SetPanelText(3, L""); }));
}

TEST(StatusBar, AHintStandsOverANoteAndThatOverThePanels) {
    TopWindow top;
    StatusBar bar;
    bar.Create(top.Handle(), 1, {1000});
    const auto shown = [&] {
        if (bar.Send(SB_ISSIMPLE) == 0) return std::wstring(L"<panels>");
        wchar_t text[100]{};
        bar.Send(SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(text));
        return std::wstring(text);
    };
    bar.SetPanelText(1, L"a");
    bar.ShowNote(L"note");
    EXPECT_EQ(L"note", shown());
    bar.ShowHint(L"hint");
    EXPECT_EQ(L"hint", shown());
    bar.ShowHint(L"");
    EXPECT_EQ(L"", shown());
    bar.ShowNote(L"other");
    EXPECT_EQ(L"", shown());
    bar.ClearHint();
    EXPECT_EQ(L"other", shown());
    bar.ShowHint(L"hint");
    bar.SetPanelText(2, L"b");
    EXPECT_EQ(L"hint", shown());
    bar.ClearHint();
    EXPECT_EQ(L"<panels>", shown());
    // A tab would put what follows it in the middle of the bar.
    bar.ShowNote(L"a\tb\r\nc");
    EXPECT_EQ(L"a b  c", shown());
}

TEST(StatusBar, PanelsThatHaveNoRoomComeBack) {
    TopWindow top;
    StatusBar bar;
    bar.Create(top.Handle(), 1, {600, 600, 600});
    bar.SetFont(static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)));
    const auto edges = [&] {
        std::vector<int> all(static_cast<size_t>(bar.Send(SB_GETPARTS)));
        bar.Send(SB_GETPARTS, all.size(), reinterpret_cast<LPARAM>(all.data()));
        return all;
    };
    const auto widen = [&](int width) {
        SetWindowPos(top.Handle(), nullptr, 0, 0, width, 200, SWP_NOMOVE | SWP_NOZORDER);
        bar.Arrange();
        return edges();
    };
    EXPECT_EQ(4U, widen(600).size());
    bar.SetPanelText(1, std::wstring(20, L'M'));
    bar.SetPanelText(2, L"second");
    bar.KeepRoom(3, std::wstring(10, L'M'));
    bar.SetPanelText(4, L"fourth");
    std::vector<int> wide = widen(600);
    EXPECT_EQ(4U, wide.size());
    // Its room is kept.
    EXPECT_GT(wide[2] - wide[1], 60);
    bar.SetPanelText(3, std::wstring(10, L'M'));
    EXPECT_EQ(wide, edges());
    const std::vector<int> narrow = widen(250);
    ASSERT_GT(4U, narrow.size());
    EXPECT_LE(2U, narrow.size());
    EXPECT_GE(narrow[0], 250 / 2 - 20);
    EXPECT_EQ(2U, widen(60).size());  // the first one and the next, however narrow
    bar.SetPanelText(4, L"other");
    EXPECT_EQ(wide, widen(600));
    wchar_t text[100]{};
    bar.Send(SB_GETTEXTW, 3, reinterpret_cast<LPARAM>(text));
    EXPECT_STREQ(L"other", text);
}

TEST(StatusBar, TheFirstPanelShrinksWithItsTextAndTheOthersDoNot) {
    TopWindow top;
    StatusBar bar;
    bar.Create(top.Handle(), 1, {600, 600});
    bar.SetFont(static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)));
    SetWindowPos(top.Handle(), nullptr, 0, 0, 300, 200, SWP_NOMOVE | SWP_NOZORDER);
    bar.Arrange();
    const auto edges = [&] {
        std::vector<int> all(static_cast<size_t>(bar.Send(SB_GETPARTS)));
        bar.Send(SB_GETPARTS, all.size(), reinterpret_cast<LPARAM>(all.data()));
        return all;
    };
    bar.SetPanelText(1, L"a");
    bar.SetPanelText(2, L"b");
    bar.SetPanelText(3, L"c");
    const std::vector<int> first = edges();
    ASSERT_EQ(3U, first.size());
    EXPECT_EQ(-1, first[2]);
    EXPECT_EQ(TwipsToPixels(600, bar.Dpi()), first[1] - first[0]);
    bar.SetPanelText(1, std::wstring(60, L'M'));
    EXPECT_NE(first, edges());
    bar.SetPanelText(1, L"a");
    EXPECT_EQ(first, edges());
    // A number that grows and shrinks would make its neighbours jump.
    bar.SetPanelText(2, L"MMMMMMMM");
    const std::vector<int> wider = edges();
    EXPECT_LT(first[1] - first[0], wider[1] - wider[0]);
    bar.SetPanelText(2, L"b");
    bar.Arrange();
    EXPECT_EQ(wider, edges());
    bar.SetPanelText(3, L"MMMMMMMM");
    const std::vector<int> widest = edges();
    bar.SetPanelText(3, L"c");
    bar.Arrange();
    EXPECT_EQ(widest, edges());
    EXPECT_LT(widest[1], wider[1]);
    // Another font takes what it takes.
    bar.SetFont(static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)));
    bar.Arrange();
    EXPECT_EQ(first, edges());
}

TEST(Label, KeepsAnAmpersandAndWraps) {
    TopWindow top;
    Label label;
    label.Create(top.Handle(), 1, L"");
    label.SetFont(static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)));
    label.Move(0, 0, 1500, 300);
    label.SetCaption(L"R&D: a table");
    EXPECT_EQ(L"R&D: a table", label.WindowCaption());
    const float line = label.HeightFor(100000);
    EXPECT_GT(line, 0);
    label.SetCaption(
        L"R&D: a basic unit of data storage in the SALES schema. Open to view the column definition of this table.");
    EXPECT_GE(label.HeightFor(1500), 3 * line);
}
