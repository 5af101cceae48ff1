#include "forms/Menu.h"

#include <gtest/gtest.h>

#include <utility>

#include "support/Errors.h"
#include "support/PatchedFunction.h"
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

TEST(Menu, AnEntryIsKnownByItsNumber) {
    Window window;
    std::wstring chosen;
    window.File.Click = [&] { chosen += L"File "; };
    window.New.Click = [&] { chosen += L"New "; };
    window.Close.Click = [&] { chosen += L"Close "; };
    // In the order in which they were appended, each before its own entries.
    EXPECT_FALSE(window.Bar.OnCommand(99));
    EXPECT_TRUE(window.Bar.OnCommand(100));
    EXPECT_TRUE(window.Bar.OnCommand(101));
    EXPECT_TRUE(window.Bar.OnCommand(102)) << "nothing happens";
    EXPECT_TRUE(window.Bar.OnCommand(105));
    EXPECT_FALSE(window.Bar.OnCommand(106));
    EXPECT_EQ(L"File New Close ", std::exchange(chosen, {}));
    // Not where what opens it cannot be opened.
    window.File.SetEnabled(false);
    EXPECT_TRUE(window.Bar.OnCommand(105));
    window.File.SetEnabled(true);
    window.File.SetVisible(false);
    EXPECT_TRUE(window.Bar.OnCommand(105));
    EXPECT_EQ(L"", chosen);
    window.File.SetVisible(true);

    const auto lit = [&](UINT item, UINT flags, HMENU menu) {
        return window.Bar.Highlighted(MAKEWPARAM(item, flags), reinterpret_cast<LPARAM>(menu));
    };
    EXPECT_EQ(&window.New, lit(101, MF_HILITE, window.FileMenu()));
    EXPECT_EQ(&window.Close, lit(105, MF_HILITE | MF_GRAYED, window.FileMenu()));
    EXPECT_EQ(nullptr, lit(106, MF_HILITE, window.FileMenu()));
    EXPECT_EQ(&window.File, lit(0, MF_HILITE | MF_POPUP, GetMenu(window.Top.Top())));
    EXPECT_EQ(&window.Tasks, lit(2, MF_HILITE | MF_POPUP, window.FileMenu()));
    EXPECT_EQ(nullptr, lit(3, MF_HILITE | MF_POPUP, window.FileMenu()));
    EXPECT_EQ(nullptr, lit(101, MF_HILITE | MF_SEPARATOR, window.FileMenu()));
    EXPECT_EQ(nullptr, lit(101, MF_HILITE | MF_SYSMENU, window.FileMenu()));
}

TEST(Menu, AShortcutChoosesItsEntry) {
    static WPARAM command;
    Window window;
    SetWindowLongPtrW(window.Top.Top(), GWLP_WNDPROC,
                      reinterpret_cast<LONG_PTR>(static_cast<WNDPROC>(
                          [](HWND top, UINT message, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
                              if (message == WM_COMMAND) command = wParam;
                              return DefWindowProcW(top, message, wParam, lParam);
                          })));
    MSG message{};
    message.hwnd = window.Top.Handle();
    message.message = WM_KEYDOWN;
    const auto press = [&](WPARAM key, BYTE ctrl) {
        BYTE before[256];
        GetKeyboardState(before);
        BYTE keys[256]{};
        keys[VK_CONTROL] = ctrl;
        SetKeyboardState(keys);
        command = 0;
        message.wParam = key;
        const bool taken = window.Bar.Translate(message);
        SetKeyboardState(before);
        return taken;
    };
    EXPECT_TRUE(press('N', 0x80));
    EXPECT_EQ(101U, LOWORD(command));
    EXPECT_FALSE(press('N', 0));
    EXPECT_FALSE(press('M', 0x80));
    EXPECT_EQ(0U, command);
    // Without shortcuts there is nothing to translate.
    const TopWindow other;
    MenuItem only{L"&Only"};
    MenuBar bare{100};
    bare.Append(only);
    bare.Create(other.Top());
    EXPECT_FALSE(bare.Translate(message));
}

TEST(Menu, PopsUpWhereItIsToldOrWhereThePointerIs) {
    static std::wstring shown;
    static HMENU menu;
    static HWND owner;
    const PatchedFunction track(
        L"user32.dll", "TrackPopupMenuEx",
        reinterpret_cast<void*>(static_cast<BOOL(WINAPI*)(HMENU, UINT, int, int, HWND, TPMPARAMS*)>(
            [](HMENU given, UINT flags, int x, int y, HWND window, TPMPARAMS*) WINAPI {
                menu = given;
                owner = window;
                shown = std::to_wstring(flags) + L" " + std::to_wstring(x) + L" " + std::to_wstring(y);
                return TRUE;
            })));
    const PatchedFunction pointer(L"user32.dll", "GetCursorPos",
                                  reinterpret_cast<void*>(static_cast<BOOL(WINAPI*)(POINT*)>([](POINT* at) WINAPI {
                                      *at = {7, 8};
                                      return TRUE;
                                  })));
    ASSERT_TRUE(track);
    ASSERT_TRUE(pointer);
    Window window;
    const POINT at{3, 4};
    window.Tasks.PopUp(&at);
    EXPECT_EQ(GetSubMenu(window.FileMenu(), 2), menu);
    EXPECT_EQ(window.Top.Top(), owner);
    const std::wstring flags = std::to_wstring(TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON);
    EXPECT_EQ(flags + L" 3 4", shown);
    window.File.PopUp(nullptr);
    EXPECT_EQ(window.FileMenu(), menu);
    EXPECT_EQ(flags + L" 7 8", shown);
    shown.clear();
    window.New.PopUp(&at);  // opens nothing
    MenuItem(L"loose").PopUp(&at);
    EXPECT_EQ(L"", shown);
}
