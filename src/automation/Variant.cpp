#include "automation/Variant.h"

#include <cstring>
#include <new>

#include "automation/Object.h"
#include "automation/RuntimeError.h"
#include "automation/Scope.h"

namespace {

// The contents of a VARIANT are moved by copying its bytes: no kind of value points into itself.
void MoveBytes(VARIANT& to, VARIANT& from) noexcept {
    std::memcpy(&to, &from, sizeof(VARIANT));
    from.vt = VT_EMPTY;
}

// The C headers take pointers to what they only read without const.
VARIANT* Mutable(const VARIANT* value) noexcept { return const_cast<VARIANT*>(value); }

// How many bytes an element of the type takes in an array, 0 for types that are no variant's value.
UINT ElementSize(VARTYPE type) noexcept {
    switch (type) {
        case VT_I1:
        case VT_UI1:
            return 1;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            return 2;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_ERROR:
            return 4;
        case VT_I8:
        case VT_UI8:
        case VT_R8:
        case VT_DATE:
        case VT_CY:
            return 8;
        case VT_DECIMAL:
            return sizeof(DECIMAL);
        case VT_VARIANT:
            return sizeof(VARIANT);
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return sizeof(void*);
        default:
            return 0;
    }
}

// A DECIMAL can hold bit patterns that are not numbers; Wine's conversion to text then overruns its buffer.
bool IsDecimal(const DECIMAL& number) noexcept { return number.scale <= 28 && (number.sign & ~DECIMAL_NEG) == 0; }

// Whether an array holds what its variant says. Elements that own something are marked in the array itself.
bool HoldsElements(SAFEARRAY* array, VARTYPE type) noexcept {
    const UINT size = ElementSize(type);
    if (size == 0 || SafeArrayGetElemsize(array) != size) return false;
    constexpr USHORT Owning = FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH | FADF_VARIANT | FADF_RECORD;
    const USHORT owned = array->fFeatures & Owning;
    switch (type) {
        case VT_VARIANT:
            return owned == FADF_VARIANT;
        case VT_BSTR:
            return owned == FADF_BSTR;
        case VT_DISPATCH:
            return owned == FADF_DISPATCH;
        case VT_UNKNOWN:
            return owned == FADF_UNKNOWN || owned == FADF_DISPATCH;
        default:
            return owned == 0;
    }
}

}  // namespace

Bstr::Bstr(std::wstring_view text) : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
    if (text_ == nullptr) throw std::bad_alloc();
}

std::wstring TextOf(BSTR text) { return text != nullptr ? std::wstring(text, SysStringLen(text)) : std::wstring(); }

Variant::Variant() noexcept { VariantInit(this); }

Variant::Variant(const Variant& other) : VARIANT() {
    VariantInit(this);
    RaiseIfFailed(VariantCopy(this, Mutable(&other)));
}

Variant::Variant(Variant&& other) noexcept : VARIANT() { MoveBytes(*this, other); }

Variant& Variant::operator=(const Variant& other) {
    if (this != &other) {
        Variant copy(other);
        *this = std::move(copy);
    }
    return *this;
}

Variant& Variant::operator=(Variant&& other) noexcept {
    if (this != &other) {
        // Release can re-enter; the variable already holds the new value by then.
        VARIANT old;
        MoveBytes(old, *this);
        MoveBytes(*this, other);
        VariantClear(&old);
    }
    return *this;
}

Variant::~Variant() { VariantClear(this); }

Variant::Variant(std::wstring_view text) {
    VariantInit(this);
    bstrVal = Bstr(text).Detach();
    vt = VT_BSTR;
}

Variant::Variant(const std::wstring& text) : Variant(std::wstring_view(text)) {}

Variant::Variant(const wchar_t* text) : Variant(std::wstring_view(text)) {}

