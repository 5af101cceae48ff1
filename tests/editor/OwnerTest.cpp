#include "Fakes.h"
#include "component/modGlobal.h"
#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "errors/clsErrorHandler.h"

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
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(OwnerTest, TheFirstMatchIsTaken) {
    OwnerName = L"scott";
    EditorForm->Constructor();
    EXPECT_EQ(L"SCOTT", EditorForm->trvDBObjects.SelectedItem().Text());
}

TEST_F(OwnerTest, NoMatchSelectsNothing) {
    OwnerName = L"nobody";
    EditorForm->Constructor();
    EXPECT_FALSE(EditorForm->trvDBObjects.SelectedItem());
    EXPECT_EQ(L"", Errors.Places());
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

TEST_F(OwnerTest, WithoutAnOwnerNothingIsLookedFor) {
    OwnerName.clear();
    EditorForm->trvDBObjects.Items().Clear();
    EditorForm->Constructor();
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(OwnerTest, WithoutARootTheSearchIsReported) {
    OwnerName = L"scott";
    EditorForm->trvDBObjects.Items().Clear();
    EditorForm->Constructor();
    EXPECT_EQ(L"frmSQLEditor.Constructor 35601", Errors.Places());
}
