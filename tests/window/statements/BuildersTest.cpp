#include <windows.h>
#include <commctrl.h>

#include "support/Browsed.h"

// Statements as the Action menu writes them, for every database type whose statements differ and for others.
namespace {

struct Dialect {
    long Type;
    bool Schema;  // whether another user's schema is written
    const wchar_t* BeforeTable;
    const wchar_t* AfterTable;
};

const Dialect Dialects[] = {
    {0, false, L"SELECT top 100 * FROM ", L""},    {1, false, L"SELECT top 100 * FROM ", L""},
    {2, false, L"SELECT first 100 * FROM ", L""},  {4, true, L"SELECT * FROM ", L" WHERE rownum <= 100"},
    {8, true, L"SELECT top 100 * FROM ", L""},     {13, true, L"SELECT * FROM ", L"  fetch first 100 rows only"},
    {17, false, L"SELECT * FROM ", L" LIMIT 100"}, {24, false, L"SELECT top 100 * FROM ", L""},
    {26, true, L"SELECT top 100 * FROM ", L""},    {27, true, L"SELECT * FROM ", L" LIMIT 100"},
    {28, false, L"SELECT first 100 * FROM ", L""}, {40, true, L"SELECT top 100 * FROM ", L""},
    {99, false, L"SELECT top 100 * FROM ", L""},   {-1, false, L"SELECT top 100 * FROM ", L""},
};

class BuildersTest : public BrowsedFixture {
protected:
    BuildersTest() {
        Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
            return Variant(
                MakeCollection({Variant(L"SALES"), Variant(L"Scott"), Variant(L""), Variant(L"CURRENT schema")}));
        };
        Database.DictionaryMembers[L"Objects"] = [](const Arguments& a) {
            if (a[0].ToLong() == 1) return Variant(MakeCollection({Variant(L"ORDERS"), Variant(L"order lines")}));
            return Variant(MakeCollection({Variant(L"TOTALS")}));
        };
        Columns({L"ID", L"full name"});
    }
    // What an entry of the Action menu inserts for a node, without the line break before it and the semicolon after
    // it.
    std::wstring Written(HTREEITEM item, const wchar_t* entry) {
        Tree.Click(item);
        return Written(entry);
    }
    std::wstring Written(const wchar_t* entry) {
        EditorWindow::SetText(L"");
        EditorWindow::Choose(L"Action", entry);
        std::wstring text = EditorWindow::Text();
        if (text.empty()) return L"<nothing>";
        EXPECT_EQ(L"\r\n", text.substr(0, 2));
        EXPECT_EQ(L";\r\n", text.substr(text.size() - 3));
        return text.substr(2, text.size() - 5);
    }
    void OpenAll(int schema) {
        Tree.OpenDownTo({schema, 0});
        Tree.Open(Tree.At({schema, 1}));
    }
};

}  // namespace

