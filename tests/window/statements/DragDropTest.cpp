#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include "support/Browsed.h"

namespace {

class DragDropTest : public BrowsedFixture {
protected:
    DragDropTest() { Columns({L"ID", L"NAME", L"CITY"}); }

    // Where a place of one window lies in another, as the word of a mouse message.
    static LPARAM Mapped(HWND from, HWND to, POINT at) {
        MapWindowPoints(from, to, &at, 1);
        return MAKELPARAM(at.x, at.y);
    }
    static POINT PlaceOf(LONG position) {
        POINTL at{};
        SendMessageW(EditorWindow::Editor(), EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&at), position);
        return {at.x + 1, at.y + 3};
    }
    static LONG Caret() {
        const CHARRANGE range = EditorWindow::Selection();
        EXPECT_EQ(range.cpMin, range.cpMax);
        return range.cpMin;
    }
    // Presses in a view, moves over the editor to a character of its text and lets go there.
    static void Drag(HWND view, POINT from, LONG to) {
        SendMessageW(view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(from.x, from.y));
        SendMessageW(view, WM_MOUSEMOVE, MK_LBUTTON, Mapped(EditorWindow::Editor(), view, PlaceOf(to)));
        SendMessageW(view, WM_LBUTTONUP, 0, Mapped(EditorWindow::Editor(), view, PlaceOf(to)));
    }
    // What dragging a node into the empty editor inserts.
    std::wstring Dropped(const EditorTree& tree, HTREEITEM item) {
        EditorWindow::SetText(L"");
        SendMessageW(tree.Handle(), TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
        POINT at{};
        EXPECT_TRUE(tree.Place(item, at));
        Drag(tree.Handle(), at, 0);
        return EditorWindow::Text();
    }
    void OpenTable() {
        Tree.OpenDownTo({0, 0, 0});
        Tree.Open(Tree.At({0, 0, 0, 0, 0}));
        Tree.Open(Tree.At({0, 0, 0, 0, 0, 0}));
    }
};

}  // namespace

TEST_F(DragDropTest, EachKindOfNodeDropsItsText) {
    Inside([this] {
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 900, 900, SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_EQ(L"", Dropped(Tree, Tree.At({})));  // not read yet: a placeholder gives no name
        Tree.OpenDownTo({0});
        EXPECT_EQ(L"\r\n", Dropped(Tree, Tree.At({0, 0})));  // two placeholders
        OpenTable();
        EXPECT_EQ(L"HR\r\nCurrent Schema\r\nCurrent Schema\r\nSales & Co", Dropped(Tree, Tree.At({})));
        EXPECT_EQ(L"HR", Dropped(Tree, Tree.At({0})));
        EXPECT_EQ(L"ORDERS\r\nodd \"name\"", Dropped(Tree, Tree.At({0, 0})));
        EXPECT_EQ(L"odd \"name\"", Dropped(Tree, Tree.At({0, 0, 1})));
        EXPECT_EQ(L"ID, NAME, CITY", Dropped(Tree, Tree.At({0, 0, 0, 0})));
        EXPECT_EQ(L"ID", Dropped(Tree, Tree.At({0, 0, 0, 0, 0})));
        EXPECT_EQ(L"", Dropped(Tree, Tree.At({0, 0, 0, 0, 0, 0})));     // properties
        EXPECT_EQ(L"", Dropped(Tree, Tree.At({0, 0, 0, 0, 0, 0, 1})));  // a property
        Tree.Open(Tree.At({0, 1}));
        EXPECT_EQ(L"ORDERS\r\nodd \"name\"", Dropped(Tree, Tree.At({0, 1})));
        EXPECT_EQ(L"ORDERS", Dropped(Tree, Tree.At({0, 1, 0})));
    });
}

TEST_F(DragDropTest, TheReferenceDropsItsEntries) {
    Inside([this] {
        ShowPage(1);
        EditorWindow::SetText(L"");
        Drag(View(1), {5, 5}, 0);
        EXPECT_EQ(L"COMMIT", EditorWindow::Text().substr(0, 6));
        ShowPage(3);
        EditorWindow::SetText(L"");
        Drag(View(3), {5, 5}, 0);
        EXPECT_EQ(L"@", EditorWindow::Text().substr(0, 1));

        ShowPage(2);
        const EditorTree reference(EditorTree::DatabaseSpecific);
        EXPECT_EQ(L"", Dropped(reference, reference.At({})));  // a category
        reference.Open(reference.At({}));
        EXPECT_NE(L"", Dropped(reference, reference.At({0})));
    });
}

