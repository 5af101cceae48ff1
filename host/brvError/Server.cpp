#include "automation/Server.h"

#include "automation/App.h"
#include "automation/RuntimeError.h"
#include "automation/Version.h"
#include "host/brvError/ErrorObject.h"

namespace App {
const wchar_t* const Title = L"brvError";
const short Major = BRV_VERSION_MAJOR;
const short Minor = BRV_VERSION_MINOR;
const short Revision = BRV_VERSION_REVISION;
}  // namespace App

namespace {

constexpr CLSID ErrorClassId = {0x9CD017BD, 0xAC5D, 0x430F, {0xAD, 0xC8, 0xEE, 0xDB, 0xF3, 0x99, 0xC0, 0x40}};

HRESULT Create(REFIID iid, void** object) {
    try {
        return MakeErrorComponent().Dispatch()->QueryInterface(iid, object);
    } catch (...) {
        return PublishError(CurrentError());
    }
}

constexpr ComClass Classes[] = {
    {ErrorClassId, L"brvError.clsError", L"Alerts and event log", nullptr, &Create},
};

}  // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
    return Server::GetClassObject(Classes, 1, id, iid, object);
}

STDAPI DllCanUnloadNow() { return Server::CanUnload() ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() { return Server::Register(Classes, 1, Server::Scope::Machine, false); }

STDAPI DllUnregisterServer() { return Server::Unregister(Classes, 1, Server::Scope::Machine, false); }

// regsvr32 /n /i:user registers for the current user alone.
STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
    if (!commandLine || CompareStringOrdinal(commandLine, -1, L"user", -1, TRUE) != CSTR_EQUAL) return E_INVALIDARG;
    return install ? Server::Register(Classes, 1, Server::Scope::User, false)
                   : Server::Unregister(Classes, 1, Server::Scope::User, false);
}
