#pragma once

#include <optional>
#include <span>
#include <string_view>

// One line of the reference as it is written down. A text that is not named here follows from the rule of its section;
// an empty text that is named is meant to be empty.
struct CatalogueEntry {
    std::wstring_view Text;         // what the pane shows; unique only within its section, and not even always there
    std::wstring_view Description;  // may hold EditionMark
    std::optional<std::wstring_view> DragDrop = std::nullopt;
    std::optional<std::wstring_view> SelectText = std::nullopt;
    std::optional<std::wstring_view> ExecuteText = std::nullopt;
};

// How the texts of a section follow from an entry where the entry does not name them. SelectText is empty by every
// rule.
enum class TextRule {
    HostCommand,      // ExecuteText is Text, DragDrop is ExecuteText followed by ";"
    Statement,        // DragDrop is Text, ExecuteText is DragDrop
    SelectFromDual,   // DragDrop is Text, ExecuteText is "SELECT " + DragDrop + " FROM DUAL"
    FormatOfDate,     // DragDrop is Text, ExecuteText shows the current date in the format Text
    Select,           // DragDrop is Text, ExecuteText is "SELECT " + DragDrop
    SelectFromTable,  // DragDrop is Text, ExecuteText is "SELECT " + DragDrop + " FROM table"
    NoExample,        // DragDrop is Text, ExecuteText is empty
};

// Entries that share everything but their texts. They have the Ids FirstId, FirstId + 1, ... in their order.
struct CatalogueSection {
    long FirstId;
    long list;                   // a CatalogueList
    long DBType;                 // a DatabaseType, 0 any database
    std::wstring_view Category;  // of a database-specific section, else empty
    TextRule Rule;
    std::span<const CatalogueEntry> Entries;
};

// The full name of the host product's edition, and what stands for it in a description.
inline constexpr std::wstring_view HostEditionName = L"Kolvex Omnia";
inline constexpr std::wstring_view EditionMark = L"{edition}";
