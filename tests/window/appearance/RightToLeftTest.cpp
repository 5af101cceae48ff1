#include "editor/ControlIds.h"
#include "support/Dialogs.h"
#include "support/Editing.h"
#include "support/Files.h"
#include "support/TestData.h"

using namespace std::string_literals;

namespace {

// Hebrew and Arabic among SQL: with points and vowel signs, digits of their own, and each of the characters that one
// does not see: marks, embeddings, overrides, isolates and joiners, closed and left open, first and last.
const std::wstring Mixed =
    L"\u200fSELECT \u05e9\u05c1\u05b5\u05dd, [\u0627\u0644\u0639\u064f\u0645\u0631] FROM "
    L"\u05dc\u05e7\u05d5\u05d7\u05d5\u05ea -- \u05d4\u05e2\u05e8\u05d4\u200e (1), 2\u00a0%\r\n"
    L"WHERE a = '\u202b\u0645\u0631\u062d\u0628\u0627 abc\u202c' AND b <> '\u2067abc "
    L"\u05d0\u2069\u2066\u05d1\u2069\u2068z\u2069'\r\n"
    L"\r\n"
    L"\u05e9\u05d5\u05e8\u05d4 \u05de\u05d9\u05de\u05d9\u05df \u05dc\u05e9\u05de\u05d0\u05dc \u0661\u0662\u0663 "
    L"\u06f4\u06f5 = 10;\r\n"
    L"\u202a\u202d\u202e\u061c \u0644\u200c\u0627\u200d\ufef7 \u2067\u202b";

// The same in UTF-8.
std::string Bytes(const std::wstring& text) {
    std::string bytes(text.size() * 3, '\0');
    bytes.resize(
        static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                                                static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

std::string Utf16(const std::wstring& text, bool bigEndian) {
    std::string bytes = bigEndian ? "\xfe\xff"s : "\xff\xfe"s;
    for (const wchar_t unit : text) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}

std::wstring Raw() {  // with one character for a line end, as the control keeps it
    std::wstring raw;
    for (const wchar_t unit : Mixed) {
        if (unit != L'\n') raw += unit;
    }
    return raw;
}

class RightToLeftTest : public EditingFixture {
protected:
};

class RightToLeftFilesTest : public FilesFixture {
protected:
};

}  // namespace

TEST_F(RightToLeftTest, DisplayHandsBackWhatItWasGiven) {
    EXPECT_EQ(Mixed, Inside(Mixed, [] { EXPECT_EQ(Mixed, EditorWindow::Text()); }));
    // Through a fresh control, which takes the place of one with a long text.
    const Object editor = Connected();
    std::wstring lengthy;
    while (lengthy.size() < 40000) lengthy += Mixed + L"\r\n";
    EXPECT_EQ(lengthy, DisplayAndClose(editor, lengthy, [] {}));
    EXPECT_EQ(Mixed, DisplayAndClose(editor, Mixed, [] {}));
}

TEST_F(RightToLeftTest, EachOfTheUnseenCharactersIsKept) {
    const Object editor = Connected();
    for (const wchar_t mark :
         L"\u200b\u200c\u200d\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2060\u2066\u2067\u2068\u2069\u061c\ufeff"s) {
        // First, last, between letters of both directions, and at the ends of lines.
        const std::wstring text = mark + L"a"s + mark + L"\u05d0"s + mark + L"\r\n"s + mark;
        EXPECT_EQ(text, DisplayAndClose(editor, text, [] {})) << "U+" << std::hex << static_cast<int>(mark);
    }
}

TEST_F(RightToLeftTest, WhatIsTypedComesBack) {
    EXPECT_EQ(L"select \u05d0\u200f\u0628;", Inside(L"select ;", [] {
                  SelectText(7, 7);
                  for (const wchar_t unit : L"\u05d0\u200f\u0628"s) {
                      SendMessageW(EditorWindow::Editor(), WM_CHAR, unit, 1);
                  }
                  EXPECT_EQ(L"10-10", Selection());
              }));
}

TEST_F(RightToLeftTest, CopyCutAndPasteKeepIt) {
    EXPECT_EQ(Mixed + Mixed, Inside(Mixed, [] {
                  Choose(L"Select All");
                  Choose(L"Copy");
                  EXPECT_EQ(Mixed, ClipboardText());
                  Choose(L"Cut");
                  EXPECT_EQ(L"", EditorWindow::Text());
                  EXPECT_EQ(Mixed, ClipboardText());
                  Choose(L"Paste");
                  EXPECT_EQ(Mixed, EditorWindow::Text());
                  const auto end = static_cast<LONG>(Raw().size());
                  SelectText(end, end);
                  Choose(L"Paste");
              }));
}

TEST_F(RightToLeftTest, ADropKeepsIt) {
    EXPECT_EQ(L"<" + Mixed + L">", Inside(L"<>", [] {
                  SelectText(1, 1);
                  TestData data;
                  data.AddText(Mixed);
                  // A place outside the text: where the caret is.
                  EXPECT_EQ(DWORD{DROPEFFECT_COPY}, DropOnEditor(data, {-5000, -5000}));
              }));
}

TEST_F(RightToLeftTest, CaseAndFindLeaveWhatHasNoCase) {
    std::wstring upper = Mixed;
    for (wchar_t& unit : upper) {
        if (unit >= L'a' && unit <= L'z') unit = static_cast<wchar_t>(unit - 32);
    }
    EXPECT_EQ(upper, Inside(Mixed, [] {
                  Choose(L"Select All");
                  Choose(L"Make Upper Case");
                  SelectText(0, 0);
                  SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
                      const HWND box = FindWindowW(L"#32770", L"Find");
                      if (box == nullptr || !IsWindowVisible(box)) return;
                      KillTimer(nullptr, id);
                      SetDlgItemTextW(box, 101, L"\u0645\u0631\u062d\u0628\u0627 aBc\u202c");
                      SendMessageW(box, WM_COMMAND, IDOK, 0);
                  });
                  Choose(L"Find...");
                  const auto at = static_cast<LONG>(Raw().find(L"\u0645\u0631\u062d\u0628\u0627"));
                  EXPECT_EQ(std::to_wstring(at) + L"-" + std::to_wstring(at + 10), Selection());
              }));
}

