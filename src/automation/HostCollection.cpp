#include "automation/Collection.h"

namespace {

// Owns an enumerator for one pass.
class Enumerator {
public:
    explicit Enumerator(IUnknown* source) {
        CheckHresult(source->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(&items_)));
        // One that cannot be reset is fresh when it is asked for the first time, which is the only time that matters.
        items_->Reset();
    }
    ~Enumerator() { items_->Release(); }
    Enumerator(const Enumerator&) = delete;
    Enumerator& operator=(const Enumerator&) = delete;

    // One at a time: an enumerator that fails in the middle has then given what stands before.
    bool Next(Variant& item) {
        ULONG fetched = 0;
        VARIANT raw;
        VariantInit(&raw);
        const HRESULT result = items_->Next(1, &raw, &fetched);
        if (FAILED(result)) throw ErrorFromHresult(result, nullptr);
        // Some say with the count alone that there is no more, and some with the result alone.
        if (result != S_OK || (fetched == 0 && raw.vt == VT_EMPTY)) return false;
        item = Variant::Attach(raw);
        if ((item.vt & VT_BYREF) != 0) item = Variant(static_cast<const VARIANT&>(item));
        return true;
    }

private:
    IEnumVARIANT* items_ = nullptr;
};

// Asks for the enumerator by its member id, since not every collection knows the name.
HRESULT AskForEnumerator(IDispatch* object, Variant& enumerator, EXCEPINFO& exception) noexcept {
    DISPPARAMS none{};
    UINT argumentError = 0;
    return object->Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &none,
                          enumerator.Receive(), &exception, &argumentError);
}

}  // namespace

HostCollection::HostCollection(const Variant& result) {
    if (result.IsNothing()) return;
    if (result.IsArray()) {
        result.ToArray();  // one dimension only
        kind_ = Kind::Array;
        enumerator_ = result;
        return;
    }
    if (!result.IsObject()) RaiseError(ErrorNumber::TypeMismatch);
    object_ = result.ToObject();
    Variant enumerator;
    EXCEPINFO exception{};
    const HRESULT asked = AskForEnumerator(object_.Dispatch(), enumerator, exception);
    if (SUCCEEDED(asked) && enumerator.IsObject() && !enumerator.IsNothing()) {
        kind_ = Kind::Enumerated;
        enumerator_ = std::move(enumerator);
        return;
    }
    if (asked == DISP_E_EXCEPTION) throw ErrorFromHresult(asked, &exception);
    if (object_.Has(L"Count") && object_.Has(L"Item")) {
        kind_ = Kind::Counted;
        return;
    }
    RaiseError(ErrorNumber::TypeMismatch);
}

HostCollection::operator bool() const noexcept {
    return kind_ != Kind::None;
}

void HostCollection::ForEach(const std::function<bool(const Variant&)>& item) const {
    // What is called may let go of the collection.
    const HostCollection held(*this);
    switch (held.kind_) {
        case Kind::None:
            RaiseError(ErrorNumber::ObjectNotSet);
        case Kind::Array:
            for (const Variant& element : held.enumerator_.ToArray()) {
                if (!item(element)) return;
            }
            break;
        case Kind::Enumerated: {
            Enumerator items(held.enumerator_.punkVal);
            for (Variant element; items.Next(element);) {
                if (!item(element)) return;
            }
            break;
        }
        case Kind::Counted: {
            const long count = held.object_.Get(L"Count").ToLong();
            // Some count from 1 and some from 0. A collection that fails at its last item counts from 1 all the same.
            const auto holds = [&held](long position) {
                try {
                    held.object_.Get(L"Item", position);
                    return true;
                } catch (const RuntimeError&) {
                    return false;
                }
            };
            const long first = count > 0 && !holds(count) && holds(0) ? 0 : 1;
            for (long at = 0; at < count; ++at) {
                if (!item(held.object_.Get(L"Item", first + at))) return;
            }
            break;
        }
    }
}
