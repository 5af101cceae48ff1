#pragma once

#include <windows.h>
#include <objbase.h>
#include <oaidl.h>

#include <type_traits>

#include "automation/ComPtr.h"
#include "automation/Server.h"

// IUnknown for an object that has these interfaces. The first one is its identity; an interface that is derived from
// IDispatch stands for that too. Made with `new`, with one reference; keeps the module loaded.
template <class First, class... Others>
class ComObject : public First, public Others... {
public:
    ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (iid == IID_IUnknown) *object = static_cast<First*>(this);
        Find<First>(iid, object);
        (Find<Others>(iid, object), ...);
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override {
        return static_cast<ULONG>(InterlockedIncrement(&references_));
    }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const LONG left = InterlockedDecrement(&references_);
        if (left == 0) {
            // Destruction may run the host's code; a high count keeps a re-entrant AddRef/Release from destroying
            // twice.
            references_ = 0x10000;
            Destroy();
        }
        return static_cast<ULONG>(left);
    }

protected:
    virtual ~ComObject() = default;
    // How the last Release ends the object.
    virtual void Destroy() noexcept { delete this; }

private:
    template <class Interface>
    void Find(REFIID iid, void** object) noexcept {
        if (*object != nullptr) return;
        if (iid == __uuidof(Interface) || (std::is_base_of_v<IDispatch, Interface> && iid == IID_IDispatch))
            *object = static_cast<Interface*>(this);
    }

    LONG references_ = 1;
    ModuleLock lock_;
};
