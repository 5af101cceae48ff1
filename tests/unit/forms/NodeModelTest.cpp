#include "forms/Nodes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/Errors.h"
#include "support/Shortage.h"

// The nodes of a tree that no window shows. (With one: NodesTest.cpp.)

namespace {

Node AddRoot(Nodes& tree, const std::wstring& text, const Variant& key = Variant::Missing()) {
    return tree.Add(Variant::Missing(), Variant::Missing(), key, text);
}

}  // namespace

TEST(Nodes, ReportWhatIsNotThere) {
    Nodes tree;
    AddRoot(tree, L"root", L"key");
    EXPECT_EQ(ErrorNumber::ObjectNotSet, NumberOf([] { Node().Text(); }));
    EXPECT_EQ(ErrorNumber::ObjectNotSet, NumberOf([&] { tree.Item(1).Parent().Text(); }));
    EXPECT_EQ(ErrorNumber::IndexOutOfBounds, NumberOf([&] { tree.Item(0); }));
    EXPECT_EQ(ErrorNumber::IndexOutOfBounds, NumberOf([&] { tree.Item(2); }));
    EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { tree.Item(std::wstring(L"nokey")); }));
    EXPECT_EQ(ErrorNumber::KeyNotUnique, NumberOf([&] { AddRoot(tree, L"second", L"key"); }));
    EXPECT_EQ(1, tree.Count());
}

TEST(Nodes, PositionsFollowTheOrderOfAddingThroughAnyRemovals) {
    Nodes tree;
    std::mt19937 random(7);
    std::vector<Node> expected{AddRoot(tree, L"root")};
    for (int round = 0; round < 3000; ++round) {
        if (random() % 3 != 0 || expected.size() < 3) {
            expected.push_back(tree.AddChild(expected.front(), std::to_wstring(round)));
        } else {
            const size_t at = 1 + random() % (expected.size() - 1);
            tree.Remove(static_cast<long>(at) + 1);
            expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(at));
        }
    }
    ASSERT_EQ(static_cast<short>(expected.size()), tree.Count());
    for (size_t at = 0; at < expected.size(); ++at) {
        ASSERT_EQ(static_cast<short>(at + 1), expected[at].Index());
        ASSERT_EQ(expected[at], tree.Item(static_cast<long>(at) + 1));
    }
}

TEST(Nodes, ABranchOfAnyDepthIsRemoved) {
    Nodes tree;
    const Node root = AddRoot(tree, L"root");
    const Node before = tree.AddChild(root, L"before");
    Node at = tree.AddChild(root, L"branch");
    const Node branch = at;
    const Node behind = tree.AddChild(root, L"behind");
    // Wide and deep by turns, with keys.
    std::vector<Node> below;
    for (int depth = 0; depth < 40; ++depth) {
        const short parent = at.Index();
        for (int width = 0; width < depth % 4 + 1; ++width) {
            below.push_back(tree.Add(parent, TreeRelationship::Child, std::to_wstring(below.size()) + L"k", L"x"));
        }
        at = below[below.size() - 1 - static_cast<size_t>(depth) % 2 % (static_cast<size_t>(depth) % 4 + 1)];
    }
    tree.Remove(branch.Index());
    EXPECT_EQ(3, tree.Count());
    EXPECT_EQ(behind, before.Next());
    EXPECT_EQ(3, behind.Index());
    for (size_t node = 0; node < below.size(); ++node) {
        EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { below[node].Text(); }));
        EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { tree.Item(std::to_wstring(node) + L"k"); }));
    }
}

