#include "browser/ReadNodes.h"

#include "automation/Text.h"
#include "shared/modGlobal.h"

namespace ReadNodes {

Node ColumnsOf(const Node& table) {
    const Node columns = table.Child();
    return columns && columns.Tag() == modLists::NodeKind::Columns ? columns : Node();
}

bool AreColumnsRead(const Node& table) {
    const Node columns = ColumnsOf(table);
    const Node first = columns ? columns.Child() : Node();
    return first && !IsPlaceholder(first);
}

Node FindSchema(Nodes& nodes, const std::wstring& name) {
    if (nodes.Count() == 0) return {};
    for (Node schema = nodes.Item(1).Child(); schema; schema = schema.Next()) {
        if (!IsPlaceholder(schema) && SameName(schema.Text(), name)) return schema;
    }
    return {};
}

Node FindTable(Nodes& nodes, const std::wstring& schema, const std::wstring& name) {
    Node found;
    int best = 0;
    ForEachTable(nodes, [&](const Node& parent, const Node& table) {
        if (!SameName(table.Text(), name)) return;
        if (!schema.empty() && !SameName(parent.Text(), schema)) return;
        const int rank = 1 + (table.Text() == name ? 1 : 0) + (SameName(parent.Text(), OwnerName) ? 2 : 0);
        if (rank <= best) return;
        best = rank;
        found = table;
    });
    return found;
}

Node FindColumn(const Node& table, const std::wstring& name) {
    if (!AreColumnsRead(table)) return {};
    for (Node column = ColumnsOf(table).Child(); column; column = column.Next()) {
        if (SameName(column.Text(), name)) return column;
    }
    return {};
}

}  // namespace ReadNodes
