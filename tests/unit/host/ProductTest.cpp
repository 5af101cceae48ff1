#include "host/database/Product.h"

#include <gtest/gtest.h>

namespace {

TEST(FindProduct, KnowsProductsByWhatTheirDriversSay) {
    EXPECT_EQ(FindProduct(L"PostgreSQL", true).DBType, 27);
    EXPECT_EQ(FindProduct(L"SQLite", false).DBType, 17);
    EXPECT_EQ(FindProduct(L"MySQL", false).DBType, 17);
    EXPECT_EQ(FindProduct(L"Oracle", true).DBType, 4);
    EXPECT_EQ(FindProduct(L"Microsoft SQL Server", true).DBType, 8);
    EXPECT_EQ(FindProduct(L"DB2/LINUXX8664", true).DBType, 13);
    EXPECT_EQ(FindProduct(L"Informix", true).DBType, 2);
    EXPECT_EQ(FindProduct(L"Firebird", false).DBType, 28);
    EXPECT_EQ(FindProduct(L"ACCESS", false).DBType, 24);
    EXPECT_EQ(FindProduct(L"Adaptive Server Enterprise", true).DBType, 26);
    EXPECT_EQ(FindProduct(L"Adaptive Server Anywhere", true).DBType, 40);
}

TEST(FindProduct, IgnoresCase) { EXPECT_EQ(FindProduct(L"POSTGRESQL 15", true).DBType, 27); }

TEST(FindProduct, HasAGeneralOneForTheRest) {
    EXPECT_EQ(FindProduct(L"Never heard of", true).DBType, 27);
    EXPECT_EQ(FindProduct(L"Never heard of", false).DBType, 17);
    EXPECT_EQ(FindProduct(L"", false).DBType, 17);
}

TEST(ProductName, NamesACode) {
    EXPECT_EQ(ProductName(4), L"Oracle");
    EXPECT_EQ(ProductName(8), L"Microsoft SQL Server");
    EXPECT_EQ(ProductName(999), L"Database");
}

}  // namespace
