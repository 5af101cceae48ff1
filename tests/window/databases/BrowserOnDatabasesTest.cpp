#include <windows.h>
#include <commctrl.h>

#include "Databases.h"
#include "support/Dialogs.h"

// Names that a careless program trips over. In a schema named like a keyword.
namespace {

const std::vector<std::wstring> AwkwardInPostgres = {
    LR"(DROP SCHEMA IF EXISTS "select" CASCADE)",
    LR"(CREATE SCHEMA "select")",
    LR"(CREATE TABLE "select".plain (id integer, amount numeric(10,2)))",
    LR"(CREATE TABLE "select"."Mixed Case" ("Id" integer, "with blank" text, "say ""hi""" text, "a.b" date))",
    LR"(CREATE TABLE "select"."dots.and ""quotes""" (x integer))",
    L"CREATE TABLE \"select\".\"\u00dcn\u00efcode \u8868\" (\"\u0441\u0442\u043e\u043b\u0431\u0435\u0446\" integer)",
    LR"(CREATE TABLE "select"."order" ("from" integer, "where" text))",
    LR"(CREATE VIEW "select"."A View" AS SELECT id AS "Number", amount FROM "select".plain)",
};

const std::vector<std::wstring> AwkwardInMariaDb = {
    L"DROP DATABASE IF EXISTS `select`",
    L"CREATE DATABASE `select`",
    L"CREATE TABLE `select`.plain (id integer, amount numeric(10,2))",
    L"CREATE TABLE `select`.`Mixed Case` (`Id` integer, `with blank` text, `say \"hi\"` text, `a.b` date)",
    L"CREATE TABLE `select`.`dots.and \"quotes\"` (x integer)",
    L"CREATE TABLE `select`.`\u00dcn\u00efcode \u8868` (`\u0441\u0442\u043e\u043b\u0431\u0435\u0446` integer)",
    L"CREATE TABLE `select`.`order` (`from` integer, `where` text)",
    L"CREATE VIEW `select`.`A View` AS SELECT id AS `Number`, amount FROM `select`.plain",
};

const std::vector<std::wstring> AwkwardInSqlite = {
    LR"(CREATE TABLE plain (id integer, amount numeric(10,2)))",
    LR"(CREATE TABLE "Mixed Case" ("Id" integer, "with blank" text, "say ""hi""" text, "a.b" date))",
    LR"(CREATE TABLE "dots.and ""quotes""" (x integer))",
    L"CREATE TABLE \"\u00dcn\u00efcode \u8868\" (\"\u0441\u0442\u043e\u043b\u0431\u0435\u0446\" integer)",
    LR"(CREATE TABLE "order" ("from" integer, "where" text))",
    LR"(CREATE VIEW "A View" AS SELECT id AS "Number", amount FROM plain)",
};

constexpr const wchar_t* AwkwardTables = L"dots.and \"quotes\"|Mixed Case|order|plain|\u00dcn\u00efcode \u8868";

class BrowserOnDatabasesTest : public DatabasesFixture {
protected:
    // Every name of the schema, down to the properties of a column.
    void ExpectAwkwardNames(const wchar_t* schema) {
        OpenSchema(schema);
        const HTREEITEM tables = Folder(schema, L"Tables");
        EXPECT_EQ(AwkwardTables, Tree.Children(tables));
        EXPECT_EQ(L"A View", Tree.Children(Folder(schema, L"Views")));
        const struct {
            const wchar_t* Table;
            const wchar_t* Columns;
        } expected[] = {{L"plain", L"id|amount"},
                        {L"Mixed Case", L"Id|with blank|say \"hi\"|a.b"},
                        {L"dots.and \"quotes\"", L"x"},
                        {L"\u00dcn\u00efcode \u8868", L"\u0441\u0442\u043e\u043b\u0431\u0435\u0446"},
                        {L"order", L"from|where"}};
        for (const auto& table : expected) {
            const HTREEITEM node = Tree.Named(tables, table.Table);
            Tree.Open(node);
            const HTREEITEM columns = Tree.Next(TVGN_CHILD, node);
            EXPECT_EQ(table.Columns, Tree.Children(columns));
            const HTREEITEM column = Tree.Next(TVGN_CHILD, columns);
            Tree.Open(column);
            const std::wstring properties = Tree.Children(Tree.Next(TVGN_CHILD, column));
            const std::wstring first = Tree.Text(column);
            EXPECT_NE(std::wstring::npos, (L"|" + properties + L"|").find(L"|COLUMN_NAME=" + first + L"|"));
            EXPECT_NE(std::wstring::npos, properties.find(L"DATA_TYPE="));
            EXPECT_NE(std::wstring::npos, properties.find(L"ORDINAL_POSITION=1"));
        }
        const HTREEITEM view = Tree.Named(Folder(schema, L"Views"), L"A View");
        Tree.Open(view);
        EXPECT_EQ(L"Number|amount", Tree.Children(Tree.Next(TVGN_CHILD, view)));
    }
};

}  // namespace

