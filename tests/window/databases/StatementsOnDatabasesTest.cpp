#include <windows.h>
#include <commctrl.h>

#include "Databases.h"
#include "support/Errors.h"

// Every statement that the Action menu writes is given to the database that it was written for.
namespace {

class StatementsOnDatabasesTest : public DatabasesFixture {
protected:
    // What an entry of the Action menu writes for the node, without the line break before and the semicolon after it.
    static std::wstring Written(const wchar_t* entry) {
        EditorWindow::SetText(L"");
        EditorWindow::Choose(L"Action", entry);
        const std::wstring text = EditorWindow::Text();
        return text.size() > 5 ? text.substr(2, text.size() - 5) : std::wstring();
    }
    static void ExpectTaken(RealDatabase& database, const std::wstring& statement) {
        std::wstring failure;
        EXPECT_NE(L"", statement);
        EXPECT_TRUE(database.Takes(statement, failure))
            << std::string(statement.begin(), statement.end()) << ": " << std::string(failure.begin(), failure.end());
        ++Taken;
    }
    static std::wstring Replaced(std::wstring text, const std::wstring& what, const std::wstring& by) {
        size_t from = 0;
        for (size_t at; (at = text.find(what, from)) != std::wstring::npos; from = at + by.size())
            text.replace(at, what.size(), by);
        return text;
    }
    // The literals of the table's first row, or NULL for each column when it has none. `function` makes a literal in
    // the database's own way.
    static std::vector<std::wstring> Literals(RealDatabase& database, const std::wstring& select,
                                              const wchar_t* function) {
        // SELECT a\r\n, b\r\nFROM t\r\n
        std::wstring query = Replaced(select, L"\r\n, ", L"), " + std::wstring(function) + L"(");
        query = Replaced(query, L"SELECT ", L"SELECT " + std::wstring(function) + L"(");
        const size_t from = query.rfind(L"\r\nFROM ");
        query.insert(from, L")");
        std::vector<std::wstring> literals = database.FirstRow(query);
        for (std::wstring& literal : literals) {
            if (literal == L"<null>") literal = L"NULL";
        }
        return literals;
    }
    void ExpectObject(RealDatabase& database, HTREEITEM node, bool table, const wchar_t* literalFunction) {
        const std::wstring name = Tree.Text(node);
        SCOPED_TRACE(std::string(name.begin(), name.end()));
        Tree.Click(node);
        const std::wstring select = Written(L"Select");
        ExpectTaken(database, select);
        ExpectTaken(database, Written(L"Count rows"));
        ExpectTaken(database, Written(L"Sample rows"));
        if (!table) return;
        const std::vector<std::wstring> literals = Literals(database, select, literalFunction);
        const std::wstring update = Written(L"Update");
        const std::wstring remove = Written(L"Delete");
        std::wstring insert = Written(L"Insert");
        // Each placeholder stands on a line of its own after VALUES.
        size_t at = insert.find(L") VALUES\r\n") + 10;
        for (const std::wstring& literal : literals) {
            const size_t end = insert.find(L"\r\n", at);
            insert.replace(at + 2, end - at - 2, literal);
            at = insert.find(L"\r\n", at) + 2;
        }
        database.Run({L"BEGIN"});
        ExpectTaken(database, Replaced(update, L" = value", L" = NULL"));
        ExpectTaken(database, Replaced(remove, L" = value", L" = NULL"));
        database.Run({L"DELETE FROM " + Reference(insert)});
        if (!literals.empty()) {
            ExpectTaken(database, insert);
            EXPECT_EQ(L"1", database.FirstRow(L"SELECT COUNT(*) FROM " + Reference(insert))[0]);
        }
        database.Run({L"ROLLBACK"});
    }
    // With the name of the schema that it begins with.
    void ForEachDatabase(const std::function<void(RealDatabase&, const std::wstring&)>& work) {
        const ScratchFile file;
        const std::pair<std::wstring, const wchar_t*> databases[] = {
            {file.Connection(), L"Current Schema"}, {PostgresServer(), L"public"}, {MariaDbServer(), L"brv"}};
        for (const auto& [connection, schema] : databases) {
            SCOPED_TRACE(testing::PrintToString(schema));
            RealDatabase database(connection);
            work(database, schema);
            EXPECT_EQ(L"", Errors.Places());
        }
    }
    static std::wstring Reference(const std::wstring& insert) { return insert.substr(12, insert.find(L"\r\n") - 12); }

