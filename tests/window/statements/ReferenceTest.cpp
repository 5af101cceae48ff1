#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include "support/Browsed.h"
#include "support/TestData.h"

// The reference lists and their tree in the window: what they drop, how a drag begins and ends, and what they do when
// nothing is selected.
namespace {

class ReferenceTest : public BrowsedFixture {
protected:
    static LPARAM Mapped(HWND from, HWND to, POINT at) {
        MapWindowPoints(from, to, &at, 1);
        return MAKELPARAM(at.x, at.y);
    }
    static POINT Start() {
        POINTL at{};
        SendMessageW(EditorWindow::Editor(), EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&at), 0);
        return {at.x + 1, at.y + 3};
    }
    static LPARAM OverEditor(HWND view) { return Mapped(EditorWindow::Editor(), view, Start()); }
    static LPARAM RowOf(int page, const wchar_t* text) {
        const HWND list = View(page);
        const LRESULT row =
            SendMessageW(list, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text));
        EXPECT_GE(row, 0) << "no such row";
        RECT place{};
        SendMessageW(list, LB_SETTOPINDEX, static_cast<WPARAM>(row), 0);
        SendMessageW(list, LB_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&place));
        return MAKELPARAM(place.left + 4, (place.top + place.bottom) / 2);
    }
    static void Press(HWND view, LPARAM at) { SendMessageW(view, WM_LBUTTONDOWN, MK_LBUTTON, at); }
    static void Move(HWND view, WPARAM buttons = MK_LBUTTON) {
        SendMessageW(view, WM_MOUSEMOVE, buttons, OverEditor(view));
    }
    static std::wstring Dropped(HWND view, LPARAM from, UINT released = WM_LBUTTONUP) {
        EditorWindow::SetText(L"");
        Press(view, from);
        Move(view);
        SendMessageW(view, released, 0, OverEditor(view));
        return EditorWindow::Text();
    }
    static LPARAM NodeOf(const EditorTree& tree, HTREEITEM item) {
        SendMessageW(tree.Handle(), TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
        POINT at{};
        EXPECT_TRUE(tree.Place(item, at));
        return MAKELPARAM(at.x, at.y);
    }
    static void Unselect(int page) {
        const HWND list = View(page);
        SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
        SendMessageW(GetParent(list), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), LBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(list));
    }
    const EditorTree Reference{EditorTree::DatabaseSpecific};
};

constexpr const wchar_t* NothingCanBeChosen = L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks-";

}  // namespace

TEST_F(ReferenceTest, EntriesDropTheirWholeTexts) {
    Inside([this] {
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 900, 900, SWP_NOMOVE | SWP_NOZORDER);
        ShowPage(1);
        EXPECT_EQ(L"COMMIT", Dropped(View(1), RowOf(1, L"COMMIT")));
        EXPECT_EQ(L"CREATE TABLE table_name\r\n( column_name data_type\r\n, column_name data_type\r\n, ...\r\n)",
                  Dropped(View(1), RowOf(1, L"CREATE TABLE")));
        EXPECT_EQ(
            L"UPDATE table SET\r\n{column = {expr | query} | (column, column, ...) = (subquery)}\r\n[WHERE "
            L"condition(s)]",
            Dropped(View(1), RowOf(1, L"UPDATE")));
        ShowPage(3);
        EXPECT_EQ(L"@filename;", Dropped(View(3), RowOf(3, L"@")));
        EXPECT_EQ(L"CL[EAR] {BRE[AKS]  |  BUFF[ER]  |  COL[UMNS]  |  SCR[EEN] | SQL};",
                  Dropped(View(3), RowOf(3, L"CLEAR")));
        EXPECT_EQ(L"RECORDSET_FROM_PROC(text);", Dropped(View(3), RowOf(3, L"RECORDSET_FROM_PROC")));
        EXPECT_EQ(L"VARIABLE variable_name;", Dropped(View(3), RowOf(3, L"VARIABLE")));
        ShowPage(2);
        EXPECT_EQ(L"", Dropped(Reference.Handle(), NodeOf(Reference, Reference.At({}))));  // a category
        Reference.Open(Reference.At({}));
        EXPECT_EQ(L"COMMENT", Dropped(Reference.Handle(), NodeOf(Reference, Reference.At({0}))));
        const HTREEITEM numbers = Reference.Next(TVGN_NEXT, Reference.At({}));
        Reference.Open(numbers);
        EXPECT_EQ(L"TRUNC(n[,m]",
                  Dropped(Reference.Handle(), NodeOf(Reference, Reference.Named(numbers, L"TRUNC(n[,m])"))));
        // An open category drops nothing either.
        EXPECT_EQ(L"", Dropped(Reference.Handle(), NodeOf(Reference, numbers)));
    });
}

