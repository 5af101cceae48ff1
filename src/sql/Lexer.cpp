#include "sql/Lexer.h"

#include <algorithm>
#include <array>

#include "sql/Characters.h"

namespace Sql {

namespace {

enum Class : unsigned char {
    Other = 0,
    Blank = 1,
    LineEnd = 2,
    Letter = 4,  // begins a word
    Digit = 8,
    Inside = 16,  // goes on in a word
};

constexpr std::array<unsigned char, 128> Classes = [] {
    std::array<unsigned char, 128> classes{};
    for (const char c : {' ', '\t', '\v', '\f'}) classes[static_cast<size_t>(c)] = Blank;
    for (const char c : {'\r', '\n'}) classes[static_cast<size_t>(c)] = LineEnd;
    for (char c = 'a'; c <= 'z'; ++c) classes[static_cast<size_t>(c)] = Letter | Inside;
    for (char c = 'A'; c <= 'Z'; ++c) classes[static_cast<size_t>(c)] = Letter | Inside;
    for (char c = '0'; c <= '9'; ++c) classes[static_cast<size_t>(c)] = Digit | Inside;
    for (const char c : {'_', '$', '@'}) classes[static_cast<size_t>(c)] = Letter | Inside;
    return classes;
}();

// Everything beyond ASCII except blanks counts as a letter: only the end of a word matters.
constexpr unsigned char ClassOf(wchar_t c) noexcept {
    if (c < 128) return Classes[static_cast<size_t>(c)];
    if (c == L'\xA0' || c == L'\xFEFF' || c == L'\x3000' || (c >= L'\x2000' && c <= L'\x200A')) return Blank;
    return Letter | Inside;
}

constexpr bool IsDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }

constexpr bool IsLetter(wchar_t c) noexcept { return (ClassOf(c) & Letter) != 0; }

constexpr wchar_t Small(wchar_t c) noexcept { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c | 0x20) : c; }

// A longer tag is not recognised, because it would have to be searched for in every line.
constexpr size_t LongestTag = 64;

// Whether two characters are one operator.
constexpr bool IsPair(wchar_t first, wchar_t second) noexcept {
    switch (second) {
        case L'=':
            return first == L'<' || first == L'>' || first == L'!' || first == L':' || first == L'^' || first == L'+' ||
                   first == L'-';
        case L'>':
            return first == L'<' || first == L'=' || first == L'-';
        case L'|':
        case L':':
        case L'*':
        case L'.':
        case L'&':
            return first == second;
        default:
            return false;
    }
}

}  // namespace

size_t Lexer::BehindLineEnd(size_t at) const noexcept {
    return at + (text_[at] == L'\r' && At(at + 1) == L'\n' ? 2 : 1);
}

void Lexer::ToLineEnd() noexcept {
    size_t end = at_;
    for (const wchar_t* const text = text_.data(); end < text_.size() && !IsLineEnd(text[end]);) ++end;
    at_ = end;
}

// After a word, a closing bracket begins no name and no quoted text.
bool Lexer::BehindWord() const noexcept {
    if (at_ == 0) return false;
    const wchar_t before = text_[at_ - 1];
    return (ClassOf(before) & Inside) != 0 || before == L']' || before == L')' ||
           (dialect_.HashNames && before == L'#');
}

bool Lexer::Next(Token& token) {
    if (at_ == text_.size()) return false;
    token.Start = at_;
    token.What = state_.Inside == State::In::Nothing ? Begin() : GoOn();
    token.Length = at_ - token.Start;
    return true;
}

