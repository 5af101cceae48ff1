#include "forms/RichTextBox.h"

#include <gtest/gtest.h>
#include <richedit.h>

#include "forms/PlainText.h"
#include "support/Errors.h"
#include "support/TopWindow.h"

using namespace std::string_literals;

namespace {

struct Editor {
    TopWindow Top;
    RichTextBox Box;
    int Changes = 0;
    Editor() {
        Box.Create(Top.Handle(), 1);
        Box.SetEditorFont(L"Courier New", 10);
        Box.Move(0, 0, 6000, 5000);
        Box.Change = [this] { ++Changes; };
    }
    std::wstring Through(const std::wstring& text) {
        Box.SetText(text);
        return Box.Text();
    }
};

std::wstring Statements(int count) {
    std::wstring text;
    for (int at = 0; at < count; ++at)
        text += L"select column_" + std::to_wstring(at) + L" from table_name where x = 'abc'\r\n";
    return text;
}

}  // namespace

TEST(RichTextBox, TextComesOutAsItWentIn) {
    Editor editor;
    for (const std::wstring& text :
         {L""s, L"select 1\r\nfrom dual"s, L"a\r\n"s, L"\r\n\r\n"s, L"\t x \t"s, L"{\\rtf1 hello {\\b bold}}"s,
          L"{\\urtf1 x}"s, L"{urtf1 x}"s, L" {\\rtf1 x}"s, L"{\\rtf}"s, L"\0{\\rtf1 x}"s, L"a\0b\r\nc\0\0d"s,
          L"x\xD800y\xDC00z"s, L"x\xD83D\xDE00z"s, L"\xFEFFx"s, L"\x05E9\x05DC\x05D5\x05DD abc"s, L"e\x0301"s}) {
        EXPECT_EQ(text, editor.Through(text));
        EXPECT_EQ(static_cast<long>(text.size()), editor.Box.TextLength());
    }
}

// What begins like rich text, the control would read as such, and it would end a text at its first NUL.
TEST(RichTextBox, ATextThatTheControlWouldTakeForAnotherIsStreamed) {
    static HWND window;
    static std::wstring sent;
    Editor editor;
    window = editor.Box.Handle();
    const HHOOK hook = SetWindowsHookExW(
        WH_CALLWNDPROC,
        [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
            const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lParam);
            if (message.hwnd == window && message.message == EM_STREAMIN) sent += L"stream ";
            if (message.hwnd == window && message.message == EM_SETTEXTEX) sent += L"text ";
            return CallNextHookEx(nullptr, code, wParam, lParam);
        },
        nullptr, GetCurrentThreadId());
    const auto way = [](const std::wstring& text, Editor& box) {
        sent.clear();
        box.Box.SetText(text);
        return sent;
    };
    for (const std::wstring& text :
         {L"{\\rtf1 x}"s, L"{\\urtf1 x}"s, L"{urtf1 x}"s, L"{\\rtf"s, L"a\0b"s, L"\0"s, L"x\0"s})
        EXPECT_EQ(L"stream ", way(text, editor)) << text;
    for (const std::wstring& text : {L"select 1"s, L" {\\rtf1 x}"s, L"x{urtf1}"s, L"{rtf1 x}"s, L"{\\rt"s, L"\\rtf1"s})
        EXPECT_EQ(L"text ", way(text, editor)) << text;
    UnhookWindowsHookEx(hook);
}

TEST(RichTextBox, EveryLineEndComesOutAsCrLf) {
    Editor editor;
    EXPECT_EQ(L"a\r\nb", editor.Through(L"a\nb"));
    EXPECT_EQ(L"a\r\nb", editor.Through(L"a\rb"));
    EXPECT_EQ(L"a\r\n\r\nb", editor.Through(L"a\n\nb"));
    EXPECT_EQ(L"a\r\n\r\nb", editor.Through(L"a\r\r\nb"));  // the control alone makes a blank of this one
    EXPECT_EQ(L"{\\rtf\r\nb", editor.Through(L"{\\rtf\nb"));
    // What begins a line in a cell of a spreadsheet, in a word processor or on a page.
    EXPECT_EQ(L"1\r\n2\r\n3\r\n4\r\n5\r\n6", editor.Through(L"1\v2\f3\x0085"
                                                            L"4\x2028"
                                                            L"5\x2029"
                                                            L"6"));
    EXPECT_EQ(L"{\\rtf\r\nb\0c"s, editor.Through(L"{\\rtf\vb\0c"s));
}

