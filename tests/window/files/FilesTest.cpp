#include <windows.h>
#include <cderr.h>
#include <commdlg.h>

#include <algorithm>

#include "support/Dialogs.h"
#include "support/Files.h"
#include "support/PatchedFunction.h"
#include "support/Steps.h"

using namespace std::string_literals;

namespace {
class FilesTest : public FilesFixture {};

constexpr const wchar_t* ClearQuestion = L"Are you sure you wish to clear the current SQL?";
constexpr const wchar_t* DiscardQuestion =
    L"You have not saved the current SQL. Opening another file will discard the current SQL. Do you want to continue?";
}  // namespace

TEST_F(FilesTest, NewAsksOnlyWhenTheTextIsModified) {
    Inside(L"select 1", [this] {
        New();
        EXPECT_EQ(L"", EditorWindow::Text());
        EXPECT_FALSE(Modified());
        for (const int answer : {IDNO, IDCANCEL, IDYES}) {
            EditorWindow::SetText(L"select 2");
            Dialogs dialogs;
            dialogs.Button(answer);
            New();
            ASSERT_EQ(1U, dialogs.All.size());
            EXPECT_EQ(answer == IDYES ? L"" : L"select 2", EditorWindow::Text());
        }
        EXPECT_FALSE(Modified());
        EXPECT_EQ(L"SQL Editor", EditorWindow::Caption());
    });
}

namespace {

DWORD filterGiven = 0;
std::wstring pathChosen;

// The user chooses the third filter and the file.
BOOL WINAPI FileDialogInstead(OPENFILENAMEW* dialog) {
    filterGiven = dialog->nFilterIndex;
    dialog->nFilterIndex = 3;
    lstrcpynW(dialog->lpstrFile, pathChosen.c_str(), static_cast<int>(dialog->nMaxFile));
    return TRUE;
}

}  // namespace

TEST_F(FilesTest, TheFilterThatWasChosenIsOfferedAgain) {
    pathChosen = Here / L"orders.sql";
    PutBytes(pathChosen, "select 1");
    Inside(L"", [] {
        const PatchedFunction open(L"comdlg32.dll", "GetOpenFileNameW", reinterpret_cast<void*>(&FileDialogInstead));
        const PatchedFunction save(L"comdlg32.dll", "GetSaveFileNameW", reinterpret_cast<void*>(&FileDialogInstead));
        ASSERT_TRUE(open && save);
        Open();
        EXPECT_EQ(1U, filterGiven);
        EXPECT_EQ(L"select 1", EditorWindow::Text());
        Open();
        EXPECT_EQ(3U, filterGiven);
        SaveAs();
        EXPECT_EQ(3U, filterGiven);
    });
}

TEST_F(FilesTest, TheQuestionsReadAsTheyShould) {
    Inside(L"", [] {
        EditorWindow::SetText(L"x");
        Dialogs dialogs;
        dialogs.Cancel().Cancel();
        New();
        Open();
        ASSERT_EQ(2U, dialogs.All.size());
        EXPECT_EQ(ClearQuestion, dialogs.All[0].Text);
        EXPECT_EQ(DiscardQuestion, dialogs.All[1].Text);
        for (const Dialogs::Seen& seen : dialogs.All) {
            EXPECT_EQ(L"brvSQLEditor", seen.Title);
            EXPECT_EQ((std::vector<int>{IDCANCEL, IDYES, IDNO}), seen.Buttons);
            EXPECT_EQ(L"information", seen.Icon);
            EXPECT_EQ(EditorWindow::Find(), seen.Owner);
            EXPECT_TRUE(seen.OwnerDisabled);
        }
    });
}

