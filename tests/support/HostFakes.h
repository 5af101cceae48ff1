#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/DynamicObject.h"
#include "automation/Object.h"
#include "automation/RuntimeError.h"

// What the component is given in these tests: a host and an error component of our own, which keep a log of what is
// asked of them.

// A report as the error component gets it.
struct Report {
    std::wstring Module;
    std::wstring Routine;
    long Number = 0;
    std::wstring Source;
    std::wstring Description;
    long Line = -1;
    bool DebugMissing = false;
    std::wstring Debug;
    std::wstring Place() const { return Module + L"." + Routine; }
};

// Stands in for "brvError.clsError" while it lives. The class must be registered, as ./test does. A report that the
// test has not looked at, by Places or Only, when this ends is a failure of the test.
class FakeErrors {
public:
    FakeErrors();
    ~FakeErrors();
    FakeErrors(const FakeErrors&) = delete;
    FakeErrors& operator=(const FakeErrors&) = delete;

    std::vector<Report> Reports;
    std::vector<std::wstring> Constructed;  // the arguments of Constructor, joined
    std::vector<std::wstring> Told;         // Alert and LogEvent, with their arguments
    bool DisplayAlerts = true;
    bool CannotBeCreated = false;
    int CreateFailures = 0;  // how many attempts fail, when not all do
    bool ErrorMessageFails = false;
    int MessageFailures = 0;  // how many reports fail, when not all do
    int Created = 0;
    std::function<void()> OnReport;  // runs in each report, as an alert that lets messages through would
    // Every error component that is made is given to it, and what it gives back is handed out.
    std::function<Object(const Object&)> Wrap;

    std::wstring Places();  // "module.routine number|..."
    Report Only();          // the one report there is; a failure where there is another number of them
    void Forget();          // takes all away, looked at or not

private:
    size_t looked_ = 0;  // so many of the reports
    DWORD cookie_ = 0;
};

// A host database. Members can be replaced or taken away; every use is logged.
class FakeDatabase {
public:
    using AllMembers = std::map<std::wstring, std::function<Variant(const Arguments&)>>;
    FakeDatabase();
    std::vector<std::wstring> Log;
    AllMembers Members;
    AllMembers DictionaryMembers;
    // An object with the members as they stand now.
    Object Make();
    Object MakeDictionary();
    std::wstring Logged() const;  // each entry followed by a blank
    std::wstring Taken();         // the same, and forgets it

private:
    Object Logging(const AllMembers& members, const std::wstring& before);
};