TEST_F(RightToLeftTest, NamesOfTheDatabaseReachTheStatement) {
    const std::wstring table = L"\u05dc\u05e7\u05d5\u05d7\u05d5\u05ea\u200f 2";
    const std::wstring column = L"\u0627\u0644\u0627\u0633\u0645";
    Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(L"\u05de\u05db\u05d9\u05e8\u05d5\u05ea")}));
    };
    Database.DictionaryMembers[L"Objects"] = [&](const Arguments&) {
        return Variant(MakeCollection({Variant(table)}));
    };
    Columns({column.c_str(), L"\u2067id\u2069"});
    Type(8);  // with the schema's name before the table's
    const std::wstring returned = Inside(L"", [&] {
        Tree.Open(Tree.At({}));
        EXPECT_EQ(L"\u05de\u05db\u05d9\u05e8\u05d5\u05ea", Tree.Text(Tree.At({0})));
        Tree.Open(Tree.At({0}));
        Tree.Open(Tree.At({0, 0}));
        EXPECT_EQ(table, Tree.Text(Tree.At({0, 0, 0})));
        Tree.Click(Tree.At({0, 0, 0}));
        EXPECT_NE(std::wstring::npos, Description().find(table));
        EditorWindow::Choose(L"Action", L"Select");
    });
    EXPECT_EQ(L"\r\nSELECT " + column + L"\r\n, \u2067id\u2069\r\nFROM \u05de\u05db\u05d9\u05e8\u05d5\u05ea.[" + table +
                  L"]\r\n;\r\n",
              returned);
}