TEST_F(FilesTest, OpenAsksBeforeItDiscardsAndShowsTheFile) {
    PutBytes(Here / L"orders.sql", "select * from orders\r\n");
    Inside(L"select 1", [this] {
        EditorWindow::SetText(L"select 2");
        for (const int answer : {IDNO, IDCANCEL}) {
            Dialogs dialogs;
            dialogs.Button(answer);
            Open();
            ASSERT_EQ(1U, dialogs.All.size());
            EXPECT_EQ(L"select 2", EditorWindow::Text());
        }
        {
            Dialogs dialogs;
            dialogs.Button(IDYES).Cancel();
            Open();
            ASSERT_EQ(2U, dialogs.All.size());
            EXPECT_EQ(EditorWindow::Find(), dialogs.All[1].Owner);
            EXPECT_TRUE(dialogs.All[1].OwnerDisabled);
        }
        EXPECT_EQ(L"select 2", EditorWindow::Text());
        EXPECT_EQ(L"SQL Editor", EditorWindow::Caption());
        EXPECT_TRUE(Modified());
        Dialogs dialogs;
        dialogs.Button(IDYES).File(Here / L"orders.sql");
        Open();
        EXPECT_EQ(L"select * from orders\r\n", EditorWindow::Text());
        EXPECT_EQ(L"SQL Editor - orders.sql", EditorWindow::Caption());
        EXPECT_TRUE(IsWindowEnabled(EditorWindow::Find()));
    });
}

TEST_F(FilesTest, SaveWithoutANameIsSaveAs) {
    Inside(L"select 1\r\nfrom dual", [this] {
        Type(L" x");
        {
            Dialogs dialogs;
            dialogs.Cancel();
            Save();
            ASSERT_EQ(1U, dialogs.All.size());
        }
        EXPECT_TRUE(Modified());
        EXPECT_EQ(L"SQL Editor", EditorWindow::Caption());
        {
            Dialogs dialogs;
            dialogs.File(Here / L"a.sql");
            Save();
            ASSERT_EQ(1U, dialogs.All.size());
        }
        EXPECT_EQ("select 1\r\nfrom dual x", BytesOf(Here / L"a.sql"));
        EXPECT_EQ(L"SQL Editor - a.sql", EditorWindow::Caption());
        EXPECT_FALSE(Modified());
        Type(L"y");
        EXPECT_TRUE(Modified());
        const Dialogs none;
        Save();
        EXPECT_EQ("select 1\r\nfrom dual xy", BytesOf(Here / L"a.sql"));
    });
    EXPECT_EQ(L"a.sql|", Here.Listing());
}

TEST_F(FilesTest, SaveAsBeginsWithTheNameOfTheText) {
    Inside(L"text", [this] {
        const auto name = [] {
            Dialogs dialogs;
            dialogs.Cancel();
            SaveAs();
            return dialogs.All.size() == 1 ? dialogs.All[0].Name : std::wstring(L"<none>");
        };
        {
            Dialogs dialogs;
            dialogs.File(Here / L"a.sql");
            SaveAs();
        }
        EXPECT_NE(std::wstring::npos, name().find(L"a.sql"));
        New();
        EXPECT_EQ(L"", name());
    });
}

TEST_F(FilesTest, SaveAsAsksBeforeItOverwrites) {
    PutBytes(Here / L"old.sql", "old");
    Inside(L"new", [this] {
        {
            Dialogs dialogs;
            dialogs.File(Here / L"old.sql").Button(IDNO).Cancel();
            SaveAs();
            ASSERT_EQ(3U, dialogs.All.size());
            EXPECT_EQ((std::vector<int>{IDYES, IDNO}), dialogs.All[1].Buttons);
        }
        EXPECT_EQ("old", BytesOf(Here / L"old.sql"));
        EXPECT_EQ(L"SQL Editor", EditorWindow::Caption());
        Dialogs dialogs;
        dialogs.File(Here / L"old.sql").Button(IDYES);
        SaveAs();
        EXPECT_EQ("new", BytesOf(Here / L"old.sql"));
        EXPECT_EQ(L"SQL Editor - old.sql", EditorWindow::Caption());
    });
}

