#include "automation/Object.h"

#include <dispex.h>
#include <objbase.h>

#include <cstring>
#include <functional>
#include <utility>
#include <vector>

#include "automation/ComPtr.h"
#include "automation/HostContexts.h"
#include "automation/RuntimeError.h"

// ---- Argument

// A variable that is passed by reference: separately allocated storage, whose address the callee sees.
struct Argument::Reference {
    Variant Storage;
    VARTYPE Type;
    std::function<void(const Variant&)> Assign;
};

Argument::Argument(Variant value) : value_(std::move(value)) {}
Argument::Argument(const wchar_t* text) : value_(text) {}
Argument::Argument(const std::wstring& text) : value_(text) {}
Argument::Argument(bool value) : value_(value) {}
Argument::Argument(short value) : value_(value) {}
Argument::Argument(long value) : value_(value) {}
Argument::Argument(int value) : value_(value) {}
Argument::Argument(const Object& object) : value_(object) {}
Argument::Argument(std::unique_ptr<Reference> reference) noexcept : reference_(std::move(reference)) {}
Argument::Argument(Argument&&) noexcept = default;
Argument::~Argument() = default;

VARIANT Argument::Passed(Way way) noexcept {
    VARIANT passed;
    VariantInit(&passed);
    if (reference_ == nullptr) {
        std::memcpy(&passed, static_cast<const VARIANT*>(&value_), sizeof passed);
    } else if (way == Way::AsValue) {
        std::memcpy(&passed, static_cast<const VARIANT*>(&reference_->Storage), sizeof passed);
    } else if (way == Way::AsVariant || reference_->Type == VT_VARIANT) {
        passed.vt = VT_BYREF | VT_VARIANT;
        passed.pvarVal = &reference_->Storage;
    } else {
        passed.vt = static_cast<VARTYPE>(VT_BYREF | reference_->Type);
        passed.byref = &reference_->Storage.byref;
    }
    return passed;
}

void Argument::WriteBack() {
    if (reference_ != nullptr) reference_->Assign(reference_->Storage);
}

Argument ByRef(std::wstring& variable) {
    return Argument(std::make_unique<Argument::Reference>(Argument::Reference{
        Variant(variable), VT_BSTR, [&variable](const Variant& left) { variable = left.ToText(); }}));
}

Argument ByRef(long& variable) {
    return Argument(std::make_unique<Argument::Reference>(
        Argument::Reference{Variant(variable), VT_I4, [&variable](const Variant& left) { variable = left.ToLong(); }}));
}

Argument ByRef(short& variable) {
    return Argument(std::make_unique<Argument::Reference>(Argument::Reference{
        Variant(variable), VT_I2, [&variable](const Variant& left) { variable = left.ToInteger(); }}));
}

Argument ByRef(bool& variable) {
    return Argument(std::make_unique<Argument::Reference>(Argument::Reference{
        Variant(variable), VT_BOOL, [&variable](const Variant& left) { variable = left.ToBoolean(); }}));
}

Argument ByRef(Variant& variable) {
    return Argument(std::make_unique<Argument::Reference>(
        Argument::Reference{variable, VT_VARIANT, [&variable](const Variant& left) {
                                // A callee may leave a reference to one of its own variables, which will not last.
                                variable = Variant(static_cast<const VARIANT&>(left));
                            }}));
}

Argument ByRef(Object& variable) {
    return Argument(std::make_unique<Argument::Reference>(Argument::Reference{
        Variant(variable), VT_DISPATCH, [&variable](const Variant& left) { variable = left.ToObject(); }}));
}

// ---- Object

namespace {

// Whether the failure means "not callable": DISP_E_..., SCRIPT_E_REPORTED or plain E_FAIL, depending on the engine.
bool IsRefusedCall(HRESULT result, const EXCEPINFO& exception) noexcept {
    constexpr HRESULT FunctionExpected = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, 5002);
    constexpr HRESULT AlreadyReported = static_cast<HRESULT>(0x80020101);
    if (result == DISP_E_EXCEPTION && exception.wCode == 0) result = exception.scode;
    return result == FunctionExpected || result == AlreadyReported || result == E_FAIL;
}

