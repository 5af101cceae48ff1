#include <iterator>

#include "automation/Server.h"

#include "automation/App.h"
#include "automation/Version.h"
#include "host/database/DatabaseObject.h"

namespace App {
const wchar_t* const Title = L"brvADO";
const short Major = BRV_VERSION_MAJOR;
const short Minor = BRV_VERSION_MINOR;
const short Revision = BRV_VERSION_REVISION;
}  // namespace App

namespace {

const CLSID databaseClass = {0xd4c3f42a, 0x48df, 0x4a7d, {0x90, 0xb6, 0xc6, 0x49, 0x2e, 0xf9, 0x07, 0x04}};

const ComClass classes[] = {
    {databaseClass, L"brvADO.Database", L"Database connection by ODBC", nullptr, CreateDatabaseObject},
};

}  // namespace

// The notifications of threads stay on: the run-time library, which is linked in, frees by them what it keeps for each.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID) { return TRUE; }

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, LPVOID* object) {
    return Server::GetClassObject(classes, std::size(classes), id, iid, object);
}

STDAPI DllCanUnloadNow() { return Server::CanUnload() ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() { return Server::Register(classes, std::size(classes), Server::Scope::Machine, false); }

STDAPI DllUnregisterServer() { return Server::Unregister(classes, std::size(classes), Server::Scope::Machine, false); }

// regsvr32 /n /i:user registers for the current user alone.
STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
    if (!commandLine || CompareStringOrdinal(commandLine, -1, L"user", -1, TRUE) != CSTR_EQUAL) return E_INVALIDARG;
    return install ? Server::Register(classes, std::size(classes), Server::Scope::User, false)
                   : Server::Unregister(classes, std::size(classes), Server::Scope::User, false);
}
