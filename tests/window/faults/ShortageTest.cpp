#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "Fault.h"
#include "support/Browsed.h"
#include "support/Errors.h"
#include "support/Shortage.h"
#include "support/TestData.h"

// Each allocation that the component makes in a step fails once, and then it and all that follow: nothing ends the
// process, no text is lost, the tree holds what its model holds, no block stays behind, and the step succeeds when it
// is taken again. A test run takes a sample of the allocations of a long step; with BRV_ALL in the environment it takes
// them all.
namespace {

struct ShortageStep {
    const char* Name;
    void (*Prepare)(const EditorTree& tree);
    void (*Act)(const EditorTree& tree);
};

void ShowSchema(const EditorTree& tree) {
    tree.Click(tree.At({}));  // reads the schemas again and throws away what was below them
    if (tree.Next(TVGN_CHILD, tree.At({})) == nullptr) tree.Click(tree.At({}));
    tree.Open(tree.At({0}));
}

void PickTable(const EditorTree& tree) {
    ShowSchema(tree);
    tree.Open(tree.At({0, 0}));
    tree.Select(tree.At({0, 0, 0}));
}

void PickTables(const EditorTree& tree) {
    PickTable(tree);
    tree.Select(tree.At({0, 0}));
}

void Choose(const wchar_t* menu, const wchar_t* entry) { EditorWindow::Choose(menu, entry); }

// A key of the editor's with its modifiers, as this thread sees the keyboard.
void Press(WPARAM key, std::initializer_list<int> held) {
    BYTE before[256]{};
    GetKeyboardState(before);
    BYTE state[256]{};
    for (const int modifier : held) state[modifier] = 0x80;
    SetKeyboardState(state);
    SendMessageW(EditorWindow::Editor(), WM_KEYDOWN, key, 1);
    SendMessageW(EditorWindow::Editor(), WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
    SetKeyboardState(before);
}

void CloseSmallWindow(const wchar_t* caption) {
    if (const HWND window = FindWindowW(L"#32770", caption)) SendMessageW(window, WM_CLOSE, 0, 0);
}

void SelectAll(const EditorTree&) { SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, -1); }

constexpr ShortageStep ShortageSteps[] = {
    {"click the root", [](const EditorTree&) {}, [](const EditorTree& tree) { tree.Click(tree.At({})); }},
    {"expand Tables", ShowSchema,
     [](const EditorTree& tree) {
         tree.Open(tree.At({0, 0}));
     }},
    {"click a schema", ShowSchema, [](const EditorTree& tree) { tree.Click(tree.At({0})); }},
    {"click a table", PickTable,
     [](const EditorTree& tree) {
         tree.Click(tree.At({0, 0, 0}));
     }},
    {"close a schema", PickTable, [](const EditorTree& tree) { tree.Shut(tree.At({0})); }},
    {"open everything", ShowSchema,
     [](const EditorTree& tree) {
         tree.Select(tree.At({0}));
         tree.Key(VK_MULTIPLY);
     }},
    {"Action > Select", PickTable, [](const EditorTree&) { Choose(L"Action", L"Select"); }},
    {"Action > Insert", PickTable, [](const EditorTree&) { Choose(L"Action", L"Insert"); }},
    {"Action > Update", PickTable, [](const EditorTree&) { Choose(L"Action", L"Update"); }},
    {"Action > Select, of a folder", PickTables, [](const EditorTree&) { Choose(L"Action", L"Select"); }},
    {"Action > Describe all tables", PickTables, [](const EditorTree&) { Choose(L"Action", L"Describe all tables"); }},
    {"Action > Create", PickTables, [](const EditorTree&) { Choose(L"Action", L"Create"); }},
    {"upper case", SelectAll, [](const EditorTree&) { Choose(L"Edit", L"Make Upper Case"); }},
    {"drop", [](const EditorTree&) {},
     [](const EditorTree&) {
         TestData data;
         data.AddText(L"dropped");
         const auto target = EditorDropTarget();
         DWORD effect = DROPEFFECT_COPY;
         target->DragEnter(&data, MK_LBUTTON, {0, 0}, &effect);
         effect = DROPEFFECT_COPY;
         target->Drop(&data, 0, {0, 0}, &effect);
     }},
    {"comment", SelectAll, [](const EditorTree&) { Press(VK_OEM_2, {VK_CONTROL}); }},
    {"put the sheet's text back", [](const EditorTree&) {},
     [](const EditorTree&) {
         Press('R', {VK_CONTROL, VK_SHIFT});
     }},
    {"the window of Replace", SelectAll,
     [](const EditorTree&) {
         Press('H', {VK_CONTROL});
         constexpr int Find = 100;
         constexpr int All = 106;
         if (const HWND window = FindWindowW(L"#32770", L"Replace")) {
             SetDlgItemTextW(window, Find, L"nothing");
             SendDlgItemMessageW(window, All, BM_CLICK, 0, 0);
         }
         CloseSmallWindow(L"Replace");
     }},
    {"the window of a line", [](const EditorTree&) {},
     [](const EditorTree&) {
         Press('G', {VK_CONTROL});
         CloseSmallWindow(L"Go To Line");
     }},
    {"copy and paste",
     [](const EditorTree&) {
         SetFocus(EditorWindow::Editor());
         SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, 4);
     },
     [](const EditorTree&) {
         Choose(L"Edit", L"Copy");
         Choose(L"Edit", L"Paste");
     }},
    {"type", [](const EditorTree&) {},
     [](const EditorTree&) { SendMessageW(EditorWindow::Editor(), WM_CHAR, L'x', 0); }},
    {"look at the pages", [](const EditorTree&) {},
     [](const EditorTree&) {
         for (const int page : {1, 2, 3, 0}) ShowPage(page);
     }},
    {"hide and show the panes", [](const EditorTree&) {},
     [](const EditorTree&) {
         for (int time = 0; time < 2; ++time) {
             Choose(L"View", L"Object Browser");
             Choose(L"View", L"StatusBar");
         }
     }},
};

