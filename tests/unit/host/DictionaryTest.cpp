#include "host/database/Dictionary.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "SampleDatabase.h"

namespace {

using Names = std::vector<std::wstring>;

bool Contains(const Names& names, const std::wstring& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::wstring Field(const ColumnProperties& column, const std::wstring& name) {
    for (const ColumnProperty& property : column) {
        if (property.Name == name) return property.Value.IsNull() ? L"(null)" : property.Value.ToText();
    }
    return L"(missing)";
}

Names ColumnNames(const Dictionary& dictionary, const std::wstring& table) {
    Names names;
    for (const ColumnProperties& column : dictionary.Columns(L"", table))
        names.push_back(Field(column, L"COLUMN_NAME"));
    return names;
}

long NumberOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Source, L"brvADO");
        EXPECT_FALSE(error.Description.empty());
        return error.Number;
    }
    return 0;
}

TEST(Dictionary, HasNoSchemasInSQLite) {
    const Dictionary dictionary(OpenSample());
    EXPECT_FALSE(dictionary.Schemas(L"", true).has_value());
}

TEST(Dictionary, ListsTablesSortedWithoutViews) {
    const Dictionary dictionary(OpenSample());
    const Names tables = dictionary.Objects(Dictionary::Tables, L"", L"", false);
    EXPECT_EQ(tables.size(), 17u);
    for (const wchar_t* name : {L"Order", L"Order Details", L"price.history", L"The \"Golden Leaf\" Club",
                                L"Übersetzung", L"customer", L"survey"}) {
        EXPECT_TRUE(Contains(tables, name)) << name;
    }
    EXPECT_FALSE(Contains(tables, L"best_sellers"));
    EXPECT_LT(std::find(tables.begin(), tables.end(), L"customer"), std::find(tables.begin(), tables.end(), L"Order"));
}

TEST(Dictionary, ListsTheDatabasesOwnTablesWhenAsked) {
    const Dictionary dictionary(OpenSample());
    EXPECT_FALSE(Contains(dictionary.Objects(Dictionary::Tables, L"", L"", false), L"sqlite_stat1"));
    const Names all = dictionary.Objects(Dictionary::Tables, L"", L"", true);
    EXPECT_TRUE(Contains(all, L"sqlite_stat1"));
    EXPECT_TRUE(Contains(all, L"customer"));
}

TEST(Dictionary, ListsViews) {
    const Dictionary dictionary(OpenSample());
    EXPECT_EQ(dictionary.Objects(Dictionary::Views, L"", L"", false),
              (Names{L"best_sellers", L"Kundenübersicht", L"open_orders", L"order_total", L"Revenue by Month",
                     L"Top Customers"}));
}

TEST(Dictionary, FiltersByNameWithoutWildcards) {
    const Dictionary dictionary(OpenSample());
    EXPECT_EQ(dictionary.Objects(Dictionary::Tables, L"", L"tax_rate", false), (Names{L"tax_rate"}));
    EXPECT_EQ(dictionary.Objects(Dictionary::Tables, L"", L"%", false), Names());
}

TEST(Dictionary, RefusesOtherKindsOfObjects) {
    const Dictionary dictionary(OpenSample());
    EXPECT_THROW(dictionary.Objects(0, L"", L"", false), RuntimeError);
    EXPECT_THROW(dictionary.Objects(3, L"", L"", false), RuntimeError);
}

