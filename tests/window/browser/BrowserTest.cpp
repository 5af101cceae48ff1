#include <windows.h>
#include <commctrl.h>

#include "automation/App.h"
#include "support/Browsed.h"
#include "support/Dialogs.h"

namespace {

class BrowserTest : public BrowsedFixture {
protected:
    HTREEITEM At(std::initializer_list<int> path) const { return Tree.At(path); }
    std::wstring Children(HTREEITEM item) const { return Tree.Children(item); }
    void Open(HTREEITEM item) const { Tree.Open(item); }
    void OpenDownTo(std::initializer_list<int> path) const { Tree.OpenDownTo(path); }
    void Shut(HTREEITEM item) const { Tree.Shut(item); }
};

}  // namespace

TEST_F(BrowserTest, TheWholeWayFromTheRootToAPropertyAndBack) {
    Inside([this] {
        EXPECT_EQ(L"(undefined)", Children(At({})));
        Open(At({}));
        EXPECT_EQ(L"HR|Current Schema|Current Schema|Sales & Co", Children(At({})));
        EXPECT_EQ(L"Tables|Views", Children(At({0})));
        EXPECT_EQ(L"(undefined)|(undefined)", Children(At({0, 0})));

        Open(At({0}));
        Open(At({0, 0}));
        EXPECT_EQ(L"1,HR,,own", Asked);
        EXPECT_EQ(L"ORDERS|odd \"name\"", Children(At({0, 0})));
        EXPECT_EQ(L"Columns", Children(At({0, 0, 0})));
        Open(At({0, 1}));
        EXPECT_EQ(L"2,HR,,own", Asked);

        // Opening a table fills its columns at once.
        Open(At({0, 0, 0}));
        EXPECT_EQ(L"HR,ORDERS", Asked);
        EXPECT_EQ(L"ID|NAME", Children(At({0, 0, 0, 0})));
        EXPECT_EQ(L"Properties", Children(At({0, 0, 0, 0, 0})));
        EXPECT_EQ(L"TABLE_CAT=null|COLUMN_NAME=ID|DATA_TYPE=type 3/7|NULLABLE=null", Children(At({0, 0, 0, 0, 0, 0})));
        EXPECT_EQ(L"TABLE_CAT=null|COLUMN_NAME=NAME|DATA_TYPE=text|NULLABLE=null", Children(At({0, 0, 0, 0, 1, 0})));

        // A closed folder of columns keeps them, a closed table does not.
        Shut(At({0, 0, 0, 0}));
        EXPECT_EQ(L"ID|NAME", Children(At({0, 0, 0, 0})));
        Shut(At({0, 0, 0}));
        EXPECT_EQ(L"(undefined)", Children(At({0, 0, 0, 0})));
        Asked.clear();
        Open(At({0, 0, 0}));
        EXPECT_EQ(L"HR,ORDERS", Asked);
        Shut(At({0, 0}));
        EXPECT_EQ(L"(undefined)|(undefined)", Children(At({0, 0})));
        Shut(At({0}));
        EXPECT_EQ(L"Tables|Views", Children(At({0})));
        EXPECT_EQ(L"(undefined)|(undefined)", Children(At({0, 1})));
        Shut(At({}));
        EXPECT_EQ(L"HR|Current Schema|Current Schema|Sales & Co", Children(At({})));  // the list of schemas stays
    });
}

TEST_F(BrowserTest, TheDefaultSchemaIsAskedForAsNull) {
    Inside([this] {
        Open(At({}));
        Open(At({1}));
        Open(At({1, 0}));
        EXPECT_EQ(L"1,<null>,,own", Asked);
        Open(At({1, 0, 0}));
        EXPECT_EQ(L"<null>,ORDERS", Asked);
    });
}

TEST_F(BrowserTest, SystemTablesFollowTheMenuAtEachExpand) {
    Inside([this] {
        OpenDownTo({0, 0});
        EditorWindow::Choose(L"View", L"System TablesViews");
        EXPECT_EQ(L"1,HR,,own", Asked);
        Shut(At({0, 0}));
        Open(At({0, 0}));
        EXPECT_EQ(L"1,HR,,all", Asked);
    });
}

