#include "host/demo/Sample.h"

#include <algorithm>
#include <iterator>

#include "automation/DynamicObject.h"
#include "automation/RuntimeError.h"
#include "automation/Variant.h"
#include "host/database/DataTypes.h"
#include "host/database/Identifier.h"

namespace {

// As ODBC numbers them.
enum Type : short {
    Char = 1,
    Decimal = 3,
    Integer = 4,
    SmallInt = 5,
    Varchar = 12,
    LongVarchar = -1,
    Bit = -7,
    Date = 91,
    Timestamp = 93
};

struct Column {
    const wchar_t* Name;
    Type Of;
    long Size;
    bool Nullable;
};

struct Table {
    const wchar_t* Name;
    long Kind;  // 1 a table, 2 a view
    std::vector<Column> Columns;
};

// Sorted by name, as the tree shows them. Some names have to be quoted.
const std::vector<Table>& Tables() {
    static const std::vector<Table> tables = {
        {L"category",
         1,
         {{L"category_id", Integer, 10, false},
          {L"parent_id", Integer, 10, true},
          {L"name", Varchar, 40, false},
          {L"description", LongVarchar, 65535, true}}},
        {L"country",
         1,
         {{L"code", Char, 2, false},
          {L"name", Varchar, 40, false},
          {L"currency", Char, 3, false},
          {L"vat_rate", Decimal, 4, false},
          {L"eu_member", Bit, 1, false}}},
        {L"customer",
         1,
         {{L"customer_id", Integer, 10, false},
          {L"FirstName", Varchar, 30, false},
          {L"LastName", Varchar, 30, false},
          {L"company", Varchar, 60, true},
          {L"email", Varchar, 80, true},
          {L"city", Varchar, 40, false},
          {L"country", Char, 2, false},
          {L"since", Date, 10, false}}},
        {L"Order",
         1,
         {{L"order_id", Integer, 10, false},
          {L"customer_id", Integer, 10, false},
          {L"ordered_at", Timestamp, 19, false},
          {L"shipped_on", Date, 10, true},
          {L"status", Varchar, 10, false},
          {L"freight", Decimal, 8, false},
          {L"Gift Note", LongVarchar, 65535, true}}},
        {L"Order Details",
         1,
         {{L"order_id", Integer, 10, false},
          {L"line", SmallInt, 5, false},
          {L"sku", Char, 7, false},
          {L"quantity", Integer, 10, false},
          {L"Unit Price", Decimal, 10, false},
          {L"Discount %", Decimal, 4, false}}},
        {L"product",
         1,
         {{L"sku", Char, 7, false},
          {L"name", Varchar, 60, false},
          {L"category_id", Integer, 10, false},
          {L"price", Decimal, 10, false},
          {L"weight_g", Integer, 10, true},
          {L"In Stock", Integer, 10, false},
          {L"listed_on", Date, 10, false}}},
        {L"best_sellers", 2, {{L"sku", Char, 7, false}, {L"name", Varchar, 60, false}, {L"sold", Integer, 10, false}}},
    };
    return tables;
}

const wchar_t* TypeName(Type type) {
    switch (type) {
        case Char:
            return L"CHAR";
        case Decimal:
            return L"DECIMAL";
        case Integer:
            return L"INTEGER";
        case SmallInt:
            return L"SMALLINT";
        case Varchar:
            return L"VARCHAR";
        case LongVarchar:
            return L"TEXT";
        case Bit:
            return L"BOOLEAN";
        case Date:
            return L"DATE";
        case Timestamp:
            return L"TIMESTAMP";
    }
    return L"";
}

std::wstring TextOr(const Variant& value) {
    return value.IsNull() || value.IsEmpty() || value.IsMissing() ? std::wstring() : value.ToText();
}

Variant Names(long kind, const std::wstring& only) {
    std::vector<Variant> names;
    for (const Table& table : Tables()) {
        if (table.Kind == kind && (only.empty() || only == table.Name)) names.emplace_back(table.Name);
    }
    return MakeCollection(std::move(names));
}

Variant ColumnsOf(const std::wstring& name) {
    const auto table =
        std::find_if(Tables().begin(), Tables().end(), [&](const Table& one) { return name == one.Name; });
    if (table == Tables().end()) RaiseError(ErrorNumber::InvalidProcedureCall);
    std::vector<Variant> columns;
    for (const Column& column : table->Columns) {
        columns.emplace_back(MakeCollection({
            Variant::ArrayOf({L"TABLE_NAME", table->Name, 0L}),
            Variant::ArrayOf({L"COLUMN_NAME", column.Name, 0L}),
            Variant::ArrayOf({L"DATA_TYPE", static_cast<long>(column.Of), FieldAttribute::None}),
            Variant::ArrayOf({L"TYPE_NAME", TypeName(column.Of), 0L}),
            Variant::ArrayOf({L"COLUMN_SIZE", column.Size, 0L}),
            Variant::ArrayOf({L"IS_NULLABLE", column.Nullable ? L"YES" : L"NO", 0L}),
        }));
    }
    return MakeCollection(std::move(columns));
}

Object MakeDictionary() {
    auto* object = new DynamicObject;
    Object reference = Object::Attach(object);
    object->Define(L"Schemas", [](const Arguments&) { return Variant::Nothing(); });
    object->Define(L"Objects",
                   [](const Arguments& arguments) { return Names(arguments[0].ToLong(), TextOr(arguments[2])); });
    object->Define(L"Columns", [](const Arguments& arguments) { return ColumnsOf(TextOr(arguments[1])); });
    object->Define(L"DataTypeDesc", [](const Arguments& arguments) -> Variant {
        return DataTypeDesc(arguments[0].ToLong(), arguments.Has(1) ? arguments[1].ToLong() : FieldAttribute::None);
    });
    return reference;
}

}  // namespace

Object MakeSampleConnection() {
    auto* object = new DynamicObject;
    Object reference = Object::Attach(object);
    object->Define(L"Connected", [](const Arguments&) -> Variant { return true; });
    object->Define(L"CurrentCatalog", [](const Arguments&) -> Variant { return L""; });
    object->Define(L"UserName", [](const Arguments&) -> Variant { return L""; });
    object->Define(L"SchemaTerm", [](const Arguments&) -> Variant { return L""; });
    object->Define(L"DBType", [](const Arguments&) -> Variant { return 17L; });  // LIMIT
    object->Define(L"DBTypeName", [](const Arguments&) -> Variant { return L"Sample only: its SQL cannot be run"; });
    object->Define(L"FormatName", [](const Arguments& arguments) -> Variant {
        IdentifierRules rules;
        rules.Keywords = OdbcKeywords();
        return FormatName(rules, TextOr(arguments[0]));
    });
    object->Define(L"Dictionary", [](const Arguments&) -> Variant { return MakeDictionary(); });
    object->Define(L"ShowCreateTableDialog1", [](const Arguments& arguments) -> Variant {
        arguments.Let(
            0,
            Variant(L"CREATE TABLE new_table (\r\n    id INTEGER NOT NULL PRIMARY KEY,\r\n    name VARCHAR(40)\r\n)"));
        arguments.Let(1, Variant(false));
        return {};
    });
    return reference;
}
