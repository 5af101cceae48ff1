#include <windows.h>
#include <objbase.h>
#include <oaidl.h>

#include <new>

#include "support/CountedObject.h"

// The least that an in-process COM server is: a class factory and an object with nothing in it. The component's loading
// is measured against it.
namespace {

constexpr CLSID EmptyClass{0x6b0e9a52, 0x3c1d, 0x4f7e, {0x9a, 0x41, 0x52, 0x0d, 0x8e, 0x17, 0xb3, 0xc4}};

LONG alive = 0;

class EmptyObject final : public CountedObject<IDispatch, 1> {
public:
    EmptyObject() noexcept { InterlockedIncrement(&alive); }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

private:
    ~EmptyObject() override { InterlockedDecrement(&alive); }
};

class EmptyFactory final : public StackObject<IClassFactory> {
public:
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
        *object = nullptr;
        auto* made = new (std::nothrow) EmptyObject;
        if (made == nullptr) return E_OUTOFMEMORY;
        const HRESULT result = made->QueryInterface(iid, object);
        made->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

EmptyFactory factory;

}  // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
    return id == EmptyClass ? factory.QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return alive == 0 ? S_OK : S_FALSE; }
