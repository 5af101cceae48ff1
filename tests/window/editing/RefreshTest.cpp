#include "support/Steps.h"

// F5 in the object browser, by the keyboard and through the window's own loop.
class RefreshTest : public StepsFixture {
protected:
    RefreshTest() {
        Database.DictionaryMembers[L"Objects"] = [this](const Arguments& a) {
            Questions.push_back(a[0].ToText() + L"," + (a[1].IsNull() ? std::wstring(L"<null>") : a[1].ToText()));
            std::vector<Variant> names;
            for (const wchar_t* name : Tables) names.emplace_back(name);
            return Variant(MakeCollection(std::move(names)));
        };
        Database.DictionaryMembers[L"Columns"] = [this](const Arguments& a) {
            Questions.push_back(a[1].ToText());
            if (Lost) RaiseError(-2147467259, L"a driver", L"The connection is lost.");
            std::vector<Variant> columns;
            for (const wchar_t* name : ColumnNames) columns.push_back(Column(name, 3L));
            return Variant(MakeCollection(std::move(columns)));
        };
    }

    // HR with its tables open, and the columns of ORDERS and ITEMS.
    Step Opened() {
        return [this] {
            SetForegroundWindow(EditorWindow::Find());
            Tree.Click(Tree.At({}));
            Tree.Open(Tree.At({}));
            Tree.Open(Schema());
            Tree.Open(Folder());
            Tree.Open(Table(L"ORDERS"));
            Tree.Open(Table(L"ITEMS"));
            SetFocus(Tree.Handle());
            Questions.clear();
        };
    }
    Step Select(std::function<HTREEITEM()> item) {
        return [this, item] { Tree.Select(item()); };
    }
    // F5, and what was asked for it.
    static Step F5() { return Press(VK_F5); }
    Step Asks(const std::wstring& questions) {
        return Becomes(questions, [this] { return All(); });
    }
    std::wstring All() const {
        std::wstring all;
        for (const std::wstring& question : Questions) all += (all.empty() ? L"" : L"|") + question;
        return all;
    }
    HTREEITEM Schema() const { return Tree.Named(Tree.At({}), L"HR"); }
    HTREEITEM Folder() const { return Tree.Next(TVGN_CHILD, Schema()); }
    HTREEITEM Table(const wchar_t* name) const { return Tree.Named(Folder(), name); }
    HTREEITEM ColumnsOf(const wchar_t* table) const { return Tree.Next(TVGN_CHILD, Table(table)); }
    bool IsOpen(HTREEITEM item) const { return Tree.Expanded(item); }
    std::wstring Path() const { return Tree.SelectedPath(); }

    std::vector<const wchar_t*> Tables{L"ORDERS", L"ITEMS"};
    std::vector<const wchar_t*> ColumnNames{L"ID", L"NAME"};
    std::vector<std::wstring> Questions;
    bool Lost = false;
};

TEST_F(RefreshTest, AFolderIsReadAgainAndWhatWasOpenBelowIt) {
    InSteps(L"a", {Opened(), Select([this] { return Folder(); }),
                   [this] {
                       Tables = {L"AREAS", L"ITEMS", L"ORDERS"};
                       ColumnNames = {L"ID", L"CODE"};
                   },
                   F5(), Asks(L"1,HR|ITEMS|ORDERS"),
                   [this] {
                       EXPECT_EQ(L"AREAS|ITEMS|ORDERS", Tree.Children(Folder()));
                       EXPECT_EQ(L"ID|CODE", Tree.Children(ColumnsOf(L"ORDERS")));
                       EXPECT_TRUE(IsOpen(Table(L"ORDERS")));
                       EXPECT_TRUE(IsOpen(ColumnsOf(L"ITEMS")));
                       EXPECT_FALSE(IsOpen(Table(L"AREAS")));
                       EXPECT_EQ(L"Schemas/HR/Tables", Path());
                       EXPECT_EQ(Tree.Handle(), GetFocus());
                   }});
}