TEST_F(BuildersTest, EachDatabaseTypeQualifiesAndLimitsInItsWay) {
    for (const Dialect& dialect : Dialects) {
        Type(dialect.Type);
        Inside([&] {
            SCOPED_TRACE(dialect.Type);
            const std::wstring sales = dialect.Schema ? L"SALES." : L"";
            const std::wstring before = dialect.BeforeTable;
            const std::wstring after = dialect.AfterTable;
            OpenAll(0);
            const HTREEITEM table = Tree.At({0, 0, 1});
            EXPECT_EQ(L"SELECT COUNT(*) FROM " + sales + L"[order lines]", Written(table, L"Count rows"));
            EXPECT_EQ(before + sales + L"[order lines]" + after, Written(table, L"Sample rows"));
            EXPECT_EQ(L"DESCRIBE SALES.order lines", Written(table, L"Describe table"));
            EXPECT_EQ(L"SELECT ID\r\n, [full name]\r\nFROM " + sales + L"[order lines]\r\n", Written(table, L"Select"));
            EXPECT_EQ(L"INSERT INTO " + sales +
                          L"[order lines]\r\n( ID\r\n, [full name]\r\n) VALUES\r\n( ID_value\r\n, full name_value\r\n)",
                      Written(table, L"Insert"));
            EXPECT_EQ(L"UPDATE " + sales +
                          L"[order lines]\r\nSET ID = value\r\n, [full name] = value\r\nWHERE ID = value\r\n AND [full "
                          L"name] = value",
                      Written(table, L"Update"));
            EXPECT_EQ(L"DELETE FROM " + sales + L"[order lines]\r\nWHERE\tID = value\r\nAND\t[full name] = value",
                      Written(table, L"Delete"));
            const HTREEITEM view = Tree.At({0, 1, 0});
            EXPECT_EQ(L"SELECT COUNT(*) FROM " + sales + L"TOTALS", Written(view, L"Count rows"));
            EXPECT_EQ(before + sales + L"TOTALS" + after, Written(view, L"Sample rows"));
            EXPECT_EQ(L"DESCRIBE SALES.TOTALS", Written(view, L"Describe view"));
            EXPECT_EQ(L"SELECT ID\r\n, [full name]\r\nFROM " + sales + L"TOTALS\r\n", Written(view, L"Select"));
            const HTREEITEM tables = Tree.At({0, 0});
            EXPECT_EQ(L"SELECT COUNT(*) FROM " + sales + L"ORDERS;\r\nSELECT COUNT(*) FROM " + sales + L"[order lines]",
                      Written(tables, L"Count rows in all tables"));
            EXPECT_EQ(before + sales + L"ORDERS" + after + L";\r\n" + before + sales + L"[order lines]" + after,
                      Written(tables, L"Sample rows from all tables"));
            EXPECT_EQ(L"DESCRIBE SALES.ORDERS;\r\nDESCRIBE SALES.order lines", Written(tables, L"Describe all tables"));
            EXPECT_EQ(L"SELECT * FROM " + sales + L"ORDERS;\r\nSELECT * FROM " + sales + L"[order lines]",
                      Written(tables, L"Select"));
            const HTREEITEM views = Tree.At({0, 1});
            EXPECT_EQ(L"SELECT COUNT(*) FROM " + sales + L"TOTALS", Written(views, L"Count rows in all views"));
            EXPECT_EQ(L"SELECT * FROM " + sales + L"TOTALS", Written(views, L"Select"));
            EXPECT_EQ(L"DESCRIBE SALES.TOTALS", Written(views, L"Describe all views"));
        });
        EXPECT_EQ(L"", Errors.Places());
    }
}

TEST_F(BuildersTest, TheUsersOwnAndTheCurrentSchemaAreNotWritten) {
    Type(4);
    Inside([this] {
        for (const int schema :
             {1, 2, 3}) {  // "Scott" for the user SCOTT, the default schema, its name in other letters
            OpenAll(schema);
            EXPECT_EQ(L"SELECT COUNT(*) FROM ORDERS", Written(Tree.At({schema, 0, 0}), L"Count rows"));
        }
        // DESCRIBE minds the case of the default schema's name, and writes the user's own.
        EXPECT_EQ(L"DESCRIBE Scott.ORDERS", Written(Tree.At({1, 0, 0}), L"Describe table"));
        EXPECT_EQ(L"DESCRIBE ORDERS", Written(Tree.At({2, 0, 0}), L"Describe table"));
        EXPECT_EQ(L"DESCRIBE CURRENT schema.ORDERS", Written(Tree.At({3, 0, 0}), L"Describe table"));
    });
}

TEST_F(BuildersTest, ASchemaDescribesItsTablesAndThenItsViews) {
    Inside([this] {
        Tree.Open(Tree.At({}));
        EXPECT_EQ(L"DESCRIBE SALES.ORDERS;\r\nDESCRIBE SALES.order lines;\r\nDESCRIBE SALES.TOTALS",
                  Written(Tree.At({0}), L"Describe all tables/views"));
    });
}

