#include <algorithm>
#include <cwchar>
#include <optional>

#include "automation/Text.h"
#include "browser/ReadNodes.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/InputBox.h"
#include "shared/modGlobal.h"
#include "sql/Scope.h"

// F12 in the editor and Ctrl+Shift+F: finds a node among those that were read. The host is not asked.
namespace {

constexpr const wchar_t* OnlyRead = L" Branches that were not opened yet are not searched.";

using namespace ReadNodes;

// The node after this one, as the tree shows them when everything is open; nothing after the last.
Node Following(const Node& node) {
    if (const Node child = node.Child()) return child;
    for (Node at = node; at; at = at.Parent()) {
        if (const Node next = at.Next()) return next;
    }
    return {};
}

bool Holds(const std::wstring& text, const std::wstring& part) {
    return FindStringOrdinal(FIND_FROMSTART, text.data(), static_cast<int>(text.size()), part.data(),
                             static_cast<int>(part.size()), TRUE) >= 0;
}

// The node that a name means, schema first where one is written.
Node NodeNamed(Nodes& nodes, const std::wstring& name, const std::vector<std::wstring>& qualifiers,
               const std::vector<Sql::TableReference>& tables) {
    const auto table = [&](const std::wstring& alias) -> Node {
        for (const Sql::TableReference& one : tables) {
            if (SameName(one.Alias.empty() ? one.Table : one.Alias, alias))
                return FindTable(nodes, one.Schema, one.Table);
        }
        return {};
    };
    if (qualifiers.size() > 1) {
        const Node found = FindTable(nodes, qualifiers[qualifiers.size() - 2], qualifiers.back());
        if (const Node column = found ? FindColumn(found, name) : Node()) return column;
        return FindTable(nodes, qualifiers.back(), name);
    }
    if (qualifiers.size() == 1) {
        if (const Node found = FindTable(nodes, qualifiers[0], name)) return found;
        Node of = table(qualifiers[0]);
        if (!of) of = FindTable(nodes, L"", qualifiers[0]);
        return of ? FindColumn(of, name) : Node();
    }
    if (const Node found = table(name)) return found;
    if (const Node found = FindTable(nodes, L"", name)) return found;
    for (const Sql::TableReference& one : tables) {
        const Node of = FindTable(nodes, one.Schema, one.Table);
        if (const Node column = of ? FindColumn(of, name) : Node()) return column;
    }
    if (const Node schema = FindSchema(nodes, name)) return schema;
    Node found;
    ForEachTable(nodes, [&](const Node&, const Node& of) {
        if (!found) found = FindColumn(of, name);
    });
    return found;
}

}  // namespace

// Selects a node without a click on it: the dictionary is not asked.
void frmSQLEditor::m_ShowNode(const Node& Node) {
    if (activeView_ != 0) {
        cmdLeft_Click(0);
        rtbSQL.SetFocus();
    }
    trvDBObjects.SetSelectedItem(Node);
    trvDBObjects_SelChange(Node);
}

void frmSQLEditor::m_FindObject() {
    if (trvDBObjects.RefusesInput()) return;
    const auto [From, To] = rtbSQL.RawSelection();
    const std::wstring Text = rtbSQL.RawText(0, rtbSQL.RawLength());
    const auto Caret = static_cast<size_t>(std::max(To, 0L));
    Sql::NameAtCaret Name = Sql::NameAt(Text, Caret, colours_.Dialect());
    // At the beginning of a name the caret is at that name too.
    if (Name.IsCode && Name.Whole.empty() && Caret < Text.size() && Text[Caret] > L' ')
        Name = Sql::NameAt(Text, Caret + 1, colours_.Dialect());
    // And behind its closing quote, where another one could be begun.
    if (Name.IsCode && Name.Whole.empty() && Caret > 0 && Text[Caret - 1] > L' ')
        Name = Sql::NameAt(Text, Caret - 1, colours_.Dialect());
    if (!Name.IsCode || Name.Whole.empty()) return sbStatusBar.ShowNote(L"There is no name at the caret.");
    const Node Found = NodeNamed(trvDBObjects.Items(), Name.Whole, Name.Qualifiers,
                                 Sql::TablesAt(Text, Caret, colours_.Dialect(), Sql::Words(DBType)));
    if (!Found) return sbStatusBar.ShowNote(L"\"" + Name.Whole + L"\" is not in the object browser." + OnlyRead);
    m_ShowNode(Found);
}

void frmSQLEditor::m_FindNode() {
    const std::optional<std::wstring> Text =
        InputBox(Handle(), L"Enter text to find in the object browser", L"Find", nodeText_);
    if (!Text || Text->empty()) return;
    nodeText_ = *Text;
    m_FindNextNode();
}

// From the node after the selected one to the end, and on from the beginning.
void frmSQLEditor::m_FindNextNode() {
    if (trvDBObjects.RefusesInput()) return;
    Nodes& Nodes = trvDBObjects.Items();
    const Node First = Nodes.Count() > 0 ? Nodes.Item(1) : Node();
    const Node Selected = trvDBObjects.SelectedItem();
    Node At = Selected ? Following(Selected) : First;
    for (long Left = Nodes.Count(); Left > 0; --Left) {
        if (!At) At = First;
        if (!IsPlaceholder(At) && Holds(At.Text(), nodeText_)) {
            m_ShowNode(At);
            trvDBObjects.SetFocus();
            return;
        }
        At = Following(At);
    }
    sbStatusBar.ShowNote(L"\"" + nodeText_ + L"\" is in no name of the object browser." + OnlyRead);
}
