#include "forms/Nodes.h"

#include <random>
#include <vector>

#include "Expect.h"
#include "forms/TreeView.h"

namespace {

struct Tree {
    TopWindow Top;
    TreeView View;
    Tree() { View.Create(Top.Handle(), 1); }
    Nodes& Items() { return View.Items(); }
    Node Root(const std::wstring& text, const Variant& key = Variant::Missing()) {
        return Items().Add(Variant::Missing(), Variant::Missing(), key, text);
    }
    Node Child(const Node& parent, const std::wstring& text) {
        return Items().Add(parent.Index(), TreeRelationship::Child, Variant::Missing(), text);
    }
    long Shown() { return static_cast<long>(View.Send(0x1100 + 5 /* TVM_GETCOUNT */)); }
};

}  // namespace

TEST(Nodes, KnowTheirRelatives) {
    Tree tree;
    const Node root = tree.Root(L"Schemas", L"schemas");
    const Node a = tree.Child(root, L"A");
    const Node b = tree.Child(root, L"B");
    const Node c = tree.Child(root, L"C");
    EXPECT_EQ(root, tree.Items().Item(std::wstring(L"schemas")));
    EXPECT_EQ(3, root.Children());
    EXPECT_EQ(a, root.Child());
    EXPECT_EQ(a, c.FirstSibling());
    EXPECT_EQ(c, a.LastSibling());
    EXPECT_EQ(b, a.Next());
    EXPECT_EQ(a, b.Previous());
    EXPECT_FALSE(c.Next());
    EXPECT_FALSE(root.Parent());
    EXPECT_EQ(root, b.Parent());
    EXPECT_EQ(4, tree.Items().Count());
    EXPECT_EQ(4, tree.Shown());
}

TEST(Nodes, RelationshipsOtherThanChild) {
    Tree tree;
    const Node middle = tree.Root(L"middle");
    const auto add = [&](long relationship, const wchar_t* text) {
        return tree.Items().Add(middle.Index(), relationship, Variant::Missing(), text);
    };
    const Node last = add(TreeRelationship::Last, L"last");
    const Node first = add(TreeRelationship::First, L"first");
    const Node next = add(TreeRelationship::Next, L"next");
    const Node previous = add(TreeRelationship::Previous, L"previous");
    std::wstring order;
    for (Node node = middle.FirstSibling(); node; node = node.Next()) order += node.Text() + L" ";
    EXPECT_EQ(L"first previous middle next last ", order);
    EXPECT_EQ(last, middle.LastSibling());
    EXPECT_EQ(first, middle.FirstSibling());
    EXPECT_EQ(next, middle.Next());
    EXPECT_EQ(previous, middle.Previous());
    // The control shows the same order.
    std::wstring shown;
    for (auto item = reinterpret_cast<HTREEITEM>(tree.View.Send(TVM_GETNEXTITEM, TVGN_ROOT)); item != nullptr;
         item =
             reinterpret_cast<HTREEITEM>(tree.View.Send(TVM_GETNEXTITEM, TVGN_NEXT, reinterpret_cast<LPARAM>(item)))) {
        wchar_t text[50];
        TVITEMW read{};
        read.mask = TVIF_TEXT;
        read.hItem = item;
        read.pszText = text;
        read.cchTextMax = 50;
        tree.View.Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&read));
        shown += std::wstring(text) + L" ";
    }
    EXPECT_EQ(order, shown);
}

TEST(Nodes, ARemovedNodeTakesItsBranchAlongAndIsSafeToHold) {
    Tree tree;
    const Node root = tree.Root(L"root", L"key");
    const Node branch = tree.Child(root, L"branch");
    const Node leaf = tree.Child(branch, L"leaf");
    const Node other = tree.Child(root, L"other");
    tree.Items().Remove(branch.Index());
    EXPECT_EQ(2, tree.Items().Count());
    EXPECT_EQ(2, tree.Shown());
    EXPECT_EQ(other, root.Child());
    EXPECT_EQ(2, other.Index());
    EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { leaf.Text(); }));
    EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { branch.Index(); }));
    tree.Items().Clear();
    EXPECT_EQ(0, tree.Items().Count());
    EXPECT_EQ(0, tree.Shown());
    EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { root.Text(); }));
    EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { tree.Items().Item(std::wstring(L"key")); }));
    // The key is free again.
    tree.Root(L"again", L"key");
    EXPECT_EQ(1, tree.Items().Count());
}

