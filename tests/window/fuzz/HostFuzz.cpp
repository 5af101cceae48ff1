#include <windows.h>
#include <commctrl.h>

#include <memory>
#include <set>

#include "Cases.h"
#include "Values.h"
#include "Windows.h"
#include "support/Browsed.h"
#include "support/Errors.h"

// The door, given arguments of any kind, and hosts whose members answer with anything. What is a text comes back; what
// is none is reported under the name of the procedure that asked; and the window goes on.
namespace {

// What comes back of a text that nobody edits: as the editor has it, but for the line ends that only the editor knows.
std::wstring Unedited(const std::wstring& text) {
    return text.find_first_of(L"\v\f\x85\x2028\x2029") == std::wstring::npos ? InControl(text) : text;
}

class HostFuzz : public BrowsedFixture {
protected:
    // Shows the window and closes it: the text that it held, or "<not shown>".
    static HRESULT Invoke(const Object& editor, DISPID member, VARIANT& argument, std::wstring* shown = nullptr,
                          const std::wstring& edited = {}) {
        DISPPARAMS parameters{&argument, nullptr, 1, 0};
        EXCEPINFO exception{};
        UINT argumentError = 0;
        if (shown == nullptr) {
            return editor.Dispatch()->Invoke(member, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, &exception,
                                             &argumentError);
        }
        *shown = L"<not shown>";
        const WhenShown step(
            [&] {
                *shown = EditorText();
                if (!edited.empty()) PutText(edited);
                EditorWindow::Close();
            },
            WhenShown::Expect::MayStayHidden);
        return editor.Dispatch()->Invoke(member, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, &exception,
                                         &argumentError);
    }
    static void ExpectText(const std::wstring& expected, const std::wstring& text) {
        EXPECT_TRUE(expected == text) << "expected " << Shown(expected) << "\nbut it is " << Shown(text);
    }
};

// Whether a value reads as a text, by the platform alone, and as which.
bool ReadsAsText(const Variant& value, std::wstring& text) {
    if (value.IsArray() || value.IsObject() || value.IsNull() || value.IsMissing() || !IsWellFormed(value))
        return false;
    VARIANT changed;
    VariantInit(&changed);
    if (FAILED(VariantChangeTypeEx(&changed, const_cast<Variant*>(&value), LOCALE_USER_DEFAULT, VARIANT_ALPHABOOL,
                                   VT_BSTR)))
        return false;
    text = TextOf(changed.bstrVal);
    VariantClear(&changed);
    return true;
}

}  // namespace

TEST_F(HostFuzz, DisplayTakesAnyArgument) {
    using Way = AnyArgument::Way;
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Object());
    ForEachCase(40, [&](Random& random) {
        Errors.Forget();
        AnyArgument argument(random, AnyValue(random));
        SCOPED_TRACE(Shown(argument.Value) + " way " + std::to_string(static_cast<int>(argument.How)));
        const VARTYPE type = argument.Value.vt;
        std::wstring text;
        const bool reachable = argument.How != Way::OfItself && argument.How != Way::OfNothing;
        // What an object's own value is, is its own business.
        const bool known = !reachable || type != VT_DISPATCH || argument.Value.pdispVal == nullptr;
        const bool readable = reachable && ReadsAsText(argument.Value, text);
        const std::wstring edited = random.OneIn(2) ? L"edited" : L"";
        std::wstring shown;
        EXPECT_EQ(S_OK, Invoke(editor, 2, argument.Passed, &shown, edited));
        if (!known) return Errors.Forget();
        if (!readable) {
            EXPECT_EQ(L"<not shown>", shown);
            EXPECT_EQ(1U, Errors.Reports.size());
            EXPECT_EQ(0U, Errors.Places().rfind(L"clsSQLEditor.Display ", 0))
                << testing::PrintToString(Errors.Places());
            return;
        }
        EXPECT_EQ(L"", Errors.Places());
        ExpectText(InControl(text), shown);
        const std::wstring back = edited.empty() ? Unedited(text) : edited;
        if (argument.How == Way::Value || (argument.How == Way::OfType && type != VT_BSTR))
            return;  // nowhere to write to
        if (back == text) {
            EXPECT_EQ(type, argument.Value.vt);
        } else {
            ASSERT_EQ(VT_BSTR, argument.Value.vt);
            ExpectText(back, TextOf(argument.Value.bstrVal));
        }
    });
}

TEST_F(HostFuzz, ATextComesBack) {
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Object());
    ForEachCase(25, [&](Random& random) {
        const std::wstring text = random.OneIn(12) ? TextOfLength(random, LongText) : AnyText(random, 200);
        ExpectText(Unedited(text), DisplayAndClose(editor, text));
        EXPECT_EQ(L"", Errors.Places());
    });
}

TEST_F(HostFuzz, ConstructorTakesAnyArgument) {
    using Way = AnyArgument::Way;
    ForEachCase(300, [&](Random& random) {
        const Object editor = Dll.Create();
        Errors.Forget();
        AnyArgument argument(random, AnyValue(random));
        SCOPED_TRACE(Shown(argument.Value) + " way " + std::to_string(static_cast<int>(argument.How)));
        EXPECT_EQ(S_OK, Invoke(editor, 1, argument.Passed));
        const bool reachable = argument.How != Way::OfItself && argument.How != Way::OfNothing;
        const bool nothing = reachable && (argument.Value.IsNull() || argument.Value.IsEmpty() ||
                                           argument.Value.IsMissing() || argument.Value.IsNothing());
        // Anything but nothing is no database.
        EXPECT_EQ(nothing ? 0U : 1U, Errors.Reports.size());
        if (!nothing) {
            EXPECT_EQ(0U, Errors.Places().rfind(L"clsSQLEditor.Constructor ", 0))
                << testing::PrintToString(Errors.Places());
        }
    });
}

