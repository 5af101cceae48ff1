#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include "support/Browsed.h"

namespace {

class ActionMenuTest : public BrowsedFixture {
protected:
    // The first row or node of the reference whose text begins so, as its item in the view of the page.
    static void SelectRow(int page, const wchar_t* text) {
        const HWND list = View(page);
        const LRESULT row = SendMessageW(list, LB_FINDSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text));
        ASSERT_GE(row, 0);
        RECT place{};
        SendMessageW(list, LB_SETTOPINDEX, static_cast<WPARAM>(row), 0);
        SendMessageW(list, LB_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&place));
        const LPARAM at = MAKELPARAM(place.left + 4, (place.top + place.bottom) / 2);
        SendMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, at);
        SendMessageW(list, WM_LBUTTONUP, 0, at);
    }
    void OpenTables() {
        Tree.OpenDownTo({0, 0});
        Tree.Open(Tree.At({0, 1}));
    }
};

}  // namespace

TEST_F(ActionMenuTest, TheEntriesFollowTheKindOfNode) {
    Inside([this] {
        // Nothing is selected yet.
        EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks-"));
        OpenTables();
        Tree.Click(Tree.At({0, 0, 0}));
        EXPECT_EQ(L"Select+|Insert+|Update+|Delete+|Execute-|Create-|Tasks+[Count rows+|Describe table+|Sample rows+]",
                  MenuEntries(L"Action"));
        Tree.Click(Tree.At({0, 1, 0}));
        EXPECT_EQ(L"Select+|Insert-|Update-|Delete-|Execute-|Create-|Tasks+[Count rows+|Describe view+|Sample rows+]",
                  MenuEntries(L"Action"));
        Tree.Click(Tree.At({0, 0}));
        EXPECT_EQ(
            L"Select+|Insert-|Update-|Delete-|Execute-|Create+|Tasks+[Count rows in all tables+|Describe all "
            L"tables+|Sample "
            L"rows from all tables+]",
            MenuEntries(L"Action"));
        Tree.Click(Tree.At({0, 1}));
        EXPECT_EQ(
            L"Select+|Insert-|Update-|Delete-|Execute-|Create-|Tasks+[Count rows in all views+|Describe all "
            L"views+|Sample "
            L"rows from all views+]",
            MenuEntries(L"Action"));
        Tree.Click(Tree.At({0}));
        EXPECT_EQ(L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks+[Describe all tables/views+]",
                  MenuEntries(L"Action"));
        // Where there are no tasks, the submenu keeps its entries and cannot be opened.
        Tree.Open(Tree.At({0, 0}));
        Tree.Open(Tree.At({0, 0, 0}));
        Tree.Click(Tree.At({0, 0, 0, 0, 0}));
        EXPECT_EQ(L"Select+|Insert+|Update+|Delete-|Execute-|Create-|Tasks-[Count rows+|Describe table+|Sample rows+]",
                  MenuEntries(L"Action"));
        Tree.Click(Tree.At({0, 0, 0, 0}));
        EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks-"));
        Tree.Click(Tree.At({}));
        EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks-"));
    });
}

TEST_F(ActionMenuTest, TheEntriesFollowTheReferenceToo) {
    Inside([this] {
        OpenTables();
        Tree.Click(Tree.At({0, 0}));
        ShowPage(1);
        SelectRow(1, L"COMMIT");
        // Create stays with the folder that is selected in the object browser.
        EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select-|Insert-|Update-|Delete-|Execute+|Create+|Tasks-"))
            << "COMMIT";
        ShowPage(2);
        const EditorTree reference(EditorTree::DatabaseSpecific);
        reference.Click(reference.At({}));
        EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks-"))
            << "a category";
        EXPECT_EQ(L"", Description());
    });
}

