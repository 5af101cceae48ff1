#include "host/database/DataTypes.h"

#include <gtest/gtest.h>

namespace {

TEST(DataTypeDesc, NamesTheTypesOfOdbc) {
    EXPECT_EQ(DataTypeDesc(12, 0), L"VARCHAR");
    EXPECT_EQ(DataTypeDesc(4, 0), L"INTEGER");
    EXPECT_EQ(DataTypeDesc(-9, 0), L"VARCHAR (Unicode)");
    EXPECT_EQ(DataTypeDesc(93, 0), L"TIMESTAMP");
    EXPECT_EQ(DataTypeDesc(11, 0), L"TIMESTAMP");
    EXPECT_EQ(DataTypeDesc(-155, 0), L"TIMESTAMP WITH TIME ZONE");
}

TEST(DataTypeDesc, GivesTheNumberOfAnUnknownCode) {
    EXPECT_EQ(DataTypeDesc(4711, 0), L"Type 4711");
    EXPECT_EQ(DataTypeDesc(-2147483647 - 1, 0), L"Type -2147483648");
}

TEST(DataTypeDesc, AddsTheAttribute) {
    EXPECT_EQ(DataTypeDesc(4, FieldAttribute::Unsigned), L"INTEGER UNSIGNED");
    EXPECT_EQ(DataTypeDesc(4, FieldAttribute::Automatic), L"INTEGER (automatic)");
    EXPECT_EQ(DataTypeDesc(4, FieldAttribute::Unsigned | FieldAttribute::Automatic), L"INTEGER UNSIGNED (automatic)");
}

TEST(AttributeOfTypeName, ReadsTheProductsNames) {
    EXPECT_EQ(AttributeOfTypeName(L"int unsigned"), FieldAttribute::Unsigned);
    EXPECT_EQ(AttributeOfTypeName(L"INT IDENTITY"), FieldAttribute::Automatic);
    EXPECT_EQ(AttributeOfTypeName(L"bigserial"), FieldAttribute::Automatic);
    EXPECT_EQ(AttributeOfTypeName(L"varchar"), FieldAttribute::None);
    EXPECT_EQ(AttributeOfTypeName(L""), FieldAttribute::None);
}

}  // namespace
