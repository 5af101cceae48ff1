#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"

void frmSQLEditor::lstAnsiSQL_Click() try {
    m_SelectFromListBox(lstAnsiSQL);
    m_EnableActionMenu();
} catch (...) {
    ReportError(Module, L"lstAnsiSQL_Click");
}

void frmSQLEditor::lstKolvex_Click() try {
    m_SelectFromListBox(lstKolvex);
    m_EnableActionMenu();
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
    m_EnableActionMenu();
} catch (...) {
    ReportError(Module, L"trvDatabaseSpecific_NodeClick");
}

void frmSQLEditor::lstAnsiSQL_MouseDown(int Button, int, float, float) try {
    if (Button == MouseButton::Right) m_EnableActionMenu();
} catch (...) {
    ReportError(Module, L"lstAnsiSQL_MouseDown");
}

void frmSQLEditor::lstAnsiSQL_MouseMove(int Button, int, float, float) try {
    if (Button == MouseButton::Left) lstAnsiSQL.Drag(DragAction::Begin);
} catch (...) {
    ReportError(Module, L"lstAnsiSQL_MouseMove");
}

void frmSQLEditor::lstAnsiSQL_MouseUp(int, int, float, float) try { lstAnsiSQL.Drag(DragAction::End); } catch (...) {
    ReportError(Module, L"lstAnsiSQL_MouseUp");
}

void frmSQLEditor::lstKolvex_MouseDown(int Button, int, float, float) try {
    if (Button == MouseButton::Right) m_EnableActionMenu();
} catch (...) {
    ReportError(Module, L"lstKolvex_MouseDown");
}

void frmSQLEditor::lstKolvex_MouseMove(int Button, int, float, float) try {
    if (Button == MouseButton::Left) lstKolvex.Drag(DragAction::Begin);
} catch (...) {
    ReportError(Module, L"lstKolvex_MouseMove");
}

void frmSQLEditor::lstKolvex_MouseUp(int, int, float, float) try { lstKolvex.Drag(DragAction::End); } catch (...) {
    ReportError(Module, L"lstKolvex_MouseUp");
}

void frmSQLEditor::trvDatabaseSpecific_MouseDown(int Button, int, float, float) try {
    if (Button == MouseButton::Right) m_EnableActionMenu();
} catch (...) {
    ReportError(Module, L"trvDatabaseSpecific_MouseDown");
}

void frmSQLEditor::trvDatabaseSpecific_MouseMove(int Button, int, float, float) try {
    if (Button == MouseButton::Left) trvDatabaseSpecific.Drag(DragAction::Begin);
} catch (...) {
    ReportError(Module, L"trvDatabaseSpecific_MouseMove");
}

void frmSQLEditor::trvDatabaseSpecific_MouseUp(int, int, float, float) try {
    trvDatabaseSpecific.Drag(DragAction::End);
} catch (...) {
    ReportError(Module, L"trvDatabaseSpecific_MouseUp");
}

void frmSQLEditor::m_ReferenceContextMenu(const POINT& At) try {
    m_EnableActionMenu();
    mnuAction.PopUp(&At);
} catch (...) {
    ReportError(Module, L"m_ReferenceContextMenu");
}
