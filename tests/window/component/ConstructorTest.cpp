#include <windows.h>
#include <commctrl.h>

#include "support/Component.h"
#include "support/EditorTree.h"

namespace {

class ConstructorTest : public ComponentFixture {
protected:
    // What a user sees after Constructor with the database as it stands.
    struct Seen {
        std::wstring Root, Status;
        bool Shown = false;
        int Reference = 0;  // nodes of the database's own reference
    };
    Seen Show(const Object& database) {
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", database);
        return ShowAgain(editor);
    }
    Seen ShowAgain(const Object& editor) {
        Seen seen;
        std::wstring sql = L"select 1";
        const WhenShown shown([&] {
            seen = {EditorWindow::Root(), EditorWindow::Status(), true,
                    EditorTree(EditorTree::DatabaseSpecific).Count()};
            EditorWindow::Close();
        });
        editor.Call(L"Display", ByRef(sql));
        EXPECT_EQ(L"select 1", sql);
        return seen;
    }
};

}  // namespace

TEST_F(ConstructorTest, NothingGivesNoAdapter) {
    const Seen seen = Show(Object());
    EXPECT_EQ(L"Not connected to a database", seen.Status);
    EXPECT_EQ(L"<none>", seen.Root);
}

TEST_F(ConstructorTest, ADisconnectedDatabaseIsAskedForNothingElse) {
    Database.Members[L"Connected"] = [](const Arguments&) { return Variant(false); };
    const Seen seen = Show(Database.Make());
    EXPECT_EQ(L"Connected ", Database.Logged());
    EXPECT_EQ(L"Not connected to a database", seen.Status);
    EXPECT_EQ(L"<none>", seen.Root);
}

TEST_F(ConstructorTest, AConnectedDatabaseIsReadOnceInOrder) {
    const Seen seen = Show(Database.Make());
    EXPECT_EQ(L"Connected CurrentCatalog UserName DBType SchemaTerm Dictionary DBTypeName ", Database.Logged());
    EXPECT_EQ(L"Type 4", seen.Status);
    EXPECT_EQ(L"Schemas", seen.Root);
}

TEST_F(ConstructorTest, TheSchemaTermGetsAnS) {
    Database.Members[L"SchemaTerm"] = [](const Arguments&) { return Variant(L"User"); };
    EXPECT_EQ(L"Users", Show(Database.Make()).Root);
}

TEST_F(ConstructorTest, TheTypeCodeIsConverted) {
    Database.Members[L"DBType"] = [](const Arguments&) { return Variant(L" 17 "); };
    EXPECT_EQ(L"Type 17", Show(Database.Make()).Status);
}

TEST_F(ConstructorTest, EachCallOverwritesTheOneBefore) {
    const Object editor = Connected();
    Database.Members[L"DBType"] = [](const Arguments&) { return Variant(8L); };
    Database.Members[L"SchemaTerm"] = [](const Arguments&) { return Variant(L"Owner"); };
    const Object other = Dll.Create();
    other.Call(L"Constructor", Database.Make());
    const Seen seen = ShowAgain(editor);
    EXPECT_EQ(L"Type 8", seen.Status);
    EXPECT_EQ(L"Owners", seen.Root);
}

