#include "automation/Variant.h"
#include <cstring>
#include <new>
#include "automation/Object.h"
#include "automation/RuntimeError.h"
BSTR NewBstr(std::wstring_view t) { BSTR b = SysAllocStringLen(t.data(), t.size()); if (!b) throw std::bad_alloc(); return b; }
std::wstring TextOf(BSTR t) { return t ? std::wstring(t, SysStringLen(t)) : std::wstring(); }
Variant::Variant() noexcept { VariantInit(this); }
Variant::Variant(const Variant& o) { VariantInit(this); CheckHresult(VariantCopy(this, const_cast<Variant*>(&o))); }
Variant::Variant(Variant&& o) noexcept { memcpy(static_cast<VARIANT*>(this), static_cast<VARIANT*>(&o), sizeof(VARIANT)); o.vt = VT_EMPTY; }
Variant& Variant::operator=(const Variant& o) { if (this != &o) CheckHresult(VariantCopy(this, const_cast<Variant*>(&o))); return *this; }
Variant& Variant::operator=(Variant&& o) noexcept { if (this != &o) { VariantClear(this); memcpy(static_cast<VARIANT*>(this), static_cast<VARIANT*>(&o), sizeof(VARIANT)); o.vt = VT_EMPTY; } return *this; }
Variant::~Variant() { VariantClear(this); }
Variant::Variant(std::wstring_view t) { VariantInit(this); bstrVal = NewBstr(t); vt = VT_BSTR; }
Variant::Variant(const std::wstring& t) : Variant(std::wstring_view(t)) {}
Variant::Variant(const wchar_t* t) : Variant(std::wstring_view(t)) {}
Variant::Variant(bool v) noexcept { VariantInit(this); vt = VT_BOOL; boolVal = v ? VARIANT_TRUE : VARIANT_FALSE; }
Variant::Variant(short v) noexcept { VariantInit(this); vt = VT_I2; iVal = v; }
Variant::Variant(long v) noexcept { VariantInit(this); vt = VT_I4; lVal = v; }
Variant::Variant(int v) noexcept { VariantInit(this); vt = VT_I4; lVal = v; }
Variant::Variant(double v) noexcept { VariantInit(this); vt = VT_R8; dblVal = v; }
Variant::Variant(const Object& o) noexcept : Variant(o.Dispatch()) {}
Variant::Variant(IDispatch* o) noexcept { VariantInit(this); vt = VT_DISPATCH; pdispVal = o; if (o) o->AddRef(); }
Variant::Variant(const VARIANT& o) { VariantInit(this); CheckHresult(VariantCopyInd(this, const_cast<VARIANT*>(&o))); }
Variant Variant::Missing() noexcept { Variant v; v.vt = VT_ERROR; v.scode = DISP_E_PARAMNOTFOUND; return v; }
Variant Variant::Null() noexcept { Variant v; v.vt = VT_NULL; return v; }
Variant Variant::Nothing() noexcept { return Variant(static_cast<IDispatch*>(nullptr)); }
bool Variant::IsEmpty() const noexcept { return vt == VT_EMPTY; }
bool Variant::IsNull() const noexcept { return vt == VT_NULL; }
bool Variant::IsMissing() const noexcept { return vt == VT_ERROR && scode == DISP_E_PARAMNOTFOUND; }
bool Variant::IsObject() const noexcept { return vt == VT_DISPATCH || vt == VT_UNKNOWN; }
bool Variant::IsNothing() const noexcept { return IsObject() && !punkVal; }
bool Variant::IsArray() const noexcept { return vt & VT_ARRAY; }
Variant Variant::ChangedTo(VARTYPE t) const { if (IsNull()) RaiseError(94); Variant r; CheckHresult(VariantChangeTypeEx(&r, const_cast<Variant*>(this), LOCALE_USER_DEFAULT, VARIANT_ALPHABOOL, t)); return r; }
std::wstring Variant::ToText() const { return TextOf(ChangedTo(VT_BSTR).bstrVal); }
long Variant::ToLong() const { return ChangedTo(VT_I4).lVal; }
bool Variant::ToBoolean() const { return ChangedTo(VT_BOOL).boolVal != 0; }
double Variant::ToDouble() const { return ChangedTo(VT_R8).dblVal; }
Object Variant::ToObject() const { if (vt == VT_DISPATCH) return Object(pdispVal); if (vt == VT_UNKNOWN) { if (!punkVal) return Object(); IDispatch* d = nullptr; if (FAILED(punkVal->QueryInterface(IID_IDispatch, (void**)&d))) RaiseError(430); return Object::Attach(d);} RaiseError(vt == VT_EMPTY || vt == VT_NULL ? 13 : 424); }
std::vector<Variant> Variant::ToArray() const { std::vector<Variant> r; if (vt != (VT_ARRAY|VT_VARIANT)) RaiseError(13); long l,u; SafeArrayGetLBound(parray,1,&l); SafeArrayGetUBound(parray,1,&u); for (long i=l;i<=u;i++){ Variant v; SafeArrayGetElement(parray,&i,&v); r.push_back(v);} return r; }
VARIANT* Variant::Receive() noexcept { VariantClear(this); return this; }

short Variant::ToInteger() const { return ChangedTo(VT_I2).iVal; }
bool Variant::IsNumeric() const noexcept { if (vt == VT_NULL || vt == VT_DATE || IsObject() || IsArray() || vt == VT_ERROR) return false; VARIANT r; VariantInit(&r); return SUCCEEDED(VariantChangeType(&r, const_cast<Variant*>(this), 0, VT_R8)); }
Variant Variant::Attach(VARIANT& o) noexcept { Variant v; memcpy(static_cast<VARIANT*>(&v), &o, sizeof o); o.vt = VT_EMPTY; return v; }
Variant Variant::ArrayOf(const std::vector<Variant>& items, long lb) { SAFEARRAYBOUND b{(ULONG)items.size(), lb}; SAFEARRAY* s = SafeArrayCreate(VT_VARIANT, 1, &b); if (!s) throw std::bad_alloc(); for (size_t i = 0; i < items.size(); i++) { LONG at = lb + (LONG)i; SafeArrayPutElement(s, &at, const_cast<Variant*>(&items[i])); } Variant v; v.vt = VT_ARRAY | VT_VARIANT; v.parray = s; return v; }
