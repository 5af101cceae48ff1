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

// What is left over from the statement before decides nothing, whatever has ended that one.
TEST(Statements, EachBeginsWithoutThoseBefore) {
    const auto apart = [](const Texts& expected, const std::wstring& between, long type) {
        std::wstring text;
        for (const std::wstring& one : expected) text += one + between;
        EXPECT_EQ(expected, Split(text, type));
    };
    const std::wstring go = L"\r\nGO\r\n";
    const std::wstring slash = L"\r\n/\r\n";
    // SQL Server: the body of the second procedure has no BEGIN.
    EXPECT_EQ((Texts{L"CREATE PROC p AS BEGIN SELECT 1; END", L"CREATE PROC q AS SELECT 1; SELECT 2"}),
              Split(L"CREATE PROC p AS BEGIN SELECT 1; END;\r\nCREATE PROC q AS SELECT 1; SELECT 2\r\nGO", 8));
    apart({L"CREATE PROC p AS BEGIN SELECT 1; END", L"CREATE PROC q AS SELECT 1; SELECT 2"}, go, 8);
    apart({L"CREATE PROC p AS SELECT 1; SELECT 2", L"SELECT 3", L"SELECT 4"}, go, 8);
    EXPECT_EQ((Texts{L"CREATE PROC p AS SELECT 1", L"SELECT 3", L"SELECT 4"}),
              Split(L"CREATE PROC p AS SELECT 1\r\nGO\r\nSELECT 3; SELECT 4", 8));
    // A block that nothing has closed, and an END that nothing follows.
    EXPECT_EQ((Texts{L"BEGIN SELECT 1", L"SELECT 2", L"SELECT 3"}),
              Split(L"BEGIN SELECT 1\nGO\nSELECT 2; SELECT 3", 8));
    EXPECT_EQ((Texts{L"BEGIN SELECT 1 END", L"IF @a = 1 SELECT 2", L"SELECT 3"}),
              Split(L"BEGIN SELECT 1 END\nGO\nIF @a = 1 SELECT 2; SELECT 3", 8));
    // Firebird: a trigger has a body, what follows it has none.
    apart({L"create trigger t for a as begin x = 1; end", L"select 1", L"create table a (b int)", L"select 2"}, L";\n",
          28);
    // Informix.
    apart({L"CREATE PROCEDURE p() LET x = 1; END PROCEDURE", L"select 1", L"select 2"}, L";\n", 2);
    // Oracle: a column called BEGIN, which opens a block in what has a body alone.
    apart({L"create function f return number is begin return 1; end", L"select begin from t", L"select 2"}, L";\n", 4);
    // What a slash cuts off is over: a heading, a body that waits for its BEGIN, and an open block.
    EXPECT_EQ((Texts{L"create function f", L"create package p is procedure a; end p", L"select 1"}),
              Split(L"create function f" + slash + L"create package p is procedure a; end p; select 1", 4));
    for (const wchar_t* const cut :
         {L"create procedure p is", L"create procedure p is begin", L"begin", L"declare a int"}) {
        EXPECT_EQ((Texts{cut, L"select 1", L"select 2"}), Split(cut + slash + L"select 1; select 2", 4));
    }
    EXPECT_EQ((Texts{L"begin null; end", L"begin if a then null; end if; end", L"select 1"}),
              Split(L"begin null; end" + slash + L"begin if a then null; end if; end; select 1", 4));
}

TEST(Statements, EveryKindOfBodyIsKnown) {
    for (const wchar_t* const what : {L"TRIGGER", L"PROCEDURE", L"PROC", L"FUNCTION", L"PACKAGE", L"trigger"}) {
        for (const wchar_t* const verb : {L"CREATE ", L"ALTER ", L"CREATE OR REPLACE ", L"alter "}) {
            const std::wstring body = std::wstring(verb) + what + L" p AS SELECT 1; SELECT 2";
            EXPECT_EQ((Texts{body, L"SELECT 3"}), Split(body + L"\nGO\nSELECT 3", 8));
        }
        const std::wstring other = std::wstring(L"DROP ") + what + L" p";
        EXPECT_EQ((Texts{other, L"SELECT 1", L"SELECT 2"}), Split(other + L"; SELECT 1; SELECT 2", 8));
    }
    for (const wchar_t* const what : {L"TABLE", L"VIEW", L"INDEX"}) {
        // The word of a body is a name behind these.
        const std::wstring text = std::wstring(L"CREATE ") + what + L" FUNCTION";
        EXPECT_EQ((Texts{text, L"SELECT 1"}), Split(text + L"; SELECT 1", 8));
    }
    // The kind is one of the first eight words.
    const std::wstring eighth = L"CREATE OR REPLACE a b c d TRIGGER t AS BEGIN x; END";
    EXPECT_EQ((Texts{eighth, L"SELECT 1"}), Split(eighth + L"; SELECT 1", 28));
    EXPECT_EQ((Texts{L"CREATE OR REPLACE a b c d e TRIGGER t AS BEGIN x", L"END", L"SELECT 1"}),
              Split(L"CREATE OR REPLACE a b c d e TRIGGER t AS BEGIN x; END; SELECT 1", 28));
    const std::wstring type = L"create type body t as member procedure a is begin null; end; end";
    EXPECT_EQ((Texts{type, L"select 1"}), Split(type + L"; select 1", 4));
}

