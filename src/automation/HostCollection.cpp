#include "automation/HostCollection.h"

#include <utility>

#include "automation/ComPtr.h"
#include "automation/HostContexts.h"
#include "automation/RuntimeError.h"

namespace {

// Asks for the enumerator by its member id, since not every collection knows the name. Fails when there is none.
HRESULT AskForEnumerator(IDispatch* object, IEnumVARIANT** enumerator, EXCEPINFO& exception) noexcept {
    *enumerator = nullptr;
    const InHostContexts host;
    DISPPARAMS none{};
    UINT argumentError = 0;
    VARIANT raw;
    VariantInit(&raw);
    const HRESULT result =
        object->Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &none,
                       &raw, &exception, &argumentError);
    if (FAILED(result)) return result;
    const Variant answer = Variant::Attach(raw);
    if (!answer.IsObject() || answer.IsNothing()) return DISP_E_NOTACOLLECTION;
    const HRESULT found = answer.punkVal->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(enumerator));
    return *enumerator != nullptr ? S_OK : FAILED(found) ? found : E_NOINTERFACE;
}

bool SaysThatThereIsNone(long number) noexcept {
    return number == ErrorNumber::NoSuchMember || number == ErrorNumber::NotACollection ||
           number == DISP_E_MEMBERNOTFOUND || number == DISP_E_UNKNOWNNAME || number == DISP_E_NOTACOLLECTION;
}

// Owns an enumerator for one pass.
class Enumerator {
public:
    explicit Enumerator(IEnumVARIANT* items) noexcept : items_(items) {}
    ~Enumerator() {
        const InHostContexts host;
        items_.Reset();
    }
    Enumerator(const Enumerator&) = delete;
    Enumerator& operator=(const Enumerator&) = delete;

    // Rewinds. An enumerator that cannot be reset is replaced; if that fails too, it is still fresh on the first pass,
    // the one that matters.
    void Rewind(IDispatch* object) noexcept {
        const InHostContexts host;
        if (items_->Reset() == S_OK) return;
        ComPtr<IEnumVARIANT> fresh;
        EXCEPINFO exception{};
        if (fresh.Filled(AskForEnumerator(object, fresh.Receive(), exception))) {
            items_ = std::move(fresh);
        } else {
            FreeTexts(exception);
        }
    }

    // One item per call, so that an enumerator that fails midway has delivered everything before the failure.
    bool Next(Variant& item) {
        ULONG fetched = 0;
        VARIANT raw;
        VariantInit(&raw);
        const HRESULT result = AskForNext(raw, fetched);
        if (FAILED(result)) Raise(ErrorFromHresult(result, nullptr));
        Variant got = Variant::Attach(raw);
        // Some enumerators signal the end by S_FALSE, others by fetched == 0.
        if (result != S_OK || (fetched == 0 && got.IsEmpty())) return false;
        item = (got.vt & VT_BYREF) != 0 ? Variant(static_cast<const VARIANT&>(got)) : std::move(got);
        return true;
    }

private:
    HRESULT AskForNext(VARIANT& item, ULONG& fetched) noexcept {
        const InHostContexts host;
        return items_->Next(1, &item, &fetched);
    }
    ComPtr<IEnumVARIANT> items_;
};

}  // namespace

HostCollection HostCollection::OrArray(const Variant& entry) {
    if (!entry.IsArray()) return HostCollection(entry);
    entry.ToArray();  // one dimension only
    HostCollection array;
    array.kind_ = Kind::Array;
    array.enumerator_ = entry;
    return array;
}

HostCollection::HostCollection(const Variant& result) {
    if (result.IsNothing()) return;
    if (!result.IsObject()) RaiseError(ErrorNumber::TypeMismatch);
    object_ = result.ToObject();
    IEnumVARIANT* enumerator = nullptr;
    EXCEPINFO exception{};
    const HRESULT asked = AskForEnumerator(object_.Dispatch(), &enumerator, exception);
    if (SUCCEEDED(asked)) {
        enumerator_.punkVal = enumerator;
        enumerator_.vt = VT_UNKNOWN;
        kind_ = Kind::Enumerated;
        return;
    }
    if (asked == DISP_E_EXCEPTION) {
        RuntimeError error = ErrorFromHresult(asked, &exception);
        // Some objects raise an exception to say that they have no enumerator.
        if (!SaysThatThereIsNone(error.Number)) Raise(std::move(error));
    }
    if (object_.Has(L"Count") && object_.Has(L"Item")) {
        kind_ = Kind::Counted;
        return;
    }
    RaiseError(ErrorNumber::TypeMismatch);
}

HostCollection::operator bool() const noexcept { return kind_ != Kind::None; }

void HostCollection::ForEach(const std::function<bool(const Variant&)>& item) const {
    // The callee may release the collection.
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
            Enumerator items(static_cast<IEnumVARIANT*>(held.enumerator_.punkVal));
            items.Rewind(held.object_.Dispatch());
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
