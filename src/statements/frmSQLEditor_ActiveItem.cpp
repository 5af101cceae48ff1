#include "browser/modLists_Tree.h"
#include "catalogue/clsListItem.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "shared/Vocabulary.h"
#include "shared/modGlobal.h"

namespace {

// The texts of an item that is built for a node of the object browser.
struct ItemTexts {
    std::wstring Select;
    std::wstring Insert;
    std::wstring Update;
    std::wstring Delete;
    std::vector<std::wstring> Commands;
};

std::shared_ptr<const clsListItem> MakeItem(ItemTexts&& Texts) {
    auto Item = std::make_shared<clsListItem>();
    Item->Constructor(1, std::move(Texts.Select), std::move(Texts.Insert), std::move(Texts.Update),
                      std::move(Texts.Delete), std::move(Texts.Commands));
    return Item;
}

// What the Action menu can do for a kind of node, without a statement being built: markers, and the captions of the
// tasks.
ItemTexts MarkersFor(const std::wstring& Kind) {
    namespace NodeKind = modLists::NodeKind;
    if (Kind == NodeKind::Schema) return {L"", L"", L"", L"", {L"Describe all tables/views"}};
    if (Kind == NodeKind::Tables) {
        return {L"select",
                L"",
                L"",
                L"",
                {L"Count rows in all tables", L"Describe all tables", L"Sample rows from all tables"}};
    }
    if (Kind == NodeKind::Table) {
        return {L"select", L"insert", L"update", L"delete", {L"Count rows", L"Describe table", L"Sample rows"}};
    }
    if (Kind == NodeKind::Views) {
        return {L"select",
                L"",
                L"",
                L"",
                {L"Count rows in all views", L"Describe all views", L"Sample rows from all views"}};
    }
    if (Kind == NodeKind::View) return {L"select", L"", L"", L"", {L"Count rows", L"Describe view", L"Sample rows"}};
    if (Kind == NodeKind::Column) return {L"select", L"insert", L"update", L"", {}};
    return {};
}

std::shared_ptr<const clsListItem> ItemOf(long Id) { return modGlobal::Catalogue().Item(std::to_wstring(Id)); }

std::shared_ptr<const clsListItem> SelectedEntry(const ListBox& List) {
    const int Row = List.ListIndex();
    return Row == -1 ? nullptr : ItemOf(List.ItemData(Row));
}

std::shared_ptr<const clsListItem> SelectedEntry(const TreeView& Tree) {
    const Node Selected = Tree.SelectedItem();
    return !Selected || Selected.Tag().empty() ? nullptr : ItemOf(Variant(Selected.Tag()).ToLong());
}

}  // namespace

std::shared_ptr<const clsListItem> frmSQLEditor::m_GetActiveItem() try {
    switch (activeView_) {
        case Page::ObjectBrowser:
            break;
        case Page::AnsiSql:
            return SelectedEntry(lstAnsiSQL);
        case Page::DatabaseSpecific:
            return SelectedEntry(trvDatabaseSpecific);
        case Page::HostCommands:
            return SelectedEntry(lstKolvex);
        default:
            return nullptr;
    }
    // The host pumps messages while a branch is read or a statement is made: no statement is made from half a branch.
    if (trvDBObjects.RefusesInput()) return nullptr;
    const TreeView::InputRefused Refused(trvDBObjects);
    namespace NodeKind = modLists::NodeKind;
    const Node Selected = trvDBObjects.SelectedItem();
    const std::wstring Kind = Selected ? Selected.Tag() : std::wstring();
    ItemTexts Texts;
    if (Kind == NodeKind::Schema) {
        Texts.Commands.emplace_back(m_GetStmtDescribe(Selected));
    } else if (Kind == NodeKind::Tables || Kind == NodeKind::Views || Kind == NodeKind::Table ||
               Kind == NodeKind::View) {
        Texts.Select = m_GetStmtSelectTable(Selected);
        if (Kind == NodeKind::Table) {
            Texts.Insert = m_GetStmtInsertTable(Selected);
            Texts.Update = m_GetStmtUpdateTable(Selected);
            Texts.Delete = m_GetStmtDeleteTable(Selected);
        }
        Texts.Commands.reserve(3);
        Texts.Commands.emplace_back(m_GetStmtCountRows(Selected));
        Texts.Commands.emplace_back(m_GetStmtDescribe(Selected));
        Texts.Commands.emplace_back(m_GetStmtSampleRows(Selected));
    } else if (Kind == NodeKind::Column) {
        // Unquoted names for every database: a sketch of a statement, not one to run. The column list before INTO is
        // deliberate.
        const std::wstring& Column = Selected.Text();
        const std::wstring& Table = Selected.Parent().Parent().Text();
        Texts.Select = L"SELECT " + Column + LineBreak + L"FROM " + Table;
        Texts.Insert = L"INSERT (" + Column + L")" + LineBreak + L"INTO " + Table + LineBreak + L"VALUES ( value )";
        Texts.Update = L"UPDATE " + Table + LineBreak + L"SET " + Column + L" = value" + LineBreak + L"WHERE ...";
    }
    return MakeItem(std::move(Texts));
} catch (...) {
    ReportError(Module, L"m_GetActiveItem");
    return nullptr;
}

