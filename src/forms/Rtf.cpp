#include "forms/Rtf.h"

#include <algorithm>

namespace {

// No writer comes near these, and readers keep what they read in stacks and buffers. The format's own limits are 32
// letters for a word and, by the system's, 31 characters for the name of a font. Wine's reader has room for 32 groups
// and for 1,023 bytes of a word or a name, and writes on after them.
constexpr int DeepestGroup = 30;
constexpr size_t LongestWord = 255;  // with its number
constexpr size_t LongestName = 255;  // of a font or a style

bool IsLetter(char byte) noexcept { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

bool IsDigit(char byte) noexcept { return byte >= '0' && byte <= '9'; }

// A control word of rich text with its number, read from the letter after the backslash.
struct Word {
    std::string_view Letters;
    size_t Number = 0;  // at most the size of the text; 0 for none and for negative ones
    size_t Length = 0;  // of letters and number
    size_t End = 0;     // after it and the blank that ends it

    Word(std::string_view rtf, size_t at) noexcept {
        const size_t start = at;
        while (at < rtf.size() && IsLetter(rtf[at])) ++at;
        Letters = rtf.substr(start, at - start);
        const bool negative = at + 1 < rtf.size() && rtf[at] == '-' && IsDigit(rtf[at + 1]);
        if (negative) ++at;
        for (; at < rtf.size() && IsDigit(rtf[at]); ++at)
            if (Number < rtf.size()) Number = Number * 10 + static_cast<size_t>(rtf[at] - '0');
        Number = negative ? 0 : std::min(Number, rtf.size());
        Length = at - start;
        End = at < rtf.size() && rtf[at] == ' ' ? at + 1 : at;
    }
};

}  // namespace

bool SanitizeRtf(std::string_view rtf, std::string& cleaned) {
    cleaned.clear();
    cleaned.reserve(rtf.size());
    int depth = 0;
    int table = 0;    // the depth of the table of fonts or styles that this is in
    int picture = 0;  // the same of a picture or of an object's data
    size_t name = 0;
    for (size_t at = 0; at < rtf.size();) {
        const char byte = rtf[at];
        size_t end = at + 1;
        bool kept = picture == 0;
        if (byte == '{' || byte == '}') {
            name = 0;
            // Unbalanced closing braces must not raise the nesting limit.
            depth = byte == '{' ? depth + 1 : std::max(depth - 1, 0);
            if (depth > DeepestGroup) return false;
            if (depth < table) table = 0;
            if (depth < picture) {
                picture = 0;
                kept = true;  // the brace that ends the group which began before it
            }
        } else if (byte == '\\' && at + 1 < rtf.size() && IsLetter(rtf[at + 1])) {
            const Word word(rtf, at + 1);
            if (word.Length > LongestWord) return false;
            name = 0;
            end = word.End;
            if (word.Letters == "bin") {
                end = std::min(end + word.Number, rtf.size());
                if (kept) cleaned += "{}";  // what stands around it stays apart
                kept = false;
            } else if (word.Letters == "pict" || word.Letters == "objdata") {
                if (picture == 0) picture = std::max(depth, 1);
                kept = false;
            } else if (table == 0 && (word.Letters == "fonttbl" || word.Letters == "stylesheet")) {
                table = std::max(depth, 1);
            }
        } else if (byte == '\\') {
            end = std::min(at + 2, rtf.size());  // an escaped character
        } else if (byte == ';') {
            name = 0;
        }
        if (table != 0 && byte != '{' && byte != '}' && byte != ';' && ++name > LongestName) return false;
        if (kept) cleaned.append(rtf, at, end - at);
        at = end;
    }
    return true;
}

bool BeginsAsRichText(std::string_view bytes) noexcept {
    constexpr std::string_view begin = "{\\rtf";
    return bytes.substr(0, begin.size()) == begin;
}

bool IsRichText(std::string_view bytes) noexcept {
    if (!BeginsAsRichText(bytes)) return false;
    int depth = 0;
    for (size_t at = 0; at < bytes.size(); ++at) {
        if (bytes[at] == '{') {
            if (++depth > DeepestGroup) return false;
        } else if (bytes[at] == '}') {
            if (--depth == 0) return bytes.find_first_not_of(std::string_view(" \t\r\n\0", 5), at + 1) == bytes.npos;
        } else if (bytes[at] == '\\') {
            ++at;  // an escaped brace or backslash, or the first letter of a word
            if (at == bytes.size() || !IsLetter(bytes[at])) continue;
            const Word word(bytes, at);
            if (word.Letters != "bin") continue;
            // The bytes that follow mean nothing here; a blank between them and the number is not one of them.
            if (word.Number > bytes.size() - word.End) return false;
            at = word.End + word.Number - 1;
        }
    }
    return false;
}
