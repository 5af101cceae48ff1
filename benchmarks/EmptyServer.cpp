#include <windows.h>
#include <objbase.h>
#include <oaidl.h>

#include <new>

// The least that an in-process COM server is: a class factory and an object with nothing in it. The component's loading
// is measured against it.
namespace {

constexpr CLSID EmptyClass{0x6b0e9a52, 0x3c1d, 0x4f7e, {0x9a, 0x41, 0x52, 0x0d, 0x8e, 0x17, 0xb3, 0xc4}};

LONG alive = 0;

class EmptyObject final : public IDispatch {
public:
    EmptyObject() noexcept { InterlockedIncrement(&alive); }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = iid == IID_IUnknown || iid == IID_IDispatch ? this : nullptr;
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }
    ULONG STDMETHODCALLTYPE Release() override {
        const LONG left = InterlockedDecrement(&references_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }
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
    ~EmptyObject() { InterlockedDecrement(&alive); }
    LONG references_ = 1;
};

class EmptyFactory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
        return *object != nullptr ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
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
