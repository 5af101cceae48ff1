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

constexpr ComClass ErrorClass{ErrorClassId, L"brvError.clsError", L"Alerts and event log", nullptr, &Create};

}  // namespace

const ServerModule TheServer{ErrorClass};
