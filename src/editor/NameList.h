#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The names that may complete what is being written: tens of thousands of them, filtered at each key. No window.
class NameList {
public:
    enum class Kind : unsigned char { Column, Table, View, Schema, Function, Type, Keyword };

    struct Row {
        std::wstring_view Name;
        Kind What;
        size_t Tag;  // of the caller
    };

    // Appends a name; an empty one is left out. `tag` comes back with the row.
    void Add(std::wstring_view name, Kind what, size_t tag = 0);
    // Puts the names in their order: the connected database's, and then the language's, each by the alphabet. Of equal
    // names of one kind the first stays, and the words of the language are one kind.
    void Sort();
    // Chooses the rows: names that begin with `begun`, and then those that hold it further on, ignoring case.
    void Filter(std::wstring_view begun);

    size_t Rows() const noexcept { return rows_.size(); }
    Row At(size_t row) const noexcept;
    bool IsEmpty() const noexcept { return names_.empty(); }

private:
    struct Name {
        unsigned Start;
        unsigned Length;
        Kind What;
        size_t Tag;
    };
    std::wstring_view Capitals(const Name& name) const noexcept { return {&capitals_[name.Start], name.Length}; }

    // All names one after the other: a text for each would cost more than all the rest.
    std::wstring text_;
    std::wstring capitals_;
    std::vector<Name> names_;
    std::vector<unsigned> rows_;  // of names_
};
