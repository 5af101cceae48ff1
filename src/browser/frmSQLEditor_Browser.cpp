#include "browser/modLists_Tree.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/MsgBox.h"
#include "forms/NotTopmost.h"
#include "forms/Painting.h"
#include "forms/WaitCursor.h"
#include "shared/Vocabulary.h"

namespace {

// The tree is full: the one error of these events that the user can act on.
void ReportOrTell(frmSQLEditor& Form, const wchar_t* Routine) {
    if (IsOwnError(CurrentError(), modLists::NodeLimitError)) {
        Form.trvDBObjects.StopExpanding();
        MsgBox(Form.Handle(),
               L"Exceeded the maximum number of items in the database object list. Try collapsing/closing a few "
               L"branches and "
               L"try it again.",
               MB_OK | MB_ICONEXCLAMATION);
        return;
    }
    ReportError(frmSQLEditor::Module, Routine);
}

}  // namespace

void frmSQLEditor::trvDBObjects_Expand(const Node& Node, bool Opened) try {
    if (!Node) return;
    const TreeView::InputRefused Refused(trvDBObjects);  // the dictionary may pump messages while it is asked
    const std::wstring Kind = Node.Tag();
    Nodes& Nodes = trvDBObjects.Items();
    if (Kind == modLists::NodeKind::Table || Kind == modLists::NodeKind::View) {
        const ::Node Columns = Node.Child();
        if (Opened && Columns.Expanded()) {
            // A click on the folder has already filled the closed table; a branch that is open raises no event.
            trvDBObjects_Expand(Columns);
        } else {
            Columns.SetExpanded(true);
        }
        return;
    }
    const WaitCursor wait;
    const NotTopmost notTopmost;  // once for all that the dictionary is asked
    const PaintingHeld held(trvDBObjects);
    if (Kind == modLists::NodeKind::Schemas) {
        modLists::PopulateDBObjSchemas(Nodes, Node);
    } else if (Kind == modLists::NodeKind::Tables) {
        modLists::PopulateDBObjTablesViews(ObjectType::Tables, Nodes, Node, mnuViewSystem.Checked());
    } else if (Kind == modLists::NodeKind::Views) {
        modLists::PopulateDBObjTablesViews(ObjectType::Views, Nodes, Node, mnuViewSystem.Checked());
    } else if (Kind == modLists::NodeKind::Columns) {
        modLists::PopulateDBObjColumns(Nodes, Node);
    }
} catch (...) {
    ReportOrTell(*this, L"trvDBObjects_Expand");
}

void frmSQLEditor::trvDBObjects_Collapse(const Node& Node) try {
    if (!Node) return;
    const TreeView::InputRefused Refused(trvDBObjects);  // so may the error component
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
    ReportOrTell(*this, L"trvDBObjects_Collapse");
}

void frmSQLEditor::m_DescribeNode(const Node& Node) {
    namespace NodeKind = modLists::NodeKind;
    const std::wstring& Kind = Node.Tag();
    const std::wstring& Text = Node.Text();
    std::wstring Description;
    if (Kind == NodeKind::Schemas) {
        Description = L"Schemas: contains a list of schemas defined in your database.";
    } else if (Kind == NodeKind::Schema) {
        Description = Text + L" schema: contains a list of database objects (tables and views).";
    } else if (Kind == NodeKind::Tables) {
        Description = L"Tables: contains a list of tables defined in the " + Node.Parent().Text() + L" schema.";
    } else if (Kind == NodeKind::Views) {
        Description = L"Views: contains a list of views defined in the " + Node.Parent().Text() + L" schema.";
    } else if (Kind == NodeKind::Table) {
        Description = Text + L" table: a basic unit of data storage in the " + Node.Parent().Parent().Text() +
                      L" schema. Open to view the column definition of this table.";
    } else if (Kind == NodeKind::View) {
        Description = Text + L" view: a custom-tailored presentation of data (or stored query) in the " +
                      Node.Parent().Parent().Text() + L" schema.";
    } else if (Kind == NodeKind::Columns) {
        Description = L"Columns: contains the column definition of the " + Node.Parent().Text() + L" database object.";
    } else if (Kind == NodeKind::Column) {
        Description = Text + L" is one of the columns of the " + Node.Parent().Parent().Text() + L" database object.";
    } else {
        return;
    }
    lblDescription.SetCaption(Description);
}

