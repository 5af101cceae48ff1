#include "support/Steps.h"

#include <commctrl.h>

#include "support/Dialogs.h"
#include "support/EditorTree.h"

// What the status bar tells of the text, and of the menus while they are open.
class StatusBarTest : public StepsFixture {
protected:
    enum { ConnectionPanel = 1, CaretPanel, FormatPanel, LengthPanel, ChangedPanel, ZoomPanel };

    static HWND Bar() { return EditorWindow::Child(STATUSCLASSNAMEW); }
    static std::wstring Panel(int panel) { return EditorWindow::Status(panel); }
    static bool IsOver() { return SendMessageW(Bar(), SB_ISSIMPLE, 0, 0) != 0; }
    static std::wstring Over() { return IsOver() ? Panel(1) : std::wstring(L"<panels>"); }
    static int Parts() { return static_cast<int>(SendMessageW(Bar(), SB_GETPARTS, 0, 0)); }
    static void Widen(int width = 1100) {
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, width, 500, SWP_NOMOVE | SWP_NOZORDER);
    }
    static void Put(const std::wstring& text) {
        SendMessageW(EditorWindow::Editor(), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
    }
    // As the menu tells when the entry is highlighted. `menu`: its caption without the access key.
    static void Highlight(const wchar_t* menu, const wchar_t* entry) {
        const HMENU bar = GetMenu(EditorWindow::Find());
        for (int at = 0; at < GetMenuItemCount(bar); ++at) {
            if (PlainCaption(bar, at) != menu) continue;
            if (*entry == L'\0') return Select(bar, at);
            const HMENU popup = GetSubMenu(bar, at);
            for (int place = 0; place < GetMenuItemCount(popup); ++place) {
                if (PlainCaption(popup, place) == entry) return Select(popup, place);
            }
        }
        ADD_FAILURE() << "no entry " << testing::PrintToString(std::wstring(entry));
    }
    static void Select(HMENU menu, int at) {
        const HMENU below = GetSubMenu(menu, at);
        const UINT state = GetMenuState(menu, static_cast<UINT>(at), MF_BYPOSITION) & 0xFF;
        const UINT id = below != nullptr ? static_cast<UINT>(at) : GetMenuItemID(menu, at);
        SendMessageW(EditorWindow::Find(), WM_MENUSELECT,
                     MAKEWPARAM(id, MF_HILITE | state | (below != nullptr ? MF_POPUP : 0U)),
                     reinterpret_cast<LPARAM>(menu));
    }
    static void CloseMenus() { SendMessageW(EditorWindow::Find(), WM_MENUSELECT, MAKEWPARAM(0, 0xFFFF), 0); }
    static std::wstring HintOf(const wchar_t* menu, const wchar_t* entry) {
        Highlight(menu, entry);
        return Over();
    }
};

TEST_F(StatusBarTest, CountsCharactersAsTheHostDoes) {
    Inside(L"ab\r\nc", [] {
        Widen();
        EXPECT_EQ(L"5 chars", Panel(LengthPanel));
        SelectText(1, 4);
        EXPECT_EQ(L"4 of 5", Panel(LengthPanel));  // a line end is two
        SelectText(4, 4);
        EXPECT_EQ(L"5 chars", Panel(LengthPanel));
        Type(L"x");
        EXPECT_EQ(L"6 chars", Panel(LengthPanel));
        SelectText(0, 5);
        SendMessageW(EditorWindow::Editor(), WM_CLEAR, 0, 0);
        EXPECT_EQ(L"0 chars", Panel(LengthPanel));
        Type(L"x");
        EXPECT_EQ(L"1 char", Panel(LengthPanel));
        // Deleted forwards, the caret staying where it is.
        SelectText(0, 0);
        SendMessageW(EditorWindow::Editor(), WM_KEYDOWN, VK_DELETE, 1);
        EXPECT_EQ(L"0 chars", Panel(LengthPanel));
    });
}

TEST_F(StatusBarTest, MarksATextThatNoCellHolds) {
    Inside(std::wstring(32767, L'y'), [] {
        Widen();
        EXPECT_EQ(L"32767 chars", Panel(LengthPanel));
        SelectText(0, 0);
        Type(L"x");
        EXPECT_EQ(L"32768 chars > 32767", Panel(LengthPanel));
        SelectText(0, 32768);
        EXPECT_EQ(L"32768 of 32768 > 32767", Panel(LengthPanel));
        SelectText(0, 1);
        SendMessageW(EditorWindow::Editor(), WM_CLEAR, 0, 0);
        EXPECT_EQ(L"32767 chars", Panel(LengthPanel));
    });
}