    void ExpectSchema(RealDatabase& database, const wchar_t* schema, const wchar_t* literalFunction) {
        OpenSchema(schema);
        for (const bool tables : {true, false}) {
            const HTREEITEM folder = Folder(schema, tables ? L"Tables" : L"Views");
            for (HTREEITEM node = Tree.Next(TVGN_CHILD, folder); node != nullptr; node = Tree.Next(TVGN_NEXT, node)) {
                ExpectObject(database, node, tables, literalFunction);
            }
            // The statements of the whole folder, one by one.
            Tree.Click(folder);
            for (const wchar_t* entry : {L"Select", tables ? L"Count rows in all tables" : L"Count rows in all views",
                                         tables ? L"Sample rows from all tables" : L"Sample rows from all views"}) {
                const std::wstring all = Written(entry);
                for (size_t at = 0; at < all.size();) {
                    const size_t end = std::min(all.find(L";\r\n", at), all.size());
                    ExpectTaken(database, all.substr(at, end - at));
                    at = end + 3;
                }
            }
        }
    }
    static inline int Taken = 0;
};

}  // namespace

TEST_F(StatementsOnDatabasesTest, OfEveryTableAndViewOfTheSampleShop) {
    Taken = 0;
    RealDatabase database(SampleShop());
    Inside(database, [&] { ExpectSchema(database, L"Current Schema", L"quote"); });
    EXPECT_EQ(L"", Errors.Places());
    EXPECT_EQ(17 * 6 + 6 * 3 + 17 * 3 + 6 * 3, Taken);
}

