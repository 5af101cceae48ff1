#include "sql/CodeStrings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::wstring> Lines(const std::wstring& text) {
    std::vector<std::wstring> lines;
    std::wistringstream all(text);
    for (std::wstring line; std::getline(all, line, L'\n');) {
        if (!line.empty() && line.back() == L'\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

bool Fits(wchar_t c) { return c < 0x100; }

std::wstring Basic(const std::wstring& text) { return Sql::ToBasic(text, Fits).Code; }

std::wstring From(const std::wstring& code) { return Sql::FromCode(code).value_or(L"<none>"); }

TEST(ToBasicTest, ALineIsAString) {
    EXPECT_EQ(L"\"select 1\"", Basic(L"select 1"));
    EXPECT_EQ(L"\"select \"\"a b\"\" from t\"", Basic(L"select \"a b\" from t"));
    EXPECT_EQ(L"\"\"", Basic(L""));
}

TEST(ToBasicTest, LinesAreContinued) {
    EXPECT_EQ(
        L"\"select a\" & vbCrLf & _\r\n"
        L"    vbCrLf & _\r\n"
        L"    \"from t\"",
        Basic(L"select a\r\n\r\nfrom t"));
    EXPECT_EQ(L"\"a\" & vbCrLf", Basic(L"a\r\n"));
    EXPECT_EQ(L"\"a\" & vbLf & \"b\" & vbCr & \"c\" & vbTab & \"d\"", Basic(L"a\nb\rc\td"));
}

TEST(ToBasicTest, WhatBasicsEditorCannotHoldIsANumber) {
    EXPECT_EQ(L"\"a\" & ChrW(1488) & ChrW(1489) & \"b\"", Basic(L"a\u05D0\u05D1b"));
    EXPECT_EQ(L"ChrW(55357) & ChrW(56832)", Basic(L"\U0001F600"));
    EXPECT_EQ(L"\"a\" & ChrW(1) & \"b\"", Basic(L"a\u0001b"));
    EXPECT_EQ(L"\"a\" & ChrW(127) & \"b\"", Basic(L"a\x7F"
                                                  L"b"));
    EXPECT_EQ(L"ChrW(31) & \" \" & ChrW(127) & \"\u0080\u00FF\" & ChrW(256)", Basic(L"\x1F \x7F\u0080\u00FF\u0100"));
}

TEST(ToBasicTest, ALineAndAStatementAreNoLongerThanBasicTakes) {
    for (const wchar_t c : {L'x', L'"', L'\u05D0'}) {
        const std::wstring code = Basic(std::wstring(9000, c));
        for (const std::wstring& line : Lines(code)) EXPECT_LE(line.size(), 1023U);
        EXPECT_EQ(std::wstring(9000, c), From(code));
    }
    std::wstring text;
    for (int line = 0; line < 60; ++line) text += L"line " + std::to_wstring(line) + L"\r\n";
    const Sql::BasicText basic = Sql::ToBasic(text, Fits);
    EXPECT_EQ(3U, basic.Statements);
    int continued = 0;
    for (const std::wstring& line : Lines(basic.Code)) {
        const bool goesOn = line.ends_with(L" & _");
        continued = goesOn ? continued + 1 : 0;
        EXPECT_LE(continued, 24);
    }
    EXPECT_TRUE(basic.Code.starts_with(L"SQL = \"line 0\" & vbCrLf & _\r\n"));
    EXPECT_NE(std::wstring::npos, basic.Code.find(L"\r\nSQL = SQL & \"line 25\""));
    EXPECT_EQ(text, From(basic.Code));
}

TEST(ToBasicTest, TwentyFiveLinesAreOneExpression) {
    std::wstring text = L"0";
    for (int line = 1; line < 25; ++line) text += L"\r\n" + std::to_wstring(line);
    EXPECT_EQ(1U, Sql::ToBasic(text, Fits).Statements);
    EXPECT_TRUE(Basic(text).starts_with(L"\"0\""));
    EXPECT_EQ(2U, Sql::ToBasic(text + L"\r\n25", Fits).Statements);
}

TEST(FromCodeTest, Basic) {
    EXPECT_EQ(L"select a from t", From(L"sql = \"select a \" & _\r\n      \"from t\""));
    EXPECT_EQ(L"select \"x\"\r\nfrom t", From(L"SQL = \"select \"\"x\"\"\" & vbCrLf & \"from t\""));
    EXPECT_EQ(L"a\r\nb\tc\nd\re", From(L"\"a\" & vbNewLine & \"b\" & VBTAB & \"c\" & vbLf & \"d\" & vbCr & \"e\""));
    EXPECT_EQ(L"a\rb\u05D0", From(L"\"a\" & Chr$(13) & \"b\" & ChrW(&H5D0)"));
    EXPECT_EQ(L"a\u05D0", From(L"\"a\" & chrw(&h5d0)"));
    EXPECT_EQ(L"\U0001F600", From(L"ChrW(-10179) & ChrW(-8704) & \"\""));  // as a Basic's 16 bits have them
    EXPECT_EQ(L"one two", From(L"s = \"one \" ' it's \"not\" this\r\ns = s & \"two\""));
    EXPECT_EQ(L"C:\\new\\table", From(L"p = \"C:\\new\" & \"\\table\""));
    EXPECT_EQ(L"\"Order Details\"", From(L"\"\"\"Order Details\"\"\""));
    EXPECT_EQ(L"it's", From(L"x = \"it's\" & y"));
    EXPECT_EQ(L"a\r\nb\r\n", From(L"sb.AppendLine(\"a\")\nsb.AppendLine(\"b\")"));
    // A call without brackets ends with its line.
    EXPECT_EQ(L"a\r\nb\r\n", From(L"sb.AppendLine \"a\" & \"\"\nsb.AppendLine \"b\""));
}

TEST(FromCodeTest, CSharpAndJava) {
    EXPECT_EQ(L"select a\nfrom t", From(L"var s = \"select a\\n\" +\r\n    \"from t\";"));
    EXPECT_EQ(L"select \"a\" \\ \t\u05D0", From(L"s = \"select \\\"a\\\" \\\\ \\t\\u05D0\";"));
    EXPECT_EQ(L"select \"a\"\nfrom c:\\t", From(L"s = @\"select \"\"a\"\"\r\nfrom c:\\t\";"));
    EXPECT_EQ(L"where id = {id}", From(L"s = $\"where id = {id}\";"));
    EXPECT_EQ(L"one two", From(L"s = \"one \" // \"not\" this\r\n  + /* \"nor\" */ \"two\";"));
    EXPECT_EQ(L"a\r\nb", From(L"s = \"a\" + System.lineSeparator() + \"b\";"));
    EXPECT_EQ(L"a\r\nb", From(L"s = \"a\" + Environment.NewLine + \"b\";"));
    EXPECT_EQ(L"a,b", From(L"s = \"a\" + ',' + \"b\";"));
    EXPECT_EQ(L"\U0001F600", From(L"s = \"\\U0001F600\";"));
    EXPECT_EQ(L"AB1", From(L"s = \"\\101\\1021\";"));  // octal, three digits at the most
    EXPECT_EQ(L"x\n", From(L"if (a && b) s = \"x\\n\";"));
    EXPECT_EQ(L"a\r\nb\r\n", From(L"sb.AppendLine(\"a\"); sb.AppendLine(\"b\");"));
}

// The number of a character, in brackets behind Chr.
TEST(FromCodeTest, CharactersOfBasicHaveNumbers) {
    const auto character = [](const wchar_t* number) { return From(std::wstring(L"\"a\" & Chr(") + number + L")"); };
    EXPECT_EQ(L"aA", character(L"65"));
    EXPECT_EQ(L"aA", character(L"&H41"));
    EXPECT_EQ(L"aA", character(L"&h41"));
    EXPECT_EQ(L"a\u0001", character(L"&H1"));
    EXPECT_EQ(L"a\u0001", character(L"1"));
    EXPECT_EQ(L"a\uFFFF", character(L"65535"));
    EXPECT_EQ(L"a\uFFFF", character(L"&HFFFF"));
    EXPECT_EQ(L"a\u8000", character(L"-32768"));
    // None of them is a character.
    for (const wchar_t* const number : {L"0", L"65536", L"-32769", L"&Z41", L"&O41", L"&G1", L"&I1", L"&g1", L"&i1",
                                        L"&H", L"&H0", L"H41", L"xH41", L"xh41", L"x41", L""}) {
        EXPECT_EQ(L"a", character(number)) << testing::PrintToString(number);
    }
    EXPECT_EQ(L"a", From(L"\"a\" & Chr 65"));
    EXPECT_EQ(L"a", From(L"\"a\" & Chr(65"));
    EXPECT_EQ(L"a", From(L"\"a\" & Chr$"));
    EXPECT_EQ(L"A", From(L"Chr(65)"));
    EXPECT_EQ(L"A", From(L"chrw$(65)"));
    EXPECT_EQ(L"<none>", From(L"Chr(0)"));
}

TEST(FromCodeTest, EveryEscape) {
    const auto string = [](const std::wstring& inside) { return From(L"f(\"" + inside + L"\" + \"\");"); };
    EXPECT_EQ(L"\n|\r|\t| |\"|'|\\|q", string(L"\\n|\\r|\\t|\\s|\\\"|\\'|\\\\|\\q"));
    EXPECT_EQ(L"ab", string(L"a\\\nb"));  // the line goes on
    // Without a digit it is no escape.
    EXPECT_EQ(L"\\u|\\U|\\x|", string(L"\\u|\\U|\\x|"));
    EXPECT_EQ(L"\\ug\\xG\\U/\\x:\\u@\\x`", string(L"\\ug\\xG\\U/\\x:\\u@\\x`"));
    // The first and the last digit of each kind, and the most of them.
    EXPECT_EQ(L"\u0019\u00AF\u00af", string(L"\\u0019\\xAF\\u00af"));
    EXPECT_EQ(L"\u12345", string(L"\\u12345"));
    EXPECT_EQ(L"\u12345", string(L"\\x12345"));
    EXPECT_EQ(L"A5", string(L"\\U000000415"));
    EXPECT_EQ(L"\u0001g", string(L"\\x1g"));
    EXPECT_EQ(L"\u00078", string(L"\\78"));
    EXPECT_EQ(L"8|9|/", string(L"\\8|\\9|\\/"));
    EXPECT_EQ(L"\u01FF7", string(L"\\7777"));
    // An escape of zero writes no character, and neither does one above 10FFFF.
    EXPECT_EQ(L"|||", string(L"|\\0|\\u0000|"));
    EXPECT_EQ(L"\uFFFF", string(L"\\uFFFF"));
    EXPECT_EQ(L"\U00010000|\U0010FFFF", string(L"\\U00010000|\\U0010FFFF"));
    EXPECT_EQ(L"|", string(L"\\U00110000|"));
}

TEST(FromCodeTest, WhatIsWrittenBeforeAQuote) {
    EXPECT_EQ(L"a\\n\"b", From(L"s = @\"a\\n\"\"b\" + x;"));
    EXPECT_EQ(L"a\\n\"b", From(L"s = $@\"a\\n\"\"b\" + x;"));
    EXPECT_EQ(L"a\\n\"b", From(L"s = @$\"a\\n\"\"b\" + x;"));
    EXPECT_EQ(L"a\nb", From(L"s = $\"a\\nb\" + x;"));
    EXPECT_EQ(L"a\nb", From(L"s = $$\"a\\nb\" + x;"));
}

// What tells the languages apart where both could read the strings.
TEST(FromCodeTest, OneWordMakesItBasic) {
    const std::wstring string = L" \"a\\nb\"";
    EXPECT_EQ(L"a\nb", From(string));
    for (const wchar_t* const word : {L"DIM", L"Dim s =", L"_", L"s &", L"CHR", L"chrw"})
        EXPECT_EQ(L"a\\nb", From(word + string)) << testing::PrintToString(word);
    for (const auto& [word, text] : {std::pair{L"vbCrLf", L"\r\n"}, std::pair{L"vbNewLine", L"\r\n"},
                                     std::pair{L"vbLf", L"\n"}, std::pair{L"vbTab", L"\t"}})
        EXPECT_EQ(text + std::wstring(L"a\\nb"), From(word + string)) << testing::PrintToString(word);
    for (const wchar_t* const word : {L"DIMENSION", L"xDIM", L"DIM2", L"s &&", L"s_", L"Chris"})
        EXPECT_EQ(L"a\nb", From(word + string)) << testing::PrintToString(word);
    EXPECT_EQ(L"a\\nb", From(L"DIMENSION DIM" + string));  // the second one counts
    EXPECT_EQ(L"a\\nb", From(L"s && t &" + string));
}

TEST(FromCodeTest, OneSignMakesItAnotherLanguage) {
    EXPECT_EQ(L"a\\qb", From(L"\"a\\qb\""));
    for (const wchar_t* const sign : {L"+", L";", L"@", L"$"})
        EXPECT_EQ(L"aqb", From(L"\"a\\qb\" " + std::wstring(sign))) << testing::PrintToString(sign);
    EXPECT_EQ(L"a\nqb", From(L"\"a\\n\\qb\""));
    EXPECT_EQ(L"a\rqb", From(L"\"a\\r\\qb\""));
    EXPECT_EQ(L"a\tqb", From(L"\"a\\t\\qb\""));
    EXPECT_EQ(L"a\"qb", From(L"\"a\\\"\\qb\""));
}

TEST(FromCodeTest, BlocksOfText) {
    EXPECT_EQ(L"select \"a\"\r\n  from t",
              From(L"String s = \"\"\"\r\n    select \"a\"\r\n      from t\r\n    \"\"\";"));
    EXPECT_EQ(L"  a\r\n\r\n  b", From(L"var s = \"\"\"\"\n      a\n\n      b\n    \"\"\"\";"));
    EXPECT_EQ(L"a", From(L"s = \"\"\"\n    a\"\"\";"));
    // Two quotes at the end of a line are an empty string.
    EXPECT_EQ(L"select 1", From(L"String s = \"\"\r\n    + \"select 1\" + \"\";"));
}

TEST(FromCodeTest, AStringAlone) {
    EXPECT_EQ(L"select 1", From(L"\"select 1\""));
    EXPECT_EQ(L"a\nb", From(L"\"a\\nb\""));
    EXPECT_EQ(L"say \"x\"", From(L"\"say \"\"x\"\"\""));
    EXPECT_EQ(L"", From(L"\"\""));
}

TEST(FromCodeTest, WithoutStringsThereIsNothing) {
    EXPECT_EQ(L"<none>", From(L""));
    EXPECT_EQ(L"<none>", From(L"select a from t where b = 1"));
    EXPECT_EQ(L"<none>", From(L"' \"a comment\""));
}

TEST(FromCodeTest, AnyTextIsTaken) {
    const std::wstring pieces[] = {L"\"", L"\"\"\"", L"\\", L"\\u", L"\\x", L"'", L"@", L"$",    L"\n", L"\r",
                                   L"&",  L"ChrW(",  L")",  L"/*",  L"//",  L"a", L"_", L"0042", L" "};
    unsigned seed = 20261122;
    for (int round = 0; round < 20000; ++round) {
        std::wstring code;
        for (int piece = 0; piece < 12; ++piece) {
            seed = seed * 1664525U + 1013904223U;
            code += pieces[(seed >> 16) % std::size(pieces)];
        }
        const std::optional<std::wstring> text = Sql::FromCode(code);
        EXPECT_LE(text.value_or(L"").size(), 2 * code.size()) << testing::PrintToString(code);
    }
}

// Whatever is copied as Basic comes back from it.
TEST(FromCodeTest, WhatWasCopiedComesBack) {
    const wchar_t characters[] = L"ab \"'\\&_\r\n\t\u05D0;+@$/*vbCrLf(){}";
    unsigned seed = 7;
    for (int round = 0; round < 5000; ++round) {
        std::wstring text;
        for (int at = 0; at < 40; ++at) {
            seed = seed * 1664525U + 1013904223U;
            text += characters[(seed >> 16) % (std::size(characters) - 1)];
        }
        EXPECT_EQ(text, From(Basic(text))) << testing::PrintToString(Basic(text));
    }
}

}  // namespace