TEST_F(StatusBarTest, TellsWhetherTheSqlIsTheSheetsStill) {
    const std::wstring text =
        InSteps(L"a\nb", {[] {
                              Widen();
                              EXPECT_EQ(L"", Panel(ChangedPanel));
                              Type(L"x");
                              EXPECT_EQ(L"Changed", Panel(ChangedPanel));
                              SelectText(0, 1);
                              SendMessageW(EditorWindow::Editor(), WM_CLEAR, 0, 0);
                          },
                          [] { return Panel(ChangedPanel).empty(); },
                          // Another text of the same length.
                          [] {
                              SelectText(2, 3);
                              Type(L"c");
                          },
                          [] { return Panel(ChangedPanel) == L"Changed"; },
                          [] { SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0); },
                          [] { return Panel(ChangedPanel).empty(); },
                          [] {
                              BoxAnswerer boxes(IDYES);
                              EditorWindow::Choose(L"File", L"New");
                              EXPECT_EQ(L"Changed", Panel(ChangedPanel));
                              SetFocus(EditorWindow::Editor());
                              Key('R', FCONTROL | FSHIFT);
                          },
                          [] { return Panel(ChangedPanel).empty() && Panel(LengthPanel) == L"4 chars"; }});
    EXPECT_EQ(L"a\r\nb", text);
}

TEST_F(StatusBarTest, ANewDisplayBeginsUnchanged) {
    const Object editor = Connected();
    DisplayAndClose(editor, L"a", [] {
        Widen();
        Type(L"b");
        EXPECT_EQ(L"Changed", Panel(ChangedPanel));
    });
    DisplayAndClose(editor, L"abc", [] {
        EXPECT_EQ(L"", Panel(ChangedPanel));
        EXPECT_EQ(L"3 chars", Panel(LengthPanel));
        EXPECT_EQ(L"Ln 1, Col 1", Panel(CaretPanel));
    });
}

TEST_F(StatusBarTest, ShowsTheZoom) {
    const auto press = [](WORD key) {
        return [key] {
            SetFocus(EditorWindow::Editor());
            Key(key, FCONTROL);
        };
    };
    InSteps(L"a", {[] {
                       Widen();
                       EXPECT_EQ(L"100%", Panel(ZoomPanel));
                   },
                   press(VK_ADD), [] { return Panel(ZoomPanel) == L"110%"; }, press(VK_SUBTRACT), press(VK_SUBTRACT),
                   [] { return Panel(ZoomPanel) == L"90%"; },
                   [] {
                       // The wheel with the Ctrl key is the control's own.
                       BYTE keys[256]{};
                       keys[VK_CONTROL] = keys[VK_LCONTROL] = 0x80;
                       SetKeyboardState(keys);
                       SendMessageW(EditorWindow::Editor(), WM_MOUSEWHEEL, MAKEWPARAM(MK_CONTROL, 120), 0);
                       keys[VK_CONTROL] = keys[VK_LCONTROL] = 0;
                       SetKeyboardState(keys);
                       EXPECT_NE(L"90%", Panel(ZoomPanel));
                   },
                   press('0'), [] { return Panel(ZoomPanel) == L"100%"; }});
}

TEST_F(StatusBarTest, TheLastPanelsGiveWayInANarrowWindow) {
    Database.Members[L"Connected"] = [](const Arguments&) { return Variant(true); };
    Database.Members[L"DBTypeName"] = [](const Arguments&) { return Variant(L"Microsoft SQL Server"); };
    Inside([] {
        Widen();
        EXPECT_EQ(6, Parts());
        EXPECT_EQ(L"100%", Panel(ZoomPanel));
        Widen(10);  // as narrow as it gets
        EXPECT_GT(6, Parts());
        EXPECT_LE(2, Parts());
        const std::wstring kept = L"Ln 1, Col 1";
        EXPECT_EQ(kept, Panel(CaretPanel));
        EXPECT_EQ(L"Microsoft SQL Server", Panel(ConnectionPanel));
        // What changes meanwhile is there when there is room again.
        Type(L"xx");
        Widen();
        EXPECT_EQ(6, Parts());
        EXPECT_EQ(L"Changed", Panel(ChangedPanel));
        EXPECT_EQ(L"10 chars", Panel(LengthPanel));
        EXPECT_EQ(L"100%", Panel(ZoomPanel));
        // No panel moves when a text comes that was expected, or a digit less.
        const auto edges = [] {
            std::vector<int> all(6);
            SendMessageW(Bar(), SB_GETPARTS, all.size(), reinterpret_cast<LPARAM>(all.data()));
            return all;
        };
        const std::vector<int> before = edges();
        SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
        SelectText(0, 3);
        EXPECT_EQ(before, edges());
    });
}

