#include "sql/Statements.h"

#include <gtest/gtest.h>

#include <string>

// What the demonstration host's own tests do not ask: products that end statements in their own ways, and the statement
// at a caret.
namespace {

using namespace Sql;
using Texts = std::vector<std::wstring>;

Texts Split(const std::wstring& text, long type) {
    Texts texts;
    for (const Statement& one : Statements(text, DialectOf(type)))
        texts.push_back(text.substr(one.Start, one.End - one.Start));
    return texts;
}

TEST(Statements, OraclesProceduresDeclareBeforeTheyBegin) {
    const std::wstring procedure =
        L"CREATE OR REPLACE PROCEDURE p (x NUMBER) IS\r\n  a NUMBER;\r\n  PROCEDURE q AS b NUMBER; BEGIN NULL; END "
        L"q;\r\n"
        L"BEGIN\r\n  IF a = 1 THEN q; END IF;\r\n  LOOP EXIT; END LOOP;\r\n  a := CASE WHEN 1 = 1 THEN 2 END;\r\n  "
        L"BEGIN NULL; END;\r\n"
        L"END p";
    EXPECT_EQ(Split(procedure + L"; select 1", 4), (Texts{procedure, L"select 1"}));
    const std::wstring block = L"DECLARE a NUMBER; BEGIN a := 1; END";
    EXPECT_EQ(Split(block + L";\r\nselect 1;", 4), (Texts{block, L"select 1"}));
    const std::wstring trigger = L"create trigger t before insert on a for each row declare x int; begin null; end";
    EXPECT_EQ(Split(trigger + L";select 1", 4), (Texts{trigger, L"select 1"}));
}

TEST(Statements, OraclesPackagesHoldSubprograms) {
    const std::wstring head = L"CREATE PACKAGE p AS PROCEDURE a; FUNCTION b RETURN NUMBER; END p";
    const std::wstring body =
        L"CREATE PACKAGE BODY p AS x NUMBER; PROCEDURE a IS BEGIN NULL; END; FUNCTION b RETURN NUMBER IS BEGIN RETURN "
        L"1; "
        L"END; BEGIN x := 1; END p";
    EXPECT_EQ(Split(head + L";\n" + body + L";\nselect 1", 4), (Texts{head, body, L"select 1"}));
    const std::wstring external = L"CREATE FUNCTION f RETURN NUMBER AS LANGUAGE JAVA NAME 'f()'";
    EXPECT_EQ(Split(external + L"; select 1", 4), (Texts{external, L"select 1"}));
    EXPECT_EQ(Split(L"create type t as object (a int); select 1", 4),
              (Texts{L"create type t as object (a int)", L"select 1"}));
}

TEST(Statements, ALineOfItsOwnEndsABatch) {
    EXPECT_EQ(Split(L"begin null; end;\n/\nselect 1\n /\t\nselect a\n/ 2 from t", 4),
              (Texts{L"begin null; end", L"select 1", L"select a\n/ 2 from t"}));
    EXPECT_EQ(Split(L"select 1\r\nGO\r\nselect 2\r\ngo 5\r\n-- go\r\nselect go\r\ngo", 8),
              (Texts{L"select 1", L"select 2", L"-- go\r\nselect go"}));
    EXPECT_EQ(Split(L"select 1\ngo\nselect 2", 27), (Texts{L"select 1\ngo\nselect 2"}));
}

TEST(Statements, BlocksOfSqlServerStayTogether) {
    const std::wstring conditional = L"IF @a = 1 BEGIN SELECT 1; SELECT 2; END";
    EXPECT_EQ(Split(conditional + L"; SELECT 3", 8), (Texts{conditional, L"SELECT 3"}));
    EXPECT_EQ(Split(L"BEGIN TRAN; DELETE FROM t; COMMIT", 8), (Texts{L"BEGIN TRAN", L"DELETE FROM t", L"COMMIT"}));
    const std::wstring procedure = L"CREATE PROC p AS SELECT 1; SELECT 2";
    EXPECT_EQ(Split(procedure + L"\r\nGO\r\nEXEC p", 8), (Texts{procedure, L"EXEC p"}));
    const std::wstring block = L"CREATE PROC p AS BEGIN BEGIN TRANSACTION; SELECT 1; END";
    EXPECT_EQ(Split(block + L"; EXEC p", 8), (Texts{block, L"EXEC p"}));
}

TEST(Statements, FirebirdAndInformixBodies) {
    const std::wstring trigger = L"create trigger t for a before insert as declare variable x int; begin x = 1; end";
    EXPECT_EQ(Split(trigger + L"; select 1", 28), (Texts{trigger, L"select 1"}));
    const std::wstring procedure = L"CREATE PROCEDURE p() DEFINE x INT; IF x THEN LET x = 1; END IF; END PROCEDURE";
    EXPECT_EQ(Split(procedure + L"; select 1", 2), (Texts{procedure, L"select 1"}));
}

TEST(Statements, TellWhereTheyAre) {
    const std::wstring text = L" a ; \r\n\r\n -- b\r\n c /* d */  ;;e";
    const auto all = Statements(text, DialectOf(0));
    ASSERT_EQ(3U, all.size());
    EXPECT_EQ(1U, all[0].Start);
    EXPECT_EQ(2U, all[0].End);
    EXPECT_EQ(4U, all[0].Behind);
    EXPECT_EQ(L"-- b\r\n c /* d */", text.substr(all[1].Start, all[1].End - all[1].Start));
    EXPECT_EQ(L';', text[all[1].Behind - 1]);
    EXPECT_EQ(all[2].End, all[2].Behind);
    EXPECT_EQ(text.size(), all[2].End);
}

TEST(Statements, OneIsAtTheCaret) {
    const std::wstring text = L"select 1; \r\n\r\nselect 2;select 3\r\n\r\n";
    const auto all = Statements(text, DialectOf(0));
    ASSERT_EQ(3U, all.size());
    const auto at = [&](size_t position) { return StatementAt(all, text, position) - all.data(); };
    EXPECT_EQ(0, at(0));
    EXPECT_EQ(0, at(9));   // after the semicolon
    EXPECT_EQ(0, at(10));  // after the blank, on its line
    EXPECT_EQ(1, at(12));  // in the empty line
    EXPECT_EQ(1, at(14));
    EXPECT_EQ(2, at(23));  // between two without a blank: in the second
    EXPECT_EQ(2, at(text.size()));
    EXPECT_EQ(2, at(text.size() + 100));
    EXPECT_EQ(nullptr, StatementAt({}, L"", 0));
    const std::wstring late = L"\r\n\r\nselect 1";
    EXPECT_EQ(4U, StatementAt(Statements(late, DialectOf(0)), late, 0)->Start == 4 ? 4U : 0U);
}

}  // namespace
