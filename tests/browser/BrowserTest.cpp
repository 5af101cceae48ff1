#include <windows.h>
#include <commctrl.h>

#include "Fakes.h"
#include "automation/App.h"

namespace {

constexpr long Base = ObjectErrorBase;

class BrowserTest : public ComponentFixture {
protected:
    BrowserTest() {
        Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
            return Variant(MakeCollection({Variant(L"HR"), Variant(L""), Variant::Null(), Variant(L"Sales & Co")}));
        };
        Database.DictionaryMembers[L"Objects"] = [this](const Arguments& a) {
            Asked = a[0].ToText() + L"," + (a[1].IsNull() ? std::wstring(L"<null>") : a[1].ToText()) + L"," + a[2].ToText() + L"," +
                    (a[3].ToBoolean() ? L"all" : L"own");
            return Variant(MakeCollection({Variant(L"ORDERS"), Variant(L"odd \"name\"")}));
        };
        Database.DictionaryMembers[L"Columns"] = [this](const Arguments& a) {
            Asked = (a[0].IsNull() ? std::wstring(L"<null>") : a[0].ToText()) + L"," + a[1].ToText();
            return Variant(MakeCollection({Column(L"ID", 3L), Column(L"NAME", L"text")}));
        };
        Database.DictionaryMembers[L"DataTypeDesc"] = [](const Arguments& a) {
            return Variant(L"type " + a[0].ToText() + L"/" + a[1].ToText());
        };
    }
    static Variant Property(const Variant& name, const Variant& value, const Variant& attribute = Variant(7L), long lower = 0) {
        return Variant::ArrayOf({name, value, attribute}, lower);
    }
    static Variant Column(const wchar_t* name, const Variant& type) {
        return Variant(MakeCollection({Property(L"TABLE_CAT", Variant::Null()), Property(L"COLUMN_NAME", name, Variant(), 1),
                                       Property(L"DATA_TYPE", type), Property(L"NULLABLE", Variant::Null())}));
    }

