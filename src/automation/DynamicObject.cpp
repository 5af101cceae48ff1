#include "automation/DynamicObject.h"

#include <utility>

#include "automation/RuntimeError.h"
#include "automation/Text.h"

namespace {

// The key of the default member, which has no name.
constexpr const wchar_t* DefaultName = L"";
constexpr const wchar_t* EnumeratorName = L"_NewEnum";

class ItemEnumerator final : public ComObject<IEnumVARIANT> {
public:
    explicit ItemEnumerator(std::vector<Variant> items, size_t at = 0) : items_(std::move(items)), at_(at) {}

    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* items, ULONG* fetched) override {
        if (items == nullptr) return E_POINTER;
        ULONG given = 0;
        HRESULT result = S_OK;
        while (given < count && at_ < items_.size() && SUCCEEDED(result)) {
            VariantInit(&items[given]);
            result = VariantCopy(&items[given], &items_[at_]);
            if (SUCCEEDED(result)) {
                ++given;
                ++at_;
            }
        }
        if (fetched != nullptr) *fetched = given;
        return FAILED(result) ? result : given == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        const size_t left = items_.size() - at_;
        at_ += count < left ? count : left;
        return count <= left ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        at_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** clone) override {
        if (clone == nullptr) return E_POINTER;
        *clone = nullptr;
        try {
            *clone = new ItemEnumerator(items_, at_);
        } catch (...) {
            return E_OUTOFMEMORY;
        }
        return S_OK;
    }

private:
    std::vector<Variant> items_;
    size_t at_;
};

}  // namespace

// ---- Arguments

Arguments::Arguments(const DISPPARAMS& parameters) noexcept : parameters_(parameters) {}

size_t Arguments::Count() const noexcept { return parameters_.cArgs; }

const VARIANT* Arguments::Raw(size_t position) const noexcept {
    return position < Count() ? &parameters_.rgvarg[Count() - 1 - position] : nullptr;
}

Variant Arguments::operator[](size_t position) const {
    const VARIANT* raw = Raw(position);
    return raw != nullptr ? Variant(*raw) : Variant::Missing();
}

bool Arguments::Has(size_t position) const noexcept {
    const VARIANT* raw = Raw(position);
    return raw != nullptr && !(raw->vt == VT_ERROR && raw->scode == DISP_E_PARAMNOTFOUND);
}

bool Arguments::Let(size_t position, const Variant& value) const {
    const VARIANT* raw = Raw(position);
    // A reference may point to another reference, passed on from a caller further up. A malformed one points to itself.
    for (int depth = 0; raw != nullptr && raw->vt == (VT_BYREF | VT_VARIANT) && raw->pvarVal != nullptr &&
                        (raw->pvarVal->vt & VT_BYREF) != 0;
         ++depth) {
        if (depth == 8) return false;
        raw = raw->pvarVal;
    }
    if (raw == nullptr || (raw->vt & VT_BYREF) == 0 || raw->byref == nullptr) return false;
    if (raw->vt == (VT_BYREF | VT_VARIANT)) {
        RaiseIfFailed(VariantCopy(raw->pvarVal, const_cast<Variant*>(&value)));
        return true;
    }
    const auto type = static_cast<VARTYPE>(raw->vt & ~VT_BYREF);
    Variant changed;
    RaiseIfFailed(
        VariantChangeTypeEx(&changed, const_cast<Variant*>(&value), LOCALE_USER_DEFAULT, VARIANT_ALPHABOOL, type));
    switch (type) {
        case VT_BSTR:
            std::swap(*raw->pbstrVal, changed.bstrVal);
            return true;
        case VT_DISPATCH:
        case VT_UNKNOWN:
            std::swap(*raw->ppunkVal, changed.punkVal);
            return true;
        case VT_BOOL:
        case VT_I2:
        case VT_UI2:
            *raw->piVal = changed.iVal;
            return true;
        case VT_I1:
        case VT_UI1:
            *raw->pbVal = changed.bVal;
            return true;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_ERROR:
            *raw->plVal = changed.lVal;
            return true;
        case VT_R8:
        case VT_DATE:
        case VT_CY:
        case VT_I8:
        case VT_UI8:
            *raw->pdblVal = changed.dblVal;
            return true;
        default:
            RaiseError(ErrorNumber::TypeMismatch);
    }
}

