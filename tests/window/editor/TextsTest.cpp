#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>

#include "browser/modLists_Tree.h"
#include "editor/ControlIds.h"
#include "editor/frmSQLEditor.h"
#include "errors/clsErrorHandler.h"
#include "forms/SystemFunctions.h"
#include "shared/modGlobal.h"
#include "support/HostFakes.h"
#include "support/Menus.h"
#include "support/PatchedFunction.h"
#include "support/Settings.h"

// What the user reads, word by word and written apart from the sources.
namespace {

class TextsTest : public testing::Test {
protected:
    TextsTest() {
        Settings::Clear();
        modGlobal::Main();
        EditorForm = std::make_shared<frmSQLEditor>();
        EditorForm->Load();
    }
    ~TextsTest() override {
        EXPECT_EQ(L"", Errors.Places());
        EditorForm.reset();
        ErrorHandler.reset();
        Settings::Clear();
    }
    frmSQLEditor& Form() { return *EditorForm; }
    HWND Bar() { return Form().sbStatusBar.Handle(); }
    // What stands over the whole status bar.
    std::wstring Over() {
        if (SendMessageW(Bar(), SB_ISSIMPLE, 0, 0) == 0) return L"<panels>";
        std::vector<wchar_t> text(static_cast<size_t>(LOWORD(SendMessageW(Bar(), SB_GETTEXTLENGTHW, 0, 0))) + 1);
        SendMessageW(Bar(), SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(text.data()));
        return text.data();
    }
    std::wstring HintAt(HMENU menu, int at) {
        const HMENU below = GetSubMenu(menu, at);
        const UINT id = below != nullptr ? static_cast<UINT>(at) : GetMenuItemID(menu, at);
        SendMessageW(Form().Handle(), WM_MENUSELECT, MAKEWPARAM(id, MF_HILITE | (below != nullptr ? MF_POPUP : 0U)),
                     reinterpret_cast<LPARAM>(menu));
        return Over();
    }
    // "caption: hint", an entry a line, a menu's own first.
    std::wstring HintsOf(int menu) {
        const HMENU bar = GetMenu(Form().Handle());
        std::wstring all = PlainCaption(bar, menu) + L": " + HintAt(bar, menu) + L"\n";
        const std::function<void(HMENU)> each = [&](HMENU entries) {
            for (int at = 0; at < GetMenuItemCount(entries); ++at) {
                if (GetMenuItemID(entries, at) == 0) continue;
                all += PlainCaption(entries, at) + L": " + HintAt(entries, at) + L"\n";
                if (const HMENU below = GetSubMenu(entries, at)) each(below);
            }
        };
        each(GetSubMenu(bar, menu));
        return all;
    }
    // The texts of a window's controls, in their order.
    static std::wstring TextsOf(HWND window) {
        std::wstring all(300, L'\0');
        all.resize(static_cast<size_t>(GetWindowTextW(window, all.data(), 300)));
        for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
            wchar_t text[300]{};
            GetWindowTextW(child, text, 300);
            if (text[0] != L'\0') all += L"|" + std::wstring(text);
        }
        return all;
    }
    void EnableActions(bool enabled) {
        for (MenuItem* const entry :
             {&Form().mnuActionSelect, &Form().mnuActionInsert, &Form().mnuActionUpdate, &Form().mnuActionDelete,
              &Form().mnuActionExecute, &Form().mnuActionCreate, &Form().mnuActionTasks, &Form().mnuActionTask[0],
              &Form().mnuActionTask[1], &Form().mnuActionTask[2]}) {
            entry->SetEnabled(enabled);
        }
    }
    void ShowPage(int page) { Form().cmdLeft[static_cast<size_t>(page)].Click(); }

    FakeErrors Errors;
};

}  // namespace

