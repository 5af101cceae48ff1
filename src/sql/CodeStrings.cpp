#include "sql/CodeStrings.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <vector>

#include "sql/Characters.h"

namespace Sql {
namespace {

// ---- To Basic

// What Basic's compiler takes is 1,023 characters in a line and 24 continuations in a statement.
constexpr size_t LongestLine = 1000;
constexpr size_t LongestLiteral = 500;
constexpr size_t MostLines = 25;

const wchar_t* ConstantFor(wchar_t c) noexcept {
    switch (c) {
        case L'\r':
            return L"vbCr";
        case L'\n':
            return L"vbLf";
        case L'\t':
            return L"vbTab";
        default:
            return nullptr;
    }
}

// The terms that are joined by "&", line by line.
std::vector<std::vector<std::wstring>> TermsOf(std::wstring_view text, bool (*fits)(wchar_t)) {
    std::vector<std::vector<std::wstring>> lines(1);
    std::wstring literal;
    const auto flush = [&] {
        if (!literal.empty()) lines.back().push_back(L"\"" + literal + L"\"");
        literal.clear();
    };
    const auto add = [&](std::wstring term) {
        flush();
        lines.back().push_back(std::move(term));
    };
    for (size_t at = 0; at < text.size(); ++at) {
        const wchar_t c = text[at];
        if (c == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n') {
            add(L"vbCrLf");
            lines.emplace_back();
            ++at;
            continue;
        }
        if (const wchar_t* const constant = ConstantFor(c)) {
            add(constant);
            continue;
        }
        if (c < L' ' || c == 0x7F || (c > 0x7F && !fits(c))) {
            add(L"ChrW(" + std::to_wstring(static_cast<unsigned>(c)) + L")");
            continue;
        }
        literal.append(c == L'"' ? 2 : 1, c);
        if (literal.size() >= LongestLiteral) flush();
    }
    flush();
    if (lines.size() > 1 && lines.back().empty()) lines.pop_back();
    if (lines.front().empty()) lines.front().emplace_back(L"\"\"");
    return lines;
}

// The same as lines of code that Basic takes, without what joins them.
std::vector<std::wstring> CodeLines(std::wstring_view text, bool (*fits)(wchar_t)) {
    std::vector<std::wstring> code;
    for (const std::vector<std::wstring>& terms : TermsOf(text, fits)) {
        std::wstring line;
        for (const std::wstring& term : terms) {
            if (!line.empty() && line.size() + term.size() > LongestLine) {
                code.push_back(std::move(line));
                line.clear();
            }
            line.append(line.empty() ? L"" : L" & ").append(term);
        }
        code.push_back(std::move(line));
    }
    return code;
}

}  // namespace

BasicText ToBasic(std::wstring_view text, bool (*fits)(wchar_t)) {
    const std::vector<std::wstring> lines = CodeLines(text, fits);
    BasicText basic;
    basic.Statements = (lines.size() + MostLines - 1) / MostLines;
    const bool variable = basic.Statements > 1;
    for (size_t at = 0; at < lines.size(); ++at) {
        const bool begins = at % MostLines == 0;
        const bool ends = at + 1 == lines.size() || (at + 1) % MostLines == 0;
        if (variable && begins) basic.Code += at == 0 ? L"SQL = " : L"SQL = SQL & ";
        if (!begins) basic.Code += L"    ";
        basic.Code += lines[at];
        if (!ends) basic.Code += L" & _";
        if (at + 1 < lines.size()) basic.Code += L"\r\n";
    }
    return basic;
}

// ---- From code

namespace {

bool IsWordCharacter(wchar_t c) noexcept { return std::iswalnum(c) != 0 || c == L'_'; }

std::wstring Capitals(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(), Capital);
    return text;
}

// Reads one language; what all have in common is here.
class CodeReader {
public:
    explicit CodeReader(std::wstring_view code) noexcept : code_(code) {}
    virtual ~CodeReader() = default;
    CodeReader(const CodeReader&) = delete;
    CodeReader& operator=(const CodeReader&) = delete;

    void Read() {
        while (at_ < code_.size()) {
            if (!ReadString()) ReadOther();
        }
        EndLine();
    }
    bool IsWellFormed() const noexcept { return wellFormed_; }
    bool HasStrings() const noexcept { return strings_ > 0; }
    const std::wstring& Text() const noexcept { return text_; }
    // The code without its strings and comments.
    const std::wstring& Outside() const noexcept { return outside_; }

protected:
    // Reads the string or the comment that begins at at_. Returns false when neither begins there.
    virtual bool ReadString() = 0;

    wchar_t Next(size_t further = 0) const noexcept {
        return at_ + further < code_.size() ? code_[at_ + further] : L'\0';
    }
    void SkipTo(size_t end) noexcept { at_ = std::min(end, code_.size()); }
    void SkipLine() noexcept { SkipTo(code_.find(L'\n', at_)); }

