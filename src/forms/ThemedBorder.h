#pragma once

#include <windows.h>

// Paints the sunken border (WS_EX_CLIENTEDGE) of a window as the theme has it around lists and trees, over what the
// window's class has painted: for classes that know nothing of themes. To be called after WM_NCPAINT; does nothing
// without a theme.
void PaintThemedBorder(HWND window) noexcept;
