#include "forms/Clipboard.h"

#include <cstring>

#include "automation/RuntimeError.h"
#include "forms/HandedText.h"
#include "forms/RichEdit.h"

namespace {

class Opened {
public:
    explicit Opened(HWND owner) {
        // Clipboard monitors open it for moments, mostly just after a change.
        constexpr int Attempts = 10;
        for (int attempt = 0; !OpenClipboard(owner); ++attempt) {
            if (attempt == Attempts) RaiseError(ErrorNumber::ClipboardNotOpened);
            Sleep(40);
        }
    }
    ~Opened() { CloseClipboard(); }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
};

template <class Character>
std::basic_string<Character> Contents(UINT format) {
    const HANDLE handle = GetClipboardData(format);
    if (handle == nullptr) return {};
    return HandedText::Read<Character>(handle, L"The text on the clipboard is too large for the editor.");
}

}  // namespace

void Clipboard::SetText(HWND owner, const std::wstring& text) {
    std::wstring plain = text;
    for (wchar_t& unit : plain) {
        if (unit == L'\0') unit = L' ';  // the end of a text to every program that pastes
    }
    const size_t bytes = (plain.size() + 1) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
    if (memory == nullptr) RaiseError(ErrorNumber::OutOfMemory);
    void* const locked = GlobalLock(memory);
    if (locked == nullptr) {
        GlobalFree(memory);
        RaiseError(ErrorNumber::OutOfMemory);
    }
    std::memcpy(locked, plain.c_str(), bytes);
    GlobalUnlock(memory);
    try {
        const Opened opened(owner);
        EmptyClipboard();
        if (SetClipboardData(CF_UNICODETEXT, memory) == nullptr)
            RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    } catch (...) {
        GlobalFree(memory);  // the clipboard owns it only once it has it
        throw;
    }
}

std::wstring Clipboard::GetText(HWND owner) {
    std::string rtf;
    {
        const Opened opened(owner);
        if (IsClipboardFormatAvailable(CF_UNICODETEXT)) return Contents<wchar_t>(CF_UNICODETEXT);
        rtf = Contents<char>(RegisterClipboardFormatW(L"Rich Text Format"));
    }
    return rtf.empty() ? std::wstring() : PlainTextOf(rtf);
}
