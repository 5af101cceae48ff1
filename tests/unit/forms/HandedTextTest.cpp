#include "forms/HandedText.h"

#include <cstring>
#include <gtest/gtest.h>

#include "support/Errors.h"

namespace {

// How often the block is locked.
UINT Locks(HGLOBAL memory) { return GlobalFlags(memory) & GMEM_LOCKCOUNT; }

}  // namespace

TEST(HandedText, EndsWithItsTextAndLeavesTheBlockUnlocked) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 100);
    std::memcpy(GlobalLock(memory), L"text", 8);
    GlobalUnlock(memory);
    EXPECT_EQ(L"text", HandedText::Read<wchar_t>(memory, L""));
    EXPECT_EQ(0U, Locks(memory));
    EXPECT_EQ("t", HandedText::Read<char>(memory, L""));
    EXPECT_EQ(0U, Locks(memory));
    GlobalFree(memory);
}

TEST(HandedText, IsRefusedBeyondItsLimitAndTheBlockUnlocked) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, HandedText::Longest + 1);
    std::memset(GlobalLock(memory), 'x', HandedText::Longest + 1);
    GlobalUnlock(memory);
    EXPECT_EQ(ErrorNumber::OutOfMemory, NumberOf([&] { HandedText::Read<char>(memory, L"too long"); }));
    EXPECT_EQ(0U, Locks(memory));
    static_cast<char*>(GlobalLock(memory))[HandedText::Longest] = '\0';
    GlobalUnlock(memory);
    EXPECT_EQ(HandedText::Longest, HandedText::Read<char>(memory, L"too long").size());
    GlobalFree(memory);
}
