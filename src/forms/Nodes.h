#pragma once

#include <windows.h>
#include <commctrl.h>

#include <map>
#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "automation/Variant.h"

class Nodes;
class NodeWindow;

// How a new node stands to its relative.
namespace TreeRelationship {
inline constexpr long First = 0;
inline constexpr long Last = 1;
inline constexpr long Next = 2;
inline constexpr long Previous = 3;
inline constexpr long Child = 4;
}  // namespace TreeRelationship

// A reference to a node of a tree, or to nothing. It stays safe after the node was removed: every use of a removed node
// is error 35601, every use of nothing is error 91.
class Node {
public:
    Node() noexcept = default;

    explicit operator bool() const noexcept { return item_ != nullptr; }
    bool operator==(const Node& other) const noexcept { return item_ == other.item_; }

    const std::wstring& Text() const;
    void SetText(const std::wstring& text) const;
    const std::wstring& Tag() const;
    void SetTag(std::wstring tag) const;
    const std::wstring& Key() const;
    // The position in the collection, from 1: nodes count in the order in which they were added.
    short Index() const;

    // A relative that is not there is nothing.
    Node Parent() const;
    Node Child() const;
    Node FirstSibling() const;
    Node LastSibling() const;
    Node Next() const;
    Node Previous() const;
    long Children() const;

    bool Expanded() const;
    // Opens or closes the branch and raises the tree's Expand or Collapse, also when it has no children to show.
    void SetExpanded(bool expanded) const;
    bool Selected() const;
    void EnsureVisible() const;

private:
    friend class Nodes;
    friend class NodeWindow;
    struct Item;
    // Intrusive, non-atomic count: nodes live on one thread, and loops over large folders copy a reference at each
    // step.
    class Reference {
    public:
        Reference() noexcept = default;
        explicit Reference(Item* item) noexcept : item_(item) { Hold(item_); }
        Reference(const Reference& other) noexcept : Reference(other.item_) {}
        Reference(Reference&& other) noexcept : item_(std::exchange(other.item_, nullptr)) {}
        Reference& operator=(Reference other) noexcept {
            std::swap(item_, other.item_);
            return *this;
        }
        ~Reference() { Release(item_); }
        Item* get() const noexcept { return item_; }
        Item& operator*() const noexcept { return *item_; }
        Item* operator->() const noexcept { return item_; }
        bool operator==(const Reference& other) const noexcept { return item_ == other.item_; }
        bool operator==(std::nullptr_t) const noexcept { return item_ == nullptr; }

    private:
        static void Hold(Item* item) noexcept;
        static void Release(Item* item) noexcept;
        Item* item_ = nullptr;
    };
    explicit Node(Reference item) noexcept : item_(std::move(item)) {}
    Item& Living() const;
    static Node Of(Item* item) noexcept;
    Reference item_;
};

// What shows the nodes of a tree: a mirror of the model, which is never asked for structure or text.
class NodeWindow {
public:
    // A mirror for a node below the mirror `parent` (TVI_ROOT: none), after another one, TVI_FIRST or TVI_LAST. The
    // window knows the node as `node`. Null when it takes no more.
    virtual HTREEITEM InsertMirror(HTREEITEM parent, HTREEITEM after, const std::wstring& text, LPARAM node) = 0;
    virtual void SetMirrorText(HTREEITEM mirror, const std::wstring& text) = 0;
    virtual void SortMirrors(TVSORTCB& order) noexcept = 0;
    virtual void ShowMirror(HTREEITEM mirror) = 0;
    virtual void DeleteMirror(HTREEITEM mirror) = 0;  // with everything below it; TVI_ROOT: all
    virtual void SetExpanded(const Node& node, bool expanded) = 0;
    virtual Node SelectedItem() const = 0;

protected:
    ~NodeWindow() = default;
    // The node behind the number that a mirror was made with.
    static Node NodeOf(LPARAM node) noexcept;
    static bool IsLiving(const Node& node) noexcept;  // not removed
    static HTREEITEM MirrorOf(const Node& node);
    // False when it was marked so before.
    static bool MarkExpanded(const Node& node, bool expanded);
};

// The nodes of a tree: the model, with a window that mirrors it or without one.
class Nodes {
public:
    // The largest collection that a 16-bit Index can address.
    static constexpr long Limit = 32767;

    // `window`: null for a tree that is shown nowhere; else it outlives the nodes.
    explicit Nodes(NodeWindow* window = nullptr) noexcept : window_(window) {}
    ~Nodes();
    Nodes(const Nodes&) = delete;
    Nodes& operator=(const Nodes&) = delete;

    // `relative`: the index or the key of the relative, Missing for a root. `relationship`: a TreeRelationship, Missing
    // means Next. Errors: 35601 no such relative, 35602 the key is in use, 7 the control refused or there is no memory.
    // A failure adds nothing.
    Node Add(const Variant& relative, const Variant& relationship, const Variant& key, const std::wstring& text);
    // Adds a node as the last child of `parent`. Error 35601 when `parent` is not a node of this tree.
    Node AddChild(const Node& parent, const std::wstring& text);
    // While one lives, many nodes may be added after the last of their siblings, each in the same time: the window of
    // the control gets them in another order and is put in order when the outermost one ends, or when it is about to be
    // painted. For branches that do not show yet.
    class Filling {
    public:
        explicit Filling(Nodes& nodes) noexcept : nodes_(nodes) { ++nodes_.filling_; }
        ~Filling() {
            if (--nodes_.filling_ == 0) nodes_.OrderMirrors();
        }
        Filling(const Filling&) = delete;
        Filling& operator=(const Filling&) = delete;

    private:
        Nodes& nodes_;
    };
    // Puts the window of the control in the order of the nodes, when it is not.
    void OrderMirrors() noexcept;

    short Count() const noexcept { return static_cast<short>(living_); }
    // Error 35600 for an index outside 1 to Count, 35601 for a key that is not there.
    Node Item(long index) const;
    Node Item(const std::wstring& key) const;
    // Removes the node and everything below it.
    void Remove(long index);
    void Clear();

private:
    friend class Node;
    using Slot = Node::Reference;

    Node::Item* Relative(const Variant& relative) const;
    void Detach(Node::Item& item) noexcept;
    void Forget(Node::Item& item) noexcept;
    void Adjust(size_t slot, int change) noexcept;
    long LivingBefore(size_t slot) const noexcept;
    void Compact() noexcept;
    void MakeRoom();
    HTREEITEM PlaceOf(const Node::Item& item, const Node::Item* previous, const Node::Item* last) noexcept;
    Node::Item*& FirstBelow(Node::Item* parent) noexcept;
    Node::Item*& LastBelow(Node::Item* parent) noexcept;
    Node Insert(Node::Item* parent, Node::Item* previous, const std::wstring& key, const std::wstring& text);

    NodeWindow* const window_;
    // Slots in the order of adding; a removed node leaves a hole. The sums of a Fenwick tree over them turn a slot into
    // a position number and back, so that nothing is renumbered when a node goes.
    std::vector<Slot> slots_;
    std::vector<int> sums_;
    long living_ = 0;
    std::map<std::wstring, Node::Item*> keys_;
    std::set<std::wstring> tags_;  // each once, however many nodes have it
    Node::Item* firstRoot_ = nullptr;
    Node::Item* lastRoot_ = nullptr;
    int filling_ = 0;
    std::vector<Slot> disordered_;  // whose children stand otherwise in the window
};
