#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Browsed.h"

// The fault matrix: one row a member of the host's objects and call that the component makes of it, one column a way to
// fail. What has to be reported, and what is left in the window, follows from the row's procedures and from what kind
// of value the member gives.

namespace {

// ---- the ways to fail

enum class Fault {
    Missing,      // the object does not know the name
    ObjectError,  // an exception of the host's database component
    OwnError,     // an exception that says it is of the component itself
    WrongType,
    Null,
    Empty,
    Nothing,
    ThirdItem,     // a collection that fails at its third item with an error of the host's database component
    ThirdItemOwn,  // ... with one that says it is of the component itself
    Reenters,      // pumps messages and calls Display, then gives what is right
    Closes,        // closes the window, then gives what is right
};
constexpr Fault AllFaults[] = {Fault::Missing,      Fault::ObjectError, Fault::OwnError, Fault::WrongType,
                               Fault::Null,         Fault::Empty,       Fault::Nothing,  Fault::ThirdItem,
                               Fault::ThirdItemOwn, Fault::Reenters,    Fault::Closes};
constexpr const char* FaultNames[] = {"missing", "object error", "own error",       "wrong type", "null",  "empty",
                                      "nothing", "third item",   "third item, own", "re-enters",  "closes"};

// What a member gives, which decides what a wrong value is.
enum class Kind { Boolean, Text, Long, Dictionary, Names, Columns, Effect };

constexpr long ObjectErrorNumber = ObjectErrorBase + 5000;
constexpr long OwnErrorNumber = ObjectErrorBase + 77;

// Error numbers of the language.
constexpr long TypeMismatch = 13;
constexpr long NotSet = 91;
constexpr long BadNull = 94;
constexpr long NeedsObject = 424;
constexpr long NoMember = 438;
constexpr long AlreadyShown = 400;

// ---- the table

// What the user does up to the call.
enum class Step { Constructor, Display, Root, Tables, Columns, Statement, Create };

struct Row {
    Step When;
    const wchar_t* Member;  // "Dictionary.X" is one of the dictionary
    int Occurrence;         // of the member in its step, from 1
    Kind Gives;
    const wchar_t* Trap;  // the procedure that reports what fails in the call
    // What fails behind the trap, with nothing instead of a collection: "" when nothing does.
    const wchar_t* Behind;
    const wchar_t* PassedOn;  // who reports an object error of the host's component when the trap passes it on
    const wchar_t* Left;      // what the step leaves then, see Seen
    const wchar_t* Right;     // what it leaves when all is well
};

constexpr Row Table[] = {
    {Step::Constructor, L"Connected", 1, Kind::Boolean, L"clsSQLEditor.Constructor", L"", L"",
     L"Not connected to a database/<none>", L"Type 4/Schemas"},
    {Step::Constructor, L"CurrentCatalog", 1, Kind::Text, L"clsSQLEditor.Constructor", L"", L"",
     L"Not connected to a database/<none>", L"Type 4/Schemas"},
    {Step::Constructor, L"UserName", 1, Kind::Text, L"clsSQLEditor.Constructor", L"", L"",
     L"Not connected to a database/<none>", L"Type 4/Schemas"},
    {Step::Constructor, L"DBType", 1, Kind::Long, L"clsSQLEditor.Constructor", L"", L"",
     L"Not connected to a database/<none>", L"Type 4/Schemas"},
    {Step::Constructor, L"SchemaTerm", 1, Kind::Text, L"clsSQLEditor.Constructor", L"", L"",
     L"Not connected to a database/<none>", L"Type 4/Schemas"},
    {Step::Constructor, L"Dictionary", 1, Kind::Dictionary, L"clsSQLEditor.Constructor", L"", L"",
     L"Not connected to a database/<none>", L"Type 4/Schemas"},
    {Step::Display, L"DBTypeName", 1, Kind::Text, L"frmSQLEditor.Display", L"", L"", L"<not shown>", L"Type 4/Schemas"},
    {Step::Root, L"Dictionary.Schemas", 1, Kind::Names, L"clsDictionary.Get Schemas", L"", L"", L"Current Schema",
     L"one|two|three|four"},
    {Step::Tables, L"Dictionary.Objects", 1, Kind::Names, L"clsDictionary.Get Objects",
     L"modLists.PopulateDBObjTablesViews", L"", L"", L"one|two|three|four"},
    {Step::Columns, L"Dictionary.Columns", 1, Kind::Columns, L"clsDictionary.Get Columns", L"",
     L"modLists.PopulateDBObjColumns", L"", L"A|B|C|D"},
    {Step::Columns, L"Dictionary.DataTypeDesc", 1, Kind::Text, L"clsDictionary.Get DataTypeDesc", L"", L"", L"A|B|C|D",
     L"A|B|C|D"},
    {Step::Columns, L"Dictionary.DataTypeDesc", 4, Kind::Text, L"clsDictionary.Get DataTypeDesc", L"", L"", L"A|B|C|D",
     L"A|B|C|D"},
    {Step::Statement, L"FormatName", 1, Kind::Text, L"frmSQLEditor.m_BuildTable", L"", L"",
     L"\r\nSELECT COUNT(*) FROM ;\r\n", L"\r\nSELECT COUNT(*) FROM one.[one];\r\n"},
    {Step::Statement, L"FormatName", 2, Kind::Text, L"frmSQLEditor.m_BuildTable", L"", L"",
     L"\r\nSELECT COUNT(*) FROM one.[one];\r\n", L"\r\nSELECT COUNT(*) FROM one.[one];\r\n"},
    {Step::Create, L"ShowCreateTableDialog1", 1, Kind::Effect, L"frmSQLEditor.mnuActionCreate_Click", L"", L"", L"",
     L"\r\nCREATE TABLE x;\r\n"},
};

// Members that the scenario uses, so that a call of one that the table does not know is seen.
std::set<std::wstring> KnownMembers() {
    std::set<std::wstring> known;
    for (const Row& row : Table) known.insert(row.Member);
    return known;
}

// The default schema is known and the tree has no root to look for it below: what the making of the window then
// reports.
std::wstring ReportedLater(const Row& row) {
    const std::wstring_view member = row.Member;
    const bool ownerKnown = member == L"DBType" || member == L"SchemaTerm" || member == L"Dictionary";
    return ownerKnown ? L"frmSQLEditor.Constructor 35601" : L"";
}

// ---- what is expected

struct Expected {
    std::wstring Places;  // "module.procedure number|..."
    std::wstring Source;  // of the first report
    std::wstring Left;
    bool Right = false;  // all as if nothing had happened
};

bool IsWrongValue(Fault fault) {
    return fault == Fault::WrongType || fault == Fault::Null || fault == Fault::Empty || fault == Fault::Nothing ||
           fault == Fault::OwnError;
}

bool IsCollection(Kind kind) { return kind == Kind::Names || kind == Kind::Columns; }

// Nothing for a fault that the row cannot have.
std::optional<Expected> ExpectOfMember(const Row& row, Fault fault) {
    Expected expected{L"", L"brvSQLEditor", row.Left, false};
    const auto reported = [&](long number, const wchar_t* place) {
        expected.Places = std::wstring(place) + L" " + std::to_wstring(number);
        // What then comes in place of a collection is nothing.
        if (*row.Behind != L'\0') expected.Places += std::wstring(L"|") + row.Behind + L" " + std::to_wstring(NotSet);
        return expected;
    };
    const auto well = [&] {
        expected.Right = true;
        expected.Left = row.Right;
        return expected;
    };
    switch (fault) {
        case Fault::Missing:
            return reported(NoMember, row.Trap);
        case Fault::ObjectError:
            expected.Source = L"brvADO";
            if (*row.PassedOn != L'\0') {
                expected.Places = std::wstring(row.PassedOn) + L" " + std::to_wstring(ObjectErrorNumber);
                // The branch was not touched yet: its placeholder stays.
                expected.Left = L"(undefined)";
                return expected;
            }
            return reported(ObjectErrorNumber, row.Trap);
        case Fault::OwnError:
            return reported(OwnErrorNumber, row.Trap);
        case Fault::WrongType:
            if (row.Gives == Kind::Effect) return std::nullopt;
            return reported(row.Gives == Kind::Dictionary ? NeedsObject
                            : row.Gives == Kind::Text     ? NoMember
                                                          : TypeMismatch,
                            row.Trap);
        case Fault::Null:
            if (row.Gives == Kind::Effect) return std::nullopt;
            if (row.Gives == Kind::Dictionary || IsCollection(row.Gives)) return reported(TypeMismatch, row.Trap);
            return reported(BadNull, row.Trap);
        case Fault::Empty:
            if (row.Gives == Kind::Effect) return std::nullopt;
            if (row.Gives == Kind::Dictionary || IsCollection(row.Gives)) return reported(TypeMismatch, row.Trap);
            // False, "" or 0: a value like others. Not connected: another root than after a failure.
            if (row.Gives == Kind::Boolean) {
                expected.Left = row.Left;
                return expected;
            }
            if (row.Gives == Kind::Text && row.When != Step::Constructor) {
                if (row.When == Step::Display) expected.Left = L"/Schemas";
                if (row.When == Step::Statement && row.Occurrence == 1)
                    expected.Left = L"\r\nSELECT COUNT(*) FROM one.;\r\n";
                return expected;
            }
            if (row.Gives == Kind::Long) {
                expected.Left = L"Type 0/Schemas";
                return expected;
            }
            return well();
        case Fault::Nothing:
            if (row.Gives == Kind::Effect) return std::nullopt;
            if (row.Gives == Kind::Dictionary) return expected;  // there is none: no failure
            if (IsCollection(row.Gives)) {
                if (*row.Behind != L'\0') expected.Places = std::wstring(row.Behind) + L" " + std::to_wstring(NotSet);
                return expected;
            }
            return reported(NotSet, row.Trap);
        case Fault::ThirdItem:
        case Fault::ThirdItemOwn: {
            if (!IsCollection(row.Gives)) return std::nullopt;
            expected.Left = row.Gives == Kind::Columns ? L"A|B" : L"one|two";
            const bool own = fault == Fault::ThirdItemOwn;
            const wchar_t* const populate = row.When == Step::Root     ? L"modLists.PopulateDBObjSchemas"
                                            : row.When == Step::Tables ? L"modLists.PopulateDBObjTablesViews"
                                                                       : L"modLists.PopulateDBObjColumns";
            // Errors of the component's own range go up to the event.
            expected.Places = std::wstring(own ? L"frmSQLEditor.trvDBObjects_Expand" : populate) + L" " +
                              std::to_wstring(own ? OwnErrorNumber : ObjectErrorNumber);
            if (!own) expected.Source = L"brvADO";
            return expected;
        }
        case Fault::Reenters:
            // Before the window is shown a second Display would show it.
            if (row.When == Step::Constructor || row.When == Step::Display) return std::nullopt;
            well();
            expected.Places = L"frmSQLEditor.Display " + std::to_wstring(AlreadyShown);
            return expected;
        case Fault::Closes:
            if (row.When == Step::Constructor || row.When == Step::Display) return std::nullopt;
            expected.Left = L"<closed>";
            return expected;
    }
    return std::nullopt;
}

std::optional<Expected> Expect(const Row& row, Fault fault) {
    std::optional<Expected> expected = ExpectOfMember(row, fault);
    const std::wstring later = ReportedLater(row);
    if (expected && expected->Left == row.Left && !later.empty()) {
        expected->Places += (expected->Places.empty() ? L"" : L"|") + later;
    }
    return expected;
}

// ---- making it happen

void Pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

[[noreturn]] void Throw(long number, const wchar_t* source, const wchar_t* description) {
    RuntimeError error;
    error.Number = number;
    error.Source = source;
    error.Description = description;
    throw error;
}

Object PlainObject() { return Object::Attach(new DynamicObject); }

// Like the host's own collections, but the third item is an exception.
Object FailingCollection(std::vector<Variant> items, long number, const wchar_t* source) {
    auto* made = new DynamicObject;
    const Object held = Object::Attach(made);
    const long count = static_cast<long>(items.size());
    made->Define(L"Count", [count](const Arguments&) { return Variant(count); });
    made->Define(L"Item", [items, number, source](const Arguments& a) -> Variant {
        const long at = a[0].ToLong();
        if (at >= 3) Throw(number, source, L"The third item cannot be read.");
        return items.at(static_cast<size_t>(at - 1));
    });
    return held;
}

std::vector<Variant> NameItems() { return {Variant(L"one"), Variant(L"two"), Variant(L"three"), Variant(L"four")}; }

class FaultMatrixTest : public BrowsedFixture {
protected:
    using Member = std::function<Variant(const Arguments&)>;

