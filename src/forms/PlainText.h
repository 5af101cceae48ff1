#pragma once

#include <string>
#include <string_view>

// Texts as the editor holds them: every line end is CR LF. Line ends are CR LF, CR and LF, and also the characters that
// begin a line in some program or other, spreadsheets and word processors among them: vertical tab, form feed, next
// line (U+0085), line and paragraph separator (U+2028, U+2029). The system's control begins a line at some of them too,
// and its positions would be wrong after each.
namespace PlainText {
// One of the characters that are a line end, but for CR and LF.
bool IsLineBreak(wchar_t unit) noexcept;
// Whether there is a line end that the control, left alone, does not make one CR LF of.
bool HasOddLineEnds(std::wstring_view text) noexcept;
std::wstring WithCrLf(std::wstring_view text);
}  // namespace PlainText
