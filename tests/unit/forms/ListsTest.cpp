#include "support/Expect.h"
#include "forms/Label.h"
#include "forms/ListBox.h"
#include "forms/StatusBar.h"

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
}

TEST(StatusBar, PanelsAreCountedFromOne) {
    TopWindow top;
    StatusBar bar;
    bar.Create(top.Handle(), 1, {1000});
    bar.SetPanelText(1, L"Oracle 8i & more");
    EXPECT_EQ(L"Oracle 8i & more", bar.PanelText(1));
    wchar_t shown[100]{};
    bar.Send(0x0400 + 13 /* SB_GETTEXTW */, 0, reinterpret_cast<LPARAM>(shown));
    EXPECT_STREQ(L"Oracle 8i & more", shown);
    EXPECT_EQ(ErrorNumber::IndexOutOfBounds, NumberOf([&] { bar.SetPanelText(0, L""); }));
    EXPECT_EQ(ErrorNumber::IndexOutOfBounds, NumberOf([&] { bar.SetPanelText(3, L""); }));
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
