#pragma once

#include <windows.h>

#include <optional>
#include <string>

// Asks for a line of text in a dialog that `owner` owns, with `text` offered and selected. Nothing when it was
// cancelled.
std::optional<std::wstring> InputBox(HWND owner, const std::wstring& prompt, const std::wstring& title,
                                     const std::wstring& text);
