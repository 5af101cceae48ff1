#include "Fault.h"

#include <cstdio>
#include <cstdlib>

#include "support/CountedObject.h"
#include "support/WindowWatchdog.h"
#include "automation/RuntimeError.h"

namespace {

// Forwards to an object of the tests; see Faults.
class FaultyObject final : public CountedObject<IDispatch> {
public:
    FaultyObject(Faults& faults, std::wstring prefix, const Object& inner)
        : faults_(faults), prefix_(std::move(prefix)), inner_(inner) {}

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override {
        if (faults_.OnName(prefix_ + names[0])) return DISP_E_UNKNOWNNAME;
        const HRESULT result = inner_.Dispatch()->GetIDsOfNames(iid, names, count, locale, ids);
        if (SUCCEEDED(result)) names_[ids[0]] = names[0];
        return result;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override {
        // What a call does to the objects may let go of this one.
        const Object held(this);
        const std::wstring name = id == DISPID_NEWENUM ? L"_NewEnum" : names_[id];
        const auto forward = [&] {
            return inner_.Dispatch()->Invoke(id, iid, locale, flags, parameters, result, exception, argumentError);
        };
        const std::optional<Fault> fault = faults_.OnCall(prefix_ + name);
        if (!fault) return forward();
        if (faults_.Inside) faults_.Inside(*fault);
        if (*fault == Fault::MissingMember) return DISP_E_MEMBERNOTFOUND;
        if (const auto raised = ExceptionOf(*fault)) {
            RuntimeError error;
            error.Number = raised->Number;
            error.Source = raised->Source;
            error.Description = raised->Description;
            return FillException(error, exception);
        }
        if (!IsWrongValue(*fault)) return forward();
        Variant wrong;
        if (*fault == Fault::Text) wrong = Variant(L"no such thing");
        if (*fault == Fault::PlainObject) wrong = Variant(Object::Attach(new DynamicObject));
        if (*fault == Fault::Null) wrong = Variant::Null();
        if (*fault == Fault::Nothing) wrong = Variant::Nothing();
        if (result != nullptr) VariantCopy(result, &wrong);
        return S_OK;
    }

private:
    ~FaultyObject() = default;
    Faults& faults_;
    const std::wstring prefix_;
    const Object inner_;
    std::map<DISPID, std::wstring> names_;
};

}  // namespace

std::string NameOf(Fault fault) {
    static const char* const names[] = {"unknown name",
                                        "missing member",
                                        "object error",
                                        "no dictionary",
                                        "no columns",
                                        "error of the language",
                                        "own error",
                                        "own error of the limit",
                                        "own error of no dictionary",
                                        "text",
                                        "plain object",
                                        "null",
                                        "empty",
                                        "nothing",
                                        "re-enters",
                                        "forgets",
                                        "closes",
                                        "ends",
                                        "ends and no dictionary",
                                        "ends and no columns"};
    return names[static_cast<size_t>(fault)];
}

std::optional<Exception> ExceptionOf(Fault fault) {
    switch (fault) {
        case Fault::ObjectError:
            return Exception{ObjectErrorBase + 5000, L"brvADO", L"The database says no."};
        case Fault::NoDictionary:
        case Fault::EndsNoDictionary:
            return Exception{ObjectErrorBase + 1, L"brvADO", L"There is no dictionary."};
        case Fault::NoColumns:
        case Fault::EndsNoColumns:
            return Exception{ObjectErrorBase + 10, L"brvADO", L"The columns cannot be read."};
        case Fault::LanguageError:
            return Exception{5, L"brvADO", L"A wrong argument."};
        case Fault::OwnError:
            return Exception{ObjectErrorBase + 77, L"brvSQLEditor", L"It says it is us."};
        case Fault::OwnLimit:
            return Exception{ObjectErrorBase + 2, L"brvSQLEditor", L"It says that the tree is full."};
        case Fault::OwnNoDictionary:
            return Exception{ObjectErrorBase + 1, L"brvSQLEditor", L"It says that we have no dictionary."};
        default:
            return std::nullopt;
    }
}

bool IsWrongValue(Fault fault) {
    return fault == Fault::Text || fault == Fault::PlainObject || fault == Fault::Null || fault == Fault::Empty ||
           fault == Fault::Nothing;
}

bool EndsWindow(Fault fault) {
    return fault == Fault::Closes || fault == Fault::Ends || fault == Fault::EndsNoDictionary ||
           fault == Fault::EndsNoColumns;
}

bool EveryCase() { return std::getenv("BRV_ALL") != nullptr; }

bool IsChosen(size_t number, size_t inARun, size_t inASample) {
    if (EveryCase()) return true;
    // Mixed, since faults come in an order that a plain step would always meet at the same ones.
    const auto mixed = (static_cast<uint32_t>(number) * 2654435761U) >> 16;
    return mixed % (std::getenv("BRV_SAMPLE") != nullptr ? inASample : inARun) == 0;
}

bool IsFollowedUp(Fault fault) {
    return EveryCase() || fault == Fault::ObjectError || fault == Fault::Reenters || fault == Fault::Forgets;
}

bool IsSpecialNumber(Fault fault) {
    return fault == Fault::NoDictionary || fault == Fault::NoColumns || fault == Fault::LanguageError ||
           fault == Fault::OwnNoDictionary || fault == Fault::EndsNoDictionary || fault == Fault::EndsNoColumns;
}

// ---- Faults

void Faults::Arm(std::optional<Case> wanted) {
    armed_ = true;
    case_ = std::move(wanted);
    seen_.clear();
    calls_.clear();
    injected_ = 0;
}

Object Faults::Wrap(std::wstring prefix, const Object& inner) {
    return Object(new FaultyObject(*this, std::move(prefix), inner));
}

bool Faults::OnName(const std::wstring& member) {
    if (!armed_ || !case_ || case_->Way != Fault::UnknownName || case_->Member != member) return false;
    ++injected_;
    return true;
}

std::optional<Fault> Faults::OnCall(const std::wstring& member) {
    if (!armed_) return std::nullopt;
    calls_.push_back(member);
    const int occurrence = ++seen_[member];
    if (!case_ || case_->Way == Fault::UnknownName || case_->Member != member ||
        (case_->Occurrence != 0 && case_->Occurrence != occurrence)) {
        return std::nullopt;
    }
    ++injected_;
    return case_->Way;
}

// ---- Watchdog

Watchdog::Watchdog() : stop_(CreateEventW(nullptr, TRUE, FALSE, nullptr)), begun_(GetTickCount()) {
    InitializeCriticalSection(&lock_);
    thread_ = CreateThread(nullptr, 0, Watch, this, 0, nullptr);
}

Watchdog::~Watchdog() {
    SetEvent(stop_);
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
    CloseHandle(stop_);
    DeleteCriticalSection(&lock_);
}

void Watchdog::Begin(const std::string& name) {
    EnterCriticalSection(&lock_);
    name_ = name;
    begun_ = GetTickCount();
    LeaveCriticalSection(&lock_);
}

DWORD WINAPI Watchdog::Watch(void* self) {
    auto& dog = *static_cast<Watchdog*>(self);
    while (WaitForSingleObject(dog.stop_, 500) == WAIT_TIMEOUT) {
        EnterCriticalSection(&dog.lock_);
        if (GetTickCount() - dog.begun_ > WindowWatchdog::Patient(Limit)) {
            std::printf("the watchdog ends a case that takes too long: %s\n", dog.name_.c_str());
            std::fflush(stdout);
            TerminateProcess(GetCurrentProcess(), 98);
        }
        LeaveCriticalSection(&dog.lock_);
    }
    return 0;
}
