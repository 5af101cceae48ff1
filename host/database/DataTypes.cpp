#include "host/database/DataTypes.h"

#include <windows.h>

namespace {

struct TypeName {
    long Code;
    const wchar_t* Name;
};

const TypeName typeNames[] = {
    {0, L"UNKNOWN"},
    {1, L"CHAR"},
    {2, L"NUMERIC"},
    {3, L"DECIMAL"},
    {4, L"INTEGER"},
    {5, L"SMALLINT"},
    {6, L"FLOAT"},
    {7, L"REAL"},
    {8, L"DOUBLE"},
    // 9 to 11 are the date types of ODBC 2; 9 and 10 are also the general codes of ODBC 3 for dates and intervals.
    {9, L"DATE"},
    {10, L"TIME"},
    {11, L"TIMESTAMP"},
    {12, L"VARCHAR"},
    {91, L"DATE"},
    {92, L"TIME"},
    {93, L"TIMESTAMP"},
    {94, L"TIME WITH TIME ZONE"},
    {95, L"TIMESTAMP WITH TIME ZONE"},
    {101, L"INTERVAL YEAR"},
    {102, L"INTERVAL MONTH"},
    {103, L"INTERVAL DAY"},
    {104, L"INTERVAL HOUR"},
    {105, L"INTERVAL MINUTE"},
    {106, L"INTERVAL SECOND"},
    {107, L"INTERVAL YEAR TO MONTH"},
    {108, L"INTERVAL DAY TO HOUR"},
    {109, L"INTERVAL DAY TO MINUTE"},
    {110, L"INTERVAL DAY TO SECOND"},
    {111, L"INTERVAL HOUR TO MINUTE"},
    {112, L"INTERVAL HOUR TO SECOND"},
    {113, L"INTERVAL MINUTE TO SECOND"},
    {-1, L"LONG VARCHAR"},
    {-2, L"BINARY"},
    {-3, L"VARBINARY"},
    {-4, L"LONG VARBINARY"},
    {-5, L"BIGINT"},
    {-6, L"TINYINT"},
    {-7, L"BIT"},
    {-8, L"CHAR (Unicode)"},
    {-9, L"VARCHAR (Unicode)"},
    {-10, L"LONG VARCHAR (Unicode)"},
    {-11, L"GUID"},
    // DB2
    {-95, L"GRAPHIC"},
    {-96, L"VARGRAPHIC"},
    {-97, L"LONG VARGRAPHIC"},
    {-98, L"BLOB"},
    {-99, L"CLOB"},
    {-350, L"DBCLOB"},
    {-360, L"DECFLOAT"},
    {-370, L"XML"},
    // Microsoft SQL Server
    {-150, L"SQL_VARIANT"},
    {-151, L"USER-DEFINED TYPE"},
    {-152, L"XML"},
    {-154, L"TIME"},
    {-155, L"TIMESTAMP WITH TIME ZONE"},
};

bool Contains(std::wstring_view text, const wchar_t* part) {
    return !text.empty() &&
           FindStringOrdinal(FIND_FROMSTART, text.data(), static_cast<int>(text.size()), part, -1, TRUE) >= 0;
}

}  // namespace

std::wstring DataTypeDesc(long dataType, long fieldAttribute) {
    std::wstring name;
    for (const TypeName& type : typeNames) {
        if (type.Code == dataType) name = type.Name;
    }
    if (name.empty()) name = L"Type " + std::to_wstring(dataType);
    if (fieldAttribute & FieldAttribute::Unsigned) name += L" UNSIGNED";
    if (fieldAttribute & FieldAttribute::Automatic) name += L" (automatic)";
    return name;
}

long AttributeOfTypeName(std::wstring_view typeName) {
    long attribute = FieldAttribute::None;
    if (Contains(typeName, L"unsigned")) attribute |= FieldAttribute::Unsigned;
    if (Contains(typeName, L"identity") || Contains(typeName, L"counter") || Contains(typeName, L"serial")) {
        attribute |= FieldAttribute::Automatic;
    }
    return attribute;
}
