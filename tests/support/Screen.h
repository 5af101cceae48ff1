#pragma once

#include <windows.h>

#include "editor/ControlIds.h"
#include "support/EditorWindow.h"

int ScreenDpi();
// How well one colour is told from another: 1 not at all, 21 black on white.
double Contrast(COLORREF one, COLORREF other);

// The parts of the window that is shown, for tests of where they are and how they look. A page is 0 for the object
// browser, 1 for ANSI SQL, 2 for the database-specific one, 3 for the host's commands.
struct WindowParts {
    static HWND Control(int id) { return EditorWindow::Control(id); }
    static HWND Tab(int page) { return Control(IdLeftButton + page); }
    static HWND Page(int page) { return Control(IdLeftPage + page); }
    static HWND View(int page) { return GetDlgItem(Page(page), IdView + page); }
    static HWND Toolbar() { return Control(IdToolbar); }
    static HWND StatusBar() { return Control(IdStatusBar); }
    static HWND Description() { return Control(IdDescription); }
};
