#pragma once

#include <set>
#include <string>
#include <string_view>

// How a database reads a name that stands in a statement without quotes.
enum class UnquotedCase {
    Upper,   // as if written in capitals
    Lower,   // as if written in small letters
    AsItIs,  // as written, or the case does not matter
};

// What must be known of a database to write a name in its statements.
struct IdentifierRules {
    std::wstring Quote = L"\"";  // stands before and behind a quoted name; empty: the database knows no quoted names
    UnquotedCase Case = UnquotedCase::AsItIs;
    std::wstring
        SpecialCharacters;  // beside letters, digits and "_": what a name may hold without quotes, but not begin with
    std::set<std::wstring> Keywords;  // in capitals
};

// The name as it is to be written in a statement: as it is where the database then reads the same name, else quoted,
// with quotes inside doubled. The name is one identifier: a dot is a character of it. With a database that knows no
// quoted names the name comes back unchanged, whatever is in it.
std::wstring FormatName(const IdentifierRules& rules, std::wstring_view name);

// The text in capitals, as the user's language has them.
std::wstring Capitals(std::wstring_view text);

// Splits a list such as SQL_KEYWORDS gives ("a, b,c") and adds its words, in capitals.
void AddKeywords(std::set<std::wstring>& keywords, std::wstring_view list);

// The words that ODBC reserves, in capitals.
const std::set<std::wstring>& OdbcKeywords();
