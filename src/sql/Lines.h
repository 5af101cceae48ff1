#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "sql/Lexer.h"
#include "sql/Words.h"

namespace Sql {

enum class Colour : unsigned char { Plain, Keyword, Function, Text, Number, Comment, Name };
// How the ground of a character is marked.
enum class Mark : unsigned char { Nothing, Pair, Alone, Same };

// Characters that are to be shown in another way than they are.
struct Run {
    size_t Position;
    size_t Length;
    bool Ground;          // the mark is what changes, else the colour
    unsigned char Value;  // of Colour or Mark
};

// The characters of a line after so many are plain: what is written by hand has no such lines, and nobody sees them.
inline constexpr size_t LongestColoured = 4096;

// A copy of an editor's text that records, for each character, the colour it should have and the colour it is shown in.
// The editor reports changes and asks line by line what to recolour. Lines end with a single CR.
class Lines {
public:
    Lines();

    // The dialect and the words count for lines that are looked at from now on: all of them.
    void SetLanguage(const Dialect& dialect, Words words);

    // The text is another one. `plain`: it is shown in the plain colour throughout; else nothing is known of that.
    void SetText(std::wstring_view text, bool plain);
    // `removed` characters at a position gave way to others. `typed`: these were typed, and are shown as what stands
    // before them on their line.
    void Replace(size_t position, size_t removed, std::wstring_view inserted, bool typed = false);
    // Forgets how the whole text is shown, or records that it is plain.
    void Forget(bool plain);

    const std::wstring& Text() const noexcept { return text_; }
    size_t Count() const noexcept { return lines_.size(); }
    size_t StartOf(size_t line) const noexcept { return lines_[line].Start; }
    size_t EndOf(size_t line) const noexcept;  // before the CR
    size_t LineAt(size_t position) const noexcept;
    // The tokens of a line, places counted from its start; only when it and those before it are taken apart.
    std::vector<Token> TokensOf(size_t line) const;
    // Whether every line up to this one is taken apart.
    bool IsLexed(size_t line) const noexcept { return unlexed_ > line; }

    // Takes lines apart that begin in another way than before, up to `line` and at most about so many characters.
    // Returns whether there are more of them.
    bool Lex(size_t line, size_t characters);
    // Appends what is to be done in the first line from `from` to before `to` that is not shown as it should be, at
    // most `most` runs, and takes it for done. Returns the line; `to` when there is none. The lines must be taken
    // apart.
    size_t Next(size_t from, size_t to, size_t most, std::vector<Run>& runs);
    // Whether Lex and Next have nothing to do.
    bool Settled() const noexcept { return unlexed_ >= lines_.size() && unshown_ >= lines_.size(); }

    // The places that are marked from now on, in their order and not over each other.
    struct Marked {
        size_t Position;
        size_t Length;
        Mark What;
    };
    void SetMarks(std::vector<Marked> marks);
    // Whether a character may be shown with a mark.
    bool MayHaveMarks() const noexcept { return anyMarks_; }

private:
    struct Line {
        uint32_t Start = 0;
        bool Unlexed = true;
        bool Unshown = true;
        bool Marks = false;            // it may be shown with marks
        std::unique_ptr<State> Begin;  // null: nothing goes on
    };
    static constexpr unsigned char Unknown = 0x0F;

    void LexLine(size_t line);
    void Wanted(size_t line, std::string& wanted) const;
    bool Differences(size_t start, const std::string& wanted, unsigned char bits, size_t most, std::vector<Run>& runs);
    void Touch(size_t line) noexcept;
    size_t LengthWithEnd(size_t line) const noexcept;

    const Dialect* dialect_;
    Words words_;
    std::wstring text_;
    std::string shown_;  // of each character: the colour, and the mark shifted by 4
    std::vector<Line> lines_;
    std::vector<Marked> marks_;
    bool marksLost_ = false;  // an edit has taken some away
    bool anyMarks_ = false;   // a line may be shown with marks
    size_t unlexed_ = 0;      // no line before it is to be taken apart
    size_t unshown_ = 0;      // no line before it is to be shown in another way
};

}  // namespace Sql
