#pragma once

#include <string>
#include <string_view>

// How statements look, by the host's type codes; which products the codes stand for is the host's affair.
namespace Dialects {

// The schema prefix of a table name, with its point; unquoted, since the host quotes only table and column names. Empty
// where the type writes no schema, and for the connected user's own schema and the current one, ignoring case.
std::wstring TablePrefix(long Type, const std::wstring& Owner, const std::wstring& Schema);

// The schema prefix of DESCRIBE, with its point: every schema but the default, the connected user's own included. Its
// comparison is case-sensitive, unlike the one for the other statements; the two differ on purpose.
std::wstring DescribePrefix(const std::wstring& Schema);

// What stands before and after a table's name in the statement for its first rows.
struct Frame {
    std::wstring_view Before;
    std::wstring_view Behind;
};
Frame SampleRows(long Type);

}  // namespace Dialects
