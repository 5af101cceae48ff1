#pragma once

#include <windows.h>

#include <string>

// The clipboard's text. Both raise error 521 when another program keeps the clipboard open for longer than a moment.
namespace Clipboard {
// Replaces what is on the clipboard. `owner`: a window of this thread.
void SetText(HWND owner, const std::wstring& text);
// The plain text, that of rich text where there is nothing else; empty when there is no text. Error 7 for one that is
// longer than HandedText::Longest.
std::wstring GetText(HWND owner);
}  // namespace Clipboard
