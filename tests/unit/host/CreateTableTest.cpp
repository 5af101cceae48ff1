#include "host/database/CreateTable.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "SampleDatabase.h"

namespace {

TEST(CreateTableStatement, WritesColumnsAndKey) {
    IdentifierRules rules;
    rules.Keywords = OdbcKeywords();
    const NewTable table = {L"Order",
                            {{L"id", L"integer", L"", true, true},
                             {L"Full Name", L"varchar", L"40", false, false},
                             {L"price", L"decimal", L"10,2", true, false}}};
    EXPECT_EQ(CreateTableStatement(rules, table),
              L"CREATE TABLE \"Order\" (\r\n"
              L"    id integer NOT NULL,\r\n"
              L"    \"Full Name\" varchar(40) NOT NULL,\r\n"
              L"    price decimal(10,2),\r\n"
              L"    PRIMARY KEY (id)\r\n"
              L")");
}

TEST(CreateTableStatement, NamesAllColumnsOfTheKey) {
    const NewTable table = {L"t", {{L"a", L"int", L"", true, true}, {L"b", L"int", L"", true, true}}};
    EXPECT_EQ(CreateTableStatement(IdentifierRules(), table),
              L"CREATE TABLE t (\r\n    a int NOT NULL,\r\n    b int NOT NULL,\r\n    PRIMARY KEY (a, b)\r\n)");
}

TEST(CreateTableStatement, PutsTheSizeBetweenTheTypesOwnBrackets) {
    const NewTable sized = {L"t", {{L"a", L"char() for bit data", L"16", true, false}}};
    EXPECT_EQ(CreateTableStatement(IdentifierRules(), sized), L"CREATE TABLE t (\r\n    a char(16) for bit data\r\n)");
    const NewTable plain = {L"t", {{L"a", L"char() for bit data", L"", true, false}}};
    EXPECT_EQ(CreateTableStatement(IdentifierRules(), plain), L"CREATE TABLE t (\r\n    a char for bit data\r\n)");
}

TEST(Problem, TellsWhatIsMissing) {
    const NewColumn good = {L"a", L"int", L"", true, false};
    EXPECT_EQ(Problem({L"t", {good}}), L"");
    EXPECT_NE(Problem({L"", {good}}), L"");
    EXPECT_NE(Problem({L"  ", {good}}), L"");
    EXPECT_NE(Problem({L"t", {}}), L"");
    EXPECT_NE(Problem({L"t", {{L"", L"int", L"", true, false}}}), L"");
    EXPECT_NE(Problem({L"t", {{L"a", L" ", L"", true, false}}}), L"");
    EXPECT_NE(Problem({L"t", {good, {L"A", L"int", L"", true, false}}}), L"");
}

TEST(Problem, WantsSizesThatAreNumbers) {
    const auto withSize = [](const wchar_t* size) { return Problem({L"t", {{L"a", L"x", size, true, false}}}); };
    for (const wchar_t* size : {L"", L"40", L"10,2", L"10, 2"}) EXPECT_EQ(withSize(size), L"") << size;
    for (const wchar_t* size : {L"many", L"-1", L"10,", L",2", L"1,2,3", L"1) --", L" "})
        EXPECT_NE(withSize(size), L"") << size;
}

TEST(ReadTypes, GivesTheDriversTypesOnceWithTheUsualOnesFirst) {
    const auto session = OpenEmpty();
    const std::vector<TypeChoice> types = ReadTypes(*session->Live());
    ASSERT_GT(types.size(), 5u);
    EXPECT_EQ(types[0].Name, L"integer");
    EXPECT_FALSE(types[0].TakesSize);
    const auto varchar =
        std::find_if(types.begin(), types.end(), [](const TypeChoice& t) { return t.Name == L"varchar"; });
    ASSERT_NE(varchar, types.end());
    EXPECT_TRUE(varchar->TakesSize);
    EXPECT_EQ(varchar->UsualSize, L"50");
    EXPECT_EQ(std::count_if(types.begin(), types.end(), [](const TypeChoice& t) { return t.Name == L"varchar"; }), 1);
}

TEST(CreateTableStatement, IsUnderstoodByTheDatabase) {
    const auto session = OpenEmpty();
    const NewTable table = {L"a \"b\".c",
                            {{L"Order", L"integer", L"", true, true}, {L"Größe", L"varchar", L"40", false, false}}};
    RunSql(*session, CreateTableStatement(session->Facts().Rules, table));
    Odbc::Statement statement(*session->Live());
    statement.Execute(L"select count(*) from pragma_table_info('a \"b\".c')");
    ASSERT_TRUE(statement.Fetch());
    EXPECT_EQ(statement.Text(1), L"2");
}

}  // namespace
