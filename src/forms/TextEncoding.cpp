#include "forms/TextEncoding.h"

#include <windows.h>

#include <limits>

#include "automation/RuntimeError.h"

namespace TextFile {
namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view LittleEndianMark = "\xFF\xFE";
constexpr std::string_view BigEndianMark = "\xFE\xFF";

bool IsHigh(unsigned unit) noexcept { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLow(unsigned unit) noexcept { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Decodes UTF-8; false when the bytes are not. Lone surrogates are accepted; encoded pairs are not, since saving would
// turn them into four bytes.
bool FromUtf8(std::string_view bytes, std::wstring& text) {
    text.clear();
    text.reserve(bytes.size());
    for (size_t at = 0; at < bytes.size();) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        if (first < 0x80) {
            text += static_cast<wchar_t>(first);
            ++at;
            continue;
        }
        const size_t length = first >= 0xC2 && first <= 0xDF   ? 2
                              : first >= 0xE0 && first <= 0xEF ? 3
                              : first >= 0xF0 && first <= 0xF4 ? 4
                                                               : 0;
        if (length == 0 || bytes.size() - at < length) return false;
        unsigned code = first & (0xFFU >> (length + 1));
        for (size_t next = 1; next < length; ++next) {
            const auto byte = static_cast<unsigned char>(bytes[at + next]);
            if ((byte & 0xC0) != 0x80) return false;
            code = code << 6 | (byte & 0x3FU);
        }
        // Overlong encodings are invalid.
        if ((length == 3 && code < 0x800) || (length == 4 && (code < 0x10000 || code > 0x10FFFF))) return false;
        if (code >= 0x10000) {
            text += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
            text += static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        } else {
            if (IsLow(code) && !text.empty() && IsHigh(text.back())) return false;
            text += static_cast<wchar_t>(code);
        }
        at += length;
    }
    return true;
}

void AppendUtf8(std::string& bytes, const std::wstring& text) {
    const auto add = [&bytes](unsigned byte) { bytes += static_cast<char>(static_cast<unsigned char>(byte)); };
    for (size_t at = 0; at < text.size(); ++at) {
        unsigned code = text[at];
        if (IsHigh(code) && at + 1 < text.size() && IsLow(text[at + 1])) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text[++at] - 0xDC00U);
        }
        if (code < 0x80) {
            add(code);
        } else if (code < 0x800) {
            add(0xC0 | code >> 6);
            add(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            add(0xE0 | code >> 12);
            add(0x80 | (code >> 6 & 0x3F));
            add(0x80 | (code & 0x3F));
        } else {
            add(0xF0 | code >> 18);
            add(0x80 | (code >> 12 & 0x3F));
            add(0x80 | (code >> 6 & 0x3F));
            add(0x80 | (code & 0x3F));
        }
    }
}

std::wstring FromUtf16(std::string_view bytes, bool bigEndian) {
    std::wstring text(bytes.size() / 2, L'\0');
    for (size_t at = 0; at < text.size(); ++at) {
        const unsigned one = static_cast<unsigned char>(bytes[2 * at]);
        const unsigned two = static_cast<unsigned char>(bytes[2 * at + 1]);
        text[at] = static_cast<wchar_t>(bigEndian ? one << 8 | two : two << 8 | one);
    }
    return text;
}

void AppendUtf16(std::string& bytes, const std::wstring& text, bool bigEndian) {
    for (const wchar_t unit : text) {
        const char low = static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
        const char high = static_cast<char>(static_cast<unsigned char>(unit >> 8 & 0xFF));
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
}

// With UTF-8 as the system code page, falls back to Windows-1252, which maps every byte.
UINT CodePage() noexcept {
    const UINT system = GetACP();
    return system == CP_UTF8 ? 1252 : system;
}

int LengthOf(size_t size) {
    if (size > static_cast<size_t>(std::numeric_limits<int>::max())) RaiseError(ErrorNumber::OutOfMemory);
    return static_cast<int>(size);
}

std::wstring FromCodePage(std::string_view bytes) {
    if (bytes.empty()) return {};
    const int size = LengthOf(bytes.size());
    std::wstring text(static_cast<size_t>(MultiByteToWideChar(CodePage(), 0, bytes.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CodePage(), 0, bytes.data(), size, text.data(), LengthOf(text.size()));
    return text;
}

// False: a character that the code page does not have.
bool ToCodePage(const std::wstring& text, std::string& bytes) {
    bytes.clear();
    if (text.empty()) return true;
    const int size = LengthOf(text.size());
    BOOL replaced = FALSE;
    bytes.resize(static_cast<size_t>(
        WideCharToMultiByte(CodePage(), WC_NO_BEST_FIT_CHARS, text.data(), size, nullptr, 0, nullptr, &replaced)));
    if (replaced || bytes.empty()) return false;
    WideCharToMultiByte(CodePage(), WC_NO_BEST_FIT_CHARS, text.data(), size, bytes.data(), LengthOf(bytes.size()),
                        nullptr, nullptr);
    return true;
}

LineEnd LinesOf(const std::wstring& text) noexcept {
    bool crLf = false;
    bool lf = false;
    bool cr = false;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == L'\n') {
            lf = true;
        } else if (text[at] == L'\r') {
            const bool both = at + 1 < text.size() && text[at + 1] == L'\n';
            (both ? crLf : cr) = true;
            if (both) ++at;
        }
    }
    if (lf && !crLf && !cr) return LineEnd::Lf;
    if (cr && !crLf && !lf) return LineEnd::Cr;
    return LineEnd::CrLf;
}

std::wstring WithLineEnds(const std::wstring& text, LineEnd lines) {
    if (lines == LineEnd::CrLf) return text;
    std::wstring result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        const bool both = text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n';
        result += !both ? text[at] : lines == LineEnd::Lf ? L'\n' : L'\r';
        if (both) ++at;
    }
    return result;
}

}  // namespace

