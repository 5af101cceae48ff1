#pragma once

#include <windows.h>

#include <string>

// Identifies the module. Every DLL or program that links this floor defines these four once, at link time.
namespace App {
extern const wchar_t* const Title;  // application title: settings, message boxes, source of the errors it raises
extern const short Major;
extern const short Minor;
extern const short Revision;

// The module (DLL or program) that this code is linked into.
HMODULE Module() noexcept;
// The full path of its file, however long, as the process loaded it; empty when the system refuses.
std::wstring ModulePath();
}  // namespace App
