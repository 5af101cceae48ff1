#include "editor/Palette.h"

#include <commctrl.h>

#include <algorithm>
#include <cmath>

namespace {

double Luminance(COLORREF colour) noexcept {
    const auto part = [](int value) {
        const double share = value / 255.0;
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(GetRValue(colour)) + 0.7152 * part(GetGValue(colour)) + 0.0722 * part(GetBValue(colour));
}

COLORREF Mixed(COLORREF one, COLORREF other, int percent) noexcept {
    const auto part = [percent](int from, int to) { return (from * (100 - percent) + to * percent) / 100; };
    return RGB(part(GetRValue(one), GetRValue(other)), part(GetGValue(one), GetGValue(other)),
               part(GetBValue(one), GetBValue(other)));
}

bool Reads(COLORREF one, COLORREF other) noexcept { return ContrastOf(one, other) >= Palette::LeastContrast; }

}  // namespace

double ContrastOf(COLORREF one, COLORREF other) noexcept {
    const double a = Luminance(one) + 0.05;
    const double b = Luminance(other) + 0.05;
    return a > b ? a / b : b / a;
}

bool IsContrastTheme() noexcept {
    HIGHCONTRASTW scheme{};
    scheme.cbSize = sizeof scheme;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof scheme, &scheme, 0) &&
           (scheme.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

Palette Palette::For(COLORREF window, COLORREF text) noexcept {
    constexpr COLORREF Black = RGB(0, 0, 0);
    constexpr COLORREF White = RGB(255, 255, 255);
    const bool light = ContrastOf(window, Black) >= ContrastOf(window, White);
    // One of the two can be read on every colour.
    const COLORREF limit = light ? Black : White;
    const COLORREF other = light ? White : Black;
    const bool own = Reads(text, window);

    const auto ground = [&](COLORREF towards, int percent) {
        const auto fits = [&](COLORREF colour) { return Reads(limit, colour) && (!own || Reads(text, colour)); };
        for (; percent > 0; --percent) {
            for (const COLORREF end : {towards, other}) {
                const COLORREF colour = Mixed(window, end, percent);
                if (colour != window && fits(colour)) return colour;
            }
        }
        return window;
    };
    Palette palette;
    palette.Ground = {CLR_DEFAULT, ground(limit, 18), ground(RGB(255, 0, 0), 30), ground(limit, 9)};

    using Colours = std::array<COLORREF, 7>;
    constexpr Colours OnLight = {CLR_DEFAULT,      RGB(0, 0, 200), RGB(130, 0, 130), RGB(163, 21, 21),
                                 RGB(0, 110, 110), RGB(0, 110, 0), RGB(130, 80, 0)};
    constexpr Colours OnDark = {CLR_DEFAULT,        RGB(110, 170, 255), RGB(220, 150, 255), RGB(235, 150, 130),
                                RGB(120, 210, 210), RGB(130, 200, 110), RGB(225, 195, 120)};
    palette.Text = light ? OnLight : OnDark;
    for (size_t at = 1; at < palette.Text.size(); ++at) {
        const COLORREF base = palette.Text[at];
        const auto reads = [&](COLORREF colour) {
            return Reads(colour, window) && std::all_of(palette.Ground.begin() + 1, palette.Ground.end(),
                                                        [&](COLORREF each) { return Reads(colour, each); });
        };
        for (int percent = 0; percent <= 100; percent += 5) {
            palette.Text[at] = Mixed(base, limit, percent);
            if (reads(palette.Text[at])) break;
        }
    }
    return palette;
}
