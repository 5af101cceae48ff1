#include <gtest/gtest.h>

#include "Cases.h"
#include "Generator.h"
#include "sql/Lines.h"
#include "sql/Statements.h"

// What takes SQL apart: texts of everything that begins or ends something, in every dialect.
namespace {

using namespace Sql;

std::wstring AnySql(Random& random, size_t pieces) {
    static const std::vector<std::wstring> all = {
        L"'",        L"''",     L"\"",   L"`",        L"[",        L"]",       L"--",         L"/*",        L"*/",
        L"//",       L"#",      L"$$",   L"$a$",      L"$",        L"q'[",     L"]'",         L"nq'!",      L"!'",
        L"E'",       L"\\'",    L"\\",   L"N'",       L"U&'",      L"U&\"",    L"1",          L"1.5e",      L"..",
        L".5",       L"0x1f",   L"a",    L"b_1",      L"@x",       L"#t",      L"\r\n",       L"\r",        L"\n",
        L" ",        L"\t",     L";",    L";",        L"(",        L")",       L"GO",         L"\r\n/\r\n", L"begin",
        L"end",      L"case",   L"if",   L"begin ",   L" end",     L"create ", L"procedure ", L" is ",      L" as ",
        L"/*/**/*/", L"\\\r\n", L"\\\r", L"E'\\\r\n", L"package ", L"body ",   L"trigger ",   L"declare ",  L"select ",
        L"count(",   L"left ",  L"tran "};
    std::wstring text;
    for (size_t left = random.Below(pieces + 1); left > 0; --left)
        text += random.OneIn(12) ? AnyText(random, 6) : random.Pick(all);
    return text;
}

long AnyType(Random& random) { return random.Pick({0L, 1L, 2L, 4L, 8L, 13L, 17L, 24L, 26L, 27L, 28L, 40L, 99L}); }

std::vector<Token> TokensOf(std::wstring_view text, const Dialect& dialect, State& state) {
    Lexer lexer(text, dialect, state);
    std::vector<Token> tokens;
    for (Token token; lexer.Next(token);) tokens.push_back(token);
    state = lexer.Now();
    return tokens;
}

bool Same(const std::vector<Token>& one, const std::vector<Token>& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](const Token& a, const Token& b) {
        return a.What == b.What && a.Start == b.Start && a.Length == b.Length;
    });
}

// The lines of a text with their ends.
std::vector<std::wstring_view> LinesOf(std::wstring_view text) {
    std::vector<std::wstring_view> lines;
    for (size_t start = 0; start < text.size();) {
        size_t end = text.find_first_of(L"\r\n", start);
        end = end == text.npos ? text.size() : end + (text.substr(end, 2) == L"\r\n" ? 2 : 1);
        lines.push_back(text.substr(start, end - start));
        start = end;
    }
    return lines;
}

}  // namespace

TEST(SqlFuzz, TokensJoinedAreTheText) {
    ForEachCase(600, [](Random& random) {
        const std::wstring text = AnySql(random, 60);
        State state;
        size_t at = 0;
        for (const Token& token : TokensOf(text, DialectOf(AnyType(random)), state)) {
            ASSERT_EQ(at, token.Start);
            ASSERT_LT(0U, token.Length);
            at += token.Length;
        }
        EXPECT_EQ(text.size(), at);
    });
}

TEST(SqlFuzz, LineByLineIsTheWhole) {
    ForEachCase(600, [](Random& random) {
        const Dialect& dialect = DialectOf(AnyType(random));
        std::wstring text = AnySql(random, 60);
        // As it stands, and after edits, the states of the lines before an edit being kept.
        std::vector<State> states{State()};
        size_t kept = 0;  // so many lines are known
        for (int edit = 0; edit < 4; ++edit) {
            State end;
            const std::vector<Token> whole = TokensOf(text, dialect, end);
            std::vector<Token> joined;
            const auto lines = LinesOf(text);
            states.resize(kept + 1);
            size_t start = 0;
            for (size_t line = 0; line < lines.size(); ++line) {
                State state = states[line];
                for (Token token : TokensOf(lines[line], dialect, state)) {
                    token.Start += start;
                    joined.push_back(token);
                }
                if (line < kept) {
                    EXPECT_EQ(states[line + 1], state);
                } else {
                    states.push_back(state);
                }
                start += lines[line].size();
            }
            EXPECT_TRUE(Same(whole, joined));
            EXPECT_EQ(end, states.back());
            // Without its end, a line leaves the same state behind.
            if (!lines.empty()) {
                const size_t line = random.Below(lines.size());
                State state = states[line];
                TokensOf(lines[line].substr(0, std::min(lines[line].find_first_of(L"\r\n"), lines[line].size())),
                         dialect, state);
                EXPECT_EQ(states[line + 1], state);
            }
            const size_t from = random.Below(text.size() + 1);
            // What begins before the place of the edit begins as before, unless a line end is joined to another one.
            kept = LinesOf(std::wstring_view(text).substr(0, from)).size();
            kept = kept > 1 ? kept - 2 : 0;
            text.replace(from, random.Below(std::min<size_t>(text.size() - from, 12) + 1), AnySql(random, 4));
            kept = std::min(kept, LinesOf(text).size());
        }
    });
}