// What is dragged may go while it is dragged.
TEST_F(DragDropTest, WhatFailsIsNotOfferedAndReportedWhenItIsDropped) {
    Inside([] {
        ShowPage(1);
        const HWND list = View(1);
        const HWND editor = EditorWindow::Editor();
        EditorWindow::SetText(L"text");
        SendMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
        SendMessageW(list, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, 45));
        SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
        SendMessageW(list, WM_MOUSEMOVE, MK_LBUTTON, Mapped(editor, list, PlaceOf(0)));
        EXPECT_EQ(LoadCursorW(nullptr, IDC_NO), GetCursor());
        SendMessageW(list, WM_LBUTTONUP, 0, Mapped(editor, list, PlaceOf(0)));
        EXPECT_EQ(L"text", EditorWindow::Text());
    });
    EXPECT_EQ(0U, Errors.Places().find(L"frmSQLEditor.rtbSQL_DragDrop ")) << testing::PrintToString(Errors.Places());
}

TEST_F(DragDropTest, TheCaretFollowsAndTheFocusGoesAndComes) {
    Inside(L"first\r\nsecond line\r\nthird", [this] {
        Tree.Open(Tree.At({}));
        SetFocus(Tree.Handle());
        POINT at{};
        ASSERT_TRUE(Tree.Place(Tree.At({3}), at));
        const HWND tree = Tree.Handle();
        const HWND editor = EditorWindow::Editor();
        SendMessageW(editor, EM_SETSEL, 2, 6);
        SendMessageW(tree, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        EXPECT_EQ(Tree.At({3}), Tree.Selected());
        // A hand is not steady: still a click.
        SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(at.x + 1, at.y));
        SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, Mapped(editor, tree, PlaceOf(10)));
        EXPECT_EQ(tree, GetCapture());
        EXPECT_EQ(editor, GetFocus());
        EXPECT_EQ(10, Caret());
        SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, Mapped(editor, tree, PlaceOf(16)));
        EXPECT_EQ(16, Caret());
        SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(at.x, at.y));  // back over the tree
        EXPECT_EQ(tree, GetFocus());
        SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, Mapped(editor, tree, PlaceOf(12)));
        EXPECT_EQ(editor, GetFocus());
        SendMessageW(tree, WM_LBUTTONUP, 0, Mapped(editor, tree, PlaceOf(7)));
        EXPECT_EQ(nullptr, GetCapture());
        EXPECT_EQ(editor, GetFocus());
        EXPECT_EQ(L"first\r\nsSales & Coecond line\r\nthird", EditorWindow::Text());
        EXPECT_EQ(L"Sales & Co", EditorWindow::SelectedText());
    });
}

namespace {
CHARRANGE atFocus{};  // what was selected in the editor when it was last given the focus
}

