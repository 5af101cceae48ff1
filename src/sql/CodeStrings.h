#pragma once

#include <optional>
#include <string>
#include <string_view>

// SQL as it stands in the code of a program: between quotes, joined, with escapes.
namespace Sql {

// A text as Basic writes it: one expression over several lines, and where Basic takes no more lines in one, statements
// that build the variable "SQL". Lines end in CR LF, with none after the last.
struct BasicText {
    std::wstring Code;
    size_t Statements = 1;  // 1: an expression
};
// `fits`: whether Basic's editor can hold the character, which is written by its number otherwise.
BasicText ToBasic(std::wstring_view text, bool (*fits)(wchar_t character));

// What the strings of a piece of code say when they are joined: Basic, C# or Java, whichever it looks like, with the
// line breaks and other characters that the code names between them. Nothing when there is no string in it.
std::optional<std::wstring> FromCode(std::wstring_view code);

}  // namespace Sql