TEST(Nodes, ReportWhatIsNotThere) {
    Tree tree;
    tree.Root(L"root", L"key");
    EXPECT_EQ(ErrorNumber::ObjectNotSet, NumberOf([] { Node().Text(); }));
    EXPECT_EQ(ErrorNumber::ObjectNotSet, NumberOf([&] { tree.Items().Item(1).Parent().Text(); }));
    EXPECT_EQ(ErrorNumber::IndexOutOfBounds, NumberOf([&] { tree.Items().Item(0); }));
    EXPECT_EQ(ErrorNumber::IndexOutOfBounds, NumberOf([&] { tree.Items().Item(2); }));
    EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { tree.Items().Item(std::wstring(L"nokey")); }));
    EXPECT_EQ(ErrorNumber::KeyNotUnique, NumberOf([&] { tree.Root(L"second", L"key"); }));
    EXPECT_EQ(1, tree.Items().Count());
}

TEST(Nodes, PositionsFollowTheOrderOfAddingThroughAnyRemovals) {
    Tree tree;
    std::mt19937 random(7);
    std::vector<Node> expected{tree.Root(L"root")};
    for (int round = 0; round < 3000; ++round) {
        if (random() % 3 != 0 || expected.size() < 3) {
            expected.push_back(tree.Child(expected.front(), std::to_wstring(round)));
        } else {
            const size_t at = 1 + random() % (expected.size() - 1);
            tree.Items().Remove(static_cast<long>(at) + 1);
            expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(at));
        }
    }
    ASSERT_EQ(static_cast<short>(expected.size()), tree.Items().Count());
    for (size_t at = 0; at < expected.size(); ++at) {
        ASSERT_EQ(static_cast<short>(at + 1), expected[at].Index());
        ASSERT_EQ(expected[at], tree.Items().Item(static_cast<long>(at) + 1));
    }
}

TEST(Nodes, ABranchOfAnyDepthIsRemoved) {
    Tree tree;
    const Node root = tree.Root(L"root");
    const Node before = tree.Child(root, L"before");
    Node at = tree.Child(root, L"branch");
    const Node branch = at;
    const Node behind = tree.Child(root, L"behind");
    // Wide and deep by turns, with keys.
    std::vector<Node> below;
    for (int depth = 0; depth < 40; ++depth) {
        const short parent = at.Index();
        for (int width = 0; width < depth % 4 + 1; ++width) {
            below.push_back(
                tree.Items().Add(parent, TreeRelationship::Child, std::to_wstring(below.size()) + L"k", L"x"));
        }
        at = below[below.size() - 1 - static_cast<size_t>(depth) % 2 % (static_cast<size_t>(depth) % 4 + 1)];
    }
    tree.Items().Remove(branch.Index());
    EXPECT_EQ(3, tree.Items().Count());
    EXPECT_EQ(3, tree.Shown());
    EXPECT_EQ(behind, before.Next());
    EXPECT_EQ(3, behind.Index());
    for (size_t node = 0; node < below.size(); ++node) {
        EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { below[node].Text(); }));
        EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { tree.Items().Item(std::to_wstring(node) + L"k"); }));
    }
}

TEST(TreeView, ExpandAndCollapseAreRaisedOnceEachTime) {
    Tree tree;
    const Node root = tree.Root(L"root");
    tree.Child(root, L"child");
    int expanded = 0;
    int collapsed = 0;
    tree.View.Expand = [&](const Node& node) { expanded += node == root; };
    tree.View.Collapse = [&](const Node& node) { collapsed += node == root; };
    for (int round = 1; round <= 3; ++round) {
        root.SetExpanded(true);
        root.SetExpanded(true);
        EXPECT_EQ(round, expanded);
        root.SetExpanded(false);
        EXPECT_EQ(round, collapsed);
    }
    // As a user does it, by the keyboard.
    tree.View.SetSelectedItem(root);
    for (int round = 4; round <= 6; ++round) {
        tree.View.Send(WM_KEYDOWN, VK_RIGHT);
        EXPECT_EQ(round, expanded);
        EXPECT_TRUE(root.Expanded());
        tree.View.Send(WM_KEYDOWN, VK_LEFT);
        EXPECT_EQ(round, collapsed);
    }
}

TEST(TreeView, SelectionIsTheModelsNode) {
    Tree tree;
    const Node root = tree.Root(L"root");
    const Node child = tree.Child(root, L"child");
    EXPECT_FALSE(tree.View.SelectedItem());
    tree.View.SetSelectedItem(child);
    EXPECT_EQ(child, tree.View.SelectedItem());
    EXPECT_TRUE(child.Selected());
    tree.View.SetSelectedItem(Node());
    EXPECT_FALSE(tree.View.SelectedItem());
    child.SetText(L"renamed");
    EXPECT_EQ(L"renamed", child.Text());
}
