#include "catalogue/clsListItem.h"
#include "component/modGlobal.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"

namespace {
constexpr const wchar_t* Module = L"frmSQLEditor";
}

void frmSQLEditor::m_EnableActionMenu() try {
    // Nothing can be chosen yet for which there is a statement.
    for (MenuItem* entry : {&mnuActionCreate, &mnuActionDelete, &mnuActionExecute, &mnuActionInsert, &mnuActionSelect,
                            &mnuActionUpdate, &mnuActionTasks}) {
        entry->SetEnabled(false);
    }
} catch (...) {
    ReportError(Module, L"m_EnableActionMenu");
}

void frmSQLEditor::m_SelectFromListBox(const ListBox& List) try {
    const int Row = List.ListIndex();
    lblDescription.SetCaption(Row == -1 ? std::wstring()
                                        : modGlobal::Catalogue().Item(std::to_wstring(List.ItemData(Row)))->Description());
} catch (...) {
    ReportError(Module, L"m_SelectFromListBox");
}

void frmSQLEditor::m_SelectFromTreeView(const TreeView& Tree) try {
    const Node Selected = Tree.SelectedItem();
    // A tag that reads as no number is an error here: categories are told apart by the caller.
    lblDescription.SetCaption(
        Selected ? modGlobal::Catalogue().Item(std::to_wstring(Variant(Selected.Tag()).ToLong()))->Description() : std::wstring());
} catch (...) {
    ReportError(Module, L"m_SelectFromTreeView");
}

void frmSQLEditor::m_InsertSQL(const std::wstring& SQL) try {
    const bool BeginsWithLineBreak = SQL.compare(0, 2, L"\r\n") == 0;
    // Behind the selection: the selected text is kept, never replaced.
    rtbSQL.SetSelStart(rtbSQL.SelStart() + rtbSQL.SelLength());
    const long Position = rtbSQL.SelStart();
    rtbSQL.SetSelLength(0);
    rtbSQL.SetSelText(SQL);
    const long LineBreak = BeginsWithLineBreak ? 2 : 0;
    rtbSQL.SetSelStart(Position + LineBreak);
    rtbSQL.SetSelLength(static_cast<long>(SQL.size()) - LineBreak);
} catch (...) {
    ReportError(Module, L"m_InsertSQL");
}