TEST_F(StatementsOnDatabasesTest, OfAwkwardNamesInPostgres) {
    Taken = 0;
    RealDatabase database(PostgresServer());
    const auto make = [&](const std::wstring& schema) {
        database.Run({
            L"DROP SCHEMA IF EXISTS " + schema + L" CASCADE",
            L"CREATE SCHEMA " + schema,
            L"CREATE TABLE " + schema + L".plain (id integer, amount numeric(10,2), at timestamp)",
            L"INSERT INTO " + schema + L".plain VALUES (1, 2.50, '2026-01-31 12:00')",
            L"CREATE TABLE " + schema +
                LR"(."Mixed Case" ("Id" integer, "with blank" text, "say ""hi""" text, "a.b" date))",
            L"INSERT INTO " + schema + LR"(."Mixed Case" VALUES (1, 'it''s', NULL, '2026-01-31'))",
            L"CREATE TABLE " + schema + LR"(."dots.and ""quotes""" (x boolean))",
            L"INSERT INTO " + schema + LR"(."dots.and ""quotes""" VALUES (true))",
            L"CREATE TABLE " + schema +
                L".\"\u00dcn\u00efcode \u8868\" (\"\u0441\u0442\u043e\u043b\u0431\u0435\u0446\" text)",
            L"INSERT INTO " + schema + L".\"\u00dcn\u00efcode \u8868\" VALUES ('\u4e2d')",
            L"CREATE TABLE " + schema + LR"(."order" ("from" integer, "where" text))",
            L"INSERT INTO " + schema + LR"(."order" VALUES (7, 'x'))",
            L"CREATE VIEW " + schema + LR"(."A View" AS SELECT id AS "Number", amount FROM )" + schema + L".plain",
        });
    };
    make(L"awkward");
    Inside(database, [&] { ExpectSchema(database, L"awkward", L"quote_nullable"); });
    database.Run({L"DROP SCHEMA awkward CASCADE"});
    EXPECT_EQ(L"", Errors.Places());
    EXPECT_EQ(5 * 6 + 3 + 5 * 3 + 3, Taken);
}

TEST_F(StatementsOnDatabasesTest, OfAwkwardNamesInMariaDb) {
    Taken = 0;
    RealDatabase database(MariaDbServer());
    database.Run({
        L"CREATE TABLE plain (id integer, amount numeric(10,2), at datetime)",
        L"INSERT INTO plain VALUES (1, 2.50, '2026-01-31 12:00')",
        L"CREATE TABLE `Mixed Case` (`Id` integer, `with blank` text, `say \"hi\"` text, `tick``s` date)",
        L"INSERT INTO `Mixed Case` VALUES (1, 'it''s a \\\\ and a \"', NULL, '2026-01-31')",
        L"CREATE TABLE `dots.and \"quotes\"` (x boolean)",
        L"INSERT INTO `dots.and \"quotes\"` VALUES (true)",
        L"CREATE TABLE `\u00dcn\u00efcode \u8868` (`\u0441\u0442\u043e\u043b\u0431\u0435\u0446` text)",
        L"INSERT INTO `\u00dcn\u00efcode \u8868` VALUES ('\u4e2d')",
        L"CREATE TABLE `order` (`from` integer, `where` text)",
        L"INSERT INTO `order` VALUES (7, 'x')",
        L"CREATE VIEW `A View` AS SELECT id AS `Number`, amount FROM plain",
    });
    Inside(database, [&] { ExpectSchema(database, L"brv", L"quote"); });
    database.Run({L"DROP VIEW `A View`",
                  L"DROP TABLE plain, `Mixed Case`, `dots.and \"quotes\"`, `\u00dcn\u00efcode \u8868`, `order`"});
    EXPECT_EQ(L"", Errors.Places());
    EXPECT_EQ(5 * 6 + 3 + 5 * 3 + 3, Taken);
}

// DESCRIBE is a statement of MariaDB, and its names are not quoted.
TEST_F(StatementsOnDatabasesTest, OnlySomeDatabasesDescribeAndNoneTakesTheSketches) {
    ForEachDatabase([&](RealDatabase& database, const std::wstring& schema) {
        const bool describes = schema == L"brv";
        const std::wstring quote = describes ? L"`" : L"\"";
        const std::wstring awkward = quote + L"sketched-too" + quote;
        database.Run({L"CREATE TABLE sketched (a integer)", L"CREATE TABLE " + awkward + L" (a integer)"});
        Inside(database, [&] {
            OpenSchema(schema.c_str());
            std::wstring failure;
            for (const wchar_t* name : {L"sketched", L"sketched-too"}) {
                const HTREEITEM table = Tree.Named(Folder(schema.c_str(), L"Tables"), name);
                Tree.Open(table);
                Tree.Click(table);
                const bool plain = std::wstring(name) == L"sketched";
                EXPECT_EQ(L"DESCRIBE " + (schema == L"Current Schema" ? L"" : schema + L".") + name,
                          Written(L"Describe table"));
                EXPECT_EQ(describes && plain, database.Takes(Written(L"Describe table"), failure));
                Tree.Click(Tree.Next(TVGN_CHILD, Tree.Next(TVGN_CHILD, table)));
                EXPECT_EQ(plain, database.Takes(Written(L"Select"), failure));
                EXPECT_FALSE(database.Takes(Written(L"Insert"), failure));
                EXPECT_FALSE(database.Takes(Written(L"Update"), failure));
            }
        });
        database.Run({L"DROP TABLE sketched", L"DROP TABLE " + awkward});
    });
}

TEST_F(StatementsOnDatabasesTest, TheStandardsCommandsThatAreWholeStatements) {
    ForEachDatabase([&](RealDatabase& database, const std::wstring& schema) {
        if (schema == L"public") database.Run({L"SET client_min_messages = error"});
        Inside(database, [&] {
            ShowPage(1);
            for (const wchar_t* command : {L"COMMIT", L"ROLLBACK"}) {
                const LRESULT row = SendMessageW(View(1), LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                                 reinterpret_cast<LPARAM>(command));
                SendMessageW(View(1), LB_SETCURSEL, static_cast<WPARAM>(row), 0);
                SendMessageW(GetParent(View(1)), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(View(1)), LBN_SELCHANGE),
                             reinterpret_cast<LPARAM>(View(1)));
                database.Run({L"BEGIN"});
                EXPECT_EQ(command, Written(L"Execute"));
                ExpectTaken(database, Written(L"Execute"));
            }
        });
    });
}

TEST_F(StatementsOnDatabasesTest, AComparisonWithNullFindsNothing) {
    ForEachDatabase([&](RealDatabase& database, const std::wstring&) {
        database.Run(
            {L"CREATE TABLE persons (city varchar(20))", L"INSERT INTO persons VALUES ('Jena'), ('Gera'), (NULL)"});
        const struct {
            const wchar_t* Where;
            const wchar_t* Rows;
        } cases[] = {{L"city = NULL", L"0"},
                     {L"NULL = NULL", L"0"},
                     {L"city <> NULL", L"0"},
                     {L"city IS NULL", L"1"},
                     {L"city IS NOT NULL", L"2"},
                     {L"city <> 'Jena'", L"1"},
                     {L"city <> 'Jena' OR city IS NULL", L"2"},
                     {L"city NOT IN ('Jena', NULL)", L"0"}};
        for (const auto& one : cases) {
            EXPECT_EQ(one.Rows,
                      database.FirstRow(std::wstring(L"SELECT COUNT(*) FROM persons WHERE ") + one.Where).at(0))
                << testing::PrintToString(one.Where);
        }
        EXPECT_EQ((std::vector<std::wstring>{L"3", L"2"}),
                  database.FirstRow(L"SELECT COUNT(*), COUNT(city) FROM persons"));
        database.Run({L"UPDATE persons SET city = NULL WHERE city = 'Gera'"});
        EXPECT_EQ(L"2", database.FirstRow(L"SELECT COUNT(*) FROM persons WHERE city IS NULL").at(0));
        database.Run({L"DROP TABLE persons"});
    });
}

// Where a schema is written it is not quoted, and for MariaDB none is written.
TEST_F(StatementsOnDatabasesTest, ATableOfAnotherSchemaMayNeedAHand) {
    const struct {
        std::wstring Connection;
        std::wstring Schema;
        std::wstring Quoted;
        std::wstring Written;
    } cases[] = {{PostgresServer(), L"Sales 2026", L"\"Sales 2026\"", L"Sales 2026."},
                 {PostgresServer(), L"sales", L"sales", L"sales."},
                 {MariaDbServer(), L"sales", L"sales", L""}};
    for (const auto& one : cases) {
        RealDatabase database(one.Connection);
        database.Run({L"CREATE SCHEMA " + one.Quoted, L"CREATE TABLE " + one.Quoted + L".sold (a integer)"});
        Inside(database, [&] {
            OpenSchema(one.Schema.c_str());
            Tree.Click(Tree.Named(Folder(one.Schema.c_str(), L"Tables"), L"sold"));
            EXPECT_EQ(L"SELECT COUNT(*) FROM " + one.Written + L"sold", Written(L"Count rows"));
            std::wstring failure;
            EXPECT_EQ(one.Written == one.Quoted + L".", database.Takes(Written(L"Count rows"), failure));
            ExpectTaken(database, L"SELECT COUNT(*) FROM " + one.Quoted + L".sold");
        });
        database.Run({L"DROP TABLE " + one.Quoted + L".sold", L"DROP SCHEMA " + one.Quoted});
    }
}

// A host that shows the first rows of whatever it runs.
TEST_F(StatementsOnDatabasesTest, EveryStatementRunsWithALimitOfRowsInMariaDb) {
    RealDatabase database(MariaDbServer());
    for (const wchar_t* statement : {L"CREATE TABLE limited (a integer)", L"INSERT INTO limited VALUES (1), (2), (3)",
                                     L"SELECT * FROM limited LIMIT 100", L"DESCRIBE limited", L"DROP TABLE limited"}) {
        long rows = 0;
        const std::wstring text = statement;
        EXPECT_EQ(0, NumberOf([&] {
                      const Object result = database.Host().Call(L"Execute", text, 2L).ToObject();
                      if (result.Get(L"FieldCount").ToLong() == 0) return;
                      while (!result.Call(L"NextRow").IsNull()) ++rows;
                  }))
            << testing::PrintToString(text);
        EXPECT_EQ(text.find(L"SELECT") == 0 ? 2 : text.find(L"DESCRIBE") == 0 ? 1 : 0, rows);
    }
}
