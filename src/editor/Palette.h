#pragma once

#include <windows.h>

#include <array>

// The colours that SQL is shown in. The first of both kinds is the window's own.
struct Palette {
    static constexpr double LeastContrast = 4.5;

    std::array<COLORREF, 7> Text{};    // by Sql::Colour
    std::array<COLORREF, 4> Ground{};  // what marked characters stand on, by Sql::Mark

    // For a window of these colours, whatever they are: each colour can be read on the window and on every ground, and
    // so can the window's own, as far as it can be read on the window.
    static Palette For(COLORREF window, COLORREF text) noexcept;
};

// How well one colour can be read on the other, from 1 to 21.
double ContrastOf(COLORREF one, COLORREF other) noexcept;
// Whether the user has chosen a contrast theme, in which all colours are those of the theme.
bool IsContrastTheme() noexcept;
