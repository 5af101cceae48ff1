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
    EXPECT_NE(sql.find(L"CREATE TABLE"), std::wstring::npos);
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