bool KnowsName(IDispatch* object, const wchar_t* name) noexcept {
    auto* writable = const_cast<LPOLESTR>(name);
    DISPID id = DISPID_UNKNOWN;
    return SUCCEEDED(object->GetIDsOfNames(IID_NULL, &writable, 1, LOCALE_USER_DEFAULT, &id)) && id != DISPID_UNKNOWN;
}

bool HasTypeInfo(IDispatch* object) noexcept {
    ComPtr<ITypeInfo> info;
    return info.Filled(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.Receive()));
}

// Whether a value is a function of JScript, which every reader but JScript would rather have called.
bool IsFunction(const VARIANT& value) noexcept {
    return value.vt == VT_DISPATCH && value.pdispVal != nullptr && KnowsName(value.pdispVal, L"apply") &&
           KnowsName(value.pdispVal, L"call");
}

}  // namespace

struct Object::State {
    ComPtr<IDispatch> Dispatch;
    // IDispatchEx, for objects that resolve names only there; null until it is needed. It has its own member ids.
    ComPtr<IDispatchEx> Extended;
    struct Member {
        std::wstring Name;
        DISPID Id;
    };
    enum class Kind { NotAsked, Plain, VBScript, JScript };
    Kind Asked = Kind::NotAsked;
    std::vector<Member> Members;  // a handful: a search by length and letters beats any table

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        const InHostContexts host;
        Extended.Reset();
        Dispatch.Reset();
    }

    // Which script engine made the object, if any. Asked where it matters only.
    Kind KindOf() noexcept {
        if (Asked == Kind::NotAsked) {
            const InHostContexts host;
            if (!Dispatch.As<IDispatchEx>()) {
                Asked = Kind::Plain;
            } else {
                // Every object of JScript inherits this name; those of VBScript have no type information, whatever they
                // say of its count.
                Asked = KnowsName(Dispatch.Get(), L"hasOwnProperty") ? Kind::JScript
                        : HasTypeInfo(Dispatch.Get())                ? Kind::Plain
                                                                     : Kind::VBScript;
            }
        }
        return Asked;
    }

    // The id of a member, asked for once.
    DISPID IdOf(const wchar_t* name) {
        const std::wstring_view wanted = name;  // its length is told first
        for (const Member& member : Members) {
            if (wanted == member.Name) return member.Id;
        }
        DISPID id = DISPID_UNKNOWN;
        const HRESULT result = LookUp(name, id);
        if (FAILED(result)) Raise(ErrorFromHresult(result, nullptr));
        Members.push_back({name, id});
        return id;
    }

    HRESULT LookUp(const wchar_t* name, DISPID& id) noexcept {
        const InHostContexts host;
        if (!Extended) {
            auto* writable = const_cast<LPOLESTR>(name);
            const HRESULT result = Dispatch->GetIDsOfNames(IID_NULL, &writable, 1, LOCALE_USER_DEFAULT, &id);
            // The objects of VBScript under Wine have IDispatchEx alone and leave this call unwritten.
            if (result != E_NOTIMPL) return result;
            // Some objects return success and a null pointer.
            Extended = Dispatch.As<IDispatchEx>();
            if (!Extended) return result;
        }
        const Bstr text = Bstr::OrNull(name);
        return text.Get() != nullptr ? Extended->GetDispID(text.Get(), fdexNameCaseInsensitive, &id) : E_OUTOFMEMORY;
    }

    HRESULT Invoke(DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT* result, EXCEPINFO& exception) noexcept {
        const InHostContexts host;
        return InvokeInContexts(id, flags, parameters, result, exception);
    }

    // For callers that have an InHostContexts already.
    HRESULT InvokeInContexts(DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT* result,
                             EXCEPINFO& exception) noexcept {
        if (Extended) {
            return Extended->InvokeEx(id, LOCALE_USER_DEFAULT, flags, &parameters, result, &exception, nullptr);
        }
        UINT argumentError = 0;
        return Dispatch->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, &exception,
                                &argumentError);
    }
};