// Fills branches without opening them: the statements need the columns of a table that is only selected.
void frmSQLEditor::trvDBObjects_NodeClick(const Node& Node) try {
    if (!Node) {
        lblDescription.SetCaption(L"");
        return;
    }
    const TreeView::InputRefused Refused(trvDBObjects);  // from one folder to the next as well
    m_DescribeNode(Node);
    namespace NodeKind = modLists::NodeKind;
    const std::wstring Kind = Node.Tag();
    if (Kind == NodeKind::Schemas) {
        trvDBObjects_Expand(Node);
    } else if (Kind == NodeKind::Schema) {
        trvDBObjects_Expand(Node.Child().FirstSibling());
        trvDBObjects_Expand(Node.Child().LastSibling());
    } else if (Kind == NodeKind::Tables || Kind == NodeKind::Views) {
        // Compares with the placeholders' tag and not with their text "(undefined)", so it never matches. Deliberate: a
        // test pins it.
        if (Node.Child() && Node.Child().Text() != NodeKind::Undefined) trvDBObjects_Expand(Node.Child());
    } else if (Kind == NodeKind::Table || Kind == NodeKind::View || Kind == NodeKind::Columns) {
        trvDBObjects_Expand(Node.Child());
    }
    m_EnableActionMenu();
} catch (...) {
    ReportError(Module, L"trvDBObjects_NodeClick");
}

void frmSQLEditor::trvDBObjects_MouseDown(int Button, int, float, float) try {
    // The menu opens when the button comes up: see trvDBObjects_ContextMenu.
    if (Button == MouseButton::Right && trvDBObjects.SelectedItem()) m_EnableActionMenu();
} catch (...) {
    ReportError(Module, L"trvDBObjects_MouseDown");
}

void frmSQLEditor::trvDBObjects_ContextMenu(const POINT& At) try {
    const Node Selected = trvDBObjects.SelectedItem();
    if (!Selected) return;
    m_EnableActionMenu();
    trvDBObjects_NodeClick(Selected);
    mnuAction.PopUp(&At);
} catch (...) {
    ReportError(Module, L"trvDBObjects_ContextMenu");
}

void frmSQLEditor::trvDBObjects_MouseMove(int Button, int, float, float) try {
    if (Button == MouseButton::Left) trvDBObjects.Drag(DragAction::Begin);
} catch (...) {
    ReportError(Module, L"trvDBObjects_MouseMove");
}

void frmSQLEditor::trvDBObjects_MouseUp(int, int, float, float) try {
    trvDBObjects.Drag(DragAction::End);
} catch (...) {
    ReportError(Module, L"trvDBObjects_MouseUp");
}

// Another program selected the node: the window follows without asking the dictionary.
void frmSQLEditor::trvDBObjects_SelChange(const Node& Node) try {
    if (Node) m_DescribeNode(Node);
    m_EnableActionMenu();
} catch (...) {
    ReportError(Module, L"trvDBObjects_SelChange");
}

void frmSQLEditor::m_ExpandAll(TreeView& Tree, const Node& Node) try { Tree.ExpandAll(Node); } catch (...) {
    ReportError(Module, L"m_ExpandAll");
}

void frmSQLEditor::mnuViewSystem_Click() try { mnuViewSystem.SetChecked(!mnuViewSystem.Checked()); } catch (...) {
    ReportError(Module, L"mnuViewSystem_Click");
}
