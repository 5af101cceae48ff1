#include "automation/RuntimeError.h"

#include <oleauto.h>

#include <cstdlib>
#include <exception>
#include <new>
#include <utility>

#include "automation/App.h"
#include "automation/Bstr.h"
#include "automation/ComPtr.h"
#include "automation/Variant.h"

namespace {

struct Standing {
    long Number;
    const wchar_t* Text;
};

constexpr Standing Texts[] = {
    {ErrorNumber::InvalidProcedureCall, L"Invalid procedure call or argument"},
    {ErrorNumber::Overflow, L"Overflow"},
    {ErrorNumber::OutOfMemory, L"Out of memory"},
    {ErrorNumber::SubscriptOutOfRange, L"Subscript out of range"},
    {10, L"The array is fixed or locked"},
    {11, L"Division by zero"},
    {ErrorNumber::TypeMismatch, L"Type mismatch"},
    {52, L"Bad file name"},
    {ErrorNumber::FileNotFound, L"File not found"},
    {ErrorNumber::FileAlreadyOpen, L"File already open"},
    {ErrorNumber::DeviceIOError, L"Device I/O error"},
    {58, L"File already exists"},
    {ErrorNumber::DiskFull, L"Disk full"},
    {68, L"Device unavailable"},
    {ErrorNumber::PermissionDenied, L"Permission denied"},
    {71, L"Disk not ready"},
    {ErrorNumber::PathFileAccessError, L"Path/File access error"},
    {ErrorNumber::PathNotFound, L"Path not found"},
    {ErrorNumber::ObjectNotSet, L"Object variable not set"},
    {ErrorNumber::InvalidUseOfNull, L"Invalid use of Null"},
    {321, L"Invalid file format"},
    {ErrorNumber::InvalidPropertyValue, L"Invalid property value"},
    {ErrorNumber::FormAlreadyShown, L"The window is shown already and cannot be shown modally"},
    {ErrorNumber::ObjectRequired, L"Object required"},
    {ErrorNumber::CannotCreateObject, L"The object cannot be created"},
    {ErrorNumber::NoInterface, L"The class does not support automation"},
    {ErrorNumber::NoSuchMember, L"The object does not support this property or method"},
    {ErrorNumber::AutomationError, L"Automation error"},
    {445, L"The object does not support this action"},
    {446, L"The object does not support named arguments"},
    {447, L"The object does not support the current locale"},
    {448, L"Named argument not found"},
    {ErrorNumber::ArgumentNotOptional, L"An argument is missing that is not optional"},
    {ErrorNumber::WrongArgumentCount, L"Wrong number of arguments"},
    {ErrorNumber::NotACollection, L"The object is not a collection"},
    {ErrorNumber::KeyInUse, L"The key belongs to another element of the collection"},
    {ErrorNumber::ServerNotAvailable, L"The remote server is not available"},
    {ErrorNumber::ClipboardNotOpened, L"The clipboard cannot be opened"},
    {ErrorNumber::DialogCancelled, L"Cancel was selected"},
    {ErrorNumber::IndexOutOfBounds, L"Index out of bounds"},
    {ErrorNumber::ElementNotFound, L"Element not found"},
    {ErrorNumber::KeyNotUnique, L"The key is not unique in the collection"},
    // SCRIPT_E_REPORTED: what engines give to callers that are no script.
    {static_cast<long>(0x80020101), L"The script has failed and has told its own host why"},
};

struct Translated {
    HRESULT Result;
    long Number;
};

constexpr Translated Results[] = {
    {DISP_E_MEMBERNOTFOUND, ErrorNumber::NoSuchMember},
    {DISP_E_UNKNOWNNAME, ErrorNumber::NoSuchMember},
    {DISP_E_TYPEMISMATCH, ErrorNumber::TypeMismatch},
    {DISP_E_OVERFLOW, ErrorNumber::Overflow},
    {DISP_E_BADPARAMCOUNT, ErrorNumber::WrongArgumentCount},
    {DISP_E_PARAMNOTOPTIONAL, ErrorNumber::ArgumentNotOptional},
    {DISP_E_BADINDEX, ErrorNumber::SubscriptOutOfRange},
    {E_OUTOFMEMORY, ErrorNumber::OutOfMemory},
    {DISP_E_DIVBYZERO, 11},
    {DISP_E_ARRAYISLOCKED, 10},
    {DISP_E_NONAMEDARGS, 446},
    {DISP_E_UNKNOWNLCID, 447},
    {DISP_E_PARAMNOTFOUND, 448},
    {DISP_E_NOTACOLLECTION, ErrorNumber::NotACollection},
    {E_NOTIMPL, 445},
    {REGDB_E_CLASSNOTREG, ErrorNumber::CannotCreateObject},
    {CO_E_SERVER_EXEC_FAILURE, ErrorNumber::CannotCreateObject},
    {E_NOINTERFACE, ErrorNumber::NoInterface},
    {E_INVALIDARG, ErrorNumber::InvalidProcedureCall},
    {E_ACCESSDENIED, ErrorNumber::PermissionDenied},
    {HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), ErrorNumber::ServerNotAvailable},
    {HRESULT_FROM_WIN32(RPC_S_CALL_FAILED), ErrorNumber::ServerNotAvailable},
    {RPC_E_DISCONNECTED, ErrorNumber::ServerNotAvailable},
    {RPC_E_SERVER_DIED, ErrorNumber::ServerNotAvailable},
    {RPC_E_SERVER_DIED_DNE, ErrorNumber::ServerNotAvailable},
    {CO_E_OBJNOTCONNECTED, ErrorNumber::ServerNotAvailable},
};

