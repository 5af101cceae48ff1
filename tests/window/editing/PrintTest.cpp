#include <windows.h>
#include <commdlg.h>
#include <dlgs.h>

#include "support/Editing.h"
#include "support/PatchedFunction.h"

namespace {

// What stood in the box that Print shows: the print dialog, or the system's message that there is no printer. Both are
// closed.
struct Box {
    bool Came = false;
    bool IsDialog = false;
    bool Pages = true;  // whether page numbers can be chosen
    HWND Owner = nullptr;
    std::wstring Selection;
};

class PrintTest : public EditingFixture {
protected:
    // Chooses Print with a part of the text selected.
    Box Print() {
        static Box box;
        box = {};
        Inside(L"one two three", [] {
            SelectText(3, 9);
            const UINT_PTR timer = SetTimer(nullptr, 0, 30, [](HWND, UINT, UINT_PTR, DWORD) WINAPI {
                const HWND shown = FindWindowW(L"#32770", nullptr);
                if (shown == nullptr || !IsWindowVisible(shown)) return;
                const HWND pages = GetDlgItem(shown, rad3);
                box.Came = true;
                box.IsDialog = pages != nullptr;
                box.Pages = pages != nullptr && IsWindowEnabled(pages);
                box.Owner = GetWindow(shown, GW_OWNER);
                box.Selection = Selection();
                SendMessageW(shown, WM_COMMAND, pages != nullptr ? IDCANCEL : IDOK, 0);
            });
            EditorWindow::Choose(L"File", L"Print...");
            KillTimer(nullptr, timer);
            EXPECT_EQ(L"3-3", Selection());
            EXPECT_TRUE(IsWindowEnabled(EditorWindow::Find()));
            EXPECT_EQ(L"one two three", EditorWindow::Text());
        });
        return box;
    }
};

}  // namespace

TEST_F(PrintTest, TheSelectionIsCollapsedAndThePagesCannotBeChosen) {
    const Box box = Print();
    EXPECT_TRUE(box.Came);
    EXPECT_EQ(L"3-3", box.Selection);  // before the dialog comes
    EXPECT_FALSE(box.Pages);
    // Cancelled, or told by the system that there is no printer: either way the user knows.
    EXPECT_EQ(L"", Errors.Places());
    EXPECT_TRUE(Errors.Told.empty());
}

// ---- What the system answers to Print

namespace {

struct Answer {
    DWORD Error;  // what the print dialog failed with
    BOOL Chosen;  // whether it came to an end with OK
    DWORD Flags;  // with which it was asked for
    HWND Owner;
    int Copies;
};
Answer answer;

BOOL WINAPI PrintDlgInstead(PRINTDLGW* dialog) {
    answer.Flags = dialog->Flags;
    answer.Owner = dialog->hwndOwner;
    answer.Copies = dialog->nCopies;
    return answer.Chosen;
}
DWORD WINAPI ErrorInstead() { return answer.Error; }

class PrintAnswersTest : public EditingFixture {
protected:
    // Chooses Print where the dialog ends like that; returns what was reported.
    std::string Print(DWORD error, BOOL chosen) {
        answer = {error, chosen, 0, nullptr, 0};
        const PatchedFunction dialog(L"comdlg32.dll", "PrintDlgW", reinterpret_cast<void*>(&PrintDlgInstead));
        const PatchedFunction failure(L"comdlg32.dll", "CommDlgExtendedError", reinterpret_cast<void*>(&ErrorInstead));
        EXPECT_TRUE(dialog && failure);
        Errors.Forget();
        EditorWindow::Choose(L"File", L"Print...");
        EXPECT_TRUE(IsWindowEnabled(EditorWindow::Find()));
        return Narrow(Errors.Places());
    }
    static std::string Narrow(const std::wstring& text) { return {text.begin(), text.end()}; }
};

}  // namespace

TEST_F(PrintAnswersTest, TheDialogIsAskedForADeviceAndWithoutPageNumbers) {
    Inside([this] {
        EXPECT_EQ("", Print(0, FALSE));  // cancelled
        EXPECT_EQ(264U, answer.Flags);
        EXPECT_EQ(EditorWindow::Find(), answer.Owner);
        EXPECT_EQ(1, answer.Copies);
    });
    EXPECT_TRUE(Errors.Told.empty());
}