// ---- DynamicObject

struct DynamicObject::Slot {
    Member Read;
    Setter Write;
};

DynamicObject::DynamicObject() = default;
DynamicObject::~DynamicObject() = default;

DynamicObject::Slot& DynamicObject::SlotOf(const std::wstring& name) {
    const auto [found, added] = names_.try_emplace(UCase(name), slots_.size());
    if (added) slots_.emplace_back();
    return slots_[found->second];
}

void DynamicObject::Define(const std::wstring& name, Member member) { SlotOf(name).Read = std::move(member); }

void DynamicObject::DefineLet(const std::wstring& name, Setter setter) { SlotOf(name).Write = std::move(setter); }

void DynamicObject::DefineDefault(Member member) { SlotOf(DefaultName).Read = std::move(member); }

void DynamicObject::DefineEnumerator(std::function<std::vector<Variant>()> items) {
    SlotOf(EnumeratorName).Read = [items = std::move(items)](const Arguments&) {
        VARIANT made;
        VariantInit(&made);
        made.punkVal = new ItemEnumerator(items());
        made.vt = VT_UNKNOWN;
        return Variant::Attach(made);
    };
}

HRESULT DynamicObject::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
}

HRESULT DynamicObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
    if (info != nullptr) *info = nullptr;
    return E_NOTIMPL;
}

HRESULT DynamicObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    if (names == nullptr || ids == nullptr) return E_POINTER;
    for (UINT at = 0; at < count; ++at) ids[at] = DISPID_UNKNOWN;
    if (count == 0 || names[0] == nullptr || *names[0] == L'\0') return DISP_E_UNKNOWNNAME;
    try {
        const auto found = names_.find(UCase(names[0]));
        if (found == names_.end()) return DISP_E_UNKNOWNNAME;
        ids[0] = static_cast<DISPID>(found->second + 1);
    } catch (...) {
        return E_OUTOFMEMORY;
    }
    // Arguments are positional; named ones are refused.
    return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT DynamicObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                              EXCEPINFO* exception, UINT*) {
    if (parameters == nullptr || (parameters->cArgs > 0 && parameters->rgvarg == nullptr)) return E_POINTER;
    // A member may let go of the object, or define others.
    const ComPtr<DynamicObject> held(this);
    HRESULT outcome = S_OK;
    try {
        outcome = Answer(id, flags, *parameters, result);
    } catch (...) {
        outcome = FillException(CurrentError(), exception);
    }
    return outcome;
}

HRESULT DynamicObject::Answer(DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT* result) {
    if (id == DISPID_VALUE || id == DISPID_NEWENUM) {
        const auto found = names_.find(UCase(id == DISPID_VALUE ? DefaultName : EnumeratorName));
        if (found == names_.end()) return DISP_E_MEMBERNOTFOUND;
        id = static_cast<DISPID>(found->second + 1);
    }
    if (id < 1 || static_cast<size_t>(id) > slots_.size()) return DISP_E_MEMBERNOTFOUND;
    const Slot slot = slots_[static_cast<size_t>(id) - 1];
    if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
        if (!slot.Write) return DISP_E_MEMBERNOTFOUND;
        if (parameters.cArgs != 1) return DISP_E_BADPARAMCOUNT;
        slot.Write(Variant(parameters.rgvarg[0]));
        return S_OK;
    }
    if (!slot.Read) return DISP_E_MEMBERNOTFOUND;
    Variant value = slot.Read(Arguments(parameters));
    if (result != nullptr) *result = value.Detach();
    return S_OK;
}

Object MakeCollection(std::vector<Variant> items) {
    auto* made = new DynamicObject;
    Object held = Object::Attach(made);
    const auto shared = std::make_shared<const std::vector<Variant>>(std::move(items));
    const auto item = [shared](const Arguments& arguments) {
        const long position = arguments[0].ToLong();
        if (position < 1 || static_cast<size_t>(position) > shared->size())
            RaiseError(ErrorNumber::SubscriptOutOfRange);
        return (*shared)[static_cast<size_t>(position) - 1];
    };
    made->Define(L"Count", [shared](const Arguments&) { return Variant(static_cast<long>(shared->size())); });
    made->Define(L"Item", item);
    made->DefineDefault(item);
    made->DefineEnumerator([shared] { return *shared; });
    return held;
}