TEST_F(FilesTest, SaveAsBeginsWithTheFilesNameAndMovesToTheOther) {
    PutBytes(Here / L"one.sql", "one");
    Inside(L"", [this] {
        Load(Here / L"one.sql");
        Type(L"!");
        {
            Dialogs dialogs;
            dialogs.File(Here / L"two");  // gets the extension
            SaveAs();
            ASSERT_EQ(1U, dialogs.All.size());
            EXPECT_NE(std::wstring::npos, dialogs.All[0].Name.find(L"one.sql"));
        }
        EXPECT_EQ(L"SQL Editor - two.sql", EditorWindow::Caption());
        Type(L"?");
        Save();
    });
    EXPECT_EQ("one", BytesOf(Here / L"one.sql"));
    EXPECT_EQ("one!?", BytesOf(Here / L"two.sql"));
}

TEST_F(FilesTest, WhatTheStatusBarTellsGoesWithTheNextStep) {
    PutBytes(Here / L"good.sql", "good");
    PutBytes(Here / L"bad.rtf", "no rich text");
    Inside(L"x", [this] {
        const std::wstring connection = EditorWindow::Status();
        const auto fail = [&] {
            Dialogs dialogs;
            dialogs.File(Here / L"bad.rtf");
            Open();
            EXPECT_EQ(L"bad.rtf was not opened: Invalid file format", EditorWindow::Status());
        };
        const std::wstring format = FormatPanel();
        {
            Dialogs dialogs;
            dialogs.Cancel().Cancel();
            Open();
            SaveAs();
        }
        EXPECT_EQ(connection, EditorWindow::Status()) << "who cancels knows";
        fail();
        SendMessageW(EditorWindow::Editor(), EM_SETSEL, 1, 1);  // the caret moves
        EXPECT_EQ(connection, EditorWindow::Status());
        EXPECT_EQ(format, FormatPanel());
        fail();
        Load(Here / L"good.sql");
        EXPECT_EQ(connection, EditorWindow::Status());
        fail();
        New();
        EXPECT_EQ(connection, EditorWindow::Status());
        SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, 0);
        fail();
        SendMessageW(EditorWindow::Editor(), WM_CHAR, L'a', 0);
        EXPECT_EQ(connection, EditorWindow::Status());
    });
}

TEST_F(FilesTest, AFileThatAnotherProgramHasChangedIsNotOverwrittenUnasked) {
    for (const wchar_t* name : {L"a.sql", L"a.rtf"}) {
        const bool rich = name[2] == L'r';
        const std::string first = rich ? "{\\rtf1\\ansi one}" : "one";
        const std::string theirs = rich ? "{\\rtf1\\ansi two}" : "two";
        PutBytes(Here / name, first);
        Inside(L"", [&] {
            Load(Here / name);
            Type(L"!");
            PutBytes(Here / name, theirs);  // as long as the one before
            {
                Dialogs dialogs;
                dialogs.Button(IDNO);
                Save();
                ASSERT_EQ(1U, dialogs.All.size());
                EXPECT_EQ((Here / name) +
                              L"\r\nhas been changed by another program since it was opened or saved here. Do you want "
                              L"to overwrite it?",
                          dialogs.All[0].Text);
                EXPECT_EQ((std::vector<int>{IDYES, IDNO}), dialogs.All[0].Buttons);
                EXPECT_EQ(IDNO, dialogs.All[0].Default);
                EXPECT_EQ(L"exclamation", dialogs.All[0].Icon);
                EXPECT_EQ(EditorWindow::Find(), dialogs.All[0].Owner);
                EXPECT_EQ(theirs, BytesOf(Here / name));
            }
            EXPECT_TRUE(Modified());
            {
                Dialogs dialogs;
                dialogs.Button(IDYES);
                Save();
            }
            EXPECT_NE(theirs, BytesOf(Here / name));
            EXPECT_FALSE(Modified());
            Type(L"?");
            const Dialogs none;
            Save();  // what was saved here is no other program's
            PutBytes(Here / name, BytesOf(Here / name));
            Save();  // touched, and the same
        });
    }
}

