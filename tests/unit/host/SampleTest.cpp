#include "host/demo/Sample.h"

#include <gtest/gtest.h>

#include "automation/HostCollection.h"
#include "automation/RuntimeError.h"

namespace {

std::vector<std::wstring> NamesOf(const Object& dictionary, long type) {
    std::vector<std::wstring> names;
    HostCollection(dictionary.Get(L"Objects", type, Variant::Null(), L"", false)).ForEach([&](const Variant& name) {
        names.push_back(name.ToText());
        return true;
    });
    return names;
}

// What the editor asks a connection object for, in its order.
TEST(SampleConnection, AnswersWhatTheEditorAsks) {
    const Object sample = MakeSampleConnection();
    EXPECT_TRUE(sample.Get(L"Connected").ToBoolean());
    EXPECT_EQ(sample.Get(L"CurrentCatalog").ToText(), L"");
    EXPECT_EQ(sample.Get(L"UserName").ToText(), L"");
    EXPECT_EQ(sample.Get(L"DBType").ToLong(), 17);
    EXPECT_EQ(sample.Get(L"SchemaTerm").ToText(), L"");
    EXPECT_NE(sample.Get(L"DBTypeName", 17L).ToText().find(L"cannot be run"), std::wstring::npos);
    EXPECT_EQ(sample.Get(L"FormatName", L"product").ToText(), L"product");
    EXPECT_EQ(sample.Get(L"FormatName", L"Order").ToText(), L"\"Order\"");
    EXPECT_EQ(sample.Get(L"FormatName", L"Order Details").ToText(), L"\"Order Details\"");
    std::wstring sql;
    bool cancel = true;
    sample.Call(L"ShowCreateTableDialog1", ByRef(sql), ByRef(cancel));
    EXPECT_EQ(sql, L"CREATE TABLE new_table (\r\n    id INTEGER NOT NULL PRIMARY KEY,\r\n    name VARCHAR(40)\r\n)");
    EXPECT_FALSE(cancel);
}

TEST(SampleConnection, HasTablesAndViewsWithColumns) {
    const Object dictionary = MakeSampleConnection().Get(L"Dictionary").ToObject();
    EXPECT_TRUE(dictionary.Get(L"Schemas", L"", true).IsNothing());
    EXPECT_EQ(NamesOf(dictionary, 1).size(), 6u);
    EXPECT_EQ(NamesOf(dictionary, 2), std::vector<std::wstring>{L"best_sellers"});
    for (const long type : {1L, 2L}) {
        for (const std::wstring& name : NamesOf(dictionary, type)) {
            size_t columns = 0;
            HostCollection(dictionary.Get(L"Columns", Variant::Null(), name)).ForEach([&](const Variant& column) {
                std::vector<std::wstring> properties;
                HostCollection(column).ForEach([&](const Variant& property) {
                    properties.push_back(property.ToArray().at(0).ToText());
                    return true;
                });
                EXPECT_EQ(properties, (std::vector<std::wstring>{L"TABLE_NAME", L"COLUMN_NAME", L"DATA_TYPE",
                                                                 L"TYPE_NAME", L"COLUMN_SIZE", L"IS_NULLABLE"}));
                ++columns;
                return true;
            });
            EXPECT_GE(columns, 3u) << name.size();
        }
    }
    EXPECT_THROW(dictionary.Get(L"Columns", Variant::Null(), L"no such table"), RuntimeError);
    EXPECT_EQ(dictionary.Get(L"DataTypeDesc", 4L, 0L).ToText(), L"INTEGER");
}

TEST(SampleConnection, DescribesEveryColumn) {
    const Object dictionary = MakeSampleConnection().Get(L"Dictionary").ToObject();
    const auto columnsOf = [&](const wchar_t* name) {
        std::wstring all;
        HostCollection(dictionary.Get(L"Columns", Variant::Null(), name)).ForEach([&](const Variant& column) {
            std::wstring line;
            HostCollection(column).ForEach([&](const Variant& property) {
                const std::vector<Variant> parts = property.ToArray();
                if (parts.at(0).ToText() == L"TABLE_NAME") {
                    EXPECT_EQ(name, parts.at(1).ToText());
                } else {
                    line += parts.at(1).ToText() + L" ";
                }
                EXPECT_EQ(0, parts.at(2).ToLong());
                return true;
            });
            all += line + L"\n";
            return true;
        });
        return all;
    };
    EXPECT_EQ(columnsOf(L"category"),
              L"category_id 4 INTEGER 10 NO \nparent_id 4 INTEGER 10 YES \nname 12 VARCHAR 40 NO \n"
              L"description -1 TEXT 65535 YES \n");
    EXPECT_EQ(columnsOf(L"country"),
              L"code 1 CHAR 2 NO \nname 12 VARCHAR 40 NO \ncurrency 1 CHAR 3 NO \nvat_rate 3 DECIMAL 4 NO \n"
              L"eu_member -7 BOOLEAN 1 NO \n");
    EXPECT_EQ(columnsOf(L"customer"),
              L"customer_id 4 INTEGER 10 NO \nFirstName 12 VARCHAR 30 NO \nLastName 12 VARCHAR 30 NO \n"
              L"company 12 VARCHAR 60 YES \nemail 12 VARCHAR 80 YES \ncity 12 VARCHAR 40 NO \ncountry 1 CHAR 2 NO \n"
              L"since 91 DATE 10 NO \n");
    EXPECT_EQ(columnsOf(L"Order"),
              L"order_id 4 INTEGER 10 NO \ncustomer_id 4 INTEGER 10 NO \nordered_at 93 TIMESTAMP 19 NO \n"
              L"shipped_on 91 DATE 10 YES \nstatus 12 VARCHAR 10 NO \nfreight 3 DECIMAL 8 NO \n"
              L"Gift Note -1 TEXT 65535 YES \n");
    EXPECT_EQ(columnsOf(L"Order Details"),
              L"order_id 4 INTEGER 10 NO \nline 5 SMALLINT 5 NO \nsku 1 CHAR 7 NO \nquantity 4 INTEGER 10 NO \n"
              L"Unit Price 3 DECIMAL 10 NO \nDiscount % 3 DECIMAL 4 NO \n");
    EXPECT_EQ(columnsOf(L"product"),
              L"sku 1 CHAR 7 NO \nname 12 VARCHAR 60 NO \ncategory_id 4 INTEGER 10 NO \nprice 3 DECIMAL 10 NO \n"
              L"weight_g 4 INTEGER 10 YES \nIn Stock 4 INTEGER 10 NO \nlisted_on 91 DATE 10 NO \n");
    EXPECT_EQ(columnsOf(L"best_sellers"), L"sku 1 CHAR 7 NO \nname 12 VARCHAR 60 NO \nsold 4 INTEGER 10 NO \n");
}

// The demonstration host opens the window with the sample's best-sellers.
TEST(SampleConnection, ListsOneObjectByItsName) {
    const Object dictionary = MakeSampleConnection().Get(L"Dictionary").ToObject();
    size_t found = 0;
    HostCollection(dictionary.Get(L"Objects", 2L, Variant::Null(), L"best_sellers", false))
        .ForEach([&](const Variant&) {
            ++found;
            return true;
        });
    EXPECT_EQ(found, 1u);
}

}  // namespace