TEST_F(StatusBarTest, EveryEntryHasAHint) {
    Inside([] {
        const HMENU bar = GetMenu(EditorWindow::Find());
        int entries = 0;
        const std::function<void(HMENU)> each = [&](HMENU menu) {
            for (int at = 0; at < GetMenuItemCount(menu); ++at) {
                Select(menu, at);
                if (GetMenuItemID(menu, at) == 0) {
                    EXPECT_EQ(L"", Over()) << "a separator";
                } else {
                    EXPECT_LT(10U, Over().size()) << at;
                    EXPECT_TRUE(IsOver());
                    ++entries;
                }
                if (const HMENU below = GetSubMenu(menu, at)) each(below);
            }
        };
        each(bar);
        EXPECT_EQ(4 + 6 + 12 + 7 + 3 + 3, entries);
        // The system menu is none of ours.
        SendMessageW(EditorWindow::Find(), WM_MENUSELECT, MAKEWPARAM(SC_CLOSE, MF_SYSMENU | MF_HILITE),
                     reinterpret_cast<LPARAM>(GetSystemMenu(EditorWindow::Find(), FALSE)));
        EXPECT_EQ(L"", Over());
        CloseMenus();
        EXPECT_FALSE(IsOver());
        // Nor is what other programs make up.
        for (const LPARAM menu : {LPARAM{0}, LPARAM{1}, LPARAM{-1}, LPARAM{0x7FFFFFFF}}) {
            SendMessageW(EditorWindow::Find(), WM_MENUSELECT, MAKEWPARAM(3, MF_POPUP), menu);
            SendMessageW(EditorWindow::Find(), WM_MENUSELECT, MAKEWPARAM(60000, MF_HILITE), menu);
        }
        EXPECT_EQ(L"", Over());
        CloseMenus();
        EXPECT_FALSE(IsOver());
        EXPECT_EQ(L"Type 4", EditorWindow::Status());
    });
}

TEST_F(StatusBarTest, NoTwoEntriesHaveTheSameHint) {
    Inside([] {
        const HMENU bar = GetMenu(EditorWindow::Find());
        std::map<std::wstring, std::wstring> hints;
        for (const int menu : {0, 1, 3}) {  // without the entries for what is selected
            const HMENU entries = GetSubMenu(bar, menu);
            for (int at = 0; at < GetMenuItemCount(entries); ++at) {
                if (GetMenuItemID(entries, at) == 0) continue;
                const std::wstring caption = PlainCaption(entries, at);
                if (caption == L"Save") continue;  // without a file it is Save As
                Select(entries, at);
                const auto [other, added] = hints.emplace(Over(), caption);
                EXPECT_TRUE(added) << testing::PrintToString(caption) << testing::PrintToString(other->second);
            }
        }
        EXPECT_EQ(5U + 12U + 3U, hints.size());
        CloseMenus();
        EXPECT_NE(std::wstring::npos, HintOf(L"Edit", L"Make Upper Case").find(L"upper"));
        EXPECT_NE(std::wstring::npos, HintOf(L"Edit", L"Make Lower Case").find(L"lower"));
    });
}

TEST_F(StatusBarTest, ReplaceAndGotoNameTheirKeys) {
    Inside([] {
        EXPECT_NE(std::wstring::npos, HintOf(L"Edit", L"Replace...").find(L"Ctrl+H"));
        EXPECT_NE(std::wstring::npos, HintOf(L"Edit", L"Goto...").find(L"Ctrl+G"));
    });
}