TEST_F(FilesTest, NorOneThatHasBecomeLargerThanTheEditorTakes) {
    PutBytes(Here / L"a.sql", "one");
    const std::string theirs(4 * 1024 * 1024 + 1, 'x');
    Inside(L"", [&] {
        Load(Here / L"a.sql");
        Type(L"!");
        PutBytes(Here / L"a.sql", theirs);
        Dialogs dialogs;
        dialogs.Button(IDNO);
        Save();
        EXPECT_EQ(1U, dialogs.All.size());
    });
    EXPECT_TRUE(theirs == BytesOf(Here / L"a.sql"));
}

TEST_F(FilesTest, MixedLineEndsBecomeThoseOfWindows) {
    PutBytes(Here / L"a.sql", "a\nb\r\nc\rd");
    Inside(L"", [this] {
        Load(Here / L"a.sql");
        EXPECT_EQ(L"UTF-8", FormatPanel());
        Save();
        EXPECT_EQ("a\r\nb\r\nc\r\nd", BytesOf(Here / L"a.sql"));
    });
}

TEST_F(FilesTest, EveryEncodingComesBackByteByByte) {
    const std::pair<const wchar_t*, std::string> files[] = {
        {L"UTF-8", ""},
        {L"UTF-8", "select '\xC3\xA9\xF0\x9F\x98\x80'\r\n"},
        {L"UTF-8 BOM", "\xEF\xBB\xBFselect '\xC3\xA9'\r\n"},
        {L"UTF-16 LE", "\xFF\xFEs\0\xE9\0\r\0\n\0"s},
        {L"UTF-16 BE", "\xFE\xFF\0s\0\xE9\0\r\0\n"s},
        {L"ANSI", "caf\xE9\r\n"},
        {L"UTF-8, LF", "a\nb\n"},
        {L"UTF-8, CR", "a\rb\r"},
    };
    Inside(L"", [&] {
        for (const auto& [panel, bytes] : files) {
            PutBytes(Here / L"a.sql", bytes);
            Load(Here / L"a.sql");
            EXPECT_EQ(panel, FormatPanel());
            EXPECT_FALSE(Modified());
            Save();
            EXPECT_EQ(bytes, BytesOf(Here / L"a.sql"));
            Type(L"x");
            Save();
            EXPECT_NE(bytes, BytesOf(Here / L"a.sql"));
            SendMessageW(EditorWindow::Editor(), WM_UNDO, 0, 0);
            Save();
            EXPECT_EQ(bytes, BytesOf(Here / L"a.sql"));
        }
    });
    EXPECT_EQ(L"", Errors.Places());
    EXPECT_EQ(L"a.sql|", Here.Listing());
}

TEST_F(FilesTest, ACharacterThatTheFileCannotHoldTurnsItIntoUtf8) {
    PutBytes(Here / L"a.sql", "caf\xE9");
    Inside(L"", [this] {
        Load(Here / L"a.sql");
        Type(L"\x4E2D");
        Save();
        EXPECT_EQ(
            "\xEF\xBB\xBF"
            "caf\xC3\xA9\xE4\xB8\xAD",
            BytesOf(Here / L"a.sql"));
        EXPECT_EQ(L"UTF-8 BOM", FormatPanel());
    });
}

TEST_F(FilesTest, ANewTextAndANewDisplayForgetTheFile) {
    PutBytes(Here / L"a.sql", "\xFF\xFEs\0"s);
    const Object editor = Connected();
    DisplayAndClose(editor, L"", [this] {
        Load(Here / L"a.sql");
        New();
        EXPECT_EQ(L"SQL Editor", EditorWindow::Caption());
        EXPECT_EQ(L"UTF-8", FormatPanel());
        EditorWindow::SetText(L"\x00E9");
        {
            Dialogs dialogs;
            dialogs.File(Here / L"b.sql");
            Save();
        }
        EXPECT_EQ("\xC3\xA9", BytesOf(Here / L"b.sql"));
        Load(Here / L"a.sql");
        EXPECT_EQ(L"UTF-16 LE", FormatPanel());
    });
    DisplayAndClose(editor, L"caf\x00E9", [this] {
        EXPECT_EQ(L"SQL Editor", EditorWindow::Caption());
        EXPECT_EQ(L"UTF-8", FormatPanel());
        Dialogs dialogs;
        dialogs.File(Here / L"c.sql");
        Save();
    });
    EXPECT_EQ("caf\xC3\xA9", BytesOf(Here / L"c.sql"));
    EXPECT_EQ("\xC3\xA9", BytesOf(Here / L"b.sql"));
}

