#include <windows.h>
#include <olectl.h>

#include "automation/RuntimeError.h"
#include "automation/Server.h"
#include "component/clsSQLEditor.h"
#include "forms/WindowClass.h"
#include "shared/modGlobal.h"

// The notifications of threads stay on: with a run-time library that is linked into the module they free what it keeps
// for each thread, such as the record of its exceptions.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_ATTACH) return ReadyToThrow();
    // At process exit the system frees the window classes and the memory.
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
        UnregisterWindowClasses();
        modGlobal::End();
    }
    return TRUE;
}

namespace {

// Runs the module's start-up once. COM may ask from any thread: no caller gets a class before start-up is complete,
// except calls that start-up itself causes on its own thread.
class Start {
public:
    Start() noexcept { InitializeCriticalSection(&lock_); }
    ~Start() { DeleteCriticalSection(&lock_); }
    Start(const Start&) = delete;
    Start& operator=(const Start&) = delete;
    void Once() noexcept {
        EnterCriticalSection(&lock_);
        if (!begun_) {
            begun_ = true;
            modGlobal::Own();  // what fails makes the error component
            try {
                modGlobal::Main();
            } catch (...) {
                // Not even reported: the next procedure that fails tries to report again.
            }
        }
        LeaveCriticalSection(&lock_);
    }

private:
    CRITICAL_SECTION lock_;
    bool begun_ = false;
};

}  // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
    // Not in DllMain: failures are reported through another component, and no DLL may be loaded there.
    if (!ReadyToThrow()) return E_OUTOFMEMORY;
    static Start start;
    if (id == SQLEditorClass.Id) start.Once();
    return Server::GetClassObject(&SQLEditorClass, 1, id, iid, object);
}

STDAPI DllCanUnloadNow() {
    if (!ReadyToThrow()) return S_FALSE;
    if (!Server::CanUnload()) return S_FALSE;
    // This is the module's last call before it is unloaded. It releases what it holds of the host and of the error
    // component here, since in DllMain it would be too late. Objects may be touched on their own thread alone.
    if (!modGlobal::Forget()) return S_FALSE;
    return Server::CanUnload() ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() { return Server::Register(&SQLEditorClass, 1, Server::Scope::Machine, true); }

STDAPI DllUnregisterServer() { return Server::Unregister(&SQLEditorClass, 1, Server::Scope::Machine, true); }

// regsvr32 /i:user registers for the user alone, without administrator rights; regsvr32 /i without it for everybody.
STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
    const bool user = commandLine != nullptr && lstrcmpiW(commandLine, L"user") == 0;
    const Server::Scope scope = user ? Server::Scope::User : Server::Scope::Machine;
    return install ? Server::Register(&SQLEditorClass, 1, scope, true)
                   : Server::Unregister(&SQLEditorClass, 1, scope, true);
}
