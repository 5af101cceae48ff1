#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/Object.h"
#include "automation/RuntimeError.h"
#include "automation/Text.h"

// A collection that belongs to the host, read in order. What hosts hand over comes in several kinds, and all are read:
// an object with _NewEnum (asked first), an object with Count and Item (from 1, or from 0 when 1 to Count does not
// hold). An array is no collection.
class HostCollection {
public:
    HostCollection() noexcept = default;  // nothing
    // Takes a result as a collection. Nothing stays nothing. A value that is no collection object is error 13: an
    // array, Null and Empty among them. No item is asked for yet; _NewEnum is, since that is how a collection is told
    // from another object.
    explicit HostCollection(const Variant& result);
    // The same for an entry of a collection that is a list itself: it may be an array of one dimension too.
    static HostCollection OrArray(const Variant& entry);

    explicit operator bool() const noexcept;  // false: nothing
    // Calls `item` for each item in order until it returns false, from the first item each time. A failure of the
    // collection, or of `item`, passes through, after the items before it. Passes over one HostCollection and its
    // copies are not to be nested: they share the enumerator. Nothing is error 91.
    void ForEach(const std::function<bool(const Variant&)>& item) const;

private:
    enum class Kind { None, Enumerated, Counted, Array };
    Kind kind_ = Kind::None;
    Object object_;
    Variant enumerator_;  // the IEnumVARIANT that _NewEnum gave, as VT_UNKNOWN; or the array
};

// An ordered collection of the component's own, with unique text keys, compared without regard to case. Positions are
// 1-based.
template <class T>
class Collection {
public:
    // Appends. A key that is in use is error 457; an empty key is no key.
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
