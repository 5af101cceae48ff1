#pragma once

#include <string>
#include <string_view>

// Rich text as bytes, without a control.

// Drops pictures, embedded objects and binary data, none of which the editor keeps. False when nesting or the length of
// words and names exceeds what any real writer produces, which guards the control's parser.
bool SanitizeRtf(std::string_view rtf, std::string& cleaned);

// Whether the bytes begin as rich text does, whole or not.
bool BeginsAsRichText(std::string_view bytes) noexcept;

// Whether the bytes are one complete RTF document, with nothing after it. The control silently accepts a truncated one
// and loads nothing from anything else.
bool IsRichText(std::string_view bytes) noexcept;
