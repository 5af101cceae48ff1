#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "sql/Dialect.h"
#include "sql/Words.h"

namespace Sql {

// What is being written at a caret: the name that begins before it, and what qualifies that name.
struct NameAtCaret {
    bool IsCode = true;  // false inside a comment or a string, where no name is written
    size_t Start = 0;    // of the name, with the quote that begins it; the caret where none is begun
    size_t End = 0;      // of the name, which may go on after the caret
    std::wstring Begun;  // the name up to the caret, without quotes
    std::wstring Whole;  // the whole name, without quotes
    // The names before it, each followed by a point, without quotes: schema and table, the nearest last.
    std::vector<std::wstring> Qualifiers;
};
NameAtCaret NameAt(std::wstring_view text, size_t caret, const Dialect& dialect);

// A table that a statement reads or writes, names without quotes.
struct TableReference {
    std::wstring Schema;  // empty when none is written
    std::wstring Table;
    std::wstring Alias;  // empty when none is written
};

// The tables of the statement that the caret is in, in the order in which they are written. Subqueries count too, whose
// tables stand in the same list. Functions and subqueries in the place of tables are left out.
std::vector<TableReference> TablesAt(std::wstring_view text, size_t caret, const Dialect& dialect, const Words& words);

// The name that a token of kind Word or Name says: without quotes, doubled ones single.
std::wstring Unquoted(std::wstring_view token);

}  // namespace Sql
