#include <windows.h>
#include <commctrl.h>

#include "support/Browsed.h"
#include "support/Dialogs.h"

namespace {

class NodeClickTest : public BrowsedFixture {
protected:
    // The whole tree of a schema, tables opened.
    void OpenTables(int schema = 0) { Tree.OpenDownTo({schema, 0}); }
    bool Expanded(HTREEITEM item) const { return Tree.Expanded(item); }
    std::wstring Calls() { return Database.Taken(); }
};

}  // namespace

TEST_F(NodeClickTest, EachKindOfNodeDescribesItself) {
    Inside([this] {
        OpenTables();
        Tree.Click(Tree.At({0, 1}));
        EXPECT_EQ(L"Views: contains a list of views defined in the HR schema.", Description());
        Tree.Open(Tree.At({0, 1}));
        Tree.Click(Tree.At({0, 1, 1}));
        EXPECT_EQ(L"odd \"name\" view: a custom-tailored presentation of data (or stored query) in the HR schema.",
                  Description());
        Tree.Click(Tree.At({0, 0}));
        EXPECT_EQ(L"Tables: contains a list of tables defined in the HR schema.", Description());
        Tree.Click(Tree.At({0, 0, 0}));
        EXPECT_EQ(
            L"ORDERS table: a basic unit of data storage in the HR schema. Open to view the column definition of this "
            L"table.",
            Description());
        Tree.Open(Tree.At({0, 0, 0}));
        Tree.Click(Tree.At({0, 0, 0, 0}));
        EXPECT_EQ(L"Columns: contains the column definition of the ORDERS database object.", Description());
        Tree.Click(Tree.At({0, 0, 0, 0, 1}));
        EXPECT_EQ(L"NAME is one of the columns of the ORDERS database object.", Description());
        // The kinds without a description leave it.
        Tree.Open(Tree.At({0, 0, 0, 0, 1}));
        Tree.Click(Tree.At({0, 0, 0, 0, 1, 0}));
        EXPECT_EQ(L"NAME is one of the columns of the ORDERS database object.", Description());
        Tree.Open(Tree.At({0, 0, 0, 0, 1, 0}));
        Tree.Click(Tree.At({0, 0, 0, 0, 1, 0, 0}));
        EXPECT_EQ(L"NAME is one of the columns of the ORDERS database object.", Description());
        Tree.Click(Tree.At({0}));
        EXPECT_EQ(L"HR schema: contains a list of database objects (tables and views).", Description());
        Tree.Click(Tree.At({}));
        EXPECT_EQ(L"Schemas: contains a list of schemas defined in your database.", Description());
    });
}

TEST_F(NodeClickTest, EmptySpaceClearsTheDescription) {
    Inside([this] {
        Tree.Click(Tree.At({}));
        EXPECT_NE(L"", Description());
        RECT client;
        GetClientRect(Tree.Handle(), &client);
        const LPARAM below = MAKELPARAM(client.right - 3, client.bottom - 3);
        SendMessageW(Tree.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, below);
        SendMessageW(Tree.Handle(), WM_LBUTTONUP, 0, below);
        EXPECT_EQ(L"", Description());
    });
}

TEST_F(NodeClickTest, TheRootReadsTheSchemasAtEachClick) {
    Inside([this] {
        OpenTables();
        Calls();
        Tree.Click(Tree.At({}));
        EXPECT_EQ(L"Dictionary.Schemas ", Calls());
        // What was open below it is gone.
        EXPECT_EQ(L"Tables|Views", Tree.Children(Tree.At({0})));
        EXPECT_EQ(L"(undefined)|(undefined)", Tree.Children(Tree.At({0, 0})));
        Tree.Click(Tree.At({}));
        EXPECT_EQ(L"Dictionary.Schemas ", Calls());
    });
}

TEST_F(NodeClickTest, ASchemaFillsItsTablesAndThenItsViewsWithoutOpeningThem) {
    std::wstring asked;
    const auto objects = Database.DictionaryMembers[L"Objects"];
    Database.DictionaryMembers[L"Objects"] = [&asked, objects](const Arguments& a) {
        asked += a[0].ToText() + L" ";
        return objects(a);
    };
    Inside([&] {
        Tree.Open(Tree.At({}));
        asked.clear();
        Tree.Click(Tree.At({0}));
        EXPECT_EQ(L"1 2 ", asked);
        EXPECT_EQ(L"ORDERS|odd \"name\"", Tree.Children(Tree.At({0, 0})));
        EXPECT_EQ(L"ORDERS|odd \"name\"", Tree.Children(Tree.At({0, 1})));
        EXPECT_FALSE(Expanded(Tree.At({0})));
        EXPECT_FALSE(Expanded(Tree.At({0, 0})));
        Tree.Open(Tree.At({0}));
        asked.clear();
        Tree.Open(Tree.At({0, 0}));
        EXPECT_EQ(L"1 ", asked);  // opened, they are read again
    });
}

