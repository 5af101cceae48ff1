#include "forms/RichText.h"

#include <richedit.h>

#include <algorithm>
#include <cstring>

#include "automation/App.h"
#include "automation/RuntimeError.h"
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
        if (LoadLibraryExW(L"msftedit.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32) != nullptr) return L"RICHEDIT50W";
        if (LoadLibraryExW(L"riched20.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32) != nullptr) return L"RichEdit20W";
        return nullptr;
    }();
    if (name == nullptr) RaiseSystemError(ErrorNumber::FileNotFound, ERROR_MOD_NOT_FOUND);
    return name;
}

std::wstring PlainTextOf(std::string_view rtf) {
    const Surroundings surroundings;
    // Nobody sees this control: the platform's own reader of rich text is what is wanted of it.
    struct Window {
        HWND Handle;
        ~Window() { DestroyWindow(Handle); }
    } const window{CreateWindowExW(0, RichEditClass(), L"", ES_MULTILINE | ES_NOOLEDRAGDROP | WS_CHILD, 0, 0, 0, 0,
                                   HWND_MESSAGE, nullptr, App::Module(), nullptr)};
    if (window.Handle == nullptr) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    SendMessageW(window.Handle, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    Source source{rtf};
    EDITSTREAM stream{};
    stream.dwCookie = reinterpret_cast<DWORD_PTR>(&source);
    stream.pfnCallback = &Read;
    SendMessageW(window.Handle, EM_STREAMIN, SF_RTF, reinterpret_cast<LPARAM>(&stream));
    if (stream.dwError != 0) return {};
    GETTEXTLENGTHEX measure{GTL_USECRLF | GTL_NUMCHARS | GTL_PRECISE, 1200};
    const LRESULT length = SendMessageW(window.Handle, EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&measure), 0);
    if (length <= 0) return {};
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    GETTEXTEX request{};
    request.cb = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    request.flags = GT_USECRLF;
    request.codepage = 1200;
    const LRESULT copied = SendMessageW(window.Handle, EM_GETTEXTEX, reinterpret_cast<WPARAM>(&request),
                                        reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<size_t>(std::clamp<LRESULT>(copied, 0, length)));
    return text;
}
