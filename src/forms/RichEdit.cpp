#include "forms/RichEdit.h"

#include <windows.h>

#include <richedit.h>

#include <algorithm>
#include <cstring>

#include "automation/App.h"
#include "automation/RuntimeError.h"
#include "automation/Scope.h"
#include "automation/SystemLibrary.h"
#include "forms/Rtf.h"
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

// A hidden control, used only for its RTF parser.
bool Through(std::string_view bytes, WPARAM format, std::wstring& text) {
    text.clear();
    const Surroundings surroundings;
    const HWND window = CreateWindowExW(0, RichEditClass(), L"", ES_MULTILINE | ES_NOOLEDRAGDROP | WS_CHILD, 0, 0, 0, 0,
                                        HWND_MESSAGE, nullptr, App::Module(), nullptr);
    if (window == nullptr) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    const ScopeExit made([window] { DestroyWindow(window); });
    SendMessageW(window, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    // Wrapped to a width of nothing, each word would be a line.
    SendMessageW(window, EM_SETTARGETDEVICE, 0, 1);
    SendMessageW(window, EM_SETUNDOLIMIT, 0, 0);
    Source source{bytes};
    EDITSTREAM stream{};
    stream.dwCookie = reinterpret_cast<DWORD_PTR>(&source);
    stream.pfnCallback = &Read;
    SendMessageW(window, EM_STREAMIN, format, reinterpret_cast<LPARAM>(&stream));
    if (stream.dwError != 0) return false;
    GETTEXTLENGTHEX measure{GTL_USECRLF | GTL_NUMCHARS | GTL_PRECISE, 1200};
    const LRESULT length = SendMessageW(window, EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&measure), 0);
    if (length <= 0) return true;
    text.resize(static_cast<size_t>(length) + 1);
    GETTEXTEX request{};
    request.cb = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    request.flags = GT_USECRLF;
    request.codepage = 1200;
    const LRESULT copied =
        SendMessageW(window, EM_GETTEXTEX, reinterpret_cast<WPARAM>(&request), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<size_t>(std::clamp<LRESULT>(copied, 0, length)));
    return true;
}

}  // namespace

std::wstring PlainTextOf(std::string_view rtf) {
    std::wstring text;
    ReadRichText(rtf, text);
    return text;
}

bool ReadRichText(std::string_view rtf, std::wstring& text) {
    text.clear();
    std::string cleaned;
    return SanitizeRtf(rtf, cleaned) && Through(cleaned, SF_RTF, text);
}

bool ReadPlainText(const std::wstring& plain, std::wstring& text) {
    // The line feed goes in the same buffer as its carriage return: alone it would count as another line end.
    std::wstring lines;
    lines.reserve(plain.size());
    for (const wchar_t unit : plain) {
        if (unit != L'\n' || lines.empty() || lines.back() != L'\r') lines += unit;
    }
    return Through({reinterpret_cast<const char*>(lines.data()), lines.size() * sizeof(wchar_t)}, SF_TEXT | SF_UNICODE,
                   text);
}