Object::Object() noexcept = default;

Object::Object(IDispatch* object) {
    if (object == nullptr) return;
    state_ = std::make_shared<State>();
    state_->Dispatch = ComPtr<IDispatch>(object);
}

Object Object::Attach(IDispatch* object) {
    const auto taken = ComPtr<IDispatch>::Attach(object);
    return Object(object);
}

Object Object::Create(const wchar_t* progId) {
    CLSID id;
    IDispatch* made = nullptr;
    // A host may bring its components along without registration, in an activation context.
    const InHostContexts host;
    HRESULT result = CLSIDFromProgID(progId, &id);
    if (SUCCEEDED(result)) {
        result = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch,
                                  reinterpret_cast<void**>(&made));
    }
    if (FAILED(result) || made == nullptr) {
        const RuntimeError reason = ErrorFromHresult(FAILED(result) ? result : E_NOINTERFACE, nullptr);
        RaiseError(ErrorNumber::CannotCreateObject,
                   ErrorText(ErrorNumber::CannotCreateObject) + L": " + progId + L" (" + reason.Description + L")");
    }
    return Attach(made);
}

Object::operator bool() const noexcept { return state_ != nullptr; }

IDispatch* Object::Dispatch() const noexcept { return state_ != nullptr ? state_->Dispatch.Get() : nullptr; }

void Object::Clear() noexcept {
    // Moved out first: releasing the other object may re-enter and use this variable.
    const auto old = std::exchange(state_, nullptr);
}

bool Object::IsSameAs(const Object& other) const noexcept {
    if (Dispatch() == other.Dispatch()) return true;
    if (Dispatch() == nullptr || other.Dispatch() == nullptr) return false;
    const auto mine = state_->Dispatch.As<IUnknown>();
    const auto theirs = other.state_->Dispatch.As<IUnknown>();
    return mine && mine.Get() == theirs.Get();
}

bool Object::Has(const wchar_t* member) const noexcept {
    DISPID id = DISPID_UNKNOWN;
    return state_ != nullptr && SUCCEEDED(state_->LookUp(member, id)) && id != DISPID_UNKNOWN;
}

Variant Object::Invoke(const wchar_t* member, WORD flags, Argument* arguments, size_t count) const {
    if (state_ == nullptr) RaiseError(ErrorNumber::ObjectNotSet);
    const Object held(*this);  // the callee may clear this variable
    return held.InvokeId(held.state_->IdOf(member), flags, arguments, count);
}

TextFunction::~TextFunction() {
    for (const BSTR text : passed_) SysFreeString(text);
}

void TextFunction::AppendTo(std::wstring& to, std::wstring_view argument) {
    if (!object_) RaiseError(ErrorNumber::ObjectNotSet);
    Object::State& state = *object_.state_;
    if (state.KindOf() != Object::State::Kind::Plain) {
        std::wstring text(argument);
        to += object_.Get(member_, ByRef(text)).ToText();
        return;
    }
    if (id_ == DISPID_UNKNOWN) id_ = state.IdOf(member_);
    BSTR& passed = passed_[argument.size() < passed_.size() ? argument.size() : 0];
    // Whatever the callee has made of it the last time.
    if (passed != nullptr && SysStringLen(passed) == argument.size()) {
        std::memcpy(passed, argument.data(), argument.size() * sizeof(wchar_t));
    } else if (!SysReAllocStringLen(&passed, argument.data(), static_cast<UINT>(argument.size()))) {
        RaiseError(ErrorNumber::OutOfMemory);
    }
    VARIANTARG reference;
    reference.vt = VT_BYREF | VT_BSTR;
    reference.pbstrVal = &passed;
    DISPPARAMS parameters{&reference, nullptr, 1, 0};
    VARIANT raw;
    VariantInit(&raw);
    EXCEPINFO exception{};
    const HRESULT result =
        state.InvokeInContexts(id_, DISPATCH_METHOD | DISPATCH_PROPERTYGET, parameters, &raw, exception);
    if (FAILED(result)) Raise(ErrorFromHresult(result, &exception));
    const Variant answer = Variant::Attach(raw);
    if (answer.vt == VT_BSTR) {
        to.append(answer.bstrVal, SysStringLen(answer.bstrVal));
    } else {
        to += answer.ToText();
    }
}

