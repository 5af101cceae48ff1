#include "support/Steps.h"

#include "forms/Clipboard.h"

// Ctrl+Shift+C and Ctrl+Shift+V: SQL to and from the code of a program.
class CodeKeysTest : public StepsFixture {
protected:
    static Step Press(WORD key, int modifiers = FCONTROL | FSHIFT) { return StepsFixture::Press(key, modifiers); }
    static Step Select(LONG from, LONG to) {
        return [=] {
            SetForegroundWindow(EditorWindow::Find());
            SetFocus(EditorWindow::Editor());
            SelectText(from, to);
        };
    }
    static Step Copied(const std::wstring& code) {
        return Becomes(code, [] { return Clipboard::GetText(EditorWindow::Find()); });
    }
    static Step OnClipboard(const std::wstring& text) {
        return [text] { Clipboard::SetText(EditorWindow::Find(), text); };
    }
    static Step Says(const std::wstring& note) {
        return [note] { return EditorWindow::Status() == note; };
    }
};

TEST_F(CodeKeysTest, AllOfTheTextOrTheSelectionIsCopied) {
    EXPECT_EQ(L"select \"a\"\r\nfrom t",
              InSteps(L"select \"a\"\r\nfrom t",
                      {Select(0, 0), Press('C'), Copied(L"\"select \"\"a\"\"\" & vbCrLf & _\r\n    \"from t\""),
                       Says(L"Copied as a string of Basic."), Select(11, 15), Press('C'), Copied(L"\"from\""),
                       [] { EXPECT_EQ(L"11-15", Selection()); }}));
}

TEST_F(CodeKeysTest, ALongTextIsStatements) {
    std::wstring text;
    for (int line = 0; line < 30; ++line) text += L"line\r\n";
    InSteps(text, {Select(0, 0), Press('C'),
                   Says(L"Copied as 2 statements of Basic that build SQL: one takes no more than 25 lines.")});
}

TEST_F(CodeKeysTest, StringsArePastedBehindTheSelectionAsOneStep) {
    EXPECT_EQ(L"x", InSteps(L"x", {OnClipboard(L"sql = \"select a \" & _\r\n  \"from t\" & vbCrLf"), Select(0, 1),
                                   Press('V'), [] { return EditorWindow::Text() == L"xselect a from t\r\n"; },
                                   Press('Z', FCONTROL), [] { return EditorWindow::Text() == L"x"; }}));
    EXPECT_EQ(L"select 1\r\nfrom t",
              InSteps(L"", {OnClipboard(L"var s = \"select 1\\nfrom t\";"), Select(0, 0), Press('V'),
                            [] { return EditorWindow::Text() == L"select 1\r\nfrom t"; }}));
}

TEST_F(CodeKeysTest, WithoutAStringNothingIsPasted) {
    EXPECT_EQ(L"x", InSteps(L"x", {OnClipboard(L"select a from t"), Select(0, 1), Press('V'),
                                   Says(L"The clipboard has no string of Basic, C# or Java code.")}));
}
