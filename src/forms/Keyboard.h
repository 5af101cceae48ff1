#pragma once

// Whether a key writes a character on the user's keyboard, with or without Shift, the number pad's keys included. A
// character that needs AltGr is on no key here: with Ctrl it would be written.
bool WritesCharacter(int key, bool shifted, wchar_t character) noexcept;
// Whether the user's keyboard has the character on a key without AltGr.
bool HasCharacter(wchar_t character) noexcept;
