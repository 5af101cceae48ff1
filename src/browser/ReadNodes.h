#pragma once

#include <string>
#include <utility>

#include "browser/modLists_Tree.h"

// What the object browser has read so far: a search through its nodes, which asks the host for nothing. Names are
// compared without regard to case.
namespace ReadNodes {

// A child that only stands for children which were not read yet.
inline bool IsPlaceholder(const Node& node) { return node.Tag() == modLists::NodeKind::Undefined; }

// Calls `step(schema, table)` with each table and view, in the order of the tree.
template <class Step>
void ForEachTable(Nodes& nodes, Step&& step) {
    if (nodes.Count() == 0) return;
    for (Node schema = nodes.Item(1).Child(); schema; schema = schema.Next()) {
        if (IsPlaceholder(schema)) continue;
        for (Node folder = schema.Child(); folder; folder = folder.Next()) {
            for (Node table = folder.Child(); table; table = table.Next()) {
                if (!IsPlaceholder(table)) step(schema, table);
            }
        }
    }
}

// Returns the folder of a table's or view's columns, or nothing.
Node ColumnsOf(const Node& table);
bool AreColumnsRead(const Node& table);

// The schema of that name, or nothing.
Node FindSchema(Nodes& nodes, const std::wstring& name);
// The table or view of that name, or nothing. With an empty schema the one of the default schema goes before others.
Node FindTable(Nodes& nodes, const std::wstring& schema, const std::wstring& name);
// Returns the column of that name among the columns that were read of a table, or nothing.
Node FindColumn(const Node& table, const std::wstring& name);

}  // namespace ReadNodes