    std::wstring_view code_;
    size_t at_ = 0;
    std::wstring text_;
    std::wstring outside_;
    size_t strings_ = 0;
    bool wellFormed_ = true;

private:
    // A word that stands for characters, or anything else.
    void ReadOther() {
        const wchar_t c = Next();
        if (!IsWordCharacter(c)) {
            // The line that AppendLine appends ends with the call.
            if (c == L')' || c == L'\n') EndLine();
            outside_ += c;
            ++at_;
            return;
        }
        const size_t start = at_;
        while (at_ < code_.size() && IsWordCharacter(code_[at_])) ++at_;
        const std::wstring word(code_.substr(start, at_ - start));
        outside_ += word;
        const std::wstring basic = Capitals(word);
        if (basic == L"VBCRLF" || basic == L"VBNEWLINE" || word == L"NewLine" || word == L"lineSeparator")
            text_ += L"\r\n";
        else if (basic == L"VBCR")
            text_ += L'\r';
        else if (basic == L"VBLF")
            text_ += L'\n';
        else if (basic == L"VBTAB")
            text_ += L'\t';
        else if (basic == L"CHR" || basic == L"CHRW")
            ReadCharacter();
        else if (word == L"AppendLine")
            appending_ = true;
    }
    // The number in the brackets of Chr.
    void ReadCharacter() {
        size_t at = at_;
        if (at < code_.size() && code_[at] == L'$') ++at;
        if (at >= code_.size() || code_[at] != L'(') return;
        const size_t end = code_.find(L')', at);
        if (end == code_.npos) return;
        std::wstring number(code_.substr(at + 1, end - at - 1));
        int base = 10;
        if (number.size() > 2 && number[0] == L'&' && (number[1] == L'H' || number[1] == L'h')) {
            number.erase(0, 2);
            base = 16;
        }
        wchar_t* rest = nullptr;
        const long value = std::wcstol(number.c_str(), &rest, base);
        if (rest == number.c_str() || value == 0 || value < -32768 || value > 65535) return;
        text_ += static_cast<wchar_t>(value);
        ++strings_;
        outside_ += L"()";
        at_ = end + 1;
    }
    void EndLine() {
        if (appending_) text_ += L"\r\n";
        appending_ = false;
    }
    bool appending_ = false;
};

// Strings end with their line; a quote in them is doubled.
class BasicReader : public CodeReader {
public:
    using CodeReader::CodeReader;

protected:
    bool ReadString() override {
        if (Next() == L'\'') {
            SkipLine();
            return true;
        }
        if (Next() != L'"') return false;
        ++strings_;
        for (++at_; at_ < code_.size() && code_[at_] != L'\n'; ++at_) {
            if (code_[at_] == L'"') {
                if (Next(1) != L'"') {
                    ++at_;
                    return true;
                }
                ++at_;
            }
            text_ += code_[at_];
        }
        wellFormed_ = false;
        return true;
    }
};

// C# and Java: escapes, verbatim strings, blocks of text between three quotes.
class BracesReader : public CodeReader {
public:
    using CodeReader::CodeReader;

protected:
    bool ReadString() override {
        const wchar_t c = Next();
        if (c == L'/' && Next(1) == L'/') {
            SkipLine();
            return true;
        }
        if (c == L'/' && Next(1) == L'*') {
            const size_t end = code_.find(L"*/", at_ + 2);
            SkipTo(end == code_.npos ? end : end + 2);
            return true;
        }
        if (c == L'\'') {
            ReadQuoted(L'\'');
            return true;
        }
        // "@", "$" or both stand before the quote.
        size_t quote = at_;
        bool verbatim = false;
        while (quote < code_.size() && (code_[quote] == L'@' || code_[quote] == L'$') && quote < at_ + 2) {
            verbatim = verbatim || code_[quote] == L'@';
            ++quote;
        }
        if (quote >= code_.size() || code_[quote] != L'"') return false;
        outside_.append(code_.substr(at_, quote - at_));
        at_ = quote;
        ++strings_;
        if (!ReadBlock()) {
            if (verbatim) {
                ReadVerbatim();
            } else {
                ReadQuoted(L'"');
            }
        }
        return true;
    }

private:
    void ReadQuoted(wchar_t quote) {
        for (++at_; at_ < code_.size() && code_[at_] != L'\n';) {
            if (code_[at_] == quote) {
                ++at_;
                return;
            }
            if (code_[at_] == L'\\') {
                ReadEscape();
            } else {
                text_ += code_[at_++];
            }
        }
        wellFormed_ = false;
    }
    void ReadVerbatim() {
        for (++at_; at_ < code_.size(); ++at_) {
            if (code_[at_] == L'"') {
                if (Next(1) != L'"') {
                    ++at_;
                    return;
                }
                ++at_;
            }
            text_ += code_[at_];
        }
        wellFormed_ = false;
    }
    // Appends the character of a number with up to `most` digits. Returns false when no digit stands at at_.
    bool ReadNumber(int base, size_t most) {
        unsigned long value = 0;
        size_t digits = 0;
        for (; digits < most && at_ < code_.size(); ++digits, ++at_) {
            const wchar_t c = code_[at_];
            const int digit = c >= L'0' && c <= L'9'   ? c - L'0'
                              : c >= L'a' && c <= L'f' ? c - L'a' + 10
                              : c >= L'A' && c <= L'F' ? c - L'A' + 10
                                                       : 99;
            if (digit >= base) break;
            value = value * static_cast<unsigned long>(base) + static_cast<unsigned long>(digit);
        }
        if (digits == 0) return false;
        if (value >= 0x10000 && value < 0x110000) {
            text_ += static_cast<wchar_t>(0xD800 + ((value - 0x10000) >> 10));
            text_ += static_cast<wchar_t>(0xDC00 + (value & 0x3FF));
        } else if (value > 0 && value < 0x10000) {
            text_ += static_cast<wchar_t>(value);
        }
        return true;
    }
    void ReadEscape() {
        ++at_;
        const wchar_t c = Next();
        if (c >= L'0' && c <= L'7') {
            ReadNumber(8, 3);
            return;
        }
        if (at_ < code_.size()) ++at_;
        switch (c) {
            case L'\0':
            case L'\n':  // the line goes on
                break;
            case L'n':
                text_ += L'\n';
                break;
            case L'r':
                text_ += L'\r';
                break;
            case L't':
                text_ += L'\t';
                break;
            case L's':
                text_ += L' ';
                break;
            case L'u':
                if (!ReadNumber(16, 4)) text_ += L"\\u";
                break;
            case L'U':
                if (!ReadNumber(16, 8)) text_ += L"\\U";
                break;
            case L'x':
                if (!ReadNumber(16, 4)) text_ += L"\\x";
                break;
            default:
                text_ += c;
                break;
        }
    }
    // Three quotes or more with nothing behind them in their line.
    bool ReadBlock() {
        size_t quotes = 0;
        while (Next(quotes) == L'"') ++quotes;
        const size_t first = code_.find_first_not_of(L" \t", at_ + quotes);
        if (quotes < 3 || first == code_.npos || code_[first] != L'\n') return false;
        const std::wstring delimiter(quotes, L'"');
        const size_t end = code_.find(delimiter, first);
        if (end == code_.npos) return false;
        // What all lines begin with, the one of the closing quotes too, is the code's own indentation.
        std::vector<std::wstring_view> lines;
        for (size_t start = first + 1; start <= end;) {
            const size_t stop = std::min(code_.find(L'\n', start), end);
            lines.push_back(code_.substr(start, stop - start));
            start = stop + 1;
        }
        size_t indent = std::wstring::npos;
        for (size_t line = 0; line < lines.size(); ++line) {
            const size_t blanks = std::min(lines[line].find_first_not_of(L" \t"), lines[line].size());
            if (blanks < lines[line].size() || line + 1 == lines.size()) indent = std::min(indent, blanks);
        }
        // The closing quotes in a line of their own end the line before.
        if (!lines.empty() && lines.back().find_first_not_of(L" \t") == lines.back().npos) lines.pop_back();
        for (size_t line = 0; line < lines.size(); ++line) {
            if (line > 0) text_ += L"\r\n";
            text_ += lines[line].substr(std::min(indent, lines[line].size()));
        }
        at_ = end + quotes;
        return true;
    }
};

bool HasWord(const std::wstring& text, std::wstring_view word) {
    for (size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1)) {
        if ((at == 0 || !IsWordCharacter(text[at - 1])) &&
            (at + word.size() == text.size() || !IsWordCharacter(text[at + word.size()]))) {
            return true;
        }
    }
    return false;
}

