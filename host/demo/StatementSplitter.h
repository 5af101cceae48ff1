#pragma once

#include <string>
#include <string_view>
#include <vector>

// Splits a script into its statements as Sql::Statements finds them for the type of a database (0: any). The semicolons
// are not part of the statements, white space around them is left away, and a statement of nothing but comments is left
// out. What is not closed reaches to the end.
std::vector<std::wstring> SplitStatements(std::wstring_view script, long dbType = 0);
