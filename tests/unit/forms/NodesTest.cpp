#include "forms/Nodes.h"

#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "forms/TreeView.h"
#include "support/Errors.h"
#include "support/Shortage.h"
#include "support/TopWindow.h"

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
    long Shown() { return static_cast<long>(View.Send(TVM_GETCOUNT)); }
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

// Each allocation of the filling fails once: the window shows what the model holds, and both go on from there.
TEST(Nodes, AreAddedWhollyOrNotAtAllWhenMemoryIsShort) {
    const Shortage shortage(GetModuleHandleW(nullptr));
    constexpr long Few = 58;  // as many as there is room for at first, nearly
    constexpr long Many = 70;
    long count = 1;
    for (long which = 0; which <= count; ++which) {
        Tree tree;
        const Node root = tree.Root(L"root");
        const std::wstring text(30, L'x');
        const auto add = [&](long at) {
            tree.Items().Add(root.Index(), TreeRelationship::Child, std::to_wstring(at) + L" of many", text);
        };
        for (long at = 0; at < Few; ++at) add(at);
        long failed = 0;
        Shortage::Begin(which, false);
        for (long at = Few; at < Many; ++at) {
            try {
                add(at);
            } catch (const std::bad_alloc&) {
                ++failed;
            } catch (const RuntimeError& error) {
                EXPECT_EQ(ErrorNumber::OutOfMemory, error.Number);
                ++failed;
            }
        }
        if (which == 0) count = Shortage::End();
        Shortage::End();
        ASSERT_EQ(which == 0 ? 0 : 1, failed) << which;
        ASSERT_EQ(1 + Many - failed, tree.Items().Count()) << which;
        ASSERT_EQ(1 + Many - failed, tree.Shown()) << which;
        ASSERT_EQ(Many - failed, root.Children()) << which;
        for (short at = 1; at <= tree.Items().Count(); ++at) ASSERT_EQ(at, tree.Items().Item(at).Index()) << which;
        for (long at = 0; at < Many; ++at) {
            if (NumberOf([&] { tree.Items().Item(std::to_wstring(at) + L" of many"); }) == 0) continue;
            add(at);  // what failed has left no key
        }
        ASSERT_EQ(1 + Many, tree.Items().Count()) << which;
    }
    EXPECT_LT(Many - Few, count);
}

