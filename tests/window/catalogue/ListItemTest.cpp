#include "catalogue/clsListItem.h"

#include "browser/modLists_Tree.h"
#include "catalogue/modLists_Lists.h"
#include "errors/clsErrorHandler.h"
#include "shared/modGlobal.h"
#include "support/HostFakes.h"

namespace {

class ListItemTest : public testing::Test {
protected:
    ~ListItemTest() override {
        ErrorHandler.reset();
        ListItems.reset();
    }
    FakeErrors Errors;
};

}  // namespace

TEST_F(ListItemTest, KeepsWhatItWasMadeOf) {
    clsListItem item;
    item.Constructor(L"t", 7, 2, 4, L"c", L"d", L"dd", L"s", L"i", L"u", L"del", L"e");
    EXPECT_EQ(L"t", item.Text());
    EXPECT_EQ(7, item.Id());
    EXPECT_EQ(2, item.list());
    EXPECT_EQ(4, item.DBType());
    EXPECT_EQ(L"c", item.Category());
    EXPECT_EQ(L"d", item.Description());
    EXPECT_EQ(L"dd", item.DragDrop());
    EXPECT_EQ(L"s", item.SelectText());
    EXPECT_EQ(L"i", item.InsertText());
    EXPECT_EQ(L"u", item.UpdateText());
    EXPECT_EQ(L"del", item.DeleteText());
    EXPECT_EQ(L"e", item.ExecuteText());
    EXPECT_EQ(L"", item.GetCommand(0));
}

TEST_F(ListItemTest, GivesItsCommandsByPosition) {
    clsListItem item;
    item.Constructor(L"", 0, 1, 0, L"", L"", L"", L"", L"", L"", L"", L"",
                     Variant::ArrayOf({Variant(L"count"), Variant(12L), Variant(L"sample")}, 5));
    EXPECT_EQ(L"count", item.GetCommand(0));
    EXPECT_EQ(L"12", item.GetCommand(1));
    EXPECT_EQ(L"sample", item.GetCommand(2));
    EXPECT_EQ(L"", item.GetCommand(3));
    EXPECT_EQ(L"", Errors.Places());
    EXPECT_EQ(L"", item.GetCommand(-1));
    EXPECT_EQ(L"", item.GetCommand(32767));
    EXPECT_EQ(L"clsListItem.GetCommand 9|clsListItem.GetCommand 6", Errors.Places());
}

TEST_F(ListItemTest, AnEmptyArrayOfCommandsGivesNone) {
    clsListItem item;
    item.Constructor(L"kept", 0, 1, 0, L"", L"", L"", L"", L"", L"", L"", L"", Variant::ArrayOf({}));
    EXPECT_EQ(L"", item.GetCommand(0));
}

TEST_F(ListItemTest, CommandsThatAreNoArrayAreReported) {
    for (const Variant& value : {Variant(L"count"), Variant(1L), Variant(), Variant::Null(), Variant::Nothing()}) {
        clsListItem item;
        Errors.Forget();
        item.Constructor(L"kept", 7, 1, 4, L"c", L"d", L"dd", L"s", L"i", L"u", L"del", L"e", value);
        EXPECT_EQ(L"clsListItem.Constructor 13", Errors.Places());
        // What was set before stays.
        EXPECT_EQ(L"kept", item.Text());
        EXPECT_EQ(L"e", item.ExecuteText());
        EXPECT_EQ(L"", item.GetCommand(0));
    }
}

TEST_F(ListItemTest, AfterTheDestructorACommandIsAnError) {
    clsListItem item;
    item.Constructor(L"kept", 0, 1, 0, L"", L"", L"", L"", L"", L"", L"", L"", Variant::ArrayOf({Variant(L"a")}));
    item.Destructor();
    EXPECT_EQ(L"", item.GetCommand(0));
    EXPECT_EQ(L"clsListItem.GetCommand 91", Errors.Places());
    EXPECT_EQ(L"kept", item.Text());
    item.Destructor();  // nothing is left to release
    Errors.Forget();
    item.Constructor(L"t", 0, 1, 0, L"", L"", L"", L"", L"", L"", L"", L"", Variant::ArrayOf({Variant(L"b")}));
    EXPECT_EQ(L"t", item.Text());
    EXPECT_EQ(L"clsListItem.Constructor 91", Errors.Places());
    Errors.Forget();
    item.Constructor(1, L"s", L"", L"", L"", {L"b"});
    EXPECT_EQ(L"s", item.SelectText());
    EXPECT_EQ(L"clsListItem.Constructor 91", Errors.Places());
}

TEST_F(ListItemTest, TheActiveItemsConstructorKeepsWhatItIsGiven) {
    clsListItem item;
    item.Constructor(1, L"s", L"i", L"u", L"d", {L"count", L"describe"});
    EXPECT_EQ(L"s", item.SelectText());
    EXPECT_EQ(L"i", item.InsertText());
    EXPECT_EQ(L"u", item.UpdateText());
    EXPECT_EQ(L"d", item.DeleteText());
    EXPECT_EQ(1, item.list());
    EXPECT_EQ(0, item.Id());
    EXPECT_EQ(0, item.DBType());
    EXPECT_EQ(L"", item.Text() + item.Category() + item.Description() + item.DragDrop() + item.ExecuteText());
    EXPECT_EQ(L"count", item.GetCommand(0));
    EXPECT_EQ(L"describe", item.GetCommand(1));
    EXPECT_EQ(L"", item.GetCommand(2));
}