namespace {

DWORD printFlags = 0;  // with which the dialog ends
bool toFile = false;   // whether the document was begun for a file
int documents = 0;

BOOL WINAPI PrintDlgChosen(PRINTDLGW* dialog) {
    dialog->Flags |= printFlags;
    dialog->hDC = CreateCompatibleDC(nullptr);
    return TRUE;
}
int WINAPI StartDocInstead(HDC, const DOCINFOW* document) {
    ++documents;
    toFile = document->lpszOutput != nullptr && std::wstring(document->lpszOutput) == L"FILE:";
    return SP_USERABORT;
}

}  // namespace

TEST_F(PrintAnswersTest, PrintsToAFileWhereTheUserWantsThat) {
    Inside([] {
        const PatchedFunction dialog(L"comdlg32.dll", "PrintDlgW", reinterpret_cast<void*>(&PrintDlgChosen));
        const PatchedFunction start(L"gdi32.dll", "StartDocW", reinterpret_cast<void*>(&StartDocInstead));
        ASSERT_TRUE(dialog && start);
        documents = 0;
        for (const DWORD flags : {DWORD{0}, DWORD{PD_PRINTTOFILE}}) {
            printFlags = flags;
            EditorWindow::Choose(L"File", L"Print...");
            EXPECT_EQ(flags != 0, toFile);
        }
        EXPECT_EQ(2, documents);
    });
    EXPECT_EQ(L"", Errors.Places());  // cancelled at the printer
}

TEST_F(PrintAnswersTest, ReportsWhatTheDialogHasNotSaidItself) {
    Inside([this] {
        EXPECT_EQ("", Print(PDERR_NODEFAULTPRN, FALSE));
        for (const DWORD error : {PDERR_NODEVICES, PDERR_PRINTERNOTFOUND, PDERR_INITFAILURE, PDERR_PARSEFAILURE})
            EXPECT_EQ("frmSQLEditor.mnuFilePrint_Click 482", Print(error, FALSE)) << error;
        EXPECT_EQ("frmSQLEditor.mnuFilePrint_Click 482", Print(0, TRUE)) << "no device context";
        EXPECT_EQ(L"Printer error: the printer's driver cannot be used.", Errors.Only().Description);
        EXPECT_EQ("", Print(0, FALSE));  // the next one is asked for as ever
    });
    EXPECT_TRUE(Errors.Told.empty());
}

// ---- What the printer is given

