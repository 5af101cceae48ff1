#pragma once

#include <windows.h>

// A library of the system, by its name with its extension, from the system's folder and nowhere else. Null when there
// is none. It stays loaded. By its full path, since Windows 7 knows LOAD_LIBRARY_SEARCH_SYSTEM32 only with an update.
HMODULE LoadSystemLibrary(const wchar_t* name) noexcept;
