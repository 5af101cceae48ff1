#include "forms/Nodes.h"

#include "automation/RuntimeError.h"

#include <algorithm>
#include <cstddef>

namespace {

const std::wstring Nothing;

// A sum of a Fenwick tree, counted from 1, spans as many slots as the lowest set bit of its position says.
constexpr size_t LowestBit(size_t at) noexcept { return at & (~at + 1); }

}  // namespace

// Kept small, since a tree may hold tens of thousands: shared or rare data lives outside.
struct Node::Item {
    long Uses = 0;
    std::wstring Text;
    const std::wstring* Tag = &Nothing;  // in the owner's tags_
    const std::wstring* Key = &Nothing;  // in the owner's keys_
    Nodes* Owner = nullptr;              // null once the node was removed
    Item* Parent = nullptr;
    Item* First = nullptr;
    Item* Last = nullptr;
    Item* Previous = nullptr;
    Item* Next = nullptr;
    long Children = 0;
    long Order = 0;           // among its siblings, while they are put in order
    bool Disordered = false;  // the children stand in another order in the window
    size_t Slot = 0;
    bool Expanded = false;
    HTREEITEM Mirror = nullptr;
};

// ---- Node

Node::Item& Node::Living() const {
    if (item_ == nullptr) RaiseError(ErrorNumber::ObjectNotSet);
    if (item_->Owner == nullptr) RaiseError(ErrorNumber::ElementNotFound);
    return *item_;
}

void Node::Reference::Hold(Item* item) noexcept {
    if (item != nullptr) ++item->Uses;
}

void Node::Reference::Release(Item* item) noexcept {
    if (item != nullptr && --item->Uses == 0) delete item;
}

Node Node::Of(Item* item) noexcept { return Node(Reference(item)); }

const std::wstring& Node::Text() const { return Living().Text; }

void Node::SetText(const std::wstring& text) const {
    Item& item = Living();
    item.Text = text;
    if (NodeWindow* const window = item.Owner->window_) window->SetMirrorText(item.Mirror, item.Text);
}

const std::wstring& Node::Tag() const { return *Living().Tag; }

void Node::SetTag(std::wstring tag) const {
    Item& item = Living();
    item.Tag = &*item.Owner->tags_.insert(std::move(tag)).first;
}

const std::wstring& Node::Key() const { return *Living().Key; }

short Node::Index() const {
    const Item& item = Living();
    return static_cast<short>(item.Owner->LivingBefore(item.Slot + 1));
}

Node Node::Parent() const { return Of(Living().Parent); }

Node Node::Child() const { return Of(Living().First); }

Node Node::FirstSibling() const {
    const Item& item = Living();
    return Of(item.Owner->FirstBelow(item.Parent));
}

Node Node::LastSibling() const {
    const Item& item = Living();
    return Of(item.Owner->LastBelow(item.Parent));
}

Node Node::Next() const { return Of(Living().Next); }

Node Node::Previous() const { return Of(Living().Previous); }

long Node::Children() const { return Living().Children; }

bool Node::Expanded() const { return Living().Expanded; }

void Node::SetExpanded(bool expanded) const {
    Item& item = Living();
    if (NodeWindow* const window = item.Owner->window_) return window->SetExpanded(*this, expanded);
    item.Expanded = expanded;
}

bool Node::Selected() const {
    const NodeWindow* const window = Living().Owner->window_;
    return window != nullptr && window->SelectedItem() == *this;
}

void Node::EnsureVisible() const {
    const Item& item = Living();
    if (NodeWindow* const window = item.Owner->window_) window->ShowMirror(item.Mirror);
}

// ---- Nodes

Nodes::~Nodes() {
    // References to nodes may be held beyond the tree.
    for (const Slot& slot : slots_) {
        if (!(slot == nullptr)) slot->Owner = nullptr;
    }
}

void Nodes::Adjust(size_t slot, int change) noexcept {
    for (size_t at = slot + 1; at <= sums_.size(); at += LowestBit(at)) sums_[at - 1] += change;
}

long Nodes::LivingBefore(size_t slot) const noexcept {
    long count = 0;
    for (size_t at = slot; at > 0; at -= LowestBit(at)) count += sums_[at - 1];
    return count;
}

void Nodes::Compact() noexcept {
    size_t to = 0;
    for (size_t from = 0; from < slots_.size(); ++from) {
        if (slots_[from] == nullptr) continue;
        slots_[from]->Slot = to;
        if (to != from) slots_[to] = std::move(slots_[from]);
        ++to;
    }
    slots_.erase(slots_.begin() + static_cast<std::ptrdiff_t>(to), slots_.end());
    sums_.erase(sums_.begin() + static_cast<std::ptrdiff_t>(to), sums_.end());
    // Every slot holds one node now.
    for (size_t at = 1; at <= to; ++at) sums_[at - 1] = static_cast<int>(LowestBit(at));
}

