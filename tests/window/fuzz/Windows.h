#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>

// The editor's window read without a limit, and past NUL.
std::wstring EditorText();              // the rich edit control's, line ends as CR LF
std::wstring NodeText(HTREEITEM item);  // as the tree of the object browser shows it

// Puts a text into the editor.
void PutText(const std::wstring& text);
