#include <windows.h>
#include <commctrl.h>

#include "support/Browsed.h"
#include "support/Dialogs.h"

// What the way from the root to a property leaves aside: views as well as tables, the last as well as the first, what
// is told and how.
namespace {

class BranchesTest : public BrowsedFixture {
protected:
    void OpenSchema(int schema = 0) { Tree.OpenDownTo({schema}); }
    std::wstring Calls() { return Database.Taken(); }
    bool Expanded(HTREEITEM item) const { return Tree.Expanded(item); }
    static void ExpectTold(const BoxAnswerer& box, const wchar_t* icon, const wchar_t* title, const wchar_t* text) {
        EXPECT_EQ(std::wstring(icon), box.Icon);
        EXPECT_EQ(std::wstring(title), box.Title);
        EXPECT_EQ(std::wstring(text), box.Text);
        EXPECT_EQ(1, box.Buttons);
    }
};

constexpr const wchar_t* LimitText =
    L"Exceeded the maximum number of items in the database object list. Try collapsing/closing a few branches and try "
    L"it "
    L"again.";

}  // namespace

TEST_F(BranchesTest, AFreshTreeHoldsTheRootAndOnePlaceholderAndIsClosed) {
    Inside([this] {
        EXPECT_EQ(2, Tree.Count());
        EXPECT_EQ(L"Schemas", Tree.Text(Tree.At({})));
        EXPECT_EQ(L"(undefined)", Tree.Children(Tree.At({})));
        EXPECT_FALSE(Expanded(Tree.At({})));
        EXPECT_EQ(nullptr, Tree.Selected());
        EXPECT_EQ(L"Connected CurrentCatalog UserName DBType SchemaTerm Dictionary DBTypeName ", Calls());
    });
}

TEST_F(BranchesTest, AFreshSchemaHoldsSixNodesBelowIt) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        EXPECT_EQ(1 + 4 * 7, Tree.Count());
        for (const int schema : {0, 3}) {
            EXPECT_EQ(L"Tables|Views", Tree.Children(Tree.At({schema})));
            EXPECT_EQ(L"(undefined)|(undefined)", Tree.Children(Tree.At({schema, 0})));
            EXPECT_EQ(L"(undefined)|(undefined)", Tree.Children(Tree.At({schema, 1})));
        }
        Tree.Open(Tree.At({0}));
        Tree.Open(Tree.At({0, 1}));
        EXPECT_EQ(L"Columns", Tree.Children(Tree.At({0, 1, 1})));
        EXPECT_EQ(L"(undefined)", Tree.Children(Tree.At({0, 1, 1, 0})));
    });
}

TEST_F(BranchesTest, ViewsAreReadAndThrownAwayLikeTables) {
    Inside([this] {
        OpenSchema(3);
        Tree.Open(Tree.At({3, 1}));
        EXPECT_EQ(L"2,Sales & Co,,own", Asked);
        EXPECT_EQ(L"ORDERS|odd \"name\"", Tree.Children(Tree.At({3, 1})));
        // The last one.
        Tree.Open(Tree.At({3, 1, 1}));
        EXPECT_EQ(L"Sales & Co,odd \"name\"", Asked);
        EXPECT_EQ(L"ID|NAME", Tree.Children(Tree.At({3, 1, 1, 0})));
        EXPECT_EQ(L"(undefined)", Tree.Children(Tree.At({3, 1, 0, 0})));
        Tree.Shut(Tree.At({3, 1, 1}));
        EXPECT_EQ(L"Columns", Tree.Children(Tree.At({3, 1, 1})));
        EXPECT_EQ(L"(undefined)", Tree.Children(Tree.At({3, 1, 1, 0})));
        Asked.clear();
        Tree.Open(Tree.At({3, 1, 1}));
        EXPECT_EQ(L"Sales & Co,odd \"name\"", Asked);
        Tree.Shut(Tree.At({3, 1}));
        EXPECT_EQ(L"(undefined)|(undefined)", Tree.Children(Tree.At({3, 1})));
        Tree.Open(Tree.At({3, 1}));
        EXPECT_EQ(L"2,Sales & Co,,own", Asked);
        Tree.Shut(Tree.At({3}));
        EXPECT_EQ(L"(undefined)|(undefined)", Tree.Children(Tree.At({3, 1})));
    });
}