std::wstring SystemText(DWORD code) {
    wchar_t* text = nullptr;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, code, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::wstring result = length > 0 ? std::wstring(text, length) : std::wstring();
    LocalFree(text);
    while (!result.empty() && (result.back() == L'\n' || result.back() == L'\r' || result.back() == L' '))
        result.pop_back();
    return result;
}

std::wstring Taken(BSTR& text) {
    Bstr taken;
    *taken.Receive() = std::exchange(text, nullptr);
    return TextOf(taken.Get());
}

// A number that a host raised, without the HRESULT of its control facility. Number 0 would be no error.
long RaisedNumber(HRESULT result) noexcept {
    const bool dressed = HRESULT_FACILITY(result) == FACILITY_CONTROL && FAILED(result) && HRESULT_CODE(result) != 0;
    return dressed ? HRESULT_CODE(result) : result;
}

long NumberOf(HRESULT result) noexcept {
    if (const long raised = RaisedNumber(result); raised != result) return raised;
    for (const Translated& known : Results) {
        if (known.Result == result) return known.Number;
    }
    return result;
}

std::wstring DescriptionOf(long number, HRESULT result) {
    for (const Standing& standing : Texts) {
        if (standing.Number == number) return standing.Text;
    }
    std::wstring text = number > 0xFFFF || number < 0 ? SystemText(static_cast<DWORD>(result)) : std::wstring();
    return text.empty() ? ErrorText(number) : text;
}

}  // namespace

std::wstring ErrorText(long number) {
    for (const Standing& standing : Texts) {
        if (standing.Number == number) return standing.Text;
    }
    return L"Application-defined or object-defined error";
}

bool ReadyToThrow() noexcept {
    // The library asks for less, ends the process when it gets nothing, and cannot be asked whether it has it already.
    constexpr size_t Enough = 1024;
    void* volatile block = std::malloc(Enough);
    if (block == nullptr) return false;
    std::free(block);
    // Into a volatile, since the compiler takes the function for a pure one and leaves out a call whose result is not
    // used.
    [[maybe_unused]] const volatile int underWay = std::uncaught_exceptions();
    return true;
}

void Raise(RuntimeError error) { throw error; }

void RaiseError(long number) { RaiseError(number, ErrorText(number)); }

void RaiseError(long number, std::wstring description) { RaiseError(number, App::Title, std::move(description)); }

void RaiseError(long number, std::wstring source, std::wstring description) {
    RuntimeError error;
    error.Number = number;
    error.Source = std::move(source);
    error.Description = std::move(description);
    throw error;
}

void RaiseSystemError(long number, DWORD lastError) {
    RuntimeError error;
    error.Number = number;
    error.Source = App::Title;
    error.Description = ErrorText(number);
    error.LastDllError = static_cast<long>(lastError);
    const std::wstring reason = SystemText(lastError);
    if (!reason.empty()) error.Description += L": " + reason;
    throw error;
}

