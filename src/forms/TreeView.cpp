#include "forms/TreeView.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "automation/Scope.h"
#include "forms/Events.h"
#include "forms/NotTopmost.h"
#include "forms/Painting.h"
#include "forms/WaitCursor.h"

void TreeView::Create(HWND container, int id) {
    CreateWindowOf(WC_TREEVIEWW,
                   TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_SHOWSELALWAYS | TVS_DISABLEDRAGDROP |
                       TVS_NOTOOLTIPS | WS_TABSTOP | WS_VISIBLE | WS_CLIPSIBLINGS,
                   WS_EX_CLIENTEDGE, container, id, L"");
}

void TreeView::SetFont(HFONT font) {
    Control::SetFont(font);
    tip_.SetFont(font);
}

// The control's own tips show texts that are cut off and nothing else under Wine; one tip does both everywhere.
void TreeView::RenewTip(LPARAM point) try {
    bool button = false;
    const Node node = NodeAt(point, button);
    if (node == tipped_) return;
    tipped_ = node;
    std::wstring text;
    if (node && IsLiving(node)) {
        if (NodeTip) text = NodeTip(node);
        RECT row{};
        RECT client{};
        GetClientRect(Handle(), &client);
        if (text.empty() && TextPlace(node, row) && (row.left < client.left || row.right > client.right))
            text = node.Text();
    }
    tip_.SetText(Handle(), text);
} catch (...) {
    // Nobody asked for it: a tip that cannot be made is no failure.
}

bool TreeView::TextPlace(const Node& node, RECT& place) const {
    const HTREEITEM item = MirrorOf(node);
    std::memcpy(&place, &item, sizeof item);  // the message takes the item in the place of the first bytes
    return Send(TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&place)) != 0;
}

Node TreeView::NodeAt(WPARAM relation) const {
    TVITEMW item{};
    item.mask = TVIF_PARAM | TVIF_HANDLE;
    item.hItem = reinterpret_cast<HTREEITEM>(Send(TVM_GETNEXTITEM, relation));
    if (item.hItem == nullptr || !Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) return {};
    return NodeOf(item.lParam);
}

Node TreeView::SelectedItem() const { return NodeAt(TVGN_CARET); }

void TreeView::SetSelectedItem(const Node& node) {
    const AutoReset quiet(quiet_, true);
    Send(TVM_SELECTITEM, TVGN_CARET, node ? reinterpret_cast<LPARAM>(MirrorOf(node)) : 0);
    // The control opens the closed branches above an item that it selects, and does not tell of each. Their nodes are
    // there, so Expand is not raised.
    for (Node above = node ? node.Parent() : Node(); above; above = above.Parent()) {
        const auto item = reinterpret_cast<WPARAM>(MirrorOf(above));
        if ((Send(TVM_GETITEMSTATE, item, TVIS_EXPANDED) & TVIS_EXPANDED) != 0) MarkExpanded(above, true);
    }
}

void TreeView::SetExpanded(const Node& node, bool expanded) {
    if (!MarkExpanded(node, expanded)) return;
    const PaintingHeld held(*this);  // filling, opening and closing are laid out once
    const Node before = SelectedItem();
    // The control notifies of the first expansion of a branch only: the event is raised here, once, in either case.
    if (expanded && Expand) {
        const Nodes::Filling filling(nodes_);
        Expand(node);
    }
    {
        const AutoReset quiet(quiet_, true);
        Send(TVM_EXPAND, expanded ? TVE_EXPAND : TVE_COLLAPSE, reinterpret_cast<LPARAM>(MirrorOf(node)));
    }
    if (!expanded && Collapse) Collapse(node);
    if (!expanded) TellFrom(before);
}

