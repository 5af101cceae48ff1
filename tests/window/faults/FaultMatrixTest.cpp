#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "FaultyHost.h"
#include "support/Dialogs.h"

// The fault matrix: each step that a user takes, each call that the component makes of the host's objects in it, each
// way to fail. The calls are those that were recorded, what has to come of each case is what the model says.

namespace {

// How much of a step is run: all calls with all faults, or with a few. Where two steps make the same calls one of them
// is enough.
enum class Share { All, Few };

// A step inside the window. `Prepare` leads there from any state, with a host that is well.
struct Step {
    const char* Name;
    Share Share;
    void (*Prepare)(const EditorTree& tree);
    void (*Act)(const EditorTree& tree);
    std::wstring (*Left)(const EditorTree& tree);  // null: what is inserted into the editor
    Outcome (*Expect)(Model& model);
};

std::wstring ColumnsWithProperties(const EditorTree& tree) {
    std::wstring texts;
    const HTREEITEM columns = tree.At({0, 0, 0, 0});
    for (HTREEITEM at = tree.Next(TVGN_CHILD, columns); at != nullptr; at = tree.Next(TVGN_NEXT, at)) {
        texts += (texts.empty() ? L"" : L"|") + tree.Text(at);
        const HTREEITEM folder = tree.Next(TVGN_CHILD, at);
        if (folder == nullptr) continue;
        std::wstring properties = tree.Children(folder);
        for (wchar_t& letter : properties) letter = letter == L'|' ? L',' : letter;
        texts += L"[" + properties + L"]";
    }
    return texts;
}

void SelectView(const EditorTree& tree) {
    OpenSchema(tree);
    tree.Open(tree.At({0, 1}));
    tree.Select(tree.At({0, 1, 0}));
}

std::wstring LeftOfFolders(const EditorTree& tree) {
    return tree.Children(tree.At({0, 0})) + L"/" + tree.Children(tree.At({0, 1}));
}

constexpr Step TreeSteps[] = {
    {"expand the root", Share::All,
     [](const EditorTree& tree) {
         tree.Click(tree.At({}));
         tree.Shut(tree.At({}));
     },
     [](const EditorTree& tree) { tree.Open(tree.At({})); },
     [](const EditorTree& tree) { return tree.Children(tree.At({})); }, [](Model& model) { return model.Schemas(); }},
    {"click the root", Share::Few, [](const EditorTree& tree) { tree.Click(tree.At({})); },
     [](const EditorTree& tree) { tree.Click(tree.At({})); },
     [](const EditorTree& tree) { return tree.Children(tree.At({})); }, [](Model& model) { return model.Schemas(); }},
    {"expand Tables", Share::All, OpenSchema,
     [](const EditorTree& tree) {
         tree.Open(tree.At({0, 0}));
     },
     [](const EditorTree& tree) {
         return tree.Children(tree.At({0, 0}));
     },
     [](Model& model) { return model.Objects(1); }},
    {"expand Views", Share::Few, OpenSchema,
     [](const EditorTree& tree) {
         tree.Open(tree.At({0, 1}));
     },
     [](const EditorTree& tree) {
         return tree.Children(tree.At({0, 1}));
     },
     [](Model& model) { return model.Objects(1); }},
    {"click a schema", Share::Few, OpenSchema, [](const EditorTree& tree) { tree.Click(tree.At({0})); }, LeftOfFolders,
     [](Model& model) { return model.Objects(2); }},
    {"expand a table", Share::Few, OpenTables,
     [](const EditorTree& tree) {
         tree.Open(tree.At({0, 0, 0}));
     },
     ColumnsWithProperties, [](Model& model) { return model.Columns(false); }},
    {"click a table", Share::All, OpenTables,
     [](const EditorTree& tree) {
         tree.Click(tree.At({0, 0, 0}));
     },
     ColumnsWithProperties, [](Model& model) { return model.Columns(false); }},
    {"click Tables when they are read", Share::Few, OpenTables,
     [](const EditorTree& tree) {
         tree.Click(tree.At({0, 0}));
     },
     ColumnsWithProperties, [](Model& model) { return model.Columns(false); }},
    {"expand Columns", Share::Few,
     [](const EditorTree& tree) {
         SelectTable(tree);
         tree.Shut(tree.At({0, 0, 0, 0}));
     },
     [](const EditorTree& tree) {
         tree.Open(tree.At({0, 0, 0, 0}));
     },
     ColumnsWithProperties, [](Model& model) { return model.Columns(true); }},
};

#define ENTRY(share, select, of, entry)                                                                              \
    {                                                                                                                \
        entry, Share::share, select, [](const EditorTree&) { EditorWindow::Choose(L"Action", L"" entry); }, nullptr, \
            [](Model& model) { return model.of(L"" entry); }                                                         \
    }

constexpr Step StatementSteps[] = {
    ENTRY(All, SelectTable, OfTable, "Select"),
    ENTRY(Few, SelectTable, OfTable, "Insert"),
    ENTRY(Few, SelectTable, OfTable, "Update"),
    ENTRY(Few, SelectTable, OfTable, "Delete"),
    ENTRY(Few, SelectTable, OfTable, "Count rows"),
    ENTRY(Few, SelectTable, OfTable, "Describe table"),
    ENTRY(Few, SelectTable, OfTable, "Sample rows"),
    ENTRY(Few, SelectView, OfView, "Select"),
    ENTRY(Few, SelectView, OfView, "Count rows"),
    ENTRY(Few, SelectView, OfView, "Describe view"),
    ENTRY(Few, SelectView, OfView, "Sample rows"),
    ENTRY(Few, SelectTables, OfFolder, "Select"),
    ENTRY(Few, SelectTables, OfFolder, "Count rows in all tables"),
    ENTRY(Few, SelectTables, OfFolder, "Describe all tables"),
    ENTRY(All, SelectTables, OfFolder, "Sample rows from all tables"),
    ENTRY(All, SelectTables, OfFolder, "Create"),
};

#undef ENTRY

std::string Narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

// Whether a fault can happen to a call, and is worth its time in a test run.
bool IsWanted(const Step& step, const std::wstring& member, int occurrence, int last, Fault fault) {
    // The enumerator is asked for by its id. A name is looked up once an object.
    if (fault == Fault::UnknownName) return !member.ends_with(L"._NewEnum") && occurrence == 1;
    if (EveryCase()) return true;
    // Where the exception has a message.
    const bool all = step.Share == Share::All;
    if (fault == Fault::EndsNoDictionary) return all && occurrence == 1 && member == L"Dictionary.Objects";
    if (fault == Fault::EndsNoColumns) return all && occurrence == 1 && member == L"Dictionary.Columns";
    const bool atEnds = occurrence == 1 || occurrence == last;
    if (EndsWindow(fault)) {
        // Another window has to be shown then.
        const bool list = member.find(L'.') != std::wstring::npos && !member.starts_with(L"Dictionary.");
        if (list) return all && member.ends_with(L".Item") && occurrence == last;
        return all ? occurrence == 1 : fault == Fault::Closes && occurrence == 1;
    }
    if (all) return atEnds || !IsWrongValue(fault);
    return fault == Fault::ObjectError || fault == Fault::Null || fault == Fault::Reenters;
}

// The cases of a step, generated from the calls that it makes.
std::vector<Case> CasesOf(const Step& step, const std::vector<std::wstring>& calls) {
    std::vector<Case> cases;
    std::map<std::wstring, int> all;
    for (const std::wstring& member : calls) ++all[member];
    std::map<std::wstring, int> seen;
    for (const std::wstring& member : calls) {
        const int occurrence = ++seen[member];
        for (const Fault fault : AllFaults) {
            if (IsWanted(step, member, occurrence, all[member], fault)) cases.push_back({member, occurrence, fault});
        }
    }
    std::vector<Case> chosen;
    for (size_t at = 0; at < cases.size(); ++at) {
        if (IsChosen(at, 2, 10)) chosen.push_back(cases[at]);
    }
    return chosen;
}

// BRV_STEP in the environment is the name of the one step that is wanted.
bool IsLeftOut(const char* step) {
    const char* const wanted = std::getenv("BRV_STEP");
    return wanted != nullptr && std::string(wanted) != step;
}

class FaultMatrixTest : public FaultyHostFixture {
protected:
    // Runs all cases of a step in as few windows as it takes.
    int RunCases(const Step& step) {
        step_ = &step;
        editor_ = Dll.Create();
        Model well({});
        right_ = step.Expect(well);
        cases_ = CasesOf(step, right_.Calls);
        // The step without a fault comes first, so that the calls are those that the cases are made of.
        cases_.insert(cases_.begin(), Case{L"<none>", 1, Fault::Text});
        at_ = 0;
        ended_.reset();
        Wanted.Inside = [this](Fault fault) { DoInside(fault); };
        NewHost();
        while (at_ < cases_.size() && !HasFatalFailure()) {
            ended_.reset();
            std::wstring sql = L"-- mine";
            prepared_ = false;
            {
                const WhenShown shown([&] {
                    while (at_ < cases_.size() && !ended_) RunCase(at_++);
                    if (!ended_) EditorWindow::Close();
                });
                editor_.Call(L"Display", ByRef(sql));
            }
            if (ended_) {
                SCOPED_TRACE(NameOf(*ended_));
                EXPECT_EQ(step.Left == nullptr ? Expected(*ended_).Left : L"", Beside(sql));
            }
        }
        editor_.Call(L"Destructor");
        editor_ = Object();
        Wanted.Inside = nullptr;
        return static_cast<int>(cases_.size()) - 1;
    }

private:
    std::string NameOf(size_t at) const {
        const Case& wanted = cases_[at];
        return std::string(step_->Name) + ": " + Narrow(wanted.Member) + " (" + std::to_string(wanted.Occurrence) +
               "), " + (at == 0 ? "well" : ::NameOf(wanted.Way));
    }
    Outcome Expected(size_t at) const {
        Model model(at == 0 ? std::optional<Case>() : cases_[at]);
        return step_->Expect(model);
    }

