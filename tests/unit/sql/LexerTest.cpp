#include "sql/Lexer.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace Sql;

// "word:a|operator:=|...", blanks left out, each token in the way it stands in the text.
std::wstring Tokens(std::wstring_view text, long type = 0) {
    static constexpr const wchar_t* Names[] = {L"blank", L"comment", L"text", L"name", L"number", L"word", L"operator"};
    Lexer lexer(text, DialectOf(type));
    std::wstring all;
    for (Token token; lexer.Next(token);) {
        if (token.What == Kind::Blank) continue;
        if (!all.empty()) all += L"|";
        all += Names[static_cast<size_t>(token.What)];
        all += L":";
        for (const wchar_t c : text.substr(token.Start, token.Length))
            all += c == L'\r' ? std::wstring(L"\\r") : c == L'\n' ? std::wstring(L"\\n") : std::wstring(1, c);
    }
    return all;
}

TEST(Lexer, TakesAStatementApart) {
    EXPECT_EQ(L"word:select|word:a|operator:.|word:b_1|operator:,|operator:*|word:from|word:t|operator:;",
              Tokens(L"select a.b_1, *\r\n from\tt;"));
    EXPECT_EQ(L"", Tokens(L""));
    EXPECT_EQ(L"word:\u00e4\u0436\u4e2d", Tokens(L"\u00a0\u00e4\u0436\u4e2d\ufeff\u3000"));
}

TEST(Lexer, KnowsNumbers) {
    EXPECT_EQ(L"number:1|number:1.5|number:.5|number:1e3|number:1.5E-10|number:0x1Fa|number:1_000|number:5.",
              Tokens(L"1 1.5 .5 1e3 1.5E-10 0x1Fa 1_000 5."));
    EXPECT_EQ(L"number:1|operator:..|number:10", Tokens(L"1..10"));
    EXPECT_EQ(L"number:1|operator:..|operator:.|number:5", Tokens(L"1...5"));
    EXPECT_EQ(L"word:a1|operator:.|word:b2|operator:-|number:3", Tokens(L"a1.b2-3"));
    EXPECT_EQ(L"number:1e|operator:+", Tokens(L"1e+"));
    EXPECT_EQ(L"number:1e+3|operator:+|number:4", Tokens(L"1e+3+4"));
}

TEST(Lexer, TellsWhatLooksLikeTheBeginningOfAText) {
    EXPECT_EQ(L"word:ux|operator:&|text:'a'", Tokens(L"ux&'a'"));
    // A tag is no parameter, and has no sign of one.
    EXPECT_EQ(L"word:$1$|word:a|word:$1$", Tokens(L"$1$ a $1$", 27));
    EXPECT_EQ(L"word:$a@$|word:b|word:$a@$", Tokens(L"$a@$ b $a@$", 27));
    EXPECT_EQ(L"text:q'<a'>'|word:b|text:q'(a)'|word:c", Tokens(L"q'<a'>'b q'(a)'c", 4));
    EXPECT_EQ(L"operator:(|word:a|operator:)|word:$t$b$t$", Tokens(L"(a)$t$b$t$", 27));
    // After a bracket it is the index of an array.
    EXPECT_EQ(L"word:f|operator:(|word:x|operator:)|operator:[|number:1|operator:]", Tokens(L"f(x)[1]", 8));
    EXPECT_EQ(L"number:1_000.5|word:a", Tokens(L"1_000.5 a"));
}

// Lines are compared by it: nothing of what was closed is kept.
TEST(Lexer, LeavesNoStateBehindWhatIsClosed) {
    for (const std::wstring text :
         {L"'a'", L"E'a'", L"\"a\"", L"[a]", L"q'!a!'", L"$t$a$t$", L"/*a*/", L"/*a/*b*/c*/", L"--a", L"nq'[a]'"}) {
        for (const long type : {0L, 4L, 8L, 17L, 27L}) {
            Lexer lexer(text, DialectOf(type));
            for (Token token; lexer.Next(token);) {
            }
            if (lexer.Now().Inside == State::In::Nothing) {
                EXPECT_EQ(State(), lexer.Now()) << testing::PrintToString(text) << type;
            }
        }
    }
}

