#include "forms/Menu.h"

#include <gtest/gtest.h>

#include "support/TopWindow.h"

namespace {

struct Window {
    TopWindow Top;
    MenuItem File{L"&File"};
    MenuItem New{L"&New", {FCONTROL, 'N', L"Ctrl+N"}};
    MenuItem Tasks{L"&Tasks"};
    MenuItem First{L"undefined"};
    MenuItem Second{L"undefined"};
    MenuItem Close{L"&Close"};
    MenuBar Bar{100};
    Window() {
        File.Append(New);
        File.AppendSeparator();
        File.Append(Tasks);
        Tasks.Append(First);
        Tasks.Append(Second);
        File.AppendSeparator();
        File.Append(Close);
        Bar.Append(File);
        Bar.Create(Top.Top());
    }
    HMENU FileMenu() const { return GetSubMenu(GetMenu(Top.Top()), 0); }
    std::wstring Texts(HMENU menu) const {
        std::wstring texts;
        for (int at = 0; at < GetMenuItemCount(menu); ++at) {
            wchar_t text[100]{};
            GetMenuStringW(menu, static_cast<UINT>(at), text, 100, MF_BYPOSITION);
            texts += std::wstring(text) + L"|";
        }
        return texts;
    }
};

}  // namespace

TEST(Menu, ShowsItsEntriesInTheirOrder) {
    Window window;
    EXPECT_EQ(L"&New\tCtrl+N||&Tasks||&Close|", window.Texts(window.FileMenu()));
    EXPECT_EQ(L"undefined|undefined|", window.Texts(GetSubMenu(window.FileMenu(), 2)));
}

TEST(Menu, AHiddenEntryIsNotThereAndItsSeparatorNeither) {
    Window window;
    window.Close.SetVisible(false);
    EXPECT_EQ(L"&New\tCtrl+N||&Tasks|", window.Texts(window.FileMenu()));
    window.Close.SetVisible(true);
    window.New.SetVisible(false);
    EXPECT_EQ(L"&Tasks||&Close|", window.Texts(window.FileMenu()));
    window.Second.SetVisible(false);
    window.First.SetCaption(L"Count rows");
    EXPECT_EQ(L"Count rows|", window.Texts(GetSubMenu(window.FileMenu(), 0)));
}

TEST(Menu, StatesShowAtOnce) {
    Window window;
    window.New.SetEnabled(false);
    window.Close.SetChecked(true);
    EXPECT_TRUE(GetMenuState(window.FileMenu(), 0, MF_BYPOSITION) & (MF_GRAYED | MF_DISABLED));
    EXPECT_TRUE(GetMenuState(window.FileMenu(), 4, MF_BYPOSITION) & MF_CHECKED);
    window.New.SetEnabled(true);
    EXPECT_FALSE(GetMenuState(window.FileMenu(), 0, MF_BYPOSITION) & (MF_GRAYED | MF_DISABLED));
}

TEST(Menu, ACommandChoosesAnEnabledEntryOnly) {
    Window window;
    int chosen = 0;
    window.New.Click = [&] { ++chosen; };
    const UINT id = GetMenuItemID(window.FileMenu(), 0);
    EXPECT_TRUE(window.Bar.OnCommand(id));
    EXPECT_EQ(1, chosen);
    window.New.SetEnabled(false);
    EXPECT_TRUE(window.Bar.OnCommand(id));
    EXPECT_EQ(1, chosen);
    window.New.SetEnabled(true);
    window.New.SetVisible(false);
    window.Bar.OnCommand(id);
    EXPECT_EQ(1, chosen);
    EXPECT_FALSE(window.Bar.OnCommand(9999));
    EXPECT_FALSE(window.Bar.OnCommand(1));
}

TEST(Menu, AMenuHearsThatItOpens) {
    Window window;
    int opened = 0;
    window.File.Click = [&] {
        ++opened;
        window.Close.SetEnabled(false);
    };
    window.Bar.OnInitPopup(window.FileMenu());
    EXPECT_EQ(1, opened);
    EXPECT_TRUE(GetMenuState(window.FileMenu(), 4, MF_BYPOSITION) & (MF_GRAYED | MF_DISABLED));
}