TEST_F(BranchesTest, SystemTablesAndViewsHoldsForViewsToo) {
    Inside([this] {
        EditorWindow::Choose(L"View", L"System TablesViews");
        OpenSchema();
        Tree.Open(Tree.At({0, 1}));
        EXPECT_EQ(L"2,HR,,all", Asked);
        EditorWindow::Choose(L"View", L"System TablesViews");
        Tree.Shut(Tree.At({0, 1}));
        Tree.Open(Tree.At({0, 1}));
        EXPECT_EQ(L"2,HR,,own", Asked);
        // By a click on the schema too.
        EditorWindow::Choose(L"View", L"System TablesViews");
        Tree.Click(Tree.At({0}));
        EXPECT_EQ(L"2,HR,,all", Asked);
    });
}

TEST_F(BranchesTest, AClickOnViewsFillsTheColumnsOfTheFirstView) {
    Inside([this] {
        OpenSchema();
        Tree.Open(Tree.At({0, 1}));
        Calls();
        Asked.clear();
        Tree.Click(Tree.At({0, 1}));
        EXPECT_EQ(L"Dictionary.Columns Dictionary.DataTypeDesc ", Calls());
        EXPECT_EQ(L"HR,ORDERS", Asked);
        EXPECT_EQ(L"ID|NAME", Tree.Children(Tree.At({0, 1, 0, 0})));
        EXPECT_EQ(L"(undefined)", Tree.Children(Tree.At({0, 1, 1, 0})));
        EXPECT_TRUE(Expanded(Tree.At({0, 1, 0, 0})));
        EXPECT_FALSE(Expanded(Tree.At({0, 1, 0})));
        // And on a view those of the view.
        Tree.Click(Tree.At({0, 1, 1}));
        EXPECT_EQ(L"HR,odd \"name\"", Asked);
        EXPECT_EQ(L"ID|NAME", Tree.Children(Tree.At({0, 1, 1, 0})));
    });
}

TEST_F(BranchesTest, AFirstObjectThatIsCalledUndefinedIsNotRead) {
    const auto objects = Database.DictionaryMembers[L"Objects"];
    Database.DictionaryMembers[L"Objects"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(L"undefined"), Variant(L"ORDERS")}));
    };
    Inside([this] {
        OpenSchema();
        for (const int folder : {0, 1}) {
            Tree.Open(Tree.At({0, folder}));
            Calls();
            Tree.Click(Tree.At({0, folder}));
            EXPECT_EQ(L"", Calls());
            EXPECT_EQ(L"(undefined)", Tree.Children(Tree.At({0, folder, 0, 0})));
        }
        // Its own name does not keep it from being read when it is clicked itself.
        Tree.Click(Tree.At({0, 0, 0}));
        EXPECT_EQ(L"HR,undefined", Asked);
    });
}

TEST_F(BranchesTest, AClickOnAPlaceholderDoesNothing) {
    Inside([this] {
        OpenSchema();
        Tree.Click(Tree.At({0, 0}));
        const std::wstring before = Description();
        Calls();
        ASSERT_EQ(L"(undefined)|(undefined)", Tree.Children(Tree.At({0, 0})));
        Tree.Select(Tree.At({0, 0, 1}));
        EXPECT_EQ(before, Description());
        Tree.Key(VK_RETURN);  // a click on what is selected
        EXPECT_EQ(before, Description());
        EXPECT_EQ(L"", Calls());
        EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks-"));
    });
}

TEST_F(BranchesTest, NamesOfPropertiesAreReadInTheirCase) {
    Database.DictionaryMembers[L"Columns"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(MakeCollection(
            {Property(L"column_name", L"lower"), Property(L"Column_Name", L"mixed"), Property(L"data_type", 3L),
             Property(L"Data_Type", 3L), Property(L"SQL_DATA_TYPE", 3L), Property(L"DATA_TYPE", 5L, 9L)}))}));
    };
    Inside([this] {
        OpenSchema();
        Tree.Open(Tree.At({0, 0}));
        Tree.Open(Tree.At({0, 0, 0}));
        EXPECT_EQ(L"", Tree.Text(Tree.At({0, 0, 0, 0, 0})));
        EXPECT_EQ(L"column_name=lower|Column_Name=mixed|data_type=3|Data_Type=3|SQL_DATA_TYPE=3|DATA_TYPE=type 5/9",
                  Tree.Children(Tree.At({0, 0, 0, 0, 0, 0})));
    });
}

TEST_F(BranchesTest, TheLastColumnNameCounts) {
    Database.DictionaryMembers[L"Columns"] = [](const Arguments&) {
        return Variant(MakeCollection(
            {Variant(MakeCollection({Property(L"COLUMN_NAME", L"first"), Property(L"COLUMN_NAME", L"last")}))}));
    };
    Inside([this] {
        OpenSchema();
        Tree.Open(Tree.At({0, 0}));
        Tree.Open(Tree.At({0, 0, 0}));
        EXPECT_EQ(L"last", Tree.Text(Tree.At({0, 0, 0, 0, 0})));
    });
}

