#include "sql/Dialect.h"

#include "sql/DatabaseTypes.h"

namespace Sql {

namespace {

constexpr Dialect common = {
    .BracketNames = true,
    .BackquoteNames = true,
    .DollarQuotes = true,
    .EscapeTexts = true,
    .DelimitedTexts = true,
};

constexpr Dialect informix = {.Body = Dialect::Bodies::EndNeeded};

// Firebird and InterBase.
constexpr Dialect firebird = {.DelimitedTexts = true, .Body = Dialect::Bodies::BeginNeeded};

constexpr Dialect oracle = {
    .HashNames = true,
    .DelimitedTexts = true,
    .Body = Dialect::Bodies::Declarations,
    .Separator = Dialect::Batch::Slash,
};

constexpr Dialect sqlServer = {
    .NestedComments = true,
    .BracketNames = true,
    .HashNames = true,
    .BeginIsBlock = true,
    .Body = Dialect::Bodies::BeginNeeded,
    .Separator = Dialect::Batch::Go,
};

// DB2 and Derby.
constexpr Dialect db2 = {.NestedComments = true, .HashNames = true, .GraphicTexts = true};

// MySQL, MariaDB and SQLite share a code. Where they differ, a text is read so that it is right in both, or else as the
// standard has it: a backslash is an escape in MySQL alone, and "--" needs no blank after it in SQLite.
constexpr Dialect mySql = {
    .HashComments = true,
    .BracketNames = true,
    .BackquoteNames = true,
    .BackslashQuotes = true,
};

// What the engine of Access reads, from its own files and those of others.
constexpr Dialect access = {
    .BracketNames = true,
    .BackquoteNames = true,
    .HashDates = true,
    .DoubleQuoteTexts = true,
};

constexpr Dialect sqlAnywhere = {
    .NestedComments = true,
    .SlashComments = true,
    .BracketNames = true,
    .BackquoteNames = true,
    .HashNames = true,
    .Separator = Dialect::Batch::Go,
};

// PostgreSQL and its relatives.
constexpr Dialect postgres = {.NestedComments = true, .DollarQuotes = true, .EscapeTexts = true};

}  // namespace

const Dialect& DialectOf(long dbType) noexcept {
    switch (dbType) {
        case DatabaseType::Informix:
            return informix;
        case DatabaseType::Oracle:
            return oracle;
        case DatabaseType::SqlServer:
        case DatabaseType::AdaptiveServer:
            return sqlServer;
        case DatabaseType::Db2:
            return db2;
        case DatabaseType::MySql:
            return mySql;
        case DatabaseType::Access:
            return access;
        case DatabaseType::Postgres:
            return postgres;
        case DatabaseType::Firebird:
            return firebird;
        case DatabaseType::SqlAnywhere:
            return sqlAnywhere;
        default:
            return common;
    }
}

}  // namespace Sql
