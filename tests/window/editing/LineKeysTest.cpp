#include "support/Dialogs.h"
#include "support/Steps.h"

namespace {

void Undo() { SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0); }

}  // namespace

// The keys are pressed as a keyboard presses them, and go through the window's own loop.
class LineKeysTest : public StepsFixture {
protected:
    struct Press {
        LONG From, To;  // what is selected before
        WORD Key;
        int Modifiers;
        const wchar_t* Text;       // afterwards
        const wchar_t* Selection;  // and what is selected
    };
    // Each press begins with the text, and one step of undo takes it back.
    void Check(const std::wstring& sql, const std::vector<Press>& presses) {
        std::vector<Step> steps;
        for (const Press& press : presses) {
            steps.push_back([press] {
                SetForegroundWindow(EditorWindow::Find());
                SetFocus(EditorWindow::Editor());
                SelectText(press.From, press.To);
                Key(press.Key, press.Modifiers);
            });
            steps.push_back([press] { return EditorWindow::Text() == press.Text && Selection() == press.Selection; });
            steps.push_back([press, sql] {
                if (sql != press.Text) Undo();
                EXPECT_EQ(sql, EditorWindow::Text()) << "after one step of undo";
            });
        }
        InSteps(sql, std::move(steps));
        EXPECT_EQ(L"", Errors.Places());
    }
};

TEST_F(LineKeysTest, CommentsComeAndGo) {
    Check(L"a\r\n  b\r\n\r\nc", {{0, 0, VK_OEM_2, FCONTROL, L"-- a\r\n  b\r\n\r\nc", L"3-3"},
                                 {0, 6, VK_OEM_2, FCONTROL, L"-- a\r\n--   b\r\n\r\nc", L"0-11"},
                                 {3, 4, VK_DIVIDE, FCONTROL, L"a\r\n  -- b\r\n\r\nc", L"2-8"},
                                 {6, 6, VK_OEM_2, FCONTROL, L"a\r\n  b\r\n-- \r\nc", L"9-9"}});
    Check(L"-- a\r\n --b", {{0, 9, VK_OEM_2, FCONTROL, L"a\r\n b", L"0-4"}});
}

TEST_F(LineKeysTest, LinesAreIndentedAndBack) {
    Check(L"a\r\n      b\r\n\tc", {{0, 10, VK_OEM_6, FCONTROL, L"    a\r\n          b\r\n\tc", L"0-17"},
                                   {0, 11, VK_OEM_4, FCONTROL, L"a\r\n  b\r\nc", L"0-7"},
                                   {1, 1, VK_OEM_6, FCONTROL, L"    a\r\n      b\r\n\tc", L"5-5"},
                                   {5, 5, VK_OEM_4, FCONTROL, L"a\r\n  b\r\n\tc", L"2-2"}});
    // An empty line among others stays empty; alone it is indented.
    Check(L"a\r\n\r\nb", {{0, 4, VK_OEM_6, FCONTROL, L"    a\r\n\r\n    b", L"0-12"}});
    Check(L"a\r\n\r\nb", {{2, 2, VK_OEM_6, FCONTROL, L"a\r\n    \r\nb", L"6-6"}});
}

TEST_F(LineKeysTest, LinesMove) {
    Check(L"a\r\nbb\r\nc", {{2, 4, VK_UP, FALT, L"bb\r\na\r\nc", L"0-2"},
                            {0, 0, VK_UP, FALT, L"a\r\nbb\r\nc", L"0-0"},
                            {0, 2, VK_DOWN, FALT, L"bb\r\na\r\nc", L"3-5"},
                            {3, 3, VK_DOWN, FALT, L"a\r\nc\r\nbb", L"5-5"},
                            {5, 6, VK_DOWN, FALT, L"a\r\nbb\r\nc", L"5-6"}});
}

TEST_F(LineKeysTest, LinesAreDoubledAndDeleted) {
    Check(L"a\r\nbb\r\nc", {{3, 3, 'D', FCONTROL, L"a\r\nbb\r\nbb\r\nc", L"6-6"},
                            {0, 3, 'D', FCONTROL, L"a\r\nbb\r\na\r\nbb\r\nc", L"5-8"},
                            {6, 6, 'D', FCONTROL, L"a\r\nbb\r\nc\r\nc", L"8-8"},
                            {3, 3, 'K', FCONTROL | FSHIFT, L"a\r\nc", L"2-2"},
                            {5, 5, 'K', FCONTROL | FSHIFT, L"a\r\nbb", L"2-2"},
                            {0, 6, 'K', FCONTROL | FSHIFT, L"", L"0-0"}});
}

TEST_F(LineKeysTest, WithAndWithoutShiftAreTwoKeys) {
    Check(L"a\r\nbb\r\nc", {{3, 3, 'K', FCONTROL, L"a\r\nbb\r\nc", L"3-3"},
                            {3, 4, 'D', FCONTROL | FSHIFT, L"a\r\nbb\r\nc", L"3-4"},
                            {3, 4, 'R', FCONTROL, L"a\r\nbb\r\nc", L"3-4"}});
}

TEST_F(LineKeysTest, EnterKeepsTheIndentation) {
    Check(L"  a b", {{4, 4, VK_RETURN, 0, L"  a \r\n  b", L"7-7"},
                     {1, 1, VK_RETURN, 0, L" \r\n  a b", L"3-3"},
                     {0, 5, VK_RETURN, 0, L"\r\n", L"1-1"}});
}

TEST_F(LineKeysTest, TheStatementAtTheCaretIsSelected) {
    Check(L"select ';';\r\n-- b\r\nselect 2;",
          {{3, 3, VK_SPACE, FCONTROL | FSHIFT, L"select ';';\r\n-- b\r\nselect 2;", L"0-11"},
           {18, 18, VK_SPACE, FCONTROL | FSHIFT, L"select ';';\r\n-- b\r\nselect 2;", L"12-26"}});
}

TEST_F(LineKeysTest, TheDisplayedTextComesBack) {
    const std::wstring sql = L"select 1\r\nfrom a";
    InSteps(sql, {[] {
                      BoxAnswerer boxes(IDYES);
                      EditorWindow::Choose(L"File", L"New");
                      EXPECT_EQ(L"", EditorWindow::Text());
                      SetForegroundWindow(EditorWindow::Find());
                      SetFocus(EditorWindow::Editor());
                      Type(L"other");
                      Key('R', FCONTROL | FSHIFT);
                  },
                  [sql] { return EditorWindow::Text() == sql; },
                  [] {
                      Undo();
                      EXPECT_EQ(L"other", EditorWindow::Text());
                      Key('R', FCONTROL | FSHIFT);
                  },
                  [sql] { return EditorWindow::Text() == sql && EditorWindow::Caption() == L"SQL Editor"; }});
}

TEST_F(LineKeysTest, F5DoesNothing) {
    EXPECT_EQ(L"a b", InSteps(L"a b", {[] {
                                           SetFocus(EditorWindow::Editor());
                                           SelectText(0, 1);
                                           Key(VK_F5);
                                       },
                                       [] { return true; }, [] { return Selection() == L"0-1"; }}));
}
