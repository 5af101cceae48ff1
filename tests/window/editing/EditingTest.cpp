#include "editor/ControlIds.h"
#include "support/Editing.h"

class EditingTest : public EditingFixture {};

TEST_F(EditingTest, CutAndDeleteFollowTheFocus) {
    Inside([this] {
        Choose(L"Find Next");  // opens the menu
        EXPECT_EQ(
            0U, MenuEntries(L"Edit").find(L"Cut+|Copy+|Paste+|Delete+|Make Lower Case+|Make Upper Case+|Find...+|Find "
                                          L"Next+|Replace...+|Goto...+|Select All+|Time/Date+"));
        SetFocus(Tree.Handle());
        Choose(L"Find Next");
        EXPECT_EQ(0U, MenuEntries(L"Edit").find(L"Cut-|Copy+|Paste+|Delete-|Make Lower Case+"));
        SetFocus(EditorWindow::Editor());
        Choose(L"Find Next");
        EXPECT_EQ(0U, MenuEntries(L"Edit").find(L"Cut+|Copy+|Paste+|Delete+"));
    });
}

TEST_F(EditingTest, DeleteTakesTheSelectionAway) {
    EXPECT_EQ(L"one two", Inside(L"one and two", [] {
                  SelectText(3, 7);
                  Choose(L"Delete");
                  EXPECT_EQ(L"3-3", Selection());
                  Choose(L"Delete");  // nothing is selected
              }));
}

TEST_F(EditingTest, TheCaseOfTheSelectionChanges) {
    EXPECT_EQ(L"select \u00c4\u0416 FROM t", Inside(L"SELECT \u00e4\u0436 from t", [] {
                  SelectText(0, 6);
                  Choose(L"Make Lower Case");
                  EXPECT_EQ(L"0-6", Selection());
                  SelectText(7, 14);
                  Choose(L"Make Upper Case");
                  EXPECT_EQ(L"7-14", Selection());
                  SelectText(15, 15);
                  Choose(L"Make Upper Case");  // nothing is selected
              }));
}

TEST_F(EditingTest, TheCaseChangesOverLineEndsAndInOneStepOfUndo) {
    EXPECT_EQ(L"a\r\nb\r\nc", Inside(L"a\r\nb\r\nc", [] {
                  SelectText(0, 5);
                  Choose(L"Make Upper Case");
                  EXPECT_EQ(L"A\r\nB\r\nC", EditorWindow::Text());
                  EXPECT_EQ(L"0-5", Selection());
                  SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
              }));
}

TEST_F(EditingTest, SelectAllSelectsTheWholeText) {
    Inside(L"a\r\nb\r\nc", [] {
        SelectText(2, 3);
        Choose(L"Select All");
        EXPECT_EQ(L"0-5", Selection());
    });
    Inside(L"", [] {
        Choose(L"Select All");
        EXPECT_EQ(L"0-0", Selection());
    });
}

TEST_F(EditingTest, TheTimeReplacesTheSelection) {
    const auto now = [] {
        SYSTEMTIME local;
        GetLocalTime(&local);
        local.wMilliseconds = 0;
        DATE date = 0;
        SystemTimeToVariantTime(&local, &date);
        return date;
    };
    const DATE before = now();
    const std::wstring text = Inside(L"a xxx b", [] {
        SelectText(2, 5);
        Choose(L"Time/Date");
    });
    const DATE after = now();
    ASSERT_LT(4U, text.size());
    std::wstring written = text.substr(2, text.size() - 4);
    EXPECT_EQ(L"a " + written + L" b", text);
    Variant time;
    ASSERT_EQ(S_OK, VarDateFromStr(written.data(), LOCALE_USER_DEFAULT, 0, &time.date))
        << testing::PrintToString(written);
    time.vt = VT_DATE;
    EXPECT_EQ(written, time.ToText());
    constexpr DATE second = 1.0 / 86400;
    EXPECT_LT(before - second / 2, time.date);
    EXPECT_GT(after + second / 2, time.date);
}

TEST_F(EditingTest, ReplaceAndGotoDoNothing) {
    EXPECT_EQ(L"text", Inside(L"text", [] {
                  Choose(L"Replace...");
                  Choose(L"Goto...");
              }));
}

TEST_F(EditingTest, TheRightButtonAndTheKeyShowTheEditMenu) {
    Inside([] {
        MenuCatcher menu;
        const HWND editor = EditorWindow::Editor();
        SetFocus(EditorWindow::Control(IdLeftButton));
        SendMessageW(editor, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(20, 20));
        EXPECT_EQ(editor, GetFocus());
        EXPECT_EQ(0, menu.Menus);
        SendMessageW(editor, WM_RBUTTONUP, 0, MAKELPARAM(20, 20));
        EXPECT_EQ(1, menu.Menus);
        EXPECT_EQ(0U, menu.Entries.find(L"Cut+"));
        POINT at{20, 20};
        ClientToScreen(editor, &at);
        EXPECT_EQ(at.x, menu.At.x);
        EXPECT_EQ(at.y, menu.At.y);
        // A pen or a finger that is held down.
        menu.Menus = 0;
        SendMessageW(editor, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(editor), MAKELPARAM(at.x + 5, at.y));
        EXPECT_EQ(1, menu.Menus);
        EXPECT_EQ(at.x + 5, menu.At.x);
        SendMessageW(editor, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(editor), -1);
        EXPECT_EQ(2, menu.Menus);
        RECT bounds;
        GetWindowRect(editor, &bounds);
        EXPECT_TRUE(PtInRect(&bounds, menu.At));
        // The left button does not.
        SendMessageW(editor, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(20, 20));
        SendMessageW(editor, WM_LBUTTONUP, 0, MAKELPARAM(20, 20));
        EXPECT_EQ(2, menu.Menus);
        // With the focus in the editor, Cut can be chosen.
        EXPECT_EQ(0U, MenuEntries(L"Edit").find(L"Cut+"));
    });
}

TEST_F(EditingTest, TheTabKeyWritesATab) {
    EXPECT_EQ(L"a\tb", Inside(L"ab", [] {
                  const HWND editor = EditorWindow::Editor();
                  SelectText(1, 1);
                  SendMessageW(editor, WM_KEYDOWN, VK_TAB, 1);
                  SendMessageW(editor, WM_CHAR, L'\t', 1);
                  EXPECT_EQ(editor, GetFocus());
              }));
}

TEST_F(EditingTest, ShortcutsStandBesideTheCaptions) {
    Inside([] {
        const HMENU edit = GetSubMenu(GetMenu(EditorWindow::Find()), 1);
        std::wstring all;
        for (int at = 0; at < GetMenuItemCount(edit); ++at) {
            wchar_t text[100]{};
            GetMenuStringW(edit, static_cast<UINT>(at), text, 100, MF_BYPOSITION);
            if (*text != L'\0') all += std::wstring(text) + L"|";
        }
        EXPECT_EQ(
            L"Cu&t\tCtrl+X|&Copy\tCtrl+C|&Paste\tCtrl+V|&Delete\tDel|Make &Lower Case|Make &Upper "
            L"Case|&Find...\tCtrl+F|Find "
            L"&Next\tF3|&Replace...|&Goto...|Select &All\tCtrl+A|Time/&Date|",
            all);
    });
}