// A host of which any member gives anything. The window is shown, branches are opened, statements made; what cannot be
// used is reported by one of the procedures that ask the host, and the text comes back.
TEST_F(HostFuzz, MembersAnswerWithAnything) {
    static const std::set<std::wstring> places = {L"clsSQLEditor.Constructor",
                                                  L"frmSQLEditor.Constructor",
                                                  L"frmSQLEditor.Display",
                                                  L"clsDictionary.Get Schemas",
                                                  L"clsDictionary.Get Objects",
                                                  L"clsDictionary.Get Columns",
                                                  L"clsDictionary.Get DataTypeDesc",
                                                  L"modLists.PopulateDBObjSchemas",
                                                  L"modLists.PopulateDBObjTablesViews",
                                                  L"modLists.PopulateDBObjColumns",
                                                  L"modLists.m_VntToStr",
                                                  L"frmSQLEditor.m_BuildTable",
                                                  L"frmSQLEditor.m_GetStmtSelectTable",
                                                  L"frmSQLEditor.m_GetStmtInsertTable",
                                                  L"frmSQLEditor.m_GetStmtUpdateTable",
                                                  L"frmSQLEditor.m_GetStmtDeleteTable",
                                                  L"frmSQLEditor.mnuActionCreate_Click"};
    ForEachCase(12, [&](Random& random) {
        Errors.Forget();
        FakeDatabase host = Database;
        // The members of the copy answer for the copy.
        host.Members[L"Dictionary"] = [&host](const Arguments&) { return Variant(host.MakeDictionary()); };
        std::string shown;
        const auto replace = [&](auto& members, const wchar_t* name) {
            // Not as many as fill the tree: that takes its time and ends in a message.
            const auto value = std::make_shared<const Variant>(AnyValue(random, 0, 1000));
            shown += testing::PrintToString(std::wstring(name)) + " " + Shown(*value) + "\n";
            members[name] = [value](const Arguments&) { return CopyOf(*value); };
        };
        for (size_t left = 1 + random.Below(2); left > 0; --left) {
            if (random.OneIn(2)) {
                replace(host.Members,
                        random.Pick({L"Connected", L"CurrentCatalog", L"UserName", L"DBType", L"SchemaTerm",
                                     L"Dictionary", L"DBTypeName", L"FormatName", L"ShowCreateTableDialog1"}));
            } else {
                replace(host.DictionaryMembers, random.Pick({L"Schemas", L"Objects", L"Columns", L"DataTypeDesc"}));
            }
        }
        // Columns and their properties, with anything in the place of the names and values.
        if (random.OneIn(3)) {
            host.DictionaryMembers[L"Columns"] = [&random](const Arguments&) {
                std::vector<Variant> properties;
                for (size_t left = random.Below(4); left > 0; --left) {
                    std::vector<Variant> property;
                    property.push_back(random.OneIn(2) ? Variant(random.Pick({L"COLUMN_NAME", L"DATA_TYPE"}))
                                                       : AnyValue(random));
                    for (size_t more = random.OneIn(4) ? random.Below(3) : 2; more > 0; --more)
                        property.push_back(AnyValue(random));
                    properties.push_back(Variant::ArrayOf(std::move(property), random.Pick({0L, 1L, -5L})));
                }
                if (random.OneIn(3)) properties.push_back(AnyValue(random));
                return Variant(MakeCollection({Variant(MakeCollection(std::move(properties))), Column(L"ID", 3L)}));
            };
        }
        SCOPED_TRACE(shown);
        if (IsRepeating()) std::printf("%s\n", shown.c_str());
        {
            const Object editor = Dll.Create();
            EXPECT_EQ(0, NumberOf([&] { editor.Call(L"Constructor", host.Make()); }));
            const std::wstring sql = L"select 1";
            std::wstring text = sql;
            // What is not shown is not closed either: it is over when the call is back.
            const WhenShown step(
                [&] {
                    for (HTREEITEM item = Tree.At({}); item != nullptr; item = Tree.Next(TVGN_CHILD, item)) {
                        Tree.Open(item);
                        for (const wchar_t* const entry : {L"Select", L"Insert", L"Update", L"Delete", L"Create"}) {
                            EditorWindow::Choose(L"Action", entry);
                        }
                    }
                    PutText(L"edited");
                    EditorWindow::Close();
                },
                WhenShown::Expect::MayStayHidden);
            EXPECT_EQ(0, NumberOf([&] { editor.Call(L"Display", ByRef(text)); }));
            EXPECT_EQ(step.Ran() ? L"edited" : sql, text);
            editor.Call(L"Destructor");
            // Lets go of the host, whose members live on this case's stack.
            editor.Call(L"Constructor", Object());
        }
        Dll.CanUnload();
        for (const Report& report : Errors.Reports) {
            EXPECT_EQ(1U, places.count(report.Place()))
                << testing::PrintToString(report.Place()) << " " << report.Number;
        }
        Errors.Forget();
    });
}
