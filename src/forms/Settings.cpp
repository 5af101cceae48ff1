#include "forms/Settings.h"

#include <windows.h>
#include <oleauto.h>

#include <cmath>

#include "automation/RuntimeError.h"
#include "automation/Variant.h"
#include "forms/Handles.h"

namespace {

std::wstring PathOf(const std::wstring& application, const std::wstring& section) {
    return L"Software\\VB and VBA Program Settings\\" + application + L"\\" + section;
}

}  // namespace

std::wstring GetSetting(const std::wstring& application, const std::wstring& section, const std::wstring& key,
                        const std::wstring& fallback) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, PathOf(application, section).c_str(), 0, KEY_QUERY_VALUE, &opened) !=
        ERROR_SUCCESS) {
        return fallback;
    }
    const RegistryKey owned(opened);
    DWORD type = 0;
    DWORD bytes = 0;
    if (RegQueryValueExW(opened, key.c_str(), nullptr, &type, nullptr, &bytes) != ERROR_SUCCESS) return fallback;
    if (type != REG_SZ && type != REG_EXPAND_SZ) return {};
    std::wstring value(bytes / sizeof(wchar_t) + 1, L'\0');
    bytes = static_cast<DWORD>(value.size() * sizeof(wchar_t));
    if (RegQueryValueExW(opened, key.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(value.data()), &bytes) !=
        ERROR_SUCCESS) {
        return {};
    }
    value.resize(bytes / sizeof(wchar_t));
    // The value may lack a terminating NUL, or hold several.
    value.resize(value.find(L'\0') == std::wstring::npos ? value.size() : value.find(L'\0'));
    return value;
}

void SaveSetting(const std::wstring& application, const std::wstring& section, const std::wstring& key,
                 const std::wstring& value) {
    HKEY opened = nullptr;
    LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, PathOf(application, section).c_str(), 0, nullptr, 0,
                                     KEY_SET_VALUE, nullptr, &opened, nullptr);
    if (status != ERROR_SUCCESS) RaiseSystemError(ErrorNumber::InvalidProcedureCall, static_cast<DWORD>(status));
    const RegistryKey owned(opened);
    status = RegSetValueExW(opened, key.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                            static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    if (status != ERROR_SUCCESS) RaiseSystemError(ErrorNumber::InvalidProcedureCall, static_cast<DWORD>(status));
}

float ToSingle(const std::wstring& text) {
    float value = 0;
    // The invariant locale writes numbers with a point.
    const HRESULT result =
        VarR4FromStr(const_cast<OLECHAR*>(text.c_str()), LOCALE_INVARIANT, LOCALE_NOUSEROVERRIDE, &value);
    if (result == DISP_E_OVERFLOW) RaiseError(ErrorNumber::Overflow);
    if (FAILED(result) || !std::isfinite(value)) RaiseError(ErrorNumber::TypeMismatch);
    return value;
}

// The seven digits that a Single has.
std::wstring FromSingle(float value) {
    Bstr text;
    if (FAILED(VarBstrFromR4(value, LOCALE_INVARIANT, LOCALE_NOUSEROVERRIDE, text.Receive())))
        RaiseError(ErrorNumber::Overflow);
    return TextOf(text.Get());
}
