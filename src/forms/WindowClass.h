#pragma once

#include <windows.h>

// Window classes are registered once a module, and given back when the module goes.
void RegisterWindowClass(const wchar_t* name, WNDPROC procedure, UINT style);
void UnregisterWindowClasses() noexcept;