// To the end of what is open, or of the line.
Kind Lexer::GoOn() {
    const Kind what = state_.What;
    const size_t size = text_.size();
    const auto over = [&] {
        state_.Inside = State::In::Nothing;
        state_.What = Kind::Blank;
        state_.Backslash = false;
        state_.Close = L'\0';
        if (!state_.Tag.empty()) state_.Tag.clear();
        return what;
    };
    switch (state_.Inside) {
        case State::In::Comment:
            for (; at_ < size; ++at_) {
                const wchar_t c = text_[at_];
                if (c == L'*' && At(at_ + 1) == L'/') {
                    at_ += 2;
                    if (--state_.Depth == 0) return over();
                    --at_;
                } else if (c == L'/' && dialect_.NestedComments && At(at_ + 1) == L'*') {
                    ++state_.Depth;
                    ++at_;
                } else if (IsLineEnd(c)) {
                    break;
                }
            }
            break;
        case State::In::Quoted:
            for (; at_ < size; ++at_) {
                const wchar_t c = text_[at_];
                if (c == state_.Close) {
                    if (At(at_ + 1) != c) {
                        ++at_;
                        return over();
                    }
                    ++at_;
                } else if (c == L'\\') {
                    const wchar_t next = At(at_ + 1);
                    if (state_.Backslash) {
                        if (at_ + 1 < size && !IsLineEnd(next)) ++at_;
                    } else if (dialect_.BackslashQuotes && next == state_.Close && at_ + 2 < size &&
                               IsLetter(text_[at_ + 2])) {
                        ++at_;
                    }
                } else if (IsLineEnd(c)) {
                    break;
                }
            }
            break;
        case State::In::Delimited:
            for (; at_ < size; ++at_) {
                const wchar_t c = text_[at_];
                if (c == state_.Close && At(at_ + 1) == L'\'') {
                    at_ += 2;
                    return over();
                }
                if (IsLineEnd(c)) break;
            }
            break;
        default:  // Dollar
            for (; at_ < size; ++at_) {
                const wchar_t c = text_[at_];
                if (c == L'$' && text_.compare(at_, state_.Tag.size(), state_.Tag) == 0) {
                    at_ += state_.Tag.size();
                    return over();
                }
                if (IsLineEnd(c)) break;
            }
            break;
    }
    if (at_ < size) at_ = BehindLineEnd(at_);
    return what;
}

Kind Lexer::BeginQuoted(Kind what, wchar_t close, bool backslash) {
    state_.Inside = State::In::Quoted;
    state_.What = what;
    state_.Close = close;
    state_.Backslash = backslash;
    return GoOn();
}

bool Lexer::BeginDollar() {
    size_t end = at_ + 1;
    while (end < text_.size() && text_[end] != L'$') {
        const wchar_t c = text_[end];
        if ((ClassOf(c) & Inside) == 0 || c == L'@' || (end == at_ + 1 && IsDigit(c))) return false;
        if (end - at_ > LongestTag) return false;
        ++end;
    }
    if (end >= text_.size()) return false;
    state_.Inside = State::In::Dollar;
    state_.What = Kind::Text;
    state_.Tag = text_.substr(at_, end + 1 - at_);
    at_ = end + 1;
    return true;
}

// A word of one or two characters that ends before `end`, or the string that it begins.
Kind Lexer::BeginWord(size_t end) {
    const size_t length = end - at_;
    const wchar_t next = At(end);
    if ((next == L'\'' || next == L'&')) {
        const wchar_t first = Small(text_[at_]);
        const wchar_t second = length == 2 ? Small(text_[at_ + 1]) : L'\0';
        if (next == L'&') {
            const wchar_t quote = At(end + 1);
            if (length == 1 && first == L'u' && (quote == L'\'' || quote == L'"')) {
                at_ = end + 2;
                return BeginQuoted(quote == L'\'' ? Kind::Text : Kind::Name, quote, false);
            }
        } else if (length == 1 && (first == L'n' || first == L'x' || first == L'b')) {
            at_ = end + 1;
            return BeginQuoted(Kind::Text, next, false);
        } else if (dialect_.EscapeTexts && length == 1 && first == L'e') {
            at_ = end + 1;
            return BeginQuoted(Kind::Text, next, true);
        } else if (dialect_.DelimitedTexts && (length == 1 ? first == L'q' : first == L'n' && second == L'q')) {
            const wchar_t open = At(end + 1);
            if (end + 1 < text_.size() && (ClassOf(open) & (Blank | LineEnd)) == 0) {
                state_.Inside = State::In::Delimited;
                state_.What = Kind::Text;
                state_.Close = open == L'['   ? L']'
                               : open == L'(' ? L')'
                               : open == L'{' ? L'}'
                               : open == L'<' ? L'>'
                                              : open;
                at_ = end + 2;
                return GoOn();
            }
        } else if (dialect_.GraphicTexts &&
                   (length == 1 ? first == L'g'
                                : second == L'x' && (first == L'g' || first == L'u' || first == L'b'))) {
            at_ = end + 1;
            return BeginQuoted(Kind::Text, next, false);
        }
    }
    at_ = end;
    return Kind::Word;
}

