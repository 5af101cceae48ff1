#pragma once

#include <gtest/gtest.h>
#include <windows.h>
#include <oaidl.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/HostCollection.h"
#include "automation/RuntimeError.h"
#include "automation/Variant.h"
#include "support/CountedObject.h"
#include "support/Errors.h"

// A VARIANT of the type that points at something, as hosts pass variables.
inline VARIANT Raw(VARTYPE type, void* byref) {
    VARIANT raw;
    VariantInit(&raw);
    raw.vt = type;
    raw.byref = byref;
    return raw;
}

// The items in order, each followed by a bar.
inline std::wstring Joined(const HostCollection& collection) {
    std::wstring texts;
    collection.ForEach([&texts](const Variant& item) {
        texts += item.ToText() + L"|";
        return true;
    });
    return texts;
}

// Leaves an error of somebody else's on the thread, as an object does whose caller never looked.
inline void LeaveErrorInfo(const wchar_t* source) {
    RuntimeError stale;
    stale.Number = 1000;
    stale.Source = source;
    stale.Description = L"not ours";
    PublishError(stale);
}

// An object that does what a test tells it to, however wrong. It lives on the stack: its count must be 1 again at the
// end.
class FakeDispatch : public StackObject<IDispatch> {
public:
    using Body = std::function<HRESULT(DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*)>;

    explicit FakeDispatch(std::map<std::wstring, DISPID> names = {{L"Member", 7}}) : Names(std::move(names)) {}
    virtual ~FakeDispatch() { EXPECT_EQ(1u, References) << "references that were taken and not given back"; }

    std::map<std::wstring, DISPID> Names;
    Body OnInvoke;
    HRESULT LookUpResult = S_OK;
    int LookUps = 0;
    int Calls = 0;
    LCID Locale = 0;
    std::vector<WORD> Flags;

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID locale, DISPID* ids) override {
        ++LookUps;
        Locale = locale;
        if (FAILED(LookUpResult)) return LookUpResult;
        const auto found = Names.find(names[0]);
        ids[0] = found != Names.end() ? found->second : DISPID_UNKNOWN;
        return found != Names.end() ? S_OK : DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO* exception, UINT*) override {
        ++Calls;
        Flags.push_back(flags);
        return OnInvoke ? OnInvoke(id, flags, *parameters, result, exception) : DISP_E_MEMBERNOTFOUND;
    }
};
