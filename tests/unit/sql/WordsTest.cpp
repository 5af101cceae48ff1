#include "sql/Words.h"

#include <gtest/gtest.h>

namespace {

using Sql::Words;
using Meaning = Words::Meaning;

TEST(Words, KnowTheKeywordsOfTheType) {
    EXPECT_EQ(Meaning::Keyword, Words(0).Of(L"SELECT"));
    EXPECT_EQ(Meaning::Keyword, Words(12345).Of(L"sElEcT"));
    EXPECT_EQ(Meaning::Nothing, Words(4).Of(L"TOP"));
    EXPECT_EQ(Meaning::Keyword, Words(8).Of(L"top"));
    EXPECT_EQ(Meaning::Keyword, Words(27).Of(L"ilike"));
    EXPECT_EQ(Meaning::Nothing, Words(8).Of(L"ilike"));
    EXPECT_EQ(Meaning::Nothing, Words(0).Of(L""));
    EXPECT_EQ(Meaning::Nothing, Words(0).Of(L"selects"));
    EXPECT_EQ(Meaning::Nothing, Words(0).Of(std::wstring(100, L'A')));
    // No capital letter of another language becomes an ASCII one.
    EXPECT_EQ(Meaning::Nothing, Words(0).Of(L"\u0131N"));
}

TEST(Words, KnowTheFunctionsThatTheyAreTold) {
    Words words(8);
    EXPECT_EQ(Meaning::Nothing, words.Of(L"nvl"));
    words.AddFunction(L"Nvl(expr1,expr2)");
    words.AddFunction(L"COUNT( [ALL] *)");
    words.AddFunction(L"COUNT( expr )");
    words.AddFunction(L"SYSDATE");
    words.AddFunction(L"@@ERROR");
    words.AddFunction(L"LEFT (s,n)");
    words.AddFunction(L"LONG RAW");
    words.AddFunction(L"(x)");
    words.AddFunction(L"");
    EXPECT_EQ(Meaning::Call, words.Of(L"NVL"));
    EXPECT_EQ(Meaning::Call, words.Of(L"count"));
    EXPECT_EQ(Meaning::Function, words.Of(L"sysdate"));
    EXPECT_EQ(Meaning::Function, words.Of(L"@@error"));
    EXPECT_EQ(Meaning::KeywordOrFunction, words.Of(L"left"));
    EXPECT_EQ(Meaning::Nothing, words.Of(L"LONG"));
    EXPECT_EQ(Meaning::Nothing, words.Of(L"LONG RAW"));
    // What the reference has with a bracket and without one needs none.
    words.AddFunction(L"NOW");
    words.AddFunction(L"NOW(n)");
    words.AddFunction(L"UID(n)");
    words.AddFunction(L"UID");
    EXPECT_EQ(Meaning::Function, words.Of(L"now"));
    EXPECT_EQ(Meaning::Function, words.Of(L"uid"));
}

}  // namespace