// The control validates every handle by searching all its items. What is said of many of them calls its own procedure
// directly: no hook or subclass needs to see these messages.
HTREEITEM TreeView::InsertMirror(HTREEITEM parent, HTREEITEM after, const std::wstring& text, LPARAM node) {
    TVINSERTSTRUCTW insert{};
    insert.hParent = parent;
    insert.hInsertAfter = after;
    insert.item.mask = TVIF_TEXT | TVIF_PARAM;
    insert.item.pszText = const_cast<wchar_t*>(text.c_str());
    insert.item.lParam = node;
    return reinterpret_cast<HTREEITEM>(Original(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

void TreeView::SortMirrors(TVSORTCB& order) noexcept {
    Original(TVM_SORTCHILDRENCB, 0, reinterpret_cast<LPARAM>(&order));
}

void TreeView::SetMirrorText(HTREEITEM mirror, const std::wstring& text) {
    TVITEMW change{};
    change.mask = TVIF_TEXT;
    change.hItem = mirror;
    change.pszText = const_cast<wchar_t*>(text.c_str());
    Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&change));
}

void TreeView::ShowMirror(HTREEITEM mirror) { Send(TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(mirror)); }

void TreeView::DeleteMirror(HTREEITEM mirror) {
    const AutoReset quiet(quiet_, true);
    Send(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(mirror));
}

Node TreeView::NodeAt(LPARAM point, bool& button) const {
    TVHITTESTINFO hit{};
    hit.pt = {GET_X_LPARAM(point), GET_Y_LPARAM(point)};
    Send(TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    button = (hit.flags & TVHT_ONITEMBUTTON) != 0;
    if (hit.hItem == nullptr || (hit.flags & TVHT_ONITEM) == 0) return {};
    TVITEMW item{};
    item.mask = TVIF_PARAM | TVIF_HANDLE;
    item.hItem = hit.hItem;
    return Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)) ? NodeOf(item.lParam) : Node();
}

void TreeView::SetFocus() {
    const bool selected = static_cast<bool>(SelectedItem());
    Events::Call call;
    focusing_ = true;
    ::SetFocus(Handle());
    focusing_ = false;
    if (!selected && SelectedItem()) SetSelectedItem({});
    call.Rethrow();
}

std::wstring TreeView::DragCaption() const {
    const Node selected = SelectedItem();
    return selected ? selected.Text() : std::wstring();
}

void TreeView::EndTracking(LPARAM) { ForgetClick(); }

bool TreeView::HoldsSomething() const { return clicking_ && clicked_; }

void TreeView::TellFrom(const Node& before) {
    const Node now = SelectedItem();
    if (SelChange && !(now == before)) SelChange(now);
}

void TreeView::ForgetClick() {
    if (!clicking_) return;
    clicking_ = false;
    clicked_ = Node();
    TellFrom(std::exchange(before_, Node()));
}

POINT TreeView::MenuPoint() const {
    const Node selected = SelectedItem();
    if (!selected) return Control::MenuPoint();
    RECT row{};
    if (!TextPlace(selected, row)) return Control::MenuPoint();
    RECT client;
    GetClientRect(Handle(), &client);
    POINT point{std::clamp(row.left, client.left, client.right), std::clamp(row.bottom, client.top, client.bottom)};
    ClientToScreen(Handle(), &point);
    return point;
}

bool TreeView::AskedToStop() {
    if (stopExpanding_ || HIWORD(GetQueueStatus(QS_KEY)) == 0) return stopExpanding_;
    MSG key;
    while (PeekMessageW(&key, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE)) {
        if (key.message == WM_QUIT) {
            // WM_QUIT passes every message filter and belongs to the program's own loop.
            PostQuitMessage(static_cast<int>(key.wParam));
            stopExpanding_ = true;
            break;
        }
        if (key.message == WM_KEYDOWN && key.wParam == VK_ESCAPE) stopExpanding_ = true;
    }
    return stopExpanding_;
}

Node TreeView::FirstVisible() const { return NodeAt(TVGN_FIRSTVISIBLE); }

int TreeView::ScrolledSideways() const noexcept { return GetScrollPos(Handle(), SB_HORZ); }

void TreeView::ScrollTo(const Node& first, int sideways) {
    if (first) {
        const AutoReset quiet(quiet_, true);
        Send(TVM_SELECTITEM, TVGN_FIRSTVISIBLE, reinterpret_cast<LPARAM>(MirrorOf(first)));
    }
    Send(WM_HSCROLL, MAKEWPARAM(SB_THUMBPOSITION, sideways));
}

