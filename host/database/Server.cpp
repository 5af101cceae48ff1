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

const ComClass database{databaseClass, L"brvADO.Database", L"Database connection by ODBC", nullptr,
                        CreateDatabaseObject};

}  // namespace

const ServerModule TheServer{database};
