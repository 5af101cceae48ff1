#include "catalogue/clsListItem.h"
#include "catalogue/modLists_Lists.h"
#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/Painting.h"
#include "shared/Vocabulary.h"
#include "shared/modGlobal.h"
#include "sql/DatabaseTypes.h"

namespace {

void FillList(ListBox& List, long Number) {
    {
        const PaintingHeld held(List);
        List.Clear();
        for (const auto& Entry : modGlobal::Catalogue()) {
            if (Entry->list() != Number) continue;
            List.SetItemData(List.AddItem(Entry->Text()), Entry->Id());
        }
    }
    if (List.ListCount() > 0) List.SetListIndex(0);
}

}  // namespace

void modLists::PopulateAnsiSQLCommands() try {
    FillList(modGlobal::Window().lstAnsiSQL, CatalogueList::AnsiSql);
} catch (...) {
    ReportError(Module, L"PopulateAnsiSQLCommands");
}

void modLists::PopulateKolvexCommands() try {
    FillList(modGlobal::Window().lstKolvex, CatalogueList::HostCommands);
} catch (...) {
    ReportError(Module, L"PopulateKolvexCommands");
}

void modLists::PopulateDatabaseSpecificCommands() try {
    TreeView& Tree = modGlobal::Window().trvDatabaseSpecific;
    Nodes& Nodes = Tree.Items();
    Nodes.Clear();
    if (Dictionary == nullptr) return;
    if (!Dictionary->Connected()) return;
    if (DBType == DatabaseType::Oracle || DBType == DatabaseType::SqlServer) {
        for (const wchar_t* Category :
             {L"SQL Commands", L"Single Row Number Functions", L"Single Row Character Functions", L"Group Functions",
              L"Date Functions", L"Conversion Functions", L"Other Functions", L"Format Models", L"Pseudo Columns",
              L"Data Types"}) {
            Nodes.Add(Variant::Missing(), Variant::Missing(), Category, Category);
        }
    }
    for (const auto& Entry : modGlobal::Catalogue()) {
        if (Entry->list() != CatalogueList::DatabaseSpecific || Entry->DBType() != DBType) continue;
        const Node Added = Nodes.Add(Entry->Category(), TreeRelationship::Child, Variant::Missing(), Entry->Text());
        Added.SetTag(std::to_wstring(Entry->Id()));
    }
    if (Nodes.Count() > 0) Tree.SetSelectedItem(Nodes.Item(1));
} catch (...) {
    ReportError(Module, L"PopulateDatabaseSpecificCommands");
}