TEST(Dictionary, DescribesColumnsInOrder) {
    const Dictionary dictionary(OpenSample());
    const std::vector<ColumnProperties> columns = dictionary.Columns(L"", L"Order");
    ASSERT_EQ(columns.size(), 8u);
    EXPECT_EQ(Field(columns[0], L"COLUMN_NAME"), L"order_id");
    EXPECT_EQ(Field(columns[7], L"COLUMN_NAME"), L"Gift Note");
    EXPECT_EQ(Field(columns[0], L"TABLE_NAME"), L"Order");
    EXPECT_EQ(Field(columns[5], L"TYPE_NAME"), L"VARCHAR(10)");
    EXPECT_EQ(Field(columns[0], L"NULLABLE"), L"0");
    EXPECT_EQ(Field(columns[2], L"NULLABLE"), L"1");
    EXPECT_EQ(Field(columns[0], L"REMARKS"), L"(null)");
    // The fields of a column stand in their own order, and the type is a number.
    EXPECT_EQ(columns[0][3].Name, L"COLUMN_NAME");
    EXPECT_EQ(columns[0][4].Name, L"DATA_TYPE");
    EXPECT_EQ(columns[0][4].Value.vt, VT_I4);
    EXPECT_EQ(columns[0][4].Value.ToLong(), SQL_INTEGER);
    EXPECT_EQ(Field(columns[3], L"DATA_TYPE"), std::to_wstring(SQL_TYPE_TIMESTAMP));
}

TEST(Dictionary, ReadsNamesOfEveryKind) {
    const Dictionary dictionary(OpenSample());
    EXPECT_EQ(ColumnNames(dictionary, L"Übersetzung"), (Names{L"sku", L"Sprache", L"Text", L"geprüft"}));
    EXPECT_EQ(ColumnNames(dictionary, L"price.history"), (Names{L"sku", L"valid.from", L"price"}));
    EXPECT_EQ(ColumnNames(dictionary, L"The \"Golden Leaf\" Club"),
              (Names{L"member_no", L"customer_id", L"Level", L"points", L"until"}));
    EXPECT_EQ(ColumnNames(dictionary, L"Kundenübersicht"), (Names{L"Nr.", L"Name", L"Land", L"Kunde seit"}));
    EXPECT_EQ(ColumnNames(dictionary, L"survey").size(), 60u);
}

TEST(Dictionary, DoesNotTakeAnUnderscoreForAnyCharacter) {
    const Dictionary dictionary(OpenSample());
    EXPECT_EQ(ColumnNames(dictionary, L"tax_rate"), (Names{L"country", L"valid_from", L"percent"}));
    EXPECT_EQ(ColumnNames(dictionary, L"tax-rate"), (Names{L"remark"}));
}

TEST(Dictionary, ReadsNamesBeyondTheBasicPlane) {
    const auto session = OpenEmpty();
    RunSql(*session, L"create table \"\xD83C\xDF75 100% a\\b 'x'\" (\"\xD83D\xDE00\" text)");
    const Dictionary dictionary(session);
    EXPECT_EQ(dictionary.Objects(Dictionary::Tables, L"", L"", false), (Names{L"\xD83C\xDF75 100% a\\b 'x'"}));
    EXPECT_EQ(ColumnNames(dictionary, L"\xD83C\xDF75 100% a\\b 'x'"), (Names{L"\xD83D\xDE00"}));
}

TEST(Dictionary, TellsThatATableWasDropped) {
    const auto session = OpenEmpty();
    RunSql(*session, L"create table t (a integer)");
    const Dictionary dictionary(session);
    EXPECT_EQ(ColumnNames(dictionary, L"t"), (Names{L"a"}));
    RunSql(*session, L"drop table t");
    EXPECT_EQ(NumberOf([&] { dictionary.Columns(L"", L"t"); }), -2147221494);
    EXPECT_EQ(dictionary.Objects(Dictionary::Tables, L"", L"", false), Names());
}

TEST(Dictionary, SeesWhatWasMadeMeanwhile) {
    const auto session = OpenEmpty();
    const Dictionary dictionary(session);
    EXPECT_EQ(dictionary.Objects(Dictionary::Tables, L"", L"", false), Names());
    RunSql(*session, L"create table b (a integer)");
    RunSql(*session, L"create table A (a integer)");
    RunSql(*session, L"create view v as select * from b");
    EXPECT_EQ(dictionary.Objects(Dictionary::Tables, L"", L"", false), (Names{L"A", L"b"}));
    EXPECT_EQ(dictionary.Objects(Dictionary::Views, L"", L"", false), (Names{L"v"}));
}

}  // namespace