    // ---- the tree as it is shown
    static HWND Tree() { return GetDlgItem(GetDlgItem(EditorWindow::Find(), 1020), 1030); }
    static HTREEITEM Next(UINT relation, HTREEITEM item) {
        return reinterpret_cast<HTREEITEM>(SendMessageW(Tree(), TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
    }
    static std::wstring Text(HTREEITEM item) {
        wchar_t text[300]{};
        TVITEMW read{};
        read.mask = TVIF_TEXT;
        read.hItem = item;
        read.pszText = text;
        read.cchTextMax = 300;
        SendMessageW(Tree(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&read));
        return text;
    }
    // The item at the end of child positions, from the root.
    static HTREEITEM At(std::initializer_list<int> path) {
        HTREEITEM item = Next(TVGN_ROOT, nullptr);
        for (int position : path) {
            item = Next(TVGN_CHILD, item);
            while (position-- > 0 && item != nullptr) item = Next(TVGN_NEXT, item);
        }
        return item;
    }
    static std::wstring Children(HTREEITEM item) {
        std::wstring texts;
        for (HTREEITEM child = Next(TVGN_CHILD, item); child != nullptr; child = Next(TVGN_NEXT, child)) {
            texts += (texts.empty() ? L"" : L"|") + Text(child);
        }
        return texts;
    }
    // As a user does it, by the keyboard.
    static void Press(HTREEITEM item, WPARAM key) {
        SendMessageW(Tree(), TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
        SendMessageW(Tree(), WM_KEYDOWN, key, 1);
    }
    static void Open(HTREEITEM item) { Press(item, VK_RIGHT); }
    static void Shut(HTREEITEM item) { Press(item, VK_LEFT); }

    void Inside(const std::function<void()>& work) {
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", Database.Make());
        DisplayAndClose(editor, L"select 1", work);
    }
    // Answers the next message box with its default button; what it said is kept.
    static inline std::wstring BoxText, BoxTitle;
    static inline int Boxes = 0;
    static void AnswerBoxes() {
        Boxes = 0;
        SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
            const HWND box = FindWindowW(L"#32770", nullptr);
            if (box == nullptr) return;
            KillTimer(nullptr, id);
            ++Boxes;
            wchar_t text[500]{};
            GetWindowTextW(box, text, 500);
            BoxTitle = text;
            GetDlgItemTextW(box, 0xFFFF, text, 500);
            BoxText = text;
            PostMessageW(box, WM_COMMAND, IDCANCEL, 0);
            PostMessageW(box, WM_COMMAND, IDOK, 0);
        });
    }
    std::wstring Asked;
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
    EXPECT_EQ(L"", Errors.Places());
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
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(BrowserTest, SystemTablesFollowTheMenuAtEachExpand) {
    Inside([this] {
        Open(At({}));
        Open(At({0}));
        Open(At({0, 0}));
        EditorWindow::Choose(L"View", L"System TablesViews");
        EXPECT_EQ(L"1,HR,,own", Asked);
        Shut(At({0, 0}));
        Open(At({0, 0}));
        EXPECT_EQ(L"1,HR,,all", Asked);
    });
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(BrowserTest, ADatabaseWithoutSchemasHasTheCurrentOne) {
    std::wstring asked;
    Database.DictionaryMembers[L"Schemas"] = [&asked](const Arguments& a) {
        asked = a[0].ToText() + L"," + (a[1].ToBoolean() ? L"all" : L"own");
        return Variant::Nothing();
    };
    Inside([] {
        Open(At({}));
        EXPECT_EQ(L"Current Schema", Children(At({})));
    });
    EXPECT_EQ(L",all", asked);
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(BrowserTest, AMissingDictionaryIsToldInTheWordsOfTheDatabaseType) {
    Database.DictionaryMembers[L"Objects"] = [](const Arguments&) -> Variant { RaiseError(Base + 1, L"brvADO", L"none"); };
    for (const long type : {4L, 1L}) {
        Database.Members[L"DBType"] = [type](const Arguments&) { return Variant(type); };
        Inside([] {
            Open(At({}));
            Open(At({0}));
            AnswerBoxes();
            Open(At({0, 0}));
            EXPECT_EQ(L"", Children(At({0, 0})));
        });
        EXPECT_EQ(1, Boxes);
        EXPECT_EQ(App::Title, BoxTitle);
        if (type == 1) {
            EXPECT_EQ(0U, BoxText.find(L"Active directory does not support this feature. Use the LDAP path as table name. "));
            EXPECT_NE(std::wstring::npos, BoxText.find(L"select * from 'LDAP://DC=example,DC=com'"));
        } else {
            EXPECT_EQ(L"No database dictionary information could be found. You may want to try a different driver / provider.",
                      BoxText);
        }
    }
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(BrowserTest, ColumnsThatCannotBeReadAreToldInTheHostsWords) {
    Database.DictionaryMembers[L"Columns"] = [](const Arguments&) -> Variant {
        RaiseError(Base + 10, L"brvADO", L"The table has gone.");
    };
    Inside([] {
        Open(At({}));
        Open(At({0}));
        Open(At({0, 0}));
        AnswerBoxes();
        Open(At({0, 0, 0}));
        EXPECT_EQ(L"", Children(At({0, 0, 0, 0})));
    });
    EXPECT_EQ(1, Boxes);
    EXPECT_EQ(L"SQL Editor", BoxTitle);
    EXPECT_EQ(L"The table has gone.", BoxText);
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(BrowserTest, AnotherErrorIsReportedAndLeavesWhatWasBuilt) {
    Database.DictionaryMembers[L"Objects"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(L"A"), Variant::Null(), Variant(L"B")}));
    };
    Inside([] {
        Open(At({}));
        Open(At({0}));
        Open(At({0, 0}));
        EXPECT_EQ(L"A", Children(At({0, 0})));
    });
    EXPECT_EQ(L"modLists.PopulateDBObjTablesViews 94", Errors.Places());
}

TEST_F(BrowserTest, AFullTreeIsToldOnceAndStaysWithinItsLimit) {
    Database.DictionaryMembers[L"Objects"] = [](const Arguments&) {
        std::vector<Variant> names;
        for (int at = 0; at < 11000; ++at) names.push_back(Variant(L"T" + std::to_wstring(at)));
        return Variant(MakeCollection(std::move(names)));
    };
    Inside([] {
        Open(At({}));
        Open(At({0}));
        AnswerBoxes();
        Open(At({0, 0}));
        EXPECT_EQ(32767, SendMessageW(Tree(), TVM_GETCOUNT, 0, 0) & 0xFFFF);
        Shut(At({0, 0}));
        EXPECT_EQ(L"(undefined)|(undefined)", Children(At({0, 0})));
    });
    EXPECT_EQ(1, Boxes);
    EXPECT_EQ(App::Title, BoxTitle);
    EXPECT_EQ(L"Exceeded the maximum number of items in the database object list. Try collapsing/closing a few branches and try "
              L"it again.",
              BoxText);
    EXPECT_EQ(L"", Errors.Places());
}
