#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "FuzzedEditor.h"
#include "Cases.h"
#include "RichTexts.h"
#include "forms/AtomicFile.h"
#include "forms/Rtf.h"
#include "support/Errors.h"

// Rich text of any damage, read from files. Either the control reads it, and what the editor then holds is a text with
// positions of its own that can be saved, or it is refused and everything stays as it was.
namespace {

void LoadRichText(const std::string& bytes, FuzzedEditor& editor, const std::wstring* expected) {
    editor.Box.SetText(L"before");
    editor.Box.FileName = L"before.sql";
    const TextFile::Format format{TextFile::Encoding::Utf16BigEndian, true, TextFile::LineEnd::Cr};
    editor.Box.FileFormat = format;
    editor.Changes = 0;
    AtomicFile::Write(editor.Path, bytes);
    const long number = NumberOf([&] { editor.Box.LoadFile(editor.Path, RichTextBox::FileKind::RichText); });
    if (number != 0) {
        EXPECT_EQ(InvalidFormat, number);
        EXPECT_EQ(nullptr, expected) << "was refused";
        EXPECT_EQ(L"before", editor.Box.Text());
        EXPECT_EQ(L"before.sql", editor.Box.FileName);
        EXPECT_TRUE(format == editor.Box.FileFormat);
        EXPECT_EQ(0, editor.Changes);
        return;
    }
    EXPECT_EQ(1, editor.Changes);
    EXPECT_EQ(editor.Path, editor.Box.FileName);
    const std::wstring text = editor.Box.Text();
    if (expected != nullptr) {
        // The line end after the last paragraph is a matter of taste: the control may take it for the end of the text.
        const bool last = *expected == text + L"\r\n";
        EXPECT_TRUE(last || *expected == text) << "expected " << Shown(*expected) << "\nbut it is " << Shown(text);
    }
    EXPECT_TRUE(InControl(text) == text) << "half of a line end in " << Shown(text);
    EXPECT_EQ(static_cast<long>(text.size()), editor.Box.TextLength());
    // Positions are those of the text, to its end.
    for (const size_t at : {text.size() / 2, text.size()}) {
        if (at > 0 && at < text.size() && text[at] == L'\n') continue;
        editor.Box.SetSelStart(static_cast<long>(at));
        EXPECT_EQ(static_cast<long>(at), editor.Box.SelStart()) << Shown(text);
    }
    editor.Box.Select(0, static_cast<long>(text.size()));
    EXPECT_TRUE(text == editor.Box.SelText()) << Shown(text) << "\nis selected as " << Shown(editor.Box.SelText());
    // It may be edited on.
    editor.Box.SetSelText(L"x\r\ny");
    EXPECT_EQ(L"x\r\ny", editor.Box.Text());
}

}  // namespace

TEST(RichTextFuzz, WhatIsWholeIsReadAsItsText) {
    FuzzedEditor editor(L"any.rtf");
    ForEachCase(40, [&](Random& random) {
        const std::wstring text = AnyPlainText(random);
        const std::string bytes = AsRichText(random, text);
        SCOPED_TRACE(testing::PrintToString(bytes));
        LoadRichText(bytes, editor, &text);
    });
}

TEST(RichTextFuzz, WhatIsDamagedIsReadOrRefused) {
    FuzzedEditor editor(L"any.rtf");
    ForEachCase(50, [&](Random& random) {
        const std::string bytes = DamagedRichText(random, AnyRichText(random));
        SCOPED_TRACE(testing::PrintToString(bytes.substr(0, 2000)));
        if (IsRepeating()) std::printf("%s\n", testing::PrintToString(bytes.substr(0, 2000)).c_str());
        LoadRichText(bytes, editor, nullptr);
    });
}

// What is told to be whole has a partner for each of its braces, whatever the bytes between.
TEST(RichTextFuzz, WholenessIsTold) {
    ForEachCase(2000, [](Random& random) {
        const std::string whole = AsRichText(random, AnyPlainText(random));
        EXPECT_TRUE(IsRichText(whole)) << testing::PrintToString(whole);
        const size_t cut = random.Below(whole.size());
        EXPECT_FALSE(IsRichText(whole.substr(0, cut))) << testing::PrintToString(whole) << " up to " << cut;
        EXPECT_FALSE(IsRichText(whole + random.Pick<std::string>({"x", "}", "{", "{}"})))
            << testing::PrintToString(whole);
        IsRichText(DamagedRichText(random, whole));
        IsRichText(AnyBytes(random, 100));
    });
}