TEST(RichTextBox, LineEndsOfOtherKindsLeavePositionsRight) {
    Editor editor;
    for (const wchar_t* end : {L"\v", L"\f", L"\x0085", L"\x2028", L"\x2029", L"\r\r\n"}) {
        const std::wstring one = std::wstring(L"ab") + end + L"cd" + end + L"select";
        const std::wstring text = PlainText::WithCrLf(one);
        editor.Box.SetText(one);
        EXPECT_EQ(static_cast<long>(text.size()), editor.Box.TextLength());
        editor.Box.Select(static_cast<long>(text.size()) - 6, 6);
        EXPECT_EQ(L"select", editor.Box.SelText());
        // Pasted and dropped, and by other programs.
        editor.Box.SetText(L"x");
        editor.Box.Select(1, 0);
        editor.Box.SetSelText(one);
        EXPECT_EQ(L"x" + text, editor.Box.Text());
        EXPECT_EQ(static_cast<long>(text.size()) + 1, editor.Box.SelStart());
        editor.Box.Send(EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(end));
        EXPECT_EQ(L"x" + text + PlainText::WithCrLf(end), editor.Box.Text());
        editor.Box.Send(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(one.c_str()));
        EXPECT_EQ(text, editor.Box.Text());
        EXPECT_EQ(static_cast<long>(text.size()), editor.Box.TextLength());
    }
}