TEST_F(BrowserOnDatabasesTest, SqliteTheWholeWay) {
    const ScratchFile file;
    RealDatabase database(file.Connection());
    database.Run(AwkwardInSqlite);
    Inside(database, [this] {
        Tree.Open(Tree.At({}));
        ASSERT_EQ(L"Current Schema", Tree.Children(Tree.At({})));
        ExpectAwkwardNames(L"Current Schema");
    });
}

TEST_F(BrowserOnDatabasesTest, PostgresTheWholeWay) {
    RealDatabase database(PostgresServer());
    database.Run(AwkwardInPostgres);
    Inside(database, [this] {
        Tree.Open(Tree.At({}));
        EXPECT_NE(std::wstring::npos, (L"|" + Tree.Children(Tree.At({})) + L"|").find(L"|public|"));
        ExpectAwkwardNames(L"select");
    });
    database.Run({LR"(DROP SCHEMA "select" CASCADE)"});
}

TEST_F(BrowserOnDatabasesTest, MariaDbTheWholeWay) {
    RealDatabase database(MariaDbServer());
    database.Run(AwkwardInMariaDb);
    Inside(database, [this] {
        Tree.Open(Tree.At({}));
        EXPECT_NE(std::wstring::npos, (L"|" + Tree.Children(Tree.At({})) + L"|").find(L"|brv|"));
        ExpectAwkwardNames(L"select");
    });
    database.Run({L"DROP DATABASE `select`"});
}

TEST_F(BrowserOnDatabasesTest, SystemTablesComeAndGoWithTheMenu) {
    RealDatabase database(PostgresServer());
    Inside(database, [this] {
        OpenSchema(L"pg_catalog");
        EXPECT_EQ(L"", Tree.Children(Folder(L"pg_catalog", L"Tables")));
        EditorWindow::Choose(L"View", L"System TablesViews");
        EXPECT_EQ(L"", Tree.Children(Folder(L"pg_catalog", L"Tables")));  // what was read stays
        Tree.Shut(Folder(L"pg_catalog", L"Tables"));
        Tree.Open(Folder(L"pg_catalog", L"Tables"));
        EXPECT_NE(std::wstring::npos,
                  (L"|" + Tree.Children(Folder(L"pg_catalog", L"Tables")) + L"|").find(L"|pg_class|"));
    });
}

TEST_F(BrowserOnDatabasesTest, ATableThatIsGoneIsToldInTheDatabasesWords) {
    const ScratchFile file;
    RealDatabase database(file.Connection());
    database.Run({L"CREATE TABLE stays (a integer)", L"CREATE TABLE goes (a integer)"});
    RealDatabase another(file.Connection());
    BoxAnswerer box;
    Inside(database, [&] {
        OpenSchema(L"Current Schema");
        const HTREEITEM tables = Folder(L"Current Schema", L"Tables");
        another.Run({L"DROP TABLE goes"});
        const HTREEITEM gone = Tree.Named(tables, L"goes");
        Tree.Click(gone);
        EXPECT_EQ(1, box.Boxes);
        EXPECT_EQ(L"SQL Editor", box.Title);
        EXPECT_NE(L"", box.Text);
        EXPECT_EQ(L"", Tree.Children(Tree.Next(TVGN_CHILD, gone)));
        // The others are still there.
        const HTREEITEM there = Tree.Named(tables, L"stays");
        Tree.Click(there);
        EXPECT_EQ(L"a", Tree.Children(Tree.Next(TVGN_CHILD, there)));
    });
    EXPECT_EQ(1, box.Boxes);
}

TEST_F(BrowserOnDatabasesTest, AServerThatGoesAndComesBack) {
    RealDatabase database(PostgresServer());
    database.Run({L"DROP TABLE IF EXISTS steady", L"CREATE TABLE steady (a integer, b text)"});
    BoxAnswerer box;
    Inside(database, [&] {
        OpenSchema(L"public");
        const HTREEITEM table = Tree.Named(Folder(L"public", L"Tables"), L"steady");
        SwitchPostgres(L"stop");
        Tree.Click(table);
        EXPECT_EQ(1, box.Boxes);
        EXPECT_NE(std::wstring::npos, box.Text.find(L"steady"));
        EXPECT_EQ(L"", Errors.Places());
        // A folder cannot be read either; the window goes on.
        Tree.Shut(Folder(L"public", L"Tables"));
        Tree.Open(Folder(L"public", L"Tables"));
        EXPECT_EQ(L"", Tree.Children(Folder(L"public", L"Tables")));
        EXPECT_EQ(L"clsDictionary.Get Objects", Errors.Reports.empty() ? L"" : Errors.Reports[0].Place());
        Errors.Forget();

        SwitchPostgres(L"start");
        Tree.Shut(Folder(L"public", L"Tables"));
        Tree.Shut(Tree.Named(Tree.At({}), L"public"));
        Tree.Open(Tree.Named(Tree.At({}), L"public"));
        Tree.Open(Folder(L"public", L"Tables"));
        const HTREEITEM again = Tree.Named(Folder(L"public", L"Tables"), L"steady");
        Tree.Click(again);
        EXPECT_EQ(L"a|b", Tree.Children(Tree.Next(TVGN_CHILD, again)));
    });
    EXPECT_EQ(L"", Errors.Places());
    database.Run({L"DROP TABLE steady"});
}