TEST_F(NodeClickTest, ATableFillsItsColumnsWithoutOpeningThem) {
    Inside([this] {
        OpenTables();
        Calls();
        Tree.Click(Tree.At({0, 0, 0}));
        EXPECT_EQ(L"Dictionary.Columns Dictionary.DataTypeDesc ", Calls());
        EXPECT_FALSE(Expanded(Tree.At({0, 0, 0})));
        EXPECT_EQ(L"ID|NAME", Tree.Children(Tree.At({0, 0, 0, 0})));
        Tree.Open(Tree.At({0, 0, 0}));
        EXPECT_EQ(L"Dictionary.Columns Dictionary.DataTypeDesc ", Calls());
    });
}

TEST_F(NodeClickTest, AFolderFillsTheColumnsOfItsFirstObject) {
    Inside([this] {
        Tree.OpenDownTo({0});
        Calls();
        Tree.Click(Tree.At({0, 0}));
        EXPECT_EQ(L"", Calls());  // a placeholder has none
        Tree.Open(Tree.At({0, 0}));
        Calls();
        Tree.Click(Tree.At({0, 0}));
        EXPECT_EQ(L"Dictionary.Columns Dictionary.DataTypeDesc ", Calls());
        EXPECT_EQ(L"ID|NAME", Tree.Children(Tree.At({0, 0, 0, 0})));
        EXPECT_EQ(L"(undefined)", Tree.Children(Tree.At({0, 0, 1, 0})));
        Tree.Click(Tree.At({0, 0}));
        EXPECT_EQ(L"", Calls());  // they are there
        Tree.Open(Tree.At({0, 0, 0}));
        EXPECT_EQ(L"Dictionary.Columns Dictionary.DataTypeDesc ", Calls());  // opened, they are read again
        EXPECT_EQ(L"ID|NAME", Tree.Children(Tree.At({0, 0, 0, 0})));
        EXPECT_TRUE(Expanded(Tree.At({0, 0, 0, 0})));
        Tree.Click(Tree.At({0, 0}));
        EXPECT_EQ(L"", Calls());
        Tree.Click(Tree.At({0, 0, 0}));
        Calls();
        Tree.Click(Tree.At({0, 0, 0, 0}));  // a folder of columns: its first column has nothing to read
        EXPECT_EQ(L"", Calls());
    });
}

TEST_F(NodeClickTest, TheKeyboardDoesWhatTheMouseDoes) {
    Inside([this] {
        Tree.Click(Tree.At({}));
        Tree.Key(VK_ADD);
        EXPECT_TRUE(Expanded(Tree.At({})));
        Tree.Key(VK_DOWN);
        EXPECT_EQ(Tree.At({0}), Tree.Selected());
        EXPECT_EQ(L"HR schema: contains a list of database objects (tables and views).", Description());
        EXPECT_EQ(L"ORDERS|odd \"name\"", Tree.Children(Tree.At({0, 0})));
        Calls();
        Tree.Key(VK_RETURN);  // a click on what is selected
        EXPECT_EQ(L"Dictionary.Objects Dictionary.Objects ", Calls());
        Tree.Key(VK_SUBTRACT);
        Tree.Key(VK_UP);
        EXPECT_EQ(L"Schemas: contains a list of schemas defined in your database.", Description());
        Tree.Key(VK_SUBTRACT);
        EXPECT_FALSE(Expanded(Tree.At({})));

        // "*" opens everything below.
        Tree.Select(Tree.At({0}));
        Tree.Key(VK_MULTIPLY);
        EXPECT_EQ(L"ID|NAME", Tree.Children(Tree.At({0, 0, 0, 0})));
        EXPECT_TRUE(Expanded(Tree.At({0, 1, 1, 0})));
    });
}

TEST_F(NodeClickTest, ClosingABranchByTheKeyboardAsksNothing) {
    Inside([this] {
        OpenTables();
        Tree.Click(Tree.At({0, 0, 0}));
        Calls();
        // The selection is below the branch that closes: it moves up, which is nobody's click.
        SendMessageW(Tree.Handle(), TVM_EXPAND, TVE_COLLAPSE, reinterpret_cast<LPARAM>(Tree.At({0})));
        EXPECT_EQ(L"", Calls());
    });
}