Node::Item* Nodes::Relative(const Variant& relative) const {
    if (relative.IsMissing() || relative.IsEmpty()) return nullptr;
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): this collection holds each of its nodes too
    return relative.vt == VT_BSTR ? Item(relative.ToText()).item_.get() : Item(relative.ToLong()).item_.get();
}

// Where the window puts a node. TVI_LAST costs the control less than a named item under Wine, which searches for that
// through all items; Windows walks through the siblings for both. Where they are many and come one after the other, the
// window takes each as its first and is told the order in the end.
HTREEITEM Nodes::PlaceOf(const Node::Item& item, const Node::Item* previous, const Node::Item* last) noexcept {
    if (previous == nullptr) return TVI_FIRST;
    if (previous != last) return previous->Mirror;
    constexpr long Many = 64;
    Node::Item* const parent = item.Parent;
    if (window_ == nullptr || filling_ == 0 || parent == nullptr || parent->Children < Many) return TVI_LAST;
    if (!parent->Disordered) {
        parent->Disordered = true;
        disordered_.push_back(Slot(parent));
    }
    return TVI_FIRST;
}

void Nodes::OrderMirrors() noexcept {
    for (const Slot& parent : disordered_) {
        parent->Disordered = false;
        if (parent->Owner == nullptr) continue;  // removed meanwhile
        long order = 0;
        for (Node::Item* child = parent->First; child != nullptr; child = child->Next) child->Order = order++;
        TVSORTCB sort{};
        sort.hParent = parent->Mirror;
        sort.lpfnCompare = [](LPARAM one, LPARAM other, LPARAM) WINAPI -> int {
            return static_cast<int>(reinterpret_cast<const Node::Item*>(one)->Order -
                                    reinterpret_cast<const Node::Item*>(other)->Order);
        };
        window_->SortMirrors(sort);
    }
    disordered_.clear();
}

// For one more node: what follows in Add cannot fail for want of memory.
void Nodes::MakeRoom() {
    const size_t room = std::max<size_t>(slots_.size() + slots_.size() / 2, 64);
    if (slots_.size() == slots_.capacity()) slots_.reserve(room);
    if (sums_.size() == sums_.capacity()) sums_.reserve(room);
    if (disordered_.size() == disordered_.capacity()) disordered_.reserve(disordered_.size() * 2 + 4);
}

Node::Item*& Nodes::FirstBelow(Node::Item* parent) noexcept { return parent != nullptr ? parent->First : firstRoot_; }

Node::Item*& Nodes::LastBelow(Node::Item* parent) noexcept { return parent != nullptr ? parent->Last : lastRoot_; }

Node Nodes::Add(const Variant& relative, const Variant& relationship, const Variant& key, const std::wstring& text) {
    const std::wstring keyText = key.IsMissing() || key.IsEmpty() ? std::wstring() : key.ToText();
    if (!keyText.empty() && keys_.count(keyText) != 0) RaiseError(ErrorNumber::KeyNotUnique);
    Node::Item* const other = Relative(relative);
    const long relation =
        relationship.IsMissing() || relationship.IsEmpty() ? TreeRelationship::Next : relationship.ToLong();
    if (other == nullptr) return Insert(nullptr, lastRoot_, keyText, text);
    switch (relation) {
        case TreeRelationship::Child:
            return Insert(other, other->Last, keyText, text);
        case TreeRelationship::First:
            return Insert(other->Parent, nullptr, keyText, text);
        case TreeRelationship::Next:
            return Insert(other->Parent, other, keyText, text);
        case TreeRelationship::Previous:
            return Insert(other->Parent, other->Previous, keyText, text);
        default:
            return Insert(other->Parent, LastBelow(other->Parent), keyText, text);
    }
}

Node Nodes::AddChild(const Node& parent, const std::wstring& text) {
    Node::Item& item = parent.Living();
    if (item.Owner != this) RaiseError(ErrorNumber::ElementNotFound);
    return Insert(&item, item.Last, {}, text);
}

