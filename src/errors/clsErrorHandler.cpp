#include "errors/clsErrorHandler.h"

#include "automation/App.h"
#include "automation/DynamicObject.h"

clsErrorHandler::clsErrorHandler() : error_(Object::Create(L"brvError.clsError")) {
    error_.Call(L"Constructor", App::Title, App::Major, App::Minor, App::Revision);
}

clsErrorHandler::~clsErrorHandler() { Destructor(); }

void clsErrorHandler::Alert(const std::wstring& Message, const Variant& Title) {
    error_.Call(L"Alert", Message, Title);
}

void clsErrorHandler::LogEvent(const std::wstring& Message) { error_.Call(L"LogEvent", Message); }

void clsErrorHandler::Destructor() noexcept {}

bool clsErrorHandler::DisplayAlerts() const { return error_.Get(L"DisplayAlerts").ToBoolean(); }

void clsErrorHandler::SetDisplayAlerts(bool NewValue) { error_.Let(L"DisplayAlerts", NewValue); }

void clsErrorHandler::ErrorMessage(const std::wstring& Module, const std::wstring& Routine, const Object& VBError,
                                   long ErrorLine, const Variant& DebugMessage) {
    error_.Call(L"ErrorMessage", Module, Routine, VBError, ErrorLine, DebugMessage);
}

Object MakeErrorObject(const RuntimeError& error) {
    auto* made = new DynamicObject;
    Object held = Object::Attach(made);
    made->DefineDefault([number = error.Number](const Arguments&) { return Variant(number); });
    made->Define(L"Number", [number = error.Number](const Arguments&) { return Variant(number); });
    made->Define(L"Source", [source = error.Source](const Arguments&) { return Variant(source); });
    made->Define(L"Description", [text = error.Description](const Arguments&) { return Variant(text); });
    made->Define(L"HelpFile", [file = error.HelpFile](const Arguments&) { return Variant(file); });
    made->Define(L"HelpContext", [context = error.HelpContext](const Arguments&) { return Variant(context); });
    made->Define(L"LastDllError", [last = error.LastDllError](const Arguments&) { return Variant(last); });
    return held;
}
