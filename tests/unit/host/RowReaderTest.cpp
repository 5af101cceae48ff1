#include "host/database/RowReader.h"

#include <gtest/gtest.h>

#include "SampleDatabase.h"

namespace {

Odbc::ColumnInfo OfType(SQLSMALLINT type) {
    Odbc::ColumnInfo info;
    info.Type = type;
    return info;
}

TEST(TypedValue, ReadsNumbersWithAPoint) {
    EXPECT_EQ(TypedValue(L"42", OfType(SQL_INTEGER)).vt, VT_I4);
    EXPECT_EQ(TypedValue(L"-7", OfType(SQL_SMALLINT)).ToLong(), -7);
    EXPECT_EQ(TypedValue(L"1.5", OfType(SQL_DOUBLE)).ToDouble(), 1.5);
    EXPECT_EQ(TypedValue(L"1.0e+300", OfType(SQL_DOUBLE)).ToDouble(), 1e300);
    EXPECT_EQ(TypedValue(L"12.50", OfType(SQL_DECIMAL)).vt, VT_DECIMAL);
    EXPECT_EQ(TypedValue(L"12.50", OfType(SQL_DECIMAL)).ToDouble(), 12.5);
    EXPECT_EQ(TypedValue(L"9007199254740993", OfType(SQL_BIGINT)).ToText(), L"9007199254740993");
}

TEST(TypedValue, KeepsWhatDoesNotReadAsItsType) {
    // Columns of SQLite hold what they like.
    for (const SQLSMALLINT type : {SQL_INTEGER, SQL_DOUBLE, SQL_BIGINT, SQL_DECIMAL, SQL_TYPE_DATE, SQL_BIT}) {
        EXPECT_EQ(TypedValue(L"not a number", OfType(type)).ToText(), L"not a number") << type;
        EXPECT_EQ(TypedValue(L"", OfType(type)).ToText(), L"") << type;
    }
    EXPECT_EQ(TypedValue(L"1,5", OfType(SQL_DOUBLE)).vt, VT_BSTR);
    EXPECT_EQ(TypedValue(L"99999999999", OfType(SQL_INTEGER)).vt, VT_BSTR);
}

TEST(TypedValue, ReadsDates) {
    const Variant date = TypedValue(L"2024-02-29", OfType(SQL_TYPE_DATE));
    EXPECT_EQ(date.vt, VT_DATE);
    EXPECT_EQ(date.date, 45351.0);
    const Variant moment = TypedValue(L"2024-02-29 12:00:00.123456", OfType(SQL_TYPE_TIMESTAMP));
    EXPECT_EQ(moment.vt, VT_DATE);
    EXPECT_NEAR(moment.date, 45351.5, 1e-9);
    for (const wchar_t* text : {L"2024-02-30", L"0044-03-15", L"2024-02", L"2024-02-29 12:00", L"infinity"}) {
        EXPECT_EQ(TypedValue(text, OfType(SQL_TYPE_DATE)).vt, VT_BSTR) << text;
    }
}

TEST(RowReader, ReadsRowsAsValuesAndTexts) {
    const auto session = OpenSample();
    RowReader values(session, L"select weekday, \"from\", \"to\" from opening_hours order by weekday", 0);
    ASSERT_EQ(values.Fields().size(), 3u);
    EXPECT_EQ(values.Fields()[1].Name, L"from");
    auto row = values.Next();
    ASSERT_TRUE(row);
    EXPECT_EQ((*row)[0].ToLong(), 1);
    EXPECT_TRUE((*row)[1].IsNull());
    RowReader texts(session, L"select name from country where code = 'JP'", 0);
    row = texts.NextText(SIZE_MAX);
    ASSERT_TRUE(row);
    EXPECT_EQ((*row)[0].ToText(), L"日本");
    EXPECT_FALSE(texts.NextText(SIZE_MAX));
    EXPECT_FALSE(texts.NextText(SIZE_MAX));
}

TEST(RowReader, MarksWhatItCutsShort) {
    RowReader rows(OpenSample(), L"select 'abcdefghij', 'abcde'", 0);
    const auto row = rows.NextText(5);
    ASSERT_TRUE(row);
    EXPECT_EQ((*row)[0].ToText(), L"abcd\x2026");
    EXPECT_EQ((*row)[1].ToText(), L"abcde");
}

TEST(RowReader, StopsAtTheLimit) {
    RowReader rows(OpenSample(), L"select * from survey", 3);
    int count = 0;
    while (rows.Next()) ++count;
    EXPECT_EQ(count, 3);
}

TEST(RowReader, RunsWhatGivesNoRows) {
    const auto session = OpenEmpty();
    RowReader create(session, L"create table t (a integer)", 0);
    EXPECT_TRUE(create.Fields().empty());
    EXPECT_FALSE(create.Next());
    RowReader insert(session, L"insert into t values (1), (2)", 0);
    EXPECT_EQ(insert.RowsAffected(), 2);
}

TEST(RowReader, ReportsABadStatementWithItsState) {
    try {
        RowReader rows(OpenSample(), L"select * from no_such_table", 0);
        FAIL() << "was run";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Source, L"brvADO");
        EXPECT_EQ(error.Number, DatabaseError::StatementFailed);
        EXPECT_NE(error.Description.find(L"no_such_table"), std::wstring::npos);
        EXPECT_NE(error.Description.find(L"(SQLSTATE "), std::wstring::npos);
    }
}

TEST(RowReader, CannotBeReadAfterClose) {
    RowReader rows(OpenSample(), L"select 1", 0);
    rows.Close();
    EXPECT_THROW(rows.Next(), RuntimeError);
    EXPECT_THROW(rows.Fields(), RuntimeError);
}

}  // namespace
