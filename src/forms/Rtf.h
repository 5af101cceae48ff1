#pragma once

#include <windows.h>

#include <string>
#include <string_view>

// The window class of the platform's Unicode rich edit control; its library is loaded once and stays.
const wchar_t* RichEditClass();

// Rich text as it is handed to the control: without pictures, data of objects and other binary data, none of which it
// keeps as the editor uses it. False: its groups are deeper, or its words and names longer, than any writer makes them,
// so that no reader need be ready for them.
bool ForControl(std::string_view rtf, std::string& cleaned);

// What rich text says, lines ended by CR LF; empty when it cannot be read.
std::wstring PlainTextOf(std::string_view rtf);

// Whether the bytes begin as rich text does, whole or not.
bool BeginsAsRichText(std::string_view bytes) noexcept;

// Whether rich text is whole: begun, every group ended, and nothing behind the last one. The control takes the first
// half of a file without a word, and nothing at all of what is no rich text.
bool IsRichText(std::string_view bytes) noexcept;

// What the control makes of rich text or of a plain text, lines ended by CR LF. False: it could not read it.
bool ReadRichText(std::string_view rtf, std::wstring& text);
bool ReadPlainText(const std::wstring& plain, std::wstring& text);
