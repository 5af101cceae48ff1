#include "component/clsSQLEditor.h"
#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "errors/clsErrorHandler.h"
#include "shared/modGlobal.h"
#include "support/HostFakes.h"
#include "support/Settings.h"

// What Constructor leaves in the values that the whole component shares, read where its own procedures read them.
namespace {

class SharedValuesTest : public testing::Test {
protected:
    SharedValuesTest() { Reset(); }
    ~SharedValuesTest() override { Reset(); }
    static void Reset() {
        EditorForm.reset();
        HostDatabase.Clear();
        OwnerName.clear();
        DBType = 0;
        SchemaTermPlural.clear();
        Dictionary.reset();
        ErrorHandler.reset();
    }
    void Give(const wchar_t* member, const Variant& value) {
        Database.Members[member] = [value](const Arguments&) { return value; };
    }
    // As after a connection whose every value is another than the one to come.
    void Connect() {
        FakeDatabase other;
        other.Members[L"CurrentCatalog"] = [](const Arguments&) { return Variant(L"old"); };
        other.Members[L"DBType"] = [](const Arguments&) { return Variant(99L); };
        other.Members[L"SchemaTerm"] = [](const Arguments&) { return Variant(L"Term"); };
        Editor.Constructor(other.Make());
        EXPECT_EQ(L"old 99 Terms kept connected", Values());
    }
    static std::wstring Values() {
        return OwnerName + L" " + std::to_wstring(DBType) + L" " + SchemaTermPlural +
               (HostDatabase ? L" kept" : L" nothing") +
               (Dictionary == nullptr     ? L" none"
                : Dictionary->Connected() ? L" connected"
                                          : L" not connected");
    }

    FakeErrors Errors;
    FakeDatabase Database;
    clsSQLEditor Editor;
};

}  // namespace

TEST_F(SharedValuesTest, NothingLeavesTheAdapterAndTheTypeAsTheyAre) {
    Editor.Constructor(Object());
    EXPECT_EQ(L" 0 Schemas nothing none", Values());
    Connect();
    const auto before = Dictionary;
    Editor.Constructor(Object());
    EXPECT_EQ(L" 99 Schemas nothing connected", Values());
    EXPECT_EQ(before, Dictionary);
}

TEST_F(SharedValuesTest, ADisconnectedDatabaseLeavesAnEmptyRootAndAnAdapter) {
    Give(L"Connected", false);
    Editor.Constructor(Database.Make());
    EXPECT_EQ(L" 0  nothing not connected", Values());
    Connect();
    const auto before = Dictionary;
    Editor.Constructor(Database.Make());
    EXPECT_EQ(L" 99  nothing not connected", Values());
    EXPECT_NE(before, Dictionary);
}

TEST_F(SharedValuesTest, TheCurrentCatalogGoesBeforeTheUserName) {
    Give(L"CurrentCatalog", L"Sales");
    Editor.Constructor(Database.Make());
    EXPECT_EQ(L"Sales 4 Schemas kept connected", Values());
    Give(L"CurrentCatalog", L"");
    Give(L"UserName", L"scott");
    Editor.Constructor(Database.Make());
    EXPECT_EQ(L"scott 4 Schemas kept connected", Values());
    Give(L"CurrentCatalog", L" ");  // not empty
    Editor.Constructor(Database.Make());
    EXPECT_EQ(L"  4 Schemas kept connected", Values());
}

TEST_F(SharedValuesTest, TheSchemaTermIsTakenAsItStands) {
    for (const auto& [term, plural] : {std::pair{L"Schema", L"Schemas"},
                                       {L"Database", L"Databases"},
                                       {L"Library", L"Librarys"},
                                       {L"S", L"Ss"},
                                       {L" ", L" s"},
                                       {L"", L"Schemas"}}) {
        Give(L"SchemaTerm", term);
        Editor.Constructor(Database.Make());
        EXPECT_EQ(std::wstring(plural), SchemaTermPlural);
    }
}

