#pragma once

#include <windows.h>
#include <unknwn.h>

#include <utility>

// Owns one reference to a COM object. Not the toolchain's own, whose Attach adds a reference in some releases.
template <class T>
class ComPtr {
public:
    ComPtr() noexcept = default;
    explicit ComPtr(T* object) noexcept : object_(object) {
        if (object_ != nullptr) object_->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.object_) {}
    ComPtr(ComPtr&& other) noexcept : object_(other.Detach()) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComPtr() { Reset(); }

    // Takes over the caller's reference.
    static ComPtr Attach(T* object) noexcept {
        ComPtr taken;
        taken.object_ = object;
        return taken;
    }
    // Hands the reference over to the caller.
    T* Detach() noexcept { return std::exchange(object_, nullptr); }
    // Empty before it releases, which may re-enter.
    void Reset() noexcept {
        if (T* const object = Detach()) object->Release();
    }

    // For a call that returns an object through its last argument: pointer.Filled(Call(..., pointer.Receive())).
    // Any address of an interface that a COM method takes.
    template <class Out = T>
    Out** Receive() noexcept {
        Reset();
        return reinterpret_cast<Out**>(&object_);
    }
    // Whether that call succeeded and returned an object. After a failure nothing is owned, whatever the callee wrote.
    bool Filled(HRESULT result) noexcept {
        if (FAILED(result)) object_ = nullptr;
        return object_ != nullptr;
    }
    // The object's interface U; empty when it has none, or says so and returns nothing. `id` for interfaces whose id
    // some headers lack.
    template <class U>
    ComPtr<U> As(REFIID id = __uuidof(U)) const noexcept {
        ComPtr<U> found;
        if (object_ != nullptr) found.Filled(object_->QueryInterface(id, found.template Receive<void>()));
        return found;
    }

    T* Get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

private:
    T* object_ = nullptr;
};
