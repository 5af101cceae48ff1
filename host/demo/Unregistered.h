#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "automation/ActivationContext.h"

// The classes of a manifest, which lies beside the DLL that it names: while one lives, the thread's calls of COM find
// them without registration.
class UnregisteredClasses {
public:
    // `file` is looked for in this program's folder and in the folders that `elsewhere` names from there, in this
    // order. Throws RuntimeError 53 when it is in none, 429 when Windows cannot use it.
    explicit UnregisteredClasses(const std::wstring& file, const std::vector<std::wstring>& elsewhere = {});
    UnregisteredClasses(const UnregisteredClasses&) = delete;
    UnregisteredClasses& operator=(const UnregisteredClasses&) = delete;

private:
    struct Context {
        HANDLE Handle;
        explicit Context(HANDLE handle) noexcept : Handle(handle) {}
        Context(const Context&) = delete;
        ~Context() { ReleaseActCtx(Handle); }
    };
    Context context_;
    ActiveContext active_;  // last, so that the context is left before it is released
};
