#include "editor/NameList.h"

#include <windows.h>

#include <algorithm>

#include "automation/Text.h"

void NameList::Add(std::wstring_view name, Kind what, size_t tag) {
    if (name.empty()) return;
    names_.push_back({static_cast<unsigned>(text_.size()), static_cast<unsigned>(name.size()), what, tag});
    text_.append(name);
}

void NameList::Sort() {
    capitals_ = UCase(text_);
    const auto isOfTheDatabase = [](const Name& name) { return name.What <= Kind::Schema; };
    std::stable_sort(names_.begin(), names_.end(), [&](const Name& one, const Name& other) {
        if (isOfTheDatabase(one) != isOfTheDatabase(other)) return isOfTheDatabase(one);
        const int order = Capitals(one).compare(Capitals(other));
        return order != 0 ? order < 0 : one.What < other.What;
    });
    names_.erase(
        std::unique(names_.begin(), names_.end(),
                    [&](const Name& one, const Name& other) {
                        return (one.What == other.What || (!isOfTheDatabase(one) && !isOfTheDatabase(other))) &&
                               Capitals(one) == Capitals(other);
                    }),
        names_.end());
}

void NameList::Filter(std::wstring_view begun) {
    const std::wstring wanted = UCase(std::wstring(begun));
    rows_.clear();
    rows_.reserve(names_.size());
    std::vector<unsigned> within;
    for (unsigned at = 0; at < names_.size(); ++at) {
        const size_t found = Capitals(names_[at]).find(wanted);
        if (found == 0) {
            rows_.push_back(at);
        } else if (found != std::wstring_view::npos) {
            within.push_back(at);
        }
    }
    rows_.insert(rows_.end(), within.begin(), within.end());
}

NameList::Row NameList::At(size_t row) const noexcept {
    const Name& name = names_[rows_[row]];
    return {std::wstring_view(text_).substr(name.Start, name.Length), name.What, name.Tag};
}