TEST(Statements, WhatAnEndCloses) {
    for (const wchar_t* const word :
         {L"IF", L"LOOP", L"WHILE", L"REPEAT", L"FOR", L"FOREACH", L"EXCEPTION", L"CONVERSATION"}) {
        const std::wstring body =
            std::wstring(L"CREATE PROCEDURE p() ") + word + L" x; END " + word + L"; LET y = 1; END PROCEDURE";
        EXPECT_EQ((Texts{body, L"select 1"}), Split(body + L"; select 1", 2));
    }
    const std::wstring choice = L"CREATE PROC p AS BEGIN CASE WHEN 1 = 1 THEN 2 END CASE; SELECT 1; END";
    EXPECT_EQ((Texts{choice, L"SELECT 2"}), Split(choice + L"; SELECT 2", 8));
    // Words of an END that a semicolon has ended belong to the next statement.
    EXPECT_EQ((Texts{L"BEGIN SELECT 1; END", L"IF @a = 1 SELECT 2", L"SELECT 3"}),
              Split(L"BEGIN SELECT 1; END; IF @a = 1 SELECT 2; SELECT 3", 8));
    const std::wstring blocks = L"begin loop exit; end loop; case when a then null; end case; end";
    EXPECT_EQ((Texts{blocks, L"select 1"}), Split(blocks + L"; select 1", 4));
}

TEST(Statements, WhatABeginBegins) {
    for (const wchar_t* const word : {L"TRAN", L"TRANSACTION", L"DISTRIBUTED", L"DIALOG", L"CONVERSATION"}) {
        const std::wstring begin = std::wstring(L"BEGIN ") + word + L" x";
        EXPECT_EQ((Texts{begin, L"SELECT 1", L"SELECT 2"}), Split(begin + L"; SELECT 1; SELECT 2", 8));
        // It is not the BEGIN that the body of a procedure may have.
        const std::wstring procedure = L"CREATE PROC p AS " + begin + L"; SELECT 1; COMMIT";
        EXPECT_EQ((Texts{procedure, L"SELECT 2"}), Split(procedure + L"\nGO\nSELECT 2", 8));
        const std::wstring block = L"CREATE PROC p AS BEGIN " + begin + L"; SELECT 1; COMMIT; END";
        EXPECT_EQ((Texts{block, L"SELECT 2"}), Split(block + L"; SELECT 2", 8));
    }
}

TEST(Statements, BodiesInOtherLanguages) {
    for (const wchar_t* const language : {L"LANGUAGE C NAME 'f'", L"EXTERNAL NAME 'f'", L"language java name 'f'"}) {
        const std::wstring function = std::wstring(L"CREATE FUNCTION f RETURN NUMBER IS ") + language;
        EXPECT_EQ((Texts{function, L"select 1"}), Split(function + L"; select 1", 4));
    }
}

TEST(Statements, CompoundTriggersStayWhole) {
    const std::wstring trigger =
        L"create trigger t for insert on a compound trigger n number;\n"
        L"procedure q is begin null; end;\n"
        L"before statement is begin n := 0; end before statement;\n"
        L"after each row is x int; begin if n = 0 then q; end if; begin null; end; end after each row;\n"
        L"end t";
    EXPECT_EQ((Texts{trigger, L"select 1"}), Split(trigger + L"; select 1", 4));
}

// Oracle reserves none of these words. Taken for the head of a package, one swallows all statements that follow.
TEST(Statements, PackageBodyAndCompoundAreNamesToo) {
    for (const wchar_t* const name : {L"package", L"body", L"compound"}) {
        const std::wstring is = name;
        for (const std::wstring& one :
             {L"declare " + is + L" varchar2(9); begin null; end", L"begin " + is + L" := 1; end",
              L"create procedure p(" + is + L" clob) is begin null; end",
              L"create trigger t before update of " + is + L" on " + is + L" for each row begin null; end"}) {
            EXPECT_EQ((Texts{one, L"select 1"}), Split(one + L"; select 1", 4));
        }
    }
    const std::wstring trigger =
        L"create trigger t for insert on compound compound trigger x int; "
        L"before statement is begin null; end before statement; end";
    EXPECT_EQ((Texts{trigger, L"select 1"}), Split(trigger + L"; select 1", 4));
}

TEST(Statements, OraclesAlterHasNoBody) {
    for (const wchar_t* const one : {L"alter package p compile body", L"alter package p compile",
                                     L"alter procedure p compile", L"alter trigger begin disable"}) {
        EXPECT_EQ((Texts{one, L"select 1"}), Split(one + std::wstring(L"; select 1"), 4));
    }
}

TEST(Statements, HowOftenABatchRunsIsANumber) {
    for (const wchar_t* const line : {L"go", L"Go 0", L"gO 9", L"GO 10 ", L" \tGO\t19"}) {
        EXPECT_EQ((Texts{L"a", L"b"}), Split(std::wstring(L"a\n") + line + L"\nb", 8)) << testing::PrintToString(line);
    }
    for (const wchar_t* const line : {L"go x", L"go :", L"go / ", L"goo", L"x go"}) {
        EXPECT_EQ(1U, Split(std::wstring(L"a\n") + line + L"\nb", 8).size()) << testing::PrintToString(line);
    }
    EXPECT_EQ(1U, Split(L"a\n/ 2\nb", 4).size());
}

TEST(Statements, BlanksAtTheEndOfWhatIsOpenAreNotIts) {
    const std::wstring text = L"select 'a \r\n ";
    const auto all = Statements(text, DialectOf(0));
    ASSERT_EQ(1U, all.size());
    EXPECT_EQ(9U, all[0].End);
    EXPECT_EQ(9U, all[0].Behind);
    EXPECT_EQ((Texts{L"-- a", L"select 1"}).back(), Split(L"select 1;\r\n-- a ", 0).front());
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