TEST_F(NodeClickTest, OpeningEverythingStopsAtTheLimitWithOneMessage) {
    Tables(2000);
    BoxAnswerer box;
    Inside([this] {
        Tree.Open(Tree.At({}));
        Tree.Select(Tree.At({0}));
        Tree.Key(VK_MULTIPLY);
        EXPECT_EQ(32767, Tree.Count());
    });
    EXPECT_EQ(1, box.Boxes);
}

TEST_F(NodeClickTest, AnotherProgramsSelectionIsFollowedWithoutAsking) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        Calls();
        Tree.Select(Tree.At({0}));
        EXPECT_EQ(L"HR schema: contains a list of database objects (tables and views).", Description());
        EXPECT_EQ(0U,
                  MenuEntries(L"Action").find(L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks+[Describe all "
                                              L"tables/views+]"));
        EXPECT_EQ(L"", Calls());
    });
}

TEST_F(NodeClickTest, TheRightButtonShowsTheActionMenuForWhatIsSelected) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        MenuCatcher menu;
        Tree.Select(nullptr);
        Tree.RightClick(Tree.At({0}));
        EXPECT_EQ(0, menu.Menus);
        EXPECT_EQ(nullptr, Tree.Selected());

        Tree.Open(Tree.At({0}));
        Tree.Click(Tree.At({0}));
        Calls();
        // When the button comes up, beside it: the menu would take the release for a choice.
        POINT at{};
        ASSERT_TRUE(Tree.Place(Tree.At({0, 1}), at));
        SendMessageW(Tree.Handle(), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(at.x, at.y));
        EXPECT_EQ(0, menu.Menus);
        SendMessageW(Tree.Handle(), WM_RBUTTONUP, 0, MAKELPARAM(at.x, at.y));
        EXPECT_EQ(1, menu.Menus);
        ClientToScreen(Tree.Handle(), &at);
        EXPECT_EQ(at.x, menu.At.x);
        EXPECT_EQ(at.y, menu.At.y);
        EXPECT_EQ(Tree.At({0}), Tree.Selected());
        EXPECT_EQ(L"Dictionary.Objects Dictionary.Objects ", Calls());  // a click on the selected node
        EXPECT_EQ(L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks+[Describe all tables/views+]", menu.Entries);

        // The key opens it beside the node.
        menu.Menus = 0;
        SendMessageW(Tree.Handle(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(Tree.Handle()), -1);
        EXPECT_GE(menu.Menus, 1);
        RECT bounds;
        GetWindowRect(Tree.Handle(), &bounds);
        EXPECT_TRUE(PtInRect(&bounds, menu.At)) << menu.At.x << "," << menu.At.y;
    });
}

