#include "sql/Scope.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "sql/Lexer.h"
#include "sql/Statements.h"

namespace Sql {

namespace {

bool IsIdentifier(const Token& token) noexcept { return token.What == Kind::Word || token.What == Kind::Name; }

bool IsIgnored(const Token& token) noexcept { return token.What == Kind::Blank || token.What == Kind::Comment; }

// In ASCII, as keywords are.
bool Is(std::wstring_view token, std::wstring_view keyword) noexcept {
    return std::equal(token.begin(), token.end(), keyword.begin(), keyword.end(), [](wchar_t one, wchar_t other) {
        return (one >= L'a' && one <= L'z' ? static_cast<wchar_t>(one - L'a' + L'A') : one) == other;
    });
}

bool IsAny(std::wstring_view token, std::initializer_list<std::wstring_view> keywords) noexcept {
    return std::any_of(keywords.begin(), keywords.end(), [&](std::wstring_view keyword) { return Is(token, keyword); });
}

// Reads the tables out of one statement, token by token, blanks and comments left out.
class ScopeReader {
public:
    ScopeReader(std::wstring_view text, std::vector<Token> tokens, const Words& words)
        : text_(text), tokens_(std::move(tokens)), words_(words) {}

    std::vector<TableReference> Read() {
        for (; at_ < tokens_.size(); ++at_) {
            const std::wstring_view word = Text(at_);
            if (tokens_[at_].What == Kind::Operator) {
                Bracket(word);
                continue;
            }
            if (tokens_[at_].What != Kind::Word) continue;
            if (IsAny(word, {L"FROM", L"USING"})) {
                inList_.back() = true;
                Reference();
            } else if (IsAny(word, {L"JOIN", L"INTO", L"UPDATE", L"TABLE", L"APPLY"})) {
                Reference();
            } else if (IsAny(word, {L"SELECT", L"WHERE", L"GROUP", L"HAVING", L"ORDER", L"SET", L"VALUES", L"UNION",
                                    L"INTERSECT", L"EXCEPT", L"MINUS", L"WINDOW"})) {
                inList_.back() = false;
            }
        }
        return std::move(found_);
    }

private:
    std::wstring_view Text(size_t at) const noexcept {
        return at < tokens_.size() ? text_.substr(tokens_[at].Start, tokens_[at].Length) : std::wstring_view();
    }
    bool IsOperator(size_t at, std::wstring_view text) const noexcept {
        return at < tokens_.size() && tokens_[at].What == Kind::Operator && Text(at) == text;
    }
    // A keyword is no name, unless it is quoted.
    bool IsName(size_t at) const noexcept {
        if (at >= tokens_.size() || !IsIdentifier(tokens_[at])) return false;
        if (tokens_[at].What == Kind::Name) return true;
        const Words::Meaning meaning = words_.Of(Text(at));
        return meaning != Words::Meaning::Keyword && meaning != Words::Meaning::KeywordOrFunction;
    }

    void Bracket(std::wstring_view text) {
        if (text == L"(") {
            inList_.push_back(false);
        } else if (text == L")") {
            if (inList_.size() > 1) inList_.pop_back();
        } else if (text == L"," && inList_.back()) {
            Reference();
        }
    }

    // What follows the token at at_, when it is a table; leaves at_ on its last token.
    void Reference() {
        size_t at = at_ + 1;
        while (tokens_.size() > at && tokens_[at].What == Kind::Word &&
               IsAny(Text(at), {L"ONLY", L"LATERAL", L"IF", L"EXISTS", L"NOT"}))
            ++at;
        std::vector<std::wstring> names;
        while (at < tokens_.size() && IsIdentifier(tokens_[at]) && (!names.empty() || IsName(at))) {
            names.push_back(Unquoted(Text(at++)));
            if (!IsOperator(at, L".")) break;
            ++at;
        }
        // What ends with a point is still being written.
        if (names.empty() || IsOperator(at - 1, L".")) return;
        at_ = at - 1;
        if (IsOperator(at, L"(") && inList_.back()) return;  // a function that gives rows
        TableReference reference{names.size() > 1 ? names[names.size() - 2] : L"", names.back(), L""};
        if (at < tokens_.size() && tokens_[at].What == Kind::Word && Is(Text(at), L"AS")) ++at;
        if (IsName(at) && !IsOperator(at + 1, L".")) {
            reference.Alias = Unquoted(Text(at));
            at_ = at;
        }
        found_.push_back(std::move(reference));
    }

