#include <gtest/gtest.h>
#include <windows.h>
#include <richedit.h>

#include "forms/AtomicFile.h"
#include "forms/RichEdit.h"
#include "forms/RichTextBox.h"
#include "forms/Rtf.h"
#include "support/Errors.h"
#include "support/Folder.h"
#include "support/TopWindow.h"

using namespace std::string_literals;

namespace {

struct FileEditor {
    TopWindow Top;
    RichTextBox Box;
    int Changes = 0;
    Folder Here;
    std::wstring Path = Here / L"text.tmp";
    FileEditor() {
        Box.Create(Top.Handle(), 1);
        Box.SetEditorFont(L"Courier New", 10);
        Box.Move(0, 0, 6000, 5000);
        Box.Change = [this] { ++Changes; };
    }
    void Load(const std::string& bytes, RichTextBox::FileKind kind) {
        AtomicFile::Write(Path, bytes);
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

TEST(RichText, AHyphenIsOfTheWordBeforeADigit) {
    const std::pair<std::string, std::string> cases[] = {
        {"{\\bin-x}", "{{}-x}"},    {"{\\bin-1x}", "{{}x}"},       {"{\\bin-9}", "{{}}"},
        {"{\\bin-", "{{}-"},        {"{\\bin2 }}x}", "{{}x}"},     {"{\\bin2}}x}", "{{}x}"},
        {"{\\bin}", "{{}}"},        {"{\\bin 1}", "{{}1}"},        {"{\\bin09123456789}", "{{}"},
        {"{\\par-x}", "{\\par-x}"}, {"{\\li-10 x}", "{\\li-10 x}"}};
    for (const auto& [rtf, expected] : cases) {
        std::string cleaned;
        EXPECT_TRUE(SanitizeRtf(rtf, cleaned)) << rtf;
        EXPECT_EQ(expected, cleaned) << rtf;
    }
    // Neither a hyphen that is not of it, nor the blank that ends it, counts for its length.
    std::string cleaned;
    const std::string longest = "{\\" + std::string(255, 'a');
    EXPECT_TRUE(SanitizeRtf(longest + "-x}", cleaned));
    EXPECT_TRUE(SanitizeRtf(longest + " }", cleaned));
    EXPECT_FALSE(SanitizeRtf(longest + "1}", cleaned));
    EXPECT_FALSE(SanitizeRtf(longest + "-1}", cleaned));
    EXPECT_FALSE(SanitizeRtf(longest + "Z}", cleaned));
    EXPECT_FALSE(SanitizeRtf(longest + "z}", cleaned));
}

TEST(RichText, WordsAreMadeOfLettersAndNumbersOfDigits) {
    std::string cleaned;
    for (const char* const rtf : {"{\\binA1x}", "{\\binZ1x}", "{\\binz1x}", "{\\Bin1x}"}) {
        EXPECT_TRUE(SanitizeRtf(rtf, cleaned));
        EXPECT_EQ(rtf, cleaned) << "another word";
    }
    for (const char end : {'@', '[', '`', '{', '/', ':'}) {
        EXPECT_TRUE(SanitizeRtf(std::string("{\\bin") + end, cleaned));
        EXPECT_EQ(std::string("{{}") + end, cleaned);
    }
    EXPECT_TRUE(SanitizeRtf("{\\bin/1}", cleaned));
    EXPECT_EQ("{{}/1}", cleaned);
    EXPECT_TRUE(SanitizeRtf("{\\bin:1}", cleaned));
    EXPECT_EQ("{{}:1}", cleaned);
    EXPECT_TRUE(SanitizeRtf("{\\bin0x}", cleaned));
    EXPECT_EQ("{{}x}", cleaned);
}

TEST(RichText, ATextIsNoDeeperThanReadersCanTell) {
    const auto nested = [](size_t depth) {
        return "{\\rtf1" + std::string(depth - 1, '{') + "x" + std::string(depth, '}');
    };
    EXPECT_TRUE(IsRichText(nested(30)));
    EXPECT_FALSE(IsRichText(nested(31)));
    // The names in the tables of fonts and styles.
    for (const std::string table : {"{\\rtf1{\\fonttbl{\\f0 ", "{\\rtf1{\\stylesheet{\\s0 "}) {
        std::string cleaned;
        EXPECT_TRUE(SanitizeRtf(table + std::string(254, 'x') + ";}}}", cleaned));
        EXPECT_FALSE(SanitizeRtf(table + std::string(260, 'x') + ";}}}", cleaned));
        EXPECT_TRUE(SanitizeRtf(table + std::string(200, 'x') + ";" + std::string(200, 'x') + ";}}}", cleaned));
        EXPECT_TRUE(SanitizeRtf(table + "x;}}" + std::string(1000, 'x') + "}", cleaned)) << "after the table";
    }
}

// Readers keep the open groups in a stack of their own.
TEST(RichText, GroupsAreNoDeeperWhateverWasClosedBefore) {
    std::string cleaned;
    const std::string deep(30, '{');
    for (const std::string& before : {""s, "}"s, std::string(100, '}'), "{\\rtf1}"s + std::string(100, '}')}) {
        EXPECT_TRUE(SanitizeRtf(before + deep, cleaned)) << before;
        EXPECT_FALSE(SanitizeRtf(before + deep + "{", cleaned)) << before;
    }
}

TEST(RichTextBox, LoadsAFileAsOneChangeThatCannotBeUndone) {
    FileEditor editor;
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
    FileEditor editor;
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
    FileEditor editor;
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

namespace {

WNDPROC wholeProcedure = nullptr;

// The control of somebody who is short of memory: of a text that begins with "two" it takes the first character.
LRESULT CALLBACK TakesOneOfTwo(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == EM_SETTEXTEX && std::wstring(reinterpret_cast<const wchar_t*>(lParam)).starts_with(L"two"))
        return CallWindowProcW(wholeProcedure, window, message, wParam, reinterpret_cast<LPARAM>(L"t"));
    return CallWindowProcW(wholeProcedure, window, message, wParam, lParam);
}

}  // namespace

TEST(RichTextBox, AFileThatComesInPartlyGivesWayToTheFormerText) {
    FileEditor editor;
    editor.Load("one\n", Plain);
    const TextFile::Format format = editor.Box.FileFormat;
    wholeProcedure = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(editor.Box.Handle(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&TakesOneOfTwo)));
    const std::wstring other = editor.Here / L"other.tmp";
    AtomicFile::Write(other, "two\r\n");
    EXPECT_EQ(ErrorNumber::OutOfMemory, NumberOf([&] { editor.Box.LoadFile(other, Plain); }));
    SetWindowLongPtrW(editor.Box.Handle(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(wholeProcedure));
    EXPECT_EQ(L"one\r\n", editor.Box.Text());
    EXPECT_EQ(format, editor.Box.FileFormat);
    EXPECT_EQ(editor.Path, editor.Box.FileName);
}

// Readers keep groups in a stack and words and names in buffers: the one of Wine writes after theirs.
TEST(RichTextBox, ARichTextBeyondAllMeasureIsRefused) {
    FileEditor editor;
    editor.Load("one\n", Plain);
    const auto repeated = [](size_t times, const char* what) {
        std::string all;
        while (times-- > 0) all += what;
        return all;
    };
    for (const std::string& broken :
         {"{\\rtf1 "s + repeated(100, "{") + "x" + repeated(100, "}") + "}",
          "{\\rtf1 \\"s + repeated(5000, "a") + " x}", "{\\rtf1 \\b"s + repeated(5000, "1") + " x}",
          "{\\rtf1{\\fonttbl{\\f0 "s + repeated(3000, "n") + ";}}x}",
          "{\\rtf1{\\stylesheet{\\s1 "s + repeated(1000, "\\'6e") + ";}}x}"}) {
        EXPECT_EQ(321, NumberOf([&] { editor.Load(broken, Rich); })) << broken.substr(0, 40);
        EXPECT_EQ(L"one\r\n", editor.Box.Text());
        EXPECT_EQ(L"", PlainTextOf(broken));
    }
    for (const std::string& usual : {"{\\rtf1 "s + repeated(29, "{") + "x" + repeated(29, "}") + "}",
                                     "{\\rtf1 \\"s + repeated(32, "a") + "-1234567890 x}",
                                     "{\\rtf1{\\fonttbl{\\f0 "s + repeated(31, "\\'6e") + ";}}x}",
                                     "{\\rtf1{\\info{\\title "s + repeated(3000, "n") + "}}x}"}) {
        editor.Load(usual, Rich);
        EXPECT_EQ(L"x", editor.Box.Text());
    }
}

// Pictures have no place in SQL, and one that is cut off brings the reader of Wine down.
TEST(RichTextBox, PicturesAndBinaryDataAreLeftOut) {
    FileEditor editor;
    for (const std::string& picture :
         {"{\\pict\\wmetafile8\\picw100\\pich100 010009000003}"s, "{\\*\\shppict{\\pict\\pngblip 00}}"s,
          "{\\pict\\wmetafile8\\bin5 }}}}}}"s, "{\\p\\bin0 ict\\wmetafile8 010009000003}"s, "\\bin3 {{{"s,
          "{\\object\\objemb{\\*\\objdata 0105000002{}}}"s}) {
        editor.Load("{\\rtf1 a" + picture + "b}", Rich);
        EXPECT_EQ(picture.find("ict\\w") == 9 ? L"aict010009000003b" : L"ab", editor.Box.Text()) << picture;
    }
}

TEST(RichTextBox, SavesWhatRichTextCannotHoldAsPlainTextOnly) {
    FileEditor editor;
    editor.Box.SetText(L"a\0b"s);
    AtomicFile::Write(editor.Path, "old");
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
    FileEditor editor;
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
    FileEditor editor;
    for (const std::wstring& text :
         {L"a"s, L"a\r\n"s, L"\r\n"s, L"a\r\n\r\n"s, L" a "s, L"\ta\t\r\n"s, L"\x00A0-\x00AD-"s}) {
        editor.Box.SetText(text);
        editor.Box.SaveFile(editor.Path, Rich);
        editor.Box.SetText(L"");
        editor.Box.LoadFile(editor.Path, Rich);
        EXPECT_EQ(text, editor.Box.Text());
    }
}