// Below `parent` (null: among the roots) after `previous` (null: before all others).
Node Nodes::Insert(Node::Item* parent, Node::Item* previous, const std::wstring& key, const std::wstring& text) {
    const Slot made(new Node::Item);
    made->Text = text;
    made->Parent = parent;
    Node::Item*& first = FirstBelow(parent);
    Node::Item*& last = LastBelow(parent);

    // All that can fail comes before the first link: the window keeps the item's address for as long as it shows it.
    MakeRoom();
    auto named = keys_.end();
    if (!key.empty()) named = keys_.emplace(key, made.get()).first;
    const HTREEITEM after = PlaceOf(*made, previous, last);
    if (window_ != nullptr) {
        made->Mirror = window_->InsertMirror(parent != nullptr ? parent->Mirror : TVI_ROOT, after, made->Text,
                                             reinterpret_cast<LPARAM>(made.get()));
        if (made->Mirror == nullptr) {
            if (named != keys_.end()) keys_.erase(named);
            RaiseError(ErrorNumber::OutOfMemory);
        }
    }

    made->Owner = this;
    made->Previous = previous;
    made->Next = previous != nullptr ? previous->Next : first;
    (previous != nullptr ? previous->Next : first) = made.get();
    (made->Next != nullptr ? made->Next->Previous : last) = made.get();
    if (parent != nullptr) ++parent->Children;

    made->Slot = slots_.size();
    slots_.push_back(made);
    // The new sum: this node, and what stands before it less what stands before the slots that the sum spans.
    const size_t at = slots_.size();
    sums_.push_back(static_cast<int>(1 + LivingBefore(at - 1) - LivingBefore(at - LowestBit(at))));
    ++living_;
    if (named != keys_.end()) made->Key = &named->first;
    return Node(made);
}

Node Nodes::Item(long index) const {
    if (index < 1 || index > living_) RaiseError(ErrorNumber::IndexOutOfBounds);
    size_t step = 1;
    while (step * 2 <= sums_.size()) step *= 2;
    size_t at = 0;
    long rest = index;
    for (; step > 0; step /= 2) {
        if (at + step <= sums_.size() && sums_[at + step - 1] < rest) {
            at += step;
            rest -= sums_[at - 1];
        }
    }
    return Node(slots_[at]);
}

Node Nodes::Item(const std::wstring& key) const {
    const auto found = keys_.find(key);
    if (found == keys_.end()) RaiseError(ErrorNumber::ElementNotFound);
    return Node::Of(found->second);
}

void Nodes::Detach(Node::Item& item) noexcept {
    (item.Previous != nullptr ? item.Previous->Next : FirstBelow(item.Parent)) = item.Next;
    (item.Next != nullptr ? item.Next->Previous : LastBelow(item.Parent)) = item.Previous;
    if (item.Parent != nullptr) --item.Parent->Children;
}

void Nodes::Forget(Node::Item& item) noexcept {
    // Depth first along the links, children before their parent, without recursion or memory. Going down into a node
    // clears its link to its children, so it is removed on the way back up.
    for (Node::Item* next = &item; next != nullptr;) {
        Node::Item* const current = next;
        if (current->First != nullptr) {
            next = std::exchange(current->First, nullptr);
            continue;
        }
        next = current == &item ? nullptr : current->Next != nullptr ? current->Next : current->Parent;
        if (!current->Key->empty()) {
            const auto key = keys_.find(*current->Key);
            current->Key = &Nothing;
            keys_.erase(key);
        }
        current->Owner = nullptr;
        Adjust(current->Slot, -1);
        --living_;
        slots_[current->Slot] = {};  // `current` may be gone after this
    }
    if (slots_.size() > 64 && slots_.size() > static_cast<size_t>(living_) * 2) Compact();
}

void Nodes::Remove(long index) {
    const Node node = Item(index);
    Node::Item& item = *node.item_;
    const HTREEITEM mirror = item.Mirror;
    Detach(item);
    Forget(item);
    if (window_ != nullptr) window_->DeleteMirror(mirror);
}

void Nodes::Clear() {
    while (firstRoot_ != nullptr) {
        Node::Item& root = *firstRoot_;
        Detach(root);
        Forget(root);
    }
    slots_.clear();
    sums_.clear();
    keys_.clear();
    if (window_ != nullptr) window_->DeleteMirror(TVI_ROOT);
}

// ---- NodeWindow

Node NodeWindow::NodeOf(LPARAM node) noexcept { return Node::Of(reinterpret_cast<Node::Item*>(node)); }

bool NodeWindow::IsLiving(const Node& node) noexcept { return node.item_ != nullptr && node.item_->Owner != nullptr; }

HTREEITEM NodeWindow::MirrorOf(const Node& node) { return node.Living().Mirror; }

bool NodeWindow::MarkExpanded(const Node& node, bool expanded) {
    Node::Item& item = node.Living();
    const bool changed = item.Expanded != expanded;
    item.Expanded = expanded;
    return changed;
}
