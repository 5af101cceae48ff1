#include "support/Steps.h"

// F12 and Ctrl+Shift+F, by the keyboard and through the window's own loop.
class FindObjectTest : public StepsFixture {
protected:
    Step Read() {
        return [this] {
            SetForegroundWindow(EditorWindow::Find());
            Tree.Click(Tree.At({}));
            Tree.Open(Tree.At({}));  // a node that is in sight is clicked without a branch opening for it
            const HTREEITEM schema = Tree.Named(Tree.At({}), L"HR");
            Tree.Click(schema);
            Tree.Open(schema);
            const HTREEITEM tables = Tree.Next(TVGN_CHILD, schema);
            Tree.Open(tables);
            Tree.Click(Tree.Named(tables, L"ORDERS"));
            Asked.clear();
        };
    }
    // F12 at the caret ("|"), and what is selected then, from the root on.
    Steps Find(const std::wstring& text, const std::wstring& path) {
        return {[this, text] {
                    Tree.Select(nullptr);
                    PutWithCaret(text);
                    Key(VK_F12);
                },
                Becomes(path, [this] { return Path(); }),
                [this, text] {
                    EXPECT_EQ(L"", Asked) << testing::PrintToString(text);
                    EXPECT_EQ(EditorWindow::Editor(), GetFocus());
                }};
    }
    // Ctrl+Shift+F, whose box is answered by this text; nothing is selected before.
    Step Search(const wchar_t* text) {
        return [this, text] {
            static const wchar_t* wanted;
            wanted = text;
            Tree.Select(nullptr);
            SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
                const HWND box = FindWindowW(L"#32770", L"Find");
                if (box == nullptr || !IsWindowVisible(box)) return;
                KillTimer(nullptr, id);
                SetDlgItemTextW(box, 101, wanted);
                SendMessageW(box, WM_COMMAND, IDOK, 0);
            });
            SetFocus(EditorWindow::Editor());
            Key('F', FCONTROL | FSHIFT);
        };
    }
    std::wstring Path() const { return Tree.SelectedPath(); }
    void Run(const std::vector<Steps>& all) { InSteps(L"", Joined({{Read()}, Joined(all)})); }
};

TEST_F(FindObjectTest, TheNameAtTheCaretIsSelected) {
    std::wstring root;
    Run({{[&] { root = EditorWindow::Root(); }}});
    Run({Find(L"select * from orders|", root + L"/HR/Tables/ORDERS"),
         Find(L"select * from |ORDERS o", root + L"/HR/Tables/ORDERS"),
         Find(L"select o|.id from orders o", root + L"/HR/Tables/ORDERS"),
         Find(L"select o.i|d from orders o", root + L"/HR/Tables/ORDERS/Columns/ID"),
         Find(L"select name| from orders", root + L"/HR/Tables/ORDERS/Columns/NAME"),
         Find(L"select name|", root + L"/HR/Tables/ORDERS/Columns/NAME"),
         Find(L"select hr.orders.na|me", root + L"/HR/Tables/ORDERS/Columns/NAME"),
         Find(L"select * from hr.or|ders", root + L"/HR/Tables/ORDERS"),
         Find(L"select * from \"Sales & C|o\".x", root + L"/Sales & Co"),
         Find(L"select * from hr.\"odd \"\"na|me\"\"\"", root + L"/HR/Tables/odd \"name\""),
         Find(L"select * from hr.\"ORDERS\"|", root + L"/HR/Tables/ORDERS"),
         Find(L"select * from sales.or|ders", L"<none>"), Find(L"select 'orders|'", L"<none>"),
         Find(L"select nothing|", L"<none>"), Find(L"|", L"<none>")});
}

TEST_F(FindObjectTest, WhatIsNotFoundIsSaid) {
    std::vector<Step> steps = Find(L"customer|", L"<none>");
    steps.push_back([] {
        EXPECT_NE(std::wstring::npos,
                  EditorWindow::Status().find(L"\"customer\" is not in the object browser. "
                                              L"Branches that were not opened yet are not searched."))
            << testing::PrintToString(EditorWindow::Status());
    });
    Run({steps});
}

TEST_F(FindObjectTest, AnotherPageGivesWay) {
    std::wstring root;
    std::vector<Step> steps = Find(L"orders|", L"Schemas/HR/Tables/ORDERS");
    steps.insert(steps.begin(), [] { ShowPage(2); });
    steps.push_back([this] {
        EXPECT_TRUE(IsWindowEnabled(GetParent(Tree.Handle())));
        EXPECT_FALSE(IsWindowEnabled(GetParent(View(2))));
    });
    Run({steps});
}

TEST_F(FindObjectTest, WhatOnlyStandsForUnreadBranchesIsNotFound) {
    Run({{Search(L"undefined"), [this] {
              if (EditorWindow::Status().find(L"\"undefined\" is in no name") == std::wstring::npos) return false;
              EXPECT_EQ(L"<none>", Path());
              return true;
          }}});
}

TEST_F(FindObjectTest, TheTreeIsSearchedAndF3GoesOn) {
    const auto is = [this](const wchar_t* path) {
        return [this, path, tries = 0]() mutable {
            if (Path() != path && ++tries < 40) return false;
            EXPECT_EQ(path, Path());
            EXPECT_EQ(L"", Asked);
            return true;
        };
    };
    const auto next = [] { Key(VK_F3); };
    Run({{Search(L"orD"), is(L"Schemas/HR/Tables/ORDERS"), [this] { EXPECT_EQ(Tree.Handle(), GetFocus()); }, next,
          is(L"Schemas/HR/Views/ORDERS"), next, is(L"Schemas/HR/Tables/ORDERS")}});
}

TEST_F(FindObjectTest, OfTwoTablesTheDefaultSchemasIsMeant) {
    Database.Members[L"CurrentCatalog"] = [](const Arguments&) { return Variant(L"sales & co"); };
    std::vector<Step> steps = Find(L"select * from orders|", L"Schemas/Sales & Co/Tables/ORDERS");
    steps.insert(steps.begin(), [this] {
        Tree.Click(Tree.Named(Tree.At({}), L"Sales & Co"));
        Asked.clear();
        return true;
    });
    Run({steps, Find(L"select * from hr.orders|", L"Schemas/HR/Tables/ORDERS")});
}

TEST_F(FindObjectTest, OfTwoTablesTheOneThatIsWrittenAlikeIsMeant) {
    Database.DictionaryMembers[L"Objects"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(L"Orders"), Variant(L"ORDERS")}));
    };
    Run({Find(L"select * from ORDERS|", L"Schemas/HR/Tables/ORDERS"),
         Find(L"select * from Orders|", L"Schemas/HR/Tables/Orders"),
         Find(L"select * from orders|", L"Schemas/HR/Tables/Orders")});
}

TEST_F(FindObjectTest, BeforeASearchInTheTreeF3FindsNothingThere) {
    Run({{[this] {
              SetFocus(Tree.Handle());
              Tree.Select(Tree.At({}));
              Key(VK_F3);
              Key(VK_DOWN);
              return true;
          },
          [this] {
              if (Path() == L"Schemas") return false;
              EXPECT_EQ(L"Schemas/HR", Path());
              return true;
          }}});
}