TEST_F(TextsTest, OfTheHints) {
    EXPECT_EQ(
        L"File: Clear, open, save and print the SQL; close the window\n"
        L"New: Clears the SQL; Ctrl+Shift+R brings back the sheet's\n"
        L"Open...: Replaces the SQL by a file's; Ctrl+Shift+R brings back the sheet's\n"
        L"Save: Saves the SQL in a file that you choose\n"
        L"Save As...: Saves the SQL in a file that you choose\n"
        L"Print...: Prints the SQL\n"
        L"Close: Returns the SQL to Kolvex and closes the window\n",
        HintsOf(0));
    EXPECT_EQ(
        L"Edit: Clipboard, letters, search and selection\n"
        L"Cut: Moves the selected text to the clipboard\n"
        L"Copy: Copies the selected text, or the selected entry on the left\n"
        L"Paste: Inserts the clipboard's text behind the selection\n"
        L"Delete: Deletes the selected text\n"
        L"Make Lower Case: Makes the selected text lower case\n"
        L"Make Upper Case: Makes the selected text upper case\n"
        L"Find...: Asks for a text and selects it where it comes next\n"
        L"Find Next: Selects the next place of the text that Find asked for\n"
        L"Replace...: To replace text, press Ctrl+H in the SQL\n"
        L"Goto...: To go to a line, press Ctrl+G in the SQL\n"
        L"Select All: Selects the whole SQL\n"
        L"Time/Date: Replaces the selection by the date and the time\n",
        HintsOf(1));
    EXPECT_EQ(
        L"View: What the window shows\n"
        L"StatusBar: Shows or hides this bar\n"
        L"Object Browser: Shows or hides the left pane\n"
        L"System TablesViews: Lists the system's tables and views too, in branches opened from now on\n",
        HintsOf(3));
    Form().rtbSQL.FileName = L"C:\\some\\file.sql";
    EXPECT_NE(std::wstring::npos, HintsOf(0).find(L"\nSave: Saves the SQL in C:\\some\\file.sql\n"));
    EXPECT_NE(std::wstring::npos, HintsOf(0).find(L"\nSave As...: Saves the SQL in a file that you choose\n"));
    Form().rtbSQL.FileName.clear();
}

TEST_F(TextsTest, OfTheHintsForStatements) {
    const std::wstring first = L"Select a table, a view, a column or a command on the left first\n";
    EXPECT_EQ(
        L"Action: Inserts statements for what is selected on the left; runs nothing\n"
        L"Select: " +
            first + L"Insert: " + first + L"Update: " + first + L"Delete: " + first + L"Execute: " + first +
            L"Create: Select a folder of tables in the object browser first\n"
            L"Tasks: " +
            first + L"undefined: " + first + L"undefined: " + first + L"undefined: " + first,
        HintsOf(2));
    ShowPage(1);
    Form().lstAnsiSQL.SetListIndex(1);
    const std::wstring name = Form().lstAnsiSQL.List(1);
    EnableActions(false);
    const std::wstring none = L" for " + name + L"\n";
    EXPECT_EQ(
        L"Action: Inserts statements for what is selected on the left; runs nothing\n"
        L"Select: There is no SELECT statement" +
            none + L"Insert: There is no INSERT statement" + none + L"Update: There is no UPDATE statement" + none +
            L"Delete: There is no DELETE statement" + none + L"Execute: There is no example" + none +
            L"Create: Select a folder of tables in the object browser first\n"
            L"Tasks: There are no statements" +
            none + L"undefined: There are no statements" + none + L"undefined: There are no statements" + none +
            L"undefined: There are no statements" + none,
        HintsOf(2));
    EnableActions(true);
    Form().mnuActionCreate.SetEnabled(false);
    const std::wstring behind = L", runs nothing: " + name + L"\n";
    EXPECT_EQ(
        L"Action: Inserts statements for what is selected on the left; runs nothing\n"
        L"Select: Inserts a SELECT statement" +
            behind + L"Insert: Inserts an INSERT statement" + behind + L"Update: Inserts an UPDATE statement" + behind +
            L"Delete: Inserts a DELETE statement" + behind + L"Execute: Inserts an example" + behind +
            L"Create: Select a folder of tables in the object browser first\n"
            L"Tasks: Inserts statements" +
            behind + L"undefined: Inserts statements" + behind + L"undefined: Inserts statements" + behind +
            L"undefined: Inserts statements" + behind,
        HintsOf(2));
}