TEST_F(ActionMenuTest, WhatWasInsertedStandsSelectedBehindWhatWasSelected) {
    Inside([this] {
        OpenTables();
        Tree.Click(Tree.At({0, 0, 0}));
        EditorWindow::Select(0, 6);
        EditorWindow::Choose(L"Action", L"Count rows");
        EXPECT_EQ(L"select\r\nSELECT COUNT(*) FROM HR.ORDERS;\r\n 1", EditorWindow::Text());
        EXPECT_EQ(L"SELECT COUNT(*) FROM HR.ORDERS;\r",
                  EditorWindow::SelectedText());  // the line break before it is not selected
        // One step of undo takes it back, and the next brings nothing else.
        SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
        EXPECT_EQ(L"select 1", EditorWindow::Text());
    });
}

TEST_F(ActionMenuTest, PositionsCountALineBreakAsTwo) {
    Inside(L"a\r\nb\r\nc\r\nd\r\ne", [this] {
        OpenTables();
        Tree.Click(Tree.At({0, 0, 0}));
        EditorWindow::Select(8, 8);  // after "a\r\nb\r\nc\r\nd\r\n": the control counts one for each
        EditorWindow::Choose(L"Action", L"Count rows");
        EXPECT_EQ(L"a\r\nb\r\nc\r\nd\r\n\r\nSELECT COUNT(*) FROM HR.ORDERS;\r\ne", EditorWindow::Text());
        EXPECT_EQ(L"SELECT COUNT(*) FROM HR.ORDERS;\r", EditorWindow::SelectedText());
    });
}

TEST_F(ActionMenuTest, TheInsertionIsScrolledIntoView) {
    std::wstring lines;
    for (int at = 0; at < 300; ++at) lines += L"line " + std::to_wstring(at) + L"\r\n";
    Inside(lines, [this] {
        OpenTables();
        Tree.Click(Tree.At({0, 0, 0}));
        const HWND editor = EditorWindow::Editor();
        EditorWindow::Select(0x7FFFFFF, 0x7FFFFFF);
        SendMessageW(editor, WM_VSCROLL, SB_TOP, 0);
        EXPECT_EQ(0, SendMessageW(editor, EM_GETFIRSTVISIBLELINE, 0, 0));
        EditorWindow::Choose(L"Action", L"Count rows");
        EXPECT_GT(SendMessageW(editor, EM_GETFIRSTVISIBLELINE, 0, 0), 250);
    });
}

TEST_F(ActionMenuTest, AnEntryOfTheReferenceInsertsItsText) {
    Inside([] {
        ShowPage(1);
        SelectRow(1, L"COMMIT");
        EditorWindow::Select(100, 100);
        EditorWindow::Choose(L"Action", L"Execute");
        EXPECT_EQ(L"select 1\r\nCOMMIT;\r\n", EditorWindow::Text());
        // Disabled entries insert nothing, however they are reached.
        EditorWindow::Choose(L"Action", L"Insert");
        EXPECT_EQ(L"select 1\r\nCOMMIT;\r\n", EditorWindow::Text());
    });
}

TEST_F(ActionMenuTest, CreateAsksTheHostForTheStatement) {
    std::wstring given = L"?";
    bool types = false;
    Database.Members[L"ShowCreateTableDialog1"] = [&](const Arguments& a) {
        given = a[0].ToText() + (a[1].ToBoolean() ? L"true" : L"false");
        types = a.Count() == 2 && a.Raw(0)->vt == (VT_BYREF | VT_BSTR) && a.Raw(1)->vt == (VT_BYREF | VT_BOOL);
        a.Let(0, Variant(L"CREATE TABLE t (a int)"));
        return Variant();
    };
    Inside([this] {
        OpenTables();
        Tree.Click(Tree.At({0, 0}));
        EditorWindow::Select(100, 100);
        EditorWindow::Choose(L"Action", L"Create");
        EXPECT_EQ(L"select 1\r\nCREATE TABLE t (a int);\r\n", EditorWindow::Text());
        EXPECT_EQ(L"CREATE TABLE t (a int);\r", EditorWindow::SelectedText());
    });
    EXPECT_EQ(L"false", given);
    EXPECT_TRUE(types);
}

