#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "sql/Dialect.h"

namespace Sql {

enum class Kind : unsigned char {
    Blank,    // white space; at most one line end, at its end
    Comment,  // with the characters that begin and end it
    Text,     // a string, with its quotes and what stands before them: N'x', q'[x]', $$x$$
    Name,     // a quoted name, with its quotes
    Number,
    Word,      // a name or a keyword
    Operator,  // everything else: one or two characters that belong together
};

struct Token {
    Kind What;
    size_t Start;
    size_t Length;
};

// What goes on over a line end. Two lines that begin in equal states and have the same characters have the same tokens.
struct State {
    enum class In : unsigned char { Nothing, Comment, Quoted, Delimited, Dollar };
    In Inside = In::Nothing;
    Kind What = Kind::Blank;  // of what goes on
    bool Backslash = false;   // Quoted: a backslash takes the character after it
    wchar_t Close = L'\0';    // Quoted, Delimited: the character that ends it
    unsigned Depth = 0;       // Comment: how many are open
    std::wstring Tag;         // Dollar: with both dollar signs
    bool operator==(const State&) const = default;
};

// Takes a text apart, from the first character to the last: the tokens joined are the text. A token does not go beyond
// its line; what goes on in the next one is a token of the same kind there. So a text can be taken apart line by line,
// each line with its end or without, from the state in which the one before has ended. CR LF, CR and LF are line ends.
// What is never closed reaches to the end of the text. Time grows with the text, whatever it holds.
class Lexer {
public:
    // The text must outlive the lexer. The text begins where a line does.
    Lexer(std::wstring_view text, const Dialect& dialect, State state = {})
        : text_(text), dialect_(dialect), state_(std::move(state)) {}

    // False: the text is at its end.
    bool Next(Token& token);
    // Between two lines: what goes on in the next one.
    const State& Now() const noexcept { return state_; }

private:
    wchar_t At(size_t at) const noexcept { return at < text_.size() ? text_[at] : L'\0'; }
    Kind GoOn();
    Kind Begin();
    Kind BeginWord(size_t end);
    Kind BeginQuoted(Kind what, wchar_t close, bool backslash);
    Kind Number();
    Kind Operator();
    bool BeginDollar();
    bool BehindWord() const noexcept;
    size_t BehindLineEnd(size_t at) const noexcept;
    void ToLineEnd() noexcept;

    std::wstring_view text_;
    const Dialect& dialect_;
    State state_;
    size_t at_ = 0;
};

}  // namespace Sql