Variant::Variant(bool value) noexcept {
    VariantInit(this);
    vt = VT_BOOL;
    boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

Variant::Variant(short value) noexcept {
    VariantInit(this);
    vt = VT_I2;
    iVal = value;
}

Variant::Variant(long value) noexcept {
    VariantInit(this);
    vt = VT_I4;
    lVal = value;
}

Variant::Variant(int value) noexcept : Variant(static_cast<long>(value)) {}

Variant::Variant(double value) noexcept {
    VariantInit(this);
    vt = VT_R8;
    dblVal = value;
}

Variant::Variant(const Object& object) noexcept : Variant(object.Dispatch()) {}

Variant::Variant(IDispatch* object) noexcept {
    VariantInit(this);
    vt = VT_DISPATCH;
    pdispVal = object;
    if (object != nullptr) object->AddRef();
}

Variant::Variant(const VARIANT& other) : VARIANT() {
    VariantInit(this);
    const VARIANT* value = &other;
    // A variant by reference may hold a reference in its turn, and a wrong one itself.
    for (int depth = 0; value->vt == (VT_BYREF | VT_VARIANT); ++depth) {
        if (value->pvarVal == nullptr || depth == 8) RaiseError(ErrorNumber::TypeMismatch);
        value = value->pvarVal;
    }
    // Windows dereferences the pointer without a check for null.
    if ((value->vt & VT_BYREF) != 0 && value->byref == nullptr) RaiseError(ErrorNumber::TypeMismatch);
    RaiseIfFailed(VariantCopyInd(this, Mutable(value)));
}

Variant Variant::Missing() noexcept {
    Variant made;
    made.vt = VT_ERROR;
    made.scode = DISP_E_PARAMNOTFOUND;
    return made;
}

Variant Variant::Null() noexcept {
    Variant made;
    made.vt = VT_NULL;
    return made;
}

Variant Variant::Nothing() noexcept { return Variant(static_cast<IDispatch*>(nullptr)); }

Variant Variant::Attach(VARIANT& other) noexcept {
    Variant made;
    MoveBytes(made, other);
    return made;
}

Variant Variant::ArrayOf(const std::vector<Variant>& items, long lowerBound) {
    SAFEARRAYBOUND bound{static_cast<ULONG>(items.size()), lowerBound};
    Variant made;
    made.parray = SafeArrayCreate(VT_VARIANT, 1, &bound);
    if (made.parray == nullptr) throw std::bad_alloc();
    made.vt = VT_ARRAY | VT_VARIANT;
    LONG at = lowerBound;
    for (const Variant& item : items) {
        RaiseIfFailed(SafeArrayPutElement(made.parray, &at, Mutable(&item)));
        ++at;
    }
    return made;
}

Variant Variant::ArrayOf(std::vector<Variant>&& items, long lowerBound) {
    SAFEARRAYBOUND bound{static_cast<ULONG>(items.size()), lowerBound};
    Variant made;
    made.parray = SafeArrayCreate(VT_VARIANT, 1, &bound);
    if (made.parray == nullptr) throw std::bad_alloc();
    made.vt = VT_ARRAY | VT_VARIANT;
    void* data = nullptr;
    RaiseIfFailed(SafeArrayAccessData(made.parray, &data));
    auto* element = static_cast<VARIANT*>(data);
    for (Variant& item : items) *element++ = item.Detach();
    SafeArrayUnaccessData(made.parray);
    return made;
}

bool Variant::IsEmpty() const noexcept { return vt == VT_EMPTY; }

bool Variant::IsNull() const noexcept { return vt == VT_NULL; }

bool Variant::IsMissing() const noexcept { return vt == VT_ERROR && scode == DISP_E_PARAMNOTFOUND; }

bool Variant::IsObject() const noexcept { return vt == VT_DISPATCH || vt == VT_UNKNOWN; }

bool Variant::IsNothing() const noexcept { return IsObject() && punkVal == nullptr; }

bool Variant::IsArray() const noexcept { return (vt & VT_ARRAY) != 0; }

bool Variant::IsNumeric() const noexcept {
    switch (vt) {
        case VT_EMPTY:
        case VT_I1:
        case VT_I2:
        case VT_I4:
        case VT_I8:
        case VT_INT:
        case VT_UI1:
        case VT_UI2:
        case VT_UI4:
        case VT_UI8:
        case VT_UINT:
        case VT_R4:
        case VT_R8:
        case VT_CY:
        case VT_BOOL:
            return true;
        case VT_DECIMAL:
            return IsDecimal(decVal);
        case VT_BSTR: {
            double number = 0;
            return SUCCEEDED(VarR8FromStr(bstrVal != nullptr ? bstrVal : const_cast<OLECHAR*>(L""), LOCALE_USER_DEFAULT,
                                          0, &number));
        }
        default:
            return false;
    }
}

Variant Variant::ChangedTo(VARTYPE type) const {
    // Converted here because VariantChangeTypeEx turns whatever error the object raises into a type mismatch.
    if (vt == VT_DISPATCH && pdispVal != nullptr) {
        Variant value = Object(pdispVal).Value();
        for (int depth = 0; value.vt == VT_DISPATCH && value.pdispVal != nullptr; ++depth) {
            if (depth == 8) RaiseError(ErrorNumber::TypeMismatch);
            value = Object(value.pdispVal).Value();
        }
        return value.ChangedTo(type);
    }
    if (IsNull()) RaiseError(ErrorNumber::InvalidUseOfNull);
    if (IsNothing()) RaiseError(ErrorNumber::ObjectNotSet);
    if (IsArray() || IsMissing()) RaiseError(ErrorNumber::TypeMismatch);
    if (vt == VT_DECIMAL && !IsDecimal(decVal)) RaiseError(ErrorNumber::InvalidProcedureCall);
    Variant changed;
    // Booleans read as words, as the hosts' own conversion writes them.
    RaiseIfFailed(VariantChangeTypeEx(&changed, Mutable(this), LOCALE_USER_DEFAULT, VARIANT_ALPHABOOL, type));
    return changed;
}

std::wstring Variant::ToText() const { return vt == VT_BSTR ? TextOf(bstrVal) : TextOf(ChangedTo(VT_BSTR).bstrVal); }

long Variant::ToLong() const { return vt == VT_I4 ? lVal : ChangedTo(VT_I4).lVal; }

short Variant::ToInteger() const { return ChangedTo(VT_I2).iVal; }

bool Variant::ToBoolean() const { return ChangedTo(VT_BOOL).boolVal != VARIANT_FALSE; }

double Variant::ToDouble() const { return ChangedTo(VT_R8).dblVal; }

Object Variant::ToObject() const {
    switch (vt) {
        case VT_DISPATCH:
            return Object(pdispVal);
        case VT_UNKNOWN: {
            if (punkVal == nullptr) return Object();
            IDispatch* dispatch = nullptr;
            if (FAILED(punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch))) ||
                dispatch == nullptr) {
                RaiseError(ErrorNumber::NoInterface);
            }
            return Object::Attach(dispatch);
        }
        case VT_EMPTY:
        case VT_NULL:
            RaiseError(ErrorNumber::TypeMismatch);
        default:
            RaiseError(ErrorNumber::ObjectRequired);
    }
}