TEST(Lexer, KnowsOperatorsOfTwoCharacters) {
    for (const wchar_t* const pair :
         {L"<=", L">=", L"!=", L":=", L"^=", L"+=", L"-=", L"<>", L"=>", L"->", L"||", L"::", L"**", L"..", L"&&"}) {
        EXPECT_EQ(std::wstring(L"word:a|operator:") + pair + L"|word:b", Tokens(std::wstring(L"a ") + pair + L" b"));
    }
    for (const wchar_t* const apart : {L"=<", L"*=", L"+>", L"|&", L"^^"}) {
        const std::wstring two = apart;
        EXPECT_EQ(L"word:a|operator:" + two.substr(0, 1) + L"|operator:" + two.substr(1) + L"|word:b",
                  Tokens(L"a " + two + L" b"));
    }
    EXPECT_EQ(
        L"word:a|operator:<=|word:b|operator:<>|word:c|operator:!=|word:d|operator:|||word:e|operator:::|word:int",
        Tokens(L"a<=b<>c!=d||e::int"));
    EXPECT_EQ(L"word:a|operator:->|word:b|operator:=>|number:1", Tokens(L"a->b=>1"));
    EXPECT_EQ(L"word:x|operator::=|operator:-|number:1", Tokens(L"x:=-1"));
}

TEST(Lexer, KnowsDatesBetweenHashes) {
    EXPECT_EQ(L"word:a|operator:<|text:#1/2/2026#|word:b", Tokens(L"a < #1/2/2026# b", 24));
    // Not over a line end, and not without the second one.
    EXPECT_EQ(L"operator:#|number:1|operator:#", Tokens(L"#1\r\n#", 24));
    EXPECT_EQ(L"operator:#|number:1", Tokens(L"#1", 24));
}

// Each character in a word, alone, and before a number.
TEST(Lexer, KnowsTheClassOfEachCharacter) {
    const Dialect& dialect = DialectOf(2);  // This database adds no signs to the common ones.
    std::wstring inside;
    std::wstring begins;
    std::wstring numbers;
    std::wstring blanks;
    for (unsigned code = 0; code < 0x10000; ++code) {
        const wchar_t c = static_cast<wchar_t>(code);
        const std::wstring within = std::wstring(L"w") + c + L"w";
        const std::wstring alone = std::wstring(1, c) + L"w";
        Token token{};
        Lexer(within, dialect).Next(token);
        const bool goesOn = token.Length == 3;
        Lexer(alone, dialect).Next(token);
        const bool begun = token.What == Kind::Word && token.Length == 2;
        const bool blank = token.What == Kind::Blank;
        if (blank) blanks += c;
        if (code < 128) {
            if (goesOn) inside += c;
            if (begun) begins += c;
            if (token.What == Kind::Number) numbers += c;
        } else if (goesOn == blank || begun == blank) {
            ADD_FAILURE() << code;
        }
    }
    EXPECT_EQ(L"$0123456789@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz", inside);
    EXPECT_EQ(L"$@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz", begins);
    EXPECT_EQ(L"0123456789", numbers);
    EXPECT_EQ(L"\t\n\v\f\r \u00A0\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A\u3000\uFEFF",
              blanks);
}

