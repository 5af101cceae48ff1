#include "automation/App.h"
#include "browser/modLists.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/MsgBox.h"
#include "forms/Painting.h"

namespace {

constexpr const wchar_t* Module = L"frmSQLEditor";

// The tree is as full as it can be: the one error of these events that the user can do something about.
void ReportOrTell(HWND Owner, const wchar_t* Routine) {
    const RuntimeError error = CurrentError();
    if (error.Source == App::Title && error.Number == modLists::NodeLimitError) {
        MsgBox(Owner,
               L"Exceeded the maximum number of items in the database object list. Try collapsing/closing a few branches and "
               L"try it again.",
               MB_OK | MB_ICONEXCLAMATION);
        return;
    }
    ReportError(Module, Routine);
}

}  // namespace

void frmSQLEditor::trvDBObjects_Expand(const Node& Node) try {
    if (!Node) return;
    const std::wstring Kind = Node.Tag();
    Nodes& Nodes = trvDBObjects.Items();
    const bool Filled = Kind == modLists::NodeKind::Table || Kind == modLists::NodeKind::View;
    if (Filled) {
        Node.Child().SetExpanded(true);
        return;
    }
    const WaitCursor wait;
    const PaintingHeld held(trvDBObjects);
    if (Kind == modLists::NodeKind::Schemas) {
        modLists::PopulateDBObjSchemas(Nodes, Node);
    } else if (Kind == modLists::NodeKind::Tables) {
        modLists::PopulateDBObjTablesViews(1, Nodes, Node, mnuViewSystem.Checked());
    } else if (Kind == modLists::NodeKind::Views) {
        modLists::PopulateDBObjTablesViews(2, Nodes, Node, mnuViewSystem.Checked());
    } else if (Kind == modLists::NodeKind::Columns) {
        modLists::PopulateDBObjColumns(Nodes, Node);
    }
} catch (...) {
    ReportOrTell(Handle(), L"trvDBObjects_Expand");
}

void frmSQLEditor::trvDBObjects_Collapse(const Node& Node) try {
    if (!Node) return;
    const std::wstring Kind = Node.Tag();
    Nodes& Nodes = trvDBObjects.Items();
    const PaintingHeld held(trvDBObjects);
    if (Kind == modLists::NodeKind::Table || Kind == modLists::NodeKind::View) {
        modLists::AddDefaultDBObjectItems(Nodes, Node);
    } else if (Kind == modLists::NodeKind::Tables || Kind == modLists::NodeKind::Views) {
        modLists::AddDefaultTablesViewsItems(Nodes, Node);
    } else if (Kind == modLists::NodeKind::Schema) {
        modLists::AddDefaultSchemaItems(Nodes, Node);
    }
} catch (...) {
    ReportOrTell(Handle(), L"trvDBObjects_Collapse");
}

void frmSQLEditor::mnuViewSystem_Click() try {
    mnuViewSystem.SetChecked(!mnuViewSystem.Checked());
} catch (...) {
    ReportError(Module, L"mnuViewSystem_Click");
}