TEST(Nodes, AreRemovedWithoutMemory) {
    const Shortage shortage(GetModuleHandleW(nullptr));
    Tree tree;
    const Node root = tree.Root(L"root", L"a key that is longer than what a string holds without memory");
    Node parent = root;
    for (int depth = 0; depth < 40; ++depth) {
        tree.Child(parent, L"beside");
        parent = tree.Child(parent, L"below");
    }
    const long index = root.Child().Index();
    const long second = root.Child().Next().Index();
    Shortage::Begin(1, true);
    tree.Items().Remove(second);
    tree.Items().Remove(index);
    tree.Items().Clear();
    EXPECT_EQ(0, Shortage::End());
    EXPECT_EQ(0, tree.Items().Count());
    EXPECT_EQ(0, tree.Shown());
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

// The control opens them to bring the item into sight; nobody asked for what they hold, which is there.
TEST(TreeView, KnowsOfBranchesThatOpenForASelection) {
    for (const bool byAProgram : {false, true}) {
        Tree tree;
        const Node root = tree.Root(L"root");
        const Node branch = tree.Child(root, L"branch");
        const Node leaf = tree.Child(branch, L"leaf");
        const Node other = tree.Child(tree.Child(root, L"other branch"), L"other leaf");
        int asked = 0;
        tree.View.Expand = [&](const Node&) { ++asked; };
        tree.View.SetSelectedItem(leaf);
        if (byAProgram) {
            const LRESULT item = tree.View.Send(TVM_GETNEXTITEM, TVGN_CARET);
            tree.View.SetSelectedItem(root);
            branch.SetExpanded(false);
            root.SetExpanded(false);
            asked = 0;
            SendMessageW(tree.View.Handle(), TVM_SELECTITEM, TVGN_CARET, item);
        }
        EXPECT_EQ(leaf, tree.View.SelectedItem());
        const LRESULT shown = tree.View.Send(TVM_GETNEXTITEM, TVGN_PARENT, tree.View.Send(TVM_GETNEXTITEM, TVGN_CARET));
        EXPECT_NE(0, tree.View.Send(TVM_GETITEMSTATE, static_cast<WPARAM>(shown), TVIS_EXPANDED) & TVIS_EXPANDED);
        EXPECT_TRUE(branch.Expanded()) << byAProgram;
        EXPECT_TRUE(root.Expanded()) << byAProgram;
        EXPECT_FALSE(other.Parent().Expanded());
        EXPECT_EQ(0, asked);
        // A program that opens it once more changes nothing, and closing it is told of.
        int closed = 0;
        tree.View.Collapse = [&](const Node& node) { closed += node == branch; };
        branch.SetExpanded(true);
        EXPECT_EQ(0, asked);
        branch.SetExpanded(false);
        EXPECT_EQ(1, closed);
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

namespace {

// How the control is asked to add items, while it lives: the steps that a control takes that walks along the siblings
// up to the one that is named. Windows walks for the last one as well.
class InsertionsWatched {
public:
    InsertionsWatched() {
        const HWND any = CreateWindowExW(0, WC_TREEVIEWW, L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
        before = reinterpret_cast<WNDPROC>(
            SetClassLongPtrW(any, GCLP_WNDPROC, reinterpret_cast<LONG_PTR>(&InsertionsWatched::Procedure)));
        DestroyWindow(any);
        steps = 0;
        refuses = false;
        siblings.clear();
    }
    ~InsertionsWatched() {
        const HWND any = CreateWindowExW(0, WC_TREEVIEWW, L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
        SetClassLongPtrW(any, GCLP_WNDPROC, reinterpret_cast<LONG_PTR>(before));
        DestroyWindow(any);
    }
    InsertionsWatched(const InsertionsWatched&) = delete;
    InsertionsWatched& operator=(const InsertionsWatched&) = delete;
    static long Steps() { return steps; }
    // Whether the control takes no more items.
    static void Refuse(bool refuse) { refuses = refuse; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == TVM_INSERTITEMW) {
            if (refuses) return 0;
            const auto& insert = *reinterpret_cast<const TVINSERTSTRUCTW*>(lParam);
            long& count = siblings[insert.hParent];
            if (insert.hInsertAfter != TVI_FIRST) steps += count;
            ++count;
        }
        return CallWindowProcW(before, window, message, wParam, lParam);
    }
    static inline WNDPROC before;
    static inline long steps;
    static inline bool refuses;
    static inline std::map<HTREEITEM, long> siblings;
};

// The texts of the control's items below one, joined.
std::wstring ShownBelow(const TreeView& view, HTREEITEM parent) {
    std::wstring shown;
    const auto next = [&](WPARAM relation, HTREEITEM item) {
        return reinterpret_cast<HTREEITEM>(view.Send(TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
    };
    for (HTREEITEM item = next(TVGN_CHILD, parent); item != nullptr; item = next(TVGN_NEXT, item)) {
        wchar_t text[50];
        TVITEMW read{};
        read.mask = TVIF_TEXT;
        read.hItem = item;
        read.pszText = text;
        read.cchTextMax = 50;
        view.Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&read));
        shown += std::wstring(text) + L" ";
    }
    return shown;
}

std::wstring TextsBelow(const Node& parent) {
    std::wstring texts;
    for (Node node = parent.Child(); node; node = node.Next()) texts += node.Text() + L" ";
    return texts;
}

}  // namespace

TEST(Nodes, ManyAreAddedWithoutWalkingAlongThem) {
    const InsertionsWatched watched;
    Tree tree;
    const Node root = tree.Root(L"root");
    const auto item = [&] { return reinterpret_cast<HTREEITEM>(tree.View.Send(TVM_GETNEXTITEM, TVGN_ROOT)); };
    constexpr long Many = 3000;
    bool filled = false;
    tree.View.Expand = [&](const Node& node) {
        for (long at = 0; at < Many; ++at) {
            const Node child = tree.Child(node, std::to_wstring(at));
            tree.Child(child, L"a");
            tree.Child(child, L"b");
        }
        // What is put elsewhere than after the last one, and what is removed, while the window has another order.
        tree.Items().Add(root.Child().Index(), TreeRelationship::Previous, Variant::Missing(), L"first");
        tree.Items().Add(root.Child().Next().Index(), TreeRelationship::Next, Variant::Missing(), L"third");
        tree.Items().Remove(root.Child().Next().Next().Next().Index());
        tree.Child(root, L"last");
        filled = true;
    };
    root.SetExpanded(true);
    ASSERT_TRUE(filled);
    EXPECT_LT(watched.Steps(), 3 * Many);
    EXPECT_EQ(Many + 2, root.Children());
    EXPECT_EQ(0U, TextsBelow(root).find(L"first 0 third 2 3 "));
    EXPECT_EQ(TextsBelow(root), ShownBelow(tree.View, item()));
    // A branch that shows takes one at its end as always.
    tree.Child(root, L"later");
    EXPECT_EQ(TextsBelow(root), ShownBelow(tree.View, item()));
}

TEST(Nodes, ANodeThatTheWindowDoesNotTakeLeavesItsKeyFree) {
    const InsertionsWatched watched;
    Tree tree;
    const Node root = tree.Root(L"root");
    const auto add = [&] { tree.Items().Add(root.Index(), TreeRelationship::Child, L"key", L"child"); };
    watched.Refuse(true);
    EXPECT_EQ(ErrorNumber::OutOfMemory, NumberOf(add));
    watched.Refuse(false);
    EXPECT_EQ(1, tree.Items().Count());
    EXPECT_FALSE(root.Child());
    ASSERT_EQ(0, NumberOf(add));
    EXPECT_EQ(root.Child(), tree.Items().Item(std::wstring(L"key")));
    EXPECT_EQ(2, tree.Shown());
}

// A message box in the middle of the filling shows what is there in its order.
TEST(Nodes, TheWindowIsInOrderWheneverItIsPainted) {
    Tree tree;
    const Node root = tree.Root(L"root");
    const auto item = [&] { return reinterpret_cast<HTREEITEM>(tree.View.Send(TVM_GETNEXTITEM, TVGN_ROOT)); };
    std::wstring inTheMiddle;
    tree.View.Expand = [&](const Node& node) {
        for (int at = 0; at < 100; ++at) tree.Child(node, std::to_wstring(at));
        tree.View.Send(WM_SETREDRAW, TRUE);
        EXPECT_EQ(TextsBelow(root), ShownBelow(tree.View, item()));
        for (int at = 100; at < 200; ++at) tree.Child(node, std::to_wstring(at));
        inTheMiddle = ShownBelow(tree.View, item());
    };
    root.SetExpanded(true);
    EXPECT_EQ(200, root.Children());
    EXPECT_NE(TextsBelow(root), inTheMiddle) << "nothing was put off: the test looks at nothing";
    EXPECT_EQ(TextsBelow(root), ShownBelow(tree.View, item()));
}

TEST(Nodes, ABranchMayGoWhileItIsFilled) {
    Tree tree;
    const Node root = tree.Root(L"root");
    const Node branch = tree.Child(root, L"branch");
    tree.View.Expand = [&](const Node& node) {
        for (int at = 0; at < 100; ++at) tree.Child(node, std::to_wstring(at));
        tree.Items().Remove(node.Index());
        tree.Items().Clear();
    };
    NumberOf([&] { branch.SetExpanded(true); });
    EXPECT_EQ(0, tree.Items().Count());
    EXPECT_EQ(0, tree.Shown());
}

// The control selects its first item when the focus comes to it and none is selected.
TEST(TreeView, TheFocusSelectsANodeForTheKeyboardAlone) {
    Tree tree;
    PictureBox other;
    other.Create(tree.Top.Handle(), 9);
    ShowWindow(tree.Top.Top(), SW_SHOWNA);
    tree.View.Move(0, 0, 3000, 3000);
    const Node first = tree.Root(L"A");
    tree.Root(L"B");
    std::vector<std::wstring> told;
    tree.View.SelChange = [&](const Node& node) { told.push_back(node ? node.Text() : L"none"); };
    // By the mouse or a program, which say themselves what is to be selected.
    tree.View.SetFocus();
    EXPECT_TRUE(tree.View.HasFocus());
    EXPECT_FALSE(tree.View.SelectedItem());
    EXPECT_EQ(std::vector<std::wstring>{}, told);
    other.SetFocus();
    // By the Tab key.
    ::SetFocus(tree.View.Handle());
    EXPECT_EQ(first, tree.View.SelectedItem());
    EXPECT_EQ(std::vector<std::wstring>{L"A"}, told);
    other.SetFocus();
    tree.View.SetFocus();
    EXPECT_EQ(first, tree.View.SelectedItem()) << "what was selected stays";
    EXPECT_EQ(1U, told.size());
}
