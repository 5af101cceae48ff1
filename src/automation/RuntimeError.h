#pragma once

#include <windows.h>
#include <oaidl.h>

#include <string>

// A run-time failure as the hosts' language knows it: a number, a source and a description. Every call of this floor
// and of the floors above throws it.
struct RuntimeError {
    RuntimeError() noexcept = default;
    RuntimeError(RuntimeError&&) noexcept = default;
    RuntimeError& operator=(RuntimeError&&) noexcept = default;
    // Only on request: a copy that finds no memory while it is thrown ends the process.
    RuntimeError Copy() const { return RuntimeError(*this); }

    long Number = 0;
    std::wstring Source;
    std::wstring Description;
    std::wstring HelpFile;
    long HelpContext = 0;
    long LastDllError = 0;  // GetLastError of the Windows call that failed, 0 when none did
    // Another object failed and named no source: Source is App::Title then, and the number is not one of our own.
    bool Foreign = false;

private:
    RuntimeError(const RuntimeError&) = default;
};

// The numbers that hosts know.
namespace ErrorNumber {
inline constexpr long InvalidProcedureCall = 5;
inline constexpr long Overflow = 6;
inline constexpr long OutOfMemory = 7;
inline constexpr long SubscriptOutOfRange = 9;
inline constexpr long TypeMismatch = 13;
inline constexpr long FileNotFound = 53;
inline constexpr long FileAlreadyOpen = 55;
inline constexpr long DeviceIOError = 57;
inline constexpr long DiskFull = 61;
inline constexpr long PermissionDenied = 70;
inline constexpr long PathFileAccessError = 75;
inline constexpr long PathNotFound = 76;
inline constexpr long ObjectNotSet = 91;
inline constexpr long InvalidUseOfNull = 94;
inline constexpr long InvalidPropertyValue = 380;
inline constexpr long FormAlreadyShown = 400;
inline constexpr long ObjectRequired = 424;
inline constexpr long CannotCreateObject = 429;
inline constexpr long NoInterface = 430;
inline constexpr long NoSuchMember = 438;
inline constexpr long AutomationError = 440;
inline constexpr long ArgumentNotOptional = 449;
inline constexpr long WrongArgumentCount = 450;
inline constexpr long NotACollection = 451;
inline constexpr long KeyInUse = 457;
inline constexpr long ServerNotAvailable = 462;
inline constexpr long ClipboardNotOpened = 521;
inline constexpr long DialogCancelled = 32755;
inline constexpr long IndexOutOfBounds = 35600;
inline constexpr long ElementNotFound = 35601;
inline constexpr long KeyNotUnique = 35602;
}  // namespace ErrorNumber

// The first number of the range that components use for their own errors (80040000 hexadecimal).
inline constexpr long ObjectErrorBase = -2147221504;

// Makes the record that the language's run-time library keeps for each thread that throws; without memory for it the
// first exception ends the process. False: there is none, and nothing may be called that throws. Every way into the
// module, from whatever thread, begins with this.
bool ReadyToThrow() noexcept;

// Throws the error. What the argument needs is over by then: an exception that comes while one is made to be thrown
// ends the process.
[[noreturn]] void Raise(RuntimeError error);
// Throws the error `number` with the standing description of that number and App::Title as its source.
[[noreturn]] void RaiseError(long number);
// The same with a description, and with a source other than App::Title when `source` is given.
[[noreturn]] void RaiseError(long number, std::wstring description);
[[noreturn]] void RaiseError(long number, std::wstring source, std::wstring description);
// Throws `number` for a Windows call that failed with `lastError` (what GetLastError said), which goes into
// LastDllError and, in words, into the description.
[[noreturn]] void RaiseSystemError(long number, DWORD lastError);

// The standing description of a run-time error number ("Type mismatch"), or the general one for a number that has none.
std::wstring ErrorText(long number);

// Only inside a catch block: the error being handled, whatever was thrown. A RuntimeError is returned as it is;
// std::bad_alloc is error 7, any other exception error 440 (51 is avoided: hosts show it as "Internal error").
RuntimeError CurrentError() noexcept;

// The error that a failed automation call stands for. `exception` may be null (no details); its strings are taken over
// and freed, its deferred fill-in is run. A bare HRESULT that Windows defines becomes the run-time error that hosts
// know it by; the number that an exception carries is the object's choice and stays, but for the control facility, in
// which hosts dress the small numbers. `S_OK`-like values are never passed.
RuntimeError ErrorFromHresult(HRESULT hr, EXCEPINFO* exception);
// Throws ErrorFromHresult(hr, null) when `hr` is a failure.
void RaiseIfFailed(HRESULT hr);
// For details that nobody takes over: frees their strings and clears them.
void FreeTexts(EXCEPINFO& exception) noexcept;
// Throws ErrorFromHresult(hr, null) when `hr` is a failure, with what IErrorInfo of the thread says. Only for calls to
// objects that set it: elsewhere it may be left over from somebody else's failure.
void CheckHresult(HRESULT hr);

// The other way round, at a COM method's edge: the HRESULT of an error (800A0000 hexadecimal + number for the numbers
// up to 65535, an HRESULT-like number as it is), and the same with the thread's IErrorInfo set.
HRESULT HresultFromError(const RuntimeError& error) noexcept;
HRESULT PublishError(const RuntimeError& error) noexcept;
// Fills the EXCEPINFO of IDispatch::Invoke and returns DISP_E_EXCEPTION. With a null `exception` it publishes instead.
HRESULT FillException(const RuntimeError& error, EXCEPINFO* exception) noexcept;