// A control scrolls to what is selected in it when it gets the focus.
TEST_F(DragDropTest, TheCaretIsThereBeforeTheFocus) {
    Inside(L"first\r\nsecond line\r\nthird", [this] {
        Tree.Open(Tree.At({}));
        SetFocus(Tree.Handle());
        POINT at{};
        ASSERT_TRUE(Tree.Place(Tree.At({3}), at));
        SendMessageW(EditorWindow::Editor(), EM_SETSEL, 2, 6);
        const HHOOK hook = SetWindowsHookExW(
            WH_CALLWNDPROC,
            [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
                const auto& one = *reinterpret_cast<const CWPSTRUCT*>(lParam);
                if (code == HC_ACTION && one.message == WM_SETFOCUS && one.hwnd == EditorWindow::Editor()) {
                    atFocus = EditorWindow::Selection();
                }
                return CallNextHookEx(nullptr, code, wParam, lParam);
            },
            nullptr, GetCurrentThreadId());
        const HWND tree = Tree.Handle();
        SendMessageW(tree, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, Mapped(EditorWindow::Editor(), tree, PlaceOf(10)));
        UnhookWindowsHookEx(hook);
        EXPECT_EQ(EditorWindow::Editor(), GetFocus());
        EXPECT_EQ(10, atFocus.cpMin);
        EXPECT_EQ(10, atFocus.cpMax);
        SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        SendMessageW(tree, WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
    });
}

TEST_F(DragDropTest, LettingGoElsewhereDropsNothing) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        POINT at{};
        ASSERT_TRUE(Tree.Place(Tree.At({0}), at));
        Database.Log.clear();
        SendMessageW(Tree.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        SendMessageW(Tree.Handle(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(at.x + 20, at.y + 20));
        SendMessageW(Tree.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(at.x + 20, at.y + 20));
        EXPECT_EQ(L"select 1", EditorWindow::Text());
        EXPECT_EQ(nullptr, GetCapture());
        EXPECT_EQ(L"", Database.Logged());  // and it was no click
        // Another button with the left one starts nothing.
        for (const WPARAM another : {MK_RBUTTON, MK_MBUTTON}) {
            SendMessageW(Tree.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
            SendMessageW(Tree.Handle(), WM_MOUSEMOVE, MK_LBUTTON | another,
                         Mapped(EditorWindow::Editor(), Tree.Handle(), PlaceOf(2)));
            EXPECT_NE(EditorWindow::Editor(), GetFocus());
            SendMessageW(Tree.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
            EXPECT_EQ(L"select 1", EditorWindow::Text());
        }
    });
}

TEST_F(DragDropTest, AMouseThatMovesSidewaysOrDownDrags) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        const HWND tree = Tree.Handle();
        POINT at{};
        ASSERT_TRUE(Tree.Place(Tree.At({3}), at));
        const LONG steps[][2] = {{GetSystemMetrics(SM_CXDRAG), 0}, {0, GetSystemMetrics(SM_CYDRAG)}};
        for (const auto& [across, down] : steps) {
            EditorWindow::SetText(L"");
            SendMessageW(tree, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
            SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(at.x + across, at.y + down));
            SendMessageW(tree, WM_LBUTTONUP, 0, Mapped(EditorWindow::Editor(), tree, PlaceOf(0)));
            EXPECT_EQ(L"Sales & Co", EditorWindow::Text()) << across << "," << down;
        }
    });
}

TEST_F(DragDropTest, TheLossOfTheMouseCancels) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        POINT at{};
        ASSERT_TRUE(Tree.Place(Tree.At({0}), at));
        const HWND tree = Tree.Handle();
        SendMessageW(tree, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, Mapped(EditorWindow::Editor(), tree, PlaceOf(2)));
        EXPECT_EQ(EditorWindow::Editor(), GetFocus());
        ReleaseCapture();
        EXPECT_EQ(tree, GetFocus());  // as when it leaves the editor
        SendMessageW(tree, WM_LBUTTONUP, 0, Mapped(EditorWindow::Editor(), tree, PlaceOf(2)));
        EXPECT_EQ(L"select 1", EditorWindow::Text());
    });
}

TEST_F(DragDropTest, WhatWasDraggedIsDescribedAndInTheActionMenu) {
    Inside([this] {
        OpenTable();
        Tree.Click(Tree.At({}));
        OpenTable();
        Tree.Click(Tree.At({0}));
        POINT at{};
        SendMessageW(Tree.Handle(), TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(Tree.At({0, 0})));
        ASSERT_TRUE(Tree.Place(Tree.At({0, 0}), at));
        Database.Log.clear();
        Drag(Tree.Handle(), at, 0);
        EXPECT_EQ(L"Tables: contains a list of tables defined in the HR schema.", Description());
        EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select+|Insert-|Update-|Delete-|Execute-|Create+|Tasks+"));
        EXPECT_EQ(L"", Database.Logged());
        // The mouse is taken away before the button comes up.
        ASSERT_TRUE(Tree.Place(Tree.At({0}), at));
        SendMessageW(Tree.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        ReleaseCapture();
        EXPECT_EQ(L"HR schema: contains a list of database objects (tables and views).", Description());
        EXPECT_EQ(L"", Database.Logged());
    });
}

TEST_F(DragDropTest, EmptySpaceInATreeStartsNoDrag) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        Tree.Click(Tree.At({0}));
        RECT client;
        GetClientRect(Tree.Handle(), &client);
        Drag(Tree.Handle(), {client.right - 3, client.bottom - 3}, 0);
        EXPECT_EQ(L"select 1", EditorWindow::Text());
        // Nor does a button that was pressed elsewhere.
        SendMessageW(Tree.Handle(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(20, 20));
        EXPECT_EQ(nullptr, GetCapture());
        SendMessageW(Tree.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(20, 20));
        EXPECT_EQ(L"select 1", EditorWindow::Text());
    });
}

