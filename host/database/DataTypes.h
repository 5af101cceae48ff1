#pragma once

#include <string>
#include <string_view>

// The attribute of a column's type, as the third element of a DATA_TYPE property carries it.
namespace FieldAttribute {
inline constexpr long None = 0;
inline constexpr long Unsigned = 1;   // a whole number without a sign
inline constexpr long Automatic = 2;  // the database gives the value: counters, identity columns
}  // namespace FieldAttribute

// A readable name for an ODBC type code (SQL_VARCHAR, ...), the codes of the large products included. An attribute adds
// a word. A code that nobody knows gives "Type " and the number.
std::wstring DataTypeDesc(long dataType, long fieldAttribute);

// What the name that the product gives a type says of it ("int unsigned", "serial", "int identity").
long AttributeOfTypeName(std::wstring_view typeName);