    FaultMatrixTest() {
        Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) { return Variant(MakeCollection(NameItems())); };
        Database.DictionaryMembers[L"Objects"] = Database.DictionaryMembers[L"Schemas"];
        Database.DictionaryMembers[L"Columns"] = [](const Arguments&) {
            return Variant(MakeCollection(ColumnItems()));
        };
        Database.DictionaryMembers[L"DataTypeDesc"] = [](const Arguments&) { return Variant(L"number"); };
        Database.Members[L"FormatName"] = [](const Arguments& a) { return Variant(L"[" + a[0].ToText() + L"]"); };
        Database.Members[L"ShowCreateTableDialog1"] = [](const Arguments& a) {
            a.Let(0, Variant(L"CREATE TABLE x"));
            return Variant();
        };
        members_ = Database.Members;
        dictionaryMembers_ = Database.DictionaryMembers;
    }

    static std::vector<Variant> ColumnItems() {
        return {Column(L"A", 3L), Column(L"B", 3L), Column(L"C", 3L), Column(L"D", 3L)};
    }

    // What a member that has the fault does instead of what it did.
    Variant Fail(const Row& row, Fault fault, const Member& right, const Arguments& arguments) {
        switch (fault) {
            case Fault::ObjectError:
                Throw(ObjectErrorNumber, L"brvADO", L"The database says no.");
            case Fault::OwnError:
                Throw(OwnErrorNumber, L"brvSQLEditor", L"It says it is us.");
            case Fault::WrongType:
                return row.Gives == Kind::Text ? Variant(PlainObject()) : Variant(L"no such thing");
            case Fault::Null:
                return Variant::Null();
            case Fault::Empty:
                return Variant();
            case Fault::Nothing:
                return Variant(Object());
            case Fault::ThirdItem:
                return Variant(FailingCollection(row.Gives == Kind::Columns ? ColumnItems() : NameItems(),
                                                 ObjectErrorNumber, L"brvADO"));
            case Fault::ThirdItemOwn:
                return Variant(FailingCollection(row.Gives == Kind::Columns ? ColumnItems() : NameItems(),
                                                 OwnErrorNumber, L"brvSQLEditor"));
            case Fault::Reenters: {
                Pump();
                std::wstring other = L"another text";
                held_->Call(L"Display", ByRef(other));
                EXPECT_EQ(L"another text", other);
                return right(arguments);
            }
            case Fault::Closes:
                SendMessageW(EditorWindow::Find(), WM_CLOSE, 0, 0);
                Pump();
                return right(arguments);
            default:
                return right(arguments);
        }
    }

