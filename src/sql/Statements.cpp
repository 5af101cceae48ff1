#include "sql/Statements.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "sql/Characters.h"
#include "sql/Lexer.h"

namespace Sql {

namespace {

bool IsWord(std::wstring_view text, std::wstring_view capitals) noexcept {
    return text.size() == capitals.size() &&
           std::equal(text.begin(), text.end(), capitals.begin(),
                      [](wchar_t a, wchar_t b) { return (a >= L'a' && a <= L'z' ? a - L'a' + L'A' : a) == b; });
}

bool IsOneOf(std::wstring_view word, std::initializer_list<std::wstring_view> list) noexcept {
    return std::any_of(list.begin(), list.end(), [&](std::wstring_view entry) { return IsWord(word, entry); });
}

// Follows the words of one statement to tell the ";" inside a body from the one that ends the statement.
class BodyTracker {
public:
    explicit BodyTracker(const Dialect& dialect) : dialect_(dialect) {}

    void Word(std::wstring_view word) {
        ++count_;
        // PL/SQL is compiled again by ALTER, and written by CREATE alone.
        if (count_ == 1)
            creates_ =
                IsWord(word, L"CREATE") || (IsWord(word, L"ALTER") && dialect_.Body != Dialect::Bodies::Declarations);
        // CREATE [OR REPLACE] [TEMPORARY] [DEFINER = ...] TRIGGER: the kind stands among the first words.
        if (creates_ && count_ <= 8 && !hasBody_) {
            if (IsOneOf(word, {L"TABLE", L"VIEW", L"INDEX"})) creates_ = false;
            if (creates_) FindBody(word);
        }
        if (dialect_.Body == Dialect::Bodies::Declarations) {
            if (count_ == 1 && IsOneOf(word, {L"BEGIN", L"DECLARE"})) hasBody_ = true;
            if (hasBody_) Declarations(word);
        } else if (hasBody_ || dialect_.BeginIsBlock) {
            Block(word);
        }
    }
    // At a semicolon: whether the statement ends here.
    bool Ends() noexcept {
        afterEnd_ = afterBegin_ = false;
        if (dialect_.Body == Dialect::Bodies::Declarations) {
            header_ = false;
            return levels_.empty() && waiting_ == 0;
        }
        if (dialect_.Body == Dialect::Bodies::BeginNeeded && hasBody_ && !begun_) return false;
        return depth_ == 0;
    }
    void Reset() {
        levels_.clear();
        count_ = depth_ = waiting_ = 0;
        creates_ = hasBody_ = begun_ = afterEnd_ = afterBegin_ = header_ = afterHeader_ = afterCompound_ = false;
    }

private:
    enum class Level : unsigned char { Package, Block };

    void FindBody(std::wstring_view word) {
        hasBody_ = IsOneOf(word, {L"TRIGGER", L"PROCEDURE", L"PROC", L"FUNCTION", L"PACKAGE"});
        // CREATE TYPE BODY; CREATE TYPE alone has none. Further on both words are names like others.
        if (dialect_.Body == Dialect::Bodies::Declarations && IsOneOf(word, {L"PACKAGE", L"BODY"})) {
            hasBody_ = true;
            levels_.push_back(Level::Package);
        }
        if (!hasBody_) return;
        if (dialect_.Body == Dialect::Bodies::EndNeeded && IsOneOf(word, {L"PROCEDURE", L"FUNCTION"})) {
            depth_ = 1;
            begun_ = true;
        }
    }

    void Block(std::wstring_view word) {
        if (afterEnd_) {
            // END IF and its like close what opened no level here; END CASE closes the same level as END.
            afterEnd_ = false;
            if (IsOneOf(word, {L"IF", L"LOOP", L"WHILE", L"REPEAT", L"FOR", L"FOREACH", L"EXCEPTION", L"CONVERSATION"}))
                ++depth_;
            if (IsWord(word, L"CASE")) return;
        }
        if (afterBegin_) {
            // BEGIN TRANSACTION opens no block.
            afterBegin_ = false;
            if (IsOneOf(word, {L"TRAN", L"TRANSACTION", L"DISTRIBUTED", L"DIALOG", L"CONVERSATION"})) {
                depth_ = std::max(0, depth_ - 1);
                begun_ = begunBefore_;
                return;
            }
        }
        if (IsOneOf(word, {L"BEGIN", L"CASE"})) ++depth_;
        if (IsWord(word, L"BEGIN")) {
            begunBefore_ = begun_;
            begun_ = true;
            afterBegin_ = dialect_.BeginIsBlock;
        } else if (IsWord(word, L"END")) {
            depth_ = std::max(0, depth_ - 1);
            afterEnd_ = true;
        }
    }