RuntimeError CurrentError() noexcept {
    long number = ErrorNumber::AutomationError;
    try {
        try {
            throw;
        } catch (const RuntimeError& error) {
            return error.Copy();
        } catch (const std::bad_alloc&) {
            number = ErrorNumber::OutOfMemory;
        } catch (...) {
        }
        RuntimeError error;
        error.Number = number;
        error.Source = App::Title;
        error.Description = ErrorText(number);
        return error;
    } catch (...) {
        // No memory even for the texts: the number alone.
        RuntimeError error;
        error.Number = ErrorNumber::OutOfMemory;
        return error;
    }
}

RuntimeError ErrorFromHresult(HRESULT hr, EXCEPINFO* exception) {
    RuntimeError error;
    HRESULT result = hr;
    const bool raised = exception != nullptr && hr == DISP_E_EXCEPTION;
    if (exception != nullptr) {
        if (raised) {
            // Some servers defer filling in the details until they are asked for.
            if (exception->pfnDeferredFillIn != nullptr) exception->pfnDeferredFillIn(exception);
            error.HelpContext = static_cast<long>(exception->dwHelpContext);
            // DISP_E_EXCEPTION without details is still a failure.
            result = exception->wCode != 0      ? static_cast<HRESULT>(exception->wCode)
                     : exception->scode != S_OK ? exception->scode
                                                : DISP_E_EXCEPTION;
        }
        error.Source = Taken(exception->bstrSource);
        error.Description = Taken(exception->bstrDescription);
        error.HelpFile = Taken(exception->bstrHelpFile);
    }
    error.Number = raised ? RaisedNumber(result) : NumberOf(result);
    if (error.Source.empty()) {
        error.Source = App::Title;
        error.Foreign = true;
    }
    if (error.Description.empty()) error.Description = DescriptionOf(error.Number, result);
    return error;
}

void RaiseIfFailed(HRESULT hr) {
    if (FAILED(hr)) Raise(ErrorFromHresult(hr, nullptr));
}

void FreeTexts(EXCEPINFO& exception) noexcept {
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    exception = {};
}

void CheckHresult(HRESULT hr) {
    if (SUCCEEDED(hr)) return;
    RuntimeError error = ErrorFromHresult(hr, nullptr);
    ComPtr<IErrorInfo> info;
    if (info.Filled(GetErrorInfo(0, info.Receive()))) {
        Bstr source;
        if (SUCCEEDED(info->GetSource(source.Receive())) && SysStringLen(source.Get()) > 0) {
            error.Source = TextOf(source.Get());
            error.Foreign = false;
        }
        Bstr description;
        if (SUCCEEDED(info->GetDescription(description.Receive())) && SysStringLen(description.Get()) > 0)
            error.Description = TextOf(description.Get());
    }
    throw error;
}

HRESULT HresultFromError(const RuntimeError& error) noexcept {
    if (error.Number > 0 && error.Number <= 0xFFFF) return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, error.Number);
    return FAILED(static_cast<HRESULT>(error.Number)) ? static_cast<HRESULT>(error.Number) : E_FAIL;
}

HRESULT PublishError(const RuntimeError& error) noexcept {
    ComPtr<ICreateErrorInfo> made;
    if (made.Filled(CreateErrorInfo(made.Receive()))) {
        made->SetSource(const_cast<LPOLESTR>(error.Source.c_str()));
        made->SetDescription(const_cast<LPOLESTR>(error.Description.c_str()));
        made->SetHelpFile(const_cast<LPOLESTR>(error.HelpFile.c_str()));
        made->SetHelpContext(static_cast<DWORD>(error.HelpContext));
        if (const auto info = made.As<IErrorInfo>()) SetErrorInfo(0, info.Get());
    }
    return HresultFromError(error);
}

HRESULT FillException(const RuntimeError& error, EXCEPINFO* exception) noexcept {
    if (exception == nullptr) return PublishError(error);
    *exception = {};
    exception->scode = HresultFromError(error);
    exception->bstrSource = Bstr::OrNull(error.Source).Detach();
    exception->bstrDescription = Bstr::OrNull(error.Description).Detach();
    exception->bstrHelpFile = Bstr::OrNull(error.HelpFile).Detach();
    exception->dwHelpContext = static_cast<DWORD>(error.HelpContext);
    return DISP_E_EXCEPTION;
}
