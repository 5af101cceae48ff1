#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"

namespace {
constexpr const wchar_t* Module = L"frmSQLEditor";
}

void frmSQLEditor::rtbSQL_Change() try {
    rtbSQL.DataChanged = true;
} catch (...) {
    ReportError(Module, L"rtbSQL_Change");
}

void frmSQLEditor::rtbSQL_SelChange() try {
    long Line = 0;
    long Column = 0;
    rtbSQL.CaretPosition(Line, Column);
    sbStatusBar.SetPanelText(2, L"Ln " + std::to_wstring(Line) + L", Col " + std::to_wstring(Column));
} catch (...) {
    ReportError(Module, L"rtbSQL_SelChange");
}

void frmSQLEditor::mnuEdit_Click() {}

void frmSQLEditor::mnuEditCut_Click() {}

void frmSQLEditor::mnuEditCopy_Click() {}

void frmSQLEditor::mnuEditPaste_Click() {}

void frmSQLEditor::mnuEditDelete_Click() {}

void frmSQLEditor::mnuEditMakeLowerCase_Click() {}

void frmSQLEditor::mnuEditMakeUpperCase_Click() {}

void frmSQLEditor::mnuFind_Click() {}

void frmSQLEditor::mnuFindNext_Click() {}

void frmSQLEditor::mnuEditSelectAll_Click() {}

void frmSQLEditor::mnuEditTimeDate_Click() {}

void frmSQLEditor::m_FindNext(const std::wstring*) {}
