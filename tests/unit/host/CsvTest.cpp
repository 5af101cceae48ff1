#include "host/demo/Csv.h"

#include <gtest/gtest.h>

#include "host/demo/Console.h"
#include "support/Folder.h"

namespace {

TEST(CsvRow, QuotesOnlyWhereItMust) {
    EXPECT_EQ(CsvRow({L"a", L"1.5", L"two words"}), L"a,1.5,two words\r\n");
    EXPECT_EQ(CsvRow({L"a,b", L"say \"hi\"", L"two\r\nlines"}), L"\"a,b\",\"say \"\"hi\"\"\",\"two\r\nlines\"\r\n");
    EXPECT_EQ(CsvRow({L" a", L"b "}), L"\" a\",\"b \"\r\n");
}

TEST(CsvRow, TellsNullFromAnEmptyText) { EXPECT_EQ(CsvRow({std::nullopt, L"", std::nullopt}), L",\"\",\r\n"); }

// Whoever may write into a table could have a spreadsheet run what they like.
TEST(CsvRow, LeavesNothingThatASpreadsheetRuns) {
    EXPECT_EQ(CsvRow({L"=1+1", L"@SUM(1)", L"+cmd|' /C x'!A1", L"-x", L"\tx", L"-"}),
              L"'=1+1,'@SUM(1),'+cmd|' /C x'!A1,'-x,'\tx,'-\r\n");
    EXPECT_EQ(CsvRow({L"-5", L"+1.5", L"-1e5", L"a=1", L"1-1"}), L"-5,+1.5,-1e5,a=1,1-1\r\n");
    EXPECT_EQ(CsvRow({L"=a,\"b\""}), L"\"'=a,\"\"b\"\"\"\r\n");
}

TEST(CsvFile, LeavesAloneWhatStandsUnderItsTemporaryName) {
    const Folder here;
    const std::wstring path = here / L"a.csv";
    const std::wstring planted = path + L"." + std::to_wstring(GetCurrentProcessId()) + L"-0.part";
    for (const std::wstring& name : {path + L".part", planted}) PutBytes(name, "mine");
    {
        CsvFile file(path);
        EXPECT_TRUE(file.Write({L"a"}));
        EXPECT_TRUE(file.Close()) << ToUtf8(file.Failure());
    }
    EXPECT_EQ(BytesOf(path),
              "\xEF\xBB\xBF"
              "a\r\n");
    for (const std::wstring& name : {path + L".part", planted}) EXPECT_EQ(BytesOf(name), "mine");
}

TEST(CsvFile, WritesUtf8WithAMark) {
    const Folder here;
    const std::wstring path = here / L"a.csv";
    {
        CsvFile file(path);
        EXPECT_TRUE(file.Write({L"Größe", L"日本"}));
        EXPECT_TRUE(file.Close()) << ToUtf8(file.Failure());
    }
    EXPECT_EQ(BytesOf(path),
              "\xEF\xBB\xBFGr\xC3\xB6\xC3\x9F"
              "e,\xE6\x97\xA5\xE6\x9C\xAC\r\n");
}

TEST(CsvFile, LeavesTheOldFileWhenItIsNotClosed) {
    const Folder here;
    const std::wstring path = here / L"a.csv";
    {
        CsvFile file(path);
        file.Write({L"old"});
        ASSERT_TRUE(file.Close());
    }
    {
        CsvFile file(path);
        file.Write({L"new"});
    }
    EXPECT_EQ(BytesOf(path), "\xEF\xBB\xBFold\r\n");
    EXPECT_EQ(here.Names(), std::vector<std::wstring>{L"a.csv"});
}

TEST(CsvFile, TellsWhyItCannotWrite) {
    CsvFile file(L"Z:\\no such folder\\x.csv");
    EXPECT_FALSE(file.Write({L"a"}));
    EXPECT_FALSE(file.Close());
    EXPECT_FALSE(file.Failure().empty());
}

}  // namespace
