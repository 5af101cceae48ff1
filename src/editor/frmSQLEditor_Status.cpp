#include "browser/modLists_Tree.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/PlainText.h"

namespace {

constexpr long CellLimit = 32767;  // characters that a cell of the sheet holds

std::wstring RowOf(const ListBox& List) {
    return List.ListIndex() == -1 ? std::wstring() : List.List(List.ListIndex());
}

}  // namespace

void frmSQLEditor::m_ShowCaret() {
    long Line = 0;
    long Column = 0;
    rtbSQL.CaretPosition(Line, Column);
    sbStatusBar.SetPanelText(CaretPanel, L"Ln " + std::to_wstring(Line) + L", Col " + std::to_wstring(Column));
}

// As the host counts: a line end is two characters.
void frmSQLEditor::m_ShowLengths() {
    const long All = rtbSQL.TextLength();
    const long Selected = rtbSQL.SelLength();
    std::wstring Text = std::to_wstring(All);
    if (Selected > 0) {
        Text = std::to_wstring(Selected) + L" of " + Text;
    } else {
        Text += All == 1 ? L" char" : L" chars";
    }
    std::wstring Tip;
    if (All > CellLimit) {
        const std::wstring Limit = std::to_wstring(CellLimit);
        Text += L" > " + Limit;
        Tip = L"The SQL has " + std::to_wstring(All) + L" characters. A cell of the sheet holds " + Limit + L".";
    }
    sbStatusBar.SetPanelText(LengthPanel, Text);
    sbStatusBar.SetPanelTip(LengthPanel, Tip);
}

void frmSQLEditor::m_ShowChanged(bool Changed) {
    sbStatusBar.SetPanelText(ChangedPanel, Changed ? ChangedText : L"");
    sbStatusBar.SetPanelTip(
        ChangedPanel,
        Changed ? L"The SQL is not as the sheet gave it. Ctrl+Shift+R in the SQL brings that back." : L"");
}

// A text of the same length is compared when nobody waits for it.
void frmSQLEditor::m_NoteChange() {
    comparing_ = rtbSQL.TextLength() == displayedLength_;
    if (!comparing_) m_ShowChanged(true);
}

void frmSQLEditor::m_CompareWithDisplayed() try {
    comparing_ = false;
    m_ShowChanged(rtbSQL.Text() != PlainText::WithCrLf(displayed_));
} catch (...) {
    ReportError(Module, L"m_CompareWithDisplayed");
}

void frmSQLEditor::rtbSQL_Zoomed() try {
    sbStatusBar.SetPanelText(ZoomPanel, std::to_wstring(rtbSQL.ZoomPercent()) + L"%");
} catch (...) {
    ReportError(Module, L"rtbSQL_Zoomed");
}

void frmSQLEditor::MenuHighlighted(const MenuItem* Entry) try {
    sbStatusBar.ShowHint(Entry != nullptr ? m_Hint(*Entry) : std::wstring());
} catch (...) {
    ReportError(Module, L"MenuHighlighted");
}

void frmSQLEditor::MenusClosed() try { sbStatusBar.ClearHint(); } catch (...) {
    ReportError(Module, L"MenusClosed");
}

