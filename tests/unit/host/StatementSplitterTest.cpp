#include "host/demo/StatementSplitter.h"

#include <gtest/gtest.h>

namespace {

using Statements = std::vector<std::wstring>;

TEST(SplitStatements, SplitsAtSemicolonsAndTrims) {
    EXPECT_EQ(SplitStatements(L"select 1; \r\n select 2 ;\r\n"), (Statements{L"select 1", L"select 2"}));
    EXPECT_EQ(SplitStatements(L"select 1"), (Statements{L"select 1"}));
    EXPECT_EQ(SplitStatements(L"select 1;;;select 2"), (Statements{L"select 1", L"select 2"}));
}

TEST(SplitStatements, LeavesOutWhatIsEmpty) {
    EXPECT_EQ(SplitStatements(L""), Statements());
    EXPECT_EQ(SplitStatements(L" ;\r\n; "), Statements());
    EXPECT_EQ(SplitStatements(L"-- nothing; at all\r\n/* nor; here */;"), Statements());
}

TEST(SplitStatements, KeepsCommentsOfAStatement) {
    EXPECT_EQ(SplitStatements(L"-- one; two\nselect 1 /* ; */ ; -- end"),
              (Statements{L"-- one; two\nselect 1 /* ; */"}));
}

TEST(SplitStatements, LooksThroughStringsAndNames) {
    EXPECT_EQ(SplitStatements(L"select ';', 'it''s; so'; select 2"),
              (Statements{L"select ';', 'it''s; so'", L"select 2"}));
    EXPECT_EQ(SplitStatements(L"select \"a;\"\"b\" from `c;d`, [e;f]"),
              (Statements{L"select \"a;\"\"b\" from `c;d`, [e;f]"}));
    EXPECT_EQ(SplitStatements(L"select '--'; select '/*'; select 3"),
              (Statements{L"select '--'", L"select '/*'", L"select 3"}));
}

TEST(SplitStatements, ReadsBracketsBehindAWordAsAnIndex) {
    EXPECT_EQ(SplitStatements(L"select array['a]', ']'];select a[1];"),
              (Statements{L"select array['a]', ']']", L"select a[1]"}));
}

TEST(SplitStatements, KnowsDollarQuotes) {
    EXPECT_EQ(SplitStatements(L"do $$ begin; end $$; select $tag$ $$; $tag$; select $1"),
              (Statements{L"do $$ begin; end $$", L"select $tag$ $$; $tag$", L"select $1"}));
    // A dollar sign inside a name begins nothing.
    EXPECT_EQ(SplitStatements(L"select v$a; select v$b"), (Statements{L"select v$a", L"select v$b"}));
}

TEST(SplitStatements, KeepsBodiesTogether) {
    const std::wstring trigger =
        L"create trigger t after insert on a begin update b set n = case when 1 then 2 else 3 end; delete from c; end";
    EXPECT_EQ(SplitStatements(trigger + L"; select 1"), (Statements{trigger, L"select 1"}));
    const std::wstring procedure = L"CREATE OR REPLACE PROCEDURE p IS BEGIN IF x THEN y; END IF; z; END";
    EXPECT_EQ(SplitStatements(procedure + L";select 2;"), (Statements{procedure, L"select 2"}));
    // Transactions and tables have no body.
    EXPECT_EQ(SplitStatements(L"begin; create table \"trigger\" (x int); end"),
              (Statements{L"begin", L"create table \"trigger\" (x int)", L"end"}));
}

TEST(SplitStatements, RunsToTheEndWhenSomethingIsNotClosed) {
    EXPECT_EQ(SplitStatements(L"select 'abc; select 2"), (Statements{L"select 'abc; select 2"}));
    EXPECT_EQ(SplitStatements(L"select 1 /* ; select 2"), (Statements{L"select 1 /* ; select 2"}));
    EXPECT_EQ(SplitStatements(L"select $x$ ; select 2"), (Statements{L"select $x$ ; select 2"}));
}

TEST(SplitStatements, TakesAMegabyteInItsStride) {
    std::wstring script;
    for (int i = 0; i < 50000; ++i) script += L"select 'a;b';\r\n";
    EXPECT_EQ(SplitStatements(script).size(), 50000u);
}

}  // namespace
