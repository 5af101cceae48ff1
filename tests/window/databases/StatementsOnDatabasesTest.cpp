#include <windows.h>
#include <commctrl.h>

#include "Databases.h"

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

TEST_F(StatementsOnDatabasesTest, TheSketchesAndDescribeAreRefusedWhereTheDatabaseHasNoSuchStatement) {
    RealDatabase database(SampleShop());
    Inside(database, [&] {
        OpenSchema(L"Current Schema");
        const HTREEITEM table = Tree.Named(Folder(L"Current Schema", L"Tables"), L"country");
        Tree.Open(table);
        Tree.Click(table);
        std::wstring failure;
        EXPECT_EQ(L"DESCRIBE country", Written(L"Describe table"));
        EXPECT_FALSE(database.Takes(Written(L"Describe table"), failure));
        const HTREEITEM column = Tree.Next(TVGN_CHILD, Tree.Next(TVGN_CHILD, table));
        Tree.Click(column);
        ExpectTaken(database, Written(L"Select"));
        EXPECT_FALSE(database.Takes(Written(L"Insert"), failure));
        EXPECT_FALSE(database.Takes(Written(L"Update"), failure));
    });
    EXPECT_EQ(L"", Errors.Places());
}