TEST_F(DragDropTest, ComingInDoesNotScrollBackToTheCaretAndTheEdgesScroll) {
    std::wstring lines;
    for (int line = 0; line < 200; ++line) lines += std::to_wstring(line) + L"\r\n";
    Inside(lines, [this] {
        const HWND editor = EditorWindow::Editor();
        const HWND tree = Tree.Handle();
        const auto first = [&] { return SendMessageW(editor, EM_GETFIRSTVISIBLELINE, 0, 0); };
        Tree.Open(Tree.At({}));
        POINT at{};
        ASSERT_TRUE(Tree.Place(Tree.At({0}), at));
        SendMessageW(editor, EM_SETSEL, 0, 0);
        SendMessageW(editor, EM_LINESCROLL, 0, 100);
        const LRESULT scrolled = first();
        ASSERT_GT(scrolled, 50);
        RECT client;
        GetClientRect(editor, &client);
        SendMessageW(tree, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        const auto held = [&](LONG x, LONG y) {
            for (int times = 0; times < 8; ++times) {
                SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, Mapped(editor, tree, {x, y}));
                Sleep(30);
            }
        };
        held(50, client.bottom / 2);
        EXPECT_EQ(editor, GetFocus());
        EXPECT_EQ(scrolled, first());
        held(50, 3);
        const LRESULT up = first();
        EXPECT_LT(up, scrolled);
        EXPECT_GE(up, scrolled - 8);  // a step a call, at most
        held(50, client.bottom - 3);
        EXPECT_GT(first(), up);
        // Over a scroll bar the caret stays in sight, and nothing is reported.
        held(client.right + 3, client.bottom + 3);
        EXPECT_GE(Caret(), SendMessageW(editor, EM_LINEINDEX, static_cast<WPARAM>(first()), 0));
        SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        SendMessageW(tree, WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
    });
}

TEST_F(DragDropTest, AListWithoutASelectedRowIsReported) {
    Inside([] {
        ShowPage(1);
        SendMessageW(View(1), LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
        // Below the last row, where a press selects none.
        SendMessageW(View(1), WM_MOUSEMOVE, MK_LBUTTON, Mapped(EditorWindow::Editor(), View(1), PlaceOf(2)));
        SendMessageW(View(1), WM_LBUTTONUP, 0, Mapped(EditorWindow::Editor(), View(1), PlaceOf(2)));
        EXPECT_EQ(L"select 1", EditorWindow::Text());
    });
    EXPECT_EQ(L"frmSQLEditor.rtbSQL_DragDrop 5", Errors.Places());
}

TEST_F(DragDropTest, BehindTheEndOfALineTheCaretStaysInTheLine) {
    Inside(L"SELECT\r\nfrom", [this] {
        Tree.Open(Tree.At({}));
        POINT at{};
        ASSERT_TRUE(Tree.Place(Tree.At({0}), at));
        const HWND tree = Tree.Handle();
        const HWND editor = EditorWindow::Editor();
        SendMessageW(tree, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        const POINT end = PlaceOf(6);
        for (const int right : {0, 10, 60}) {
            SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, Mapped(editor, tree, {end.x + right, end.y}));
            EXPECT_EQ(6, Caret()) << right;
        }
        SendMessageW(tree, WM_MOUSEMOVE, MK_LBUTTON, Mapped(editor, tree, {end.x, end.y + 100}));
        EXPECT_EQ(7 + 4, Caret());  // below the last line: in the last line
        SendMessageW(tree, WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
    });
}