TEST_F(ListItemTest, EntriesWithoutACatalogueAreReported) {
    modLists::m_CreateListItem(L"t", 1, 0, L"", L"", L"", L"", L"", L"", L"", L"");
    EXPECT_EQ(L"modLists.m_CreateListItem 91", Errors.Places());
    // With every report refused the first entry's failure leaves the procedure that makes them all.
    ErrorHandler.reset();
    Errors.Forget();
    Errors.CreateFailures = 1;
    modLists::CreateListItems();
    EXPECT_EQ(L"modLists.CreateListItems 429", Errors.Places());
}

TEST_F(ListItemTest, AnEntryKeepsEachTextInItsPlace) {
    modGlobal::Main();
    modLists::m_CreateListItem(L"t", 2, 8, L"c", L"d", L"dd", L"s", L"i", L"u", L"del", L"e");
    const auto& item = ListItems->Item(L"283");
    EXPECT_EQ(283, item->Id());
    EXPECT_EQ(2, item->list());
    EXPECT_EQ(8, item->DBType());
    EXPECT_EQ(L"t|c|d|dd|s|i|u|del|e", item->Text() + L"|" + item->Category() + L"|" + item->Description() + L"|" +
                                           item->DragDrop() + L"|" + item->SelectText() + L"|" + item->InsertText() +
                                           L"|" + item->UpdateText() + L"|" + item->DeleteText() + L"|" +
                                           item->ExecuteText());
}

TEST_F(ListItemTest, ACommandThatIsNoTextIsReported) {
    clsListItem item;
    item.Constructor(L"kept", 0, 1, 0, L"", L"", L"", L"", L"", L"", L"", L"",
                     Variant::ArrayOf({Variant(L"a"), Variant::Null()}));
    EXPECT_EQ(L"clsListItem.Constructor 94", Errors.Places());
    EXPECT_EQ(L"kept", item.Text());
    EXPECT_EQ(L"a", item.GetCommand(0));
}

TEST_F(ListItemTest, EntriesAreNumberedAndKeyedInTheirOrder) {
    modGlobal::Main();
    const long before = ListItems->Count();
    for (const wchar_t* text : {L"first", L"second"}) {
        modLists::m_CreateListItem(text, 1, 0, L"", L"", L"", L"", L"", L"", L"", L"");
    }
    EXPECT_EQ(before + 2, ListItems->Count());
    const auto& second = ListItems->Item(std::to_wstring(before + 1));
    EXPECT_EQ(L"second", second->Text());
    EXPECT_EQ(before + 1, second->Id());
    EXPECT_EQ(L"", second->GetCommand(0));
}

TEST_F(ListItemTest, ValuesAreShownAsText) {
    EXPECT_EQ(L"null", modLists::m_VntToStr(Variant::Null()));
    EXPECT_EQ(L"12", modLists::m_VntToStr(Variant(12L)));
    EXPECT_EQ(L"", modLists::m_VntToStr(Variant()));
    EXPECT_EQ(L"", Errors.Places());
    EXPECT_EQ(L"", modLists::m_VntToStr(Variant::ArrayOf({Variant(1L)})));
    EXPECT_EQ(L"modLists.m_VntToStr 13", Errors.Places());
}

TEST_F(ListItemTest, TheCatalogueIsWholeAndInOrder) {
    modGlobal::Main();
    ASSERT_EQ(283, ListItems->Count());
    long count[4] = {};
    for (long id = 0; id < 283; ++id) {
        const auto& item = ListItems->Item(std::to_wstring(id));
        ASSERT_EQ(id, item->Id());
        ++count[item->list()];
        EXPECT_NE(L"", item->Text());
        EXPECT_NE(L"", item->Description());
    }
    EXPECT_EQ(10, count[1]);
    EXPECT_EQ(248, count[2]);
    EXPECT_EQ(25, count[3]);
    EXPECT_EQ(L"@", ListItems->Item(L"0")->Text());
    EXPECT_EQ(L"Displays the Kolvex Omnia help file.", ListItems->Item(L"12")->Description());
    EXPECT_EQ(L"COMMIT", ListItems->Item(L"25")->Text());
    EXPECT_EQ(L"TRUNC(n[,m]", ListItems->Item(L"53")->DragDrop());
    EXPECT_EQ(L"SELECT TRUNC(n[,m]) FROM DUAL", ListItems->Item(L"53")->ExecuteText());
    EXPECT_EQ(L"USER_NAME(n)", ListItems->Item(L"233")->Text());
    EXPECT_EQ(L"USER_NAME(n)", ListItems->Item(L"248")->Text());
    EXPECT_EQ(ListItems->Item(L"233")->Description(), ListItems->Item(L"248")->Description());
}
