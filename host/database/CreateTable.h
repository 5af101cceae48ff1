#pragma once

#include <string>
#include <vector>

#include "host/database/Identifier.h"
#include "host/database/Odbc.h"

// A data type that a database offers for columns, from SQLGetTypeInfo.
struct TypeChoice {
    std::wstring Name;
    SQLSMALLINT Code = SQL_UNKNOWN_TYPE;
    bool TakesSize = false;  // a length, or precision and scale
    std::wstring UsualSize;  // what to begin with; empty when it takes none
};

// A column of a table that is being designed.
struct NewColumn {
    std::wstring Name;
    std::wstring Type;
    std::wstring Size;  // "40" or "10,2"; empty: the type as it is
    bool Nullable = true;
    bool PrimaryKey = false;
};

struct NewTable {
    std::wstring Name;
    std::vector<NewColumn> Columns;
};

// The types for new columns, the usual ones first, each name once. When the driver cannot tell, those of the standard.
std::vector<TypeChoice> ReadTypes(Odbc::Connection& connection);
std::vector<TypeChoice> StandardTypes();

// What keeps the table from being created, as a sentence for the user; empty when nothing does.
std::wstring Problem(const NewTable& table);

// The statement, one column on a line, without a semicolon. Lines end with CR LF. Columns of the primary key are not
// null.
std::wstring CreateTableStatement(const IdentifierRules& rules, const NewTable& table);
