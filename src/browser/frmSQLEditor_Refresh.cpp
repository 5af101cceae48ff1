#include <map>
#include <optional>
#include <vector>

#include "browser/ReadNodes.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/NotTopmost.h"
#include "forms/Painting.h"
#include "forms/WaitCursor.h"

// F5 in the object browser: reads the selected branch again, as closing and opening it would, and what was open below
// it. Nodes are made again then, so what was open, selected and scrolled to is found again by its names.
namespace {

namespace NodeKind = modLists::NodeKind;

using Names = std::vector<std::wstring>;

std::wstring NameOf(const Node& node) { return node.Tag() + L'\n' + node.Text(); }

bool IsFolder(const Node& node) { return node.Tag() == NodeKind::Tables || node.Tag() == NodeKind::Views; }

bool IsRead(const Node& node) {
    const Node columns = ReadNodes::ColumnsOf(node);
    const Node first = (columns ? columns : node).Child();
    return first && !ReadNodes::IsPlaceholder(first);
}

// What of a branch was open or read, by the names.
struct Kept {
    bool Open = false;
    bool Read = false;
    std::map<std::wstring, Kept> Below;
};

Kept Remember(const Node& node) {
    Kept kept{node.Expanded(), IsRead(node), {}};
    for (Node child = node.Child(); child; child = child.Next()) {
        if (child.Expanded() || (IsFolder(child) && IsRead(child))) kept.Below.emplace(NameOf(child), Remember(child));
    }
    return kept;
}

// What F5 reads again for a selected node: columns come all together.
Node BranchOf(const Node& selected) {
    Node branch = selected;
    if (ReadNodes::IsPlaceholder(branch)) branch = branch.Parent();
    while (branch.Tag() == NodeKind::Property || branch.Tag() == NodeKind::Properties ||
           branch.Tag() == NodeKind::Column) {
        branch = branch.Parent();
    }
    return branch;
}

// The names on the way from a branch down to a node; nothing for a node that is not in the branch.
std::optional<Names> WayTo(const Node& node, const Node& branch) {
    Names way;
    for (Node at = node; at; at = at.Parent()) {
        if (at == branch) return Names(way.rbegin(), way.rend());
        way.push_back(NameOf(at));
    }
    return std::nullopt;
}

// As far as the names are still there.
Node Follow(const Node& branch, const Names& way) {
    Node at = branch;
    for (const std::wstring& name : way) {
        Node next = at.Child();
        while (next && NameOf(next) != name) next = next.Next();
        if (!next) break;
        at = next;
    }
    return at;
}

// Opens and reads below a branch what was open and read. Stops, with false, when what had been read comes back empty,
// since the dictionary has failed then and has said so, or when the user presses Escape. `fill` reads a branch and
// leaves it closed.
bool Restore(TreeView& tree, const Node& branch, const Kept& kept, const std::function<void(const Node&)>& fill) {
    for (Node child = branch.Child(); child; child = child.Next()) {
        const auto found = kept.Below.find(NameOf(child));
        if (found == kept.Below.end()) continue;
        const Kept& before = found->second;
        if (!before.Open) {
            fill(child);
        } else {
            child.SetExpanded(true);
            // A table opens its columns with it.
            const Node columns = ReadNodes::ColumnsOf(child);
            if (columns && !before.Below.contains(NameOf(columns))) columns.SetExpanded(false);
        }
        if ((before.Read && !IsRead(child)) || tree.AskedToStop()) return false;
        if (!Restore(tree, child, before, fill)) return false;
    }
    return true;
}

}  // namespace

void frmSQLEditor::m_ReadAgain() {
    if (trvDBObjects.RefusesInput()) return;
    const Node Selected = trvDBObjects.SelectedItem();
    if (!Selected) return sbStatusBar.ShowNote(L"Select what is to be read again in the object browser first.");
    const TreeView::InputRefused Refused(trvDBObjects);  // from one branch to the next as well
    const WaitCursor wait;
    const NotTopmost notTopmost;
    const PaintingHeld held(trvDBObjects);
    trvDBObjects.ExpectStop();
    const Node Branch = BranchOf(Selected);
    const Names ToSelected = WayTo(Selected, Branch).value_or(Names());
    const Node Top = trvDBObjects.FirstVisible();
    const std::optional<Names> ToTop = WayTo(Top, Branch);
    const int Sideways = trvDBObjects.ScrolledSideways();

    Kept Before = Remember(Branch);
    if (Branch.Tag() == NodeKind::Schema) {
        // As a click on it, which reads both folders.
        for (Node Folder = Branch.Child(); Folder; Folder = Folder.Next()) Before.Below.try_emplace(NameOf(Folder));
    }
    Branch.SetExpanded(false);
    Branch.SetExpanded(true);
    if (!Before.Read || IsRead(Branch))
        Restore(trvDBObjects, Branch, Before, [this](const Node& Folder) { trvDBObjects_Expand(Folder); });

    const Node Now = Follow(Branch, ToSelected);
    trvDBObjects.SetSelectedItem(Now);
    trvDBObjects.ScrollTo(ToTop ? Follow(Branch, *ToTop) : Top, Sideways);
    trvDBObjects_SelChange(Now);
}