// The control's own "*" goes on whatever happens, and cannot be interrupted.
void TreeView::ExpandAll(const Node& node) {
    ExpectStop();
    const WaitCursor wait;
    const NotTopmost notTopmost;  // once, however many branches are read
    const PaintingHeld held(*this);
    std::vector<Node> waiting{node};
    std::vector<Node> opened;
    const auto show = [&] {
        // From the innermost outwards: a branch that does not show yet costs no layout.
        const AutoReset quiet(quiet_, true);
        for (auto branch = opened.rbegin(); branch != opened.rend(); ++branch) {
            if (IsLiving(*branch)) Send(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(MirrorOf(*branch)));
        }
    };
    const ScopeExit shown([&]() noexcept { Events::Raise(show); });
    while (!waiting.empty() && !stopExpanding_) {
        const Node next = waiting.back();
        waiting.pop_back();
        if (!IsLiving(next) || next.Children() == 0) continue;
        opened.push_back(next);
        if (MarkExpanded(next, true) && Expand) {
            const Nodes::Filling filling(nodes_);
            Expand(next);
        }
        if (!IsLiving(next)) continue;
        std::vector<Node> below;
        for (Node child = next.Child(); child; child = child.Next()) below.push_back(child);
        waiting.insert(waiting.end(), below.rbegin(), below.rend());
        AskedToStop();
    }
}

bool TreeView::Refuses(UINT message) const noexcept {
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_LBUTTONUP:
        case WM_RBUTTONDOWN:
        case WM_RBUTTONDBLCLK:
        case WM_RBUTTONUP:
        case WM_MOUSEMOVE:
        case WM_CONTEXTMENU:
        case WM_KEYDOWN:
        case WM_CHAR:
            return RefusesInput();
        case TVM_EXPAND:
        case TVM_SELECTITEM:
            return RefusesInput() && !quiet_;
        default:
            return false;
    }
}

LRESULT TreeView::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (Refuses(message)) {
        // The button came up, and the node it was pressed on may be gone.
        if (message == WM_LBUTTONUP && clicking_) {
            clicking_ = false;
            clicked_ = {};
            if (GetCapture() == Handle()) ReleaseCapture();
        }
        return 0;
    }
    if (message == WM_MOUSEMOVE) {
        RenewTip(lParam);
        tip_.OnMouse(message, wParam, lParam);
    }
    Answer answer;
    switch (message) {
        case WM_SETREDRAW:
            if (wParam != 0) nodes_.OrderMirrors();
            break;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP:
        case WM_MOUSEMOVE:
        case WM_CAPTURECHANGED:
        case WM_RBUTTONDOWN:
            answer = OnMouse(message, wParam, lParam);
            break;
        case WM_SETFOCUS:
            return OnFocus(wParam, lParam);
        case WM_KEYDOWN:
            answer = OnKeyDown(wParam);
            break;
        case WM_CHAR:
            // Keys with a meaning of their own are not looked for among the texts.
            if (wParam == L'*' || wParam == L' ' || wParam == L'\r') return 0;
            break;
        case TVM_EXPAND:
        case TVM_DELETEITEM:
        case TVM_SELECTITEM:
            if (!quiet_) answer = FromAProgram(message, wParam, lParam);
            break;
        case TVM_SETITEMA:
        case TVM_SETITEMW:
            // An item's parameter leads to its node.
            if (lParam == 0 || (reinterpret_cast<const TVITEMW*>(lParam)->mask & TVIF_PARAM) != 0) return FALSE;
            break;
        default:
            break;
    }
    return answer ? *answer : Control::OnMessage(message, wParam, lParam);
}

TreeView::Answer TreeView::OnMouse(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_LBUTTONDOWN: {
            // By default the control waits for the button in its own loop and reports a click before or after it
            // selects, depending on its version. Expand buttons are left to the control.
            bool button = false;
            const Node node = NodeAt(lParam, button);
            clicking_ = false;
            if (button) return {};
            RaiseMouse(MouseDown, MouseButton::Left, lParam);
            SetFocus();
            before_ = SelectedItem();
            clicked_ = node;
            clicking_ = true;
            if (node) SetSelectedItem(node);
            SetCapture(Handle());
            return 0;
        }
        case WM_LBUTTONUP: {
            if (!clicking_) return {};
            clicking_ = false;
            before_ = Node();
            const Node node = std::exchange(clicked_, Node());
            if (GetCapture() == Handle()) ReleaseCapture();
            RaiseMouse(MouseUp, MouseButton::Left, lParam);
            if (NodeClick) NodeClick(node);
            return 0;
        }
        case WM_MOUSEMOVE:
            if (!clicking_) return {};
            RaiseMouse(MouseMove, MouseButtons(wParam), lParam);
            return 0;
        case WM_RBUTTONDOWN:
            // The control would run its own wait loop here too.
            SetFocus();
            RaiseMouse(MouseDown, MouseButton::Right, lParam);
            return 0;
        default:  // WM_CAPTURECHANGED
            if (reinterpret_cast<HWND>(lParam) != Handle()) ForgetClick();
            return {};
    }
}

