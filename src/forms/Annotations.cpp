#include "forms/Annotations.h"

#include <initguid.h>
#include <oleacc.h>

#include <comdef.h>

namespace {

_com_ptr_t<_com_IIID<IAccPropServices, &IID_IAccPropServices>> Services() noexcept {
    IAccPropServices* services = nullptr;
    CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                     reinterpret_cast<void**>(&services));
    return {services, false};
}

}  // namespace

void Annotations::SetName(HWND window, const std::wstring& name) {
    told_.reserve(told_.size() + 1);
    const auto services = Services();
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
    const auto services = Services();
    if (services && SUCCEEDED(services->SetHwndProp(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF,
                                                    PROPID_ACC_ROLE, value))) {
        told_.emplace_back(window, Property::Role);
    }
}

// The service keeps what it was told beside the window and does not see the window go.
void Annotations::Clear() noexcept {
    if (told_.empty()) return;
    const auto services = Services();
    for (const auto& [window, property] : told_) {
        MSAAPROPID id = property == Property::Name ? PROPID_ACC_NAME : PROPID_ACC_ROLE;
        if (services && IsWindow(window)) {
            services->ClearHwndProps(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, &id, 1);
        }
    }
    told_.clear();
}
