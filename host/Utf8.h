#pragma once

#include <windows.h>

#include <string>
#include <string_view>

inline std::string ToUtf8(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    std::string utf8(
        static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
    return utf8;
}

inline std::wstring FromUtf8(std::string_view utf8) {
    const int length = static_cast<int>(utf8.size());
    std::wstring text(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, text.data(), static_cast<int>(text.size()));
    return text;
}
