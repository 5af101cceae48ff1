#include "forms/TreeView.h"

#include <commctrl.h>
#include <uxtheme.h>

#include "forms/Events.h"

namespace {

class Quiet {
public:
    explicit Quiet(bool& flag) noexcept : flag_(flag), before_(flag) { flag_ = true; }
    ~Quiet() { flag_ = before_; }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    bool& flag_;
    bool before_;
};

}  // namespace

void TreeView::Create(HWND container, int id) {
    CreateWindowOf(WC_TREEVIEWW,
                   TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_SHOWSELALWAYS | TVS_DISABLEDRAGDROP | WS_TABSTOP |
                       WS_VISIBLE | WS_CLIPSIBLINGS,
                   WS_EX_CLIENTEDGE, container, id, L"");
}

Node TreeView::SelectedItem() const {
    TVITEMW item{};
    item.mask = TVIF_PARAM | TVIF_HANDLE;
    item.hItem = reinterpret_cast<HTREEITEM>(Send(TVM_GETNEXTITEM, TVGN_CARET));
    if (item.hItem == nullptr || !Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) return {};
    return NodeOf(item.lParam);
}

void TreeView::SetSelectedItem(const Node& node) {
    const Quiet quiet(quiet_);
    Send(TVM_SELECTITEM, TVGN_CARET, node ? reinterpret_cast<LPARAM>(MirrorOf(node)) : 0);
}

void TreeView::SetExpanded(const Node& node, bool expanded) {
    if (!MarkExpanded(node, expanded)) return;
    // The control tells of the first expansion of a branch only: the event is raised here, once, in either case.
    if (expanded && Expand) Expand(node);
    {
        const Quiet quiet(quiet_);
        Send(TVM_EXPAND, expanded ? TVE_EXPAND : TVE_COLLAPSE, reinterpret_cast<LPARAM>(MirrorOf(node)));
    }
    if (!expanded && Collapse) Collapse(node);
}

void TreeView::DeleteMirror(HTREEITEM item) {
    const Quiet quiet(quiet_);
    Send(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(item));
}

bool TreeView::OnReflected(UINT message, WPARAM, LPARAM lParam, LRESULT& result) {
    if (message != WM_NOTIFY) return false;
    const auto& change = *reinterpret_cast<const NMTREEVIEWW*>(lParam);
    switch (change.hdr.code) {
        case TVN_ITEMEXPANDINGW: {
            if (quiet_) return false;
            const Node node = NodeOf(change.itemNew.lParam);
            // Filled while the branch is still closed: an open one is laid out anew with every node. The control asks only for
            // branches that it shows closed, whatever was said of them while they had no children.
            if (change.action == TVE_EXPAND) {
                MarkExpanded(node, true);
                if (Expand) Expand(node);
            }
            result = FALSE;
            return true;
        }
        case TVN_ITEMEXPANDEDW: {
            if (quiet_) return false;
            const Node node = NodeOf(change.itemNew.lParam);
            if (change.action == TVE_COLLAPSE) {
                // Else the control would not ask again when a program opens the branch.
                TVITEMW item{};
                item.mask = TVIF_STATE | TVIF_HANDLE;
                item.hItem = change.itemNew.hItem;
                item.stateMask = TVIS_EXPANDEDONCE;
                Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
                MarkExpanded(node, false);
                if (Collapse) Collapse(node);
            }
            return true;
        }
        case TVN_SELCHANGEDW:
            if (quiet_ || change.action == TVC_UNKNOWN) return false;
            if (NodeClick && change.itemNew.hItem != nullptr) NodeClick(NodeOf(change.itemNew.lParam));
            return true;
        default:
            return false;
    }
}
