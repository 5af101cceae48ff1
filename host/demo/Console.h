#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "host/Utf8.h"

// What Windows says of an error code, without the line end after it.
std::wstring SystemMessage(DWORD error);

// Writes to standard output or standard error: as Unicode to a console, as UTF-8 to a file or pipe. Line ends are "\n".
namespace Console {
void Print(std::wstring_view text);
void PrintError(std::wstring_view text);
}  // namespace Console
