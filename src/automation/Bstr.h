#pragma once

#include <windows.h>
#include <oleauto.h>

#include <string>
#include <string_view>
#include <utility>

// Owns a BSTR. A text that holds NUL characters keeps them.
class Bstr {
public:
    Bstr() noexcept = default;  // null, which is the empty text
    // Throws error 7 when memory is out.
    explicit Bstr(std::wstring_view text);
    // Null for the empty text and when memory is out.
    static Bstr OrNull(std::wstring_view text) noexcept {
        Bstr made;
        if (!text.empty()) made.text_ = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        return made;
    }
    Bstr(Bstr&& other) noexcept : text_(other.Detach()) {}
    Bstr& operator=(Bstr&& other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    ~Bstr() { SysFreeString(text_); }

    BSTR Get() const noexcept { return text_; }
    // Hands the string over to the caller.
    BSTR Detach() noexcept { return std::exchange(text_, nullptr); }
    // Frees the string and gives its address to a call that returns one.
    BSTR* Receive() noexcept {
        SysFreeString(Detach());
        return &text_;
    }

private:
    BSTR text_ = nullptr;
};

// The text of a BSTR; a null BSTR is the empty text.
std::wstring TextOf(BSTR text);
