#include "host/demo/Console.h"

#include <algorithm>

std::wstring SystemMessage(DWORD error) {
    wchar_t text[512] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text, 512, nullptr);
    std::wstring message = text;
    while (!message.empty() && wcschr(L"\r\n .", message.back())) message.pop_back();
    return message.empty() ? L"error " + std::to_wstring(error) : message;
}

namespace Console {
namespace {

// What comes from a server, its error texts too, goes to the terminal as characters: a control character could begin a
// sequence that the terminal obeys.
std::wstring Harmless(std::wstring_view text) {
    std::wstring harmless(text);
    for (size_t i = 0; i < harmless.size(); ++i) {
        const wchar_t c = harmless[i];
        const bool lineEnd = c == L'\n' || (c == L'\r' && i + 1 < harmless.size() && harmless[i + 1] == L'\n');
        if (!lineEnd && c != L'\t' && (c < L' ' || (c >= 0x7F && c < 0xA0))) harmless[i] = L'\xB7';
    }
    return harmless;
}

void Write(DWORD stream, std::wstring_view raw) {
    const std::wstring harmless = Harmless(raw);
    const std::wstring_view text = harmless;
    const HANDLE handle = GetStdHandle(stream);
    if (!handle || handle == INVALID_HANDLE_VALUE) return;
    DWORD mode = 0, written = 0;
    if (GetConsoleMode(handle, &mode)) {
        // A console takes only so much in one call.
        for (size_t i = 0; i < text.size(); i += 8192) {
            const std::wstring_view part = text.substr(i, 8192);
            WriteConsoleW(handle, part.data(), static_cast<DWORD>(part.size()), &written, nullptr);
        }
        return;
    }
    const std::string utf8 = ToUtf8(text);
    for (size_t i = 0; i < utf8.size(); i += written) {
        if (!WriteFile(handle, utf8.data() + i, static_cast<DWORD>(utf8.size() - i), &written, nullptr) || !written)
            return;
    }
}

}  // namespace

void Print(std::wstring_view text) { Write(STD_OUTPUT_HANDLE, text); }

void PrintError(std::wstring_view text) { Write(STD_ERROR_HANDLE, text); }

}  // namespace Console
