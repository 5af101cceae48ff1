#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "automation/Object.h"
#include "host/database/Session.h"

// The connection string for the sample database that the environment variable BRV_SHOP_DB names. Throws when it is not
// set: a test that needs the database then fails.
std::wstring SampleConnectionString();

// A session on the sample database, and one on an empty database in memory.
std::shared_ptr<Session> OpenSample();
std::shared_ptr<Session> OpenEmpty();

// The object as a client gets it: through the class factory of the DLL beside this program, without registration; and
// one that is connected to the sample database.
Object CreateDatabaseObject();
Object OpenDatabaseObject();

// The dialog of this thread that designs a table, or null while none is visible.
HWND ShownTableDialog();

// Runs a statement that gives no rows.
void RunSql(Session& session, const std::wstring& sql);
