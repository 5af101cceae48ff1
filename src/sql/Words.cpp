#include "sql/Words.h"

#include "sql/Characters.h"
#include "sql/Keywords.h"

namespace Sql {

namespace {

constexpr size_t LongestWord = 32;

std::span<const std::wstring_view> KeywordsOf(long dbType) noexcept {
    switch (dbType) {
        case 2:
            return Keywords::Informix;
        case 4:
            return Keywords::Oracle;
        case 8:
        case 26:
            return Keywords::SqlServer;
        case 13:
            return Keywords::Db2;
        case 17:
            return Keywords::MySql;
        case 24:
            return Keywords::Access;
        case 27:
            return Keywords::Postgres;
        case 28:
            return Keywords::Firebird;
        case 40:
            return Keywords::SqlAnywhere;
        default:
            return Keywords::Everywhere;
    }
}

bool Contains(std::span<const std::wstring_view> words, std::wstring_view word) noexcept {
    return std::binary_search(words.begin(), words.end(), word);
}

}  // namespace

Words::Words(long dbType) : own_(KeywordsOf(dbType)) {}

void Words::AddFunction(std::wstring_view text) {
    const size_t bracket = text.find(L'(');
    std::wstring_view name = text.substr(0, bracket);
    while (!name.empty() && name.back() == L' ') name.remove_suffix(1);
    if (name.empty() || name.size() > LongestWord || name.find(L' ') != name.npos) return;
    std::wstring capitals(name);
    std::transform(capitals.begin(), capitals.end(), capitals.begin(), Capital);
    const auto at = std::lower_bound(functions_.begin(), functions_.end(), capitals,
                                     [](const Function& one, const std::wstring& other) { return one.Name < other; });
    if (at != functions_.end() && at->Name == capitals) {
        at->Bracket = at->Bracket && bracket != text.npos;
    } else {
        functions_.insert(at, {std::move(capitals), bracket != text.npos});
    }
}

std::vector<std::wstring_view> Words::Keywords() const {
    std::vector<std::wstring_view> all(std::begin(Keywords::Standard), std::end(Keywords::Standard));
    all.insert(all.end(), own_.begin(), own_.end());
    return all;
}

Words::Meaning Words::Of(std::wstring_view word) const noexcept {
    if (word.size() > LongestWord) return Meaning::Nothing;
    wchar_t capitals[LongestWord];
    std::transform(word.begin(), word.end(), capitals, Capital);
    const std::wstring_view key(capitals, word.size());
    const bool keyword = Contains(Keywords::Standard, key) || Contains(own_, key);
    const auto at = std::lower_bound(functions_.begin(), functions_.end(), key,
                                     [](const Function& one, std::wstring_view other) { return one.Name < other; });
    if (at == functions_.end() || at->Name != key) return keyword ? Meaning::Keyword : Meaning::Nothing;
    if (keyword) return Meaning::KeywordOrFunction;
    return at->Bracket ? Meaning::Call : Meaning::Function;
}

}  // namespace Sql
