#include "support/Steps.h"

#include <commctrl.h>

// The small windows of Ctrl+H and Ctrl+G, opened by their keys and worked by their controls.
class FindWindowsTest : public StepsFixture {
protected:
    enum Id { FindId = 100, WithId, CaseId, WordsId, SelectionId, ReplaceId, AllId, ResultId, LineId };

    static Step Press(WORD key) {
        return [key] {
            SetForegroundWindow(EditorWindow::Find());
            SetFocus(EditorWindow::Editor());
            Key(key, FCONTROL);
        };
    }
    static HWND Replace() { return FindWindowW(L"#32770", L"Replace"); }
    static HWND Goto() { return FindWindowW(L"#32770", L"Go To Line"); }
    static void Put(int id, const wchar_t* text) { SetDlgItemTextW(Replace(), id, text); }
    static void Push(HWND window, int id) { SendMessageW(GetDlgItem(window, id), BM_CLICK, 0, 0); }
    static void Check(int id, bool on) { CheckDlgButton(Replace(), id, on ? BST_CHECKED : BST_UNCHECKED); }
    static std::wstring Result() {
        wchar_t text[100]{};
        GetDlgItemTextW(Replace(), ResultId, text, 100);
        return text;
    }
    static std::wstring Panel(int panel) { return EditorWindow::Status(panel); }
};

TEST_F(FindWindowsTest, ReplacesOneAndAll) {
    const std::wstring sql = L"id ID\r\nidle id";
    InSteps(sql, {Press('H'), [] { return Replace() != nullptr; },
                  [sql] {
                      Put(FindId, L"id");
                      Put(WithId, L"key");
                      SelectText(0, 0);
                      Push(Replace(), IDOK);
                      EXPECT_EQ(L"0-2", Selection());
                      Push(Replace(), ReplaceId);
                      EXPECT_EQ(L"key ID\r\nidle id", EditorWindow::Text());
                      EXPECT_EQ(L"4-6", Selection());
                      Check(WordsId, true);
                      Check(CaseId, true);
                      Push(Replace(), AllId);
                      EXPECT_EQ(L"key ID\r\nidle key", EditorWindow::Text());
                      EXPECT_EQ(L"1 replaced", Result());
                      Check(WordsId, false);
                      Check(CaseId, false);
                      Push(Replace(), AllId);
                      EXPECT_EQ(L"key key\r\nkeyle key", EditorWindow::Text());
                      EXPECT_EQ(L"2 replaced", Result());
                      // One step for each of them.
                      SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
                      EXPECT_EQ(L"key ID\r\nidle key", EditorWindow::Text());
                      SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
                      SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
                      EXPECT_EQ(sql, EditorWindow::Text());
                  },
                  [] {
                      // It stays open while one works, and says what is not there.
                      Put(FindId, L"absent");
                      Push(Replace(), IDOK);
                      EXPECT_EQ(L"Not found", Result());
                      EXPECT_EQ(L"Not found", Panel(2));
                      Push(Replace(), AllId);
                      EXPECT_EQ(L"Not found", Result());
                      Put(FindId, L"");
                      Push(Replace(), AllId);
                      Push(Replace(), IDCANCEL);
                      EXPECT_EQ(nullptr, Replace());
                  }});
}

TEST_F(FindWindowsTest, ReplacesWithinTheSelection) {
    InSteps(L"a a\r\na a\r\na a", {[] { SelectText(2, 7); }, Press('H'), [] { return Replace() != nullptr; },
                                   [] {
                                       // Lines are selected: they are what is meant.
                                       wchar_t wanted[10]{};
                                       GetDlgItemTextW(Replace(), FindId, wanted, 10);
                                       EXPECT_STREQ(L"", wanted);
                                       EXPECT_EQ(BST_CHECKED, IsDlgButtonChecked(Replace(), SelectionId));
                                       Put(FindId, L"A");
                                       Put(WithId, L"bb");
                                       Push(Replace(), AllId);
                                       EXPECT_EQ(L"a bb\r\nbb bb\r\na a", EditorWindow::Text());
                                       EXPECT_EQ(L"3 replaced", Result());
                                       EXPECT_EQ(L"2-10", Selection());
                                       SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
                                       EXPECT_EQ(L"a a\r\na a\r\na a", EditorWindow::Text());
                                   }});
    // Closed with its owner.
    EXPECT_EQ(nullptr, Replace());
}

