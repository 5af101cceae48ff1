#pragma once

#include <windows.h>

#include <string>

// The system's message box, owned by `owner` (a topmost window would hide one that is not) and titled with the
// application title unless `title` is given. Returns IDYES, IDNO, ...; what an event let out meanwhile is thrown when
// it is back.
int MsgBox(HWND owner, const std::wstring& prompt, UINT flags);
int MsgBox(HWND owner, const std::wstring& prompt, UINT flags, const std::wstring& title);