// The host may be of a language that is written from the right, its windows mirrored: these texts, and SQL, run from
// the left.
TEST_F(RightToLeftTest, AMirroredHostDoesNotMirrorTheWindow) {
    struct Mirrored {
        Mirrored() { EXPECT_TRUE(SetProcessDefaultLayout(LAYOUT_RTL)); }
        ~Mirrored() { SetProcessDefaultLayout(0); }
    } const mirrored;
    const HWND other = CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    EXPECT_NE(0, GetWindowLongW(other, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
    DestroyWindow(other);
    EXPECT_EQ(Mixed, Inside(Mixed, [] {
                  const HWND window = EditorWindow::Find();
                  EXPECT_EQ(0, GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
                  EnumChildWindows(
                      window,
                      [](HWND child, LPARAM) WINAPI -> BOOL {
                          EXPECT_EQ(0, GetWindowLongW(child, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
                          return TRUE;
                      },
                      0);
                  RECT tab, editor;
                  GetWindowRect(GetDlgItem(window, IdLeftButton), &tab);
                  GetWindowRect(EditorWindow::Editor(), &editor);
                  EXPECT_LT(tab.right, editor.left);
              }));
}

TEST_F(RightToLeftFilesTest, OpenAndSaveKeepItInEveryEncoding) {
    const std::wstring name = L"\u05e9\u05d0\u05d9\u05dc\u05ea\u05d4 \u0627\u0633\u062a\u0639\u0644\u0627\u0645.sql";
    const struct {
        const wchar_t* Panel;
        std::string Bytes;
    } files[] = {
        {L"UTF-8", Bytes(Mixed)},
        {L"UTF-8 BOM", "\xef\xbb\xbf" + Bytes(Mixed)},
        {L"UTF-16 LE", Utf16(Mixed, false)},
        {L"UTF-16 BE", Utf16(Mixed, true)},
    };
    for (const auto& file : files) {
        PutBytes(Here / name.c_str(), file.Bytes);
        EXPECT_EQ(Mixed, Inside(L"", [&] {
                      Load(Here / name.c_str());
                      EXPECT_EQ(Mixed, EditorWindow::Text());
                      EXPECT_EQ(file.Panel, FormatPanel());
                      PutBytes(Here / name.c_str(), "");
                      const BoxAnswerer overwrite(IDYES);  // what another program has changed
                      Save();
                      EXPECT_EQ(1, overwrite.Boxes);
                      EXPECT_EQ(file.Bytes, BytesOf(Here / name.c_str())) << file.Bytes.size();
                  }));
    }
}

TEST_F(RightToLeftFilesTest, SaveAsWritesItAndRichTextBringsItBack) {
    Inside(Mixed, [this] {
        {
            Dialogs dialogs;
            dialogs.File(Here / L"\u05d0.sql");
            SaveAs();
        }
        EXPECT_EQ(Bytes(Mixed), BytesOf(Here / L"\u05d0.sql"));
        {
            Dialogs dialogs;
            dialogs.File(Here / L"\u05d1.rtf");
            SaveAs();
        }
        // Rich text is of ASCII alone.
        const std::string rich = BytesOf(Here / L"\u05d1.rtf");
        EXPECT_EQ("{\\rtf", rich.substr(0, 5));
        for (const char unit : rich) {
            EXPECT_GE(unit, 0);
            if (unit < 0) break;
        }
        New();
        EXPECT_EQ(L"", EditorWindow::Text());
        Load(Here / L"\u05d1.rtf");
        EXPECT_EQ(Mixed, EditorWindow::Text());
    });
}

// A file of the system's code page that gets what it cannot hold becomes UTF-8 rather than question marks.
TEST_F(RightToLeftFilesTest, AnAnsiFileThatGetsItBecomesUtf8) {
    PutBytes(Here / L"a.sql", "select '\xe9'");
    Inside(L"", [this] {
        Load(Here / L"a.sql");
        EXPECT_EQ(L"ANSI", FormatPanel());
        Type(L"\u200f\u05d0");
        Save();
        EXPECT_EQ("\xef\xbb\xbf" + Bytes(L"select '\u00e9'\u200f\u05d0"), BytesOf(Here / L"a.sql"));
        EXPECT_EQ(L"UTF-8 BOM", FormatPanel());
    });
}

TEST_F(RightToLeftFilesTest, ADroppedFileKeepsIt) {
    PutBytes(Here / L"\u0628.sql", Bytes(Mixed));
    EXPECT_EQ(Mixed + L"\r\n", Inside(L"", [this] {
                  TestData data;
                  data.AddFiles({Here / L"\u0628.sql"});
                  DropOnEditor(data, {-5000, -5000});
              }));
}