TEST_F(FindWindowsTest, GoesToALine) {
    InSteps(L"a\r\nb\r\nc", {[] {
                                 SelectText(4, 4);
                                 return true;
                             },
                             Press('G'), [] { return Goto() != nullptr; },
                             [] {
                                 wchar_t line[10]{};
                                 GetDlgItemTextW(Goto(), LineId, line, 10);
                                 EXPECT_STREQ(L"3", line);  // where the caret is
                                 SetDlgItemTextW(Goto(), LineId, L"2");
                                 Push(Goto(), IDOK);
                                 EXPECT_EQ(L"2-2", Selection());
                                 SetDlgItemTextW(Goto(), LineId, L"999999999999");
                                 Push(Goto(), IDOK);
                                 EXPECT_EQ(L"4-4", Selection());
                                 SetDlgItemTextW(Goto(), LineId, L"0");
                                 Push(Goto(), IDOK);
                                 EXPECT_EQ(L"0-0", Selection());
                                 SetDlgItemTextW(Goto(), LineId, L"");
                                 Push(Goto(), IDOK);
                             },
                             // Enter in the window presses its button, Escape closes it.
                             [] {
                                 SetDlgItemTextW(Goto(), LineId, L"3");
                                 SetForegroundWindow(Goto());
                                 SetFocus(GetDlgItem(Goto(), LineId));
                                 Key(VK_RETURN);
                             },
                             [] { return Selection() == L"4-4"; },
                             [] {
                                 SetFocus(GetDlgItem(Goto(), LineId));
                                 Key(VK_ESCAPE);
                             },
                             [] { return Goto() == nullptr && EditorWindow::Find() != nullptr; }});
}

TEST_F(FindWindowsTest, WhatFindDoesNotFindStandsInTheStatusBar) {
    InSteps(L"abc", {Press('H'), [] { return Replace() != nullptr; },
                     [] {
                         Put(FindId, L"b");
                         Push(Replace(), IDOK);
                         Push(Replace(), IDCANCEL);
                         EXPECT_EQ(L"1-2", Selection());
                         SendMessageW(EditorWindow::Editor(), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(L"x"));
                         const std::wstring first = EditorWindow::Status();
                         Choose(L"Find Next");
                         EXPECT_EQ(L"Not found", Panel(2));
                         EXPECT_EQ(first, EditorWindow::Status());
                         SelectText(0, 0);
                         EXPECT_EQ(L"Ln 1, Col 1", Panel(2));
                     }});
}

TEST_F(FindWindowsTest, TheZoomFollowsItsKeys) {
    const auto zoom = [] {
        int numerator = 0;
        int denominator = 0;
        SendMessageW(EditorWindow::Editor(), EM_GETZOOM, reinterpret_cast<WPARAM>(&numerator),
                     reinterpret_cast<LPARAM>(&denominator));
        return denominator != 0 ? numerator * 100 / denominator : 100;
    };
    InSteps(L"a", {Press(VK_ADD), [=] { return zoom() == 110; }, Press(VK_OEM_PLUS), [=] { return zoom() == 120; },
                   Press(VK_OEM_MINUS), [=] { return zoom() == 110; }, Press('0'), [=] { return zoom() == 100; },
                   Press(VK_SUBTRACT), [=] { return zoom() == 90; }, Press(VK_NUMPAD0), [=] { return zoom() == 100; }});
}

TEST_F(FindWindowsTest, WholeWordsMayBeginAndEndWithASign) {
    InSteps(L"f(a) xf(a", {Press('H'), [] { return Replace() != nullptr; },
                           [] {
                               Check(WordsId, true);
                               const auto found = [](const wchar_t* text, LONG from) {
                                   Put(FindId, text);
                                   SelectText(from, from);
                                   Push(Replace(), IDOK);
                                   return Result().empty() ? Selection() : Result();
                               };
                               EXPECT_EQ(L"0-2", found(L"f(", 0));
                               EXPECT_EQ(L"0-2", found(L"f(", 3));  // not in xf(
                               EXPECT_EQ(L"1-3", found(L"(a", 0));
                               EXPECT_EQ(L"7-9", found(L"(a", 3));
                               EXPECT_EQ(L"Not found", found(L"x", 0));
                               EXPECT_EQ(L"0-2", found(L"f(", 0));  // and nothing says otherwise
                               return true;
                           }});
}

TEST_F(FindWindowsTest, WhatIsReplacedIsNotLookedAtAgain) {
    InSteps(L"aaaaa a", {Press('H'), [] { return Replace() != nullptr; },
                         [] {
                             Put(FindId, L"aa");
                             Put(WithId, L"b");
                             Push(Replace(), AllId);
                             EXPECT_EQ(L"bba a", EditorWindow::Text());
                             EXPECT_EQ(L"2 replaced", Result());
                             return true;
                         }});
}

TEST_F(FindWindowsTest, GoesFarDown) {
    std::wstring text;
    for (int line = 1; line < 1300; ++line) text += L"\r\n";
    InSteps(text, {Press('G'), [] { return Goto() != nullptr; },
                   [] {
                       SetDlgItemTextW(Goto(), LineId, L"1234");
                       Push(Goto(), IDOK);
                       EXPECT_EQ(L"1233-1233", Selection());
                       return true;
                   }});
}
