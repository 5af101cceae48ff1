#include "host/database/Dictionary.h"

#include <algorithm>
#include <set>

#include "host/database/DataTypes.h"
#include "host/database/Identifier.h"

namespace {

bool SameText(const std::wstring& a, const std::wstring& b) {
    return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()), TRUE) ==
           CSTR_EQUAL;
}

// A row of SQLTables.
struct TableRow {
    Odbc::Name Catalog, Schema, Table;
    std::wstring Type;  // in capitals
};

std::vector<TableRow> ReadTables(Odbc::Connection& connection, const Odbc::Name& catalog, const Odbc::Name& schema,
                                 const Odbc::Name& table, const Odbc::Name& types) {
    Odbc::Statement statement(connection);
    statement.Tables(catalog, schema, table, types);
    std::vector<TableRow> rows;
    while (statement.Fetch()) {
        TableRow row;
        row.Catalog = statement.Text(1);
        row.Schema = statement.Text(2);
        row.Table = statement.Text(3);
        row.Type = Capitals(statement.Text(4).value_or(L""));
        rows.push_back(std::move(row));
    }
    return rows;
}

bool IsSystem(const std::wstring& type) { return type.find(L"SYSTEM") != std::wstring::npos; }

// Products have types of their own (MATVIEW, FOREIGN TABLE, ALIAS, SYNONYM, BASE TABLE, ...): what is a kind of view is
// listed with the views, all else with the tables.
bool IsView(const std::wstring& type) { return type.find(L"VIEW") != std::wstring::npos; }

// The names of the wanted kind, for the type argument of SQLTables.
std::wstring TypeList(Odbc::Connection& connection, bool views, bool includeSystem) {
    std::set<std::wstring> types;
    try {
        for (const TableRow& row : ReadTables(connection, L"", L"", L"", L"%")) {
            if (!row.Type.empty() && IsView(row.Type) == views && !IsSystem(row.Type)) types.insert(row.Type);
        }
    } catch (const Odbc::Error& error) {
        if (error.ConnectionLost()) throw;
    }
    types.insert(views ? L"VIEW" : L"TABLE");
    if (includeSystem) {
        // Drivers have system tables without telling this type in their list.
        types.insert(views ? L"SYSTEM VIEW" : L"SYSTEM TABLE");
    }
    std::wstring list;
    for (const std::wstring& type : types) list += (list.empty() ? L"'" : L",'") + type + L"'";
    return list;
}

// The fields of SQLColumns by position: drivers of older versions call some of them by older names.
const wchar_t* const columnFields[] = {
    L"TABLE_CAT",   L"TABLE_SCHEM",   L"TABLE_NAME",       L"COLUMN_NAME",       L"DATA_TYPE",        L"TYPE_NAME",
    L"COLUMN_SIZE", L"BUFFER_LENGTH", L"DECIMAL_DIGITS",   L"NUM_PREC_RADIX",    L"NULLABLE",         L"REMARKS",
    L"COLUMN_DEF",  L"SQL_DATA_TYPE", L"SQL_DATETIME_SUB", L"CHAR_OCTET_LENGTH", L"ORDINAL_POSITION", L"IS_NULLABLE",
};
enum Field { FieldCatalog = 0, FieldSchema = 1, FieldTable = 2, FieldDataType = 4, FieldTypeName = 5 };

// Where a schema's objects are, as arguments of a catalogue call. An empty schema is the default one.
struct Place {
    Place(const SessionFacts& facts, const std::wstring& schema)
        : Wanted(schema.empty() ? facts.DefaultSchema : schema) {
        if (Wanted.empty()) return;
        if (facts.CatalogsAreSchemas) {
            Catalog = Wanted;
        } else if (!facts.SchemaTerm.empty()) {
            Schema = Odbc::EscapePattern(Wanted, facts.SearchEscape);
        }
    }
    std::wstring Wanted;
    Odbc::Name Catalog, Schema;
};

