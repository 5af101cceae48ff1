#pragma once

#include <functional>

#include "forms/Control.h"
#include "forms/Nodes.h"

// A hierarchical view of Nodes.
class TreeView : public Control {
public:
    using NodeEvent = std::function<void(const Node&)>;

    void Create(HWND container, int id);

    Nodes& Items() noexcept { return nodes_; }

    // The selected node, or nothing.
    Node SelectedItem() const;
    // Selects a node, or none; raises no NodeClick.
    void SetSelectedItem(const Node& node);

    NodeEvent Expand;     // a branch opens: raised before its children show
    NodeEvent Collapse;   // a branch was closed
    NodeEvent NodeClick;  // a node was chosen by mouse or keyboard; nothing when empty space was clicked

protected:
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

private:
    friend class Node;
    friend class Nodes;
    void SetExpanded(const Node& node, bool expanded);
    void DeleteMirror(HTREEITEM item);
    static Node NodeOf(LPARAM parameter) noexcept;
    static HTREEITEM MirrorOf(const Node& node);
    static bool MarkExpanded(const Node& node, bool expanded);

    Nodes nodes_{*this};
    bool quiet_ = false;  // a change of our own is under way: its notifications are not events
};
