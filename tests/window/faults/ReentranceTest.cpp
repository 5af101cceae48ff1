#include <windows.h>
#include <commctrl.h>

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "FaultyHost.h"
#include "support/Menus.h"

// A host that lets messages through while it is asked: a driver's login box, a progress window, DoEvents. What the user
// or another program does to the tree and the menus meanwhile changes nothing, and all of it works again afterwards.

namespace {

// Everything that the tree shows, branch by branch.
std::wstring WholeTree(const EditorTree& tree, HTREEITEM item, int depth = 0) {
    std::wstring text;
    for (; item != nullptr; item = tree.Next(TVGN_NEXT, item)) {
        text += std::wstring(static_cast<size_t>(depth), L' ') + tree.Text(item) + L"\n";
        text += WholeTree(tree, tree.Next(TVGN_CHILD, item), depth + 1);
    }
    return text;
}

// Chooses every entry of the Action menu that can be chosen.
void ChooseAllActions(HMENU menu = GetSubMenu(GetMenu(EditorWindow::Find()), 2)) {
    for (int at = 0; at < GetMenuItemCount(menu); ++at) {
        if ((GetMenuState(menu, static_cast<UINT>(at), MF_BYPOSITION) & (MF_GRAYED | MF_DISABLED)) != 0) continue;
        if (const HMENU below = GetSubMenu(menu, at)) {
            ChooseAllActions(below);
        } else {
            SendMessageW(EditorWindow::Find(), WM_COMMAND, GetMenuItemID(menu, at), 0);
        }
    }
}

// The window is closed whatever comes of the step in it.
struct Closing {
    ~Closing() { EditorWindow::Close(); }
};

struct ReadingStep {
    const char* Name;
    void (*Prepare)(const EditorTree& tree);
    void (*Act)(const EditorTree& tree);
};

constexpr ReadingStep ReadingSteps[] = {
    {"open the root",
     [](const EditorTree& tree) {
         tree.Click(tree.At({}));
         tree.Shut(tree.At({}));
     },
     [](const EditorTree& tree) { tree.Open(tree.At({})); }},
    {"click the root", OpenTables, [](const EditorTree& tree) { tree.Click(tree.At({})); }},
    {"open Tables", OpenSchema,
     [](const EditorTree& tree) {
         tree.Open(tree.At({0, 0}));
     }},
    {"click a schema", OpenTables, [](const EditorTree& tree) { tree.Click(tree.At({0})); }},
    {"open a table", OpenTables,
     [](const EditorTree& tree) {
         tree.Open(tree.At({0, 0, 0}));
     }},
    {"click a table", OpenTables,
     [](const EditorTree& tree) {
         tree.Click(tree.At({0, 0, 0}));
     }},
    {"open everything",
     [](const EditorTree& tree) {
         OpenSchema(tree);
         tree.Select(tree.At({0}));
     },
     [](const EditorTree& tree) { tree.Key(VK_MULTIPLY); }},
    {"count rows of a table", SelectTable, [](const EditorTree&) { EditorWindow::Choose(L"Action", L"Count rows"); }},
    {"insert into a table", SelectTable, [](const EditorTree&) { EditorWindow::Choose(L"Action", L"Insert"); }},
    {"sample rows of all tables", SelectTables,
     [](const EditorTree&) { EditorWindow::Choose(L"Action", L"Sample rows from all tables"); }},
};

// What happens while the host is asked.
struct Touch {
    const char* Name;
    void (*Do)(const EditorTree& tree);
};

void Post(const EditorTree& tree, UINT message, WPARAM wParam, LPARAM lParam) {
    PostMessageW(tree.Handle(), message, wParam, lParam);
}

constexpr Touch Touches[] = {
    {"nothing", [](const EditorTree&) {}},
    {"click the root", [](const EditorTree& tree) { tree.Click(tree.At({})); }},
    {"shut the root", [](const EditorTree& tree) { tree.Shut(tree.At({})); }},
    {"shut the schema", [](const EditorTree& tree) { tree.Shut(tree.At({0})); }},
    {"open Tables again",
     [](const EditorTree& tree) {
         tree.Open(tree.At({0, 0}));
     }},
    {"toggle Tables as a screen reader does",
     [](const EditorTree& tree) {
         const HTREEITEM tables = tree.At({0, 0});
         SendMessageW(tree.Handle(), TVM_EXPAND, TVE_TOGGLE, reinterpret_cast<LPARAM>(tables));
         SendMessageW(tree.Handle(), TVM_EXPAND, TVE_COLLAPSE | TVE_COLLAPSERESET, reinterpret_cast<LPARAM>(tables));
     }},
    {"open everything", [](const EditorTree& tree) { tree.Key(VK_MULTIPLY); }},
    {"keys that are typed",
     [](const EditorTree& tree) {
         for (const WPARAM key : {VK_LEFT, VK_LEFT, VK_RETURN, VK_DOWN, VK_RIGHT, VK_ADD, VK_SUBTRACT}) {
             Post(tree, WM_KEYDOWN, key, 1);
             Post(tree, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
         }
     }},
    {"another selection",
     [](const EditorTree& tree) {
         SendMessageW(tree.Handle(), TVM_SELECTITEM, TVGN_CARET,
                      static_cast<LPARAM>(SendMessageW(tree.Handle(), TVM_GETNEXTITEM, TVGN_ROOT, 0)));
     }},
    {"items taken away by another program",
     [](const EditorTree& tree) {
         SendMessageW(tree.Handle(), TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(tree.At({})));
         SendMessageW(tree.Handle(), TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
     }},
    {"a menu entry", [](const EditorTree&) { ChooseAllActions(); }},
    {"a right click",
     [](const EditorTree& tree) {
         const MenuCatcher menus;
         tree.RightClick(tree.At({}));
         EXPECT_EQ(0, menus.Menus);
     }},
    {"a double click",
     [](const EditorTree& tree) {
         Post(tree, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(30, 8));
         Post(tree, WM_LBUTTONUP, 0, MAKELPARAM(30, 8));
         Post(tree, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(30, 8));
         Post(tree, WM_LBUTTONUP, 0, MAKELPARAM(30, 8));
     }},
};

class ReentranceTest : public FaultyHostFixture {
protected:
    struct State {
        std::wstring Tree;
        std::wstring Inserted;
    };
    State StateNow() const { return {WholeTree(Tree, Tree.At({})), Beside(EditorWindow::Text())}; }
    State Run(const ReadingStep& step) {
        EditorWindow::SetText(L"-- mine");
        step.Prepare(Tree);
        Wanted.Arm(wanted_);
        step.Act(Tree);
        Wanted.Disarm();
        Pump();
        return StateNow();
    }
    std::optional<Case> wanted_;
};

}  // namespace

TEST_F(ReentranceTest, WhatIsDoneToTheTreeWhileTheHostIsAskedChangesNothing) {
    // Schemas are written, which the builders take from the tree.
    Database.Members[L"DBType"] = [](const Arguments&) { return Variant(8L); };
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", MakeHost());
    int cases = 0;
    int next = 0;
    WhenShown::Limit = 300000;  // the cases themselves are watched
    std::wstring text = L"x";
    const WhenShown shown([&] {
        const Closing closing;
        for (const ReadingStep& step : ReadingSteps) {
            Wanted.Inside = nullptr;
            wanted_.reset();
            const State right = Run(step);
            // Each call that the step makes, the first and the last of its name.
            std::map<std::wstring, int> calls;
            for (const std::wstring& call : Wanted.Calls()) ++calls[call];
            ASSERT_FALSE(calls.empty());
            for (const auto& [call, count] : calls) {
                for (const int occurrence : std::set<int>{1, count}) {
                    for (const Touch& touch : Touches) {
                        const std::string name = std::string(step.Name) + ", in call " + std::to_string(occurrence) +
                                                 " of " + std::string(call.begin(), call.end()) + ": " + touch.Name;
                        // A test run has time for some: each call of each step, each thing that is done in some call.
                        if (next++ % (occurrence == 1 ? 7 : 23) != 0 && !EveryCase()) continue;
                        if (!IsChosen(static_cast<size_t>(next), 1, 4)) continue;
                        SCOPED_TRACE(name);
                        Dog.Begin(name);
                        ++cases;
                        Wanted.Inside = [&](Fault) {
                            touch.Do(Tree);
                            Pump();
                        };
                        wanted_ = Case{call, occurrence, Fault::Reenters};
                        const State state = Run(step);
                        EXPECT_EQ(1, Wanted.Injected());
                        EXPECT_EQ(right.Tree, state.Tree);
                        EXPECT_EQ(right.Inserted, state.Inserted);
                        EXPECT_EQ(L"", Errors.Places());
                        Errors.Forget();
                        ASSERT_FALSE(HasFailure());
                    }
                }
            }
        }
    });
    editor.Call(L"Display", ByRef(text));
    WhenShown::Limit = 60000;
    std::printf("re-entrance: %d cases\n", cases);
}

TEST_F(ReentranceTest, WhatIsDoneToTheTreeWhileAFailureIsShownChangesNothing) {
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", MakeHost());
    std::wstring text = L"x";
    const WhenShown shown([&] {
        const Closing closing;
        // The error component's alert lets messages through.
        int reports = 0;
        std::wstring right;  // as the first of them leaves it, which does nothing
        OpenTables(Tree);    // a root that is open already is entered by the key that opens it
        for (const Touch& touch : Touches) {
            SCOPED_TRACE(touch.Name);
            Dog.Begin(touch.Name);
            OpenTables(Tree);
            Tree.Shut(Tree.At({0, 0}));
            // The second of three tables fails while the branch is read, and the report lets the user in.
            Wanted.Arm(Case{L"Objects.Item", 2, Fault::ObjectError});
            Errors.OnReport = [&] {
                ++reports;
                touch.Do(Tree);
                Pump();
            };
            Tree.Open(Tree.At({0, 0}));
            Errors.OnReport = nullptr;
            Wanted.Disarm();
            Pump();
            if (right.empty()) right = WholeTree(Tree, Tree.At({}));
            EXPECT_EQ(right, WholeTree(Tree, Tree.At({})));
            EXPECT_EQ(L"modLists.PopulateDBObjTablesViews -2147216504", Errors.Places());
            Errors.Forget();
            if (HasFailure()) break;
        }
        EXPECT_EQ(static_cast<int>(std::size(Touches)), reports);
    });
    editor.Call(L"Display", ByRef(text));
}