TEST_F(SharedValuesTest, WhatWasSetBeforeTheFailureStays) {
    const struct {
        const wchar_t* Missing;
        const wchar_t* Left;
    } cases[] = {
        {L"Connected", L"old 99 Terms kept connected"},   {L"CurrentCatalog", L"old 99 Terms kept connected"},
        {L"UserName", L"old 99 Terms kept connected"},    {L"DBType", L"SCOTT 99 Terms kept connected"},
        {L"SchemaTerm", L"SCOTT 4 Terms kept connected"},
    };
    for (const auto& one : cases) {
        Connect();
        const auto adapter = Dictionary;
        const Object host = HostDatabase;
        FakeDatabase database;
        database.Members.erase(one.Missing);
        const Object given = database.Make();
        Editor.Constructor(given);
        EXPECT_EQ(L"clsSQLEditor.Constructor 438", Errors.Places()) << one.Missing;
        Errors.Forget();
        EXPECT_EQ(one.Left, Values()) << one.Missing;
        EXPECT_EQ(adapter, Dictionary) << one.Missing;
        // The database is kept once it has said that it is connected.
        EXPECT_EQ(std::wstring(one.Missing) == L"Connected" ? host.Dispatch() : given.Dispatch(),
                  HostDatabase.Dispatch());
    }
    Connect();
    const auto adapter = Dictionary;
    Database.Members.erase(L"Dictionary");
    Editor.Constructor(Database.Make());
    EXPECT_EQ(L"clsSQLEditor.Constructor 438", Errors.Places());
    EXPECT_EQ(L"SCOTT 4 Schemas kept not connected",
              Values());  // the new adapter was made before its dictionary was read
    EXPECT_NE(adapter, Dictionary);
}

// The owner's name says nothing about whether there is a database.
TEST_F(SharedValuesTest, TheDatabaseIsKeptWhateverItsOwnerIs) {
    Database.Members.erase(L"CurrentCatalog");
    const Object first = Database.Make();
    Editor.Constructor(first);
    EXPECT_EQ(L"clsSQLEditor.Constructor 438", Errors.Places());
    EXPECT_EQ(L" 0  kept none", Values());
    EXPECT_EQ(first.Dispatch(), HostDatabase.Dispatch());
    Give(L"CurrentCatalog", L"");
    Give(L"UserName", L"");
    const Object second = Database.Make();
    Editor.Constructor(second);
    EXPECT_EQ(L" 4 Schemas kept connected", Values());
    EXPECT_EQ(second.Dispatch(), HostDatabase.Dispatch());
}

TEST_F(SharedValuesTest, EachConstructorMakesAnAdapterOfItsOwn) {
    Editor.Constructor(Database.Make());
    const auto first = Dictionary;
    Editor.Constructor(Database.Make());
    EXPECT_NE(first, Dictionary);
    EXPECT_TRUE(first->Connected());
}

TEST_F(SharedValuesTest, TheModuleForgetsAllButTheCatalogue) {
    modGlobal::Main();
    modGlobal::Own();
    Connect();
    EditorForm = std::make_shared<frmSQLEditor>();
    ErrorHandler = std::make_shared<clsErrorHandler>();
    EXPECT_TRUE(modGlobal::Forget());
    EXPECT_EQ(L" 0  nothing none", Values());
    EXPECT_EQ(nullptr, EditorForm);
    EXPECT_EQ(nullptr, ErrorHandler);
}

TEST_F(SharedValuesTest, AWindowThatLoadsStoresItself) {
    Settings::Clear();
    modGlobal::Main();
    const auto other = std::make_shared<frmSQLEditor>();
    EditorForm = other;
    const auto window = std::make_shared<frmSQLEditor>();
    window->Load();
    EXPECT_EQ(window, EditorForm);
    EXPECT_EQ(10, window->lstAnsiSQL.ListCount());
    EXPECT_EQ(0, other->lstAnsiSQL.Handle() == nullptr ? 0 : other->lstAnsiSQL.ListCount());
    EXPECT_EQ(L"", Errors.Places());
    Settings::Clear();
}

TEST_F(SharedValuesTest, TheEndOfAnObjectThatCannotBeReportedIsNoCrash) {
    // Closing fails to save, and the first reports fail too: each trap on the way up has its turn.
    const struct {
        int Failures;
        const wchar_t* Place;
    } cases[] = {{0, L"frmSQLEditor.mnuFileClose_Click 5"},
                 {1, L"frmSQLEditor.Form_Unload 429"},
                 {2, L"clsSQLEditor.Destructor 429"},
                 {3, L"clsSQLEditor.Class_Terminate 429"},
                 {4, L""}};
    modGlobal::Main();
    for (const auto& one : cases) {
        Settings::Clear();
        Errors.Forget();
        ErrorHandler.reset();
        EditorForm = std::make_shared<frmSQLEditor>();
        EditorForm->Load();
        Settings::Refuse();
        Errors.CreateFailures = one.Failures;
        { clsSQLEditor ending; }
        EXPECT_EQ(one.Place, Errors.Places());
        Errors.CreateFailures = 0;
        EditorForm.reset();
    }
    Settings::Clear();
}
