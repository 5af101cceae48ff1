#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <string>

#include "support/EditorWindow.h"
#include "support/HostFakes.h"

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

// A test with a clean settings key, a fresh component and a recording error component.
class ComponentFixture : public testing::Test {
protected:
    ComponentFixture();
    ~ComponentFixture() override;
    Object Connected();  // a new object, connected to Database
    // Display with the text, which runs `inside` and closes the window; returns the text that came back.
    std::wstring DisplayAndClose(const Object& editor, const std::wstring& sql,
                                 const std::function<void()>& inside = {});
    // The same with a new object that is connected to Database.
    std::wstring Inside(const std::wstring& sql, const std::function<void()>& work);
    std::wstring Inside(const std::function<void()>& work) { return Inside(L"select 1", work); }

    FakeErrors Errors;
    FakeDatabase Database;
    Component Dll;
};