TEST_F(FilesTest, ASecondDisplayIsUnmodifiedAndHasNoFile) {
    PutBytes(Here / L"a.sql", "x");
    const Object editor = Connected();
    DisplayAndClose(editor, L"", [this] {
        Load(Here / L"a.sql");
        EXPECT_EQ(L"SQL Editor - a.sql", EditorWindow::Caption());
        Type(L"y");
        EXPECT_TRUE(Modified());
    });
    DisplayAndClose(editor, L"select 2", [this] {
        EXPECT_EQ(L"SQL Editor", EditorWindow::Caption());
        EXPECT_FALSE(Modified());
        const Dialogs none;  // asks nothing
        New();
        EXPECT_EQ(L"", EditorWindow::Text());
    });
    EXPECT_EQ("x", BytesOf(Here / L"a.sql"));
}

TEST_F(FilesTest, TheEndingDecidesWhatIsRichText) {
    const std::string rich = "{\\rtf1\\ansi{\\fonttbl{\\f0 Courier New;}}\\f0 select {\\b 1}\\par from dual}";
    for (const wchar_t* name : {L"a.rtf", L"A.RTF", L"noRtF", L"a.sql", L"a.rtf.txt"}) PutBytes(Here / name, rich);
    Inside(L"", [&] {
        for (const wchar_t* name : {L"a.rtf", L"A.RTF", L"noRtF"}) {
            Load(Here / name);
            EXPECT_EQ(L"select 1\r\nfrom dual", EditorWindow::Text());
            EXPECT_EQ(L"Rich text", FormatPanel());
            EXPECT_FALSE(Modified());
        }
        for (const wchar_t* name : {L"a.sql", L"a.rtf.txt"}) {
            Load(Here / name);
            EXPECT_EQ(std::wstring(rich.begin(), rich.end()), EditorWindow::Text());
            Save();
            EXPECT_EQ(rich, BytesOf(Here / name));
        }
    });
}

TEST_F(FilesTest, RichTextGoesOutAndComesBack) {
    const std::wstring text = L"select '\x00E9\x4E2D\xD83D\xDE00', {a} \\b\r\n\tfrom  dual\r\n\r\nwhere 1 = 1";
    Inside(text, [&] {
        {
            Dialogs dialogs;
            dialogs.File(Here / L"A.RTF");
            SaveAs();
        }
        EXPECT_EQ(L"SQL Editor - A.RTF", EditorWindow::Caption());
        EXPECT_EQ("{\\rtf", BytesOf(Here / L"A.RTF").substr(0, 5));
        New();
        Load(Here / L"A.RTF");
        EXPECT_EQ(text, EditorWindow::Text());
        Type(L" and 2 = 2");
        Save();
        New();
        Load(Here / L"A.RTF");
        EXPECT_EQ(text + L" and 2 = 2", EditorWindow::Text());
        Dialogs dialogs;
        dialogs.File(Here / L"plain.txt");
        SaveAs();
        EXPECT_EQ("select '\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80', {a} \\b\r\n\tfrom  dual\r\n\r\nwhere 1 = 1 and 2 = 2",
                  BytesOf(Here / L"plain.txt"));
    });
}

