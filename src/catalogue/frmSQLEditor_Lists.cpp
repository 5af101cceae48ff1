#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"

namespace {
constexpr const wchar_t* Module = L"frmSQLEditor";
}

void frmSQLEditor::lstAnsiSQL_Click() try {
    m_SelectFromListBox(lstAnsiSQL);
} catch (...) {
    ReportError(Module, L"lstAnsiSQL_Click");
}

void frmSQLEditor::lstKolvex_Click() try {
    m_SelectFromListBox(lstKolvex);
} catch (...) {
    ReportError(Module, L"lstKolvex_Click");
}

void frmSQLEditor::trvDatabaseSpecific_NodeClick(const Node& Node) try {
    if (!Node) return;
    if (Node.Tag().empty()) {
        lblDescription.SetCaption(L"");
    } else {
        m_SelectFromTreeView(trvDatabaseSpecific);
    }
} catch (...) {
    ReportError(Module, L"trvDatabaseSpecific_NodeClick");
}