    // Puts the fault at the occurrence of the member in the step; nothing is different before `armed_`.
    void Inject(const Row& row, Fault fault) {
        std::wstring name = row.Member;
        const bool ofDictionary = name.starts_with(L"Dictionary.");
        if (ofDictionary) name.erase(0, 11);
        auto& members = ofDictionary ? Database.DictionaryMembers : Database.Members;
        if (fault == Fault::Missing) {
            // Names are looked up with the object: it lacks the member from the start, and an occurrence cannot be
            // chosen.
            members.erase(name);
            return;
        }
        const Member right = members.at(name);
        members[name] = [this, &row, fault, right](const Arguments& a) -> Variant {
            if (!armed_ || ++calls_ != row.Occurrence) return right(a);
            ++injected_;
            return Fail(row, fault, right, a);
        };
    }

    // The step's own action, inside the window, with what was needed for it done before; returns what there is to see.
    std::wstring Act(Step step) {
        const auto arm = [this] { armed_ = true; };
        switch (step) {
            case Step::Root:
                arm();
                Tree.Open(Tree.At({}));
                return Gone() ? L"<closed>" : Tree.Children(Tree.At({}));
            case Step::Tables:
                Tree.Open(Tree.At({}));
                Tree.Open(Tree.At({0}));
                arm();
                Tree.Open(Tree.At({0, 0}));
                return Gone() ? L"<closed>" : Tree.Children(Tree.At({0, 0}));
            case Step::Columns:
                Tree.Open(Tree.At({}));
                Tree.Open(Tree.At({0}));
                Tree.Open(Tree.At({0, 0}));
                arm();
                Tree.Open(Tree.At({0, 0, 0}));
                return Gone() ? L"<closed>" : Tree.Children(Tree.At({0, 0, 0, 0}));
            case Step::Statement: {
                // A view whose columns were not read: its name is written for the count and for the sample.
                Tree.Open(Tree.At({}));
                Tree.Open(Tree.At({0}));
                Tree.Open(Tree.At({0, 1}));
                Tree.Select(Tree.At({0, 1, 0}));
                arm();
                EditorWindow::Choose(L"Action", L"Count rows");
                Pump();
                if (Gone()) return L"<closed>";
                return Inserted();
            }
            case Step::Create: {
                Tree.Open(Tree.At({}));
                Tree.Open(Tree.At({0}));
                Tree.Select(Tree.At({0, 0}));
                arm();
                EditorWindow::Choose(L"Action", L"Create");
                Pump();
                if (Gone()) return L"<closed>";
                return Inserted();
            }
            default:
                return EditorWindow::Status() + L"/" + EditorWindow::Root();
        }
    }