TEST_F(BuildersTest, ASchemaWithoutViewsDescribesItsTables) {
    Database.DictionaryMembers[L"Objects"] = [](const Arguments& a) {
        if (a[0].ToLong() == 1) return Variant(MakeCollection({Variant(L"A"), Variant(L"B"), Variant(L"C")}));
        return Variant(MakeCollection({}));
    };
    Inside([this] {
        Tree.Open(Tree.At({}));
        EXPECT_EQ(L"DESCRIBE SALES.A;\r\nDESCRIBE SALES.B;\r\nDESCRIBE SALES.C",
                  Written(Tree.At({0}), L"Describe all tables/views"));
        Tree.Open(Tree.At({0}));
        Tree.Open(Tree.At({0, 0}));
        EXPECT_EQ(L"SELECT COUNT(*) FROM SALES.A;\r\nSELECT COUNT(*) FROM SALES.B;\r\nSELECT COUNT(*) FROM SALES.C",
                  Written(Tree.At({0, 0}), L"Count rows in all tables"));
        // A folder without children has nothing to write.
        Tree.Open(Tree.At({0, 1}));
        EXPECT_EQ(L"<nothing>", Written(Tree.At({0, 1}), L"Count rows in all views"));
        EXPECT_EQ(L"<nothing>", Written(Tree.At({0, 1}), L"Describe all views"));
        EXPECT_EQ(L"<nothing>", Written(Tree.At({0, 1}), L"Sample rows from all views"));
        EXPECT_EQ(L"<nothing>", Written(Tree.At({0, 1}), L"Select"));
    });
}

TEST_F(BuildersTest, PlaceholdersAreNoObjects) {
    Inside([this] {
        Tree.OpenDownTo({0});
        Tree.Select(Tree.At({0, 0}));  // not clicked: nothing is read
        for (const wchar_t* entry :
             {L"Select", L"Count rows in all tables", L"Describe all tables", L"Sample rows from all tables"}) {
            EXPECT_EQ(L"<nothing>", Written(entry));
        }
        Tree.Select(Tree.At({0}));
        EXPECT_EQ(L"<nothing>", Written(L"Describe all tables/views"));
        // A table whose columns were not read.
        Tree.Open(Tree.At({0, 0}));
        Tree.Select(Tree.At({0, 0, 0}));
        for (const wchar_t* entry : {L"Select", L"Insert", L"Update", L"Delete"})
            EXPECT_EQ(L"<nothing>", Written(entry));
        EXPECT_EQ(L"SELECT COUNT(*) FROM SALES.ORDERS", Written(L"Count rows"));
    });
}

TEST_F(BuildersTest, ATableWithoutColumnsHasNoStatementsOfThem) {
    Columns({});
    Inside([this] {
        OpenAll(0);
        Tree.Click(Tree.At({0, 0, 0}));
        for (const wchar_t* entry : {L"Select", L"Insert", L"Update", L"Delete"})
            EXPECT_EQ(L"<nothing>", Written(entry));
    });
}

TEST_F(BuildersTest, ASingleColumnHasNoLineBreakBehindIt) {
    Columns({L"A"});
    Inside([this] {
        OpenAll(2);
        const HTREEITEM table = Tree.At({2, 0, 0});
        EXPECT_EQ(L"INSERT INTO ORDERS\r\n( A\r\n) VALUES\r\n( A_value\r\n)", Written(table, L"Insert"));
        EXPECT_EQ(L"UPDATE ORDERS\r\nSET A = value\r\nWHERE A = value", Written(table, L"Update"));
        EXPECT_EQ(L"DELETE FROM ORDERS\r\nWHERE\tA = value", Written(table, L"Delete"));
        EXPECT_EQ(L"SELECT A\r\nFROM ORDERS\r\n", Written(table, L"Select"));
    });
}

TEST_F(BuildersTest, AColumnIsWrittenAsItStands) {
    Type(4);
    Inside([this] {
        OpenAll(0);
        Tree.Open(Tree.At({0, 0, 1}));
        const HTREEITEM column = Tree.At({0, 0, 1, 0, 1});
        EXPECT_EQ(L"SELECT full name\r\nFROM order lines", Written(column, L"Select"));
        EXPECT_EQ(L"INSERT (full name)\r\nINTO order lines\r\nVALUES ( value )", Written(column, L"Insert"));
        EXPECT_EQ(L"UPDATE order lines\r\nSET full name = value\r\nWHERE ...", Written(column, L"Update"));
    });
}

