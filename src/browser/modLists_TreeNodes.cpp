#include <string>

#include "automation/RuntimeError.h"
#include "browser/modLists_Tree.h"
#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "shared/modGlobal.h"

namespace {

// A placeholder gives an unfilled node its expand button.
Node AddPlaceholder(Nodes& Nodes, const Node& Parent) {
    return modLists::m_AddNode(Nodes, L"(undefined)", modLists::NodeKind::Undefined, Parent);
}

[[noreturn]] void RaiseTreeIsFull() { RaiseError(modLists::NodeLimitError, L"Maximum items in TreeView exceeded."); }

}  // namespace

void modLists::ReportUnlessOwn(const wchar_t* Routine) {
    if (IsOwnError(CurrentError())) throw;
    ReportError(Module, Routine);
}

namespace {

// Adds by `Add` and tags what it has added.
template <class Adding>
Node Added(Nodes& Nodes, const std::wstring& Tag, Adding&& Add) try {
    // A further node could be neither numbered nor removed.
    if (Nodes.Count() == ::Nodes::Limit) RaiseTreeIsFull();
    ::Node Node = Add();
    Node.SetTag(Tag);
    const short Index = Node.Index();
    const short Count = Nodes.Count();
    // After the node was added: the one that reaches the limit stays.
    if (Index < 0 || Count == ::Nodes::Limit) RaiseTreeIsFull();
    return Node;
} catch (...) {
    modLists::ReportUnlessOwn(L"m_AddNode");
    return {};
}

}  // namespace

Node modLists::m_AddNode(::Nodes& Nodes, const std::wstring& Text, const std::wstring& Tag, const Variant& Relative,
                         const Variant& Relationship, const Variant& Key) {
    return Added(Nodes, Tag, [&] { return Nodes.Add(Relative, Relationship, Key, Text); });
}

Node modLists::m_AddNode(::Nodes& Nodes, const std::wstring& Text, const std::wstring& Tag, const ::Node& Parent) {
    static_cast<void>(Parent.Children());  // raises, outside the trap, when the parent is gone
    return Added(Nodes, Tag, [&] { return Nodes.AddChild(Parent, Text); });
}

void modLists::m_ClearNode(::Nodes& Nodes, const ::Node& Node) try {
    while (Node.Children() > 0) Nodes.Remove(Node.Child().Index());
} catch (...) {
    std::wstring Debug;
    try {
        Debug =
            L"index=[" + std::to_wstring(Node.Child().Index()) + L"] count=[" + std::to_wstring(Nodes.Count()) + L"]";
    } catch (...) {
        // The node itself is gone: the report has only what is still known.
        Debug = L"index=[] count=[" + std::to_wstring(Nodes.Count()) + L"]";
    }
    ReportError(Module, L"m_ClearNode", Debug);
}

void modLists::AddDefaultDBObjectItems(::Nodes& Nodes, const ::Node& Node) try {
    m_ClearNode(Nodes, Node);
    const ::Node Columns = m_AddNode(Nodes, L"Columns", NodeKind::Columns, Node);
    AddPlaceholder(Nodes, Columns);
} catch (...) {
    ReportUnlessOwn(L"AddDefaultDBObjectItems");
}

void modLists::AddDefaultSchemaItems(::Nodes& Nodes, const ::Node& Node) try {
    m_ClearNode(Nodes, Node);
    const ::Node Tables = m_AddNode(Nodes, L"Tables", NodeKind::Tables, Node);
    const ::Node Views = m_AddNode(Nodes, L"Views", NodeKind::Views, Node);
    AddDefaultTablesViewsItems(Nodes, Tables);
    AddDefaultTablesViewsItems(Nodes, Views);
} catch (...) {
    ReportUnlessOwn(L"AddDefaultSchemaItems");
}

// Two placeholders here, one elsewhere: the difference is deliberate.
void modLists::AddDefaultTablesViewsItems(::Nodes& Nodes, const ::Node& Node) try {
    m_ClearNode(Nodes, Node);
    AddPlaceholder(Nodes, Node);
    AddPlaceholder(Nodes, Node);
} catch (...) {
    ReportUnlessOwn(L"AddDefaultTablesViewsItems");
}

void modLists::PopulateDBObjects() try {
    Nodes& Nodes = modGlobal::Window().trvDBObjects.Items();
    Nodes.Clear();
    if (Dictionary == nullptr) return;
    if (!Dictionary->Connected()) return;
    m_AddNode(Nodes, SchemaTermPlural, NodeKind::Schemas, Variant::Missing(), Variant::Missing(), NodeKind::Schemas);
    AddPlaceholder(Nodes, Nodes.Item(std::wstring(NodeKind::Schemas)));
} catch (...) {
    ReportError(Module, L"PopulateDBObjects");
}
