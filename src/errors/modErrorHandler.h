#pragma once

#include <string>

#include "automation/RuntimeError.h"
#include "automation/Variant.h"

// The one place where failures end. Only inside a catch block: hands the current error to the error component under the
// module and procedure given. It traps nothing itself: a failure of the reporting leaves the trap that called it and
// propagates to the caller's.
void ReportError(const std::wstring& Module, const std::wstring& Routine,
                 const Variant& DebugMessage = Variant::Missing());

// False for the numbers that components give to errors of their own (ObjectErrorBase + 1 to + 65534), true for all
// others. The subtraction is checked: a number more than 262143 is error 6.
bool IsNotComponentError(long Number);

// Whether the error is one that this component raised itself, which procedures of the object tree pass up unchanged. An
// error of another object that named no source is not one: its number says nothing.
bool IsOwnError(const RuntimeError& error);
// The same for one number.
bool IsOwnError(const RuntimeError& error, long Number);

// Tells the user something through the error component.
void AlertUser(const std::wstring& Message);
