#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

// A text of a record: constant, in which case it is not copied, or owned. The reference has a thousand texts, nearly
// all of them constant and few of them ever read, and is built while a host waits for the component to load.
class ItemText {
public:
    ItemText() noexcept = default;
    ItemText(std::wstring text) noexcept : owned_(std::move(text)) {}
    ItemText(const wchar_t* text) : owned_(text) {}
    // Not copied: what it refers to has to last as long as the module.
    static ItemText Constant(std::wstring_view text) noexcept {
        ItemText constant;
        constant.constant_ = text;
        return constant;
    }
    // Owned: the parts, one after the other.
    static ItemText Joined(std::initializer_list<std::wstring_view> parts) {
        size_t length = 0;
        for (const std::wstring_view part : parts) length += part.size();
        ItemText joined;
        joined.owned_.reserve(length);
        for (const std::wstring_view part : parts) joined.owned_ += part;
        return joined;
    }

    std::wstring_view View() const noexcept { return owned_.empty() ? constant_ : owned_; }
    std::wstring Text() const { return std::wstring(View()); }

private:
    std::wstring owned_;
    std::wstring_view constant_;
};
