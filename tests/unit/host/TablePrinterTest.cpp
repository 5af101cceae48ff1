#include "host/demo/TablePrinter.h"

#include <gtest/gtest.h>

namespace {

std::wstring Printed(std::vector<TablePrinter::Column> columns, std::vector<TablePrinter::Row> rows,
                     size_t widest = 20) {
    std::wstring text;
    TablePrinter table(std::move(columns), widest, [&](const std::wstring& line) { text += line; });
    for (TablePrinter::Row& row : rows) table.Add(std::move(row));
    table.Finish();
    return text;
}

TEST(TablePrinter, AlignsColumns) {
    EXPECT_EQ(Printed({{L"sku", false}, {L"n", true}}, {{L"BT-1", L"7"}, {L"BT-1000", L"12"}}),
              L"sku     |  n\n"
              L"--------+---\n"
              L"BT-1    |  7\n"
              L"BT-1000 | 12\n");
}

TEST(TablePrinter, ShowsNullAndNoRows) {
    EXPECT_EQ(Printed({{L"a", false}}, {{std::nullopt}}), L"a\n----\nNULL\n");
    EXPECT_EQ(Printed({{L"a", false}}, {}), L"a\n-\n");
}

TEST(TablePrinter, FindsNumbersInColumnsWithoutAType) {
    EXPECT_EQ(Printed({{L"count", false}}, {{L"5"}, {L"-12.5"}}), L"count\n-----\n    5\n-12.5\n");
    EXPECT_EQ(Printed({{L"postcode", false}}, {{L"01067"}}), L"postcode\n--------\n01067\n");
}

TEST(TablePrinter, ShortensLongValues) {
    EXPECT_EQ(Printed({{L"a", false}}, {{L"abcdefghij"}}, 5), L"a\n-----\nabcd\x2026\n");
}

TEST(TablePrinter, KeepsTheWidthOfTheFirstRows) {
    std::vector<TablePrinter::Row> rows(300, {L"ab"});
    rows.push_back({L"abcdef"});
    const std::wstring text = Printed({{L"x", false}}, rows);
    EXPECT_TRUE(text.ends_with(L"ab\na\x2026\n")) << text.substr(text.size() - 12).c_str();
}

TEST(Shown, MakesControlCharactersVisible) {
    EXPECT_EQ(Shown(L"a\r\nb\nc\td", 20),
              L"a\x21B5"
              L"b\x21B5"
              L"c\xB7"
              L"d");
}

TEST(Shown, CutsBetweenCharacters) {
    const std::wstring smile = L"\xD83D\xDE00";
    EXPECT_EQ(Shown(smile + smile + smile, 2), smile + L"\x2026");
    EXPECT_EQ(Shown(smile + smile, 2), smile + smile);
    EXPECT_EQ(Shown(L"e\x301"
                    L"e\x301"
                    L"e\x301",
                    2),
              L"e\x301\x2026");
}

TEST(Places, CountsCharactersNotUnits) {
    EXPECT_EQ(Places(L"abc"), 3u);
    EXPECT_EQ(Places(L"\xD83D\xDE00"), 1u);
    EXPECT_EQ(Places(L"e\x301"), 1u);
}

}  // namespace
