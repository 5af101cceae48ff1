#include "forms/Twips.h"

#include <cmath>

#include "automation/RuntimeError.h"

namespace {

int Nearest(double length) {
    const double whole = std::nearbyint(length);  // halves to even
    if (!(whole >= -2147483648.0 && whole <= 2147483647.0)) RaiseError(ErrorNumber::Overflow);
    return static_cast<int>(whole);
}

}  // namespace

int TwipsToPixels(float twips, UINT dpi) { return Nearest(static_cast<double>(twips) * dpi / TwipsPerInch); }

long WholeTwips(float twips) { return Nearest(twips); }

float PixelsToTwips(int pixels, UINT dpi) noexcept {
    return static_cast<float>(static_cast<double>(pixels) * TwipsPerInch / dpi);
}