// So many of them, from the first, fill and empty the tree.
constexpr std::ptrdiff_t Filling = 5;

// As WhenShown, where the window may never be shown. The work closes it; a close that fails, since it can neither save
// the place nor read the text, leaves it open and is repeated, once.
class IfShown {
public:
    explicit IfShown(std::function<void()> work) : work_(std::move(work)) {
        current = this;
        timer_ = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) WINAPI { current->Look(); });
    }
    ~IfShown() { KillTimer(nullptr, timer_); }
    IfShown(const IfShown&) = delete;
    IfShown& operator=(const IfShown&) = delete;
    bool Shown() const { return shown_; }

private:
    void Look() {
        if (EditorWindow::Find() == nullptr) return;
        if (!std::exchange(shown_, true)) return work_();
        EXPECT_FALSE(std::exchange(closedAgain_, true)) << "the window stays open";
        EditorWindow::Close();
    }
    static inline IfShown* current = nullptr;
    std::function<void()> work_;
    UINT_PTR timer_;
    bool shown_ = false;
    bool closedAgain_ = false;
};

class ShortageTest : public BrowsedFixture {
protected:
    ShortageTest() {
        Database.Members[L"ShowCreateTableDialog1"] = [](const Arguments& a) {
            a.Let(0, Variant(L"CREATE TABLE t (a int)"));
            return Variant();
        };
    }
    static constexpr const wchar_t* Mine = L"-- mine";

    // Every so many allocations one is taken.
    static long Stride(long count, long most) {
        if (std::getenv("BRV_SAMPLE") != nullptr) most = (most + 3) / 4;
        return EveryCase() || count <= most ? 1 : (count + most - 1) / most;
    }

    // The control shows what the model holds: each of its items is a node that can be asked. Nothing is painted, which
    // takes most of the time otherwise.
    void CheckTree(HTREEITEM root) {
        const HWND view = Tree.Handle();
        SendMessageW(view, WM_SETREDRAW, FALSE, 0);
        SelectEach(root);
        SendMessageW(view, WM_SETREDRAW, TRUE, 0);
    }
    void SelectEach(HTREEITEM item) {
        for (; item != nullptr; item = Tree.Next(TVGN_NEXT, item)) {
            Tree.Select(item);
            EXPECT_EQ(item, Tree.Selected());
            SelectEach(Tree.Next(TVGN_CHILD, item));
        }
    }
    void SetText() {
        EditorWindow::SetText(Mine);
        SendMessageW(EditorWindow::Editor(), EM_SETSEL, static_cast<WPARAM>(-1), -1);
    }
    void Take(const ShortageStep& step) {
        SetText();
        step.Prepare(Tree);
        step.Act(Tree);
    }
    // The same from one and the same tree, so that what is left of it can be compared.
    void TakeAgain(const ShortageStep& step) {
        Tree.Click(Tree.At({}));
        Take(step);
    }
    // The text, and all that the tree shows.
    std::wstring State(HTREEITEM item) {
        std::wstring state;
        for (; item != nullptr; item = Tree.Next(TVGN_NEXT, item))
            state += Tree.Text(item) + L"(" + State(Tree.Next(TVGN_CHILD, item)) + L")";
        return state;
    }
    std::wstring State() { return EditorWindow::Text() + L"|" + State(Tree.At({})); }