TEST_F(ConstructorTest, TheNextDisplayShowsTheNewConnectionInTheSameWindow) {
    const auto reference = [] { return View(2); };
    const auto browser = [] { return View(0); };
    const auto count = [](HWND tree) { return SendMessageW(tree, TVM_GETCOUNT, 0, 0); };
    const auto open = [&] {
        SendMessageW(browser(), TVM_EXPAND, TVE_EXPAND, SendMessageW(browser(), TVM_GETNEXTITEM, TVGN_ROOT, 0));
    };
    Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(L"ONE"), Variant(L"TWO")}));
    };
    const Object first = Database.Make();
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", first);
    HWND window = nullptr;
    DisplayAndClose(editor, L"x", [&] {
        window = EditorWindow::Find();
        open();
        EXPECT_EQ(1 + 2 * 7, count(browser()));
        EXPECT_EQ(10 + 114, count(reference()));
    });
    // The same connection again changes nothing.
    editor.Call(L"Constructor", first);
    DisplayAndClose(editor, L"x", [&] { EXPECT_EQ(1 + 2 * 7, count(browser())); });
    FakeDatabase other;
    other.Members[L"DBType"] = [](const Arguments&) { return Variant(8L); };
    other.Members[L"SchemaTerm"] = [](const Arguments&) { return Variant(L"Owner"); };
    editor.Call(L"Constructor", other.Make());
    const auto seen = [&] {
        EXPECT_EQ(window, EditorWindow::Find());
        EXPECT_EQ(L"Owners", EditorWindow::Root());
        EXPECT_EQ(2, count(browser()));
        EXPECT_EQ(10 + 134, count(reference()));
        EXPECT_EQ(L"Type 8", EditorWindow::Status());
    };
    DisplayAndClose(editor, L"x", seen);
    DisplayAndClose(editor, L"x", seen);
    // The same object over another database.
    other.Members[L"DBType"] = [](const Arguments&) { return Variant(17L); };
    editor.Call(L"Constructor", other.Make());
    DisplayAndClose(editor, L"x", [&] { EXPECT_EQ(0, count(reference())); });
    other.Members[L"Connected"] = [](const Arguments&) { return Variant(false); };
    editor.Call(L"Constructor", other.Make());
    DisplayAndClose(editor, L"x", [&] {
        EXPECT_EQ(0, count(browser()));
        EXPECT_EQ(0, count(reference()));
    });
    editor.Call(L"Constructor", first);
    DisplayAndClose(editor, L"x", [&] {
        EXPECT_EQ(L"Schemas", EditorWindow::Root());
        EXPECT_EQ(10 + 114, count(reference()));
    });
    EXPECT_EQ(L"", Errors.Places());
    editor.Call(L"Constructor", Object());
}

// A host may keep its object and connect it elsewhere.
TEST_F(ConstructorTest, EachValueThatDiffersMakesAnotherConnection) {
    long type = 4;
    std::wstring catalogue = L"SALES";
    std::wstring term;
    Database.Members[L"DBType"] = [&](const Arguments&) { return Variant(type); };
    Database.Members[L"CurrentCatalog"] = [&](const Arguments&) { return Variant(catalogue); };
    Database.Members[L"SchemaTerm"] = [&](const Arguments&) { return Variant(term); };
    Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(L"ONE")}));
    };
    const Object database = Database.Make();
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", database);
    // The nodes of the tree when the window comes; its branches are opened then.
    const auto nodes = [&] {
        LRESULT count = 0;
        DisplayAndClose(editor, L"x", [&] {
            count = SendMessageW(View(0), TVM_GETCOUNT, 0, 0);
            SendMessageW(View(0), TVM_EXPAND, TVE_EXPAND, SendMessageW(View(0), TVM_GETNEXTITEM, TVGN_ROOT, 0));
        });
        return count;
    };
    EXPECT_EQ(2, nodes());
    const auto again = [&] {
        editor.Call(L"Constructor", database);
        return nodes();
    };
    EXPECT_EQ(1 + 7, again());
    type = 8;
    EXPECT_EQ(2, again());
    catalogue = L"HR";
    EXPECT_EQ(2, again());
    term = L"Owner";
    EXPECT_EQ(2, again());
    EXPECT_EQ(1 + 7, again());
    EXPECT_EQ(L"", Errors.Places());
    editor.Call(L"Constructor", Object());
}

TEST_F(ConstructorTest, NothingAfterAConnectionLeavesTheAdapterAndSoAFailingStatus) {
    const Object editor = Connected();
    editor.Call(L"Constructor", Object());
    std::wstring sql = L"x";
    editor.Call(L"Display", ByRef(sql));  // not shown: the adapter is connected and there is no database to ask
    EXPECT_EQ(L"frmSQLEditor.Display 91", Errors.Places());
    EXPECT_EQ(L"x", sql);
}

TEST_F(ConstructorTest, ADisconnectedDatabaseAfterAConnectionDisconnects) {
    const Object editor = Connected();
    EXPECT_LT(100, ShowAgain(editor).Reference);
    Database.Members[L"Connected"] = [](const Arguments&) { return Variant(false); };
    editor.Call(L"Constructor", Database.Make());
    const Seen seen = ShowAgain(editor);
    EXPECT_EQ(L"Not connected to a database", seen.Status);
    EXPECT_EQ(L"<none>", seen.Root);
    EXPECT_EQ(0, seen.Reference);  // the type is the former one's
}

TEST_F(ConstructorTest, AMissingMemberIsReportedAndWhatWasSetStays) {
    for (const wchar_t* member :
         {L"Connected", L"CurrentCatalog", L"UserName", L"DBType", L"SchemaTerm", L"Dictionary"}) {
        FakeDatabase database;
        database.Members.erase(member);
        Errors.Forget();
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", database.Make());
        EXPECT_EQ(L"clsSQLEditor.Constructor 438", Errors.Places()) << member;
    }
}

