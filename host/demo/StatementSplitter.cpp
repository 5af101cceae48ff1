#include "host/demo/StatementSplitter.h"

#include "sql/Statements.h"

std::vector<std::wstring> SplitStatements(std::wstring_view script, long dbType) {
    std::vector<std::wstring> statements;
    for (const Sql::Statement& statement : Sql::Statements(script, Sql::DialectOf(dbType))) {
        statements.emplace_back(script.substr(statement.Start, statement.End - statement.Start));
    }
    return statements;
}
