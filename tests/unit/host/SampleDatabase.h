#pragma once

#include <memory>
#include <string>

#include "host/database/Session.h"

// The connection string for the sample database that the environment variable BRV_SHOP_DB names. Throws when it is not
// set: a test that needs the database then fails.
std::wstring SampleConnectionString();

// A session on the sample database, and one on an empty database in memory.
std::shared_ptr<Session> OpenSample();
std::shared_ptr<Session> OpenEmpty();

// Runs a statement that gives no rows.
void RunSql(Session& session, const std::wstring& sql);