std::vector<Variant> Variant::ToArray() const {
    if (!IsArray() || parray == nullptr || SafeArrayGetDim(parray) != 1) RaiseError(ErrorNumber::TypeMismatch);
    const auto type = static_cast<VARTYPE>(vt & VT_TYPEMASK);
    if (!HoldsElements(parray, type)) RaiseError(ErrorNumber::TypeMismatch);
    // By address: the functions that take an index fail at the extreme values of an index.
    void* data = nullptr;
    RaiseIfFailed(SafeArrayAccessData(parray, &data));
    const ScopeExit access([array = parray] { SafeArrayUnaccessData(array); });
    const size_t count = parray->rgsabound[0].cElements;
    const size_t size = parray->cbElements;
    std::vector<Variant> items;
    items.reserve(count);
    for (size_t at = 0; at < count; ++at) {
        VARIANT element;
        VariantInit(&element);
        element.vt = static_cast<VARTYPE>(VT_BYREF | type);
        element.byref = static_cast<BYTE*>(data) + at * size;
        items.emplace_back(static_cast<const VARIANT&>(element));
    }
    return items;
}

VARIANT Variant::Detach() noexcept {
    const VARIANT contents = *this;
    vt = VT_EMPTY;
    return contents;
}

VARIANT* Variant::Receive() noexcept {
    VariantClear(this);
    return this;
}