TEST_F(TextsTest, OfWhatAStatementWouldBeFor) {
    const HMENU actions = GetSubMenu(GetMenu(Form().Handle()), 2);
    EnableActions(true);
    const auto named = [&] {
        const std::wstring hint = HintAt(actions, 0);
        const std::wstring before = L"Inserts a SELECT statement, runs nothing: ";
        return hint.rfind(before, 0) == 0 ? hint.substr(before.size()) : hint;
    };
    const std::wstring first = L"Select a table, a view, a column or a command on the left first";
    TreeView& tree = Form().trvDBObjects;
    Nodes& nodes = tree.Items();
    const auto add = [&](const Node& parent, const wchar_t* text, const wchar_t* tag) {
        Node added = parent ? nodes.AddChild(parent, text)
                            : nodes.Add(Variant::Missing(), Variant::Missing(), Variant::Missing(), text);
        added.SetTag(tag);
        return added;
    };
    const Node root = add(Node(), L"Schemas", L"schemas");
    const Node schema = add(root, L"HR", L"schema");
    const Node tables = add(schema, L"Tables", L"tables");
    const Node views = add(schema, L"Views", L"views");
    const Node table = add(tables, L"ORDERS", L"table");
    const Node view = add(views, L"LATE", L"view");
    const Node columns = add(table, L"Columns", L"columns");
    const Node column = add(columns, L"ID", L"column");
    const std::pair<Node, std::wstring> kinds[] = {
        {root, first},
        {schema, L"schema HR"},
        {tables, L"all tables of HR"},
        {views, L"all views of HR"},
        {table, L"table ORDERS of HR"},
        {view, L"view LATE of HR"},
        {columns, first},
        {column, L"column ID of ORDERS"},
    };
    for (const auto& [node, name] : kinds) {
        tree.SetSelectedItem(node);
        EnableActions(true);
        EXPECT_EQ(name, named());
    }
    tree.SetSelectedItem(tables);
    EnableActions(true);
    EXPECT_EQ(L"Asks for a table and inserts its statement, runs nothing: HR", HintAt(actions, 5));
    for (const int page : {1, 3}) {
        ListBox& list = page == 1 ? Form().lstAnsiSQL : Form().lstKolvex;
        list.SetListIndex(-1);
        ShowPage(page);
        EnableActions(true);
        EXPECT_EQ(first, named());
        list.SetListIndex(2);
        EnableActions(true);
        EXPECT_EQ(list.List(2), named());
    }
    TreeView& reference = Form().trvDatabaseSpecific;
    const Node category =
        reference.Items().Add(Variant::Missing(), Variant::Missing(), Variant::Missing(), L"category");
    const Node entry = reference.Items().AddChild(category, L"SOUNDEX(s)");
    entry.SetTag(L"5");
    ShowPage(2);
    reference.SetSelectedItem(category);
    EnableActions(true);
    EXPECT_EQ(first, named());
    reference.SetSelectedItem(entry);
    EnableActions(true);
    EXPECT_EQ(L"SOUNDEX(s)", named());
}

TEST_F(TextsTest, OfTheSmallWindows) {
    EXPECT_TRUE(Form().rtbSQL.KeyPressed('H', ShiftState::Ctrl));
    EXPECT_EQ(
        L"Replace|Fi&nd what:|Re&place with:|Match &case|Whole &words|In the &selection|&Find Next|&Replace|"
        L"Replace &All|Close",
        TextsOf(Form().winReplace.Handle()));
    EXPECT_TRUE(Form().rtbSQL.KeyPressed('G', ShiftState::Ctrl));
    EXPECT_EQ(L"Go To Line|&Line number:|1|&Go To|Close", TextsOf(Form().winGoto.Handle()));
    Form().winReplace.Close();
    Form().winGoto.Close();
}