Kind Lexer::Number() {
    const auto digits = [this] {
        while (IsDigit(At(at_)) || (At(at_) == L'_' && IsDigit(At(at_ + 1)))) ++at_;
    };
    if (text_[at_] == L'0' && Small(At(at_ + 1)) == L'x') {
        at_ += 2;
    } else {
        digits();
        if (At(at_) == L'.' && At(at_ + 1) != L'.') {
            ++at_;
            digits();
        }
        if (Small(At(at_)) == L'e') {
            const bool sign = At(at_ + 1) == L'+' || At(at_ + 1) == L'-';
            if (IsDigit(At(at_ + (sign ? 2 : 1)))) {
                at_ += sign ? 2 : 1;
                digits();
            }
        }
    }
    // The type of the number, or a name that begins with digits.
    while (at_ < text_.size() && (ClassOf(text_[at_]) & Inside) != 0) ++at_;
    return Kind::Number;
}

Kind Lexer::Operator() {
    at_ += IsPair(text_[at_], At(at_ + 1)) ? 2 : 1;
    return Kind::Operator;
}

Kind Lexer::Begin() {
    const wchar_t c = text_[at_];
    const unsigned char type = ClassOf(c);
    const size_t size = text_.size();
    if ((type & Letter) != 0 || (c == L'#' && dialect_.HashNames)) {
        if (c == L'$' && dialect_.DollarQuotes && !BehindWord() && BeginDollar()) return GoOn();
        size_t end = at_ + 1;
        for (const wchar_t* const text = text_.data();; ++end) {
            while (end < size && (ClassOf(text[end]) & Inside) != 0) ++end;
            if (end == size || text[end] != L'#' || !dialect_.HashNames) break;
        }
        if (end - at_ <= 2) return BeginWord(end);
        at_ = end;
        return Kind::Word;
    }
    if ((type & (Blank | LineEnd)) != 0) {
        size_t end = at_;
        for (const wchar_t* const text = text_.data(); end < size && (ClassOf(text[end]) & Blank) != 0;) ++end;
        at_ = end < size && IsLineEnd(text_[end]) ? BehindLineEnd(end) : end;
        return Kind::Blank;
    }
    if ((type & Digit) != 0) return Number();
    const wchar_t next = At(at_ + 1);
    switch (c) {
        case L'\'':
            ++at_;
            return BeginQuoted(Kind::Text, c, false);
        case L'"':
            ++at_;
            return BeginQuoted(dialect_.DoubleQuoteTexts ? Kind::Text : Kind::Name, c, false);
        case L'`':
            if (!dialect_.BackquoteNames) return Operator();
            ++at_;
            return BeginQuoted(Kind::Name, c, false);
        case L'[':
            // After a word it is the index of an array.
            if (!dialect_.BracketNames || BehindWord()) return Operator();
            ++at_;
            return BeginQuoted(Kind::Name, L']', false);
        case L'-':
            if (next != L'-') return Operator();
            ToLineEnd();
            return Kind::Comment;
        case L'/':
            if (next == L'*') {
                state_.Inside = State::In::Comment;
                state_.What = Kind::Comment;
                state_.Depth = 1;
                at_ += 2;
                return GoOn();
            }
            if (next != L'/' || !dialect_.SlashComments) return Operator();
            ToLineEnd();
            return Kind::Comment;
        case L'#':
            if (dialect_.HashComments) {
                ToLineEnd();
                return Kind::Comment;
            }
            if (dialect_.HashDates) {
                size_t end = at_ + 1;
                while (end < size && text_[end] != L'#' && !IsLineEnd(text_[end])) ++end;
                if (end < size && text_[end] == L'#') {
                    at_ = end + 1;
                    return Kind::Text;
                }
            }
            return Operator();
        case L'.':
            if (IsDigit(next) && !(BehindWord() || (at_ > 0 && text_[at_ - 1] == L'.'))) return Number();
            return Operator();
        default:
            return Operator();
    }
}

}  // namespace Sql