TEST_F(ConstructorTest, AFailingMemberIsReportedWithItsOwnError) {
    for (const wchar_t* member :
         {L"Connected", L"CurrentCatalog", L"UserName", L"DBType", L"SchemaTerm", L"Dictionary"}) {
        FakeDatabase database;
        database.Members[member] = [](const Arguments&) -> Variant {
            RaiseError(ObjectErrorBase + 5, L"brvADO", L"the line is cut");
        };
        Errors.Forget();
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", database.Make());
        EXPECT_EQ(L"clsSQLEditor.Constructor " + std::to_wstring(ObjectErrorBase + 5), Errors.Places()) << member;
        EXPECT_EQ(L"brvADO", Errors.Only().Source);
        EXPECT_EQ(L"the line is cut", Errors.Only().Description);
    }
}

TEST_F(ConstructorTest, AWrongTypeIsReported) {
    struct Case {
        const wchar_t* Member;
        Variant Value;
        long Number;
    };
    const Case cases[] = {
        {L"Connected", L"perhaps", ErrorNumber::TypeMismatch},
        {L"Connected", Variant::Null(), ErrorNumber::InvalidUseOfNull},
        {L"CurrentCatalog", Variant::Null(), ErrorNumber::InvalidUseOfNull},
        {L"UserName", Variant::Nothing(), ErrorNumber::ObjectNotSet},
        {L"DBType", L"Oracle", ErrorNumber::TypeMismatch},
        {L"DBType", 1e12, ErrorNumber::Overflow},
        {L"SchemaTerm", Variant::ArrayOf({Variant(1L)}), ErrorNumber::TypeMismatch},
        {L"Dictionary", 5L, ErrorNumber::ObjectRequired},
        {L"Dictionary", Variant::Null(), ErrorNumber::TypeMismatch},
    };
    for (const Case& one : cases) {
        FakeDatabase database;
        database.Members[one.Member] = [&one](const Arguments&) { return one.Value; };
        Errors.Forget();
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", database.Make());
        EXPECT_EQ(L"clsSQLEditor.Constructor " + std::to_wstring(one.Number), Errors.Places()) << one.Member;
    }
}

TEST_F(ConstructorTest, WithoutASchemaTermTheConnectionIsThereAndTheAdapterIsNot) {
    Database.Members.erase(L"SchemaTerm");
    const Object editor = Connected();
    Errors.Forget();
    const Seen seen = ShowAgain(editor);
    EXPECT_EQ(L"Not connected to a database", seen.Status);
    EXPECT_EQ(L"<none>", seen.Root);
    // The owner name was set: its schema is looked for in a tree that has no root.
    EXPECT_EQ(L"frmSQLEditor.Constructor 35601", Errors.Places());
}

TEST_F(ConstructorTest, ADictionaryThatIsNothingMakesAnAdapterThatIsNotConnected) {
    Database.Members[L"Dictionary"] = [](const Arguments&) { return Variant::Nothing(); };
    const Object editor = Connected();
    EXPECT_EQ(L"", Errors.Places());
    EXPECT_EQ(L"Not connected to a database", ShowAgain(editor).Status);
    EXPECT_EQ(L"frmSQLEditor.Constructor 35601", Errors.Places());
}

TEST_F(ConstructorTest, TakesAnObjectInEveryWayAndReportsWhatIsNone) {
    const Object editor = Dll.Create();
    Object database = Database.Make();
    editor.Call(L"Constructor", ByRef(database));
    Variant variable(database);
    editor.Call(L"Constructor", ByRef(variable));
    Variant unknown;
    database.Dispatch()->AddRef();
    unknown.vt = VT_UNKNOWN;
    unknown.punkVal = database.Dispatch();
    editor.Call(L"Constructor", unknown);
    EXPECT_EQ(L"", Errors.Places());
    size_t connected = 0;
    for (const std::wstring& entry : Database.Log) connected += entry == L"Connected";
    EXPECT_EQ(3U, connected);
    // What a language without Nothing writes for it.
    editor.Call(L"Constructor", Variant::Null());
    editor.Call(L"Constructor", Variant());
    EXPECT_EQ(L"", Errors.Places());
    editor.Call(L"Constructor", L"a database");
    EXPECT_EQ(L"clsSQLEditor.Constructor 424", Errors.Places());
}
