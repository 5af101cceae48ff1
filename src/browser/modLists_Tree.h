#pragma once

#include <string>

#include "automation/Variant.h"
#include "forms/Nodes.h"
#include "shared/Vocabulary.h"

// The object tree. (The catalogue's half of this module is in catalogue/modLists_Lists.h.)
namespace modLists {
// The words that say what kind of node a node is: its tag.
namespace NodeKind {
inline constexpr const wchar_t* Schemas = L"schemas";
inline constexpr const wchar_t* Schema = L"schema";
inline constexpr const wchar_t* Tables = L"tables";
inline constexpr const wchar_t* Table = L"table";
inline constexpr const wchar_t* Views = L"views";
inline constexpr const wchar_t* View = L"view";
inline constexpr const wchar_t* Columns = L"columns";
inline constexpr const wchar_t* Column = L"column";
inline constexpr const wchar_t* Properties = L"properties";
inline constexpr const wchar_t* Property = L"property";
inline constexpr const wchar_t* Undefined = L"undefined";
}  // namespace NodeKind

// Raised by m_AddNode, source the application title, when the tree holds as many nodes as it can.
inline constexpr long NodeLimitError = -2147221502;  // ObjectErrorBase + 2

// In the trap of a procedure: passes an error of the component's own up, so that the user sees one message about a full
// tree, and reports any other as the procedure's.
void ReportUnlessOwn(const wchar_t* Routine);

// A value for display: "null" for Null, else its ordinary text.
std::wstring m_VntToStr(const Variant& Value);

// Adds a node and sets its tag. The node that fills the tree up to its limit is added, and then NodeLimitError is
// raised. Any other failure is reported and gives nothing.
Node m_AddNode(Nodes& Nodes, const std::wstring& Text, const std::wstring& Tag,
               const Variant& Relative = Variant::Missing(), const Variant& Relationship = Variant::Missing(),
               const Variant& Key = Variant::Missing());
// The same for the last child of a node. Without Variants, for what the component adds in great numbers. A parent that
// is gone is the caller's error, as its Index would be.
Node m_AddNode(Nodes& Nodes, const std::wstring& Text, const std::wstring& Tag, const Node& Parent);
// Removes all children of a node, with what is below them.
void m_ClearNode(Nodes& Nodes, const Node& Node);

// Return a node to its unfilled state: a "table" or "view", a "schema", a "tables" or "views" node. NodeLimitError is
// passed up.
void AddDefaultDBObjectItems(Nodes& Nodes, const Node& Node);
void AddDefaultSchemaItems(Nodes& Nodes, const Node& Node);
void AddDefaultTablesViewsItems(Nodes& Nodes, const Node& Node);

// Empties the tree of the editor window and creates its root with a placeholder, when a dictionary is connected.
void PopulateDBObjects();

// Each replaces all children of a node with what the dictionary returns. NodeLimitError is passed up; other failures
// are reported, or shown to the user where the dictionary itself says what it cannot do, and leave the tree as far as
// it was built. The schemas of the root; one "Current Schema" when the database has no list of schemas.
void PopulateDBObjSchemas(Nodes& Nodes, const Node& Node);
// The tables (`ObjectType` 1) of a "tables" node, or the views (2) of a "views" node.
void PopulateDBObjTablesViews(long ObjectType, Nodes& Nodes, const Node& Node, bool IncludeSys);
// The columns of a "columns" node, each with its properties.
void PopulateDBObjColumns(Nodes& Nodes, const Node& Node);
}  // namespace modLists
