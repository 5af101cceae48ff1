#include "automation/DynamicObject.h"
#include "automation/RuntimeError.h"
namespace {
std::wstring Folded(std::wstring t) { CharUpperBuffW(t.data(), t.size()); return t; }
class Enumerator : public IEnumVARIANT {
    std::vector<Variant> items_; size_t at_ = 0; LONG r_ = 1;
public:
    explicit Enumerator(std::vector<Variant> i) : items_(std::move(i)) {}
    virtual ~Enumerator() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID i, void** o) override { if (i == IID_IUnknown || i == IID_IEnumVARIANT) { *o = this; AddRef(); return S_OK; } *o = nullptr; return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++r_; }
    ULONG STDMETHODCALLTYPE Release() override { ULONG n = --r_; if (!n) delete this; return n; }
    HRESULT STDMETHODCALLTYPE Next(ULONG n, VARIANT* v, ULONG* f) override { ULONG k = 0; for (; k < n && at_ < items_.size(); ++k) { VariantInit(&v[k]); VariantCopy(&v[k], &items_[at_++]); } if (f) *f = k; return k == n ? S_OK : S_FALSE; }
    HRESULT STDMETHODCALLTYPE Skip(ULONG n) override { at_ += n; return at_ <= items_.size() ? S_OK : S_FALSE; }
    HRESULT STDMETHODCALLTYPE Reset() override { at_ = 0; return S_OK; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** o) override { auto* e = new Enumerator(items_); e->at_ = at_; *o = e; return S_OK; }
};
}
struct DynamicObject::Slot { Member m; Setter s; };
DynamicObject::DynamicObject() {} DynamicObject::~DynamicObject() {}
void DynamicObject::Define(const std::wstring& n, Member m) { auto f = names_.find(Folded(n)); if (f != names_.end()) { slots_[f->second].m = m; return; } names_[Folded(n)] = slots_.size(); slots_.push_back({m, {}}); }
void DynamicObject::DefineLet(const std::wstring& n, Setter s) { auto f = names_.find(Folded(n)); if (f != names_.end()) { slots_[f->second].s = s; return; } names_[Folded(n)] = slots_.size(); slots_.push_back({{}, s}); }
void DynamicObject::DefineDefault(Member m) { Define(L"\x1""default", m); }
void DynamicObject::DefineEnumerator(std::function<std::vector<Variant>()> items) { Define(L"_NewEnum", [items](const Arguments&) { Variant v; v.vt = VT_UNKNOWN; v.punkVal = new Enumerator(items()); return v; }); }
HRESULT DynamicObject::QueryInterface(REFIID i, void** o) { if (i == IID_IUnknown || i == IID_IDispatch) { *o = this; AddRef(); return S_OK; } *o = nullptr; return E_NOINTERFACE; }
ULONG DynamicObject::AddRef() { return ++references_; } ULONG DynamicObject::Release() { ULONG n = --references_; if (!n) delete this; return n; }
HRESULT DynamicObject::GetTypeInfoCount(UINT* c) { *c = 0; return S_OK; } HRESULT DynamicObject::GetTypeInfo(UINT, LCID, ITypeInfo** t) { if (t) *t = nullptr; return E_NOTIMPL; }
HRESULT DynamicObject::GetIDsOfNames(REFIID, LPOLESTR* n, UINT, LCID, DISPID* ids) { auto f = names_.find(Folded(n[0])); if (f == names_.end()) { ids[0] = DISPID_UNKNOWN; return DISP_E_UNKNOWNNAME; } ids[0] = static_cast<DISPID>(f->second + 1); return S_OK; }
HRESULT DynamicObject::Invoke(DISPID id, REFIID, LCID, WORD fl, DISPPARAMS* p, VARIANT* r, EXCEPINFO* e, UINT*) {
    try {
        if (id == DISPID_VALUE || id == DISPID_NEWENUM) { auto f = names_.find(Folded(id ? L"_NewEnum" : L"\x1""default")); if (f == names_.end()) return DISP_E_MEMBERNOTFOUND; id = static_cast<DISPID>(f->second + 1); }
        if (id < 1 || static_cast<size_t>(id) > slots_.size()) return DISP_E_MEMBERNOTFOUND;
        Slot s = slots_[id - 1];
        if (fl & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) { if (!s.s) return DISP_E_MEMBERNOTFOUND; s.s(Variant(p->rgvarg[0])); return S_OK; }
        if (!s.m) return DISP_E_MEMBERNOTFOUND;
        Variant v = s.m(Arguments(*p));
        if (r) { VariantInit(r); VariantCopy(r, &v); }
        return S_OK;
    } catch (...) { return FillException(CurrentError(), e); }
}
Arguments::Arguments(const DISPPARAMS& p) noexcept : parameters_(p) {}
size_t Arguments::Count() const noexcept { return parameters_.cArgs; }
const VARIANT* Arguments::Raw(size_t i) const noexcept { return i < Count() ? &parameters_.rgvarg[Count() - 1 - i] : nullptr; }
Variant Arguments::operator[](size_t i) const { return i < Count() ? Variant(*Raw(i)) : Variant::Missing(); }
bool Arguments::Has(size_t i) const noexcept { try { return !(*this)[i].IsMissing(); } catch (...) { return false; } }
bool Arguments::Let(size_t i, const Variant& v) const {
    const VARIANT* a = Raw(i); if (!a || !(a->vt & VT_BYREF)) return false;
    if (a->vt == (VT_BYREF | VT_VARIANT)) { VariantCopy(a->pvarVal, const_cast<Variant*>(&v)); return true; }
    Variant c; CheckHresult(VariantChangeType(&c, const_cast<Variant*>(&v), 0, a->vt & ~VT_BYREF));
    if (a->vt == (VT_BYREF | VT_BSTR)) { std::swap(*a->pbstrVal, c.bstrVal); } else if (a->vt == (VT_BYREF | VT_BOOL)) *a->pboolVal = c.boolVal; else if (a->vt == (VT_BYREF | VT_I4)) *a->plVal = c.lVal; else if (a->vt == (VT_BYREF | VT_I2)) *a->piVal = c.iVal; else return false;
    return true;
}
Object MakeCollection(std::vector<Variant> items) {
    auto* o = new DynamicObject; Object held = Object::Attach(o);
    auto shared = std::make_shared<std::vector<Variant>>(std::move(items));
    o->Define(L"Count", [shared](const Arguments&) { return Variant(static_cast<long>(shared->size())); });
    auto item = [shared](const Arguments& a) { long i = a[0].ToLong(); if (i < 1 || i > (long)shared->size()) RaiseError(9); return (*shared)[i - 1]; };
    o->Define(L"Item", item); o->DefineDefault(item); o->DefineEnumerator([shared] { return *shared; });
    return held;
}