std::wstring frmSQLEditor::m_Hint(const MenuItem& Entry) {
    struct Known {
        const MenuItem& Entry;
        const wchar_t* Hint;
    };
    const Known All[] = {
        {mnuFile, L"Clear, open, save and print the SQL; close the window"},
        {mnuFileNew, L"Clears the SQL; Ctrl+Shift+R brings back the sheet's"},
        {mnuFileOpen, L"Replaces the SQL by a file's; Ctrl+Shift+R brings back the sheet's"},
        {mnuFileSaveAs, L"Saves the SQL in a file that you choose"},
        {mnuFilePrint, L"Prints the SQL"},
        {mnuFileClose, L"Returns the SQL to Kolvex and closes the window"},
        {mnuEdit, L"Clipboard, letters, search and selection"},
        {mnuEditCut, L"Moves the selected text to the clipboard"},
        {mnuEditCopy, L"Copies the selected text, or the selected entry on the left"},
        {mnuEditPaste, L"Inserts the clipboard's text behind the selection"},
        {mnuEditDelete, L"Deletes the selected text"},
        {mnuEditMakeLowerCase, L"Makes the selected text lower case"},
        {mnuEditMakeUpperCase, L"Makes the selected text upper case"},
        {mnuFind, L"Asks for a text and selects it where it comes next"},
        {mnuFindNext, L"Selects the next place of the text that Find asked for"},
        {mnuEditReplace, L"To replace text, press Ctrl+H in the SQL"},
        {mnuEditGoto, L"To go to a line, press Ctrl+G in the SQL"},
        {mnuEditSelectAll, L"Selects the whole SQL"},
        {mnuEditTimeDate, L"Replaces the selection by the date and the time"},
        {mnuAction, L"Inserts statements for what is selected on the left; runs nothing"},
        {mnuView, L"What the window shows"},
        {mnuViewStatusBar, L"Shows or hides this bar"},
        {mnuViewObjectBrowser, L"Shows or hides the left pane"},
        {mnuViewSystem, L"Lists the system's tables and views too, in branches opened from now on"},
    };
    for (const Known& One : All) {
        if (&One.Entry == &Entry) return One.Hint;
    }
    if (&Entry == &mnuFileSave) {
        return rtbSQL.FileName.empty() ? L"Saves the SQL in a file that you choose"
                                       : L"Saves the SQL in " + rtbSQL.FileName;
    }
    return m_ActionHint(Entry);
}

// What a statement of the Action menu would be for; empty: nothing.
std::wstring frmSQLEditor::m_ActiveName() {
    if (activeView_ == 1) return RowOf(lstAnsiSQL);
    if (activeView_ == 3) return RowOf(lstKolvex);
    const Node Selected = (activeView_ == 2 ? trvDatabaseSpecific : trvDBObjects).SelectedItem();
    if (!Selected) return {};
    const std::wstring& Kind = Selected.Tag();
    const std::wstring& Text = Selected.Text();
    if (activeView_ == 2) return Kind.empty() ? std::wstring() : Text;  // a category has no number
    namespace NodeKind = modLists::NodeKind;
    if (Kind == NodeKind::Schema) return L"schema " + Text;
    if (Kind == NodeKind::Tables) return L"all tables of " + Selected.Parent().Text();
    if (Kind == NodeKind::Views) return L"all views of " + Selected.Parent().Text();
    if (Kind == NodeKind::Table) return L"table " + Text + L" of " + Selected.Parent().Parent().Text();
    if (Kind == NodeKind::View) return L"view " + Text + L" of " + Selected.Parent().Parent().Text();
    if (Kind == NodeKind::Column) return L"column " + Text + L" of " + Selected.Parent().Parent().Text();
    return {};
}

std::wstring frmSQLEditor::m_ActionHint(const MenuItem& Entry) {
    if (&Entry == &mnuActionCreate) {
        return Entry.Enabled() ? L"Asks for a table and inserts its statement, runs nothing: " +
                                     trvDBObjects.SelectedItem().Parent().Text()
                               : std::wstring(L"Select a folder of tables in the object browser first");
    }
    struct Known {
        const MenuItem& Entry;
        const wchar_t* Article;  // empty before a plural
        const wchar_t* What;
    };
    const Known All[] = {
        {mnuActionSelect, L"a ", L"SELECT statement"},  {mnuActionInsert, L"an ", L"INSERT statement"},
        {mnuActionUpdate, L"an ", L"UPDATE statement"}, {mnuActionDelete, L"a ", L"DELETE statement"},
        {mnuActionExecute, L"an ", L"example"},         {mnuActionTasks, L"", L"statements"},
        {mnuActionTask[0], L"", L"statements"},         {mnuActionTask[1], L"", L"statements"},
        {mnuActionTask[2], L"", L"statements"},
    };
    const std::wstring Name = m_ActiveName();
    if (Name.empty()) return L"Select a table, a view, a column or a command on the left first";
    for (const Known& One : All) {
        if (&One.Entry != &Entry) continue;
        if (Entry.Enabled()) return std::wstring(L"Inserts ") + One.Article + One.What + L", runs nothing: " + Name;
        const std::wstring None = *One.Article != L'\0' ? L"There is no " : L"There are no ";
        return None + One.What + L" for " + Name;
    }
    return {};
}