TEST(SqlFuzz, StatementsAreInTheirOrder) {
    ForEachCase(600, [](Random& random) {
        const std::wstring text = AnySql(random, 80);
        const auto all = Statements(text, DialectOf(AnyType(random)));
        size_t behind = 0;
        for (const Statement& one : all) {
            ASSERT_LE(behind, one.Start);
            ASSERT_LT(one.Start, one.End);
            ASSERT_LE(one.End, one.Behind);
            if (one.Behind > one.End) {
                EXPECT_EQ(L';', text[one.Behind - 1]);
            }
            behind = one.Behind;
        }
        EXPECT_LE(behind, text.size());
        const Statement* const at = StatementAt(all, text, random.Below(text.size() + 2));
        EXPECT_EQ(all.empty(), at == nullptr);
    });
}

// An editor that does what the lines say shows every character, after any edits, as one that got the text at once does.
// What it takes for the colour of new characters is any, but for those that are typed inside a line.
TEST(SqlFuzz, EditsKeepTheColours) {
    ForEachCase(400, [](Random& random) {
        const long type = AnyType(random);
        Words words(type);
        words.AddFunction(L"COUNT(x)");
        words.AddFunction(L"LEFT(s)");
        struct Seen {
            unsigned char Colour = 0, Ground = 0;
            bool operator==(const Seen&) const = default;
        };
        const auto withCr = [](std::wstring text) {
            std::replace(text.begin(), text.end(), L'\n', L'\r');
            return text;
        };
        std::wstring text = withCr(AnySql(random, 60));
        std::vector<Seen> seen(text.size());
        Lines lines;
        lines.SetLanguage(DialectOf(type), words);
        lines.SetText(text, true);
        // Nothing that was never marked anywhere comes with a mark.
        const auto any = [&] {
            return Seen{static_cast<unsigned char>(random.Below(7)),
                        static_cast<unsigned char>(lines.MayHaveMarks() ? random.Below(4) : 0)};
        };
        const auto apply = [&](size_t steps) {
            std::vector<Sql::Run> runs;
            for (; steps > 0; --steps) {
                lines.Lex(lines.Count(), 20);
                if (!lines.IsLexed(lines.Count() - 1)) continue;
                lines.Next(random.Below(lines.Count()), lines.Count(), 3, runs);
            }
            for (const Sql::Run& run : runs) {
                for (size_t at = run.Position; at < run.Position + run.Length; ++at)
                    (run.Ground ? seen[at].Ground : seen[at].Colour) = run.Value;
            }
        };
        std::vector<Lines::Marked> marks;
        for (size_t edit = 0; edit < 12; ++edit) {
            apply(random.Below(8));
            const size_t at = random.Below(text.size() + 1);
            if (random.OneIn(2)) {
                const bool inLine = at > 0 && text[at - 1] != L'\r';
                const std::wstring typed(1, random.Pick({L'a', L'\'', L'*', L'/', L'-', L' ', L'\r', L'1'}));
                text.insert(at, typed);
                seen.insert(seen.begin() + static_cast<std::ptrdiff_t>(at), inLine ? seen[at - 1] : any());
                lines.Replace(at, 0, typed, true);
            } else {
                const size_t removed = random.Below(std::min<size_t>(text.size() - at, 20) + 1);
                const std::wstring inserted = withCr(random.OneIn(2) ? L"" : AnySql(random, 6));
                text.replace(at, removed, inserted);
                const auto place = seen.begin() + static_cast<std::ptrdiff_t>(at);
                seen.erase(place, place + static_cast<std::ptrdiff_t>(removed));
                std::vector<Seen> fresh(inserted.size());
                for (Seen& one : fresh) one = any();
                seen.insert(seen.begin() + static_cast<std::ptrdiff_t>(at), fresh.begin(), fresh.end());
                lines.Replace(at, removed, inserted);
            }
            marks.clear();
            for (size_t place = random.Below(10); random.OneIn(2) && place + 3 < text.size();
                 place += 3 + random.Below(9)) {
                marks.push_back({place, 1 + random.Below(3), random.Pick({Mark::Pair, Mark::Alone, Mark::Same})});
            }
            lines.SetMarks(marks);
        }
        while (lines.Lex(lines.Count(), 1000)) {
        }
        for (size_t step = 0; !lines.Settled() && step < 100000; ++step) apply(1);
        apply(10);
        EXPECT_TRUE(lines.Settled());
        EXPECT_EQ(text, lines.Text());

        Lines fresh;
        fresh.SetLanguage(DialectOf(type), words);
        fresh.SetText(text, true);
        fresh.SetMarks(marks);
        std::vector<Seen> expected(text.size());
        while (fresh.Lex(fresh.Count(), 1000)) {
        }
        std::vector<Sql::Run> runs;
        while (fresh.Next(0, fresh.Count(), 1000, runs) < fresh.Count()) {
        }
        for (const Sql::Run& run : runs) {
            for (size_t at = run.Position; at < run.Position + run.Length; ++at)
                (run.Ground ? expected[at].Ground : expected[at].Colour) = run.Value;
        }
        const auto isBlank = [](wchar_t c) {
            return c == L' ' || c == L'\t' || c == L'\v' || c == L'\f' || c == L'\xA0' || c == L'\xFEFF' ||
                   c == L'\x3000' || (c >= L'\x2000' && c <= L'\x200A');
        };
        for (size_t at = 0; at < text.size(); ++at) {
            if (text[at] == L'\r') continue;
            if (!isBlank(text[at])) {
                EXPECT_EQ(expected[at].Colour, seen[at].Colour) << at;
            }
            EXPECT_EQ(expected[at].Ground, seen[at].Ground) << at;
        }
    });
}
