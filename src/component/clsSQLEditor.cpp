#include "component/clsSQLEditor.h"

#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "shared/modGlobal.h"

namespace {

// Notices, over the time of a Constructor, whether the component has another connection afterwards. A host may well
// give it the same one before each Display.
class ConnectionWatch {
public:
    ConnectionWatch() = default;
    ~ConnectionWatch() {
        if (!database_.IsSameAs(HostDatabase) || owner_ != OwnerName || type_ != DBType || term_ != SchemaTermPlural ||
            connected_ != IsConnected()) {
            modGlobal::CountConnection();
        }
    }
    ConnectionWatch(const ConnectionWatch&) = delete;
    ConnectionWatch& operator=(const ConnectionWatch&) = delete;

private:
    static bool IsConnected() { return Dictionary != nullptr && Dictionary->Connected(); }
    const Object database_ = HostDatabase;
    const std::wstring owner_ = OwnerName;
    const long type_ = DBType;
    const std::wstring term_ = SchemaTermPlural;
    const bool connected_ = IsConnected();
};

}  // namespace

clsSQLEditor::clsSQLEditor() {
    try {
        // Nothing to begin with.
    } catch (...) {
        ReportError(Module, L"Class_Initialize");
    }
}

clsSQLEditor::~clsSQLEditor() {
    try {
        try {
            // A garbage collector may release the last reference on its own thread. The window stays on its thread as
            // it is, hidden or shown, for the next object or the end of the process.
            if (EditorForm == nullptr || EditorForm->OnItsThread()) Destructor();
        } catch (...) {
            ReportError(Module, L"Class_Terminate");
        }
    } catch (...) {
        // Even the reporting failed, and a destructor has no caller to tell.
    }
    // What failed has left the window after, and nobody may come who would end it.
    if (EditorForm != nullptr && EditorForm->OnItsThread()) EditorForm.reset();
}

void clsSQLEditor::Constructor(const Object& Database) try {
    const ConnectionWatch Watch;
    // A missing database and one that is not connected leave different roots and adapters on purpose.
    if (!Database) {
        HostDatabase.Clear();
        OwnerName.clear();
        SchemaTermPlural = L"Schemas";
        return;
    }
    if (!Database.Get(L"Connected").ToBoolean()) {
        HostDatabase.Clear();
        OwnerName.clear();
        Dictionary = std::make_shared<clsDictionary>();
        Dictionary->Constructor(Object());
        SchemaTermPlural.clear();
        return;
    }
    HostDatabase = Database;
    const std::wstring CurrentCatalog = HostDatabase.Get(L"CurrentCatalog").ToText();
    const std::wstring UserName = HostDatabase.Get(L"UserName").ToText();
    OwnerName = CurrentCatalog.empty() ? UserName : CurrentCatalog;
    DBType = HostDatabase.Get(L"DBType").ToLong();
    const std::wstring SchemaTerm = HostDatabase.Get(L"SchemaTerm").ToText();
    SchemaTermPlural = SchemaTerm.empty() ? L"Schemas" : SchemaTerm + L"s";
    const auto Adapter = std::make_shared<clsDictionary>();
    Dictionary = Adapter;
    Adapter->Constructor(HostDatabase.Get(L"Dictionary").ToObject());
} catch (...) {
    ReportError(Module, L"Constructor");
}

void clsSQLEditor::Display(std::wstring& SQL) try {
    if (EditorForm == nullptr || EditorForm->m_IsGone()) {
        // Held, since the host may let go of it while it is constructed: what fails there is reported, and whoever
        // takes the report may call back.
        const auto Made = std::make_shared<frmSQLEditor>();
        EditorForm = Made;
        Made->Constructor();
    }
    // The host may ask for another window, or destroy this one, while it is shown.
    const auto Window = EditorForm;
    if (Window == nullptr) RaiseError(ErrorNumber::ObjectNotSet);
    Window->Display(SQL);
} catch (...) {
    ReportError(Module, L"Display");
}

void clsSQLEditor::Destructor() try {
    if (EditorForm == nullptr) return;
    // The window refuses to be unloaded and hides; only releasing it ends it.
    const auto Window = EditorForm;
    if (!Window->OnItsThread()) CheckHresult(RPC_E_WRONG_THREAD);
    Window->Unload();
    EditorForm.reset();
} catch (...) {
    ReportError(Module, L"Destructor");
}