TEST(Lexer, KnowsWhichLettersBeginATextOfWhichProduct) {
    const std::wstring letters = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$9";
    const auto those = [&](long type, const std::wstring& before, const std::wstring& behind) {
        std::wstring found;
        for (const wchar_t c : letters) {
            const std::wstring text = before + c + behind;
            Token token{};
            Lexer lexer(text, DialectOf(type));
            lexer.Next(token);
            if (token.What == Kind::Text && token.Length == text.size()) found += c;
        }
        return found;
    };
    EXPECT_EQ(L"BNXbnx", those(2, L"", L"'a'"));
    EXPECT_EQ(L"BENXbenx", those(27, L"", L"'a'"));
    EXPECT_EQ(L"BGNXbgnx", those(13, L"", L"'a'"));
    EXPECT_EQ(L"Uu", those(2, L"", L"&'a'"));
    EXPECT_EQ(L"", those(2, L"", L"&a"));
    EXPECT_EQ(L"", those(2, L"", L"&`a`"));
    EXPECT_EQ(L"BGUbgu", those(13, L"", L"x'a'"));
    EXPECT_EQ(L"BGUbgu", those(13, L"", L"X'a'"));
    EXPECT_EQ(L"Xx", those(13, L"g", L"'a'"));
    EXPECT_EQ(L"BNQXbnqx", those(4, L"", L"'!!'"));
    EXPECT_EQ(L"Qq", those(4, L"N", L"'!'!'"));
    EXPECT_EQ(L"Nn", those(4, L"", L"q'!'!'"));
    // What is no text of the product is a word and a text.
    EXPECT_EQ(L"word:e|text:'a'", Tokens(L"e'a'", 4));
    EXPECT_EQ(L"word:g|text:'a'", Tokens(L"g'a'", 4));
    EXPECT_EQ(L"word:nn|text:'a'", Tokens(L"nn'a'"));
    EXPECT_EQ(L"word:xx|text:'a'", Tokens(L"xx'a'", 13));
}

TEST(Lexer, KnowsComments) {
    EXPECT_EQ(L"word:a|comment:-- b 'c|word:d", Tokens(L"a -- b 'c\r\nd"));
    EXPECT_EQ(L"word:a|comment:/* b */|word:c", Tokens(L"a/* b */c"));
    EXPECT_EQ(L"comment:/* a\\r\\n|comment:\\r\\n|comment: b */|word:c", Tokens(L"/* a\r\n\r\n b */c"));
    EXPECT_EQ(L"comment:/*/ a", Tokens(L"/*/ a"));
    EXPECT_EQ(L"comment:/**/|operator:*|operator:/", Tokens(L"/**/ */"));
}

TEST(Lexer, NestsCommentsWhereTheProductDoes) {
    const wchar_t* const text = L"/* a /* b */ c */";
    for (const long type : {8L, 13L, 26L, 27L, 40L})
        EXPECT_EQ(L"comment:/* a /* b */ c */", Tokens(text, type)) << type;
    // Nothing between the ends, and none that shares a character with another one.
    EXPECT_EQ(L"comment:/*/**/*/|word:a", Tokens(L"/*/**/*/a", 8));
    EXPECT_EQ(L"comment:/*/*/**/*/*/|word:a", Tokens(L"/*/*/**/*/*/a", 8));
    for (const long type : {0L, 1L, 2L, 4L, 17L, 24L, 28L, 99L, -1L})
        EXPECT_EQ(L"comment:/* a /* b */|word:c|operator:*|operator:/", Tokens(text, type)) << type;
}

TEST(Lexer, KnowsTheCommentsOfOneProduct) {
    EXPECT_EQ(L"word:a|comment:# b", Tokens(L"a # b", 17));
    EXPECT_EQ(L"word:#a|word:b#c", Tokens(L"#a b#c", 8));
    EXPECT_EQ(L"word:b#c", Tokens(L"b#c", 4));
    EXPECT_EQ(L"operator:#|word:a", Tokens(L"#a"));
    EXPECT_EQ(L"word:a|comment:// b", Tokens(L"a // b", 40));
    EXPECT_EQ(L"word:a|operator:/|operator:/|word:b", Tokens(L"a // b", 27));
    EXPECT_EQ(L"text:#2026-01-31#|operator:#|word:a", Tokens(L"#2026-01-31# #a", 24));
}

