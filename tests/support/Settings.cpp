#include "support/Settings.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "automation/App.h"

namespace {
std::wstring SettingsRoot() { return std::wstring(L"Software\\VB and VBA Program Settings\\") + App::Title; }
}  // namespace

void Settings::Clear() {
    RegDeleteTreeW(HKEY_CURRENT_USER, SettingsRoot().c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, SettingsRoot().c_str());
}

std::wstring Settings::Get(const wchar_t* key) {
    wchar_t value[200]{};
    DWORD bytes = sizeof value - sizeof(wchar_t);
    if (RegGetValueW(HKEY_CURRENT_USER, (SettingsRoot() + L"\\Settings").c_str(), key, RRF_RT_REG_SZ, nullptr, value,
                     &bytes) != ERROR_SUCCESS) {
        return L"<none>";
    }
    return value;
}

void Settings::Put(const wchar_t* key, const wchar_t* value) {
    HKEY opened = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, (SettingsRoot() + L"\\Settings").c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                    &opened, nullptr);
    RegSetValueExW(opened, key, 0, REG_SZ, reinterpret_cast<const BYTE*>(value),
                   static_cast<DWORD>((wcslen(value) + 1) * sizeof(wchar_t)));
    RegCloseKey(opened);
}

void Settings::Refuse() {
    Clear();
    // Below a volatile key no lasting one can be made.
    HKEY key = nullptr;
    EXPECT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, SettingsRoot().c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                                             KEY_ALL_ACCESS, nullptr, &key, nullptr));
    RegCloseKey(key);
}
