#include "support/Screen.h"

#include <cmath>

int ScreenDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi;
}

double Contrast(COLORREF one, COLORREF other) {
    const auto luminance = [](COLORREF colour) {
        const auto part = [](int value) {
            const double share = value / 255.0;
            return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(GetRValue(colour)) + 0.7152 * part(GetGValue(colour)) + 0.0722 * part(GetBValue(colour));
    };
    const double a = luminance(one) + 0.05;
    const double b = luminance(other) + 0.05;
    return a > b ? a / b : b / a;
}