TEST_F(BrowserTest, ADatabaseWithoutSchemasHasTheCurrentOne) {
    std::wstring asked;
    Database.DictionaryMembers[L"Schemas"] = [&asked](const Arguments& a) {
        asked = a[0].ToText() + L"," + (a[1].ToBoolean() ? L"all" : L"own");
        return Variant::Nothing();
    };
    Inside([this] {
        Open(At({}));
        EXPECT_EQ(L"Current Schema", Children(At({})));
    });
    EXPECT_EQ(L",all", asked);
}

TEST_F(BrowserTest, AMissingDictionaryIsToldInTheWordsOfTheDatabaseType) {
    Database.DictionaryMembers[L"Objects"] = [](const Arguments&) -> Variant {
        RaiseError(ObjectErrorBase + 1, L"brvADO", L"none");
    };
    for (const long type : {4L, 1L}) {
        Database.Members[L"DBType"] = [type](const Arguments&) { return Variant(type); };
        BoxAnswerer box;
        Inside([this] {
            OpenDownTo({0, 0});
            EXPECT_EQ(L"", Children(At({0, 0})));
        });
        EXPECT_EQ(1, box.Boxes);
        EXPECT_EQ(App::Title, box.Title);
        if (type == 1) {
            EXPECT_EQ(0U, box.Text.find(
                              L"Active directory does not support this feature. Use the LDAP path as table name. "));
            EXPECT_NE(std::wstring::npos, box.Text.find(L"select * from 'LDAP://DC=example,DC=com'"));
        } else {
            EXPECT_EQ(
                L"No database dictionary information could be found. You may want to try a different driver / "
                L"provider.",
                box.Text);
        }
    }
}

TEST_F(BrowserTest, ColumnsThatCannotBeReadAreToldInTheHostsWords) {
    Database.DictionaryMembers[L"Columns"] = [](const Arguments&) -> Variant {
        RaiseError(ObjectErrorBase + 10, L"brvADO", L"The table has gone.");
    };
    BoxAnswerer box;
    Inside([this] {
        OpenDownTo({0, 0, 0});
        EXPECT_EQ(L"", Children(At({0, 0, 0, 0})));
    });
    EXPECT_EQ(1, box.Boxes);
    EXPECT_EQ(L"SQL Editor", box.Title);
    EXPECT_EQ(L"The table has gone.", box.Text);
}

TEST_F(BrowserTest, APropertyThatCannotBeReadIsToldAndTheNextStatementFollows) {
    // The value of the first property fails when it is read for the first time.
    int read = 0;
    auto* made = new DynamicObject;
    const Object value = Object::Attach(made);
    made->DefineDefault([&read](const Arguments&) -> Variant {
        if (++read == 1) RaiseError(ObjectErrorBase + 10, L"brvADO", L"The column has gone.");
        return Variant(L"ID");
    });
    Database.DictionaryMembers[L"Columns"] = [&](const Arguments&) {
        return Variant(MakeCollection(
            {Variant(MakeCollection({Property(L"COLUMN_NAME", Variant(value)), Property(L"DATA_TYPE", 3L)})),
             Column(L"NAME", 3L)}));
    };
    BoxAnswerer box;
    Inside([this] {
        OpenDownTo({0, 0, 0});
        EXPECT_EQ(L"|NAME", Children(At({0, 0, 0, 0})));
        EXPECT_EQ(L"COLUMN_NAME=ID|DATA_TYPE=type 3/7", Children(At({0, 0, 0, 0, 0, 0})));
    });
    EXPECT_EQ(1, box.Boxes);
    EXPECT_EQ(L"SQL Editor", box.Title);
    EXPECT_EQ(L"The column has gone.", box.Text);
}