// A field as a number where it is one by its type and reads as one.
Variant FieldValue(const Odbc::Name& text, const Odbc::ColumnInfo& info) {
    if (!text) return Variant::Null();
    if (info.IsNumber()) {
        wchar_t* end = nullptr;
        errno = 0;
        const long number = wcstol(text->c_str(), &end, 10);
        if (end != text->c_str() && *end == L'\0' && errno == 0) return Variant(number);
    }
    return Variant(*text);
}

}  // namespace

Dictionary::Dictionary(std::shared_ptr<Session> session) : session_(std::move(session)) {}

std::optional<std::vector<std::wstring>> Dictionary::Schemas(const std::wstring& only, bool includeSystem) const try {
    const SessionFacts& facts = session_->Facts();
    if (facts.SchemaTerm.empty()) return std::nullopt;
    std::vector<std::wstring> names;
    session_->Read([&](Odbc::Connection& connection) {
        names.clear();
        std::set<std::wstring> seen;
        const auto add = [&](const Odbc::Name& name) {
            if (!name || name->empty() || (!only.empty() && !SameText(*name, only))) return;
            if (seen.insert(*name).second) names.push_back(*name);
        };
        if (facts.CatalogsAreSchemas) {
            for (const TableRow& row : ReadTables(connection, L"%", L"", L"", L"")) add(row.Catalog);
            return;
        }
        for (const TableRow& row : ReadTables(connection, L"", L"%", L"", L"")) add(row.Schema);
        // Some drivers leave the system's schemas out of the list of schemas, and show them with the tables in them.
        if (includeSystem) {
            for (const TableRow& row :
                 ReadTables(connection, std::nullopt, std::nullopt, std::nullopt, L"'SYSTEM TABLE'")) {
                if (IsSystem(row.Type)) add(row.Schema);
            }
        }
    });
    if (names.empty() && only.empty()) return std::nullopt;
    return names;
} catch (const Odbc::Error& error) {
    if (error.NotSupported()) return std::nullopt;
    Raise(ErrorFromOdbc(error, DatabaseError::StatementFailed));
}