    // What is in the editor beside what was there.
    static std::wstring Inserted() {
        std::wstring text = EditorWindow::Text();
        const size_t mine = text.find(L"-- mine");
        EXPECT_NE(std::wstring::npos, mine) << "what was there is lost";
        if (mine != std::wstring::npos) text.erase(mine, 7);
        return text;
    }

    static bool Gone() { return EditorWindow::Find() == nullptr; }

    // Runs the step in a component that knows nothing yet; returns what it leaves.
    std::wstring Run(const Object& editor, Step step) {
        armed_ = step == Step::Constructor || step == Step::Display;
        calls_ = 0;
        editor.Call(L"Constructor", Database.Make());
        std::wstring seen = L"<not shown>";
        std::wstring sql = L"-- mine";
        {
            const WhenShown shown([&] {
                BoxAnswerer boxes;
                seen = Act(step);
                EXPECT_EQ(0, boxes.Boxes) << "a message that nobody described";
                if (!Gone()) EditorWindow::Close();
            });
            editor.Call(L"Display", ByRef(sql));
        }
        armed_ = false;
        EXPECT_NE(std::wstring::npos, sql.find(L"-- mine")) << "the SQL is lost";
        return seen;
    }

    std::map<std::wstring, Member> members_;
    std::map<std::wstring, Member> dictionaryMembers_;
    const Object* held_ = nullptr;
    bool armed_ = false;
    int calls_ = 0;
    int injected_ = 0;
};

}  // namespace

