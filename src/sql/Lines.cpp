#include "sql/Lines.h"

#include <algorithm>

namespace Sql {

namespace {
constexpr wchar_t EndOfLine = L'\r';
constexpr unsigned char ColourBits = 0x0F;
constexpr unsigned char MarkBits = 0xF0;
constexpr char AnyColour = 0x0E;  // a blank has none that could be seen

char Byte(unsigned char value) noexcept { return static_cast<char>(value); }
unsigned char Value(char byte) noexcept { return static_cast<unsigned char>(byte); }
}  // namespace

Lines::Lines() : dialect_(&DialectOf(0)), lines_(1) {}

void Lines::SetLanguage(const Dialect& dialect, Words words) {
    dialect_ = &dialect;
    words_ = std::move(words);
    for (Line& line : lines_) line.Unlexed = line.Unshown = true;
    unlexed_ = unshown_ = 0;
}

void Lines::SetText(std::wstring_view text, bool plain) {
    text_ = text;
    marks_.clear();
    lines_.clear();
    lines_.emplace_back();
    for (size_t at = text_.find(EndOfLine); at != text_.npos; at = text_.find(EndOfLine, at + 1)) {
        lines_.emplace_back().Start = static_cast<uint32_t>(at + 1);
    }
    unlexed_ = 0;
    Forget(plain);
}

void Lines::Forget(bool plain) {
    shown_.assign(text_.size(), Byte(plain ? 0 : Unknown | Unknown << 4));
    for (Line& line : lines_) {
        line.Unshown = true;
        line.Marks = !plain;
    }
    anyMarks_ = !plain;
    unshown_ = 0;
}

size_t Lines::EndOf(size_t line) const noexcept {
    return line + 1 < lines_.size() ? lines_[line + 1].Start - size_t{1} : text_.size();
}

size_t Lines::LengthWithEnd(size_t line) const noexcept {
    return (line + 1 < lines_.size() ? size_t{lines_[line + 1].Start} : text_.size()) - lines_[line].Start;
}

size_t Lines::LineAt(size_t position) const noexcept {
    const auto behind = std::upper_bound(lines_.begin(), lines_.end(), position,
                                         [](size_t at, const Line& line) { return at < line.Start; });
    return static_cast<size_t>(behind - lines_.begin()) - 1;
}

void Lines::Touch(size_t line) noexcept {
    lines_[line].Unshown = true;
    unshown_ = std::min(unshown_, line);
}

void Lines::Replace(size_t position, size_t removed, std::wstring_view inserted, bool typed) {
    position = std::min(position, text_.size());
    removed = std::min(removed, text_.size() - position);
    const size_t first = LineAt(position);
    const size_t last = LineAt(position + removed);
    // At the beginning of a line, and where something is replaced, the controls differ in what they take.
    const unsigned char shown =
        typed && removed == 0 && position > lines_[first].Start ? Value(shown_[position - 1]) : Unknown | Unknown << 4;
    text_.replace(position, removed, inserted);
    shown_.replace(position, removed, inserted.size(), Byte(shown));

    // The lines that begin in what came; the first one keeps its state, since it begins where it began.
    const size_t more = static_cast<size_t>(std::count(inserted.begin(), inserted.end(), EndOfLine));
    const size_t fewer = last - first;
    const auto behindFirst = lines_.begin() + static_cast<std::ptrdiff_t>(first) + 1;
    if (more > fewer) {
        std::vector<Line> added(more - fewer);
        lines_.insert(behindFirst, std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
    } else if (fewer > more) {
        lines_.erase(behindFirst, behindFirst + static_cast<std::ptrdiff_t>(fewer - more));
    }
    size_t line = first;
    for (size_t at = inserted.find(EndOfLine); at != inserted.npos; at = inserted.find(EndOfLine, at + 1)) {
        lines_[++line].Start = static_cast<uint32_t>(position + at + 1);
    }
    const uint32_t moved = static_cast<uint32_t>(inserted.size() - removed);  // modulo 2^32 where it is negative
    for (size_t at = line + 1; at < lines_.size(); ++at) lines_[at].Start += moved;
    for (size_t at = first; at <= line; ++at) {
        lines_[at].Unlexed = lines_[at].Unshown = true;
        lines_[at].Marks = anyMarks_;
    }
    // A line that was found unlexed or unshown before stands elsewhere now.
    unlexed_ = std::min(unlexed_, first);
    unshown_ = std::min(unshown_, first);
    // The marks before the place stay; the others have to be told again.
    if (std::erase_if(marks_, [&](const Marked& mark) { return mark.Position + mark.Length > position; }) > 0) {
        marksLost_ = true;
    }
}

std::vector<Token> Lines::TokensOf(size_t line) const {
    std::vector<Token> tokens;
    Lexer lexer(std::wstring_view(text_).substr(StartOf(line), EndOf(line) - StartOf(line)), *dialect_,
                lines_[line].Begin ? *lines_[line].Begin : State());
    for (Token token; lexer.Next(token);) tokens.push_back(token);
    return tokens;
}

void Lines::LexLine(size_t line) {
    Line& own = lines_[line];
    own.Unlexed = false;
    if (line + 1 == lines_.size()) return;
    Lexer lexer(std::wstring_view(text_).substr(own.Start, LengthWithEnd(line)), *dialect_,
                own.Begin ? *own.Begin : State());
    for (Token token; lexer.Next(token);) {
    }
    const State& end = lexer.Now();
    Line& next = lines_[line + 1];
    const bool nothing = end.Inside == State::In::Nothing;
    if (nothing ? next.Begin == nullptr : next.Begin != nullptr && *next.Begin == end) return;
    next.Begin = nothing ? nullptr : std::make_unique<State>(end);
    next.Unlexed = true;
    Touch(line + 1);
}

bool Lines::Lex(size_t line, size_t characters) {
    if (unlexed_ == 0) {
        if (lines_[0].Begin != nullptr) Touch(0);
        lines_[0].Begin.reset();
    }
    size_t left = characters;
    while (unlexed_ < lines_.size() && unlexed_ <= line) {
        if (lines_[unlexed_].Unlexed) {
            const size_t length = LengthWithEnd(unlexed_);
            LexLine(unlexed_);
            ++unlexed_;
            if (length >= left) break;
            left -= length;
        } else {
            ++unlexed_;
        }
    }
    return unlexed_ < lines_.size();
}

// One byte for each character of the line: its colour and mark.
void Lines::Wanted(size_t line, std::string& wanted) const {
    const size_t start = StartOf(line);
    const size_t end = EndOf(line);
    wanted.assign(end - start, AnyColour);
    const std::wstring_view text(text_.data() + start, std::min(end - start, LongestColoured));
    std::fill(wanted.begin() + static_cast<std::ptrdiff_t>(text.size()), wanted.end(), Byte(0));
    Lexer lexer(text, *dialect_, lines_[line].Begin ? *lines_[line].Begin : State());
    bool behindPoint = false;
    for (Token token; lexer.Next(token);) {
        Colour colour = Colour::Plain;
        switch (token.What) {
            case Kind::Blank:
                continue;
            case Kind::Comment:
                colour = Colour::Comment;
                break;
            case Kind::Text:
                colour = Colour::Text;
                break;
            case Kind::Name:
                colour = Colour::Name;
                break;
            case Kind::Number:
                colour = Colour::Number;
                break;
            case Kind::Operator:
                behindPoint = token.Length == 1 && text[token.Start] == L'.';
                break;
            case Kind::Word: {
                // After a point it is a column or a table, whatever it is called.
                if (behindPoint) break;
                const Words::Meaning meaning = words_.Of(text.substr(token.Start, token.Length));
                if (meaning == Words::Meaning::Nothing) break;
                size_t next = token.Start + token.Length;
                while (next < text.size() && (text[next] == L' ' || text[next] == L'\t')) ++next;
                const bool bracket = next < text.size() && text[next] == L'(';
                if (meaning == Words::Meaning::Function ||
                    (bracket && (meaning == Words::Meaning::Call || meaning == Words::Meaning::KeywordOrFunction))) {
                    colour = Colour::Function;
                } else if (meaning == Words::Meaning::Keyword || meaning == Words::Meaning::KeywordOrFunction) {
                    colour = Colour::Keyword;
                }
                break;
            }
        }
        if (token.What != Kind::Operator) behindPoint = false;
        std::fill_n(wanted.begin() + static_cast<std::ptrdiff_t>(token.Start), token.Length,
                    Byte(static_cast<unsigned char>(colour)));
    }
    const auto first = std::lower_bound(marks_.begin(), marks_.end(), start, [](const Marked& mark, size_t position) {
        return mark.Position + mark.Length <= position;
    });
    for (auto mark = first; mark != marks_.end() && mark->Position < end; ++mark) {
        const size_t from = std::max(mark->Position, start);
        const size_t to = std::min(mark->Position + mark->Length, end);
        for (size_t at = from; at < to; ++at) {
            char& byte = wanted[at - start];
            byte = Byte(static_cast<unsigned char>(Value(byte) | static_cast<unsigned char>(mark->What) << 4));
        }
    }
}

// One pass over a line: the runs in which it is shown with other bits than it is to be. False: there are more of them.
bool Lines::Differences(size_t start, const std::string& wanted, unsigned char bits, size_t most,
                        std::vector<Run>& runs) {
    const bool ground = bits == MarkBits;
    const auto any = [&](size_t at) { return !ground && (wanted[at] & ColourBits) == AnyColour; };
    const auto is = [bits](char byte) { return static_cast<unsigned char>(Value(byte) & bits); };
    for (size_t at = 0; at < wanted.size();) {
        const unsigned char value = is(wanted[at]);
        if (any(at) || is(shown_[start + at]) == value) {
            ++at;
            continue;
        }
        if (runs.size() >= most) return false;
        size_t end = at + 1;  // after the last character that has to change
        for (size_t next = end; next < wanted.size(); ++next) {
            if (any(next)) continue;
            if (is(wanted[next]) != value) break;
            if (is(shown_[start + next]) != value) end = next + 1;
        }
        for (size_t next = start + at; next < start + end; ++next) {
            shown_[next] = Byte(static_cast<unsigned char>((Value(shown_[next]) & ~bits) | value));
        }
        runs.push_back({start + at, end - at, ground, static_cast<unsigned char>(ground ? value >> 4 : value)});
        at = end;
    }
    return true;
}

size_t Lines::Next(size_t from, size_t to, size_t most, std::vector<Run>& runs) {
    to = std::min(to, lines_.size());
    most += runs.size();
    std::string wanted;
    for (size_t line = std::max(from, unshown_); line < to; ++line) {
        if (lines_[line].Unshown) {
            Wanted(line, wanted);
            const size_t before = runs.size();
            const size_t start = StartOf(line);
            bool done = Differences(start, wanted, ColourBits, most, runs);
            if (done && lines_[line].Marks) {
                done = Differences(start, wanted, MarkBits, most, runs);
                const auto isMarked = [](char byte) { return (Value(byte) & MarkBits) != 0; };
                lines_[line].Marks = !done || std::any_of(wanted.begin(), wanted.end(), isMarked);
            }
            lines_[line].Unshown = !done;
            if (done && line == unshown_) ++unshown_;
            if (runs.size() > before) return line;
        } else if (line == unshown_) {
            ++unshown_;
        }
    }
    return to;
}

void Lines::SetMarks(std::vector<Marked> marks) {
    const auto same = [](const Marked& one, const Marked& other) {
        return one.Position == other.Position && one.Length == other.Length && one.What == other.What;
    };
    if (!marksLost_ && std::equal(marks.begin(), marks.end(), marks_.begin(), marks_.end(), same)) return;
    for (size_t line = 0; anyMarks_ && line < lines_.size(); ++line) {
        if (lines_[line].Marks) Touch(line);
    }
    marksLost_ = false;
    marks_ = std::move(marks);
    if (!marks_.empty()) anyMarks_ = true;
    for (const Marked& mark : marks_) {
        const size_t last = LineAt(mark.Position + (mark.Length > 0 ? mark.Length - 1 : 0));
        for (size_t line = LineAt(mark.Position); line <= last; ++line) {
            lines_[line].Marks = true;
            Touch(line);
        }
    }
}

}  // namespace Sql
