#include <windows.h>

#include <algorithm>

#include "FuzzedEditor.h"
#include "Cases.h"
#include "Windows.h"
#include "forms/TextFile.h"
#include "support/Dialogs.h"
#include "support/Errors.h"
#include "support/Files.h"

// Files of any bytes: read, written and read again by the functions that the window uses, then by its editor, and some
// through its menu and dialogs.
namespace {

// Line ends of a text: which kinds it has.
bool HasOneKindOfLineEnd(const std::wstring& text) {
    bool crLf = false;
    bool lf = false;
    bool cr = false;
    if (text.find_first_of(L"\v\f\x85\x2028\x2029") != std::wstring::npos) return false;
    for (size_t at = 0; at < text.size(); ++at) {
        const bool both = text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n';
        crLf = crLf || both;
        cr = cr || (text[at] == L'\r' && !both);
        lf = lf || (text[at] == L'\n' && (at == 0 || text[at - 1] != L'\r'));
    }
    return crLf + lf + cr <= 1;
}

class FilesFuzz : public FilesFixture {};

}  // namespace

TEST(TextFileFuzz, WhatIsReadIsWrittenAsTheSameBytes) {
    ForEachCase(3000, [](Random& random) {
        const std::string bytes = AnyFile(random, random.OneIn(50) ? 20000 : 200);
        TextFile::Contents contents = TextFile::Decode(bytes);
        const std::string again = TextFile::Encode(contents.Text, contents.Form);
        ASSERT_TRUE(bytes == again) << testing::PrintToString(bytes) << "\nbecame\n" << testing::PrintToString(again);
    });
}

TEST(TextFileFuzz, WhatIsWrittenIsReadAsTheSameText) {
    using TextFile::Encoding;
    using TextFile::LineEnd;
    ForEachCase(3000, [](Random& random) {
        const std::wstring text = InControl(AnyText(random, 200));
        TextFile::Format format{random.Pick({Encoding::Utf8, Encoding::Utf16LittleEndian, Encoding::Utf16BigEndian,
                                             Encoding::SystemCodePage}),
                                random.OneIn(2), random.Pick({LineEnd::CrLf, LineEnd::Lf, LineEnd::Cr})};
        const TextFile::Contents read = TextFile::Decode(TextFile::Encode(text, format));
        ASSERT_TRUE(text == InControl(read.Text)) << Shown(text) << "\nbecame " << Shown(read.Text);
        // What the format has become is what the file says. Plain ASCII in the code page is UTF-8 as well.
        const bool ascii = std::all_of(text.begin(), text.end(), [](wchar_t unit) { return unit < 0x80; });
        EXPECT_EQ(format.Kind == Encoding::SystemCodePage && ascii ? Encoding::Utf8 : format.Kind, read.Form.Kind)
            << Shown(text);
        EXPECT_EQ(format.ByteOrderMark, read.Form.ByteOrderMark) << Shown(text);
    });
}

// The editor gives the text with CR LF, and the file back as it was where its line ends were of one kind; a file that
// it would change otherwise is refused, and leaves everything as it was.
TEST(EditorFileFuzz, AFileIsOpenedAndSavedAgain) {
    FuzzedEditor editor(L"any.sql");
    ForEachCase(40, [&](Random& random) {
        const std::string bytes = AnyFile(random, random.OneIn(40) ? 20000 : 200);
        const std::wstring text = TextFile::Decode(bytes).Text;
        editor.Box.SetText(L"before");
        editor.Box.FileName = L"before.sql";
        const TextFile::Format format = editor.Box.FileFormat;
        editor.Changes = 0;
        PutBytes(editor.Path, bytes);
        const long number = NumberOf([&] { editor.Box.LoadFile(editor.Path, RichTextBox::FileKind::Text); });
        if (number != 0) {
            EXPECT_EQ(InvalidFormat, number) << Shown(text);
            EXPECT_TRUE(editor.Box.Text() == L"before" && editor.Box.FileName == L"before.sql" &&
                        editor.Box.FileFormat == format && editor.Changes == 0)
                << Shown(text);
            return;
        }
        const std::wstring loaded = editor.Box.Text();
        ASSERT_TRUE(InControl(text) == loaded) << Shown(text) << "\nbecame " << Shown(loaded);
        editor.Box.SaveFile(editor.Path, RichTextBox::FileKind::Text);
        const std::string saved = BytesOf(editor.Path);
        if (HasOneKindOfLineEnd(text)) {
            ASSERT_TRUE(bytes == saved) << testing::PrintToString(bytes) << "\nbecame\n"
                                        << testing::PrintToString(saved);
        }
        editor.Box.LoadFile(editor.Path, RichTextBox::FileKind::Text);
        ASSERT_TRUE(loaded == editor.Box.Text()) << Shown(loaded) << "\nbecame " << Shown(editor.Box.Text());
        editor.Box.SaveFile(editor.Path, RichTextBox::FileKind::Text);
        ASSERT_TRUE(saved == BytesOf(editor.Path)) << testing::PrintToString(saved);
    });
}

