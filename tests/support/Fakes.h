#pragma once

#include <gtest/gtest.h>
#include <windows.h>
#include <objbase.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/DynamicObject.h"
#include "automation/Object.h"
#include "automation/RuntimeError.h"

// What the component is given in these tests: a host and an error component of our own, which keep a log of what is
// asked of them. The component itself is the built DLL, reached through COM alone.

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

// Stands in for "brvError.clsError" while it lives. The class must be registered, as ./test does.
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

    std::wstring Places() const;  // "module.routine number|..."

private:
    DWORD cookie_ = 0;
};

// A host database. Members can be replaced or taken away; every use is logged.
class FakeDatabase {
public:
    FakeDatabase();
    std::vector<std::wstring> Log;
    std::map<std::wstring, std::function<Variant(const Arguments&)>> Members;
    std::map<std::wstring, std::function<Variant(const Arguments&)>> DictionaryMembers;
    // An object with the members as they stand now.
    Object Make();
    Object MakeDictionary();
    std::wstring Logged() const;
};

// The DLL beside this program.
class Component {
public:
    Component();
    ~Component();
    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

    static std::wstring Path();
    HRESULT CanUnload() const;
    HRESULT GetClassObject(REFCLSID id, REFIID iid, void** object) const;
    Object Create() const;  // a clsSQLEditor
    HMODULE Handle() const { return module_; }

private:
    HMODULE module_;
};

// The editor's window, found from outside.
namespace EditorWindow {
HWND Find();                                               // null when none is shown
HWND Child(const wchar_t* windowClass, int position = 0);  // in creation order, however deep
HWND Editor();
std::wstring Text();
void SetText(const std::wstring& text);
std::wstring Status();
std::wstring Caption();
std::wstring Root();  // text of the object browser's first node, "<none>" when there is none
void Choose(const wchar_t* menu, const wchar_t* entry);
void PressReturn();
void Close();
}  // namespace EditorWindow

// Runs a step from inside the modal loop, once the window is shown. A window that nobody closes ends the process. The
// test fails when the window was never shown, since its expectations were not looked at then, and when the step was cut
// off; MayStayHidden is for starts that are meant to fail, which look at Ran().
class WhenShown {
public:
    enum class Expect { Shown, MayStayHidden };
    explicit WhenShown(std::function<void()> step, Expect expect = Expect::Shown);
    ~WhenShown();
    WhenShown(const WhenShown&) = delete;
    WhenShown& operator=(const WhenShown&) = delete;
    bool Ran() const { return ran_; }
    static inline UINT Limit = 60000;  // milliseconds

private:
    std::function<void()> step_;
    Expect expect_;
    UINT_PTR timer_;
    UINT_PTR watchdog_;
    bool ran_ = false;
    bool finished_ = false;
};

// The user's saved placement, set aside for the time of a test.
namespace Settings {
void Clear();
std::wstring Get(const wchar_t* key);
void Put(const wchar_t* key, const wchar_t* value);
}  // namespace Settings

// A test with a clean settings key, a fresh component and a recording error component.
class ComponentFixture : public testing::Test {
protected:
    ComponentFixture();
    ~ComponentFixture() override;
    // Constructor with a database, Display with the text, closing it at once; returns what came back.
    std::wstring DisplayAndClose(const Object& editor, const std::wstring& sql,
                                 const std::function<void()>& inside = {});

    FakeErrors Errors;
    FakeDatabase Database;
    Component Dll;
};

long NumberOf(const std::function<void()>& work);
