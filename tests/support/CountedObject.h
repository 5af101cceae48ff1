#pragma once

#include <windows.h>
#include <ole2.h>

// An object of a test on the heap with one interface, which goes with its last reference. `First` is the number of
// references that it is made with.
template <class Interface, ULONG First = 0>
class CountedObject : public Interface {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = iid == IID_IUnknown || iid == __uuidof(Interface) ? this : nullptr;
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

protected:
    virtual ~CountedObject() = default;

private:
    ULONG references_ = First;
};

// One that the test owns, on the stack or for the whole program. `References` counts what is held of it, from 1.
template <class Interface>
class StackObject : public Interface {
public:
    ULONG References = 1;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = iid == IID_IUnknown || iid == __uuidof(Interface) ? this : nullptr;
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++References; }
    ULONG STDMETHODCALLTYPE Release() override { return --References; }
};
