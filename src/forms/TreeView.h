#pragma once

#include <functional>
#include <optional>

#include "forms/Control.h"
#include "forms/Nodes.h"
#include "forms/Tooltip.h"

// A hierarchical view of Nodes.
class TreeView : public Control, private NodeWindow {
public:
    using NodeEvent = std::function<void(const Node&)>;

    void Create(HWND container, int id);

    Nodes& Items() noexcept { return nodes_; }

    // The selected node, or nothing.
    Node SelectedItem() const override;
    // Selects a node, or none; raises no NodeClick.
    void SetSelectedItem(const Node& node);

    NodeEvent Expand;    // a branch opens: raised before its children show
    NodeEvent Collapse;  // a branch was closed
    // A node was clicked, also one that was selected before, or the keyboard went to it; nothing when empty space was
    // clicked. The node is selected when the button goes down and clicked when it comes up, unless it was dragged
    // meanwhile.
    NodeEvent NodeClick;
    // A node was selected without a click: by another program, such as a screen reader, since the Tab key came to a
    // tree without a selection, since the branch that it was in was closed, or since another one was dragged.
    NodeEvent SelChange;
    // The "*" key was pressed while a node was selected: the receiver calls ExpandAll.
    NodeEvent ExpandAllRequested;

    // What the tip over a node says; empty: its text, where that is cut off.
    std::function<std::wstring(const Node&)> NodeTip;

    // Selects nothing, where the control by itself would select its first node with the focus that comes to it.
    void SetFocus() override;

    // Opens a branch with everything below it, until it is told to stop. What Expand lets out, and a shortage of
    // memory, end it; the branches that were opened until then show open.
    void ExpandAll(const Node& node);
    // Inside ExpandAll: open no further branches.
    void StopExpanding() noexcept { stopExpanding_ = true; }
    // Whether that was called, or Escape pressed, since the last time that much was begun to be read (ExpectStop). The
    // keys that wait are taken out of the queue.
    bool AskedToStop();
    void ExpectStop() noexcept { stopExpanding_ = false; }

    // The first node that shows, or nothing, and how far the tree is scrolled to the right, in pixels.
    Node FirstVisible() const;
    int ScrolledSideways() const noexcept;
    // Makes a node the first one that shows, as far as there are enough below it.
    void ScrollTo(const Node& first, int sideways);

    // While one of these lives the tree refuses what would change it or ask for more: clicks, keys, the start of a
    // drag, and other programs that select, open, close, add or remove. Whoever fills a branch may pump messages in the
    // middle of it, a database driver's login box for one. The program's own calls go on; so does scrolling. Nests.
    class InputRefused {
    public:
        explicit InputRefused(TreeView& tree) noexcept : tree_(tree) { ++tree_.refusing_; }
        ~InputRefused() { --tree_.refusing_; }
        InputRefused(const InputRefused&) = delete;
        InputRefused& operator=(const InputRefused&) = delete;

    private:
        TreeView& tree_;
    };
    bool RefusesInput() const noexcept { return refusing_ > 0; }

    std::wstring DragCaption() const override;  // the selected node
    void SetFont(HFONT font) override;

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    POINT MenuPoint() const override;
    void EndTracking(LPARAM press) override;
    bool HoldsSomething() const override;
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

private:
    HTREEITEM InsertMirror(HTREEITEM parent, HTREEITEM after, const std::wstring& text, LPARAM node) override;
    void SetMirrorText(HTREEITEM mirror, const std::wstring& text) override;
    void SortMirrors(TVSORTCB& order) noexcept override;
    void ShowMirror(HTREEITEM mirror) override;
    void DeleteMirror(HTREEITEM mirror) override;
    void SetExpanded(const Node& node, bool expanded) override;
    // The node of the item that TVM_GETNEXTITEM returns for a relation.
    Node NodeAt(WPARAM relation) const;

    // The node whose text is at a place of the client area, in pixels; `button`: whether it is an expand button
    // instead.
    Node NodeAt(LPARAM point, bool& button) const;
    // Whether the message is input, from the user or from another program, that is refused now.
    bool Refuses(UINT message) const noexcept;
    // What OnMessage answers; nothing: the control does what it does with the message.
    using Answer = std::optional<LRESULT>;
    Answer OnMouse(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnFocus(WPARAM wParam, LPARAM lParam);
    Answer OnKeyDown(WPARAM key);
    // What another program, such as a screen reader, asks of the control: it is to do as the user does.
    Answer FromAProgram(UINT message, WPARAM wParam, LPARAM lParam);
    // Raises SelChange when something else is selected than `before`.
    void TellFrom(const Node& before);
    // In client pixels; false for a node that does not show.
    bool TextPlace(const Node& node, RECT& place) const;
    void RenewTip(LPARAM point);
    void ForgetClick();  // the button comes up elsewhere, or drags

    Nodes nodes_{this};
    Tooltip tip_;
    Node tipped_;  // the one that it is about
    int refusing_ = 0;
    bool clicking_ = false;  // the left button went down on clicked_, or on empty space
    Node clicked_;
    Node before_;  // what was selected when it went down
    bool stopExpanding_ = false;
    bool focusing_ = false;  // the focus comes from the program
    bool quiet_ = false;     // a change of our own is under way: its notifications are not events
};
