#include "statements/Dialects.h"

#include <gtest/gtest.h>

namespace {

const long Qualifying[] = {4, 8, 13, 26, 27, 40};
const long Others[] = {0, 1, 2, 3, 5, 9, 12, 14, 17, 24, 25, 28, 39, 41, 99, -4};

}  // namespace

TEST(DialectsTest, ATableGetsItsSchemaInSixTypes) {
    for (const long type : Qualifying) EXPECT_EQ(L"SALES.", Dialects::TablePrefix(type, L"scott", L"SALES")) << type;
    for (const long type : Others) EXPECT_EQ(L"", Dialects::TablePrefix(type, L"scott", L"SALES")) << type;
}

TEST(DialectsTest, TheOwnersSchemaAndTheCurrentOneAreNotWrittenBeforeATable) {
    for (const long type : Qualifying) {
        EXPECT_EQ(L"", Dialects::TablePrefix(type, L"scott", L"SCOTT"));
        EXPECT_EQ(L"", Dialects::TablePrefix(type, L"scott", L"Current Schema"));
        EXPECT_EQ(L"", Dialects::TablePrefix(type, L"scott", L"CURRENT schema"));
        EXPECT_EQ(L"scotty.", Dialects::TablePrefix(type, L"scott", L"scotty"));
    }
}

TEST(DialectsTest, AnEmptySchemaIsASchemaLikeAnotherBeforeATable) {
    EXPECT_EQ(L".", Dialects::TablePrefix(4, L"scott", L""));
    EXPECT_EQ(L"", Dialects::TablePrefix(4, L"", L""));
}

TEST(DialectsTest, DescribeWritesEverySchemaButTheDefault) {
    EXPECT_EQ(L"SALES.", Dialects::DescribePrefix(L"SALES"));
    EXPECT_EQ(L"CURRENT schema.", Dialects::DescribePrefix(L"CURRENT schema"));
    EXPECT_EQ(L"", Dialects::DescribePrefix(L"Current Schema"));
    EXPECT_EQ(L"", Dialects::DescribePrefix(L""));
}

TEST(DialectsTest, AHundredRowsAreAskedForInTheWayOfTheType) {
    const auto around = [](long type) {
        const Dialects::Frame frame = Dialects::SampleRows(type);
        return std::wstring(frame.Before) + L"T" + std::wstring(frame.Behind);
    };
    for (const long type : {2, 28}) EXPECT_EQ(L"SELECT first 100 * FROM T", around(type));
    EXPECT_EQ(L"SELECT * FROM T WHERE rownum <= 100", around(4));
    EXPECT_EQ(L"SELECT * FROM T  fetch first 100 rows only", around(13));
    for (const long type : {17, 27}) EXPECT_EQ(L"SELECT * FROM T LIMIT 100", around(type));
    for (const long type : {0, 1, 3, 8, 12, 14, 16, 18, 24, 26, 29, 40, -2}) {
        EXPECT_EQ(L"SELECT top 100 * FROM T", around(type));
    }
}
