#include "Generator.h"

#include <algorithm>
#include <cstdio>

namespace {

// Units and pieces by what has gone wrong with such texts in programs. A kind is chosen first, so that the rare ones
// are not drowned by the letters.
void AppendPiece(Random& random, std::wstring& text) {
    static const std::vector<std::wstring> words = {
        L"ORDERS", L"id",     L"Current Schema", L"undefined", L"(undefined)",
        L"null",   L"_value", L"DATA_TYPE",      L"select",    L";",
        L"--",     L"/*",     L"\\rtf1",         L"{\\b ",     L"=",
        L".",
    };
    static const std::vector<std::wstring> marks = {
        L"\u200E", L"\u200F", L"\u202A", L"\u202B", L"\u202C", L"\u202D",
        L"\u202E", L"\u2066", L"\u2067", L"\u2068", L"\u2069", L"\u061C",
    };
    switch (random.Below(16)) {
        case 0:
        case 1:
        case 2:
            text += static_cast<wchar_t>(random.Between(0x20, 0x7E));
            break;
        case 3:
            text += random.Pick(words);
            break;
        case 4:
            text += random.Pick({L'&', L'"', L'\'', L'`', L'[', L']', L'{', L'}', L'(', L')', L'%', L'\\', L';', L'.'});
            break;
        case 5:
            text += random.Pick({L"\r\n", L"\r", L"\n", L"\t", L"\r\r\n", L"\n\r", L"\r\r"});
            break;
        case 6: {
            const long control = random.Between(0, 0x1F);
            text += static_cast<wchar_t>(control % 5 == 0 ? 0 : control);  // NUL is worth more than the others
            break;
        }
        case 7:
            text += random.Pick(marks);
            break;
        case 8:  // Hebrew, Arabic
            for (size_t left = 1 + random.Below(6); left > 0; --left)
                text += static_cast<wchar_t>(random.Between(0x5D0, 0x6D5));
            break;
        case 9:  // a letter under a heap of marks
            text += static_cast<wchar_t>(random.Between(L'a', L'z'));
            for (size_t left = 1 + random.Below(12); left > 0; --left)
                text += static_cast<wchar_t>(random.Between(0x300, 0x36F));
            break;
        case 10:  // a pair
            text += static_cast<wchar_t>(random.Between(0xD800, 0xDBFF));
            text += static_cast<wchar_t>(random.Between(0xDC00, 0xDFFF));
            break;
        case 11:  // half of one
            text += static_cast<wchar_t>(random.Between(0xD800, 0xDFFF));
            break;
        case 12:
            text += random.Pick({L'\xFFFE', L'\xFFFF', L'\xFEFF', L'\xFFFC', L'\xFFFD', L'\xFDD0', L'\x2028', L'\x2029',
                                 L'\x0085', L'\x00A0', L'\x00AD', L'\x200B', L'\x200D', L'\x3000', L'\x7F'});
            break;
        case 13:
            text += static_cast<wchar_t>(random.Between(0x4E00, 0x9FFF));
            break;
        case 14:  // that change their length or kind with their case
            text += random.Pick({L'\x00DF', L'\x0130', L'\x0131', L'\x01C5', L'\x1E9E', L'\xFB01', L'\x03C2'});
            break;
        default:
            text += static_cast<wchar_t>(random.Below(0x10000));
            break;
    }
}

void AppendUtf8(std::string& bytes, unsigned unit) {
    // Each unit by itself: halves of pairs come as three bytes, pairs as twice three.
    if (unit < 0x80) {
        bytes += static_cast<char>(unit);
    } else if (unit < 0x800) {
        bytes += static_cast<char>(0xC0 | unit >> 6);
        bytes += static_cast<char>(0x80 | (unit & 0x3F));
    } else {
        bytes += static_cast<char>(0xE0 | unit >> 12);
        bytes += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
        bytes += static_cast<char>(0x80 | (unit & 0x3F));
    }
}

}  // namespace

std::wstring AnyText(Random& random, size_t longest) {
    std::wstring text;
    if (longest == 0 || random.OneIn(16)) return text;
    const size_t length = 1 + random.Below(random.OneIn(4) ? longest : std::min<size_t>(longest, 12));
    while (text.size() < length) AppendPiece(random, text);
    text.resize(std::min(text.size(), longest));
    return text;
}

std::wstring TextOfLength(Random& random, size_t length) {
    std::wstring text(length, static_cast<wchar_t>(random.Between(L'a', L'z')));
    // Few, and none that begins a line or a column: under Wine the time that the rich edit control takes for a line
    // grows with the square of the pieces that it falls into.
    for (size_t left = 12; left > 0; --left) {
        std::wstring piece;
        AppendPiece(random, piece);
        std::erase_if(piece, [](wchar_t unit) { return unit == L'\r' || unit == L'\n' || unit == L'\t'; });
        const size_t at = random.Below(length + 1);
        const size_t fits = std::min(piece.size(), length - at);
        text.replace(at, fits, piece, 0, fits);
    }
    return text;
}

