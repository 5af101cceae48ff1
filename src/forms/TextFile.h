#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// Text files, read and written without losing anything: what a file says, how it says it, and the old file until the
// new one is whole. A failure is a run-time error with the number that Basic's own file statements give it: 52 bad file
// name, 53 file not found, 57 device, 58 already exists, 61 disk full, 68 no such device, 70 locked by another program,
// 71 disk not ready, 75 access (a folder, a read-only file, no right), 76 path not found, 7 too large. Paths of any
// length.
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

// More than an editor control is good for.
inline constexpr uint64_t DefaultLimit = 16 * 1024 * 1024;  // bytes

// Error 52 or 75 for a path that can be none of a file, such as a pipe's, before anything is asked of it.
void CheckPath(const std::wstring& path);

// The bytes of a file, or what they say. A file of more than `limit` bytes is error 7, at once.
std::string ReadBytes(const std::wstring& path, uint64_t limit = DefaultLimit);
Contents Read(const std::wstring& path, uint64_t limit = DefaultLimit);

// A name for a file that nobody can know before: who may write to the folder could have put something there.
std::wstring UnknownName();

// Makes the file hold these bytes, or fails and leaves everything as it was: they are written to a new file beside it,
// which then takes its place and its attributes, times and access rights. Where the path is a symbolic link, the file
// behind it is replaced. A file that is only reached by another hard link too is parted from it. `name` tells what the
// new file is called, and then what the old one is while they change places; what has the new file's name already, be
// it a link to nothing, is left alone and the next name is asked for.
void Write(const std::wstring& path, std::string_view bytes, const std::function<std::wstring()>& name = UnknownName);

}  // namespace TextFile