TEST_F(FilesTest, FormatsOfRichTextStayWithIt) {
    PutBytes(Here / L"a.rtf", "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0\\b\\fs60 bold\\b0  plain}");
    Inside(L"", [this] {
        Load(Here / L"a.rtf");
        Type(L"!");
        Save();
        const std::string bytes = BytesOf(Here / L"a.rtf");
        EXPECT_NE(std::string::npos, bytes.find("\\b"));
        EXPECT_NE(std::string::npos, bytes.find("\\fs60"));
        // The next text has none of it.
        New();
        Type(L"next");
        Dialogs dialogs;
        dialogs.File(Here / L"b.rtf");
        SaveAs();
        EXPECT_EQ(std::string::npos, BytesOf(Here / L"b.rtf").find("\\fs60"));
    });
}

TEST_F(FilesTest, ANameMayHaveAnyCharacters) {
    Inside(L"x", [this] {
        const std::wstring name = L"\x4E2D\x05D0 & b.sql";
        {
            Dialogs dialogs;
            dialogs.File(Here / name.c_str());
            SaveAs();
        }
        EXPECT_EQ("x", BytesOf(Here / name.c_str()));
        EXPECT_EQ(L"SQL Editor - " + name, EditorWindow::Caption());
        New();
        Load(Here / name.c_str());
        EXPECT_EQ(L"x", EditorWindow::Text());
    });
}

TEST_F(FilesTest, TheShortcutsStandBesideTheCaptions) {
    Inside(L"x", [] {
        const HMENU file = GetSubMenu(GetMenu(EditorWindow::Find()), 0);
        std::wstring all;
        for (int at = 0; at < GetMenuItemCount(file); ++at) {
            wchar_t text[100]{};
            GetMenuStringW(file, static_cast<UINT>(at), text, 100, MF_BYPOSITION);
            if (text[0] != L'\0') all += std::wstring(text) + L"|";
        }
        EXPECT_EQ(L"&New\tCtrl+N|&Open...\tCtrl+O|&Save\tCtrl+S|Save &As...|&Print...\tCtrl+P|&Close|", all);
    });
}

TEST_F(FilesTest, TheShortcutsWork) {
    PutBytes(Here / L"a.sql", "x");
    const Object editor = Connected();
    BYTE before[256]{};
    GetKeyboardState(before);
    const WhenShown shown([this, &before] {
        Load(Here / L"a.sql");
        Type(L"y");
        BYTE keys[256]{};
        std::copy(before, before + 256, keys);
        keys[VK_CONTROL] = 0x80;
        SetKeyboardState(keys);
        // By the window's own message loop, one after the other.
        PostMessageW(EditorWindow::Editor(), WM_KEYDOWN, L'S', 1);
        PostMessageW(EditorWindow::Editor(), WM_KEYDOWN, L'N', 1);
        PostMessageW(EditorWindow::Find(), WM_CLOSE, 0, 0);
    });
    std::wstring text = L"select 1";
    editor.Call(L"Display", ByRef(text));
    SetKeyboardState(before);
    EXPECT_EQ("xy", BytesOf(Here / L"a.sql"));
    EXPECT_EQ(L"", text);  // saved, so it was emptied without a question
}

TEST_F(FilesTest, TheProcessKeepsItsFolder) {
    wchar_t before[MAX_PATH]{};
    wchar_t after[MAX_PATH]{};
    GetCurrentDirectoryW(MAX_PATH, before);
    PutBytes(Here / L"a.sql", "x");
    Inside(L"", [this] {
        Load(Here / L"a.sql");
        Dialogs dialogs;
        dialogs.File(Here / L"b.sql");
        SaveAs();
    });
    GetCurrentDirectoryW(MAX_PATH, after);
    EXPECT_STREQ(before, after);
}

