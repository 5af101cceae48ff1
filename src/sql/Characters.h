#pragma once

namespace Sql {

constexpr bool IsLineEnd(wchar_t c) noexcept { return c == L'\r' || c == L'\n'; }

// By hand, since case mapping must not depend on the user's language: of A to Z alone.
constexpr wchar_t Capital(wchar_t c) noexcept {
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

}  // namespace Sql
