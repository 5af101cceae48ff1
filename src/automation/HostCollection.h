#pragma once

#include <functional>

#include "automation/Object.h"

// A collection that belongs to the host, read in order. What hosts hand over comes in several kinds, and all are read:
// an object with _NewEnum (asked first), an object with Count and Item (from 1, or from 0 when 1 to Count does not
// hold). An array is not a collection.
class HostCollection {
public:
    HostCollection() noexcept = default;  // nothing
    // Takes a result as a collection. Nothing stays nothing. A value that is not a collection object is error 13,
    // arrays, Null and Empty included. Reads no item yet, but asks for _NewEnum: that is how a collection is told from
    // any other object.
    explicit HostCollection(const Variant& result);
    // The same for an entry that is itself a list: a one-dimensional array is accepted too.
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
