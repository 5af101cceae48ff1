#pragma once

// Numbers and words that the host's objects, the catalogue and the window's parts have in common.

// What ends a line in the statements and the text.
inline constexpr const wchar_t* LineBreak = L"\r\n";

// What reports and logs call the module that fills the trees and lists.
namespace modLists {
inline constexpr const wchar_t* Module = L"modLists";
}

// The list of the reference that an entry of the catalogue belongs to.
namespace CatalogueList {
inline constexpr long AnsiSql = 1;
inline constexpr long DatabaseSpecific = 2;
inline constexpr long HostCommands = 3;
}  // namespace CatalogueList

// What the host's dictionary is asked for.
namespace ObjectType {
inline constexpr long Tables = 1;
inline constexpr long Views = 2;
}  // namespace ObjectType

// The pages of the left pane.
namespace Page {
inline constexpr short ObjectBrowser = 0;
inline constexpr short AnsiSql = 1;
inline constexpr short DatabaseSpecific = 2;
inline constexpr short HostCommands = 3;
}  // namespace Page

// The source and the numbers by which the host's database component reports what its dictionary cannot do.
namespace HostDatabaseError {
inline constexpr const wchar_t* Source = L"brvADO";
inline constexpr long NoDictionary = -2147221503;  // ObjectErrorBase + 1
inline constexpr long NoColumns = -2147221494;     // ObjectErrorBase + 10
}  // namespace HostDatabaseError
