#pragma once

#include <windows.h>
#include <objbase.h>

// What an in-process COM server needs besides its classes: the count of living objects, class factories, registration.

// Keeps the module loaded for as long as it lives: each object and each loaded window has one.
class ModuleLock {
public:
    ModuleLock() noexcept;
    ModuleLock(const ModuleLock&) noexcept;
    ModuleLock& operator=(const ModuleLock&) noexcept = default;
    ~ModuleLock();
};

// One creatable class of a server.
struct ComClass {
    const CLSID& Id;
    const wchar_t* ProgId;       // "brvSQLEditor.clsSQLEditor"
    const wchar_t* Description;  // what registry browsers show
    const GUID* TypeLibrary;     // null when the server has none
    // Makes an object and asks it for `iid`; must not throw.
    HRESULT (*Create)(REFIID iid, void** object);
};

// An in-process server of one class, for the exports in ServerExports.cpp. A null function is not called.
struct ServerModule {
    const ComClass& Class;
    // What `regsvr32 /i` without "user" does: registers for everybody, or fails with E_INVALIDARG.
    bool InstallsForEverybody = false;
    void (*Start)() noexcept = nullptr;   // before each class object is handed out
    bool (*Forget)() noexcept = nullptr;  // before an unload: releases what the module holds; false when it cannot
    void (*End)() noexcept = nullptr;     // in DllMain, when the module is unloaded before the process ends
};
extern const ServerModule TheServer;  // defined once by each server

namespace Server {
// Whether nothing of the module is alive: no object, no window, no lock of a class factory.
bool CanUnload() noexcept;

// DllGetClassObject for a table of classes.
HRESULT GetClassObject(const ComClass* classes, size_t count, REFCLSID id, REFIID iid, void** object) noexcept;

// Where a class is registered: for everybody (HKEY_LOCAL_MACHINE\Software\Classes) or for the user who runs it
// (HKEY_CURRENT_USER\Software\Classes).
enum class Scope { Machine, User };

// Writes the ProgID, its version-independent form, CLSID, InprocServer32 (the module's own long path, ThreadingModel
// Apartment), and the module's type library when `typeLibrary` (RegisterTypeLib, or RegisterTypeLibForUser looked up at
// run time). Returns SELFREG_E_CLASS or the HRESULT of the Windows call that failed (access denied for a user without
// rights), SELFREG_E_TYPELIB for the library; what was written before a failure is removed again.
HRESULT Register(const ComClass* classes, size_t count, Scope scope, bool typeLibrary) noexcept;
// Removes all of it, but for the ProgIDs while the class is registered for the other width, which shares them. A key
// that is not there is no failure.
HRESULT Unregister(const ComClass* classes, size_t count, Scope scope, bool typeLibrary) noexcept;
}  // namespace Server
