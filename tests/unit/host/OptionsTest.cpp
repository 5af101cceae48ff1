#include "host/demo/Options.h"

#include <gtest/gtest.h>

#include "support/Folder.h"

namespace {

TEST(ReadOptions, ReadsBothForms) {
    Options options;
    EXPECT_EQ(ReadOptions({L"--connect", L"DSN=x;UID=y", L"--sql=select 1=1", L"--max-rows=0", L"--csv", L"out.csv"},
                          options),
              L"");
    EXPECT_EQ(options.Connect, L"DSN=x;UID=y");
    EXPECT_EQ(options.Sql, L"select 1=1");
    EXPECT_EQ(options.MaxRows, 0);
    EXPECT_EQ(options.Csv, L"out.csv");
    EXPECT_TRUE(options.Editor);
}

TEST(ReadOptions, ComplainsOfWhatIsWrong) {
    const auto wrong = [](const std::vector<std::wstring>& arguments) {
        Options options;
        return !ReadOptions(arguments, options).empty();
    };
    EXPECT_TRUE(wrong({}));
    EXPECT_TRUE(wrong({L"--connect"}));
    EXPECT_TRUE(wrong({L"--connect", L"x", L"--frobnicate"}));
    EXPECT_TRUE(wrong({L"--connect", L"x", L"--max-rows", L"-1"}));
    EXPECT_TRUE(wrong({L"--connect", L"x", L"--max-rows", L"ten"}));
    EXPECT_TRUE(wrong({L"--connect", L"x", L"--max-rows", L"99999999999"}));
    EXPECT_TRUE(wrong({L"--connect", L"x", L"stray"}));
    EXPECT_TRUE(wrong({L"--sample", L"--connect", L"x"}));
    EXPECT_FALSE(wrong({L"--connect", L"x", L"--no-editor"}));
}

TEST(ReadOptions, TakesTheSampleInsteadOfAConnection) {
    Options options;
    EXPECT_EQ(ReadOptions({L"--sample", L"--unregistered"}, options), L"");
    EXPECT_TRUE(options.Sample);
    EXPECT_TRUE(options.Unregistered);
}

TEST(ReadOptions, AsksForNothingElseWithHelp) {
    Options options;
    EXPECT_EQ(ReadOptions({L"--help"}, options), L"");
    EXPECT_TRUE(options.Help);
}

TEST(ReadTextFile, TellsWhyItCannotRead) {
    std::wstring failure;
    EXPECT_FALSE(ReadTextFile(L"Z:\\no such folder\\x.sql", failure));
    EXPECT_FALSE(failure.empty());
}

TEST(ReadTextFile, TakesUtf8AndUtf16WithAMarkOrWithout) {
    const Folder here;
    const std::wstring path = here / L"a.sql";
    std::wstring failure;
    const auto read = [&](const std::string& bytes) {
        PutBytes(path, bytes);
        return ReadTextFile(path, failure);
    };
    EXPECT_EQ(read(""), L"");
    EXPECT_EQ(read("select 'Gr\xC3\xB6\xC3\x9F"
                   "e'"),
              L"select 'Größe'");
    EXPECT_EQ(read("\xEF\xBB\xBF"
                   "select 1"),
              L"select 1");
    EXPECT_EQ(read(std::string("\xFF\xFE\xF6\0=\0", 6)), L"ö=");
    EXPECT_EQ(failure, L"");
}

}  // namespace
