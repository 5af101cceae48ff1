#pragma once

#include <string>

#include "automation/Object.h"
#include "automation/RuntimeError.h"

// Wrapper over the error and logging component "brvError.clsError": every member forwards by name to its namesake, with
// the arguments in the same order; what was left out is passed on as missing. Nothing here traps errors: what fails
// goes to the caller.
class clsErrorHandler {
public:
    // Creates the component and hands it the application title and version; error 429 when it is not registered.
    clsErrorHandler();
    ~clsErrorHandler();
    clsErrorHandler(const clsErrorHandler&) = delete;
    clsErrorHandler& operator=(const clsErrorHandler&) = delete;

    void Alert(const std::wstring& Message, const Variant& Title = Variant::Missing());
    void LogEvent(const std::wstring& Message);
    void Destructor() noexcept;
    bool DisplayAlerts() const;
    void SetDisplayAlerts(bool NewValue);
    // `VBError`: an object with Number, Source, Description, HelpFile, HelpContext and LastDllError.
    void ErrorMessage(const std::wstring& Module, const std::wstring& Routine, const Object& VBError, long ErrorLine,
                      const Variant& DebugMessage = Variant::Missing());

private:
    Object error_;
};

// The error as an object that others read by name; Number is its default member.
Object MakeErrorObject(const RuntimeError& error);