bool LooksLikeBasic(const CodeReader& basic, const CodeReader& braces, std::wstring_view code) {
    if (basic.IsWellFormed() != braces.IsWellFormed()) return basic.IsWellFormed();
    const std::wstring outside = Capitals(basic.Outside());
    for (size_t at = outside.find(L'&'); at != outside.npos; at = outside.find(L'&', at + 1)) {
        if (at + 1 < outside.size() && outside[at + 1] == L'&') {
            ++at;
        } else {
            return true;
        }
    }
    for (const wchar_t* const word : {L"VBCRLF", L"VBNEWLINE", L"VBLF", L"VBTAB", L"CHR", L"CHRW", L"DIM", L"_"}) {
        if (HasWord(outside, word)) return true;
    }
    if (braces.Outside().find_first_of(L"+;@$") != std::wstring::npos) return false;
    // A string alone: only one with doubled quotes, or without the escapes that SQL has a use for, is Basic's.
    return code.find(L"\\n") == code.npos && code.find(L"\\r") == code.npos && code.find(L"\\\"") == code.npos &&
           code.find(L"\\t") == code.npos;
}

}  // namespace

std::optional<std::wstring> FromCode(std::wstring_view given) {
    std::wstring code;
    code.reserve(given.size());
    for (size_t at = 0; at < given.size(); ++at) {
        if (given[at] != L'\r') {
            code += given[at];
        } else if (at + 1 == given.size() || given[at + 1] != L'\n') {
            code += L'\n';
        }
    }
    BasicReader basic(code);
    BracesReader braces(code);
    basic.Read();
    braces.Read();
    const CodeReader& reader = LooksLikeBasic(basic, braces, code) ? static_cast<const CodeReader&>(basic) : braces;
    if (!reader.HasStrings()) return std::nullopt;
    return reader.Text();
}

}  // namespace Sql