// Only what takes text has an edge; nothing lies over anything else, or is cut off.
TEST_F(TextsTest, StandBesideEachOtherInTheSmallWindows) {
    Form().rtbSQL.KeyPressed('H', ShiftState::Ctrl);
    Form().rtbSQL.KeyPressed('G', ShiftState::Ctrl);
    for (const HWND window : {Form().winReplace.Handle(), Form().winGoto.Handle()}) {
        RECT client;
        GetClientRect(window, &client);
        std::vector<RECT> places;
        for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
            wchar_t name[20]{};
            GetClassNameW(child, name, 20);
            const std::wstring kind = name;
            const auto style = static_cast<DWORD>(GetWindowLongW(child, GWL_STYLE));
            const auto extended = static_cast<DWORD>(GetWindowLongW(child, GWL_EXSTYLE)) & ~DWORD{WS_EX_NOPARENTNOTIFY};
            EXPECT_EQ(kind == L"Edit" ? DWORD{WS_EX_CLIENTEDGE} : 0U, extended) << GetDlgCtrlID(child);
            EXPECT_EQ(kind == L"Static" ? 0U : DWORD{WS_TABSTOP}, style & WS_TABSTOP) << GetDlgCtrlID(child);
            RECT place;
            GetWindowRect(child, &place);
            MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
            RECT common;
            EXPECT_TRUE(IntersectRect(&common, &place, &client) && EqualRect(&common, &place)) << GetDlgCtrlID(child);
            for (const RECT& other : places)
                EXPECT_FALSE(IntersectRect(&common, &place, &other)) << GetDlgCtrlID(child);
            places.push_back(place);
        }
    }
    Form().winReplace.Close();
    Form().winGoto.Close();
}

// The icon has one of the sizes that it is drawn in, until it is larger than all of them.
TEST_F(TextsTest, HaveAnIconOfTheirSize) {
    static UINT dpi;
    const PatchedFunction patched(L"user32.dll", "GetDpiForWindow",
                                  reinterpret_cast<void*>(+[](HWND) WINAPI -> UINT { return dpi; }));
    ASSERT_TRUE(patched);
    const std::pair<UINT, int> sizes[] = {{96, 16},  {114, 16}, {120, 20}, {138, 20}, {144, 24}, {186, 24}, {192, 32},
                                          {282, 32}, {288, 48}, {378, 48}, {384, 64}, {480, 80}, {60, 10}};
    for (const auto& [now, size] : sizes) {
        dpi = now;
        EditorForm.reset();
        EditorForm = std::make_shared<frmSQLEditor>();
        EditorForm->Load();
        int width = 0;
        int height = 0;
        ASSERT_TRUE(System::ImageList_GetIconSize(Form().imlImages.get(), &width, &height));
        EXPECT_EQ(size, width) << now;
        EXPECT_EQ(size, height) << now;
    }
    dpi = 96;
    EditorForm.reset();
}