// Cleared after the dictionary was asked, where tables and views are cleared before.
TEST_F(BranchesTest, WhatWasReadStaysWhileColumnsAreAskedForAndGoesWhileObjectsAre) {
    std::vector<std::wstring> there;
    const auto columns = Database.DictionaryMembers[L"Columns"];
    const auto objects = Database.DictionaryMembers[L"Objects"];
    const auto schemas = Database.DictionaryMembers[L"Schemas"];
    Database.DictionaryMembers[L"Columns"] = [&, columns](const Arguments& a) {
        there.push_back(L"columns " + Tree.Children(Tree.At({0, 0, 0, 0})));
        return columns(a);
    };
    Database.DictionaryMembers[L"Objects"] = [&, objects](const Arguments& a) {
        there.push_back(L"objects " + Tree.Children(Tree.At({0, a[0].ToLong() == 1 ? 0 : 1})));
        return objects(a);
    };
    Database.DictionaryMembers[L"Schemas"] = [&, schemas](const Arguments& a) {
        there.push_back(L"schemas " + Tree.Children(Tree.At({})));
        return schemas(a);
    };
    Inside([&] {
        OpenSchema();
        Tree.Open(Tree.At({0, 0}));
        Tree.Click(Tree.At({0, 0, 0}));
        there.clear();
        Tree.Click(Tree.At({0, 0, 0}));
        Tree.Click(Tree.At({0}));
        Tree.Click(Tree.At({}));
    });
    EXPECT_EQ((std::vector<std::wstring>{L"columns ID|NAME", L"objects ", L"objects ",
                                         L"schemas HR|Current Schema|Current Schema|Sales & Co"}),
              there);
}

TEST_F(BranchesTest, WhatIsToldHasItsIconItsTitleAndOneButton) {
    Database.DictionaryMembers[L"Columns"] = [](const Arguments&) -> Variant {
        RaiseError(ObjectErrorBase + 10, L"brvADO", L"The table has gone.");
    };
    Database.DictionaryMembers[L"Objects"] = [](const Arguments& a) -> Variant {
        if (a[0].ToLong() == 2) RaiseError(ObjectErrorBase + 1, L"brvADO", L"none");
        return Variant(MakeCollection({Variant(L"ORDERS")}));
    };
    for (const long type : {1L, 2L}) {
        Type(type);
        Inside([&] {
            OpenSchema();
            Tree.Open(Tree.At({0, 0}));
            {
                BoxAnswerer box;
                Tree.Open(Tree.At({0, 0, 0}));
                EXPECT_EQ(1, box.Boxes);
                ExpectTold(box, L"exclamation", L"SQL Editor", L"The table has gone.");
                EXPECT_EQ(EditorWindow::Find(), box.Owner);
            }
            BoxAnswerer box;
            Tree.Open(Tree.At({0, 1}));
            EXPECT_EQ(1, box.Boxes);
            ExpectTold(box, L"information", L"brvSQLEditor",
                       type == 1
                           ? L"Active directory does not support this feature. Use the LDAP path as table name. For "
                             L"example: select * from 'LDAP://DC=example,DC=com'."
                           : L"No database dictionary information could be found. You may want to try a different "
                             L"driver / provider.");
            EXPECT_EQ(EditorWindow::Find(), box.Owner);
            EXPECT_EQ(L"", Tree.Children(Tree.At({0, 1})));  // until it is closed and opened again
        });
    }
}

TEST_F(BranchesTest, TheMenuKeyClicksTheSelectedNodeToo) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        Tree.Select(Tree.At({0}));
        Calls();
        MenuCatcher menu;
        SendMessageW(Tree.Handle(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(Tree.Handle()), -1);
        EXPECT_EQ(1, menu.Menus);
        EXPECT_EQ(L"Dictionary.Objects Dictionary.Objects ", Calls());
        EXPECT_EQ(L"ORDERS|odd \"name\"", Tree.Children(Tree.At({0, 1})));
    });
}

TEST_F(BranchesTest, WithoutASelectionNothingCanBeChosen) {
    Inside([this] {
        OpenSchema();
        Tree.Click(Tree.At({0, 0}));
        const std::wstring before = Description();
        EXPECT_NE(std::wstring::npos, MenuEntries(L"Action").find(L"Create+"));
        Tree.Select(nullptr);
        EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks-"));
        EXPECT_EQ(before, Description());
        ShowPage(1);
        ShowPage(0);
        EXPECT_EQ(L"", Description());
    });
}

