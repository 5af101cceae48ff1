#include "automation/Object.h"
#include <map>
#include "automation/Collection.h"
#include "automation/RuntimeError.h"
Argument::Argument() noexcept {}
Argument::Argument(Variant v) : passed_(std::move(v)) {}
Argument::Argument(const wchar_t* t) : passed_(t) {}
Argument::Argument(const std::wstring& t) : passed_(t) {}
Argument::Argument(bool v) : passed_(v) {}
Argument::Argument(short v) : passed_(v) {}
Argument::Argument(long v) : passed_(v) {}
Argument::Argument(int v) : passed_(v) {}
Argument::Argument(const Object& o) : passed_(o) {}
Argument::Argument(Argument&& o) noexcept : passed_(std::move(o.passed_)), holder_(std::move(o.holder_)), target_(o.target_), kind_(o.kind_) { o.kind_ = VT_EMPTY; }
Argument::~Argument() { if (passed_.vt & VT_BYREF) passed_.vt = VT_EMPTY; }
void Argument::WriteBack() { if (kind_ == VT_BSTR) *(std::wstring*)target_ = TextOf(holder_.bstrVal); if (kind_ == VT_BOOL) *(bool*)target_ = holder_.boolVal != 0; if (kind_ == VT_I4) *(long*)target_ = holder_.lVal; }
Argument ByRef(std::wstring& v) { Argument a; a.holder_ = Variant(v); a.kind_ = VT_BSTR; a.target_ = &v; return a; }
Argument ByRef(long& v) { Argument a; a.holder_ = Variant(v); a.kind_ = VT_I4; a.target_ = &v; return a; }
Argument ByRef(bool& v) { Argument a; a.holder_ = Variant(v); a.kind_ = VT_BOOL; a.target_ = &v; return a; }
struct Object::State { IDispatch* d; std::map<std::wstring, DISPID> ids; ~State() { if (d) d->Release(); } };
Object::Object() noexcept {}
Object::Object(IDispatch* d) { if (d) { d->AddRef(); state_ = std::make_shared<State>(); state_->d = d; } }
Object Object::Attach(IDispatch* d) { Object o(d); if (d) d->Release(); return o; }
Object Object::Create(const wchar_t* p) { CLSID c; HRESULT h = CLSIDFromProgID(p, &c); IDispatch* d = nullptr; if (SUCCEEDED(h)) h = CoCreateInstance(c, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, (void**)&d); if (FAILED(h)) RaiseError(429, L"ActiveX component can't create object"); return Attach(d); }
Object::operator bool() const noexcept { return state_ != nullptr; }
IDispatch* Object::Dispatch() const noexcept { return state_ ? state_->d : nullptr; }
void Object::Clear() noexcept { state_.reset(); }
bool Object::Has(const wchar_t* m) const noexcept { DISPID id; LPOLESTR n = const_cast<LPOLESTR>(m); return state_ && SUCCEEDED(state_->d->GetIDsOfNames(IID_NULL, &n, 1, 0, &id)); }
void Object::Let(const wchar_t* m, const Variant& v) const { if (!state_) RaiseError(91); DISPID id, put = DISPID_PROPERTYPUT; LPOLESTR n = const_cast<LPOLESTR>(m); CheckHresult(state_->d->GetIDsOfNames(IID_NULL, &n, 1, 0, &id)); Variant c(v); DISPPARAMS p{&c, &put, 1, 1}; EXCEPINFO e{}; HRESULT h = state_->d->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYPUT, &p, nullptr, &e, nullptr); if (FAILED(h)) throw ErrorFromHresult(h, &e); }
bool Object::IsSameAs(const Object& o) const noexcept { return Dispatch() == o.Dispatch(); }
Variant Object::Invoke(const wchar_t* m, WORD f, Argument* a, size_t n) const {
    if (!state_) RaiseError(91);
    auto keep = state_;
    auto it = keep->ids.find(m);
    if (it == keep->ids.end()) { DISPID id; LPOLESTR nm = const_cast<LPOLESTR>(m); CheckHresult(keep->d->GetIDsOfNames(IID_NULL, &nm, 1, LOCALE_USER_DEFAULT, &id)); it = keep->ids.emplace(m, id).first; }
    std::vector<VARIANTARG> args(n + 1);
    for (size_t i = 0; i < n; i++) { Argument& x = a[i]; if (x.kind_ != VT_EMPTY) { x.passed_.vt = VT_BYREF | x.kind_; x.passed_.byref = &x.holder_.lVal; } args[n - 1 - i] = x.passed_; }
    DISPPARAMS p{args.data(), nullptr, (UINT)n, 0};
    Variant r; EXCEPINFO e{}; UINT ae = 0;
    HRESULT h = keep->d->Invoke(it->second, IID_NULL, LOCALE_USER_DEFAULT, f, &p, &r, &e, &ae);
    if (FAILED(h)) throw ErrorFromHresult(h, &e);
    for (size_t i = 0; i < n; i++) a[i].WriteBack();
    return r;
}
HostCollection::HostCollection(const Variant& r) {
    if (r.IsNothing()) return;
    if (r.IsArray()) { kind_ = Kind::Array; enumerator_ = r; return; }
    if (!r.IsObject()) RaiseError(13);
    object_ = r.ToObject();
    DISPPARAMS p{}; Variant e; EXCEPINFO x{};
    if (SUCCEEDED(object_.Dispatch()->Invoke(DISPID_NEWENUM, IID_NULL, 0, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &p, e.Receive(), &x, nullptr)) && e.IsObject() && !e.IsNothing()) { kind_ = Kind::Enumerated; enumerator_ = e; return; }
    if (object_.Has(L"Count") && object_.Has(L"Item")) { kind_ = Kind::Counted; return; }
    RaiseError(13);
}
HostCollection::operator bool() const noexcept { return kind_ != Kind::None; }
void HostCollection::ForEach(const std::function<bool(const Variant&)>& f) const {
    if (kind_ == Kind::Array) { for (auto& v : enumerator_.ToArray()) if (!f(v)) return; }
    else if (kind_ == Kind::Counted) { long n = object_.Get(L"Count").ToLong(); for (long i = 1; i <= n; i++) if (!f(object_.Get(L"Item", i))) return; }
    else if (kind_ == Kind::Enumerated) {
        IEnumVARIANT* e = nullptr; CheckHresult(enumerator_.punkVal->QueryInterface(IID_IEnumVARIANT, (void**)&e));
        struct R { IEnumVARIANT* e; ~R() { e->Release(); } } r{e};
        e->Reset();
        for (;;) { Variant v; ULONG n = 0; HRESULT h = e->Next(1, v.Receive(), &n); CheckHresult(h); if (h != S_OK || !n) return; if (!f(v)) return; }
    }
}
