#pragma once

#include <windows.h>

#include <string>
#include <string_view>

// The text in capitals, character by character: the form in which keys and names of members are compared.
inline std::wstring UCase(std::wstring text) {
    if (!text.empty()) CharUpperBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

// Whether two names are equal, ignoring case.
inline bool SameName(std::wstring_view one, std::wstring_view other) {
    return one.size() == other.size() && CompareStringOrdinal(one.data(), static_cast<int>(one.size()), other.data(),
                                                              static_cast<int>(other.size()), TRUE) == CSTR_EQUAL;
}
