#pragma once

#include <windows.h>

#include <string>
#include <string_view>

// The window class of the platform's Unicode rich edit control; its library is loaded once and stays.
const wchar_t* RichEditClass();

// What rich text says, lines ended by CR LF; empty when it cannot be read.
std::wstring PlainTextOf(std::string_view rtf);
