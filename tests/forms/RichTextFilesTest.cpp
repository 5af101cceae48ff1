#include <windows.h>
#include <richedit.h>

#include "Expect.h"
#include "forms/RichText.h"
#include "forms/RichTextBox.h"

using namespace std::string_literals;

namespace {

struct Editor {
    TopWindow Top;
    RichTextBox Box;
    int Changes = 0;
    std::wstring Path;
    Editor() {
        Box.Create(Top.Handle(), 1);
        Box.SetEditorFont(L"Courier New", 10);
        Box.Move(0, 0, 6000, 5000);
        Box.Change = [this] { ++Changes; };
        wchar_t folder[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        Path = std::wstring(folder) + L"rich text " + std::to_wstring(GetCurrentProcessId()) + L".tmp";
    }
    ~Editor() { DeleteFileW(Path.c_str()); }
    void Load(const std::string& bytes, RichTextBox::FileKind kind) {
        TextFile::Write(Path, bytes);
        Box.LoadFile(Path, kind);
    }
};

constexpr auto Rich = RichTextBox::FileKind::RichText;
constexpr auto Plain = RichTextBox::FileKind::Text;

}  // namespace

TEST(RichText, IsKnownByItsBeginningAndItsEnd) {
    for (const std::string& whole :
         {"{\\rtf1}"s, "{\\rtf1 a\\{b\\}c\\\\}"s, "{\\rtf1{\\b x}}\r\n"s, "{\\rtf1}\0"s, "{\\rtf1\\bin3 }}}}"s,
          "{\\rtf1\\bin2\n}}"s, "{\\rtf1\\bin0 x}"s, "{\\rtf1\\binary}"s, "{\\rtf1\\bin}"s}) {
        EXPECT_TRUE(IsRichText(whole)) << whole;
    }
    for (const std::string& broken : {""s, "x"s, "{"s, "{\\rt"s, "{\\rtf1"s, "{\\rtf1 {}"s, "{\\rtf1\\}"s, "{\\rtf1\\"s,
                                      "{\\rtf1}x"s, "{\\rtf1}}"s, " {\\rtf1}"s, "{\\rtf1\\bin4 }}}}"s, "{\\rtf1\\bin9"s,
                                      "{\\rtf1\\bin2\n}}}"s, "{\\rtf1\\bin99999999999999999999}"s}) {
        EXPECT_FALSE(IsRichText(broken)) << broken;
    }
}

TEST(RichTextBox, LoadsAFileAsOneChangeThatCannotBeUndone) {
    Editor editor;
    editor.Box.SetText(L"old");
    editor.Changes = 0;
    editor.Load("{\\rtf1 new {\\b text}\\par end}", Rich);
    EXPECT_EQ(1, editor.Changes);
    EXPECT_EQ(L"new text\r\nend", editor.Box.Text());
    EXPECT_EQ(0, editor.Box.SelStart());
    EXPECT_FALSE(editor.Box.Send(EM_CANUNDO));
    EXPECT_EQ(editor.Path, editor.Box.FileName);
    editor.Load("plain\n", Plain);
    EXPECT_EQ(2, editor.Changes);
    EXPECT_EQ(L"plain\r\n", editor.Box.Text());
    EXPECT_EQ(TextFile::LineEnd::Lf, editor.Box.FileFormat.Lines);
    EXPECT_FALSE(editor.Box.Send(EM_CANUNDO));
}

TEST(RichTextBox, PositionsInRichTextAreThoseOfItsText) {
    Editor editor;
    for (const std::string& rich : {"{\\rtf1 a\\line b\\par c}"s, "{\\rtf1 a\\page b\\par c}"s,
                                    "{\\rtf1 \\trowd\\cellx1000\\cellx2000 a\\cell b\\cell\\row\\pard c}"s}) {
        editor.Load(rich, Rich);
        const std::wstring text = editor.Box.Text();
        for (const wchar_t letter : {L'a', L'b', L'c'}) {
            const size_t at = text.find(letter);
            ASSERT_NE(std::wstring::npos, at) << rich;
            editor.Box.SetSelStart(static_cast<long>(at));
            editor.Box.SetSelLength(1);
            EXPECT_EQ(std::wstring(1, letter), editor.Box.SelText()) << rich;
        }
    }
}

TEST(RichTextBox, AFileThatCannotBeLoadedChangesNothing) {
    Editor editor;
    editor.Load("one\n", Plain);
    editor.Box.SetSelStart(2);
    const TextFile::Format format = editor.Box.FileFormat;
    editor.Changes = 0;
    EXPECT_EQ(321, NumberOf([&] { editor.Load("{\\rtf1 half", Rich); }));
    EXPECT_EQ(53, NumberOf([&] { editor.Box.LoadFile(editor.Path + L".none", Rich); }));
    EXPECT_EQ(53, NumberOf([&] { editor.Box.LoadFile(editor.Path + L".none", Plain); }));
    EXPECT_EQ(7, NumberOf([&] { editor.Load(std::string(RichTextBox::FileLimit + 1, 'x'), Plain); }));
    EXPECT_EQ(0, editor.Changes);
    EXPECT_EQ(L"one\r\n", editor.Box.Text());
    EXPECT_EQ(2, editor.Box.SelStart());
    EXPECT_EQ(format, editor.Box.FileFormat);
    EXPECT_EQ(editor.Path, editor.Box.FileName);
}

TEST(RichTextBox, SavesWhatRichTextCannotHoldAsPlainTextOnly) {
    Editor editor;
    editor.Box.SetText(L"a\0b"s);
    TextFile::Write(editor.Path, "old");
    try {
        editor.Box.SaveFile(editor.Path, Rich);
        std::wstring text;
        EXPECT_TRUE(ReadRichText(TextFile::ReadBytes(editor.Path), text));
        EXPECT_EQ(L"a\0b"s, text);
    } catch (const RuntimeError& error) {
        EXPECT_EQ(321, error.Number);
        EXPECT_EQ("old", TextFile::ReadBytes(editor.Path));
    }
    editor.Box.SaveFile(editor.Path, Plain);
    EXPECT_EQ("a\0b"s, TextFile::ReadBytes(editor.Path));
}

TEST(RichTextBox, AnEmptyFileIsAnEmptyText) {
    Editor editor;
    for (const auto kind : {Rich, Plain}) {
        editor.Box.SetText(L"old");
        editor.Load("", kind);
        EXPECT_EQ(L"", editor.Box.Text());
        editor.Box.SaveFile(editor.Path, kind);
        editor.Box.SetText(L"old");
        editor.Box.LoadFile(editor.Path, kind);
        EXPECT_EQ(L"", editor.Box.Text());
    }
}

TEST(RichTextBox, LineEndsAtTheEndGoThroughRichText) {
    Editor editor;
    for (const std::wstring& text :
         {L"a"s, L"a\r\n"s, L"\r\n"s, L"a\r\n\r\n"s, L" a "s, L"\ta\t\r\n"s, L"\x00A0-\x00AD-"s}) {
        editor.Box.SetText(text);
        editor.Box.SaveFile(editor.Path, Rich);
        editor.Box.SetText(L"");
        editor.Box.LoadFile(editor.Path, Rich);
        EXPECT_EQ(text, editor.Box.Text());
    }
}