TEST_F(NodeClickTest, TheSelectionThatGoesToAClosedBranchIsFollowed) {
    Inside([this] {
        OpenTables();
        for (const bool by_mouse : {true, false}) {
            Tree.Click(Tree.At({0, 0, 0}));
            EXPECT_EQ(0U, Description().find(L"ORDERS table"));
            Calls();
            const HTREEITEM tables = Tree.At({0, 0});
            if (by_mouse) {
                SendMessageW(Tree.Handle(), TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(tables));
                POINT at{};
                ASSERT_TRUE(Tree.Place(tables, at));
                TVHITTESTINFO hit{};
                for (hit.pt = at; (hit.flags & TVHT_ONITEMBUTTON) == 0 && hit.pt.x > 0; --hit.pt.x)
                    SendMessageW(Tree.Handle(), TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
                SendMessageW(Tree.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(hit.pt.x, hit.pt.y));
                SendMessageW(Tree.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(hit.pt.x, hit.pt.y));
            } else {
                SendMessageW(Tree.Handle(), TVM_EXPAND, TVE_COLLAPSE, reinterpret_cast<LPARAM>(tables));
            }
            ASSERT_EQ(tables, Tree.Selected());
            EXPECT_EQ(L"Tables: contains a list of tables defined in the HR schema.", Description());
            EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select+|Insert-|Update-|Delete-|Execute-|Create+|Tasks+"));
            EXPECT_EQ(L"", Calls());  // and the dictionary is left in peace
            Tree.Open(tables);
        }
    });
}

TEST_F(NodeClickTest, AnEmptyTreeTakesEveryEvent) {
    Database.Members[L"Connected"] = [](const Arguments&) { return Variant(false); };
    Inside([this] {
        MenuCatcher menu;
        EXPECT_EQ(0, Tree.Count());
        Tree.RightClick(nullptr);
        EXPECT_EQ(0, menu.Menus);
        SendMessageW(Tree.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
        SendMessageW(Tree.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
        for (const WPARAM key : {VK_DOWN, VK_MULTIPLY, VK_RETURN, VK_ADD, VK_SUBTRACT, VK_RIGHT}) Tree.Key(key);
        SendMessageW(Tree.Handle(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(Tree.Handle()), -1);
        EXPECT_EQ(L"", Description());
    });
}

TEST_F(NodeClickTest, TheFirstPageDescribesItsNodeAgain) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        Tree.Click(Tree.At({3}));
        ShowPage(1);
        EXPECT_EQ(L"Saves the changes in the current transaction to the database.", Description());
        Calls();
        ShowPage(0);
        EXPECT_EQ(L"Sales & Co schema: contains a list of database objects (tables and views).", Description());
        EXPECT_EQ(L"", Calls());
        // And nothing where nothing is selected.
        Tree.Select(nullptr);
        ShowPage(1);
        EXPECT_NE(L"", Description());
        ShowPage(0);
        EXPECT_EQ(L"", Description());
    });
}

TEST_F(NodeClickTest, SelectionAndScrollPositionStayWhileABranchFills) {
    Tables(300);
    Inside([this] {
        OpenTables();
        EXPECT_EQ(Tree.At({0, 0}), Tree.Selected());  // the branch that was opened
        const HTREEITEM table = Tree.At({0, 0, 150});
        SendMessageW(Tree.Handle(), TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(table));
        const HTREEITEM first = Tree.Next(TVGN_FIRSTVISIBLE, nullptr);
        // Its columns are read and added below it, where they do not show yet.
        Tree.Click(table);
        EXPECT_EQ(L"ID|NAME", Tree.Children(Tree.Next(TVGN_CHILD, table)));
        EXPECT_EQ(first, Tree.Next(TVGN_FIRSTVISIBLE, nullptr));
        EXPECT_EQ(table, Tree.Selected());
        // Opened and closed again, the table is still what is selected, and still in sight.
        Tree.Key(VK_RIGHT);
        EXPECT_EQ(table, Tree.Selected());
        Tree.Key(VK_LEFT);
        EXPECT_EQ(table, Tree.Selected());
        POINT at{};
        EXPECT_TRUE(Tree.Place(table, at));
        RECT client;
        GetClientRect(Tree.Handle(), &client);
        EXPECT_TRUE(at.y >= client.top && at.y < client.bottom);
    });
}

TEST_F(NodeClickTest, AMouseThatIsTakenAwayClicksNothing) {
    Inside([this] {
        Tree.OpenDownTo({0, 0});
        Asked.clear();
        POINT at{};
        ASSERT_TRUE(Tree.Place(Tree.At({0, 0, 1}), at));
        SendMessageW(Tree.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        ReleaseCapture();
        SendMessageW(Tree.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
        EXPECT_EQ(L"", Asked);
        // What was pressed is selected and described all the same.
        EXPECT_EQ(0U, Description().find(L"odd \"name\" table: "));
        Tree.Click(Tree.At({0, 0, 0}));
        EXPECT_EQ(L"HR,ORDERS", Asked);
    });
}

// "*" opens branches, and is no beginning of a name.
TEST_F(NodeClickTest, KeysWithAMeaningAreNotSearchedFor) {
    Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(L"HR"), Variant(L"*odd"), Variant(L" odd")}));
    };
    Inside([this] {
        Tree.Open(Tree.At({}));
        Tree.Select(Tree.At({0}));
        for (const WPARAM character : {L'*', L' ', L'\r'}) {
            SendMessageW(Tree.Handle(), WM_CHAR, character, 1);
            EXPECT_EQ(Tree.At({0}), Tree.Selected()) << character;
        }
    });
}

TEST_F(NodeClickTest, AnotherProgramCannotTakeAnItemFromItsNode) {
    Inside([this] {
        Tree.OpenDownTo({0, 0});
        TVITEMW item{};
        item.mask = TVIF_HANDLE | TVIF_PARAM;
        item.hItem = Tree.At({0, 0, 0});
        EXPECT_FALSE(SendMessageW(Tree.Handle(), TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item)));
        EXPECT_FALSE(SendMessageW(Tree.Handle(), TVM_SETITEMW, 0, 0));
        Asked.clear();
        Tree.Click(Tree.At({0, 0, 0}));
        EXPECT_EQ(L"HR,ORDERS", Asked);
    });
}
