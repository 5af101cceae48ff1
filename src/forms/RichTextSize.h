#pragma once

#include <windows.h>

#include <string>

// A rich edit control converts points to pixels by the DPI of its window or of the system, depending on its version.
// Where the two differ, its behaviour is measured and corrected by its zoom.

// What the text has to be zoomed by so that its lines are as high as they should be: 1, dpi/systemDpi or
// systemDpi/dpi, whichever explains best what was measured; 1 when none of them does. `measured`: the distance of two
// lines, `expected`: the height of the font at `dpi`, both in pixels.
float RichTextCorrection(int measured, int expected, UINT dpi, UINT systemDpi) noexcept;

// The same, measured with a control that is made in `container` for it; without one, 1 at once, where the container has
// the system's dots per inch.
float RichTextCorrection(HWND container, const std::wstring& face, float points);

// How far the second line of the text stands below the first, in pixels; 0 when there is none.
int LineDistance(HWND richEdit) noexcept;
