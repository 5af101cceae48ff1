#include "host/database/CreateTable.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace {

// The order in which types are offered.
const SQLSMALLINT usualTypes[] = {
    SQL_INTEGER,        SQL_WVARCHAR,  SQL_VARCHAR,       SQL_DECIMAL,      SQL_NUMERIC,     SQL_TYPE_DATE,
    SQL_TYPE_TIMESTAMP, SQL_TYPE_TIME, SQL_BIT,           SQL_BIGINT,       SQL_SMALLINT,    SQL_TINYINT,
    SQL_DOUBLE,         SQL_FLOAT,     SQL_REAL,          SQL_WLONGVARCHAR, SQL_LONGVARCHAR, SQL_WCHAR,
    SQL_CHAR,           SQL_VARBINARY, SQL_LONGVARBINARY, SQL_BINARY,       SQL_GUID,
};

size_t Rank(SQLSMALLINT type) {
    return static_cast<size_t>(std::find(std::begin(usualTypes), std::end(usualTypes), type) - std::begin(usualTypes));
}

std::wstring UsualSize(SQLSMALLINT type) {
    switch (type) {
        case SQL_DECIMAL:
        case SQL_NUMERIC:
            return L"10,2";
        case SQL_CHAR:
        case SQL_WCHAR:
            return L"10";
        case SQL_VARCHAR:
        case SQL_WVARCHAR:
        case SQL_VARBINARY:
        case SQL_BINARY:
            return L"50";
        default:
            return {};
    }
}

bool IsSize(const std::wstring& size) {
    bool digit = false, comma = false;
    for (const wchar_t c : size) {
        if (c >= L'0' && c <= L'9') {
            digit = true;
        } else if (c == L',' && digit && !comma) {
            comma = true;
            digit = false;
        } else if (c != L' ') {
            return false;
        }
    }
    return digit;
}

bool IsBlank(const std::wstring& text) { return text.find_first_not_of(L" \t") == std::wstring::npos; }

// Some types have their size in the middle: "char() for bit data", "numeric() identity".
std::wstring TypeWithSize(const NewColumn& column) {
    const size_t brackets = column.Type.find(L"()");
    if (column.Size.empty())
        return brackets == std::wstring::npos ? column.Type : std::wstring(column.Type).erase(brackets, 2);
    if (brackets == std::wstring::npos) return column.Type + L"(" + column.Size + L")";
    return std::wstring(column.Type).insert(brackets + 1, column.Size);
}

}  // namespace

std::vector<TypeChoice> StandardTypes() {
    return {{L"INTEGER", SQL_INTEGER, false, {}},          {L"VARCHAR", SQL_VARCHAR, true, L"50"},
            {L"DECIMAL", SQL_DECIMAL, true, L"10,2"},      {L"DATE", SQL_TYPE_DATE, false, {}},
            {L"TIMESTAMP", SQL_TYPE_TIMESTAMP, false, {}}, {L"SMALLINT", SQL_SMALLINT, false, {}},
            {L"DOUBLE PRECISION", SQL_DOUBLE, false, {}},  {L"CHAR", SQL_CHAR, true, L"10"}};
}

std::vector<TypeChoice> ReadTypes(Odbc::Connection& connection) {
    std::vector<TypeChoice> types;
    try {
        Odbc::Statement statement(connection);
        statement.TypeInfo(SQL_ALL_TYPES);
        while (statement.Fetch()) {
            TypeChoice type;
            type.Name = statement.Text(1).value_or(L"");
            type.Code = static_cast<SQLSMALLINT>(statement.Integer(2).value_or(SQL_UNKNOWN_TYPE));
            type.TakesSize = !IsBlank(statement.Text(6).value_or(L""));
            if (type.TakesSize) type.UsualSize = UsualSize(type.Code);
            if (!IsBlank(type.Name)) types.push_back(std::move(type));
        }
    } catch (const Odbc::Error& error) {
        if (error.ConnectionLost()) throw;
        types.clear();
    }
    std::stable_sort(types.begin(), types.end(),
                     [](const TypeChoice& a, const TypeChoice& b) { return Rank(a.Code) < Rank(b.Code); });
    // A driver lists a type once for each code that it stands for.
    std::set<std::wstring> seen;
    std::erase_if(types, [&](const TypeChoice& type) { return !seen.insert(Capitals(type.Name)).second; });
    return types.empty() ? StandardTypes() : types;
}

std::wstring Problem(const NewTable& table) {
    if (IsBlank(table.Name)) return L"The table needs a name.";
    if (table.Columns.empty()) return L"The table needs at least one column.";
    std::set<std::wstring> names;
    for (size_t i = 0; i < table.Columns.size(); ++i) {
        const NewColumn& column = table.Columns[i];
        if (IsBlank(column.Name)) return L"Column " + std::to_wstring(i + 1) + L" needs a name.";
        if (IsBlank(column.Type)) return L"The column " + column.Name + L" needs a type.";
        if (!column.Size.empty() && !IsSize(column.Size))
            return L"The size of " + column.Name + L" must be a number such as 40, or two such as 10,2.";
        if (!names.insert(Capitals(column.Name)).second)
            return L"There are two columns of the name " + column.Name + L".";
    }
    return {};
}

std::wstring CreateTableStatement(const IdentifierRules& rules, const NewTable& table) {
    std::wstring statement = L"CREATE TABLE " + FormatName(rules, table.Name) + L" (\r\n";
    std::wstring key;
    for (size_t i = 0; i < table.Columns.size(); ++i) {
        const NewColumn& column = table.Columns[i];
        const std::wstring name = FormatName(rules, column.Name);
        if (i) statement += L",\r\n";
        statement += L"    " + name + L" " + TypeWithSize(column);
        if (!column.Nullable || column.PrimaryKey) statement += L" NOT NULL";
        if (column.PrimaryKey) key += (key.empty() ? L"" : L", ") + name;
    }
    if (!key.empty()) statement += L",\r\n    PRIMARY KEY (" + key + L")";
    return statement + L"\r\n)";
}
