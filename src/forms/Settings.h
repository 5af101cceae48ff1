#pragma once

#include <string>

// The per-user settings store, where the hosts' language keeps the settings of its programs:
// HKEY_CURRENT_USER\Software\VB and VBA Program Settings\<application>\<section>, one text value a key.

// The value, or `fallback` when the application, section or key is missing. A value that is no text reads as empty.
std::wstring GetSetting(const std::wstring& application, const std::wstring& section, const std::wstring& key,
                        const std::wstring& fallback);
// Error 5, with the Windows error in LastDllError, when the store refuses.
void SaveSetting(const std::wstring& application, const std::wstring& section, const std::wstring& key,
                 const std::wstring& value);

// Numbers in settings use '.' whatever the user's locale, so they survive a change of locale. Text that is not a number
// is error 13, one beyond single precision is error 6.
float ToSingle(const std::wstring& text);
std::wstring FromSingle(float value);
