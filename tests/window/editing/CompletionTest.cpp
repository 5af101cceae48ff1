#include <initguid.h>
#include <windows.h>
#include <commctrl.h>
#include <oleacc.h>

#include "support/Steps.h"

namespace {

using EditorWindow::NameList;

std::wstring Cell(int row, int column) {
    wchar_t text[300] = L"";
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = 300;
    SendMessageW(NameList(), LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

long RowCount() {
    return NameList() == nullptr ? -1 : static_cast<long>(SendMessageW(NameList(), LVM_GETITEMCOUNT, 0, 0));
}

// "name (note)" of the first rows, "*" before the selected one.
std::wstring Rows(long most = 6) {
    if (NameList() == nullptr) return L"<closed>";
    std::wstring all;
    const auto selected = SendMessageW(NameList(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
    for (long row = 0; row < std::min(RowCount(), most); ++row) {
        if (row > 0) all += L"|";
        if (row == selected) all += L"*";
        all += Cell(row, 0);
        if (!Cell(row, 1).empty()) all += L" (" + Cell(row, 1) + L")";
    }
    return all;
}

// What a program that reads the screen is told of the state of a window.
long StateOf(HWND window) {
    IAccessible* object = nullptr;
    if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                                          reinterpret_cast<void**>(&object)))) {
        return -1;
    }
    VARIANT self, state;
    VariantInit(&self);
    VariantInit(&state);
    self.vt = VT_I4;
    self.lVal = CHILDID_SELF;
    const HRESULT told = object->get_accState(self, &state);
    object->Release();
    return told == S_OK && state.vt == VT_I4 ? state.lVal : -1;
}

bool IsTopmost(HWND window) { return (GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0; }

}  // namespace

// The keys are pressed as a keyboard presses them, and go through the window's own loop.
class CompletionTest : public StepsFixture {
protected:
    // Reads schemas and the tables of HR, and puts the caret ("|") into the text.
    Step Ready(const std::wstring& text) {
        return [this, text] {
            SetForegroundWindow(EditorWindow::Find());
            Tree.Click(Tree.At({}));
            Tree.Open(Tree.At({}));  // a node that is in sight is clicked without a branch opening for it
            Tree.Click(Tree.Named(Tree.At({}), L"HR"));
            PutWithCaret(text);
        };
    }
    static Step Shows(const std::wstring& rows, long most = 6) {
        return Becomes(rows, [most] { return Rows(most); });
    }
    static Step Holds(const std::wstring& text) {
        return [text, tries = 0]() mutable {
            if (EditorWindow::Text() == text && NameList() == nullptr) return true;
            if (++tries < 40) return false;
            EXPECT_EQ(text, EditorWindow::Text());
            EXPECT_EQ(nullptr, NameList());
            return true;
        };
    }
    static Step Writes(const std::wstring& text) {
        return [text] { Type(text); };
    }
};

TEST_F(CompletionTest, NamesThatWereReadComeBeforeTheLanguage) {
    Type(8);
    InSteps(L"", {Ready(L"select * from or|"), Press(VK_SPACE, FCONTROL),
                  Shows(L"*ORDERS (table, HR)|ORDERS (view, HR)|OR (keyword)|ORDER (keyword)", 4), Press(VK_RETURN),
                  Holds(L"select * from HR.ORDERS"), [] {
                      SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
                      EXPECT_EQ(L"select * from or", EditorWindow::Text());  // one step
                      EXPECT_EQ(EditorWindow::Editor(), GetFocus());
                  }});
}

TEST_F(CompletionTest, NothingOpensWithoutTheKey) {
    InSteps(L"", {Ready(L"select * from |"), Writes(L"or."), Press(VK_RETURN), Holds(L"select * from or.\r\n")});
}

TEST_F(CompletionTest, AliasesLeadToTheColumnsOfTheirTableWhichIsRead) {
    Type(8);
    InSteps(L"", {Ready(L"select o.| from HR.ORDERS o"), Press(VK_SPACE, FCONTROL),
                  Shows(L"*ID (column, ORDERS)|NAME (column, ORDERS)"),
                  [this] {
                      EXPECT_EQ(L"HR,ORDERS", Asked);
                      EXPECT_EQ(L"ORDERS", Tree.Text(Tree.Selected()));  // as after a click on it
                      Asked.clear();
                  },
                  Press(VK_DOWN), Shows(L"ID (column, ORDERS)|*NAME (column, ORDERS)"), Press(VK_TAB),
                  Holds(L"select o.NAME from HR.ORDERS o"), [] { PutWithCaret(L"select orders.n| from ORDERS"); },
                  Press(VK_SPACE, FCONTROL), Shows(L"*NAME (column, ORDERS)"),
                  [this] {
                      EXPECT_EQ(L"", Asked);  // they were read
                  },
                  Press(VK_ESCAPE), Holds(L"select orders.n from ORDERS")});
}

TEST_F(CompletionTest, TheListFollowsWhatIsWritten) {
    InSteps(L"", {Ready(L"|"),
                  Press(VK_SPACE, FCONTROL),
                  [] { return RowCount() > 100; },
                  Writes(L"o"),
                  [] { return Rows(1) == L"*odd \"name\" (table, HR)"; },
                  Writes(L"rders"),
                  Shows(L"*ORDERS (table, HR)|ORDERS (view, HR)"),
                  Press(VK_BACK),
                  Press(VK_BACK),
                  Press(VK_BACK),
                  Press(VK_BACK),
                  [] { return Rows(1) == L"*ORDERS (table, HR)" && RowCount() > 2; },
                  Writes(L"x"),
                  Shows(L"No name begins like that."),
                  Press(VK_RETURN),
                  Holds(L"orx"),
                  Press(VK_BACK),
                  Press(VK_SPACE, FCONTROL),
                  [] { return RowCount() > 2; },
                  Writes(L" "),
                  Holds(L"or ")});
}

TEST_F(CompletionTest, NamesInTheMiddleOfAWordAndAQuote) {
    Type(8);
    InSteps(L"", {Ready(L"select na|xx from HR.\"od|"), [] { PutWithCaret(L"select ORD|xx from t"); },
                  Press(VK_SPACE, FCONTROL), Shows(L"*ORDERS (table, HR)|ORDERS (view, HR)|ORDER (keyword)"),
                  Press(VK_RETURN), Holds(L"select HR.ORDERS from t"), [] { PutWithCaret(L"select * from HR.\"od|"); },
                  Press(VK_SPACE, FCONTROL), Shows(L"*odd \"name\" (table, HR)|odd \"name\" (view, HR)"),
                  Press(VK_RETURN), Holds(L"select * from HR.[odd \"name\"]")});
}

// Whatever it is quoted by, the list goes on with the name, and closes with the quote that ends it.
TEST_F(CompletionTest, AQuotedNameGoesOn) {
    Type(0);
    const auto quoted = [](const wchar_t* open, const wchar_t* close) -> Steps {
        return {[open] { PutWithCaret(std::wstring(L"select * from ") + open + L"o|"); },
                Press(VK_SPACE, FCONTROL),
                [] { return RowCount() > 2; },
                Writes(L"dd "),
                Shows(L"*odd \"name\" (table, HR)|odd \"name\" (view, HR)"),
                Writes(close),
                Shows(L"<closed>")};
    };
    InSteps(L"", Joined({{Ready(L"|")}, quoted(L"\"", L"\""), quoted(L"[", L"]"), quoted(L"`", L"`")}));
}

TEST_F(CompletionTest, SchemasLeadToTheirTables) {
    Type(8);
    InSteps(L"", {Ready(L"select * from hr.|"), Press(VK_SPACE, FCONTROL),
                  Shows(L"*odd \"name\" (table, HR)|odd \"name\" (view, HR)|ORDERS (table, HR)|ORDERS (view, HR)"),
                  Press(VK_NEXT), Press(VK_RETURN), Holds(L"select * from hr.ORDERS")});
}

// The statement's own name for a table goes before a schema of that name.
TEST_F(CompletionTest, AnAliasThatIsASchemasNameIsATable) {
    InSteps(L"", {Ready(L"select hr.| from customer hr"), Press(VK_SPACE, FCONTROL),
                  Shows(L"\"customer\" is not among the tables that the object browser has read."), Press(VK_ESCAPE),
                  Holds(L"select hr. from customer hr")});
}

TEST_F(CompletionTest, AnEmptyListSaysWhy) {
    InSteps(L"", {Ready(L"select x.| from customer x"), Press(VK_SPACE, FCONTROL),
                  Shows(L"\"customer\" is not among the tables that the object browser has read."), Press(VK_DOWN),
                  Press(VK_TAB), Holds(L"select x. from customer x"), [] { PutWithCaret(L"-- or|"); },
                  Press(VK_SPACE, FCONTROL), [] { EXPECT_EQ(nullptr, NameList()); }});
}

TEST_F(CompletionTest, KeywordsFollowTheCaseOfWhatWasBegun) {
    InSteps(L"", {Ready(L"betw|"), Press(VK_SPACE, FCONTROL), Shows(L"*BETWEEN (keyword)", 1), Press(VK_RETURN),
                  Holds(L"between"), [] { PutWithCaret(L"BETW|"); }, Press(VK_SPACE, FCONTROL),
                  Shows(L"*BETWEEN (keyword)", 1), Press(VK_TAB), Holds(L"BETWEEN")});
}

TEST_F(CompletionTest, TheReferenceOfTheDatabase) {
    Type(4);
    InSteps(L"", {Ready(L"sysd|"), Press(VK_SPACE, FCONTROL), Shows(L"*SYSDATE (function)"), Press(VK_ESCAPE),
                  [] { PutWithCaret(L"varchar2|"); }, Press(VK_SPACE, FCONTROL),
                  [] { return Rows(1) == L"*VARCHAR2 (type)"; }, Press(VK_ESCAPE)});
}

TEST_F(CompletionTest, APageDownAndAPageUpLeadBack) {
    const auto selected = [] {
        return static_cast<long>(SendMessageW(NameList(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    };
    InSteps(L"",
            {Ready(L"|"), Press(VK_SPACE, FCONTROL), [] { return RowCount() > 30; }, Press(VK_NEXT), Press(VK_NEXT),
             [=] { return selected() > 12; }, Press(VK_PRIOR), Press(VK_PRIOR), [=] { return selected() == 0; }});
}

TEST_F(CompletionTest, ASelectionThatIsMadeClosesTheList) {
    InSteps(L"", {Ready(L"a or|"), Press(VK_SPACE, FCONTROL), [] { return NameList() != nullptr; },
                  [] { SelectText(2, 4); }, [] { return NameList() == nullptr; }});
}

TEST_F(CompletionTest, ANameOfSeveralSchemasIsListedOnceForEachKind) {
    Type(8);
    InSteps(L"", {Ready(L"|"),
                  [this] {
                      Tree.Click(Tree.Named(Tree.At({}), L"Sales & Co"));
                      PutWithCaret(L"select * from ord|");
                  },
                  Press(VK_SPACE, FCONTROL), Shows(L"*ORDERS (table, HR)|ORDERS (view, HR)|ORDER (keyword)", 3)});
}

TEST_F(CompletionTest, NamesOfTwoWordsAreNoWordsOfTheLanguage) {
    Type(4);
    InSteps(L"", {Ready(L"lon|"), Press(VK_SPACE, FCONTROL), [] { return NameList() != nullptr; },
                  [] {
                      EXPECT_EQ(L"*LONG", Rows(1).substr(0, 5));
                      EXPECT_EQ(std::wstring::npos, Rows(50).find(L"LONG RAW"));
                  }});
}

TEST_F(CompletionTest, WhatTheHostWritesWhileANameIsTakenStays) {
    Type(8);
    Database.Members[L"FormatName"] = [](const Arguments& a) {
        EditorWindow::SetText(L"another text of the host");
        return Variant(a[0].ToText());
    };
    InSteps(L"", {Ready(L"select * from or|"), Press(VK_SPACE, FCONTROL), Shows(L"*ORDERS (table, HR)", 1),
                  Press(VK_RETURN), Holds(L"another text of the host"), [] {},
                  [] { EXPECT_EQ(L"another text of the host", EditorWindow::Text()); }});
}

TEST_F(CompletionTest, AClickElsewhereOrAnotherPaneClosesIt) {
    InSteps(L"", {Ready(L"or|"), Press(VK_SPACE, FCONTROL), [] { return NameList() != nullptr; },
                  [this] {
                      SetFocus(Tree.Handle());
                      EXPECT_EQ(nullptr, NameList());
                      SetFocus(EditorWindow::Editor());
                  },
                  Press(VK_SPACE, FCONTROL), [] { return NameList() != nullptr; },
                  [] { PostMessageW(EditorWindow::Find(), WM_NCLBUTTONDOWN, HTCLIENT, 0); },
                  [] { return NameList() == nullptr; }, [] { PutWithCaret(L"a or|"); }, Press(VK_SPACE, FCONTROL),
                  [] { return NameList() != nullptr; }, Press(VK_HOME), Holds(L"a or")});
}

// Alt leads to a menu or does something else with the line; the other modifiers may begin what goes on in the list.
TEST_F(CompletionTest, AltClosesTheListAndTheOtherModifiersDoNot) {
    InSteps(L"", {Ready(L"or|"), Press(VK_SPACE, FCONTROL), Shows(L"*ORDERS (table, HR)", 1), Press(VK_SHIFT),
                  Press(VK_CONTROL), Press(VK_DOWN), Shows(L"ORDERS (table, HR)|*ORDERS (view, HR)", 2),
                  Press(VK_UP, FALT),  // which moves the first line nowhere
                  Holds(L"or")});
    EXPECT_EQ(L"", Errors.Places());
}

// Bars that come while the list has another size would take each other's room from then on.
TEST_F(CompletionTest, RowsThatFitNeedNoScrollBar) {
    const auto fits = [](long least, long most) {
        return [=] {
            const long rows = RowCount();
            if (rows < least || rows > most) return false;
            const DWORD style = static_cast<DWORD>(GetWindowLongW(NameList(), GWL_STYLE));
            EXPECT_EQ(0U, style & WS_HSCROLL) << rows;
            EXPECT_EQ(rows > 12 ? WS_VSCROLL : 0U, style & WS_VSCROLL) << rows;
            EXPECT_EQ(std::min(rows, 12L), SendMessageW(NameList(), LVM_GETCOUNTPERPAGE, 0, 0));
            EXPECT_EQ(0, SendMessageW(NameList(), LVM_GETTOPINDEX, 0, 0));
            return true;
        };
    };
    InSteps(L"", {Ready(L"orders|"),
                  Press(VK_SPACE, FCONTROL),
                  fits(2, 2),
                  Press(VK_BACK),
                  fits(3, 12),
                  Press(VK_BACK),
                  Press(VK_BACK),
                  Press(VK_BACK),
                  Press(VK_BACK),
                  fits(13, 1000),
                  Writes(L"rders"),
                  fits(2, 2),
                  Press(VK_ESCAPE),
                  Holds(L"orders"),
                  Press(VK_SPACE, FCONTROL),
                  fits(2, 2),
                  Press(VK_ESCAPE),
                  Holds(L"orders"),
                  Press(VK_BACK),
                  Press(VK_SPACE, FCONTROL),
                  fits(3, 12)});
    EXPECT_EQ(L"", Errors.Places());
}

// The window is made once for a shown editor, and a closed list is one that nobody sees.
TEST_F(CompletionTest, AClosedListIsShownAgainFromItsFirstRow) {
    HWND list = nullptr;
    InSteps(L"", {Ready(L"|"), Press(VK_SPACE, FCONTROL), [] { return RowCount() > 100; }, Press(VK_NEXT),
                  Press(VK_NEXT), Press(VK_NEXT), [] { return SendMessageW(NameList(), LVM_GETTOPINDEX, 0, 0) > 10; },
                  [&] {
                      list = NameList();
                      EXPECT_EQ(0, StateOf(list) & STATE_SYSTEM_INVISIBLE);
                      EXPECT_TRUE(IsTopmost(list));
                  },
                  Press(VK_ESCAPE), Holds(L""),
                  [&] {
                      EXPECT_TRUE(IsWindow(list));
                      EXPECT_FALSE(IsWindowVisible(list));
                      EXPECT_EQ(STATE_SYSTEM_INVISIBLE, StateOf(list) & STATE_SYSTEM_INVISIBLE);
                      wchar_t text[10] = L"none";
                      LVITEMW item{};
                      item.pszText = text;
                      item.cchTextMax = 10;
                      SendMessageW(list, LVM_GETITEMTEXTW, 0, reinterpret_cast<LPARAM>(&item));
                      EXPECT_STREQ(L"", text);
                  },
                  Press(VK_SPACE, FCONTROL), [] { return RowCount() > 100; },
                  [&] {
                      EXPECT_EQ(list, NameList());
                      EXPECT_EQ(L"*", Rows(1).substr(0, 1));
                      EXPECT_EQ(0, SendMessageW(list, LVM_GETTOPINDEX, 0, 0));
                      EXPECT_EQ(1, SendMessageW(list, LVM_GETSELECTEDCOUNT, 0, 0));
                      EXPECT_EQ(EditorWindow::Editor(), GetFocus());
                      SetWindowPos(EditorWindow::Find(), HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
                  },
                  Press(VK_ESCAPE), Holds(L""), Press(VK_SPACE, FCONTROL), [] { return RowCount() > 100; },
                  [&] {
                      list = NameList();
                      EXPECT_FALSE(IsTopmost(list));
                  }});
    EXPECT_FALSE(IsWindow(list));  // it goes with the shown editor
}

// Reading columns takes the editor from the top for a while.
TEST_F(CompletionTest, AClosedListDoesNotKeepTheEditorFromTheTop) {
    InSteps(L"", {Ready(L"or|"), Press(VK_SPACE, FCONTROL), [] { return NameList() != nullptr; }, Press(VK_ESCAPE),
                  Holds(L"or"), [] { PutWithCaret(L"select o.| from HR.ORDERS o"); }, Press(VK_SPACE, FCONTROL),
                  Shows(L"*ID (column, ORDERS)|NAME (column, ORDERS)"),
                  [] {
                      EXPECT_TRUE(IsTopmost(EditorWindow::Find()));
                      EXPECT_TRUE(IsTopmost(NameList()));
                  }});
}

TEST_F(CompletionTest, OtherSettingsOfTheSystemNeedAnotherList) {
    for (const UINT message : {WM_SETTINGCHANGE, WM_SYSCOLORCHANGE, WM_THEMECHANGED}) {
        HWND list = nullptr;
        InSteps(L"", {Ready(L"or|"), Press(VK_SPACE, FCONTROL), [] { return NameList() != nullptr; },
                      [&] {
                          list = NameList();
                          SendMessageW(list, message, 0, 0);
                      },
                      Press(VK_ESCAPE), Holds(L"or"), Press(VK_SPACE, FCONTROL), [] { return NameList() != nullptr; },
                      [&] {
                          EXPECT_NE(list, NameList()) << message;
                          EXPECT_FALSE(IsWindow(list)) << message;
                      }});
    }
}

// The list would stay where the caret was, and an owner that is restored brings back what was hidden with it.
TEST_F(CompletionTest, AnotherSizeOfTheWindowClosesTheList) {
    // The window manager answers a size, and a window that is minimized and restored, when it likes: it may close the
    // list again, and minimize the window once more.
    const auto opens = [] {
        if (NameList() != nullptr) return true;
        const HWND window = EditorWindow::Find();
        if (IsIconic(window) != FALSE) ShowWindow(window, SW_RESTORE);
        SetForegroundWindow(window);
        SetFocus(EditorWindow::Editor());
        Key(VK_SPACE, FCONTROL);
        return false;
    };
    // What closes the list is done in the step that has seen it.
    InSteps(L"", {Ready(L"or|"),
                  [opens] {
                      if (!opens()) return false;
                      RECT place;
                      GetWindowRect(EditorWindow::Find(), &place);
                      SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, place.right - place.left + 20,
                                   place.bottom - place.top, SWP_NOMOVE | SWP_NOZORDER);
                      EXPECT_EQ(nullptr, NameList());
                      return true;
                  },
                  [opens] {
                      if (!opens()) return false;
                      ShowWindow(EditorWindow::Find(), SW_MINIMIZE);
                      EXPECT_EQ(nullptr, NameList());
                      ShowWindow(EditorWindow::Find(), SW_RESTORE);
                      EXPECT_EQ(nullptr, NameList());
                      return true;
                  },
                  opens});
}

TEST_F(CompletionTest, AClickTakesTheRow) {
    Type(8);
    InSteps(L"", {Ready(L"or|"), Press(VK_SPACE, FCONTROL), [] { return RowCount() > 2; },
                  [] {
                      RECT row{LVIR_LABEL, 0, 0, 0};
                      SendMessageW(NameList(), LVM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&row));
                      const LPARAM at = MAKELPARAM(row.left + 4, (row.top + row.bottom) / 2);
                      EXPECT_EQ(MA_NOACTIVATE, SendMessageW(NameList(), WM_MOUSEACTIVATE, 0, 0));
                      SendMessageW(NameList(), WM_LBUTTONDOWN, MK_LBUTTON, at);
                      EXPECT_EQ(EditorWindow::Editor(), GetFocus());
                      SendMessageW(NameList(), WM_LBUTTONUP, 0, at);
                  },
                  Holds(L"HR.ORDERS")});
}

// Reported once, and the text stays as it was.
TEST_F(CompletionTest, AFailureOfTheHostLeavesTheTextAlone) {
    Type(8);
    Database.Members[L"FormatName"] = [](const Arguments&) -> Variant { RaiseError(1234, L"no", L"host"); };
    InSteps(L"", {Ready(L"select * from HR.ord|"), Press(VK_SPACE, FCONTROL), [] { return RowCount() == 2; },
                  Press(VK_RETURN), Holds(L"select * from HR.ord"),
                  [this] {
                      EXPECT_EQ(L"frmSQLEditor.rtbSQL_KeyPressed 1234", Errors.Places());
                      Errors.Forget();
                      PutWithCaret(L"ord|");
                  },
                  Press(VK_SPACE, FCONTROL), [] { return RowCount() > 2; }, Press(VK_RETURN), Holds(L"ord"),
                  [this] {
                      EXPECT_EQ(L"frmSQLEditor.m_BuildTable 1234", Errors.Places());
                      Errors.Forget();
                      Database.DictionaryMembers[L"Columns"] = [](const Arguments&) -> Variant {
                          RaiseError(1235, L"no", L"host");
                      };
                  }});
    Database.DictionaryMembers[L"Columns"] = [](const Arguments&) -> Variant { RaiseError(1235, L"no", L"host"); };
    InSteps(L"", {Ready(L"select o.| from ORDERS o"), Press(VK_SPACE, FCONTROL),
                  Shows(L"The columns of \"ORDERS\" could not be read."), Press(VK_ESCAPE),
                  Holds(L"select o. from ORDERS o")});
    EXPECT_EQ(L"clsDictionary.Get Columns 1235", Errors.Places());
}

// A host that closes the window, or writes into it, while it is asked.
TEST_F(CompletionTest, TheHostDoesSomethingElseWhileItIsAsked) {
    Type(8);
    Database.DictionaryMembers[L"Columns"] = [](const Arguments&) {
        EditorWindow::SetText(L"meanwhile");
        return Variant(MakeCollection({Column(L"ID", 3L)}));
    };
    InSteps(L"", {Ready(L"select o.| from ORDERS o"), Press(VK_SPACE, FCONTROL), Holds(L"meanwhile")});
    Database.DictionaryMembers[L"Columns"] = [](const Arguments&) {
        EditorWindow::Close();
        return Variant(MakeCollection({Column(L"ID", 3L)}));
    };
    const Object editor = Connected();
    std::wstring text = L"select o. from ORDERS o";
    const WhenShown shown([this] {
        Ready(L"select o.| from ORDERS o")();
        Key(VK_SPACE, FCONTROL);
    });
    editor.Call(L"Display", ByRef(text));
    EXPECT_EQ(L"select o. from ORDERS o", text);
    EXPECT_EQ(nullptr, NameList());
}

TEST_F(CompletionTest, ASelectionGivesWayToTheCaretAtItsEnd) {
    InSteps(L"", {Ready(L"select or|"),
                  [] {
                      SelectText(0, 9);
                      return true;
                  },
                  Press(VK_SPACE, FCONTROL), Shows(L"*ORDERS (table, HR)", 1),
                  [] {
                      EXPECT_EQ(L"9-9", Selection());
                      return true;
                  },
                  Press(VK_ESCAPE), Holds(L"select or")});
}

// A driver that has asked for a password leaves the focus elsewhere.
TEST_F(CompletionTest, TheHostMayTakeTheFocusWhileItIsAsked) {
    Database.DictionaryMembers[L"Columns"] = [this](const Arguments&) {
        SetFocus(Tree.Handle());
        return Variant(MakeCollection({Column(L"ID", 3L)}));
    };
    InSteps(L"", {Ready(L"select o.| from ORDERS o"), Press(VK_SPACE, FCONTROL), Shows(L"*ID (column, ORDERS)"),
                  Press(VK_RETURN), Holds(L"select o.ID from ORDERS o")});
}

TEST_F(CompletionTest, AKeywordThatIsBegunWithACapitalIsWrittenInCapitals) {
    InSteps(L"", {Ready(L"Whe|"), Press(VK_SPACE, FCONTROL), Shows(L"*WHEN (keyword)|WHERE (keyword)", 2),
                  Press(VK_DOWN), Press(VK_RETURN), Holds(L"WHERE"), Ready(L"whe|"), Press(VK_SPACE, FCONTROL),
                  Shows(L"*WHEN (keyword)|WHERE (keyword)", 2), Press(VK_DOWN), Press(VK_RETURN), Holds(L"where")});
}