// ---- the limit

namespace {

// A tree that is filled to the node: the one table of schema A has one column with so many properties. In schema B the
// tables could not be read at first, so that their folder is empty, and there are no views: the first table is added
// without a placeholder going before.
class FullTreeTest : public BranchesTest {
protected:
    FullTreeTest() {
        Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
            return Variant(MakeCollection({Variant(L"A"), Variant(L"B")}));
        };
        Database.DictionaryMembers[L"Objects"] = [this](const Arguments& a) -> Variant {
            if (a[0].ToLong() == 2) return MakeCollection({});
            if (a[1].ToText() == L"B" && !readable_) RaiseError(ObjectErrorBase + 1, L"brvADO", L"none");
            return MakeCollection({Variant(a[1].ToText() + L"1")});
        };
        Database.DictionaryMembers[L"Columns"] = [this](const Arguments& a) {
            std::vector<Variant> properties;
            const long count = a[0].ToText() == L"A" ? properties_ : 1;
            for (long at = 0; at < count; ++at) properties.push_back(Property(L"P", at));
            return Variant(MakeCollection({Variant(MakeCollection(std::move(properties)))}));
        };
    }
    // Leaves so many nodes to be added, the last of which reaches the limit.
    void Fill(long free) {
        BoxAnswerer box;
        Tree.OpenDownTo({1, 0});
        ASSERT_EQ(1, box.Boxes);
        Tree.Open(Tree.At({1, 1}));
        Tree.Open(Tree.At({0}));
        Tree.Open(Tree.At({0, 0}));
        // The root, two schemas with 6 and 2 nodes below them, a table instead of two placeholders, its columns, a
        // column, its properties.
        properties_ = 32767 - free - (1 + 7 + 3 - 2 + 2 + 2);
        Tree.Click(Tree.At({0, 0, 0}));
        ASSERT_EQ(32767 - free, Tree.Count());
        readable_ = true;
    }

private:
    long properties_ = 0;
    bool readable_ = false;
};

}  // namespace

TEST_F(FullTreeTest, AFolderWhoseFirstObjectHasNoChildGivesNoSelect) {
    Inside([this] {
        Fill(1);
        BoxAnswerer box;
        Tree.Click(Tree.At({1}));
        EXPECT_EQ(1, box.Boxes);
        ExpectTold(box, L"exclamation", L"brvSQLEditor", LimitText);
        EXPECT_EQ(EditorWindow::Find(), box.Owner);
        EXPECT_EQ(L"B1", Tree.Children(Tree.At({1, 0})));  // the node that reached the limit stays
        EXPECT_EQ(L"", Tree.Children(Tree.At({1, 0, 0})));
        Tree.Select(Tree.At({1, 0}));
        EditorWindow::SetText(L"");
        EditorWindow::Choose(L"Action", L"Select");
        EXPECT_EQ(L"", EditorWindow::Text());
        EditorWindow::Choose(L"Action", L"Describe all tables");
        EXPECT_EQ(L"\r\nDESCRIBE B.B1;\r\n", EditorWindow::Text());
    });
}

TEST_F(FullTreeTest, TheLimitIsToldWhenABranchIsClosedToo) {
    Inside([this] {
        Fill(2);
        {
            BoxAnswerer box;
            Tree.Click(Tree.At({1}));
            EXPECT_EQ(1, box.Boxes);
            EXPECT_EQ(L"Columns", Tree.Children(Tree.At({1, 0, 0})));
        }
        {
            BoxAnswerer box;
            Tree.Open(Tree.At({1, 0, 0}));  // its columns have no place
            EXPECT_EQ(1, box.Boxes);
        }
        EXPECT_TRUE(Expanded(Tree.At({1, 0, 0})));
        BoxAnswerer box;
        Tree.Shut(Tree.At({1, 0, 0}));
        EXPECT_EQ(32767, Tree.Count());
        EXPECT_EQ(1, box.Boxes);
        ExpectTold(box, L"exclamation", L"brvSQLEditor", LimitText);
        EXPECT_EQ(EditorWindow::Find(), box.Owner);
        // Where there is room again the branch closes without a word.
        Tree.Shut(Tree.At({0, 0}));
        Tree.Open(Tree.At({1, 0, 0}));
        Tree.Shut(Tree.At({1, 0, 0}));
        EXPECT_EQ(1, box.Boxes);
    });
}
