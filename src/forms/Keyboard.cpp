#include "forms/Keyboard.h"

#include <windows.h>

bool HasCharacter(wchar_t character) noexcept {
    const SHORT key = VkKeyScanW(character);
    return key != -1 && HIBYTE(key) <= 1;
}

bool WritesCharacter(int key, bool shifted, wchar_t character) noexcept {
    switch (key) {
        case VK_DIVIDE:
            return character == L'/';
        case VK_ADD:
            return character == L'+';
        case VK_SUBTRACT:
            return character == L'-';
        case VK_NUMPAD0:
            return character == L'0';
        default:
            return HasCharacter(character) && LOBYTE(VkKeyScanW(character)) == key &&
                   HIBYTE(VkKeyScanW(character)) == (shifted ? 1 : 0);
    }
}
