#pragma once

#include <optional>
#include <string>

#include "host/database/Session.h"

// Shows a modal dialog in which a table is designed, over the active window of the thread. Returns a CREATE TABLE
// statement in the database's dialect, without a semicolon; nothing when the user cancelled.
std::optional<std::wstring> ShowCreateTableDialog(Session& session);
