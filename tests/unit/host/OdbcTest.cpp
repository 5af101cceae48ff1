#include "host/database/Odbc.h"

#include <gtest/gtest.h>

#include "SampleDatabase.h"

namespace {

std::unique_ptr<Odbc::Statement> Query(const std::shared_ptr<Session>& session, const std::wstring& sql) {
    auto statement = std::make_unique<Odbc::Statement>(*session->Live());
    statement->Execute(sql);
    return statement;
}

TEST(EscapePattern, EscapesWildcardsAndTheEscapeCharacter) {
    EXPECT_EQ(Odbc::EscapePattern(L"a_b%c\\d", L"\\"), L"a\\_b\\%c\\\\d");
    EXPECT_EQ(Odbc::EscapePattern(L"plain", L"\\"), L"plain");
    EXPECT_EQ(Odbc::EscapePattern(L"a_b", L""), L"a_b");
    EXPECT_EQ(Odbc::EscapePattern(L"", L"\\"), L"");
}

TEST(OdbcError, KnowsALostConnection) {
    const auto lost = [](const wchar_t* state) { return Odbc::Error({{state, 0, L""}}).ConnectionLost(); };
    EXPECT_TRUE(lost(L"08S01"));
    EXPECT_TRUE(lost(L"08003"));
    EXPECT_TRUE(lost(L"57P01"));
    EXPECT_FALSE(lost(L"42P01"));
    EXPECT_FALSE(lost(L"08007"));
    EXPECT_FALSE(lost(L"HY000"));
}

TEST(OdbcError, JoinsItsTextsWithoutRepetition) {
    EXPECT_EQ(Odbc::Error({{L"42000", 1, L"one"}, {L"42000", 1, L"one"}, {L"01000", 2, L"two"}}).Text(), L"one\r\ntwo");
    EXPECT_EQ(Odbc::Error({}).State(), L"HY000");
}

TEST(Connection, FailsWithTheDriversWords) {
    try {
        Odbc::Connection connection(L"Driver=SQLite3;NoCreat=1;Database=/no/such/folder/x.db", 5);
        FAIL() << "connected";
    } catch (const Odbc::Error& error) {
        EXPECT_FALSE(error.Text().empty());
        EXPECT_EQ(error.State().size(), 5u);
    }
}

TEST(Statement, CarriesEveryCharacterBothWays) {
    const std::wstring text = L"Zoë Żółć λ 日本 \xD83D\xDE00 'quoted' \"too\"";
    std::wstring literal = text;
    for (size_t at = 0; (at = literal.find(L'\'', at)) != std::wstring::npos; at += 2) literal.insert(at, 1, L'\'');
    const auto session = OpenEmpty();
    auto statement = Query(session, L"select '" + literal + L"' as \"Größe \xD83D\xDE00\", length('\xD83D\xDE00')");
    EXPECT_EQ(statement->Column(1).Name, L"Größe \xD83D\xDE00");
    ASSERT_TRUE(statement->Fetch());
    EXPECT_EQ(statement->Text(1), text);
    EXPECT_EQ(statement->Text(2), L"1");
    EXPECT_FALSE(statement->Fetch());
}

TEST(Statement, ReadsTextsOfAnyLength) {
    const auto session = OpenEmpty();
    // Around the size of the buffer, and far beyond it.
    for (const int length : {0, 1, 2046, 2047, 2048, 2049, 4094, 4095, 1000000}) {
        auto statement =
            Query(session, L"select replace(hex(zeroblob(" + std::to_wstring(length) + L")), '00', 'ä') as x, 7 as y");
        ASSERT_TRUE(statement->Fetch());
        EXPECT_EQ(statement->Text(1), std::wstring(static_cast<size_t>(length), L'ä')) << length;
        EXPECT_EQ(statement->Text(2), L"7");
    }
}

TEST(Statement, KeepsSurrogatePairsWholeAcrossPieces) {
    const auto session = OpenEmpty();
    for (const int shift : {0, 1}) {
        auto statement = Query(session, L"select " + std::wstring(shift ? L"'x' || " : L"") +
                                            L"replace(hex(zeroblob(3000)), '00', '\xD83D\xDE00')");
        ASSERT_TRUE(statement->Fetch());
        std::wstring expected(shift ? L"x" : L"");
        for (int i = 0; i < 3000; ++i) expected += L"\xD83D\xDE00";
        EXPECT_EQ(statement->Text(1), expected);
    }
}

TEST(Statement, CutsAtALimit) {
    const auto session = OpenEmpty();
    auto statement = Query(session, L"select replace(hex(zeroblob(100000)), '00', 'a'), 'short', 'abc\xD83D\xDE00'");
    ASSERT_TRUE(statement->Fetch());
    bool cut = false;
    EXPECT_EQ(statement->Text(1, 10, &cut), L"aaaaaaaaaa");
    EXPECT_TRUE(cut);
    EXPECT_EQ(statement->Text(2, 10, &cut), L"short");
    EXPECT_FALSE(cut);
    EXPECT_EQ(statement->Text(3, 4, &cut), L"abc");  // half a character is none
    EXPECT_TRUE(cut);
}

TEST(Statement, ReadsNullNumbersAndBinary) {
    const auto session = OpenEmpty();
    RunSql(*session, L"create table t (a integer, b double, c blob, d date, e text, f bigint)");
    RunSql(*session, L"insert into t values (42, 0.1, x'00FF10', '2024-02-29', null, 9007199254740993)");
    auto statement = Query(session, L"select * from t");
    ASSERT_EQ(statement->AllColumns().size(), 6u);
    EXPECT_TRUE(statement->AllColumns()[0].IsNumber());
    EXPECT_TRUE(statement->AllColumns()[2].IsBinary());
    ASSERT_TRUE(statement->Fetch());
    EXPECT_EQ(statement->Text(1), L"42");
    EXPECT_EQ(statement->Text(2), L"0.1");
    EXPECT_EQ(statement->Text(3), L"0x00FF10");
    EXPECT_EQ(statement->Text(4), L"2024-02-29");
    EXPECT_EQ(statement->Text(5), std::nullopt);
    EXPECT_EQ(statement->Text(6), L"9007199254740993");
}

TEST(Statement, ReadsBlobsOfAnyLength) {
    const auto session = OpenEmpty();
    RunSql(*session, L"create table t (b blob)");
    for (const int length : {0, 1, 4095, 4096, 4097, 100000}) {
        RunSql(*session, L"delete from t");
        RunSql(*session, L"insert into t values (zeroblob(" + std::to_wstring(length) + L"))");
        auto statement = Query(session, L"select b from t");
        ASSERT_TRUE(statement->Fetch());
        EXPECT_EQ(statement->Text(1), L"0x" + std::wstring(static_cast<size_t>(length) * 2, L'0')) << length;
    }
}

TEST(Statement, CountsChangedRows) {
    const auto session = OpenEmpty();
    RunSql(*session, L"create table t (a integer)");
    EXPECT_EQ(Query(session, L"insert into t values (1), (2), (3)")->RowCount(), 3);
    EXPECT_EQ(Query(session, L"update t set a = 0 where a > 1")->RowCount(), 2);
    EXPECT_EQ(Query(session, L"delete from t where a = 99")->RowCount(), 0);
    EXPECT_EQ(Query(session, L"delete from t where a = 99")->ColumnCount(), 0u);
}

TEST(Statement, RefusesAColumnThatIsNotThere) {
    const auto session = OpenEmpty();
    auto statement = Query(session, L"select 1");
    ASSERT_TRUE(statement->Fetch());
    EXPECT_THROW(statement->Text(0), Odbc::Error);
    EXPECT_THROW(statement->Text(2), Odbc::Error);
}

TEST(Statement, ThrowsWithTheStateOfABadStatement) {
    const auto session = OpenEmpty();
    Odbc::Statement statement(*session->Live());
    try {
        statement.Execute(L"selec 1");
        FAIL() << "was run";
    } catch (const Odbc::Error& error) {
        EXPECT_NE(error.Text().find(L"selec"), std::wstring::npos);
        EXPECT_FALSE(error.ConnectionLost());
    }
    statement.Execute(L"select 1");  // the statement can be used again
    EXPECT_TRUE(statement.Fetch());
}

TEST(Statement, StreamsALongResult) {
    const auto session = OpenSample();
    auto statement =
        Query(session,
              L"with recursive n(i) as (select 1 union all select i + 1 from n where i < 100000000) select i from n");
    for (int i = 1; i <= 1000; ++i) {
        ASSERT_TRUE(statement->Fetch());
        ASSERT_EQ(statement->Text(1), std::to_wstring(i));
    }
}

}  // namespace