    static std::string Narrow(std::wstring text) {
        for (wchar_t& unit : text) unit = unit > 126 || unit < 32 ? L'?' : unit;
        return {text.begin(), text.end()};
    }
    // First that; then it may be missed what could not be made.
    void OnlyShortageWasReported() {
        for (const Report& report : Errors.Reports) {
            EXPECT_TRUE(report.Number == ErrorNumber::OutOfMemory ||
                        (report.Number == ErrorNumber::ObjectNotSet && &report != &Errors.Reports.front()))
                << Narrow(report.Place() + L" " + report.Description);
        }
        Errors.Forget();
    }

    Watchdog Dog;
};

}  // namespace

TEST_F(ShortageTest, AnAllocationOfAStepFails) {
    const Shortage shortage(Dll.Handle());
    const Object editor = Connected();
    const char* const only = std::getenv("BRV_STEP");
    long cases = 0;
    std::wstring sql = Mine;
    const WhenShown shown([&] {
        Tree.Open(Tree.At({}));
        for (const ShortageStep& step : ShortageSteps) {
            // In a test run the steps that fill and empty the tree; the others with BRV_ALL or by their name.
            if (only == nullptr && !EveryCase() && &step - ShortageSteps >= Filling) break;
            if (only != nullptr && std::string(only) != step.Name) continue;
            Dog.Begin(step.Name);
            Take(step);
            SetText();
            step.Prepare(Tree);
            Shortage::Begin(0, false);
            step.Act(Tree);
            const long count = Shortage::End();
            const std::wstring right = State();
            // With the error component, which is made for the first report and kept.
            Shortage::Begin(1, false);
            Take(step);
            Shortage::End();
            Errors.Forget();
            CheckTree(Tree.At({}));
            Take(step);
            const long living = Shortage::Living();
            EXPECT_LT(0, count) << step.Name;
            const long stride = Stride(count, 6);
            for (long which = 1; which <= count; which += stride) {
                SCOPED_TRACE(std::string(step.Name) + ", allocation " + std::to_string(which) + " of " +
                             std::to_string(count));
                Dog.Begin(std::string(step.Name) + " " + std::to_string(which));
                ++cases;
                SetText();
                step.Prepare(Tree);
                Shortage::Begin(which, false);
                step.Act(Tree);
                Shortage::End();
                if (EditorWindow::Find() == nullptr) {
                    ADD_FAILURE() << "the window is gone";
                    return;
                }
                OnlyShortageWasReported();
                EXPECT_NE(std::wstring::npos, EditorWindow::Text().find(L"mine") & EditorWindow::Text().find(L"MINE"));
                CheckTree(Tree.At({}));
                Take(step);
                EXPECT_EQ(right, State());
                EXPECT_EQ(L"", Errors.Places());
                EXPECT_EQ(living, Shortage::Living()) << "blocks that stayed behind";
                Errors.Forget();
            }
            std::printf("shortage, %s: %ld allocations\n", step.Name, count);
        }
        SetText();
        EditorWindow::Close();
    });
    const long number = NumberOf([&] { editor.Call(L"Display", ByRef(sql)); });
    EXPECT_TRUE(number == 0 || number == ErrorNumber::OutOfMemory) << number;
    EXPECT_EQ(Mine, sql);
    std::printf("shortage, steps: %ld cases\n", cases);
}

