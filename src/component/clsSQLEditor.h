#pragma once

#include <string>

#include "automation/Object.h"
#include "automation/Server.h"

// The three things that a host asks for. The class holds no state: all that it does lands in the values of modGlobal,
// so two objects in a process share one window and one connection, and the later Constructor wins. Errors are reported,
// none reaches the host.
class clsSQLEditor {
public:
    // What reports and logs call it.
    static constexpr const wchar_t* Module = L"clsSQLEditor";

    clsSQLEditor();
    ~clsSQLEditor();
    clsSQLEditor(const clsSQLEditor&) = delete;
    clsSQLEditor& operator=(const clsSQLEditor&) = delete;

    void Constructor(const Object& Database);
    void Display(std::wstring& SQL);
    void Destructor();
};

// The class as COM hands it out (component/SQLEditorServer.cpp).
extern const ComClass SQLEditorClass;