Variant Object::Value() const {
    if (state_ == nullptr) RaiseError(ErrorNumber::ObjectNotSet);
    const Object held(*this);
    return held.InvokeId(DISPID_VALUE, DISPATCH_METHOD | DISPATCH_PROPERTYGET, nullptr, 0);
}

Variant Object::InvokeId(DISPID id, WORD flags, Argument* arguments, size_t count) const {
    const auto& state = state_;
    constexpr size_t Most = 8;
    VARIANTARG passed[Most];
    if (count > Most) RaiseError(ErrorNumber::InvalidProcedureCall);
    bool byReference = false;
    for (size_t at = 0; at < count; ++at) byReference = byReference || arguments[at].reference_ != nullptr;
    auto way = Argument::Way::AsType;
    if (byReference) {
        switch (state->KindOf()) {
            case State::Kind::JScript:
                // The language has no arguments that can be written to. Under Wine it calls the function, and fails or
                // crashes where one that is passed by reference is used.
                way = Argument::Way::AsValue;
                break;
            case State::Kind::VBScript:
                // Its variables are variants, and under Wine it writes to no other kind.
                way = Argument::Way::AsVariant;
                break;
            default:
                break;
        }
    }
    for (size_t at = 0; at < count; ++at) passed[count - 1 - at] = arguments[at].Passed(way);

    DISPPARAMS parameters{passed, nullptr, static_cast<UINT>(count), 0};
    VARIANT raw;
    VariantInit(&raw);
    EXCEPINFO exception{};
    HRESULT result = state->Invoke(id, flags, parameters, &raw, exception);
    if (FAILED(result) && count == 0 && (flags & DISPATCH_PROPERTYGET) != 0 && IsRefusedCall(result, exception) &&
        state->KindOf() == State::Kind::JScript) {
        // JScript under Wine takes "method or property" for a call, and a plain value cannot be called. Reading it
        // alone calls nothing, so nothing happens twice. What reads as a function was called before, and failed in
        // itself.
        VARIANT value;
        VariantInit(&value);
        EXCEPINFO second{};
        if (SUCCEEDED(state->Invoke(id, DISPATCH_PROPERTYGET, parameters, &value, second)) && !IsFunction(value)) {
            FreeTexts(exception);
            raw = value;
            result = S_OK;
        } else {
            FreeTexts(second);
            VariantClear(&value);
        }
    }
    // After a failure the result may hold anything a callee left there: it is not ours to free.
    if (FAILED(result)) Raise(ErrorFromHresult(result, &exception));
    Variant owned = Variant::Attach(raw);
    for (size_t at = 0; at < count; ++at) arguments[at].WriteBack();
    if ((owned.vt & VT_BYREF) != 0) return Variant(static_cast<const VARIANT&>(owned));
    return owned;
}

void Object::Let(const wchar_t* member, const Variant& value) const {
    if (state_ == nullptr) RaiseError(ErrorNumber::ObjectNotSet);
    const auto state = state_;  // the callee may clear this variable
    const DISPID id = state->IdOf(member);
    DISPID named = DISPID_PROPERTYPUT;
    Variant copy(value);
    DISPPARAMS parameters{&copy, &named, 1, 1};
    EXCEPINFO exception{};
    HRESULT result = DISP_E_MEMBERNOTFOUND;
    if (value.IsObject()) result = state->Invoke(id, DISPATCH_PROPERTYPUTREF, parameters, nullptr, exception);
    if (result == DISP_E_MEMBERNOTFOUND) FreeTexts(exception);
    if (result == DISP_E_MEMBERNOTFOUND)
        result = state->Invoke(id, DISPATCH_PROPERTYPUT, parameters, nullptr, exception);
    if (FAILED(result)) Raise(ErrorFromHresult(result, &exception));
}
