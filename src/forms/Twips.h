#pragma once

#include <windows.h>

// Layout is written in twips, 1/1440 inch; the screen is in pixels of the window's own dots per inch.
inline constexpr float TwipsPerInch = 1440.0F;

// The nearest whole pixel, halves to even. A length beyond what a window coordinate holds, or no number, is error 6.
int TwipsToPixels(float twips, UINT dpi);
// Exact: a whole number of pixels is always a single-precision number of twips.
float PixelsToTwips(int pixels, UINT dpi) noexcept;
