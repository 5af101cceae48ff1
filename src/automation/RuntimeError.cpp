#include "automation/RuntimeError.h"

#include <oleauto.h>

#include <exception>
#include <new>
#include <utility>

#include "automation/App.h"
#include "automation/Variant.h"

HMODULE App::Module() noexcept {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&App::Module), &module);
    return module;
}

namespace {
struct Known { long Number; const wchar_t* Text; };
constexpr Known Texts[] = {
    {ErrorNumber::InvalidProcedureCall, L"Invalid procedure call or argument"},
    {ErrorNumber::Overflow, L"Overflow"},
    {ErrorNumber::OutOfMemory, L"Out of memory"},
    {ErrorNumber::SubscriptOutOfRange, L"Subscript out of range"},
    {ErrorNumber::TypeMismatch, L"Type mismatch"},
    {ErrorNumber::ObjectNotSet, L"Object variable or With block variable not set"},
    {ErrorNumber::InvalidUseOfNull, L"Invalid use of Null"},
    {ErrorNumber::NoSuchMember, L"Object doesn't support this property or method"},
    {ErrorNumber::ElementNotFound, L"Element not found"},
    {ErrorNumber::FormAlreadyShown, L"Form already displayed; can't show modally"},
};
}
std::wstring ErrorText(long n) { for (auto& k : Texts) if (k.Number == n) return k.Text; return L"Application-defined or object-defined error"; }
void RaiseError(long n) { throw RuntimeError{n, App::Title, ErrorText(n), L"", 0, 0}; }
void RaiseError(long n, std::wstring d) { throw RuntimeError{n, App::Title, std::move(d), L"", 0, 0}; }
void RaiseError(long n, std::wstring s, std::wstring d) { throw RuntimeError{n, std::move(s), std::move(d), L"", 0, 0}; }
void RaiseSystemError(long n, DWORD e) { throw RuntimeError{n, App::Title, ErrorText(n), L"", 0, static_cast<long>(e)}; }
RuntimeError CurrentError() noexcept {
    try { throw; }
    catch (const RuntimeError& e) { return e; }
    catch (const std::bad_alloc&) { return RuntimeError{7, App::Title, ErrorText(7), L"", 0, 0}; }
    catch (...) { return RuntimeError{440, App::Title, L"Automation error", L"", 0, 0}; }
}
RuntimeError ErrorFromHresult(HRESULT hr, EXCEPINFO* x) {
    RuntimeError e;
    HRESULT code = hr;
    if (x && hr == DISP_E_EXCEPTION) {
        if (x->pfnDeferredFillIn) x->pfnDeferredFillIn(x);
        e.Source = TextOf(x->bstrSource); e.Description = TextOf(x->bstrDescription); e.HelpFile = TextOf(x->bstrHelpFile);
        e.HelpContext = x->dwHelpContext;
        SysFreeString(x->bstrSource); SysFreeString(x->bstrDescription); SysFreeString(x->bstrHelpFile);
        code = x->wCode ? x->wCode : x->scode;
    }
    if ((code & 0xFFFF0000) == 0x800A0000) code &= 0xFFFF;
    switch (code) {
        case DISP_E_MEMBERNOTFOUND: case DISP_E_UNKNOWNNAME: e.Number = 438; break;
        case DISP_E_TYPEMISMATCH: e.Number = 13; break;
        case DISP_E_OVERFLOW: e.Number = 6; break;
        case E_OUTOFMEMORY: e.Number = 7; break;
        default: e.Number = code;
    }
    if (e.Source.empty()) e.Source = App::Title;
    if (e.Description.empty()) e.Description = ErrorText(e.Number);
    return e;
}
void CheckHresult(HRESULT hr) { if (FAILED(hr)) throw ErrorFromHresult(hr, nullptr); }
HRESULT HresultFromError(const RuntimeError& e) noexcept { return e.Number > 0 && e.Number < 65536 ? static_cast<HRESULT>(0x800A0000 + e.Number) : e.Number; }
HRESULT PublishError(const RuntimeError& e) noexcept { return HresultFromError(e); }
HRESULT FillException(const RuntimeError& e, EXCEPINFO* x) noexcept {
    if (!x) return PublishError(e);
    *x = {}; x->scode = HresultFromError(e);
    x->bstrSource = SysAllocString(e.Source.c_str()); x->bstrDescription = SysAllocString(e.Description.c_str());
    return DISP_E_EXCEPTION;
}