namespace {

// A printer on paper: what the document calls were, in one letter each, and the first line of each page.
struct PrintedPaper {
    WORD Copies = 1;
    DWORD Collate = 0;    // PD_COLLATE or 0
    size_t FailsAt = 0;   // the page that cannot begin, counted from 1; 0: none
    std::wstring Name{};  // of the document
    std::wstring Calls{};
    std::vector<std::wstring> Pages{};
    std::vector<std::wstring> Lines{};  // of all pages
};
PrintedPaper paper;

BOOL WINAPI PrintDlgOnPaper(PRINTDLGW* dialog) {
    dialog->hDC = CreateCompatibleDC(nullptr);
    dialog->nCopies = paper.Copies;
    dialog->Flags |= paper.Collate;
    return TRUE;
}
int WINAPI StartDocOnPaper(HDC, const DOCINFOW* document) {
    paper.Name = document->lpszDocName;
    paper.Calls += L'd';
    return 1;
}
int WINAPI StartPageOnPaper(HDC) {
    if (paper.Pages.size() + 1 == paper.FailsAt) return 0;
    paper.Pages.emplace_back();
    paper.Calls += L'p';
    return 1;
}
int WINAPI EndPageOnPaper(HDC) { return 1; }
int WINAPI EndDocOnPaper(HDC) {
    paper.Calls += L'e';
    return 1;
}
int WINAPI AbortDocOnPaper(HDC) {
    paper.Calls += L'a';
    return 1;
}
BOOL WINAPI TextOutOnPaper(HDC, int, int, const wchar_t* text, int count) {
    paper.Lines.emplace_back(text, static_cast<size_t>(count));
    if (!paper.Pages.empty() && paper.Pages.back().empty()) paper.Pages.back() = paper.Lines.back();
    return TRUE;
}

class PrintedPagesTest : public EditingFixture {
protected:
    static PrintedPaper Print(WORD copies, DWORD collate, size_t failsAt = 0) {
        paper = {copies, collate, failsAt};
        const PatchedFunction patches[] = {
            {L"comdlg32.dll", "PrintDlgW", reinterpret_cast<void*>(&PrintDlgOnPaper)},
            {L"gdi32.dll", "StartDocW", reinterpret_cast<void*>(&StartDocOnPaper)},
            {L"gdi32.dll", "StartPage", reinterpret_cast<void*>(&StartPageOnPaper)},
            {L"gdi32.dll", "EndPage", reinterpret_cast<void*>(&EndPageOnPaper)},
            {L"gdi32.dll", "EndDoc", reinterpret_cast<void*>(&EndDocOnPaper)},
            {L"gdi32.dll", "AbortDoc", reinterpret_cast<void*>(&AbortDocOnPaper)},
            {L"gdi32.dll", "TextOutW", reinterpret_cast<void*>(&TextOutOnPaper)},
        };
        for (const PatchedFunction& patch : patches) EXPECT_TRUE(patch);
        EditorWindow::Choose(L"File", L"Print...");
        EXPECT_TRUE(IsWindowEnabled(EditorWindow::Find()));
        return paper;
    }
    // More than a page, whatever the size of the screen is.
    static std::wstring Lines() {
        std::wstring text;
        for (int line = 1; line <= 600; ++line) text += L"line " + std::to_wstring(line) + L"\r\n";
        return text;
    }
};

}  // namespace

TEST_F(PrintedPagesTest, CopiesAreMadeOfEachPageOrOfTheWholeText) {
    Inside(Lines(), [] {
        const PrintedPaper once = Print(1, 0);
        const size_t pages = once.Pages.size();
        ASSERT_LT(1U, pages);
        EXPECT_EQ(L"line 1", once.Pages[0]);
        EXPECT_EQ(L"d" + std::wstring(pages, L'p') + L"e", once.Calls);
        EXPECT_EQ(L"SQL Editor", once.Name);
        std::vector<std::wstring> eachTwice;
        for (const std::wstring& page : once.Pages) eachTwice.insert(eachTwice.end(), 2, page);
        EXPECT_EQ(eachTwice, Print(2, 0).Pages);
        std::vector<std::wstring> allTwice = once.Pages;
        allTwice.insert(allTwice.end(), once.Pages.begin(), once.Pages.end());
        EXPECT_EQ(allTwice, Print(2, PD_COLLATE).Pages);
        EXPECT_EQ(once.Pages, Print(0, PD_COLLATE).Pages) << "none is one";
    });
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(PrintedPagesTest, ADocumentThatFailsIsTakenBackFromThePrinter) {
    Inside(Lines(), [this] {
        EXPECT_EQ(L"dpa", Print(1, 0, 2).Calls);
        EXPECT_EQ(L"frmSQLEditor.mnuFilePrint_Click 482", Errors.Places());
        EXPECT_EQ(L"Printer error: the printer did not take the document.", Errors.Only().Description);
    });
}

TEST_F(PrintedPagesTest, ALongLineIsBrokenBetweenCharacters) {
    // Characters of two units each, after one of one unit and alone: one of the two would be broken within.
    for (const std::wstring& begin : {std::wstring(), std::wstring(L"x")}) {
        std::wstring text = begin;
        for (int at = 0; at < 2000; ++at) text += L"\U0001F600";
        Inside(text, [] { Print(1, 0); });
        std::wstring all;
        for (const std::wstring& line : paper.Lines) {
            EXPECT_FALSE(line.empty() || IS_LOW_SURROGATE(line.front()) || IS_HIGH_SURROGATE(line.back()));
            all += line;
        }
        EXPECT_LT(1U, paper.Lines.size());
        EXPECT_TRUE(text == all);
    }
}
