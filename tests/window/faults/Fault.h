#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "automation/DynamicObject.h"
#include "automation/Object.h"

// Members of the host's objects, made to fail: each object is wrapped, each call of it is recorded, and one of them
// does what the case wants instead of what is right.

// The ways to fail.
enum class Fault {
    UnknownName,      // the object does not know the name, from the start
    MissingMember,    // the name was known, the call finds no member
    ObjectError,      // an exception of the host's database component
    NoDictionary,     // ... the one that says that there is no dictionary
    NoColumns,        // ... the one that says why columns cannot be read
    LanguageError,    // ... one with a number of the language's
    OwnError,         // an exception that says it is of the component itself
    OwnLimit,         // ... with the number of the tree's limit
    OwnNoDictionary,  // ... with the number of a missing dictionary
    Text,             // a text, whatever was asked for
    PlainObject,      // an object without members
    Null,
    Empty,
    Nothing,
    Reenters,          // pumps messages and calls Display, then gives what is right
    Forgets,           // calls Constructor with nothing, then gives what is right
    Closes,            // closes the window, then gives what is right
    Ends,              // calls Destructor, then gives what is right
    EndsNoDictionary,  // calls Destructor, then fails like NoDictionary
    EndsNoColumns,     // ... like NoColumns
};
constexpr Fault AllFaults[] = {
    Fault::UnknownName,   Fault::MissingMember, Fault::ObjectError, Fault::NoDictionary,     Fault::NoColumns,
    Fault::LanguageError, Fault::OwnError,      Fault::OwnLimit,    Fault::OwnNoDictionary,  Fault::Text,
    Fault::PlainObject,   Fault::Null,          Fault::Empty,       Fault::Nothing,          Fault::Reenters,
    Fault::Forgets,       Fault::Closes,        Fault::Ends,        Fault::EndsNoDictionary, Fault::EndsNoColumns};
std::string NameOf(Fault fault);

// The exception that a fault raises; nothing for one that raises none.
struct Exception {
    long Number;
    const wchar_t* Source;
    const wchar_t* Description;
};
std::optional<Exception> ExceptionOf(Fault fault);
bool IsWrongValue(Fault fault);
// Whether the window is gone when the call is over.
bool EndsWindow(Fault fault);
// Whether BRV_ALL in the environment asks for cases that differ from others in what does not matter where they are. A
// test run has time for those that stand for them.
bool EveryCase();
// Whether a test run takes the case of this number: one in so many, chosen alike in each run and evenly over calls and
// faults. `inASample`: with BRV_SAMPLE in the environment, where another run takes more.
bool IsChosen(size_t number, size_t inARun, size_t inASample);
// Whether the next call is worth a look: after the faults that others are like.
bool IsFollowedUp(Fault fault);
// Exceptions that are like ObjectError or OwnError wherever their numbers mean nothing.
bool IsSpecialNumber(Fault fault);

// Which call fails and how.
struct Case {
    std::wstring Member;  // as recorded: "Connected", "Dictionary.Schemas", "Schemas.Item", ...
    int Occurrence = 1;   // of the member while armed, from 1; 0 is each
    Fault Way = Fault::UnknownName;
};

// What all objects of one host share: the record of their calls, and the case that is made to happen.
class Faults {
public:
    // Recording, and the case, begin.
    void Arm(std::optional<Case> wanted);
    void Disarm() noexcept { armed_ = false; }
    const std::vector<std::wstring>& Calls() const noexcept { return calls_; }  // while armed
    int Injected() const noexcept { return injected_; }                         // how often the fault happened

    // What a fault does beside failing, before it does: by Reenters, Forgets, Closes, Ends.
    std::function<void(Fault)> Inside;

    // An object whose calls are recorded as `prefix` + name, and fail as the case says. `inner` does the work.
    Object Wrap(std::wstring prefix, const Object& inner);

    // For the wrapper: the name is looked up; whether it is to be unknown.
    bool OnName(const std::wstring& member);
    // For the wrapper: the call is made; the fault that it is to have.
    std::optional<Fault> OnCall(const std::wstring& member);

private:
    bool armed_ = false;
    std::optional<Case> case_;
    std::map<std::wstring, int> seen_;
    std::vector<std::wstring> calls_;
    int injected_ = 0;
};

// Ends the process when a case takes too long, whether or not messages are pumped; says which it was.
class Watchdog {
public:
    Watchdog();
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
    void Begin(const std::string& name);

private:
    static DWORD WINAPI Watch(void* self);
    static constexpr DWORD Limit = 30000;  // milliseconds a case
    HANDLE stop_;
    HANDLE thread_;
    CRITICAL_SECTION lock_;
    std::string name_;
    DWORD begun_;
};