TEST_F(BuildersTest, TheHostIsAskedForNamesAloneAndOnceForEachPlace) {
    Type(4);
    Inside([this] {
        OpenAll(0);
        Tree.Click(Tree.At({0, 0, 0}));
        Database.Log.clear();
        EXPECT_EQ(L"SELECT COUNT(*) FROM SALES.ORDERS", Written(L"Count rows"));
        // The item has all its statements: SELECT, INSERT, UPDATE, DELETE of two columns and a table, each column twice
        // in an UPDATE, COUNT and sample rows.
        for (const std::wstring& call : Database.Log) EXPECT_EQ(L"FormatName", call);
        EXPECT_EQ(4U * 3 + 2 + 2, Database.Log.size());
    });
}

TEST_F(BuildersTest, ANameThatCannotBeFormattedIsReportedWhereItFails) {
    Type(4);
    Database.Members[L"FormatName"] = [](const Arguments& a) -> Variant {
        if (a[0].ToText() == L"full name") RaiseError(1234, L"brvADO", L"no");
        return a[0];
    };
    Inside([this] {
        OpenAll(0);
        const HTREEITEM table = Tree.At({0, 0, 0});
        Tree.Click(table);
        EXPECT_EQ(L"SELECT COUNT(*) FROM SALES.ORDERS", Written(L"Count rows"));
    });
    EXPECT_EQ(
        L"frmSQLEditor.m_GetStmtSelectTable 1234|frmSQLEditor.m_GetStmtInsertTable "
        L"1234|frmSQLEditor.m_GetStmtUpdateTable "
        L"1234|frmSQLEditor.m_GetStmtDeleteTable 1234",
        Errors.Places());
}

TEST_F(BuildersTest, AStatementGoesOnWithoutAReferenceThatFailed) {
    Type(8);
    Database.Members[L"FormatName"] = [](const Arguments& a) -> Variant {
        if (a[0].ToText() == L"ORDERS") return Variant::Null();
        return a[0];
    };
    Inside([this] {
        OpenAll(0);
        Tree.Select(Tree.At({0, 0}));
        EXPECT_EQ(L"SELECT COUNT(*) FROM ;\r\nSELECT COUNT(*) FROM SALES.order lines",
                  Written(L"Count rows in all tables"));
    });
    EXPECT_EQ(L"frmSQLEditor.m_BuildTable 94|frmSQLEditor.m_BuildTable 94|frmSQLEditor.m_BuildTable 94",
              Errors.Places());
}

// The folder's item has six names: two each for SELECT, COUNT and sample rows.
TEST_F(BuildersTest, TheOwnerIsReadForEachStatementOfAFolder) {
    Type(4);
    const Object editor = Dll.Create();
    std::wstring owner = L"SCOTT";
    Database.Members[L"CurrentCatalog"] = [&](const Arguments&) { return Variant(owner); };
    int asked = 0;
    Object database;
    Database.Members[L"FormatName"] = [&](const Arguments& a) -> Variant {
        const Variant name = a[0];
        if (++asked == 3) {
            owner = L"SALES";
            editor.Call(L"Constructor", database);
        }
        return name;
    };
    database = Database.Make();
    editor.Call(L"Constructor", database);
    DisplayAndClose(editor, L"", [this] {
        OpenAll(0);
        Tree.Select(Tree.At({0, 0}));
        EXPECT_EQ(L"SELECT COUNT(*) FROM SALES.ORDERS;\r\nSELECT COUNT(*) FROM order lines",
                  Written(L"Count rows in all tables"));
    });
    EXPECT_EQ(L"", Errors.Places());
    editor.Call(L"Constructor", Object());
}

TEST_F(BuildersTest, EachStatementOfAFolderIsMadeByTheConnectionOfItsTime) {
    Type(4);
    const Object editor = Dll.Create();
    // The schema is written before the host is asked for the name, what limits the rows after it.
    for (const auto& [type, expected] : std::vector<std::pair<long, const wchar_t*>>{
             {17, L"SELECT * FROM SALES.ORDERS LIMIT 100;\r\nSELECT * FROM other order lines LIMIT 100"},
             {8, L"SELECT top 100 * FROM SALES.ORDERS;\r\nSELECT top 100 * FROM SALES.other order lines"}}) {
        FakeDatabase other;
        other.Members[L"DBType"] = [type](const Arguments&) { return Variant(type); };
        other.Members[L"FormatName"] = [](const Arguments& a) { return Variant(L"other " + a[0].ToText()); };
        int asked = 0;
        Database.Members[L"FormatName"] = [&](const Arguments& a) -> Variant {
            const Variant name = a[0];
            if (++asked == 5) editor.Call(L"Constructor", other.Make());
            return name;
        };
        editor.Call(L"Constructor", Database.Make());
        DisplayAndClose(editor, L"", [&] {
            OpenAll(0);
            Tree.Select(Tree.At({0, 0}));
            EXPECT_EQ(expected, Written(L"Sample rows from all tables"));
        });
        EXPECT_EQ(5, asked);
    }
    EXPECT_EQ(L"", Errors.Places());
    editor.Call(L"Constructor", Object());
}