TEST_F(ActionMenuTest, ACancelledCreateInsertsNothing) {
    int asked = 0;
    Database.Members[L"ShowCreateTableDialog1"] = [&](const Arguments& a) {
        switch (asked++) {
            case 0:
                a.Let(0, Variant(L"CREATE TABLE t (a int)"));
                a.Let(1, Variant(true));
                break;
            case 1:
                break;  // no text
            default:
                RaiseError(77, L"brvADO", L"no");
        }
        return Variant();
    };
    Inside([this] {
        OpenTables();
        Tree.Click(Tree.At({0, 0}));
        for (int times = 0; times < 3; ++times) EditorWindow::Choose(L"Action", L"Create");
        EXPECT_EQ(L"select 1", EditorWindow::Text());
    });
    EXPECT_EQ(3, asked);
    EXPECT_EQ(L"frmSQLEditor.mnuActionCreate_Click 77", Errors.Places());
}

TEST_F(ActionMenuTest, TheRightButtonShowsItOverTheReference) {
    Inside([] {
        MenuCatcher menu;
        const struct {
            int Page;
            const wchar_t* Entries;
        } pages[] = {{1, L"Select-|Insert-|Update-|Delete-|Execute+|Create-|Tasks-"},
                     {2, L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks-"},
                     {3, L"Select-|Insert-|Update-|Delete-|Execute"}};
        for (const auto& page : pages) {
            ShowPage(page.Page);
            menu.Menus = 0;
            SendMessageW(View(page.Page), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(5, 5));
            SendMessageW(View(page.Page), WM_RBUTTONUP, 0, MAKELPARAM(5, 5));
            EXPECT_EQ(1, menu.Menus) << page.Page;
            EXPECT_EQ(0U, menu.Entries.find(page.Entries)) << page.Page;
            // The key opens it as well.
            menu.Menus = 0;
            SendMessageW(View(page.Page), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(View(page.Page)), -1);
            EXPECT_EQ(1, menu.Menus) << page.Page;
            // The left button does not.
            menu.Menus = 0;
            SendMessageW(View(page.Page), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
            SendMessageW(View(page.Page), WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
            EXPECT_EQ(0, menu.Menus) << page.Page;
        }
    });
}

// A row that another program selects by a message raises no event.
TEST_F(ActionMenuTest, TheRightButtonBringsItUpToDate) {
    Inside([] {
        const MenuCatcher menu;
        for (const int page : {1, 3}) {
            SCOPED_TRACE(page);
            ShowPage(page);
            const HWND list = View(page);
            const std::wstring first = MenuEntries(L"Action");
            EXPECT_NE(std::wstring::npos, first.find(L"|Execute+|")) << testing::PrintToString(first);
            SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
            SendMessageW(list, WM_MBUTTONDOWN, MK_MBUTTON, MAKELPARAM(5, 5));
            SendMessageW(list, WM_MBUTTONUP, 0, MAKELPARAM(5, 5));
            EXPECT_EQ(first, MenuEntries(L"Action"));
            SendMessageW(list, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(5, 5));
            EXPECT_NE(std::wstring::npos, MenuEntries(L"Action").find(L"|Execute-|"));
            SendMessageW(list, WM_RBUTTONUP, 0, MAKELPARAM(5, 5));
            // So does the key, and a click on a row.
            SendMessageW(list, LB_SETCURSEL, 0, 0);
            SendMessageW(list, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list), -1);
            EXPECT_EQ(first, MenuEntries(L"Action"));
            SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
            SendMessageW(list, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list), -1);
            EXPECT_NE(first, MenuEntries(L"Action"));
            SendMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
            SendMessageW(list, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
            EXPECT_EQ(first, MenuEntries(L"Action"));
        }
    });
}