TEST(Lexer, KnowsStrings) {
    EXPECT_EQ(L"text:'a''b'|text:''|word:c", Tokens(L"'a''b' '' c"));
    EXPECT_EQ(L"text:'a\\r\\n|text:b'|word:c", Tokens(L"'a\r\nb'c"));
    EXPECT_EQ(L"text:N'a'|text:x'0f'|text:B'1'|text:U&'\\0061'", Tokens(L"N'a' x'0f' B'1' U&'\\0061'"));
    EXPECT_EQ(L"word:an|text:'a'", Tokens(L"an'a'"));
    EXPECT_EQ(L"text:\"a\"", Tokens(L"\"a\"", 24));
    // A backslash is a character, but in these.
    EXPECT_EQ(L"text:'a\\'|word:b", Tokens(L"'a\\' b"));
    EXPECT_EQ(L"text:E'a\\'b'|word:c", Tokens(L"E'a\\'b'c", 27));
    EXPECT_EQ(L"text:E'a\\r\\n|text:\\'b'|word:c", Tokens(L"E'a\r\n\\'b'c", 27));
    // A line ends after a backslash too, whatever ends it.
    for (const wchar_t* const end : {L"\r", L"\n", L"\r\n"}) {
        const std::wstring first = std::wstring(L"E'a\\") + end;
        const std::wstring text = first + L"b'";
        Lexer lexer(text, DialectOf(27));
        Token token;
        ASSERT_TRUE(lexer.Next(token));
        EXPECT_EQ(first.size(), token.Length);
    }
    EXPECT_EQ(L"word:E|text:'a\\'|word:d|text:'c", Tokens(L"E'a\\'d'c", 8));
    EXPECT_EQ(L"text:'don\\'t'|operator:,|text:'C:\\'|operator:,|number:1", Tokens(L"'don\\'t', 'C:\\', 1", 17));
    EXPECT_EQ(L"text:G'a'|text:UX'0061'", Tokens(L"G'a' UX'0061'", 13));
}

TEST(Lexer, KnowsStringsWithDelimiters) {
    for (const long type : {4L, 28L, 0L}) {
        EXPECT_EQ(L"text:q'[it's]'|text:Q'{}}'|text:nq'!a'!'|word:b", Tokens(L"q'[it's]' Q'{}}' nq'!a'!' b", type));
        EXPECT_EQ(L"text:q'(a\\r\\n|text:)b)'|word:c", Tokens(L"q'(a\r\n)b)'c", type));
        EXPECT_EQ(L"word:q|text:' a'", Tokens(L"q' a'", type));
    }
    EXPECT_EQ(L"word:q|text:'[it'|word:s|operator:]|text:'", Tokens(L"q'[it's]'", 8));
}

TEST(Lexer, KnowsDollarQuotes) {
    for (const long type : {0L, 27L}) {
        EXPECT_EQ(L"text:$$a'b$$|word:c", Tokens(L"$$a'b$$c", type));
        EXPECT_EQ(L"text:$t1$ $$ $t2$\\r\\n|text: $t1$|word:c", Tokens(L"$t1$ $$ $t2$\r\n $t1$c", type));
        EXPECT_EQ(L"word:v$a$|word:$1|word:a", Tokens(L"v$a$ $1 a", type));
    }
    EXPECT_EQ(L"word:$$a|text:'b$$'", Tokens(L"$$a'b$$'", 4));
    // No tag is longer than 64 characters.
    const std::wstring tag = L"$" + std::wstring(64, L't') + L"$";
    EXPECT_EQ(L"text:" + tag + L"a" + tag, Tokens(tag + L"a" + tag, 27));
    const std::wstring longer = L"$" + std::wstring(65, L't') + L"$";
    EXPECT_NE(L"text:" + longer + L"a" + longer, Tokens(longer + L"a" + longer, 27));
}