LRESULT TreeView::OnFocus(WPARAM wParam, LPARAM lParam) {
    const bool selected = static_cast<bool>(SelectedItem());
    LRESULT result;
    {
        const AutoReset quiet(quiet_, true);
        result = Control::OnMessage(WM_SETFOCUS, wParam, lParam);
    }
    if (!selected && !focusing_ && SelChange) {
        if (const Node first = SelectedItem()) SelChange(first);
    }
    return result;
}

TreeView::Answer TreeView::OnKeyDown(WPARAM key) {
    const Node selected = SelectedItem();
    if (key >= VK_PRIOR && key <= VK_DOWN && !selected) {
        // Nothing to move from: the keys begin at the first node.
        if (nodes_.Count() == 0) return {};
        const Node first = nodes_.Item(1).FirstSibling();
        SetSelectedItem(first);
        if (NodeClick) NodeClick(first);
        return 0;
    }
    if (key == VK_MULTIPLY) {
        if (selected && ExpandAllRequested) ExpandAllRequested(selected);
        return 0;
    }
    if (key == VK_RETURN || key == VK_SPACE) {
        // What a click on the selected node is to the mouse.
        if (selected && NodeClick) NodeClick(selected);
        return 0;
    }
    return {};
}

TreeView::Answer TreeView::FromAProgram(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case TVM_EXPAND: {
            // The control itself tells of it at the first time alone, and not of closing.
            if (lParam == 0) return {};
            TVITEMW item{};
            item.mask = TVIF_PARAM | TVIF_STATE | TVIF_HANDLE;
            item.hItem = reinterpret_cast<HTREEITEM>(lParam);
            item.stateMask = TVIS_EXPANDED;
            const WPARAM action = wParam & TVE_TOGGLE;
            if (action == 0 || !Original(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) return {};
            const bool shown = (item.state & TVIS_EXPANDED) != 0;
            const bool open = action == TVE_TOGGLE ? !shown : action == TVE_EXPAND;
            if (open == shown) return FALSE;
            const Node node = NodeOf(item.lParam);
            MarkExpanded(node, !open);
            SetExpanded(node, open);
            return TRUE;
        }
        case TVM_DELETEITEM:
            // Items come and go with their nodes alone.
            return FALSE;
        case TVM_SELECTITEM: {
            if (wParam != TVGN_CARET) return {};
            const Node before = SelectedItem();
            LRESULT result;
            {
                const AutoReset quiet(quiet_, true);
                Events::Call call;
                result = Original(message, wParam, lParam);
                call.Rethrow();
            }
            const Node after = SelectedItem();
            if (after) SetSelectedItem(after);  // for the branches above it
            if (SelChange && !(after == before)) SelChange(after);
            return result;
        }
        default:
            return {};
    }
}

bool TreeView::OnReflected(UINT message, WPARAM, LPARAM lParam, LRESULT& result) {
    if (message != WM_NOTIFY) return false;
    const auto& change = *reinterpret_cast<const NMTREEVIEWW*>(lParam);
    switch (change.hdr.code) {
        case TVN_ITEMEXPANDINGW: {
            if (quiet_) return false;
            result = RefusesInput();  // TRUE: the branch stays as it is
            if (RefusesInput()) return true;
            const Node node = NodeOf(change.itemNew.lParam);
            // Filled while the branch is still closed: an open one is laid out again with every node. The control asks
            // only for branches that it shows closed, whatever was said of them while they had no children.
            if (change.action == TVE_EXPAND) {
                MarkExpanded(node, true);
                const Nodes::Filling filling(nodes_);
                if (Expand) Expand(node);
            }
            // The control goes on with the item that it asked for, which may have been removed meanwhile.
            result = !IsLiving(node);
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
                const Node before = SelectedItem();
                if (Collapse) Collapse(node);
                TellFrom(before);  // it may have been among what was thrown away
            }
            return true;
        }
        case TVN_SELCHANGEDW:
            if (quiet_) return false;
            if (change.action == TVC_BYKEYBOARD) {
                if (NodeClick && change.itemNew.hItem != nullptr) NodeClick(NodeOf(change.itemNew.lParam));
            } else if (SelChange) {
                // The mouse is told of in OnMessage. A selection that moves because its branch was closed is nobody's
                // choice, and no click.
                SelChange(change.itemNew.hItem != nullptr ? NodeOf(change.itemNew.lParam) : Node());
            }
            return true;
        default:
            return false;
    }
}
