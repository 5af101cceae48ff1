#pragma once

#include <string>
#include <string_view>
#include <vector>

// Splits a script into its statements at each ";" that is not inside a string, a quoted name ("x", `x`, [x]), a
// comment, a dollar-quoted text of PostgreSQL ($tag$ ... $tag$) or the body of a trigger, procedure or function (BEGIN
// ... END). The semicolons are not part of the statements, white space around them is left away, and a statement of
// nothing but comments is left out. What is not closed reaches to the end.
std::vector<std::wstring> SplitStatements(std::wstring_view script);