namespace {

// File dialogs as the system may answer them.
struct AnsweredDialog {
    DWORD Error = 0;
    std::vector<std::wstring> Names{};  // that it began with
    std::wstring Chosen{};
};
AnsweredDialog answered;

BOOL WINAPI CancelledInAnotherFolder(OPENFILENAMEW*) {
    wchar_t folder[MAX_PATH]{};
    GetWindowsDirectoryW(folder, MAX_PATH);
    SetCurrentDirectoryW(folder);
    return FALSE;
}
// Takes no name to begin with.
BOOL WINAPI RefusesNames(OPENFILENAMEW* request) {
    answered.Names.emplace_back(request->lpstrFile);
    const bool refused = request->lpstrFile[0] != L'\0';
    answered.Error = refused ? FNERR_INVALIDFILENAME : 0;
    if (refused) return FALSE;
    lstrcpynW(request->lpstrFile, answered.Chosen.c_str(), static_cast<int>(request->nMaxFile));
    return TRUE;
}
DWORD WINAPI AnsweredError() { return answered.Error; }

}  // namespace

TEST_F(FilesTest, WhateverFolderTheDialogLeaves) {
    wchar_t before[MAX_PATH]{};
    wchar_t after[MAX_PATH]{};
    GetCurrentDirectoryW(MAX_PATH, before);
    Inside(L"", [] {
        answered = {};
        const PatchedFunction open(L"comdlg32.dll", "GetOpenFileNameW",
                                   reinterpret_cast<void*>(&CancelledInAnotherFolder));
        const PatchedFunction error(L"comdlg32.dll", "CommDlgExtendedError", reinterpret_cast<void*>(&AnsweredError));
        ASSERT_TRUE(open && error);
        Open();
    });
    GetCurrentDirectoryW(MAX_PATH, after);
    SetCurrentDirectoryW(before);
    EXPECT_STREQ(before, after);
}

TEST_F(FilesTest, ADialogThatRefusesTheNameIsAskedWithoutOne) {
    PutBytes(Here / L"a.sql", "x");
    Inside(L"", [this] {
        Load(Here / L"a.sql");
        answered = {};
        answered.Chosen = Here / L"b.sql";
        const PatchedFunction save(L"comdlg32.dll", "GetSaveFileNameW", reinterpret_cast<void*>(&RefusesNames));
        const PatchedFunction error(L"comdlg32.dll", "CommDlgExtendedError", reinterpret_cast<void*>(&AnsweredError));
        ASSERT_TRUE(save && error);
        SaveAs();
        EXPECT_EQ((std::vector<std::wstring>{Here / L"a.sql", L""}), answered.Names);
        EXPECT_EQ(L"SQL Editor - b.sql", EditorWindow::Caption());
    });
    EXPECT_EQ("x", BytesOf(Here / L"b.sql"));
}

namespace {
class RestoredFileTest : public StepsFixture {
protected:
    Folder Here;
};
}  // namespace

// The sheet's SQL belongs to no file, and has no formats.
TEST_F(RestoredFileTest, TheSheetsTextIsNotTheFilesAnyMore) {
    PutBytes(Here / L"a.rtf", "{\\rtf1\\ansi\\b bold}");
    InSteps(L"select 1", {[this] {
                              Dialogs dialogs;
                              dialogs.File(Here / L"a.rtf");
                              EditorWindow::Choose(L"File", L"Open...");
                              EXPECT_EQ(L"bold", EditorWindow::Text());
                              SetForegroundWindow(EditorWindow::Find());
                              SetFocus(EditorWindow::Editor());
                              Key('R', FCONTROL | FSHIFT);
                          },
                          [] { return EditorWindow::Text() == L"select 1"; },
                          [] {
                              CHARFORMAT2W format{};
                              format.cbSize = sizeof format;
                              SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, -1);
                              SendMessageW(EditorWindow::Editor(), EM_GETCHARFORMAT, SCF_SELECTION,
                                           reinterpret_cast<LPARAM>(&format));
                              EXPECT_EQ(0U, format.dwEffects & CFE_BOLD);
                              EXPECT_EQ(L"SQL Editor", EditorWindow::Caption());
                              Dialogs dialogs;
                              dialogs.Cancel();
                              EditorWindow::Choose(L"File", L"Save");
                              EXPECT_EQ(1U, dialogs.All.size());  // asks for a name
                          }});
    EXPECT_EQ("{\\rtf1\\ansi\\b bold}", BytesOf(Here / L"a.rtf"));
}