TEST_F(FaultMatrixTest, EveryMemberFailsInEveryWay) {
    int cases = 0;
    for (const Row& row : Table) {
        for (const Fault fault : AllFaults) {
            const std::optional<Expected> expected = Expect(row, fault);
            if (!expected) continue;
            // One object has the name or has it not: only its first call can miss it.
            if (fault == Fault::Missing && row.Occurrence != 1) continue;
            SCOPED_TRACE(testing::Message() << std::string(row.Member, row.Member + wcslen(row.Member)) << " ("
                                            << row.Occurrence << "), " << FaultNames[static_cast<int>(fault)]);
            ++cases;
            Database.Members = members_;
            Database.DictionaryMembers = dictionaryMembers_;
            Errors.Reports.clear();
            injected_ = 0;
            // A component that knows nothing yet.
            ASSERT_EQ(S_OK, Dll.CanUnload());
            const Object editor = Dll.Create();
            held_ = &editor;
            Inject(row, fault);
            const std::wstring seen = Run(editor, row.When);
            if (fault == Fault::Missing) {
                // Each of its calls misses it: the first report is the one of the row.
                ASSERT_FALSE(Errors.Reports.empty());
                EXPECT_EQ(expected->Places.substr(0, expected->Places.find(L'|')),
                          Errors.Reports[0].Place() + L" " + std::to_wstring(Errors.Reports[0].Number));
                for (const Report& report : Errors.Reports) {
                    EXPECT_TRUE(report.Place() == row.Trap || report.Place() == row.Behind ||
                                ReportedLater(row).starts_with(report.Place() + L" "))
                        << std::string(report.Routine.begin(), report.Routine.end());
                }
            } else {
                EXPECT_EQ(1, injected_) << "the call was not made";
                EXPECT_EQ(expected->Places, Errors.Places());
            }
            if (!expected->Places.empty() && !Errors.Reports.empty()) {
                EXPECT_EQ(expected->Source, Errors.Reports[0].Source);
                EXPECT_EQ(0, Errors.Reports[0].Line);
            }
            EXPECT_EQ(expected->Left, seen);
            // The next call works, in a window of its own: the tree of this one is as far as it was built. Where only
            // the wrong value differs one of a row is enough, unless BRV_ALL is in the environment.
            editor.Call(L"Destructor");
            if (IsWrongValue(fault) && fault != Fault::Nothing && std::getenv("BRV_ALL") == nullptr) continue;
            Database.Members = members_;
            Database.DictionaryMembers = dictionaryMembers_;
            Errors.Reports.clear();
            const std::wstring again = Run(editor, row.When);
            EXPECT_EQ(L"", Errors.Places());
            EXPECT_EQ(row.Right, again);
            editor.Call(L"Destructor");
            held_ = nullptr;
        }
    }
    std::printf("fault matrix: %d cases\n", cases);
    EXPECT_LE(120, cases);
}

TEST_F(FaultMatrixTest, TheTableKnowsEveryMember) {
    const Object editor = Dll.Create();
    for (const Step step :
         {Step::Constructor, Step::Root, Step::Tables, Step::Columns, Step::Statement, Step::Create}) {
        Run(editor, step);
    }
    const std::set<std::wstring> known = KnownMembers();
    std::set<std::wstring> asked(Database.Log.begin(), Database.Log.end());
    EXPECT_EQ(known, asked);
    EXPECT_EQ(L"", Errors.Places());
}
