#include "host/database/Identifier.h"

#include <gtest/gtest.h>

namespace {

IdentifierRules Rules(UnquotedCase unquoted, const wchar_t* quote = L"\"", const wchar_t* special = L"") {
    IdentifierRules rules;
    rules.Quote = quote;
    rules.Case = unquoted;
    rules.SpecialCharacters = special;
    rules.Keywords = OdbcKeywords();
    return rules;
}

TEST(FormatName, LeavesPlainNamesAlone) {
    const IdentifierRules rules = Rules(UnquotedCase::AsItIs);
    for (const wchar_t* name : {L"customer", L"Customer", L"a", L"order_2024", L"_hidden"})
        EXPECT_EQ(FormatName(rules, name), name);
}

TEST(FormatName, QuotesWhatIsNoIdentifier) {
    const IdentifierRules rules = Rules(UnquotedCase::AsItIs);
    EXPECT_EQ(FormatName(rules, L"Order Details"), L"\"Order Details\"");
    EXPECT_EQ(FormatName(rules, L"price.history"), L"\"price.history\"");
    EXPECT_EQ(FormatName(rules, L"2024"), L"\"2024\"");
    EXPECT_EQ(FormatName(rules, L"tax-rate"), L"\"tax-rate\"");
    EXPECT_EQ(FormatName(rules, L"Übersetzung"), L"\"Übersetzung\"");
    EXPECT_EQ(FormatName(rules, L"日本\xD83D\xDE00"), L"\"日本\xD83D\xDE00\"");
    EXPECT_EQ(FormatName(rules, L" "), L"\" \"");
    EXPECT_EQ(FormatName(rules, L""), L"\"\"");
    EXPECT_EQ(FormatName(rules, L"a\r\nb"), L"\"a\r\nb\"");
}

TEST(FormatName, DoublesQuotesInside) {
    EXPECT_EQ(FormatName(Rules(UnquotedCase::AsItIs), L"The \"Golden Leaf\" Club"),
              L"\"The \"\"Golden Leaf\"\" Club\"");
    EXPECT_EQ(FormatName(Rules(UnquotedCase::AsItIs), L"\""), L"\"\"\"\"");
    EXPECT_EQ(FormatName(Rules(UnquotedCase::AsItIs, L"`"), L"a`b\"c"), L"`a``b\"c`");
}

TEST(FormatName, KnowsBrackets) {
    EXPECT_EQ(FormatName(Rules(UnquotedCase::AsItIs, L"["), L"a [b] c"), L"[a [b]] c]");
    EXPECT_EQ(FormatName(Rules(UnquotedCase::AsItIs, L"["), L"plain"), L"plain");
}

TEST(FormatName, QuotesKeywordsInAnyCase) {
    const IdentifierRules rules = Rules(UnquotedCase::AsItIs);
    for (const wchar_t* name : {L"Order", L"ORDER", L"order"})
        EXPECT_EQ(FormatName(rules, name), L"\"" + std::wstring(name) + L"\"");
    EXPECT_EQ(FormatName(rules, L"Orders"), L"Orders");
}

TEST(FormatName, FollowsTheCaseOfUnquotedNames) {
    EXPECT_EQ(FormatName(Rules(UnquotedCase::Upper), L"CUSTOMER"), L"CUSTOMER");
    EXPECT_EQ(FormatName(Rules(UnquotedCase::Upper), L"customer"), L"\"customer\"");
    EXPECT_EQ(FormatName(Rules(UnquotedCase::Lower), L"customer"), L"customer");
    EXPECT_EQ(FormatName(Rules(UnquotedCase::Lower), L"Customer"), L"\"Customer\"");
    // The standard, which such databases follow, has no underscore at the start.
    EXPECT_EQ(FormatName(Rules(UnquotedCase::Upper), L"_X"), L"\"_X\"");
}

TEST(FormatName, AllowsSpecialCharactersButNotFirst) {
    const IdentifierRules rules = Rules(UnquotedCase::Upper, L"\"", L"$#");
    EXPECT_EQ(FormatName(rules, L"V$SESSION"), L"V$SESSION");
    EXPECT_EQ(FormatName(rules, L"$SESSION"), L"\"$SESSION\"");
    EXPECT_EQ(FormatName(rules, L"A@B"), L"\"A@B\"");
}

TEST(FormatName, GivesTheNameBackWithoutAQuoteCharacter) {
    EXPECT_EQ(FormatName(Rules(UnquotedCase::AsItIs, L""), L"Order Details"), L"Order Details");
}

TEST(AddKeywords, SplitsAListAndIgnoresBlanks) {
    std::set<std::wstring> keywords;
    AddKeywords(keywords, L"limit, Offset ,,ROW");
    EXPECT_EQ(keywords, (std::set<std::wstring>{L"LIMIT", L"OFFSET", L"ROW"}));
    AddKeywords(keywords, L"");
    EXPECT_EQ(keywords.size(), 3u);
}

}  // namespace