TEST_F(RefreshTest, ASchemaIsReadAsByAClickAndEverySchemaByTheRoot) {
    InSteps(L"a", {Opened(), Select([this] { return Schema(); }),
                   [this] {
                       Tree.Shut(Table(L"ITEMS"));
                       Tree.Select(Schema());
                   },
                   F5(), Asks(L"1,HR|ORDERS|2,HR"),
                   [this] {
                       EXPECT_TRUE(IsOpen(Folder()));
                       EXPECT_FALSE(IsOpen(Tree.Next(TVGN_NEXT, Folder())));
                       EXPECT_EQ(L"ORDERS|ITEMS", Tree.Children(Tree.Next(TVGN_NEXT, Folder())));
                       Questions.clear();
                       Tree.Select(Tree.At({}));
                   },
                   F5(), Asks(L"1,HR|ORDERS|2,HR"),
                   [this] {
                       EXPECT_TRUE(IsOpen(ColumnsOf(L"ORDERS")));
                       EXPECT_EQ(L"HR|Current Schema|Current Schema|Sales & Co", Tree.Children(Tree.At({})));
                   },
                   // Closed, with what a click has read: nothing of that stays.
                   [this] {
                       Tree.Shut(Schema());
                       Tree.Click(Schema());
                       Tables = {L"OTHER"};
                       Questions.clear();
                   },
                   F5(), Asks(L"1,HR|2,HR"),
                   [this] {
                       EXPECT_TRUE(IsOpen(Schema()));
                       EXPECT_EQ(L"OTHER", Tree.Children(Folder()));
                   }});
}

TEST_F(RefreshTest, TheSelectionStaysWhereTheNameIsStillThere) {
    InSteps(L"a", {Opened(), Select([this] { return Tree.Named(ColumnsOf(L"ORDERS"), L"NAME"); }),
                   [this] {
                       ColumnNames = {L"CODE", L"ID", L"NAME"};
                   },
                   F5(), Asks(L"ORDERS"),
                   [this] {
                       EXPECT_EQ(L"Schemas/HR/Tables/ORDERS/Columns/NAME", Path());
                       EXPECT_EQ(L"CODE|ID|NAME", Tree.Children(ColumnsOf(L"ORDERS")));
                       EXPECT_EQ(L"NAME is one of the columns of the ORDERS database object.", Description());
                       ColumnNames = {L"ID"};
                       Questions.clear();
                   },
                   F5(), Asks(L"ORDERS"), [this] { EXPECT_EQ(L"Schemas/HR/Tables/ORDERS/Columns", Path()); }});
}

TEST_F(RefreshTest, TheTreeIsScrolledAsBefore) {
    static wchar_t names[60][8];
    Tables.clear();
    for (int at = 0; at < 60; ++at) {
        wsprintfW(names[at], L"T%02d", at);
        Tables.push_back(names[at]);
    }
    const auto first = [this] { return Tree.Text(Tree.Next(TVGN_FIRSTVISIBLE, nullptr)); };
    InSteps(L"a", {[this] {
                       SetForegroundWindow(EditorWindow::Find());
                       Tree.Click(Tree.At({}));
                       Tree.Open(Tree.At({}));
                       Tree.Open(Schema());
                       Tree.Open(Folder());
                       SetFocus(Tree.Handle());
                       Tree.Select(Folder());
                       SendMessageW(Tree.Handle(), TVM_SELECTITEM, TVGN_FIRSTVISIBLE,
                                    reinterpret_cast<LPARAM>(Table(L"T20")));
                       Questions.clear();
                   },
                   [&] { return first() == L"T20"; }, F5(), Asks(L"1,HR"),
                   [&] {
                       EXPECT_EQ(L"T20", first());
                       EXPECT_EQ(L"Schemas/HR/Tables", Path());
                   }});
}

TEST_F(RefreshTest, ColumnsThatWereClosedStayClosed) {
    InSteps(L"a", {Opened(),
                   [this] {
                       Tree.Shut(ColumnsOf(L"ORDERS"));
                       Tree.Select(Folder());
                       Questions.clear();
                   },
                   F5(), Asks(L"1,HR|ORDERS|ITEMS"),
                   [this] {
                       EXPECT_TRUE(IsOpen(Table(L"ORDERS")));
                       EXPECT_FALSE(IsOpen(ColumnsOf(L"ORDERS")));
                       EXPECT_TRUE(IsOpen(ColumnsOf(L"ITEMS")));
                   }});
}