TEST(EditorFileFuzz, AnyTextIsSavedAndOpenedAgain) {
    FuzzedEditor editor(L"any.sql");
    ForEachCase(40, [&](Random& random) {
        const std::wstring text = AnyText(random, 200);
        editor.Box.SetText(text);
        ASSERT_TRUE(InControl(text) == editor.Box.Text()) << Shown(text) << "\nbecame " << Shown(editor.Box.Text());
        EXPECT_EQ(static_cast<long>(InControl(text).size()), editor.Box.TextLength()) << Shown(text);
        editor.Box.SaveFile(editor.Path, RichTextBox::FileKind::Text);
        editor.Box.LoadFile(editor.Path, RichTextBox::FileKind::Text);
        ASSERT_TRUE(InControl(text) == editor.Box.Text()) << Shown(text) << "\nbecame " << Shown(editor.Box.Text());
    });
}

// Positions count what the text counts.
TEST(EditorFileFuzz, ASelectionIsThePartOfTheTextThatItSays) {
    FuzzedEditor editor(L"any.sql");
    ForEachCase(120, [&](Random& random) {
        const std::wstring text = InControl(AnyText(random, 100));
        editor.Box.SetText(text);
        size_t from = random.Below(text.size() + 1);
        size_t to = from + random.Below(text.size() - from + 1);
        // A position between CR and LF is the one before.
        const auto between = [&](size_t at) {
            return at > 0 && at < text.size() && text[at - 1] == L'\r' && text[at] == L'\n';
        };
        from -= between(from) ? 1 : 0;
        to -= between(to) ? 1 : 0;
        editor.Box.Select(static_cast<long>(from), static_cast<long>(to - from));
        EXPECT_EQ(static_cast<long>(from), editor.Box.SelStart()) << Shown(text);
        EXPECT_EQ(static_cast<long>(to - from), editor.Box.SelLength()) << Shown(text);
        EXPECT_EQ(Shown(text.substr(from, to - from)), Shown(editor.Box.SelText())) << Shown(text);
        const std::wstring other = AnyText(random, 30);
        editor.Box.SetSelText(other);
        const std::wstring whole = text.substr(0, from) + InControl(other) + text.substr(to);
        ASSERT_TRUE(whole == editor.Box.Text())
            << Shown(text) << " and " << Shown(other) << "\nbecame " << Shown(editor.Box.Text());
        EXPECT_EQ(static_cast<long>(from + InControl(other).size()), editor.Box.SelStart()) << Shown(text);
    });
}

// As the user does it.
TEST_F(FilesFuzz, OpenedAndSavedByTheMenu) {
    EXPECT_EQ(L"the end", Inside(L"before", [&] {
                  ForEachCase(3, [&](Random& random) {
                      const std::string bytes = AnyFile(random, 200);
                      const std::wstring text = TextFile::Decode(bytes).Text;
                      PutBytes(Here / L"a.sql", bytes);
                      PutText(L"kept");
                      SendMessageW(EditorWindow::Editor(), EM_SETMODIFY, FALSE, 0);
                      {
                          // The text is changed: the window asks before it is gone.
                          Dialogs dialogs;
                          dialogs.Button(IDYES).File(Here / L"a.sql");
                          Open();
                      }
                      const std::wstring loaded = EditorText();
                      if (loaded == L"kept" && InControl(text) != L"kept") return;  // refused
                      ASSERT_TRUE(InControl(text) == loaded) << Shown(text) << "\nbecame " << Shown(loaded);
                      Save();
                      if (HasOneKindOfLineEnd(text)) {
                          ASSERT_TRUE(bytes == BytesOf(Here / L"a.sql")) << testing::PrintToString(bytes);
                      }
                      EXPECT_EQ(L"a.sql|", Here.Listing());
                  });
                  PutText(L"the end");
              }));
}
