#include "errors/modErrorHandler.h"

#include "automation/App.h"
#include "automation/Scope.h"
#include "errors/clsErrorHandler.h"
#include "forms/NotTopmost.h"
#include "forms/Painting.h"
#include "shared/modGlobal.h"

namespace {

// How deep reports may nest. An error component that shows the error pumps messages, and what they lead to may fail and
// be reported in turn: a host's timer that goes on calling would exhaust the stack.
constexpr int Deepest = 16;
int depth = 0;

}  // namespace

void ReportError(const std::wstring& Module, const std::wstring& Routine, const Variant& DebugMessage) {
    if (depth >= Deepest) return;
    const AutoReset deeper(depth, depth + 1);
    const RuntimeError error = CurrentError();
    // Compiled code carries no line numbers.
    constexpr long Line = 0;
    const NotTopmost notTopmost;  // it may show the error to the user
    if (ErrorHandler == nullptr) ErrorHandler = std::make_shared<clsErrorHandler>();
    // Held here too: the component may be asked to unload while its error component shows an alert.
    const auto handler = ErrorHandler;
    const PaintingResumed resumed;
    handler->ErrorMessage(Module, Routine, MakeErrorObject(error), Line, DebugMessage);
}

void AlertUser(const std::wstring& Message) {
    const NotTopmost notTopmost;
    if (ErrorHandler == nullptr) ErrorHandler = std::make_shared<clsErrorHandler>();
    const auto handler = ErrorHandler;
    handler->Alert(Message);
}

bool IsNotComponentError(long Number) {
    long difference = 0;
    if (__builtin_sub_overflow(Number, ObjectErrorBase, &difference)) RaiseError(ErrorNumber::Overflow);
    return !(difference > 0 && difference < 65535);
}

bool IsOwnError(const RuntimeError& error) {
    return error.Source == App::Title && !error.Foreign && !IsNotComponentError(error.Number);
}

bool IsOwnError(const RuntimeError& error, long Number) { return error.Number == Number && IsOwnError(error); }