    // A host whose names have not been looked up yet, in a component whose tree stays as it is.
    void NewHost() {
        Wanted.Disarm();
        editor_.Call(L"Constructor", MakeHost());
    }

    void DoInside(Fault fault) {
        if (fault == Fault::Reenters) {
            Pump();
            std::wstring other = L"another text";
            editor_.Call(L"Display", ByRef(other));
            EXPECT_EQ(L"another text", other);
        } else if (fault == Fault::Forgets) {
            editor_.Call(L"Constructor", Object());
        } else if (fault == Fault::Closes) {
            EditorWindow::Close();
            Pump();
        } else if (EndsWindow(fault)) {
            editor_.Call(L"Destructor");
        }
    }

    std::wstring Left() const { return step_->Left != nullptr ? step_->Left(Tree) : Beside(EditorWindow::Text()); }

    void Prepare() {
        NewHost();
        // Statements leave the tree alone.
        if (step_->Left != nullptr || !prepared_) step_->Prepare(Tree);
        prepared_ = true;
        EditorWindow::SetText(L"-- mine");
        EXPECT_EQ(std::vector<std::wstring>(), Reported());
    }

    void RunCase(size_t at) {
        SCOPED_TRACE(NameOf(at));
        Dog.Begin(NameOf(at));
        const Outcome expected = Expected(at);
        BoxAnswerer boxes;
        Prepare();
        NewHost();
        Wanted.Arm(at == 0 ? std::optional<Case>() : cases_[at]);
        step_->Act(Tree);
        Wanted.Disarm();
        Compare(expected, boxes.All);
        if (at == 0) {
            EXPECT_EQ(right_.Calls, Wanted.Calls());
        } else {
            EXPECT_LE(1, Wanted.Injected()) << "the call was not made";
        }
        if (at > 0 && EndsWindow(cases_[at].Way)) {
            EXPECT_TRUE(Gone());
            CheckLeftBehind(at);
            ended_ = at;
            return;
        }
        ASSERT_FALSE(Gone());
        EXPECT_EQ(expected.Left, Left());
        if (step_->Left != nullptr) {
            EXPECT_EQ(L"", Beside(EditorWindow::Text()));
        }
        // The next call works, in the same window.
        if (at == 0 || !IsFollowedUp(cases_[at].Way)) return;
        Prepare();
        boxes.All.clear();
        step_->Act(Tree);
        Compare(right_, boxes.All);
        EXPECT_EQ(right_.Left, Left());
    }

