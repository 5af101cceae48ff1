#include <windows.h>
#include <olectl.h>

#include "automation/RuntimeError.h"
#include "automation/Server.h"
#include "automation/Text.h"

// The exports of an in-process server; its TheServer says what is in it. Linked by name into each such DLL.

// The notifications of threads stay on: with a run-time library that is linked into the module they free what it keeps
// for each thread, such as the record of its exceptions.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_ATTACH) return ReadyToThrow();
    // At process exit the system frees the window classes and the memory.
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr && TheServer.End != nullptr) TheServer.End();
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
    if (!ReadyToThrow()) return E_OUTOFMEMORY;
    // Not in DllMain: start-up may load other components.
    if (TheServer.Start != nullptr && id == TheServer.Class.Id) TheServer.Start();
    return Server::GetClassObject(&TheServer.Class, 1, id, iid, object);
}

STDAPI DllCanUnloadNow() {
    if (!ReadyToThrow()) return S_FALSE;
    if (!Server::CanUnload()) return S_FALSE;
    if (TheServer.Forget != nullptr && !TheServer.Forget()) return S_FALSE;
    return Server::CanUnload() ? S_OK : S_FALSE;
}

namespace {

HRESULT Install(bool install, Server::Scope scope) noexcept {
    const auto step = install ? &Server::Register : &Server::Unregister;
    return step(&TheServer.Class, 1, scope, TheServer.Class.TypeLibrary != nullptr);
}

}  // namespace

STDAPI DllRegisterServer() { return Install(true, Server::Scope::Machine); }

STDAPI DllUnregisterServer() { return Install(false, Server::Scope::Machine); }

// regsvr32 /i:user registers for the user alone, without administrator rights.
STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
    const bool user = commandLine != nullptr && SameName(commandLine, L"user");
    if (!user && !TheServer.InstallsForEverybody) return E_INVALIDARG;
    return Install(install != FALSE, user ? Server::Scope::User : Server::Scope::Machine);
}
