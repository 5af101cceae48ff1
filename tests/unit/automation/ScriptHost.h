#pragma once

#include <windows.h>
#include <activscp.h>

#include <string>

#include "automation/Object.h"

// A script engine that runs in this process, as a host of scripts has it. Its objects are what scripts hand to
// components.
class ScriptHost {
public:
    // `language` is the engine's ProgID: "VBScript" or "JScript". A failure of the script is a RuntimeError with what
    // the engine said of it.
    explicit ScriptHost(const wchar_t* language);
    ~ScriptHost();
    ScriptHost(const ScriptHost&) = delete;
    ScriptHost& operator=(const ScriptHost&) = delete;

    void Run(const std::wstring& code);
    Variant Evaluate(const std::wstring& expression);
    // Makes an object known to the script under a name. Before the first Run.
    void AddObject(const std::wstring& name, const Object& object);

private:
    class Site;
    void Parse(const std::wstring& code, DWORD flags, VARIANT* result);
    Site* site_;
    IActiveScript* engine_ = nullptr;
    IActiveScriptParse* parser_ = nullptr;
};