TEST_F(RefreshTest, ALostConnectionIsToldOnce) {
    InSteps(L"a", {Opened(), Select([this] { return Folder(); }), [this] { Lost = true; }, F5(), Asks(L"1,HR|ORDERS"),
                   [this] {
                       EXPECT_EQ(L"ORDERS|ITEMS", Tree.Children(Folder()));
                       EXPECT_FALSE(IsOpen(Table(L"ITEMS")));
                       EXPECT_EQ(L"Schemas/HR/Tables", Path());
                       Lost = false;
                       Questions.clear();
                   },
                   // And the window goes on.
                   F5(), Asks(L"1,HR|ORDERS")});
    EXPECT_EQ(L"clsDictionary.Get Columns", Errors.Only().Place());
}

TEST_F(RefreshTest, EscapeStopsIt) {
    const auto columns = Database.DictionaryMembers[L"Columns"];
    bool pressing = false;
    Database.DictionaryMembers[L"Columns"] = [&, columns](const Arguments& a) {
        if (pressing) PostMessageW(Tree.Handle(), WM_KEYDOWN, VK_ESCAPE, 1);
        return columns(a);
    };
    InSteps(L"a", {Opened(), Select([this] { return Folder(); }), [&] { pressing = true; }, F5(), Asks(L"1,HR|ORDERS"),
                   [&] {
                       EXPECT_TRUE(IsOpen(Table(L"ORDERS")));
                       EXPECT_FALSE(IsOpen(Table(L"ITEMS")));
                       // The next one is not stopped by the same key.
                       pressing = false;
                       Tree.Open(Table(L"ITEMS"));
                       Questions.clear();
                   },
                   Select([this] { return Folder(); }), F5(), Asks(L"1,HR|ORDERS|ITEMS")});
}

TEST_F(RefreshTest, WithoutASelectionItSaysSoAndInTheEditorItDoesNothing) {
    InSteps(L"a",
            {Opened(), Select([] { return static_cast<HTREEITEM>(nullptr); }), F5(),
             [] { return EditorWindow::Status() == L"Select what is to be read again in the object browser first."; },
             Select([this] { return Folder(); }), [] { SetFocus(EditorWindow::Editor()); }, F5(),
             [this] {
                 EXPECT_EQ(L"a", EditorWindow::Text());
                 EXPECT_EQ(L"", All());
             }});
}

TEST_F(RefreshTest, ALongReadingSaysHowFarItIs) {
    ColumnNames.assign(30, L"C");
    std::vector<std::wstring> notes;
    bool slow = false;
    Database.DictionaryMembers[L"DataTypeDesc"] = [&](const Arguments&) {
        if (slow) Sleep(40);
        const std::wstring note = EditorWindow::Status();
        // The loop paints nothing meanwhile.
        EXPECT_FALSE(GetUpdateRect(EditorWindow::Child(L"msctls_statusbar32"), nullptr, FALSE));
        if (notes.empty() || notes.back() != note) notes.push_back(note);
        return Variant(L"type");
    };
    std::wstring usual;
    InSteps(L"a", {Opened(), Select([this] { return Table(L"ORDERS"); }),
                   [&] {
                       usual = EditorWindow::Status();
                       notes.clear();
                       slow = true;
                   },
                   F5(), Asks(L"ORDERS"), [&] { EXPECT_EQ(usual, EditorWindow::Status()); }});
    // Nothing at first, and then at times, not for each.
    ASSERT_GE(notes.size(), 3U);
    EXPECT_LE(notes.size(), 12U);
    EXPECT_EQ(usual, notes[0]);
    EXPECT_TRUE(notes[1].starts_with(L"Reading the columns of ORDERS: ")) << testing::PrintToString(notes[1]);
    EXPECT_TRUE(notes[1].ends_with(L" by now"));
    EXPECT_NE(notes[1], notes[2]);
}