std::wstring InOtherCase(Random& random, std::wstring text) {
    for (wchar_t& unit : text) {
        const bool letter = (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z');
        if (letter && random.OneIn(2)) unit = static_cast<wchar_t>(unit ^ 0x20);
    }
    return text;
}

std::string AnyBytes(Random& random, size_t longest) {
    std::string bytes(random.Below(longest + 1), '\0');
    const bool mostlyText = random.OneIn(2);
    for (char& byte : bytes) {
        byte = static_cast<char>(mostlyText && !random.OneIn(8) ? random.Between(0x20, 0x7E) : random.Between(0, 0xFF));
    }
    return bytes;
}

std::string AnyFile(Random& random, size_t longest) {
    const auto text = [&] {
        std::wstring made = AnyText(random, longest);
        if (random.OneIn(3)) {  // line ends of one kind, as files have them
            const std::wstring end = random.Pick({L"\r\n", L"\r", L"\n"});
            std::wstring lines;
            for (const wchar_t unit : made) {
                if (unit != L'\r' && unit != L'\n') lines += unit;
                if (random.OneIn(8)) lines += end;
            }
            made = lines;
        }
        return made;
    };
    std::string bytes;
    switch (random.Below(8)) {
        case 0:
            bytes = AnyBytes(random, longest);
            break;
        case 1:
            bytes = "\xEF\xBB\xBF";
            [[fallthrough]];
        case 2:
            for (const wchar_t unit : text()) AppendUtf8(bytes, unit);
            break;
        case 3:
        case 4: {
            const bool big = random.OneIn(2);
            bytes = big ? "\xFE\xFF" : "\xFF\xFE";
            for (const wchar_t unit : text()) {
                const char low = static_cast<char>(unit & 0xFF);
                const char high = static_cast<char>(unit >> 8);
                bytes += big ? high : low;
                bytes += big ? low : high;
            }
            break;
        }
        case 5:
            bytes = std::string(random.Below(longest + 1), random.Pick({'\0', '\r', '\n', '\xFF', '\xC3', '\xED'}));
            break;
        case 6:
            bytes = random.Pick<std::string>({"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"}) + AnyBytes(random, longest);
            break;
        default:
            for (const wchar_t unit : text()) bytes += static_cast<char>(unit & 0xFF);
            break;
    }
    if (random.OneIn(4)) bytes.resize(bytes.size() - random.Below(std::min<size_t>(bytes.size() + 1, 4)));
    return bytes;
}

std::string Damaged(Random& random, std::string bytes, size_t blows) {
    for (; blows > 0 && !bytes.empty(); --blows) {
        const size_t at = random.Below(bytes.size());
        const size_t length = std::min(bytes.size() - at, 1 + random.Below(8));
        switch (random.Below(7)) {
            case 0:
                bytes[at] = static_cast<char>(random.Below(256));
                break;
            case 1:
                bytes.erase(at, length);
                break;
            case 2:
                bytes.insert(at, bytes.substr(at, length));
                break;
            case 3:
                bytes.insert(random.Below(bytes.size()), bytes.substr(at, length));
                break;
            case 4:
                bytes[at] = static_cast<char>(bytes[at] ^ 1 << random.Below(8));
                break;
            case 5:
                bytes.insert(at, AnyBytes(random, 8));
                break;
            default:
                if (random.OneIn(4)) bytes.resize(at);
                break;
        }
    }
    return bytes;
}

std::wstring InControl(const std::wstring& text) {
    std::wstring result;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == L'\r') {
            result += L"\r\n";
            if (at + 1 < text.size() && text[at + 1] == L'\n') ++at;
        } else if (std::wstring(L"\n\v\f\x85\x2028\x2029").find(text[at]) != std::wstring::npos) {
            result += L"\r\n";
        } else {
            result += text[at];
        }
    }
    return result;
}

std::wstring Quoted(const std::wstring& name) {
    std::wstring quoted = L"\"";
    for (const wchar_t unit : name) quoted.append(unit == L'"' ? 2 : 1, unit);
    return quoted + L"\"";
}

std::wstring UpToNul(const std::wstring& text) { return text.substr(0, text.find(L'\0')); }

std::string Shown(const std::wstring& text) {
    std::string shown = std::to_string(text.size()) + " units \"";
    for (size_t at = 0; at < text.size(); ++at) {
        if (at == 200 && text.size() > 400) {
            shown += " ... ";
            at = text.size() - 200;
        }
        char unit[8];
        std::snprintf(unit, sizeof unit,
                      text[at] >= 0x20 && text[at] < 0x7F && text[at] != L'\\' && text[at] != L'"' ? "%c" : "\\x%04X",
                      static_cast<unsigned>(text[at]));
        shown += unit;
    }
    return shown + "\"";
}