    // The window was closed in the middle of the step, which went on. What that left in the tree is looked at in the
    // hidden window, since the next Display fills it for the connection of its time.
    void CheckLeftBehind(size_t at) {
        if (step_->Left == nullptr || cases_[at].Way != Fault::Closes) return;
        const HWND window = FindWindowW(L"brvSQLEditorForm", nullptr);
        ShowWindow(window, SW_SHOWNA);
        EXPECT_EQ(Expected(at).Left, Left());
        ShowWindow(window, SW_HIDE);
    }

    const Step* step_ = nullptr;
    Object editor_;
    Outcome right_;
    std::vector<Case> cases_;
    size_t at_ = 0;
    std::optional<size_t> ended_;  // the case that ended the window
    bool prepared_ = false;
};

}  // namespace

TEST_F(FaultMatrixTest, Tree) {
    int cases = 0;
    for (const Step& step : TreeSteps)
        if (!IsLeftOut(step.Name)) cases += RunCases(step);
    std::printf("fault matrix, tree: %d cases\n", cases);
}

TEST_F(FaultMatrixTest, Statements) {
    int cases = 0;
    for (const Step& step : StatementSteps)
        if (!IsLeftOut(step.Name)) cases += RunCases(step);
    std::printf("fault matrix, statements: %d cases\n", cases);
}
