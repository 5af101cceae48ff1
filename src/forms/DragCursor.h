#pragma once

#include <string>

#include "forms/Handles.h"

// An arrow with a small label below it that says what is dragged; null when Windows cannot make it. `window` gives the
// dots per inch. A long text is cut, a text of several lines is shown by its first one.
CursorHandle MakeDragCursor(HWND window, const std::wstring& text);