TEST_F(ReferenceTest, ADragEndsWithWhateverButtonIsReleased) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        for (const UINT released : {WM_RBUTTONUP}) {
            MenuCatcher menu;
            ShowPage(0);
            EXPECT_EQ(L"HR", Dropped(Tree.Handle(), NodeOf(Tree, Tree.At({0})), released)) << released;
            SendMessageW(Tree.Handle(), WM_LBUTTONUP, 0, 0);
            ShowPage(1);
            EXPECT_EQ(L"ROLLBACK", Dropped(View(1), RowOf(1, L"ROLLBACK"), released)) << released;
            SendMessageW(View(1), WM_LBUTTONUP, 0, 0);
            ShowPage(2);
            Reference.Open(Reference.At({}));
            EXPECT_EQ(L"COMMENT", Dropped(Reference.Handle(), NodeOf(Reference, Reference.At({0})), released))
                << released;
            SendMessageW(Reference.Handle(), WM_LBUTTONUP, 0, 0);
            ShowPage(3);
            EXPECT_EQ(L"HELP;", Dropped(View(3), RowOf(3, L"HELP"), released)) << released;
            SendMessageW(View(3), WM_LBUTTONUP, 0, 0);
        }
    });
}

TEST_F(ReferenceTest, LeftAndRightTogetherStartNoDrag) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        EditorWindow::SetText(L"");
        for (const WPARAM buttons : {WPARAM{MK_LBUTTON | MK_RBUTTON}}) {
            for (int page = 0; page < 4; ++page) {
                ShowPage(page);
                const HWND view = View(page);
                const EditorTree tree(page == 2 ? EditorTree::DatabaseSpecific : EditorTree::ObjectBrowser);
                const LPARAM from = page == 1   ? RowOf(1, L"COMMIT")
                                    : page == 3 ? RowOf(3, L"@")
                                                : NodeOf(tree, tree.At({}));
                Press(view, from);
                Move(view, buttons);
                EXPECT_NE(EditorWindow::Editor(), GetFocus()) << page << " " << buttons;
                SendMessageW(view, WM_LBUTTONUP, 0, OverEditor(view));
                EXPECT_EQ(L"", EditorWindow::Text()) << page << " " << buttons;
            }
        }
    });
}

TEST_F(ReferenceTest, TheFocusGoesBackToTheViewThatADragComesFrom) {
    Inside([this] {
        Reference.Open(Reference.At({}));
        for (int page = 1; page < 4; ++page) {
            ShowPage(page);
            const HWND view = View(page);
            const LPARAM from = page == 1   ? RowOf(1, L"COMMIT")
                                : page == 3 ? RowOf(3, L"@")
                                            : NodeOf(Reference, Reference.At({0}));
            SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, 6);
            Press(view, from);
            Move(view);
            EXPECT_EQ(EditorWindow::Editor(), GetFocus()) << page;
            CHARRANGE range{};
            SendMessageW(EditorWindow::Editor(), EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
            EXPECT_EQ(range.cpMin, range.cpMax) << page;
            SendMessageW(view, WM_MOUSEMOVE, MK_LBUTTON, from);  // back over the view
            EXPECT_EQ(view, GetFocus()) << page;
            SendMessageW(view, WM_LBUTTONUP, 0, from);
            EXPECT_EQ(L"select 1", EditorWindow::Text());
        }
    });
}

TEST_F(ReferenceTest, AListWithoutASelectedRowOffersNothing) {
    Inside([this] {
        Tree.OpenDownTo({0});
        Tree.Click(Tree.At({0, 0}));  // a folder of tables, where one can be created
        for (const int page : {1, 3}) {
            ShowPage(page);
            EXPECT_NE(L"", Description());
            EXPECT_NE(0U, MenuEntries(L"Action").find(NothingCanBeChosen));
            Unselect(page);
            EXPECT_EQ(L"", Description());
            EXPECT_EQ(0U, MenuEntries(L"Action").find(NothingCanBeChosen)) << page;
            for (const wchar_t* entry : {L"Select", L"Execute", L"Create"}) EditorWindow::Choose(L"Action", entry);
            EXPECT_EQ(L"select 1", EditorWindow::Text());
            // It stays so while the page is left and shown again.
            ShowPage(0);
            EXPECT_EQ(L"Tables: contains a list of tables defined in the HR schema.", Description());
            ShowPage(page);
            EXPECT_EQ(L"", Description());
            EXPECT_EQ(0U, MenuEntries(L"Action").find(NothingCanBeChosen)) << page;
        }
    });
}

