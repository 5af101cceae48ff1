#include "host/demo/StatementSplitter.h"

#include <algorithm>

namespace {

constexpr size_t none = std::wstring_view::npos;

bool IsBlank(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r') || c == L'\xA0' || c == L'\xFEFF'; }

// Everything beyond ASCII counts as a letter: what matters is only where a word ends.
bool IsWordCharacter(wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9') || c == L'_' || c == L'$' ||
           c >= 0x80;
}

bool IsWord(std::wstring_view text, std::wstring_view capitals) {
    return text.size() == capitals.size() &&
           std::equal(text.begin(), text.end(), capitals.begin(),
                      [](wchar_t a, wchar_t b) { return (a >= L'a' && a <= L'z' ? a - L'a' + L'A' : a) == b; });
}

bool IsOneOf(std::wstring_view word, std::initializer_list<std::wstring_view> list) {
    return std::any_of(list.begin(), list.end(), [&](std::wstring_view entry) { return IsWord(word, entry); });
}

// Follows the words of one statement, to know where the ";" of a body is not its end.
class BodyTracker {
public:
    void Word(std::wstring_view word) {
        ++count_;
        if (count_ == 1) creates_ = IsWord(word, L"CREATE");
        // CREATE [OR REPLACE] [TEMPORARY] [DEFINER = ...] TRIGGER: the kind stands among the first words.
        if (creates_ && count_ <= 8 && !hasBody_) {
            if (IsOneOf(word, {L"TABLE", L"VIEW", L"INDEX"})) creates_ = false;
            hasBody_ = IsOneOf(word, {L"TRIGGER", L"PROCEDURE", L"FUNCTION", L"PACKAGE"});
        }
        if (!hasBody_) return;
        if (afterEnd_) {
            // END IF and its like close what opened no level here; END CASE closes the same level as END.
            afterEnd_ = false;
            if (IsOneOf(word, {L"IF", L"LOOP", L"WHILE", L"REPEAT", L"FOR"})) ++depth_;
            if (IsWord(word, L"CASE")) return;
        }
        if (IsOneOf(word, {L"BEGIN", L"CASE"})) ++depth_;
        if (IsWord(word, L"END")) {
            depth_ = std::max(0, depth_ - 1);
            afterEnd_ = true;
        }
    }
    // At a semicolon: whether the statement ends here.
    bool Ends() {
        afterEnd_ = false;
        return depth_ == 0;
    }
    void Reset() { *this = BodyTracker(); }

private:
    int count_ = 0;
    int depth_ = 0;
    bool creates_ = false;
    bool hasBody_ = false;
    bool afterEnd_ = false;
};

// The position behind a text that ends with `close`, in which a doubled `close` is a character. Two such texts in a row
// end at the same place, so doubling needs no look.
size_t BehindQuoted(std::wstring_view script, size_t start, wchar_t close) {
    const size_t end = script.find(close, start + 1);
    return end == none ? script.size() : end + 1;
}

// The position behind a dollar-quoted text that begins at `start`, or `none` when none begins there.
size_t BehindDollarQuoted(std::wstring_view script, size_t start) {
    const size_t second = script.find(L'$', start + 1);
    if (second == none) return none;
    const std::wstring_view tag = script.substr(start, second - start + 1);
    for (size_t i = 1; i + 1 < tag.size(); ++i) {
        if (!IsWordCharacter(tag[i]) || (i == 1 && tag[i] >= L'0' && tag[i] <= L'9')) return none;
    }
    const size_t end = script.find(tag, second + 1);
    return end == none ? script.size() : end + tag.size();
}

std::wstring_view Trimmed(std::wstring_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace

std::vector<std::wstring> SplitStatements(std::wstring_view script) {
    std::vector<std::wstring> statements;
    BodyTracker body;
    size_t start = 0;
    bool hasContent = false;
    const auto finish = [&](size_t end) {
        if (hasContent) statements.emplace_back(Trimmed(script.substr(start, end - start)));
        hasContent = false;
        body.Reset();
    };

    size_t i = 0;
    while (i < script.size()) {
        const wchar_t c = script[i];
        const wchar_t next = i + 1 < script.size() ? script[i + 1] : L'\0';
        if (c == L'-' && next == L'-') {
            i = std::min(script.find_first_of(L"\r\n", i), script.size());
            continue;
        }
        if (c == L'/' && next == L'*') {
            const size_t end = script.find(L"*/", i + 2);
            i = end == none ? script.size() : end + 2;
            continue;
        }
        if (c == L';' && body.Ends()) {
            finish(i);
            start = ++i;
            continue;
        }
        if (!IsBlank(c) && c != L';') hasContent = true;

        const bool afterWord =
            i > 0 && (IsWordCharacter(script[i - 1]) || script[i - 1] == L']' || script[i - 1] == L')');
        if (c == L'\'' || c == L'"' || c == L'`') {
            i = BehindQuoted(script, i, c);
        } else if (c == L'[' && !afterWord) {  // behind a word it is the index of an array
            i = BehindQuoted(script, i, L']');
        } else if (const size_t end = c == L'$' && !afterWord ? BehindDollarQuoted(script, i) : none; end != none) {
            i = end;
        } else if (IsWordCharacter(c)) {
            size_t end = i;
            while (end < script.size() && IsWordCharacter(script[end])) ++end;
            body.Word(script.substr(i, end - i));
            i = end;
        } else {
            ++i;
        }
    }
    finish(script.size());
    return statements;
}
