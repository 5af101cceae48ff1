#include "forms/PlainText.h"

namespace PlainText {

bool IsLineBreak(wchar_t unit) noexcept {
    return unit == L'\v' || unit == L'\f' || unit == 0x0085 || unit == 0x2028 || unit == 0x2029;
}

bool HasOddLineEnds(std::wstring_view text) noexcept {
    wchar_t before = 0;
    for (const wchar_t unit : text) {
        // Of CR CR LF the control makes a blank.
        if (IsLineBreak(unit) || (unit == L'\r' && before == L'\r')) return true;
        before = unit;
    }
    return false;
}

std::wstring WithCrLf(std::wstring_view text) {
    std::wstring result;
    result.reserve(text.size() + text.size() / 16);
    for (size_t at = 0; at < text.size(); ++at) {
        const wchar_t unit = text[at];
        if (unit == L'\r' || unit == L'\n' || IsLineBreak(unit)) {
            result += L"\r\n";
            if (unit == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n') ++at;
        } else {
            result += unit;
        }
    }
    return result;
}

}  // namespace PlainText
