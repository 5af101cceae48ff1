#include "forms/Annotations.h"

#include <initguid.h>
#include <oleacc.h>

Annotations::Annotations() noexcept = default;
Annotations::~Annotations() { Clear(); }

IAccPropServices* Annotations::Services() noexcept {
    if (!asked_) {
        asked_ = true;
        CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                         services_.Receive<void>());
    }
    return services_.Get();
}

void Annotations::SetName(HWND window, const std::wstring& name) {
    told_.reserve(told_.size() + 1);
    IAccPropServices* const services = Services();
    if (services && SUCCEEDED(services->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF,
                                                       PROPID_ACC_NAME, name.c_str()))) {
        told_.emplace_back(window, Property::Name);
    }
}

void Annotations::SetRole(HWND window, long role) {
    told_.reserve(told_.size() + 1);
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_I4;
    value.lVal = role;
    IAccPropServices* const services = Services();
    if (services && SUCCEEDED(services->SetHwndProp(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF,
                                                    PROPID_ACC_ROLE, value))) {
        told_.emplace_back(window, Property::Role);
    }
}

// The service stores annotations apart from the window and does not notice its destruction.
void Annotations::Clear() noexcept {
    for (const auto& [window, property] : told_) {
        MSAAPROPID id = property == Property::Name ? PROPID_ACC_NAME : PROPID_ACC_ROLE;
        if (IsWindow(window)) {
            services_->ClearHwndProps(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, &id, 1);
        }
    }
    told_.clear();
    services_.Reset();
    asked_ = false;
}
