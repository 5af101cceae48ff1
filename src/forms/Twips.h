#pragma once

#include <windows.h>

// Layout is written in twips, 1/1440 inch; the screen is in pixels of the window's own dots per inch.
inline constexpr float TwipsPerInch = 1440.0F;

// The nearest whole pixel, halves to even. A length beyond what a window coordinate holds, or no number, is error 6.
int TwipsToPixels(float twips, UINT dpi);
// Rounded to a single-precision number; TwipsToPixels gives the same pixels back.
float PixelsToTwips(int pixels, UINT dpi) noexcept;
// The nearest whole number of twips, halves to even. A length that no long integer holds, or no number, is error 6.
long WholeTwips(float twips);