TEST_F(BuildersTest, ATablesSchemaIsWrittenBeforeTheHostIsAskedForItsName) {
    Type(4);
    const Object editor = Dll.Create();
    int asked = 0;
    Database.Members[L"FormatName"] = [&](const Arguments& a) -> Variant {
        const Variant name = a[0];
        // A view that was not opened: it has no columns, and so a COUNT and sample rows alone.
        if (++asked == 1) {
            Database.Members[L"UserName"] = [](const Arguments&) { return Variant(L"SALES"); };
            editor.Call(L"Constructor", Database.Make());
        }
        return name;
    };
    editor.Call(L"Constructor", Database.Make());
    DisplayAndClose(editor, L"", [this] {
        OpenAll(0);
        Tree.Select(Tree.At({0, 1, 0}));
        EXPECT_EQ(L"SELECT COUNT(*) FROM SALES.TOTALS", Written(L"Count rows"));
        EXPECT_EQ(L"SELECT COUNT(*) FROM TOTALS", Written(L"Count rows"));
    });
    EXPECT_EQ(L"", Errors.Places());
    editor.Call(L"Constructor", Object());
}

TEST_F(BuildersTest, SampleRowsThatCannotBeReportedByTheirTableAreReportedByTheStatement) {
    Type(4);
    int asked = 0;
    Database.Members[L"FormatName"] = [&asked](const Arguments& a) -> Variant {
        if (++asked == 5) RaiseError(1234, L"brvADO", L"no");
        return a[0];
    };
    Errors.CreateFailures = 1;
    Inside([this] {
        OpenAll(0);
        Tree.Select(Tree.At({0, 0}));
        EXPECT_EQ(L";\r\nSELECT * FROM SALES.order lines WHERE rownum <= 100", Written(L"Sample rows from all tables"));
    });
    EXPECT_EQ(L"frmSQLEditor.m_BuildStmtSampleRows", Errors.Only().Place());
}

TEST_F(BuildersTest, AWishForMemoryDecidesNothing) {
    // As many as the first would be more than a text can hold.
    Tables(1500);
    Database.Members[L"FormatName"] = [](const Arguments& a) -> Variant {
        return a[0].ToText() == L"T0" ? Variant(std::wstring(300000, L'X')) : a[0];
    };
    Type(24);
    Inside([this] {
        Tree.OpenDownTo({0, 0});
        Tree.Select(Tree.At({0, 0}));
        const std::wstring text = Written(L"Count rows in all tables");
        EXPECT_EQ(0U, text.find(L"SELECT COUNT(*) FROM XXX"));
        EXPECT_NE(std::wstring::npos, text.find(L"XXX;\r\nSELECT COUNT(*) FROM T1;"));
        EXPECT_EQ(L"SELECT COUNT(*) FROM T1499", text.substr(text.rfind(L'\n') + 1));
    });
}

TEST_F(BuildersTest, TheNameGoesToTheHostByReferenceAndStaysInTheTree) {
    bool byReference = true;
    Database.Members[L"FormatName"] = [&](const Arguments& a) -> Variant {
        byReference = byReference && a.Raw(0) != nullptr && (a.Raw(0)->vt & VT_BYREF) != 0;
        const Variant name = a[0];
        a.Let(0, Variant(L"changed"));
        return name;
    };
    Inside([this] {
        OpenAll(2);
        EXPECT_EQ(L"SELECT COUNT(*) FROM ORDERS", Written(Tree.At({2, 0, 0}), L"Count rows"));
        EXPECT_EQ(L"ORDERS", Tree.Text(Tree.At({2, 0, 0})));
    });
    EXPECT_TRUE(byReference);
}
