#pragma once

#include <windows.h>

#include <algorithm>
#include <memory>
#include <string>

#include "automation/RuntimeError.h"

// Text that another program hands over in a block of global memory: by the clipboard, or by a drop.
namespace HandedText {

// The most that is taken: as much as a file may hold. In characters, of rich text in bytes.
inline constexpr size_t Longest = 4 * 1024 * 1024;

struct Unlock {
    HGLOBAL Memory;
    void operator()(const void*) const noexcept { GlobalUnlock(Memory); }
};

// The text in a block, without what the allocation has after its end; empty when the block cannot be read. Error 7
// with `tooLong`, before anything is copied, for a text that is longer than Longest.
template <class Character>
std::basic_string<Character> Read(HGLOBAL memory, const wchar_t* tooLong) {
    const std::unique_ptr<const void, Unlock> locked(GlobalLock(memory), Unlock{memory});
    if (locked == nullptr) return {};
    const auto* const text = static_cast<const Character*>(locked.get());
    const size_t most = GlobalSize(memory) / sizeof(Character);
    const auto length = static_cast<size_t>(std::find(text, text + most, Character{}) - text);
    if (length > Longest) RaiseError(ErrorNumber::OutOfMemory, tooLong);
    return {text, length};
}

}  // namespace HandedText