void frmSQLEditor::m_EnableActionMenu() try {
    const Node Selected = trvDBObjects.SelectedItem();
    const std::wstring Kind = Selected ? Selected.Tag() : std::wstring();
    std::shared_ptr<const clsListItem> State;
    switch (activeView_) {
        case Page::ObjectBrowser:
            State = MakeItem(MarkersFor(Kind));
            break;
        case Page::AnsiSql:
            State = SelectedEntry(lstAnsiSQL);
            break;
        case Page::DatabaseSpecific:
            State = SelectedEntry(trvDatabaseSpecific);
            break;
        case Page::HostCommands:
            State = SelectedEntry(lstKolvex);
            break;
        default:
            break;
    }
    if (State == nullptr) {
        for (MenuItem* Entry : {&mnuActionCreate, &mnuActionDelete, &mnuActionExecute, &mnuActionInsert,
                                &mnuActionSelect, &mnuActionUpdate, &mnuActionTasks}) {
            Entry->SetEnabled(false);
        }
        return;
    }
    // By the object browser whatever view is active: a table is made in the folder that is selected there.
    mnuActionCreate.SetEnabled(Kind == modLists::NodeKind::Tables);
    mnuActionDelete.SetEnabled(!State->DeleteText().empty());
    mnuActionExecute.SetEnabled(!State->ExecuteText().empty());
    mnuActionInsert.SetEnabled(!State->InsertText().empty());
    mnuActionSelect.SetEnabled(!State->SelectText().empty());
    mnuActionUpdate.SetEnabled(!State->UpdateText().empty());
    const bool Tasks = !State->GetCommand(0).empty();
    mnuActionTasks.SetEnabled(Tasks);
    if (!Tasks) return;
    for (size_t Index = 0; Index < mnuActionTask.size(); ++Index) {
        const std::wstring Caption = State->GetCommand(static_cast<short>(Index));
        mnuActionTask[Index].SetCaption(Caption);
        mnuActionTask[Index].SetVisible(!Caption.empty());
    }
} catch (...) {
    ReportError(Module, L"m_EnableActionMenu");
}

void frmSQLEditor::m_SelectFromListBox(const ListBox& List) try {
    const int Row = List.ListIndex();
    lblDescription.SetCaption(Row == -1 ? std::wstring() : ItemOf(List.ItemData(Row))->Description());
} catch (...) {
    ReportError(Module, L"m_SelectFromListBox");
}

void frmSQLEditor::m_SelectFromTreeView(const TreeView& Tree) try {
    const Node Selected = Tree.SelectedItem();
    // A tag that reads as no number is an error here: categories are told apart by the caller.
    lblDescription.SetCaption(Selected ? ItemOf(Variant(Selected.Tag()).ToLong())->Description() : std::wstring());
} catch (...) {
    ReportError(Module, L"m_SelectFromTreeView");
}
