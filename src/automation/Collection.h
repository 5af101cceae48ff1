#pragma once

#include <map>
#include <string>
#include <vector>

#include "automation/RuntimeError.h"
#include "automation/Text.h"

// An ordered collection of the component's own, with unique text keys, compared without regard to case. Positions are
// 1-based.
template <class T>
class Collection {
public:
    // Appends. A key that is in use is error 457; an empty key means no key.
    void Add(T item, const std::wstring& key = {}) {
        if (!key.empty() && !keys_.try_emplace(UCase(key), items_.size()).second) RaiseError(ErrorNumber::KeyInUse);
        items_.push_back(std::move(item));
    }
    long Count() const noexcept { return static_cast<long>(items_.size()); }
    // Error 9 when the position is outside 1 to Count.
    const T& Item(long position) const {
        if (position < 1 || position > Count()) RaiseError(ErrorNumber::SubscriptOutOfRange);
        return items_[static_cast<size_t>(position - 1)];
    }
    // Error 5 when no item has the key.
    const T& Item(const std::wstring& key) const {
        const auto found = keys_.find(UCase(key));
        if (found == keys_.end()) RaiseError(ErrorNumber::InvalidProcedureCall);
        return items_[found->second];
    }
    auto begin() const noexcept { return items_.begin(); }
    auto end() const noexcept { return items_.end(); }

private:
    std::vector<T> items_;
    std::map<std::wstring, size_t> keys_;
};