TEST_F(StatusBarTest, TellsWhatAStatementWouldBeFor) {
    Inside([this] {
        EXPECT_EQ(L"Select a table, a view, a column or a command on the left first", HintOf(L"Action", L"Select"));
        EXPECT_EQ(L"Select a folder of tables in the object browser first", HintOf(L"Action", L"Create"));
        CloseMenus();
        Tree.OpenDownTo({0});
        const HTREEITEM tables = Tree.At({0, 0});
        Tree.Open(tables);
        Tree.Click(tables);
        const std::wstring schema = Tree.Text(Tree.At({0}));
        EXPECT_EQ(L"Inserts a SELECT statement, runs nothing: all tables of " + schema, HintOf(L"Action", L"Select"));
        EXPECT_EQ(L"There is no INSERT statement for all tables of " + schema, HintOf(L"Action", L"Insert"));
        EXPECT_EQ(L"Asks for a table and inserts its statement, runs nothing: " + schema, HintOf(L"Action", L"Create"));
        const HTREEITEM table = Tree.At({0, 0, 0});
        Tree.Click(table);
        Asked.clear();
        const std::wstring name = L"table ORDERS of " + schema;
        EXPECT_EQ(L"Inserts a SELECT statement, runs nothing: " + name, HintOf(L"Action", L"Select"));
        EXPECT_EQ(L"Inserts an UPDATE statement, runs nothing: " + name, HintOf(L"Action", L"Update"));
        EXPECT_EQ(L"There is no example for " + name, HintOf(L"Action", L"Execute"));
        EXPECT_EQ(L"Inserts statements, runs nothing: " + name, HintOf(L"Action", L"Tasks"));
        EXPECT_EQ(L"Select a folder of tables in the object browser first", HintOf(L"Action", L"Create"));
        EXPECT_EQ(L"", Asked) << "the host was asked for a hint";
        Tree.Open(Tree.At({0, 1}));
        Tree.Click(Tree.At({0, 1, 0}));
        EXPECT_EQ(L"Inserts a SELECT statement, runs nothing: view ORDERS of " + schema, HintOf(L"Action", L"Select"));
        ShowPage(1);
        wchar_t entry[200]{};
        SendMessageW(View(1), LB_GETTEXT, static_cast<WPARAM>(SendMessageW(View(1), LB_GETCURSEL, 0, 0)),
                     reinterpret_cast<LPARAM>(entry));
        EXPECT_EQ(std::wstring(L"There is no SELECT statement for ") + entry, HintOf(L"Action", L"Select"));
    });
}

// A name may be of any characters; a tab character would say in the bar where the text stands.
TEST_F(StatusBarTest, AHintIsPlainText) {
    Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(L"a\tb\t&c\r\nd" + std::wstring(300, L'x'))}));
    };
    Inside([this] {
        Tree.OpenDownTo({0});
        Tree.Click(Tree.At({0, 1}));
        Highlight(L"Action", L"Select");
        std::wstring text(static_cast<size_t>(LOWORD(SendMessageW(Bar(), SB_GETTEXTLENGTHW, 0, 0))) + 1, 0);
        SendMessageW(Bar(), SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(text.data()));
        EXPECT_NE(std::wstring::npos, text.find(L"all views of a b &c  d")) << testing::PrintToString(text);
        CloseMenus();
    });
}

// The menus, opened and walked through by the keyboard, and what was told before they opened.
TEST_F(StatusBarTest, TheKeyboardWalksThroughTheHints) {
    static std::wstring seen;
    static int step;
    seen.clear();
    step = 0;
    Inside([] {
        SetForegroundWindow(EditorWindow::Find());
        const UINT_PTR timer = SetTimer(nullptr, 0, 60, [](HWND, UINT, UINT_PTR, DWORD) WINAPI {
            if (IsOver()) seen += Over() + L"|";
            const WORD keys[] = {VK_DOWN, VK_DOWN, VK_UP, VK_ESCAPE, VK_ESCAPE};
            if (step < 5) Key(keys[step++]);
        });
        SendMessageW(EditorWindow::Find(), WM_SYSCOMMAND, SC_KEYMENU, L'f');
        KillTimer(nullptr, timer);
        EXPECT_FALSE(IsOver());
    });
    EXPECT_NE(std::wstring::npos, seen.find(L"Clears the SQL")) << testing::PrintToString(seen);
    EXPECT_NE(std::wstring::npos, seen.find(L"Replaces the SQL by")) << testing::PrintToString(seen);
}

TEST_F(StatusBarTest, AHintStaysWhileTheTextChanges) {
    Inside([] {
        Highlight(L"File", L"");
        EXPECT_NE(L"<panels>", Over());
        Type(L"x");
        EXPECT_TRUE(IsOver());
        CloseMenus();
        EXPECT_FALSE(IsOver());
    });
}