std::vector<std::wstring> Dictionary::Objects(long objectType, const std::wstring& schema, const std::wstring& only,
                                              bool includeSystem) const try {
    if (objectType != Tables && objectType != Views) RaiseError(ErrorNumber::InvalidProcedureCall);
    const bool views = objectType == Views;
    const SessionFacts& facts = session_->Facts();
    const Place place(facts, schema);

    std::vector<std::wstring> names;
    session_->Read([&](Odbc::Connection& connection) {
        names.clear();
        const Odbc::Name table = only.empty() ? Odbc::Name() : Odbc::EscapePattern(only, facts.SearchEscape);
        const std::wstring types = TypeList(connection, views, includeSystem);
        for (const TableRow& row : ReadTables(connection, place.Catalog, place.Schema, table, types)) {
            if (!row.Table || row.Table->empty()) continue;
            // A driver may give more than it was asked for: other types, and what a wildcard in the schema's name
            // matches.
            if (IsView(row.Type) != views) continue;
            const bool ownTable = facts.Kind->SystemPrefix && row.Table->starts_with(facts.Kind->SystemPrefix);
            if (!includeSystem && (ownTable || IsSystem(row.Type))) continue;
            if (place.Schema && row.Schema.value_or(L"") != place.Wanted) continue;
            if (!only.empty() && !SameText(*row.Table, only)) continue;
            names.push_back(*row.Table);
        }
    });

    // Some drivers sort by type first, some not at all.
    std::vector<std::pair<std::wstring, size_t>> order;
    for (size_t i = 0; i < names.size(); ++i) order.emplace_back(Capitals(names[i]), i);
    std::stable_sort(order.begin(), order.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::wstring> sorted;
    for (const auto& entry : order) {
        if (sorted.empty() || sorted.back() != names[entry.second]) sorted.push_back(names[entry.second]);
    }
    return sorted;
} catch (const Odbc::Error& error) {
    Raise(ErrorFromOdbc(error, error.NotSupported() ? DatabaseError::NoDictionary : DatabaseError::StatementFailed));
}

std::vector<ColumnProperties> Dictionary::ReadColumns(Odbc::Connection& connection, const std::wstring& schema,
                                                      const std::wstring& table) const {
    const SessionFacts& facts = session_->Facts();
    const Place place(facts, schema);

    const auto read = [&](const std::wstring& pattern) {
        Odbc::Statement statement(connection);
        statement.Columns(place.Catalog, place.Schema, pattern, std::nullopt);
        const std::vector<Odbc::ColumnInfo>& infos = statement.AllColumns();
        std::vector<ColumnProperties> columns;
        Odbc::Name firstCatalog, firstSchema;
        while (statement.Fetch()) {
            ColumnProperties properties;
            std::vector<Odbc::Name> texts;
            for (size_t i = 0; i < infos.size(); ++i) {
                texts.push_back(statement.Text(static_cast<unsigned>(i) + 1));
                const bool standard = i < std::size(columnFields);
                properties.push_back({standard ? columnFields[i] : infos[i].Name, FieldValue(texts[i], infos[i]), 0});
            }
            if (texts.size() <= FieldTypeName) continue;
            // A name with wildcards in it may match other tables too, where the driver knows no escape character.
            if (texts[FieldTable].value_or(L"") != table) continue;
            if (columns.empty()) {
                firstCatalog = texts[FieldCatalog];
                firstSchema = texts[FieldSchema];
            } else if (texts[FieldCatalog] != firstCatalog || texts[FieldSchema] != firstSchema) {
                continue;  // a table of the same name elsewhere, when the default schema is not known
            }
            properties[FieldDataType].Attribute = AttributeOfTypeName(texts[FieldTypeName].value_or(L""));
            columns.push_back(std::move(properties));
        }
        return columns;
    };

    std::vector<ColumnProperties> columns = read(Odbc::EscapePattern(table, facts.SearchEscape));
    if (columns.empty() && !facts.SearchEscape.empty() && table.find(facts.SearchEscape) != std::wstring::npos) {
        // psqlodbc does not find a name with a doubled escape character. A wildcard in its place does, and what else it
        // matches is left out above.
        std::wstring pattern;
        for (const wchar_t c : table) {
            if (facts.SearchEscape.find(c) != std::wstring::npos) {
                pattern += L'_';
            } else {
                pattern += Odbc::EscapePattern(std::wstring(1, c), facts.SearchEscape);
            }
        }
        columns = read(pattern);
    }
    return columns;
}

std::vector<ColumnProperties> Dictionary::Columns(const std::wstring& schema, const std::wstring& table) const try {
    std::vector<ColumnProperties> columns;
    session_->Read([&](Odbc::Connection& connection) { columns = ReadColumns(connection, schema, table); });
    if (columns.empty() && Objects(Tables, schema, table, true).empty() &&
        Objects(Views, schema, table, true).empty()) {
        RaiseError(
            DatabaseError::NoSuchColumns, DatabaseError::Source,
            L"The columns of \"" + table + L"\" cannot be read: there is no table or view of this name any more.");
    }
    return columns;
} catch (const Odbc::Error& error) {
    RuntimeError failure = ErrorFromOdbc(error, DatabaseError::NoSuchColumns);
    failure.Number = DatabaseError::NoSuchColumns;
    failure.Description = L"The columns of \"" + table + L"\" cannot be read: " + failure.Description;
    throw failure;
} catch (RuntimeError& error) {
    if (error.Number == DatabaseError::NoSuchColumns) throw;
    if (error.Source == DatabaseError::Source) {
        error.Number = DatabaseError::NoSuchColumns;
        error.Description = L"The columns of \"" + table + L"\" cannot be read: " + error.Description;
    }
    throw;
}
