#include "dictionary/clsDictionary.h"

#include "automation/App.h"
#include "automation/RuntimeError.h"
#include "errors/modErrorHandler.h"
#include "forms/NotTopmost.h"
#include "shared/Vocabulary.h"

clsDictionary::clsDictionary() = default;

// No trap here: nothing in it can fail.
clsDictionary::~clsDictionary() { Destructor(); }

void clsDictionary::Constructor(const Object& Dictionary) try { dictionary_ = Dictionary; } catch (...) {
    ReportError(Module, L"Constructor");
}

bool clsDictionary::Connected() const try { return static_cast<bool>(dictionary_); } catch (...) {
    ReportError(Module, L"Get Connected");
    return false;
}

HostCollection clsDictionary::Schemas(const Variant& SchemaName, bool IncludeSystem) const try {
    const NotTopmost notTopmost;  // a driver that connects again may ask for a password
    return HostCollection(dictionary_.Get(L"Schemas", SchemaName, IncludeSystem));
} catch (...) {
    ReportError(Module, L"Get Schemas");
    return {};
}

HostCollection clsDictionary::Objects(long ObjectType, const Variant& SchemaName, const Variant& ObjectName,
                                      const Variant& IncludeSys) const try {
    const NotTopmost notTopmost;
    return HostCollection(dictionary_.Get(L"Objects", ObjectType, SchemaName, ObjectName, IncludeSys));
} catch (...) {
    const RuntimeError error = CurrentError();
    if (error.Source == HostDatabaseError::Source && error.Number == HostDatabaseError::NoDictionary) {
        RaiseError(error.Number, App::Title, error.Description);
    }
    ReportError(Module, L"Get Objects");
    return {};
}

HostCollection clsDictionary::Columns(const Variant& SchemaName, const Variant& TableName) const try {
    const NotTopmost notTopmost;
    return HostCollection(dictionary_.Get(L"Columns", SchemaName, TableName));
} catch (...) {
    const RuntimeError error = CurrentError();
    if (error.Source == HostDatabaseError::Source && !IsNotComponentError(error.Number)) throw;
    ReportError(Module, L"Get Columns");
    return {};
}

// Both arguments are always forwarded: a field attribute that is left out is 0, never missing.
std::wstring clsDictionary::DataTypeDesc(long DataType, long FieldAttribute) const try {
    const NotTopmost notTopmost;
    return dictionary_.Get(L"DataTypeDesc", DataType, FieldAttribute).ToText();
} catch (...) {
    ReportError(Module, L"Get DataTypeDesc");
    return {};
}

void clsDictionary::Destructor() try { dictionary_.Clear(); } catch (...) {
    ReportError(Module, L"Destructor");
}