// An arrow is broad where it comes from.
TEST_F(TextsTest, AndArrowsPointTheWayThatThePaneGoes) {
    const auto lean = [](PictureBox& box) {
        const HDC screen = GetDC(nullptr);
        const HDC memory = CreateCompatibleDC(screen);
        BITMAPINFO info{};
        info.bmiHeader = {sizeof info.bmiHeader, 20, -20, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        const HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        const HGDIOBJ before = SelectObject(memory, bitmap);
        const RECT all{0, 0, 20, 20};
        FillRect(memory, &all, GetSysColorBrush(COLOR_BTNFACE));
        box.Paint(memory, all);
        GdiFlush();
        long balance = 0;  // of the pixels on the right and on the left
        for (int y = 4; y < 16; ++y) {
            for (int x = 4; x < 16; ++x) {
                if (GetPixel(memory, x, y) == GetSysColor(COLOR_BTNTEXT)) balance += x < 10 ? -1 : 1;
            }
        }
        SelectObject(memory, before);
        DeleteObject(bitmap);
        DeleteDC(memory);
        ReleaseDC(nullptr, screen);
        return balance;
    };
    EXPECT_LT(0, lean(Form().picHide));
    EXPECT_GT(0, lean(Form().picUnhide));
}

TEST_F(TextsTest, OfNotesAboutNames) {
    const auto note = [this](int key, int shift, const wchar_t* text, long caret) {
        Form().rtbSQL.SetText(text);
        Form().rtbSQL.Select(caret, 0);
        Form().rtbSQL.KeyPressed(key, shift);
        return Over();
    };
    EXPECT_EQ(L"There is no name at the caret.", note(VK_F12, 0, L"", 0));
    EXPECT_EQ(L"There is no name at the caret.", note(VK_F12, 0, L"a  b", 2));
    EXPECT_EQ(L"No names are completed in comments and texts.", note(VK_SPACE, ShiftState::Ctrl, L"-- a", 4));
    EXPECT_EQ(L"No names are completed in comments and texts.", note(VK_SPACE, ShiftState::Ctrl, L"'a'", 1));
    note(VK_SPACE, ShiftState::Ctrl, L"sel", 3);
    ASSERT_TRUE(Form().lstNames.IsOpen());
    EXPECT_EQ(L"Names", Form().lstNames.WindowCaption());
    Form().lstNames.Close();
}

namespace {

struct Request {
    std::wstring Filter;
    std::wstring Extension;
    DWORD Index = 0;
    std::wstring Title;
};
Request Requested;

// What a file dialog is asked for; it fails.
BOOL WINAPI Remembered(OPENFILENAMEW* request) {
    Requested = {};
    for (const wchar_t* at = request->lpstrFilter; *at != L'\0'; at += lstrlenW(at) + 1)
        Requested.Filter += at + std::wstring(L"|");
    if (request->lpstrDefExt != nullptr) Requested.Extension = request->lpstrDefExt;
    Requested.Index = request->nFilterIndex;
    if (request->lpstrTitle != nullptr) Requested.Title = request->lpstrTitle;
    return FALSE;
}
DWORD WINAPI FailedWithSeven() { return 7; }

}  // namespace

TEST_F(TextsTest, OfTheFileDialogs) {
    LoadLibraryW(L"comdlg32.dll");
    const PatchedFunction open(L"comdlg32.dll", "GetOpenFileNameW", reinterpret_cast<void*>(&Remembered));
    const PatchedFunction save(L"comdlg32.dll", "GetSaveFileNameW", reinterpret_cast<void*>(&Remembered));
    const PatchedFunction error(L"comdlg32.dll", "CommDlgExtendedError", reinterpret_cast<void*>(&FailedWithSeven));
    ASSERT_TRUE(open);
    ASSERT_TRUE(save);
    ASSERT_TRUE(error);
    const std::pair<MenuItem*, std::wstring> entries[] = {{&Form().mnuFileOpen, L"No file was opened"},
                                                          {&Form().mnuFileSave, L"The SQL was not saved"},
                                                          {&Form().mnuFileSaveAs, L"The SQL was not saved"}};
    for (const auto& [entry, told] : entries) {
        entry->Click();
        EXPECT_EQ(L"SQL Files (*.sql;*.txt)|*.sql;*.txt|Rich Text (*.rtf)|*.rtf|All Files (*.*)|*.*|",
                  Requested.Filter);
        EXPECT_EQ(L"sql", Requested.Extension);
        EXPECT_EQ(1U, Requested.Index);
        EXPECT_EQ(L"", Requested.Title);  // the dialog's own
        EXPECT_EQ(told + L": The file dialog failed with 7", Over());
    }
}

TEST_F(TextsTest, OfTheNamesForReadersOfTheScreen) {
    const auto caption = [](Control& control) { return control.WindowCaption(); };
    const wchar_t* const pages[] = {L"Database Objects", L"ANSI SQL", L"Database Specific", L"Kolvex"};
    Control* const views[] = {&Form().trvDBObjects, &Form().lstAnsiSQL, &Form().trvDatabaseSpecific, &Form().lstKolvex};
    for (size_t at = 0; at < 4; ++at) {
        EXPECT_EQ(pages[at], caption(Form().cmdLeft[at]));
        EXPECT_EQ(pages[at], caption(Form().picLeft[at]));
        EXPECT_EQ(pages[at], caption(*views[at]));
    }
    EXPECT_EQ(L"Toolbar", caption(Form().tlbToolbar));
    EXPECT_EQ(L"SQL", caption(Form().picRight));
    EXPECT_EQ(L"Splitter", caption(Form().picSplitterV));
    EXPECT_EQ(L"Splitter", caption(Form().imgSplitterV));
    EXPECT_EQ(L"Hide the left pane", caption(Form().picHide));
    EXPECT_EQ(L"Show the left pane", caption(Form().picUnhide));
}
