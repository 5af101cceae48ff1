#include "shared/modGlobal.h"

#include "automation/App.h"
#include "automation/Version.h"
#include "catalogue/clsListItem.h"
#include "catalogue/modLists_Lists.h"
#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "errors/clsErrorHandler.h"
#include "errors/modErrorHandler.h"

namespace App {
const wchar_t* const Title = L"brvSQLEditor";
const short Major = BRV_VERSION_MAJOR;
const short Minor = BRV_VERSION_MINOR;
const short Revision = BRV_VERSION_REVISION;
}  // namespace App

namespace {
template <class T>
T& Everlasting() {
    return *new T();
}

DWORD owner = 0;  // thread

bool HoldsAnything() noexcept {
    return EditorForm != nullptr || Dictionary != nullptr || HostDatabase || ErrorHandler != nullptr;
}

long connection = 0;
}  // namespace

std::shared_ptr<frmSQLEditor>& EditorForm = Everlasting<std::shared_ptr<frmSQLEditor>>();
Object& HostDatabase = Everlasting<Object>();
std::wstring& OwnerName = Everlasting<std::wstring>();
long DBType = 0;
std::wstring& SchemaTermPlural = Everlasting<std::wstring>();
std::shared_ptr<clsDictionary>& Dictionary = Everlasting<std::shared_ptr<clsDictionary>>();
std::shared_ptr<Collection<std::shared_ptr<const clsListItem>>>& ListItems =
    Everlasting<std::shared_ptr<Collection<std::shared_ptr<const clsListItem>>>>();
std::shared_ptr<clsErrorHandler>& ErrorHandler = Everlasting<std::shared_ptr<clsErrorHandler>>();

void modGlobal::Main() try {
    ListItems = std::make_shared<Collection<std::shared_ptr<const clsListItem>>>();
    modLists::CreateListItems();
} catch (...) {
    ReportError(L"modGlobal", L"Main");
}

const Collection<std::shared_ptr<const clsListItem>>& modGlobal::Catalogue() {
    if (ListItems == nullptr) RaiseError(ErrorNumber::ObjectNotSet);
    return *ListItems;
}

long modGlobal::Connection() noexcept { return connection; }

void modGlobal::CountConnection() noexcept { ++connection; }

void modGlobal::End() noexcept { ListItems.reset(); }

frmSQLEditor& modGlobal::Window() {
    if (EditorForm == nullptr) RaiseError(ErrorNumber::ObjectNotSet);
    return *EditorForm;
}

void modGlobal::Own() noexcept {
    if (!HoldsAnything()) owner = GetCurrentThreadId();
}

bool modGlobal::Forget() noexcept {
    if (!HoldsAnything()) return true;
    if (owner != GetCurrentThreadId()) return false;
    EditorForm.reset();
    Dictionary.reset();
    HostDatabase.Clear();
    ErrorHandler.reset();
    OwnerName.clear();
    SchemaTermPlural.clear();
    DBType = 0;
    return true;
}
