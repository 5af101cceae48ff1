#pragma once

#include <memory>
#include <string>

#include "automation/Collection.h"
#include "automation/Object.h"

class clsDictionary;
class clsErrorHandler;
class clsListItem;
class frmSQLEditor;

// What the whole component shares: one set per loaded component, not per clsSQLEditor object. Deliberately leaked: at
// process exit the COM objects that they hold may already be gone.

extern std::shared_ptr<frmSQLEditor>& EditorForm;   // the one window; nothing before the first Display
extern Object& HostDatabase;                        // the host's database, only while it is connected
extern std::wstring& OwnerName;                     // the connection's default schema; empty without a connection
extern long DBType;                                 // the host's database type code; 0 until a connection was given
extern std::wstring& SchemaTermPlural;              // text of the object browser's root
extern std::shared_ptr<clsDictionary>& Dictionary;  // adapter over the host's dictionary, or nothing
extern std::shared_ptr<Collection<std::shared_ptr<const clsListItem>>>&
    ListItems;                                          // the catalogue, keyed by the Id's text
extern std::shared_ptr<clsErrorHandler>& ErrorHandler;  // made with the first report

namespace modGlobal {
// The catalogue; error 91 when start-up could not make it.
const Collection<std::shared_ptr<const clsListItem>>& Catalogue();
// Returns the one window; error 91 without a window. The host may release it in the middle of any call that is made to
// it.
frmSQLEditor& Window();
// Start-up: runs once, before the first object is served.
void Main();
// At the beginning of each call from outside: while the module holds nothing of others, the calling thread becomes the
// one that what it will hold belongs to.
void Own() noexcept;
// Counts the connections that Constructor was given: another number means another connection.
long Connection() noexcept;
void CountConnection() noexcept;
// The last of the module's life, in DllMain: gives the catalogue's memory back.
void End() noexcept;
// The module is about to go: gives back what it holds of others, as if it had just been loaded. The catalogue stays.
// False, and nothing happens, on another thread than the one that it belongs to: objects and windows may be touched on
// their own thread alone.
bool Forget() noexcept;
}  // namespace modGlobal
