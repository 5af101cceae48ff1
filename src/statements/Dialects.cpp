#include "statements/Dialects.h"

#include <algorithm>
#include <iterator>

#include "automation/Text.h"
#include "sql/DatabaseTypes.h"

namespace {

struct Dialect {
    long Type;
    bool WritesSchema;
    Dialects::Frame SampleRows;
};

constexpr Dialects::Frame Top{L"SELECT top 100 * FROM ", L""};
constexpr Dialects::Frame First{L"SELECT first 100 * FROM ", L""};
constexpr Dialects::Frame Limit{L"SELECT * FROM ", L" LIMIT 100"};

constexpr Dialect Table[] = {
    {DatabaseType::Informix, false, First},
    {DatabaseType::Oracle, true, {L"SELECT * FROM ", L" WHERE rownum <= 100"}},
    {DatabaseType::SqlServer, true, Top},
    {DatabaseType::Db2, true, {L"SELECT * FROM ", L"  fetch first 100 rows only"}},  // two blanks, on purpose
    {DatabaseType::MySql, false, Limit},
    {DatabaseType::AdaptiveServer, true, Top},
    {DatabaseType::Postgres, true, Limit},
    {DatabaseType::Firebird, false, First},
    {DatabaseType::SqlAnywhere, true, Top},
};

const Dialect& DialectOf(long Type) noexcept {
    static constexpr Dialect Other{0, false, Top};
    const auto* const Found = std::ranges::find(Table, Type, &Dialect::Type);
    return Found != std::end(Table) ? *Found : Other;
}

}  // namespace

std::wstring Dialects::TablePrefix(long Type, const std::wstring& Owner, const std::wstring& Schema) {
    const bool Qualified =
        DialectOf(Type).WritesSchema && !SameName(Schema, Owner) && !SameName(Schema, L"current schema");
    return Qualified ? Schema + L"." : std::wstring();
}

std::wstring Dialects::DescribePrefix(const std::wstring& Schema) {
    return Schema.empty() || Schema == L"Current Schema" ? std::wstring() : Schema + L".";
}

Dialects::Frame Dialects::SampleRows(long Type) { return DialectOf(Type).SampleRows; }