TEST(Nodes, AChildOfANodeIsItsLast) {
    Nodes tree;
    const Node root = AddRoot(tree, L"root");
    const Node first = tree.AddChild(root, L"first");
    const Node last = tree.AddChild(root, L"last");
    EXPECT_EQ(root, last.Parent());
    EXPECT_EQ(first, root.Child());
    EXPECT_EQ(last, first.Next());
    EXPECT_EQ(last, first.LastSibling());
    EXPECT_EQ(first, last.FirstSibling());
    EXPECT_EQ(2, root.Children());
    EXPECT_EQ(3, last.Index());
    EXPECT_EQ(last, tree.Item(3));
    EXPECT_EQ(L"", last.Tag());
    EXPECT_EQ(L"", last.Key());
    // The two doors are one.
    const Node other = tree.Add(root.Index(), TreeRelationship::Child, L"key", L"other");
    EXPECT_EQ(other, last.Next());
    EXPECT_EQ(other, tree.Item(std::wstring(L"key")));
}

TEST(Nodes, AChildNeedsALivingParentOfItsTree) {
    Nodes tree;
    Nodes another;
    const Node root = AddRoot(tree, L"root");
    const Node gone = tree.AddChild(root, L"gone");
    tree.Remove(gone.Index());
    EXPECT_EQ(ErrorNumber::ObjectNotSet, NumberOf([&] { tree.AddChild({}, L"text"); }));
    EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { tree.AddChild(gone, L"text"); }));
    EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { another.AddChild(root, L"text"); }));
    EXPECT_EQ(1, tree.Count());
    EXPECT_EQ(0, another.Count());
}

TEST(Nodes, AreAllThereWithoutAWindow) {
    Nodes tree;
    const Node root = AddRoot(tree, L"root");
    root.SetText(L"renamed");
    root.SetTag(L"tag");
    EXPECT_EQ(L"renamed", root.Text());
    EXPECT_EQ(L"tag", root.Tag());
    EXPECT_FALSE(root.Expanded());
    root.SetExpanded(true);
    EXPECT_TRUE(root.Expanded());
    EXPECT_FALSE(root.Selected());
    root.EnsureVisible();
    {
        // As the reading of a large folder does it.
        const Nodes::Filling filling(tree);
        for (int at = 0; at < 100; ++at) tree.AddChild(root, std::to_wstring(at));
    }
    int at = 0;
    for (Node child = root.Child(); child; child = child.Next()) EXPECT_EQ(std::to_wstring(at++), child.Text());
    EXPECT_EQ(100, at);
    tree.Clear();
    EXPECT_EQ(0, tree.Count());
    EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { root.Expanded(); }));
}

TEST(Nodes, TheLastThatAnIndexCanSayIsFound) {
    Nodes tree;
    const Node root = AddRoot(tree, L"root");
    Node last = root;
    while (tree.Count() < Nodes::Limit) last = tree.AddChild(root, L"child");
    EXPECT_EQ(Nodes::Limit, last.Index());
    EXPECT_EQ(last, tree.Item(Nodes::Limit));
    EXPECT_EQ(last, root.Child().LastSibling());
    tree.Remove(2);
    EXPECT_EQ(Nodes::Limit - 1, last.Index());
}

TEST(Nodes, OutliveTheirTree) {
    Node held;
    {
        Nodes tree;
        held = AddRoot(tree, L"root");
    }
    EXPECT_EQ(ErrorNumber::ElementNotFound, NumberOf([&] { held.Text(); }));
}

// What a tree that is filled and emptied all day takes is what the nodes take that it holds.
TEST(Nodes, ThePlacesOfRemovedNodesAreUsedAgain) {
    Nodes tree;
    const Node root = AddRoot(tree, L"root");
    const auto round = [&] {
        const Node branch = tree.AddChild(root, L"branch");
        for (int at = 0; at < 100; ++at) tree.AddChild(branch, L"leaf");
        tree.Remove(branch.Index());
    };
    for (int rounds = 0; rounds < 5; ++rounds) round();
    const Shortage counted(GetModuleHandleW(nullptr));
    Shortage::Begin(0, false);
    round();
    const long usual = Shortage::End();
    EXPECT_LT(100, usual);
    for (int rounds = 0; rounds < 200; ++rounds) {
        Shortage::Begin(0, false);
        round();
        ASSERT_EQ(usual, Shortage::End()) << rounds;
    }
    EXPECT_EQ(1, tree.Count());
}
