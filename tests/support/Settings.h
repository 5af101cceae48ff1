#pragma once

#include <string>

// The user's saved placement, set aside for the time of a test.
namespace Settings {
void Clear();
std::wstring Get(const wchar_t* key);
void Put(const wchar_t* key, const wchar_t* value);
// Clears them, and none can be saved until Clear.
void Refuse();
}  // namespace Settings
