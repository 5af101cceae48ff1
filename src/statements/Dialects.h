#pragma once

#include <string>
#include <string_view>

// What a statement looks like by the host's type codes; what products they stand for is the host's affair.
namespace Dialects {

// The schema before a table's name, with its point: as it stands, since the host quotes names of tables and columns
// alone. Empty where the type writes no schema, and for the connected user's own schema and the current one, in
// capitals or not.
std::wstring TablePrefix(long Type, const std::wstring& Owner, const std::wstring& Schema);

// The schema that DESCRIBE writes, with its point: every one but the default, the connected user's own too. The test
// minds the case, unlike the one for the other statements; the two differ on purpose.
std::wstring DescribePrefix(const std::wstring& Schema);

// What stands before and behind a table's name in the statement for its first rows.
struct Frame {
    std::wstring_view Before;
    std::wstring_view Behind;
};
Frame SampleRows(long Type);

}  // namespace Dialects
