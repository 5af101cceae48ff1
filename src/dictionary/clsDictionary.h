#pragma once

#include <string>

#include "automation/HostCollection.h"

// Adapter over the dictionary object of the host's database component: forwards by name, gives the arguments their
// defaults, and decides which errors of the host go to the caller and which are reported.
class clsDictionary {
public:
    // What reports and logs call it.
    static constexpr const wchar_t* Module = L"clsDictionary";

    clsDictionary();
    ~clsDictionary();
    clsDictionary(const clsDictionary&) = delete;
    clsDictionary& operator=(const clsDictionary&) = delete;

    // Nothing makes an adapter that is not connected.
    void Constructor(const Object& Dictionary);
    // Whether there is a dictionary, which was handed over and not let go yet; the host is never asked whether its
    // connection is still open.
    bool Connected() const;

    // A getter that fails reports and returns nothing (an empty text).
    HostCollection Schemas(const Variant& SchemaName, bool IncludeSystem = false) const;
    // Passes the error "no dictionary" (ObjectErrorBase + 1 of "brvADO") to its caller, with the application title as
    // source.
    HostCollection Objects(long ObjectType, const Variant& SchemaName = Variant::Missing(),
                           const Variant& ObjectName = Variant::Missing(),
                           const Variant& IncludeSys = Variant::Missing()) const;
    // Passes the errors that "brvADO" numbers itself to its caller unchanged.
    HostCollection Columns(const Variant& SchemaName, const Variant& TableName) const;
    std::wstring DataTypeDesc(long DataType, long FieldAttribute = 0) const;

    void Destructor();

private:
    Object dictionary_;
};