TEST_F(BrowserTest, ThatNumberOfAnotherSourceIsReported) {
    auto* made = new DynamicObject;
    const Object value = Object::Attach(made);
    made->DefineDefault(
        [](const Arguments&) -> Variant { RaiseError(ObjectErrorBase + 10, L"another", L"The column has gone."); });
    Database.DictionaryMembers[L"Columns"] = [&](const Arguments&) {
        return Variant(MakeCollection({Variant(MakeCollection({Property(L"COLUMN_NAME", Variant(value))}))}));
    };
    BoxAnswerer box;
    Inside([this] { OpenDownTo({0, 0, 0}); });
    EXPECT_EQ(0, box.Boxes);
    EXPECT_EQ(L"modLists.PopulateDBObjColumns", Errors.Only().Place());
    EXPECT_EQ(L"another", Errors.Only().Source);
}

TEST_F(BrowserTest, AFailureThatNamesNoSourceIsNotTakenForTheComponentsOwn) {
    long number = 0;
    auto* made = new DynamicObject;
    const Object name = Object::Attach(made);
    made->DefineDefault([&number](const Arguments&) -> Variant { RaiseError(number, L"", L"somebody else's"); });
    Database.DictionaryMembers[L"Objects"] = [&](const Arguments&) {
        return Variant(MakeCollection({Variant(L"A"), Variant(name)}));
    };
    // "No dictionary", the node limit, and another number of the range.
    for (const long one : {ObjectErrorBase + 1, ObjectErrorBase + 2, ObjectErrorBase + 3}) {
        number = one;
        BoxAnswerer box;
        Errors.Forget();
        Inside([this] {
            OpenDownTo({0, 0});
            EXPECT_EQ(L"A", Children(At({0, 0})));
        });
        EXPECT_EQ(0, box.Boxes);
        EXPECT_EQ(L"modLists.PopulateDBObjTablesViews " + std::to_wstring(one), Errors.Places());
    }
}

TEST_F(BrowserTest, AnotherErrorIsReportedAndLeavesWhatWasBuilt) {
    Database.DictionaryMembers[L"Objects"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(L"A"), Variant::Null(), Variant(L"B")}));
    };
    Inside([this] {
        OpenDownTo({0, 0});
        EXPECT_EQ(L"A", Children(At({0, 0})));
    });
    EXPECT_EQ(L"modLists.PopulateDBObjTablesViews 94", Errors.Places());
}

TEST_F(BrowserTest, AFullTreeIsToldOnceAndStaysWithinItsLimit) {
    Tables(11000);
    BoxAnswerer box;
    Inside([this] {
        OpenDownTo({0, 0});
        EXPECT_EQ(32767, Tree.Count());
        Shut(At({0, 0}));
        EXPECT_EQ(L"(undefined)|(undefined)", Children(At({0, 0})));
    });
    EXPECT_EQ(1, box.Boxes);
    EXPECT_EQ(App::Title, box.Title);
    EXPECT_EQ(
        L"Exceeded the maximum number of items in the database object list. Try collapsing/closing a few branches and "
        L"try "
        L"it again.",
        box.Text);
}

// A folder that was emptied by a failed read asks for room in a tree that is full since.
TEST_F(BrowserTest, AFullTreeTakesNoMoreAndCanBeEmptied) {
    bool fails = false;
    Tables(11000);
    Database.DictionaryMembers[L"Objects"] = [&, objects = Database.DictionaryMembers[L"Objects"]](const Arguments& a) {
        if (fails) RaiseError(ErrorNumber::DeviceIOError);
        return objects(a);
    };
    const BoxAnswerer box;
    Inside([&] {
        OpenDownTo({0, 0});
        fails = true;
        Tree.Click(At({2}));
        fails = false;
        EXPECT_GT(32767, Tree.Count());
        Tree.Click(At({3}));
        EXPECT_EQ(32767, Tree.Count());
        for (int time = 0; time < 3; ++time) Tree.Click(At({2}));
        EXPECT_EQ(32767, Tree.Count());
        Errors.Forget();
        Shut(At({0, 0}));
        EXPECT_EQ(L"(undefined)|(undefined)", Children(At({0, 0})));
        EXPECT_GT(1000, Tree.Count());
        Shut(At({}));
    });
    EXPECT_LE(3, box.Boxes);
}
