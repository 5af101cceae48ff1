#include "forms/Twips.h"

#include <cmath>

#include "automation/RuntimeError.h"

int TwipsToPixels(float twips, UINT dpi) {
    const double pixels = std::nearbyint(static_cast<double>(twips) * dpi / TwipsPerInch);
    if (!(pixels >= -2147483648.0 && pixels <= 2147483647.0)) RaiseError(ErrorNumber::Overflow);
    return static_cast<int>(pixels);
}

float PixelsToTwips(int pixels, UINT dpi) noexcept {
    return static_cast<float>(static_cast<double>(pixels) * TwipsPerInch / dpi);
}
