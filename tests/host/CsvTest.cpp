#include "host/demo/Csv.h"

#include <gtest/gtest.h>

#include "host/demo/Console.h"

namespace {

std::wstring TemporaryPath(const wchar_t* name) {
    wchar_t folder[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + name + std::to_wstring(GetCurrentProcessId()) + L".csv";
}

std::string Contents(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return "(no file)";
    std::string bytes(static_cast<size_t>(GetFileSize(file, nullptr)), '\0');
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    return bytes;
}

TEST(CsvRow, QuotesOnlyWhereItMust) {
    EXPECT_EQ(CsvRow({L"a", L"1.5", L"two words"}), L"a,1.5,two words\r\n");
    EXPECT_EQ(CsvRow({L"a,b", L"say \"hi\"", L"two\r\nlines"}), L"\"a,b\",\"say \"\"hi\"\"\",\"two\r\nlines\"\r\n");
    EXPECT_EQ(CsvRow({L" a", L"b "}), L"\" a\",\"b \"\r\n");
}

TEST(CsvRow, TellsNullFromAnEmptyText) { EXPECT_EQ(CsvRow({std::nullopt, L"", std::nullopt}), L",\"\",\r\n"); }

TEST(CsvFile, WritesUtf8WithAMark) {
    const std::wstring path = TemporaryPath(L"brv-utf8-");
    {
        CsvFile file(path);
        EXPECT_TRUE(file.Write({L"Größe", L"日本"}));
        EXPECT_TRUE(file.Close()) << ToUtf8(file.Failure());
    }
    EXPECT_EQ(Contents(path),
              "\xEF\xBB\xBFGr\xC3\xB6\xC3\x9F"
              "e,\xE6\x97\xA5\xE6\x9C\xAC\r\n");
    DeleteFileW(path.c_str());
}

TEST(CsvFile, LeavesTheOldFileWhenItIsNotClosed) {
    const std::wstring path = TemporaryPath(L"brv-old-");
    {
        CsvFile file(path);
        file.Write({L"old"});
        ASSERT_TRUE(file.Close());
    }
    {
        CsvFile file(path);
        file.Write({L"new"});
    }
    EXPECT_EQ(Contents(path), "\xEF\xBB\xBFold\r\n");
    EXPECT_EQ(GetFileAttributesW((path + L".part").c_str()), INVALID_FILE_ATTRIBUTES);
    DeleteFileW(path.c_str());
}

TEST(CsvFile, TellsWhyItCannotWrite) {
    CsvFile file(L"Z:\\no such folder\\x.csv");
    EXPECT_FALSE(file.Write({L"a"}));
    EXPECT_FALSE(file.Close());
    EXPECT_FALSE(file.Failure().empty());
}

}  // namespace