TEST(Lexer, KnowsQuotedNames) {
    EXPECT_EQ(L"name:\"a\"\"b\"|name:`c d`|name:[e]]f]", Tokens(L"\"a\"\"b\" `c d` [e]]f]"));
    EXPECT_EQ(L"word:a|operator:[|number:1|operator:]|operator:[|number:2|operator:]", Tokens(L"a[1][2]"));
    EXPECT_EQ(L"name:U&\"a\"", Tokens(L"U&\"a\""));
    EXPECT_EQ(L"operator:[|word:a|operator:]|operator:`|word:b|operator:`", Tokens(L"[a] `b`", 27));
    EXPECT_EQ(L"name:[a\\r\\n|name:b]|word:c", Tokens(L"[a\r\nb]c", 8));
}

// Each sign of one product's SQL, in the SQL of all of them.
TEST(Lexer, KnowsTheSignsOfEachProduct) {
    static constexpr long Types[] = {0, 2, 4, 8, 13, 17, 24, 26, 27, 28, 40};
    struct Sign {
        const wchar_t* Text;
        const wchar_t* Tokens;
        std::vector<long> Of;
    };
    const Sign signs[] = {
        {L"/*/**/a*/b", L"comment:/*/**/a*/|word:b", {8, 13, 26, 27, 40}},
        {L"#a", L"comment:#a", {17}},
        {L"#a", L"word:#a", {4, 8, 13, 26, 40}},
        {L"a#b", L"word:a#b", {4, 8, 13, 26, 40}},
        {L"//a", L"comment://a", {40}},
        {L"[a]", L"name:[a]", {0, 8, 17, 24, 26, 40}},
        {L"`a`", L"name:`a`", {0, 17, 24, 40}},
        {L"#1#", L"text:#1#", {24}},
        {L"\"a\"", L"text:\"a\"", {24}},
        {L"$$a$$", L"text:$$a$$", {0, 27}},
        {L"E'\\'a'", L"text:E'\\'a'", {0, 27}},
        {L"q'[']'", L"text:q'[']'", {0, 4, 28}},
        {L"'a\\'b'", L"text:'a\\'b'", {17}},
        {L"G'a'", L"text:G'a'", {13}},
    };
    for (const Sign& sign : signs) {
        std::vector<long> found;
        for (const long type : Types) {
            if (Tokens(sign.Text, type) == sign.Tokens) found.push_back(type);
        }
        EXPECT_EQ(sign.Of, found) << std::string(sign.Text, sign.Text + std::char_traits<wchar_t>::length(sign.Text));
    }
}

TEST(Lexer, GoesOnFromAKeptState) {
    const Dialect& dialect = DialectOf(27);
    Lexer first(L"select $body$ it's\r\n", dialect);
    Token token{};
    while (first.Next(token)) {
    }
    EXPECT_EQ(State::In::Dollar, first.Now().Inside);
    EXPECT_EQ(L"$body$", first.Now().Tag);
    Lexer second(L"the end$body$ x", dialect, first.Now());
    ASSERT_TRUE(second.Next(token));
    EXPECT_EQ(Kind::Text, token.What);
    EXPECT_EQ(13U, token.Length);
    EXPECT_EQ(State(), second.Now());
}

// Tags that nobody writes are not looked for in every line.
TEST(Lexer, TakesLongTagsForNone) {
    const std::wstring tag = L"$" + std::wstring(70, L'a') + L"$";
    EXPECT_EQ(L"word:" + tag + L"|word:b", Tokens(tag + L" b", 27));
}

TEST(Lexer, KnowsTheTypesOfTheStandInHost) {
    // The names of the products stand in host/database/Product.cpp.
    EXPECT_TRUE(DialectOf(4).DelimitedTexts);
    EXPECT_TRUE(DialectOf(8).BracketNames);
    EXPECT_TRUE(DialectOf(17).HashComments);
    EXPECT_TRUE(DialectOf(24).DoubleQuoteTexts);
    EXPECT_TRUE(DialectOf(27).DollarQuotes);
    EXPECT_EQ(&DialectOf(0), &DialectOf(1));
    EXPECT_EQ(&DialectOf(0), &DialectOf(12345));
}

}  // namespace
