#include "sql/Lines.h"

#include <gtest/gtest.h>

namespace {

using namespace Sql;

class LinesTest : public testing::Test {
protected:
    LinesTest() {
        Words words(8);
        words.AddFunction(L"COUNT(x)");
        words.AddFunction(L"LEFT(s,n)");
        Model.SetLanguage(DialectOf(8), std::move(words));
    }
    // What is to be done, run by run: "position+length=value", marks as "!value".
    std::wstring Done(size_t most = 1000) {
        while (Model.Lex(Model.Count(), 100)) {
        }
        std::vector<Sql::Run> runs;
        while (Model.Next(0, Model.Count(), most, runs) < Model.Count()) {
        }
        std::wstring all;
        for (const Sql::Run& run : runs) {
            if (!all.empty()) all += L" ";
            all += std::to_wstring(run.Position) + L"+" + std::to_wstring(run.Length) + (run.Ground ? L"!" : L"=") +
                   std::to_wstring(run.Value);
        }
        EXPECT_TRUE(Model.Settled());
        return all;
    }
    Lines Model;
};

TEST_F(LinesTest, ATextHasItsColours) {
    Model.SetText(L"select count(a), 'b', 12 -- c\rfrom [d]", true);
    EXPECT_EQ(L"0+6=1 7+5=2 17+3=3 22+2=4 25+4=5 30+4=1 35+3=6", Done());
    EXPECT_EQ(L"", Done());
}

TEST_F(LinesTest, WordsAreLookedAtInTheirPlace) {
    Model.SetText(L"left join left(a, 1) x.select count", true);
    EXPECT_EQ(L"0+9=1 10+4=2 18+1=4", Done());
}

TEST_F(LinesTest, APointAndABracketCountForTheNextWordAlone) {
    Model.SetText(L"x.y select left\t(a", true);
    EXPECT_EQ(L"4+6=1 11+4=2", Done());
}

TEST_F(LinesTest, WhatIsNotKnownIsSetAlsoWhereItIsPlain) {
    Model.SetText(L"a select\rb", false);
    EXPECT_EQ(L"0+1=0 2+6=1 0+8!0 9+1=0 9+1!0", Done());
}

TEST_F(LinesTest, TypingWhatChangesNoTokenDoesNothing) {
    Model.SetText(L"select a\rfrom b", true);
    Done();
    Model.Replace(8, 0, L"b", true);
    EXPECT_EQ(L"", Done());
    // In a keyword, its colour goes.
    Model.Replace(6, 0, L"x", true);
    EXPECT_EQ(L"0+7=0", Done());
    Model.Replace(6, 1, L"", true);
    EXPECT_EQ(L"0+6=1", Done());
}

TEST_F(LinesTest, OnlyLinesWhoseTokensChangeAreDoneAgain) {
    Model.SetText(L"select 1\rselect 2\rselect 3 */\rselect 5", true);
    Done();
    // From here to the end of the comment in the third line.
    Model.Replace(7, 0, L"/*");
    EXPECT_EQ(L"7+3=5 11+8=5 20+11=5", Done());
    Model.Replace(7, 2, L"");
    EXPECT_EQ(L"7+1=4 9+6=1 16+1=4 18+6=1 25+1=4 27+2=0", Done());
}

TEST_F(LinesTest, LinesComeAndGo) {
    Model.SetText(L"a\rb\rc", true);
    Done();
    Model.Replace(1, 0, L"\rselect\r", false);
    EXPECT_EQ(5U, Model.Count());
    EXPECT_EQ(L"a\rselect\r\rb\rc", Model.Text());
    EXPECT_EQ(2U, Model.StartOf(1));
    EXPECT_EQ(8U, Model.EndOf(1));
    EXPECT_EQ(L"2+6=1", Done());
    Model.Replace(1, 8, L"");
    EXPECT_EQ(3U, Model.Count());
    EXPECT_EQ(2U, Model.StartOf(1));
    EXPECT_EQ(L"", Done());
    Model.Replace(0, 100, L"");
    EXPECT_EQ(1U, Model.Count());
    EXPECT_EQ(L"", Model.Text());
    EXPECT_EQ(0U, Model.LineAt(5));
}

TEST_F(LinesTest, OnlyTheLinesBeforeTheEndAreDone) {
    Model.SetText(L"select\rselect\rselect", true);
    while (Model.Lex(Model.Count(), 100)) {
    }
    std::vector<Sql::Run> runs;
    EXPECT_EQ(0U, Model.Next(0, 0, 9, runs));
    EXPECT_EQ(0U, runs.size());
    EXPECT_EQ(0U, Model.Next(0, 1, 9, runs));
    EXPECT_EQ(1U, Model.Next(0, 1, 9, runs));
    EXPECT_EQ(1U, runs.size());
    EXPECT_EQ(2U, Model.Next(2, 3, 9, runs));
    EXPECT_EQ(2U, Model.Next(2, 2, 9, runs));
    EXPECT_EQ(2U, runs.size());
    EXPECT_FALSE(Model.Settled());  // the one between
    EXPECT_EQ(1U, Model.Next(0, 100, 9, runs));
    EXPECT_EQ(3U, runs.size());
    EXPECT_EQ(7U, runs[2].Position);
    EXPECT_EQ(3U, Model.Next(0, 100, 9, runs));
    EXPECT_TRUE(Model.Settled());
}

TEST_F(LinesTest, APositionIsInALine) {
    Model.SetText(L"ab\r\rc", true);
    const size_t lines[] = {0, 0, 0, 1, 2, 2, 2};
    for (size_t at = 0; at < std::size(lines); ++at) EXPECT_EQ(lines[at], Model.LineAt(at)) << at;
    EXPECT_EQ(3U, Model.Count());
    EXPECT_EQ(0U, Model.StartOf(0));
    EXPECT_EQ(2U, Model.EndOf(0));
    EXPECT_EQ(3U, Model.StartOf(1));
    EXPECT_EQ(3U, Model.EndOf(1));
    EXPECT_EQ(4U, Model.StartOf(2));
    EXPECT_EQ(5U, Model.EndOf(2));
    Model.Replace(100, 100, L"d\r");  // behind the end is the end
    EXPECT_EQ(L"ab\r\rcd\r", Model.Text());
    EXPECT_EQ(4U, Model.Count());
    EXPECT_EQ(7U, Model.StartOf(3));
    EXPECT_EQ(7U, Model.EndOf(3));
}

TEST_F(LinesTest, LinesAreTakenApartInPortions) {
    Model.SetText(L"/*\r*/\ra\rb", true);
    EXPECT_FALSE(Model.IsLexed(0));
    EXPECT_TRUE(Model.Lex(0, 100));  // up to that line
    EXPECT_TRUE(Model.IsLexed(0));
    EXPECT_FALSE(Model.IsLexed(1));
    EXPECT_TRUE(Model.Lex(3, 3));  // as many characters as the line has
    EXPECT_TRUE(Model.IsLexed(1));
    EXPECT_FALSE(Model.IsLexed(2));
    EXPECT_FALSE(Model.Lex(3, 3));  // one more than a line: two
    EXPECT_TRUE(Model.IsLexed(3));
    ASSERT_EQ(1U, Model.TokensOf(1).size());
    EXPECT_EQ(Kind::Comment, Model.TokensOf(1)[0].What);
    EXPECT_EQ(Kind::Word, Model.TokensOf(2)[0].What);
}

TEST_F(LinesTest, ALineIsDoneInPortions) {
    Model.SetText(L"select 1 from 2 where 3", true);
    Model.Lex(0, 100);
    std::vector<Sql::Run> runs;
    EXPECT_EQ(0U, Model.Next(0, 1, 2, runs));
    EXPECT_EQ(2U, runs.size());
    EXPECT_EQ(0U, Model.Next(0, 1, 2, runs));
    EXPECT_EQ(4U, runs.size());
    EXPECT_FALSE(Model.Settled());
    EXPECT_EQ(0U, Model.Next(0, 1, 2, runs));
    EXPECT_EQ(1U, Model.Next(0, 1, 2, runs));
    EXPECT_EQ(6U, runs.size());
    EXPECT_TRUE(Model.Settled());
}

TEST_F(LinesTest, TheEndOfALongLineIsPlain) {
    Model.SetText(std::wstring(LongestColoured - 6, L' ') + L"select" + L" select", true);
    EXPECT_EQ(std::to_wstring(LongestColoured - 6) + L"+6=1", Done());
}

TEST_F(LinesTest, MarksComeAndGo) {
    Model.SetText(L"(a)\r(b)", true);
    EXPECT_EQ(L"", Done());
    Model.SetMarks({{0, 1, Mark::Pair}, {2, 1, Mark::Pair}});
    EXPECT_EQ(L"0+1!1 2+1!1", Done());
    Model.SetMarks({{0, 1, Mark::Pair}, {2, 1, Mark::Pair}});
    EXPECT_EQ(L"", Done());
    Model.SetMarks({{4, 1, Mark::Alone}});
    EXPECT_EQ(L"0+3!0 4+1!2", Done());
    // What is typed after a mark is marked, until it is told otherwise.
    Model.Replace(5, 0, L"x", true);
    EXPECT_EQ(L"5+1!0", Done());
    // An edit before the marks moves them: they are told again.
    Model.Replace(0, 0, L"x", false);
    Model.SetMarks({{5, 1, Mark::Alone}});
    EXPECT_EQ(L"0+1=0 0+1!0", Done());
    Model.SetMarks({});
    EXPECT_EQ(L"5+1!0", Done());
}

TEST_F(LinesTest, AMarkThatAnEditMovesGoes) {
    Model.SetText(L"(a)\r(b)", true);
    Done();
    Model.SetMarks({{0, 1, Mark::Pair}, {4, 1, Mark::Pair}});
    EXPECT_EQ(L"0+1!1 4+1!1", Done());
    // The one in the other line has moved with its text; the rest are as they were.
    Model.Replace(2, 0, L"x", true);
    Model.SetMarks({{0, 1, Mark::Pair}});
    EXPECT_EQ(L"5+1!0", Done());

    Model.SetText(L"abcd", true);
    Model.SetMarks({{2, 1, Mark::Same}});
    EXPECT_EQ(L"2+1!3", Done());
    Model.Replace(2, 0, L"x", true);
    EXPECT_EQ(L"3+1!0", Done());

    Model.SetText(L"ab\rcd", true);
    Model.SetMarks({{1, 3, Mark::Same}});
    EXPECT_EQ(L"1+1!3 3+1!3", Done());
}

TEST_F(LinesTest, AnotherLanguageColoursEverythingAgain) {
    Model.SetText(L"select top 1 a\rilike", true);
    EXPECT_EQ(L"0+10=1 11+1=4", Done());
    Model.SetLanguage(DialectOf(27), Words(27));
    EXPECT_EQ(L"7+3=0 15+5=1", Done());
    Model.Forget(true);
    EXPECT_EQ(L"0+6=1 11+1=4 15+5=1", Done());
}

}  // namespace
