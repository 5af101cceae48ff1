#pragma once

#include <string>
#include <string_view>

// The window class of the platform's Unicode rich edit control; its library is loaded once and stays.
const wchar_t* RichEditClass();

// The text that the control reads from rich or plain text, lines ended by CR LF. False: it could not read it.
bool ReadRichText(std::string_view rtf, std::wstring& text);
bool ReadPlainText(const std::wstring& plain, std::wstring& text);

// What rich text says, lines ended by CR LF; empty when it cannot be read.
std::wstring PlainTextOf(std::string_view rtf);