    // A subprogram's IS or AS waits for its BEGIN; a package has an END and perhaps one BEGIN between its subprograms
    // and that.
    void Declarations(std::wstring_view word) {
        if (afterEnd_) {
            afterEnd_ = false;
            if (IsOneOf(word, {L"IF", L"LOOP"})) return levels_.push_back(ended_);
            if (IsWord(word, L"CASE")) return;
        }
        if (afterHeader_) {
            // The body is somewhere else, in another language.
            afterHeader_ = false;
            if (IsOneOf(word, {L"LANGUAGE", L"EXTERNAL"})) --waiting_;
        }
        const bool compound = std::exchange(afterCompound_, IsWord(word, L"COMPOUND"));
        if (IsOneOf(word, {L"PROCEDURE", L"FUNCTION"})) {
            header_ = true;
        } else if (compound && IsWord(word, L"TRIGGER")) {
            // Each of its sections has a BEGIN and an END, and it has an END itself.
            levels_.push_back(Level::Block);
        } else if (IsOneOf(word, {L"IS", L"AS"})) {
            if (!header_) return;
            header_ = false;
            afterHeader_ = true;
            ++waiting_;
        } else if (IsWord(word, L"DECLARE")) {
            ++waiting_;
        } else if (IsWord(word, L"BEGIN")) {
            if (waiting_ > 0) {
                --waiting_;
                levels_.push_back(Level::Block);
            } else if (levels_.empty() || levels_.back() == Level::Block) {
                levels_.push_back(Level::Block);
            }
        } else if (IsWord(word, L"CASE")) {
            levels_.push_back(Level::Block);
        } else if (IsWord(word, L"END")) {
            ended_ = levels_.empty() ? Level::Block : levels_.back();
            afterEnd_ = !levels_.empty();
            if (!levels_.empty()) levels_.pop_back();
        }
    }

    const Dialect& dialect_;
    std::vector<Level> levels_;
    int count_ = 0;
    int depth_ = 0;
    int waiting_ = 0;
    bool creates_ = false;
    bool hasBody_ = false;
    bool begun_ = false;
    bool begunBefore_ = false;
    bool afterEnd_ = false;
    bool afterBegin_ = false;
    bool header_ = false;
    bool afterHeader_ = false;
    bool afterCompound_ = false;
    Level ended_ = Level::Block;
};

// Whether nothing but blanks and digits stands between a position and the end of its line.
bool EndsLine(std::wstring_view text, size_t at, bool digits) noexcept {
    for (; at < text.size() && !IsLineEnd(text[at]); ++at) {
        if (text[at] != L' ' && text[at] != L'\t' && !(digits && text[at] >= L'0' && text[at] <= L'9')) return false;
    }
    return true;
}

}  // namespace

std::vector<Statement> Statements(std::wstring_view text, const Dialect& dialect) {
    std::vector<Statement> statements;
    BodyTracker body(dialect);
    Lexer lexer(text, dialect);
    size_t start = 0;  // the first character that is no blank
    size_t end = 0;    // after the last one
    bool begun = false;
    bool hasContent = false;
    bool separator = false;  // the line is one that ends a batch
    bool lineBegins = true;  // nothing but blanks stands before the token on its line
    const auto finish = [&](size_t behind) {
        if (hasContent) statements.push_back({start, end, std::max(end, behind)});
        begun = hasContent = false;
        body.Reset();
    };

    for (Token token; lexer.Next(token);) {
        const std::wstring_view what = text.substr(token.Start, token.Length);
        if (token.What == Kind::Blank) {
            if (IsLineEnd(what.back())) {
                lineBegins = true;
                separator = false;
            }
            continue;
        }
        if (separator) continue;  // how often a batch is to run
        const bool first = lineBegins;
        lineBegins = IsLineEnd(what.back());
        if (token.What == Kind::Operator && what == L";" && body.Ends()) {
            finish(token.Start + 1);
            continue;
        }
        if (first && ((dialect.Separator == Dialect::Batch::Go && token.What == Kind::Word && IsWord(what, L"GO") &&
                       EndsLine(text, token.Start + token.Length, true)) ||
                      (dialect.Separator == Dialect::Batch::Slash && token.What == Kind::Operator && what == L"/" &&
                       EndsLine(text, token.Start + 1, false)))) {
            finish(0);
            separator = true;
            continue;
        }
        if (!begun) start = token.Start;
        begun = true;
        end = token.Start + token.Length;
        if (token.What != Kind::Comment && !(token.What == Kind::Operator && what == L";")) hasContent = true;
        if (token.What == Kind::Word) body.Word(what);
    }
    finish(0);
    // What was never closed may end in blanks.
    if (!statements.empty()) {
        Statement& last = statements.back();
        const bool ended = last.Behind > last.End;
        while (!ended && last.End > last.Start && (text[last.End - 1] == L' ' || IsLineEnd(text[last.End - 1])))
            --last.End;
        if (!ended) last.Behind = last.End;
    }
    return statements;
}

const Statement* StatementAt(const std::vector<Statement>& statements, std::wstring_view text, size_t position) {
    const auto next = std::upper_bound(statements.begin(), statements.end(), position,
                                       [](size_t at, const Statement& statement) { return at < statement.Start; });
    if (next == statements.begin()) return statements.empty() ? nullptr : &*next;
    const auto before = next - 1;
    if (position <= before->Behind || next == statements.end()) return &*before;
    const auto between = text.substr(before->Behind, std::min(position, text.size()) - before->Behind);
    return between.find_first_of(L"\r\n") == between.npos ? &*before : &*next;
}

}  // namespace Sql
