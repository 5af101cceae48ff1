#include "host/database/Product.h"

#include <windows.h>

namespace {

const wchar_t postgresKeywords[] =
    L"ANALYSE,ANALYZE,ARRAY,ASYMMETRIC,BINARY,CONCURRENTLY,CURRENT_CATALOG,CURRENT_ROLE,CURRENT_SCHEMA,DO,FREEZE,"
    L"ILIKE,ISNULL,LATERAL,LIMIT,LOCALTIME,LOCALTIMESTAMP,NOTNULL,OFFSET,PLACING,RETURNING,SIMILAR,SYMMETRIC,"
    L"TABLESAMPLE,VARIADIC,VERBOSE,WINDOW";

const wchar_t sqliteKeywords[] =
    L"ABORT,AFTER,ALWAYS,ANALYZE,ATTACH,AUTOINCREMENT,BEFORE,CONFLICT,DATABASE,DETACH,DO,EACH,EXCLUDE,EXCLUSIVE,"
    L"EXPLAIN,FAIL,FILTER,FOLLOWING,GENERATED,GLOB,GROUPS,IF,IGNORE,INDEXED,INSTEAD,ISNULL,LIMIT,MATERIALIZED,"
    L"NOTHING,NOTNULL,NULLS,OFFSET,OTHERS,OVER,PARTITION,PLAN,PRAGMA,PRECEDING,QUERY,RAISE,RANGE,RECURSIVE,REGEXP,"
    L"REINDEX,RELEASE,RENAME,REPLACE,RETURNING,ROW,SAVEPOINT,TEMP,TIES,TRIGGER,UNBOUNDED,VACUUM,VIRTUAL,WINDOW,"
    L"WITHOUT";

// The editor knows the type codes by what statements look like:
//   2, 28   SELECT first 100 *, no schema before a name
//   4       Oracle: rownum, schema before a name
//   8       Microsoft SQL Server: top, schema before a name
//   13      fetch first 100 rows only, schema before a name
//   17      LIMIT, no schema before a name
//   24      top, no schema before a name
//   26, 40  top, schema before a name
//   27      LIMIT, schema before a name
// The first entry whose name part occurs is taken, so a longer name stands above a shorter one that it contains.
const Product products[] = {
    {L"PostgreSQL", L"PostgreSQL", 27, L"SELECT current_schema()", false, postgresKeywords},
    {L"Redshift", L"Amazon Redshift", 27, L"SELECT current_schema()", false, postgresKeywords},
    {L"Greenplum", L"Greenplum", 27, L"SELECT current_schema()", false, postgresKeywords},
    {L"CockroachDB", L"CockroachDB", 27, L"SELECT current_schema()", false, postgresKeywords},
    {L"Snowflake", L"Snowflake", 27, L"SELECT current_schema()"},
    {L"Vertica", L"Vertica", 27, L"SELECT current_schema()"},
    {L"DuckDB", L"DuckDB", 27, L"SELECT current_schema()"},
    {L"Oracle", L"Oracle", 4, L"SELECT sys_context('USERENV', 'CURRENT_SCHEMA') FROM dual"},
    {L"SQL Server", L"Microsoft SQL Server", 8, L"SELECT schema_name()"},
    {L"SQL Azure", L"Microsoft SQL Azure", 8, L"SELECT schema_name()"},
    {L"SQL Anywhere", L"SQL Anywhere", 40, L"SELECT current user"},
    {L"Adaptive Server Anywhere", L"Adaptive Server Anywhere", 40, L"SELECT current user"},
    {L"Adaptive Server", L"Adaptive Server Enterprise", 26, L"SELECT user_name()"},
    {L"DB2", L"DB2", 13, L"VALUES CURRENT SCHEMA"},
    {L"Derby", L"Apache Derby", 13, L"VALUES CURRENT SCHEMA"},
    {L"MySQL", L"MySQL", 17, nullptr, true},
    {L"MariaDB", L"MariaDB", 17, nullptr, true},
    {L"SQLite", L"SQLite", 17, nullptr, false, sqliteKeywords, L"sqlite_"},
    {L"Informix", L"Informix", 2},
    {L"Firebird", L"Firebird", 28},
    {L"InterBase", L"InterBase", 28},
    {L"ACCESS", L"Microsoft Access", 24},
    {L"EXCEL", L"Microsoft Excel", 24},
    {L"DBASE", L"dBASE", 24},
    {L"TEXT", L"Text files", 24},
};

// LIMIT is what most of the products understand that are not in the table.
const Product generalWithSchemas = {L"", L"Database", 27};
const Product generalWithoutSchemas = {L"", L"Database", 17};

}  // namespace

const Product& FindProduct(std::wstring_view dbmsName, bool hasSchemas) {
    for (const Product& product : products) {
        const int found = FindStringOrdinal(FIND_FROMSTART, dbmsName.data(), static_cast<int>(dbmsName.size()),
                                            product.NamePart, -1, TRUE);
        if (!dbmsName.empty() && found >= 0) return product;
    }
    return hasSchemas ? generalWithSchemas : generalWithoutSchemas;
}

std::wstring ProductName(long dbType) {
    for (const Product& product : products) {
        if (product.DBType == dbType) return product.Name;
    }
    return L"Database";
}