// The tree's own lists of what it opens.
TEST_F(ShortageTest, AShortageOfTheKeyThatOpensEverythingIsReported) {
    const Shortage shortage(Dll.Handle());
    const Object editor = Connected();
    const WhenShown shown([&] {
        Dog.Begin("open everything");
        Tree.Open(Tree.At({}));
        Tree.Select(Tree.At({0}));
        Shortage::Begin(1, false);
        Tree.Key(VK_MULTIPLY);
        EXPECT_LT(0, Shortage::End());
        EXPECT_EQ(L"frmSQLEditor.m_ExpandAll 7", Errors.Places());
        EditorWindow::Close();
    });
    std::wstring sql = Mine;
    EXPECT_EQ(0, NumberOf([&] { editor.Call(L"Display", ByRef(sql)); }));
    EXPECT_EQ(Mine, sql);
}

// Everything after it fails too, the report of the failure first, which ends the window. The next one is shown with the
// step that succeeds, and then with the next case.
TEST_F(ShortageTest, AllAllocationsFailFromOneOn) {
    const Shortage shortage(Dll.Handle());
    const Object editor = Connected();
    const char* const only = std::getenv("BRV_STEP");
    long cases = 0;
    const ShortageStep* before = nullptr;
    std::wstring right;
    const auto display = [&](const std::function<void()>& work) {
        std::wstring sql = L"-- mine, of the host";
        const WhenShown shown([&] {
            if (before != nullptr) {
                TakeAgain(*before);
                EXPECT_EQ(right, State());
                EXPECT_EQ(L"", Errors.Places());
            }
            work();
            EditorWindow::Close();
        });
        const long number = NumberOf([&] { editor.Call(L"Display", ByRef(sql)); });
        EXPECT_TRUE(number == 0 || number == ErrorNumber::OutOfMemory) << number;
        EXPECT_NE(std::wstring::npos, sql.find(L"mine") & sql.find(L"MINE")) << Narrow(sql);
        OnlyShortageWasReported();
    };
    for (const ShortageStep& step : ShortageSteps) {
        if (only != nullptr && std::string(only) != step.Name) continue;
        const bool fills = &step - ShortageSteps < Filling;
        long count = 0;
        long stride = 1;
        long which = 0;
        do {
            SCOPED_TRACE(std::string(step.Name) + ", from allocation " + std::to_string(which));
            Dog.Begin(std::string(step.Name) + " from " + std::to_string(which));
            ++cases;
            display([&] {
                if (which == 0) {
                    TakeAgain(step);
                    right = State();
                    SetText();
                    step.Prepare(Tree);
                    Shortage::Begin(0, false);
                    step.Act(Tree);
                    count = Shortage::End();
                    EXPECT_LT(0, count) << step.Name;
                    stride = Stride(count, fills ? 2 : 1);
                    which = 1 + stride / 2;
                }
                SetText();
                step.Prepare(Tree);
                Shortage::Begin(which, true);
                step.Act(Tree);
                Shortage::End();
                CheckTree(Tree.At({}));
            });
            before = &step;
            which += stride;
        } while (which <= count);
    }
    display([] {});
    std::printf("shortage from one on: %ld cases\n", cases);
}

// What the window does while nothing else is to be done, without memory: it gives the colours up, and goes on.
TEST_F(ShortageTest, AllAllocationsFailWhileTheLoopIsIdle) {
    const Shortage shortage(Dll.Handle());
    const Object editor = Connected();
    // Shows the window, lets it be idle until nothing happens any more, and closes it.
    struct Idle {
        TIMERPROC Look = nullptr;
        UINT_PTR Timer = 0;
        long Count = 0;
        int Same = 0;
    };
    static Idle* idle = nullptr;
    const auto look = [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
        KillTimer(nullptr, id);  // set again in the end: one that is due at once would leave the loop no moment
        if (EditorWindow::Find() == nullptr) return;
        idle->Same = Shortage::Count() == idle->Count ? idle->Same + 1 : 0;
        idle->Count = Shortage::Count();
        if (idle->Same == 3) {
            Shortage::End();
            EditorWindow::Close();
            return;
        }
        idle->Timer = SetTimer(nullptr, 0, 20, idle->Look);
    };
    const auto display = [&](long which) {
        std::wstring sql = L"select 'mine' from t where a = 1";
        Idle now;
        now.Look = look;
        idle = &now;
        Dog.Begin("idle " + std::to_string(which));
        {
            const WhenShown shown([&] {
                EditorWindow::SetText(L"select 'mine' from t where (a = 1)");
                Shortage::Begin(which, which != 0);
                idle->Timer = SetTimer(nullptr, 0, 20, look);
            });
            const long number = NumberOf([&] { editor.Call(L"Display", ByRef(sql)); });
            EXPECT_TRUE(number == 0 || number == ErrorNumber::OutOfMemory) << number;
        }
        Shortage::End();
        KillTimer(nullptr, now.Timer);
        EXPECT_EQ(L"select 'mine' from t where (a = 1)", sql) << which;
        OnlyShortageWasReported();
        return now.Count;
    };
    display(0);
    const long count = display(0);
    EXPECT_LT(0, count);
    const long stride = Stride(count, 3);
    for (long which = 1; which <= count; which += stride) display(which);
    std::printf("shortage while idle: %ld allocations\n", count);
}