TEST(RichTextBox, TheEndOfTheLastParagraphIsNeverSelected) {
    Editor editor;
    editor.Box.SetText(L"ab\r\ncd");
    int changes = 0;
    editor.Box.SelChange = [&changes] { ++changes; };
    editor.Box.Send(EM_SETSEL, 0, -1);
    EXPECT_EQ(1, changes);
    CHARRANGE range{};
    editor.Box.Send(EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    EXPECT_EQ(5, range.cpMax);
    EXPECT_EQ(6, editor.Box.SelLength());
    EXPECT_EQ(L"ab\r\ncd", editor.Box.SelText());
    range = {5, 6};
    editor.Box.Send(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
    EXPECT_EQ(6, editor.Box.SelStart());
    EXPECT_EQ(0, editor.Box.SelLength());
    editor.Box.Send(EM_SETSEL, 0, -1);
    editor.Box.SetSelText(L"x");
    EXPECT_EQ(L"x", editor.Box.Text());
}

TEST(RichTextBox, ALongTextComesOutWholeAndGivesWayToAnother) {
    Editor editor;
    const std::wstring text = Statements(2000);
    EXPECT_EQ(text, editor.Through(text));
    EXPECT_EQ(L"short", editor.Through(L"short"));
    std::wstring split = text;
    split[5] = L'\0';  // goes another way in
    EXPECT_EQ(split, editor.Through(split));
    EXPECT_EQ(text, editor.Through(text));
    EXPECT_EQ(GetDlgItem(editor.Top.Handle(), 1), editor.Box.Handle());
}

TEST(RichTextBox, EachReplacementRaisesOneChange) {
    Editor editor;
    editor.Box.SetText(L"one\r\ntwo");
    EXPECT_EQ(1, editor.Changes);
    editor.Box.SetText(Statements(500));
    EXPECT_EQ(2, editor.Changes);
    editor.Box.SetText(L"");
    EXPECT_EQ(3, editor.Changes);
    editor.Box.Send(WM_CHAR, L'x');
    EXPECT_EQ(4, editor.Changes);
}

TEST(RichTextBox, NothingCanBeUndoneAfterAReplacement) {
    Editor editor;
    editor.Box.SetText(L"another sheet's statement");
    editor.Box.SetText(L"this one's");
    EXPECT_FALSE(editor.Box.Send(EM_CANUNDO));
    editor.Box.Send(EM_UNDO);
    EXPECT_EQ(L"this one's", editor.Box.Text());
}

TEST(RichTextBox, PositionsCountALineEndTwice) {
    Editor editor;
    editor.Box.SetText(L"ab\r\ncd\r\nef");
    for (const long position : {0L, 1L, 2L, 4L, 5L, 6L, 8L, 9L, 10L}) {
        editor.Box.SetSelStart(position);
        EXPECT_EQ(position, editor.Box.SelStart());
    }
    editor.Box.SetSelStart(100);
    EXPECT_EQ(10, editor.Box.SelStart());
    editor.Box.SetSelStart(1);
    editor.Box.SetSelLength(5);
    EXPECT_EQ(1, editor.Box.SelStart());
    EXPECT_EQ(5, editor.Box.SelLength());
    EXPECT_EQ(L"b\r\ncd", editor.Box.SelText());
    long line = 0;
    long column = 0;
    editor.Box.CaretPosition(line, column);
    EXPECT_EQ(2, line);
    EXPECT_EQ(3, column);
    EXPECT_EQ(ErrorNumber::InvalidPropertyValue, NumberOf([&] { editor.Box.SetSelStart(-1); }));
}

TEST(RichTextBox, ASelectionIsReplacedByPlainTextInOneStep) {
    Editor editor;
    editor.Box.SetText(L"ab\r\ncd");
    editor.Box.SetSelStart(1);
    editor.Box.SetSelLength(4);
    editor.Box.SetSelText(L"{\\rtf1 x}\r\ny");
    EXPECT_EQ(L"a{\\rtf1 x}\r\nyd", editor.Box.Text());
    EXPECT_EQ(13, editor.Box.SelStart());
    editor.Box.Send(EM_UNDO);
    EXPECT_EQ(L"ab\r\ncd", editor.Box.Text());
}

TEST(RichTextBox, ADoubledCarriageReturnIsTwoLineEndsBesideANulToo) {
    Editor editor;
    for (const auto& [inserted, text] : {std::pair{L"a\r\r\nb"s, L"a\r\n\r\nb"s}, {L"a\0\r\r\nb"s, L"a\0\r\n\r\nb"s}}) {
        editor.Box.SetText(L"");
        editor.Box.SetSelText(inserted);
        EXPECT_EQ(text, editor.Box.Text());
        EXPECT_EQ(static_cast<long>(text.size()), editor.Box.SelStart());
    }
}

TEST(RichTextBox, APlaceOutsideIsTheNearestOneInside) {
    Editor editor;
    editor.Box.SetText(L"one\r\ntwo");
    RECT client;
    GetClientRect(editor.Box.Handle(), &client);
    EXPECT_EQ(0, editor.Box.CharFromPos(-500, -500));
    EXPECT_EQ(3, editor.Box.CharFromPos(client.right + 500, -1));
    EXPECT_EQ(8, editor.Box.CharFromPos(client.right + 500, client.bottom + 500));
}

namespace {
WNDPROC real = nullptr;
// A control that knows of no character outside its text.
LRESULT CALLBACK KnowsNone(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return message == EM_CHARFROMPOS ? -1 : CallWindowProcW(real, window, message, wParam, lParam);
}
}  // namespace

TEST(RichTextBox, WhereTheControlKnowsOfNoCharacterTheCaretStays) {
    Editor editor;
    editor.Box.SetText(L"one\r\ntwo");
    editor.Box.SetSelStart(6);
    real = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(editor.Box.Handle(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&KnowsNone)));
    EXPECT_EQ(6, editor.Box.CharFromPos(5, 5));
    SetWindowLongPtrW(editor.Box.Handle(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(real));
}

TEST(RichTextBox, TakesMoreThanTheControlsFirstLimit) {
    Editor editor;
    editor.Box.SetText(std::wstring(40000, L'x'));
    editor.Box.SetSelStart(40000);
    editor.Box.Send(WM_CHAR, L'y');
    EXPECT_EQ(40001, editor.Box.TextLength());
}

TEST(RichTextBox, ItsFontIsThatOfWhatIsTypedAndOfWhatStandsThere) {
    TopWindow top;
    RichTextBox box;
    box.Create(top.Handle(), 2);
    box.SetText(L"text");
    box.SetEditorFont(L"Courier New", 11);
    for (const WPARAM of : {SCF_DEFAULT, SCF_SELECTION}) {
        CHARFORMAT2W format{};
        format.cbSize = sizeof format;
        box.Send(EM_GETCHARFORMAT, of, reinterpret_cast<LPARAM>(&format));
        EXPECT_STREQ(L"Courier New", format.szFaceName) << of;
        EXPECT_EQ(220, format.yHeight) << of;
        EXPECT_EQ(0U, format.dwEffects & (CFE_BOLD | CFE_ITALIC)) << of;
    }
}
