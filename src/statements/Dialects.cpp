#include "statements/Dialects.h"

#include "automation/Text.h"

namespace {

bool WritesSchema(long Type) { return Type == 4 || Type == 8 || Type == 13 || Type == 26 || Type == 27 || Type == 40; }

}  // namespace

std::wstring Dialects::TablePrefix(long Type, const std::wstring& Owner, const std::wstring& Schema) {
    const bool Qualified = WritesSchema(Type) && !SameName(Schema, Owner) && !SameName(Schema, L"current schema");
    return Qualified ? Schema + L"." : std::wstring();
}

std::wstring Dialects::DescribePrefix(const std::wstring& Schema) {
    return Schema.empty() || Schema == L"Current Schema" ? std::wstring() : Schema + L".";
}

Dialects::Frame Dialects::SampleRows(long Type) {
    switch (Type) {
        case 2:
        case 28:
            return {L"SELECT first 100 * FROM ", L""};
        case 4:
            return {L"SELECT * FROM ", L" WHERE rownum <= 100"};
        case 13:
            return {L"SELECT * FROM ", L"  fetch first 100 rows only"};  // two blanks, as users know it
        case 17:
        case 27:
            return {L"SELECT * FROM ", L" LIMIT 100"};
        default:
            return {L"SELECT top 100 * FROM ", L""};
    }
}