// From the first call to the end of the object: what is not shown leaves the host's SQL as it was.
TEST_F(ShortageTest, AnAllocationOfTheStartFails) {
    const Shortage shortage(Dll.Handle());
    struct Ended {
        bool Shown = false;
        std::wstring Root;
        std::wstring Sql;
        std::vector<long> Numbers;
    };
    // `length`: of the text of the second Display, for which the editor takes a fresh control when it is long.
    const auto run = [&](long which, bool forGood) {
        Ended ended;
        ended.Sql = L"-- of the host";
        Shortage::Begin(which, forGood);
        const auto call = [&](const std::function<void()>& work) { ended.Numbers.push_back(NumberOf(work)); };
        {
            Object editor;
            call([&] {
                IClassFactory* factory = nullptr;
                CLSID id;
                CLSIDFromProgID(L"brvSQLEditor.clsSQLEditor", &id);
                CheckHresult(Dll.GetClassObject(id, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
                IDispatch* made = nullptr;
                const HRESULT result = factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&made));
                factory->Release();
                CheckHresult(result);
                editor = Object::Attach(made);
            });
            if (editor) {
                call([&] { editor.Call(L"Constructor", Database.Make()); });
                std::wstring longer(40000, L'x');
                for (std::wstring* sql : {&ended.Sql, &longer, &ended.Sql}) {
                    const std::wstring before = *sql;
                    const IfShown shown([&] {
                        ended.Root = EditorWindow::Root();
                        EXPECT_EQ(before, EditorWindow::Text()) << "what is shown is the host's";
                        EditorWindow::Close();
                    });
                    call([&] { editor.Call(L"Display", ByRef(*sql)); });
                    EXPECT_EQ(before, *sql);
                    ended.Shown = shown.Shown();
                }
                call([&] { editor.Call(L"Destructor"); });
            }
        }
        Shortage::End();
        return ended;
    };
    run(0, false);
    EXPECT_EQ(S_OK, Dll.CanUnload());
    run(300, false);  // with what is made for the first report and stays
    Errors.Forget();
    EXPECT_EQ(S_OK, Dll.CanUnload());
    run(0, false);
    EXPECT_EQ(S_OK, Dll.CanUnload());
    const long living = Shortage::Living();
    Shortage::Begin(0, false);
    run(0, false);
    EXPECT_EQ(S_OK, Dll.CanUnload());
    const long count = Shortage::End();
    EXPECT_EQ(living, Shortage::Living());
    long cases = 0;
    for (const bool forGood : {false, true}) {
        const long stride = Stride(count, forGood ? 2 : 5);
        for (long which = 1; which <= count; which += stride) {
            SCOPED_TRACE(std::string("allocation ") + std::to_string(which) + (forGood ? " and all that follow" : "") +
                         " of " + std::to_string(count));
            Dog.Begin("the start, " + std::to_string(which));
            ++cases;
            const Ended ended = run(which, forGood);
            for (const long number : ended.Numbers)
                EXPECT_TRUE(number == 0 || number == ErrorNumber::OutOfMemory ||
                            number == ErrorNumber::CannotCreateObject)
                    << number;
            Errors.Forget();
            EXPECT_EQ(S_OK, Dll.CanUnload());
            EXPECT_EQ(nullptr, EditorWindow::Find());
            const Ended again = run(0, false);
            EXPECT_TRUE(again.Shown);
            EXPECT_EQ(L"Schemas", again.Root);
            EXPECT_EQ(L"", Errors.Places());
            EXPECT_EQ(S_OK, Dll.CanUnload());
            EXPECT_EQ(living, Shortage::Living()) << "blocks that stayed behind";
        }
    }
    std::printf("shortage, start: %ld cases of %ld allocations\n", cases, count);
}