TEST_F(ReferenceTest, TheMenuIsMadeReadyWhenItIsShown) {
    Inside([] {
        for (const int page : {1, 3}) {
            ShowPage(page);
            for (const bool byKey : {false, true}) {
                SendMessageW(View(page), LB_SETCURSEL, 0, 0);
                MenuCatcher menu;
                const auto show = [&] {
                    menu.Entries.clear();
                    if (byKey) {
                        SendMessageW(View(page), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(View(page)), -1);
                    } else {
                        SetFocus(EditorWindow::Editor());
                        SendMessageW(View(page), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(5, 5));
                        EXPECT_EQ(View(page), GetFocus());
                        SendMessageW(View(page), WM_RBUTTONUP, 0, MAKELPARAM(5, 5));
                    }
                    return menu.Entries;
                };
                SetCursorPos(0, 0);
                EXPECT_EQ(0U, show().find(L"Select-|Insert-|Update-|Delete-|Execute+")) << page;
                // Where the button came up, or beside the row, wherever the mouse is.
                POINT at{5, 5};
                ClientToScreen(View(page), &at);
                RECT bounds;
                GetWindowRect(View(page), &bounds);
                if (byKey) {
                    EXPECT_TRUE(PtInRect(&bounds, menu.At)) << page;
                } else {
                    EXPECT_EQ(at.x, menu.At.x) << page;
                    EXPECT_EQ(at.y, menu.At.y) << page;
                }
                // No row is selected any more, and the list has told nobody.
                SendMessageW(View(page), LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
                EXPECT_EQ(0U, show().find(NothingCanBeChosen)) << page << byKey;
            }
        }
    });
}

TEST_F(ReferenceTest, EmptySpaceOfTheTreeChangesNothing) {
    Inside([this] {
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 900, 900, SWP_NOMOVE | SWP_NOZORDER);
        ShowPage(2);
        Reference.Open(Reference.At({}));
        Reference.Click(Reference.At({0}));
        const std::wstring before = Description();
        ASSERT_NE(L"", before);
        const std::wstring menu = MenuEntries(L"Action");
        RECT client;
        GetClientRect(Reference.Handle(), &client);
        const LPARAM below = MAKELPARAM(client.right - 3, client.bottom - 3);
        SendMessageW(Reference.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, below);
        SendMessageW(Reference.Handle(), WM_LBUTTONUP, 0, below);
        EXPECT_EQ(before, Description());
        EXPECT_EQ(menu, MenuEntries(L"Action"));
        EXPECT_EQ(Reference.At({0}), Reference.Selected());
    });
}

TEST_F(ReferenceTest, ThePageDescribesItsEntryAgainWhenItIsShownAgain) {
    Inside([this] {
        ShowPage(2);
        const HTREEITEM numbers = Reference.Next(TVGN_NEXT, Reference.At({}));
        Reference.Open(numbers);
        Reference.Click(Reference.Named(numbers, L"ABS(n)"));
        const std::wstring described = Description();
        EXPECT_EQ(L"Absolute value of n.", described);
        for (const int other : {0, 1, 3}) {
            ShowPage(other);
            EXPECT_NE(described, Description()) << other;
            ShowPage(2);
            EXPECT_EQ(described, Description()) << other;
            EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select-|Insert-|Update-|Delete-|Execute+|Create-|Tasks-"));
            EXPECT_EQ(Reference.Handle(), GetFocus());
        }
        // A category has no description.
        Reference.Click(Reference.At({}));
        ShowPage(1);
        ShowPage(2);
        EXPECT_EQ(L"", Description());
        EXPECT_EQ(0U, MenuEntries(L"Action").find(NothingCanBeChosen));
    });
}

TEST_F(ReferenceTest, TheTreesAreClosedWhenTheWindowIsLoaded) {
    Inside([this] {
        for (const EditorTree* tree : {&Reference, static_cast<const EditorTree*>(&Tree)}) {
            for (HTREEITEM root = tree->At({}); root != nullptr; root = tree->Next(TVGN_NEXT, root)) {
                EXPECT_EQ(
                    0, SendMessageW(tree->Handle(), TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(root), TVIS_EXPANDED) &
                           TVIS_EXPANDED);
            }
        }
        EXPECT_EQ(Reference.At({}), Reference.Selected());
        // No node has an image.
        for (const EditorTree* tree : {&Reference, static_cast<const EditorTree*>(&Tree)})
            EXPECT_EQ(0, SendMessageW(tree->Handle(), TVM_GETIMAGELIST, TVSIL_NORMAL, 0));
    });
}

// ---- drops of other programs

TEST_F(ReferenceTest, TextGoesBeforeFiles) {
    const auto rich = static_cast<CLIPFORMAT>(RegisterClipboardFormatW(L"Rich Text Format"));
    const auto dropped = [this](const std::function<void(TestData&)>& fill, std::vector<CLIPFORMAT>& asked) {
        return Inside(L"", [&] {
            TestData data;
            data.AddFiles({L"C:\\no such folder\\no such file.sql"});
            fill(data);
            POINT at = Start();
            ClientToScreen(EditorWindow::Editor(), &at);
            EXPECT_EQ(DWORD{DROPEFFECT_COPY}, DropOnEditor(data, {at.x, at.y}));
            asked = data.Asked;
        });
    };
    std::vector<CLIPFORMAT> asked;
    EXPECT_EQ(L"text", dropped([](TestData& data) { data.AddText(L"text"); }, asked));
    EXPECT_EQ(L"rich", dropped([](TestData& data) { data.AddRichText("{\\rtf1\\ansi rich}"); }, asked));
    ASSERT_FALSE(asked.empty());
    EXPECT_EQ(rich, asked[0]);
    EXPECT_EQ(L"ansi", dropped([](TestData& data) { data.Add(CF_TEXT, std::string("ansi\0", 5)); }, asked));
}
