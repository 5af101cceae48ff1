#include <windows.h>
#include <commctrl.h>

#include "catalogue/modLists_Lists.h"
#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "errors/clsErrorHandler.h"
#include "shared/modGlobal.h"
#include "support/HostFakes.h"
#include "support/Settings.h"

// The window itself, made from the component's parts, with schemas in its tree: the next window of a host that has
// filled them.
namespace {

class OwnerTest : public testing::Test {
protected:
    OwnerTest() {
        Settings::Clear();
        modGlobal::Main();
        Dictionary = std::make_shared<clsDictionary>();
        Dictionary->Constructor(Database.MakeDictionary());
        SchemaTermPlural = L"Schemas";
        EditorForm = std::make_shared<frmSQLEditor>();
        EditorForm->Load();
        for (const wchar_t* schema : {L"HR", L"Sales", L"SCOTT", L"scott"}) {
            EditorForm->trvDBObjects.Items().Add(L"schemas", TreeRelationship::Child, Variant::Missing(), schema);
        }
        EditorForm->trvDBObjects.SetSelectedItem(Node());
    }
    ~OwnerTest() override {
        EditorForm.reset();
        Dictionary.reset();
        ErrorHandler.reset();
        OwnerName.clear();
        Settings::Clear();
    }
    FakeErrors Errors;
    FakeDatabase Database;
};

}  // namespace

TEST_F(OwnerTest, TheOwnersSchemaIsSelectedWhateverItsCase) {
    OwnerName = L"sALES";
    EditorForm->Constructor();
    ASSERT_TRUE(EditorForm->trvDBObjects.SelectedItem());
    EXPECT_EQ(L"Sales", EditorForm->trvDBObjects.SelectedItem().Text());
}

TEST_F(OwnerTest, TheFirstMatchIsTaken) {
    OwnerName = L"scott";
    EditorForm->Constructor();
    EXPECT_EQ(L"SCOTT", EditorForm->trvDBObjects.SelectedItem().Text());
}

TEST_F(OwnerTest, TheSchemaIsScrolledIntoView) {
    Nodes& nodes = EditorForm->trvDBObjects.Items();
    EditorForm->trvDBObjects.Expand = nullptr;  // as if they had been read
    for (int at = 0; at < 200; ++at)
        nodes.Add(L"schemas", TreeRelationship::Child, Variant::Missing(), L"S" + std::to_wstring(at));
    nodes.Item(1).SetExpanded(true);
    const HWND tree = EditorForm->trvDBObjects.Handle();
    const auto firstSeen = [tree] { return SendMessageW(tree, TVM_GETNEXTITEM, TVGN_FIRSTVISIBLE, 0); };
    const LRESULT before = firstSeen();
    OwnerName = L"s190";
    EditorForm->Constructor();
    EXPECT_EQ(L"S190", EditorForm->trvDBObjects.SelectedItem().Text());
    // The selection alone scrolls too: what shows is the whole row, not its beginning alone.
    EXPECT_NE(before, firstSeen());
    // One that is selected already is out of sight again, and is brought back.
    SendMessageW(tree, WM_VSCROLL, SB_TOP, 0);
    EXPECT_EQ(before, firstSeen());
    EditorForm->Constructor();
    EXPECT_NE(before, firstSeen());
}

TEST_F(OwnerTest, NoMatchSelectsNothing) {
    OwnerName = L"nobody";
    EditorForm->Constructor();
    EXPECT_FALSE(EditorForm->trvDBObjects.SelectedItem());
}

TEST_F(OwnerTest, AWindowWithoutItsCatalogueReportsAndLives) {
    ListItems.reset();
    EditorForm = std::make_shared<frmSQLEditor>();
    EditorForm->Load();
    EXPECT_EQ(
        L"modLists.PopulateAnsiSQLCommands 91|modLists.PopulateDatabaseSpecificCommands 91|"
        L"modLists.PopulateKolvexCommands 91",
        Errors.Places());
}

TEST_F(OwnerTest, FilledAgainThePanesAreTheSame) {
    DBType = 8;
    for (int times = 0; times < 2; ++times) {
        modLists::PopulateAnsiSQLCommands();
        modLists::PopulateKolvexCommands();
        modLists::PopulateDatabaseSpecificCommands();
    }
    EXPECT_EQ(10, EditorForm->lstAnsiSQL.ListCount());
    EXPECT_EQ(25, EditorForm->lstKolvex.ListCount());
    EXPECT_EQ(10 + 134, EditorForm->trvDatabaseSpecific.Items().Count());
    EXPECT_EQ(L"SQL Commands", EditorForm->trvDatabaseSpecific.SelectedItem().Key());
    DBType = 5;
    modLists::PopulateDatabaseSpecificCommands();
    EXPECT_EQ(0, EditorForm->trvDatabaseSpecific.Items().Count());
    DBType = 0;
}

// A search would be reported: there is no root.
TEST_F(OwnerTest, WithoutAnOwnerNothingIsLookedFor) {
    OwnerName.clear();
    EditorForm->trvDBObjects.Items().Clear();
    EditorForm->Constructor();
}

TEST_F(OwnerTest, WithoutARootTheSearchIsReported) {
    OwnerName = L"scott";
    EditorForm->trvDBObjects.Items().Clear();
    EditorForm->Constructor();
    EXPECT_EQ(L"frmSQLEditor.Constructor 35601", Errors.Places());
}
