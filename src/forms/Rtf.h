#pragma once

#include <string>
#include <string_view>

// Rich text as bytes, without a control.

// Rich text as it is handed to the control: without pictures, data of objects and other binary data, none of which it
// keeps as the editor uses it. False: its groups are deeper, or its words and names longer, than any writer makes them,
// so that no reader need be ready for them.
bool SanitizeRtf(std::string_view rtf, std::string& cleaned);

// Whether the bytes begin as rich text does, whole or not.
bool BeginsAsRichText(std::string_view bytes) noexcept;

// Whether rich text is whole: begun, every group ended, and nothing behind the last one. The control takes the first
// half of a file without a word, and nothing at all of what is no rich text.
bool IsRichText(std::string_view bytes) noexcept;