    std::wstring_view text_;
    std::vector<Token> tokens_;
    const Words& words_;
    size_t at_ = 0;
    std::vector<bool> inList_{false};  // of each open bracket: whether a comma leads to another table
    std::vector<TableReference> found_;
};

}  // namespace

std::wstring Unquoted(std::wstring_view token) {
    if (token.empty() || (token[0] != L'"' && token[0] != L'`' && token[0] != L'[')) return std::wstring(token);
    const wchar_t close = token[0] == L'[' ? L']' : token[0];
    token.remove_prefix(1);
    if (!token.empty() && token.back() == close) token.remove_suffix(1);
    std::wstring name;
    for (size_t at = 0; at < token.size(); ++at) {
        name += token[at];
        if (token[at] == close && at + 1 < token.size() && token[at + 1] == close) ++at;
    }
    return name;
}

NameAtCaret NameAt(std::wstring_view text, size_t caret, const Dialect& dialect) {
    NameAtCaret found;
    found.Start = found.End = caret = std::min(caret, text.size());
    Lexer lexer(text, dialect);
    std::vector<Token> before;  // the last tokens that end at the caret or before, blanks and comments left out
    Token token;
    while (lexer.Next(token) && token.Start < caret) {
        const size_t end = token.Start + token.Length;
        if (end >= caret) {
            const bool within = end > caret;
            const std::wstring_view it = text.substr(token.Start, token.Length);
            if ((token.What == Kind::Comment && (within || !it.starts_with(L"/*") || !it.ends_with(L"*/"))) ||
                (token.What == Kind::Text && (within || it.size() == 1 || it.back() != L'\''))) {
                found.IsCode = false;
                return found;
            }
            const bool closed =
                token.What == Kind::Name && it.size() > 1 && it.back() == (it[0] == L'[' ? L']' : it[0]);
            if (token.What == Kind::Word || (token.What == Kind::Name && (within || !closed))) {
                found.Start = token.Start;
                // What is not closed yet goes on to the end of the line, and says nothing about the name's end.
                found.End = token.What == Kind::Word || closed ? end : caret;
                found.Begun = Unquoted(text.substr(token.Start, caret - token.Start));
                found.Whole = Unquoted(text.substr(token.Start, found.End - token.Start));
                continue;
            }
        }
        if (!IsIgnored(token)) before.push_back(token);
        if (before.size() > 64) before.erase(before.begin(), before.begin() + 32);
    }
    // name . name . | from the caret to the left
    size_t at = before.size();
    while (at >= 2 && text.substr(before[at - 1].Start, before[at - 1].Length) == L"." &&
           IsIdentifier(before[at - 2])) {
        found.Qualifiers.insert(found.Qualifiers.begin(),
                                Unquoted(text.substr(before[at - 2].Start, before[at - 2].Length)));
        at -= 2;
    }
    return found;
}

std::vector<TableReference> TablesAt(std::wstring_view text, size_t caret, const Dialect& dialect, const Words& words) {
    const Statement* within = nullptr;
    const std::vector<Statement> all = Statements(text, dialect);
    for (const Statement& one : all) {
        // The blanks after a statement that nothing ends yet still belong to it.
        if (one.Start > caret) break;
        within = caret <= one.End || one.End == one.Behind ? &one : nullptr;
    }
    if (within == nullptr) return {};
    const std::wstring_view statement = text.substr(within->Start, within->End - within->Start);
    std::vector<Token> tokens;
    Lexer lexer(statement, dialect);
    Token token;
    while (lexer.Next(token)) {
        if (!IsIgnored(token)) tokens.push_back(token);
    }
    return ScopeReader(statement, std::move(tokens), words).Read();
}

}  // namespace Sql