Contents Decode(std::string_view bytes) {
    Contents contents;
    const auto starts = [bytes](std::string_view mark) { return bytes.substr(0, mark.size()) == mark; };
    const bool bigEndian = starts(BigEndianMark);
    const bool marked = starts(Utf8Mark);
    if ((bigEndian || starts(LittleEndianMark)) && bytes.size() % 2 == 0) {
        contents.Text = FromUtf16(bytes.substr(2), bigEndian);
        contents.Form.Kind = bigEndian ? Encoding::Utf16BigEndian : Encoding::Utf16LittleEndian;
        contents.Form.ByteOrderMark = true;
    } else if (FromUtf8(marked ? bytes.substr(Utf8Mark.size()) : bytes, contents.Text)) {
        contents.Form.ByteOrderMark = marked;
    } else {
        contents.Text = FromCodePage(bytes);
        contents.Form.Kind = Encoding::SystemCodePage;
        std::string again;
        if (!ToCodePage(contents.Text, again) || again != bytes) RaiseError(321);
    }
    contents.Form.Lines = LinesOf(contents.Text);
    return contents;
}

std::string Encode(const std::wstring& text, Format& format) {
    const std::wstring lines = WithLineEnds(text, format.Lines);
    std::string bytes;
    if (format.Kind == Encoding::SystemCodePage) {
        // Some texts would be taken for UTF-8 or for a mark when they are read again.
        if (ToCodePage(lines, bytes) && Decode(bytes).Text == lines) {
            format.ByteOrderMark = false;
            return bytes;
        }
        bytes.clear();
        format.Kind = Encoding::Utf8;
        format.ByteOrderMark = true;
    }
    if (format.Kind == Encoding::Utf8) {
        // A text that begins with the character of the mark needs a mark before it.
        if (!lines.empty() && lines[0] == 0xFEFF) format.ByteOrderMark = true;
        bytes.reserve(lines.size() + 3);
        if (format.ByteOrderMark) bytes = Utf8Mark;
        AppendUtf8(bytes, lines);
        return bytes;
    }
    const bool bigEndian = format.Kind == Encoding::Utf16BigEndian;
    format.ByteOrderMark = true;
    bytes.reserve(2 * lines.size() + 2);
    bytes = bigEndian ? BigEndianMark : LittleEndianMark;
    AppendUtf16(bytes, lines, bigEndian);
    return bytes;
}

}  // namespace TextFile
