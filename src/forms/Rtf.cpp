#include "forms/Rtf.h"

#include <richedit.h>

#include <algorithm>
#include <cstring>

#include "automation/App.h"
#include "automation/RuntimeError.h"
#include "automation/SystemLibrary.h"
#include "forms/Surroundings.h"

namespace {

struct Source {
    std::string_view Bytes;
};

DWORD CALLBACK Read(DWORD_PTR cookie, LPBYTE buffer, LONG capacity, LONG* written) noexcept {
    auto& rest = reinterpret_cast<Source*>(cookie)->Bytes;
    const size_t take = std::min(static_cast<size_t>(capacity), rest.size());
    std::memcpy(buffer, rest.data(), take);
    rest.remove_prefix(take);
    *written = static_cast<LONG>(take);
    return 0;
}

}  // namespace

// The newest control that the system has. The library stays loaded: windows of its classes may outlive this module's.
const wchar_t* RichEditClass() {
    static const wchar_t* const name = []() -> const wchar_t* {
        if (LoadSystemLibrary(L"msftedit.dll") != nullptr) return L"RICHEDIT50W";
        if (LoadSystemLibrary(L"riched20.dll") != nullptr) return L"RichEdit20W";
        return nullptr;
    }();
    if (name == nullptr) RaiseSystemError(ErrorNumber::FileNotFound, ERROR_MOD_NOT_FOUND);
    return name;
}

namespace {

// Nobody sees this control: the platform's own reader is what is wanted of it.
bool Through(std::string_view bytes, WPARAM format, std::wstring& text) {
    text.clear();
    const Surroundings surroundings;
    struct Window {
        HWND Handle;
        ~Window() { DestroyWindow(Handle); }
    } const window{CreateWindowExW(0, RichEditClass(), L"", ES_MULTILINE | ES_NOOLEDRAGDROP | WS_CHILD, 0, 0, 0, 0,
                                   HWND_MESSAGE, nullptr, App::Module(), nullptr)};
    if (window.Handle == nullptr) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    SendMessageW(window.Handle, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    // Wrapped to a width of nothing, each word would be a line.
    SendMessageW(window.Handle, EM_SETTARGETDEVICE, 0, 1);
    SendMessageW(window.Handle, EM_SETUNDOLIMIT, 0, 0);
    Source source{bytes};
    EDITSTREAM stream{};
    stream.dwCookie = reinterpret_cast<DWORD_PTR>(&source);
    stream.pfnCallback = &Read;
    SendMessageW(window.Handle, EM_STREAMIN, format, reinterpret_cast<LPARAM>(&stream));
    if (stream.dwError != 0) return false;
    GETTEXTLENGTHEX measure{GTL_USECRLF | GTL_NUMCHARS | GTL_PRECISE, 1200};
    const LRESULT length = SendMessageW(window.Handle, EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&measure), 0);
    if (length <= 0) return true;
    text.resize(static_cast<size_t>(length) + 1);
    GETTEXTEX request{};
    request.cb = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    request.flags = GT_USECRLF;
    request.codepage = 1200;
    const LRESULT copied = SendMessageW(window.Handle, EM_GETTEXTEX, reinterpret_cast<WPARAM>(&request),
                                        reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<size_t>(std::clamp<LRESULT>(copied, 0, length)));
    return true;
}

}  // namespace

namespace {

// No writer comes near these, and readers keep what they read in stacks and buffers. The format's own limits are 32
// letters for a word and, by the system's, 31 characters for the name of a font. Wine's reader has room for 32 groups
// and for 1,023 bytes of a word or a name, and writes on behind them.
constexpr int DeepestGroup = 30;
constexpr size_t LongestWord = 255;  // with its number
constexpr size_t LongestName = 255;  // of a font or a style

bool IsLetter(char byte) noexcept { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

bool IsDigit(char byte) noexcept { return byte >= '0' && byte <= '9'; }

// A control word of rich text with its number, read from the letter behind the backslash.
struct Word {
    std::string_view Letters;
    size_t Number = 0;  // at most the size of the text; 0 for none and for negative ones
    size_t Length = 0;  // of letters and number
    size_t End = 0;     // behind it and the blank that ends it

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

bool ForControl(std::string_view rtf, std::string& cleaned) {
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
            // More ends than beginnings make no room for more groups behind them.
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

std::wstring PlainTextOf(std::string_view rtf) {
    std::wstring text;
    ReadRichText(rtf, text);
    return text;
}

bool ReadRichText(std::string_view rtf, std::wstring& text) {
    text.clear();
    std::string cleaned;
    return ForControl(rtf, cleaned) && Through(cleaned, SF_RTF, text);
}

bool ReadPlainText(const std::wstring& plain, std::wstring& text) {
    // The line feed goes in the same buffer as its carriage return: one that comes alone is a line end of its own.
    std::wstring lines;
    lines.reserve(plain.size());
    for (const wchar_t unit : plain) {
        if (unit != L'\n' || lines.empty() || lines.back() != L'\r') lines += unit;
    }
    return Through({reinterpret_cast<const char*>(lines.data()), lines.size() * sizeof(wchar_t)}, SF_TEXT | SF_UNICODE,
                   text);
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
