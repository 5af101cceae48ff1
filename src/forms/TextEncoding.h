#pragma once

#include <string>
#include <string_view>

// What the bytes of a text file say, and how they say it.
namespace TextFile {

enum class Encoding { Utf8, Utf16LittleEndian, Utf16BigEndian, SystemCodePage };
enum class LineEnd { CrLf, Lf, Cr };

// How a file writes down its text. The default is that of a new file.
struct Format {
    Encoding Kind = Encoding::Utf8;
    bool ByteOrderMark = false;
    LineEnd Lines = LineEnd::CrLf;  // also that of a file with more than one kind, or none

    bool operator==(const Format&) const = default;
};

struct Contents {
    std::wstring Text;  // line ends as the file has them
    Format Form;
};

// A byte order mark decides; without one, valid UTF-8 is UTF-8, and anything else is in the system's code page. So is a
// file with a mark whose rest contradicts it: it comes in with the mark as characters, and goes out as the same bytes.
// NUL is a character like any other. Unpaired surrogates are read from UTF-8 as three bytes each, as Encode writes
// them. A file that the system's code page cannot hold either (only East Asian ones have such bytes) is error 321.
Contents Decode(std::string_view bytes);

// The bytes of a file that Decode reads as the same text, in this format if it can be; a character that the format
// cannot hold turns it into UTF-8 with a mark. UTF-16 always has its mark. CR LF is written as `format.Lines` says;
// other line ends stay as they are.
std::string Encode(const std::wstring& text, Format& format);

}  // namespace TextFile
