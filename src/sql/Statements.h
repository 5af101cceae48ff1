#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "sql/Dialect.h"

namespace Sql {

// A statement of a text: from its first character, a comment before it included, to the last one before its end, white
// space left away.
struct Statement {
    size_t Start;
    size_t End;
    size_t Behind;  // the semicolon that ends it; where there is none, End
};

// The statements of a text. They end at each semicolon that is not in a string, a quoted name, a comment or the body of
// a procedure, function, trigger or package; in some dialects at a line of "GO" or "/" too. What is nothing but
// comments is no statement. What is not closed reaches to the end.
std::vector<Statement> Statements(std::wstring_view text, const Dialect& dialect);

// The statement that a caret at `position` is in or after, on the same line; else the next one, else the last one.
// Null: there is none.
const Statement* StatementAt(const std::vector<Statement>& statements, std::wstring_view text, size_t position);

}  // namespace Sql
