#pragma once

#include <functional>

#include "support/HostFakes.h"

// For FakeErrors::Wrap: the error component in an object that calls `look` with the name of each member before it does
// what the member does.
inline Object Watched(const Object& recorder, const std::function<void(const wchar_t*)>& look) {
    auto* made = new DynamicObject;
    const Object wrapper = Object::Attach(made);
    made->Define(L"Constructor", [look](const Arguments&) {
        look(L"Constructor");
        return Variant();
    });
    made->Define(L"ErrorMessage", [look, recorder](const Arguments& a) {
        look(L"ErrorMessage");
        return recorder.Call(L"ErrorMessage", a[0], a[1], a[2], a[3], Variant::Missing());
    });
    return wrapper;
}
