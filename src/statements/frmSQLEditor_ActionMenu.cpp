#include "catalogue/clsListItem.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/NotTopmost.h"
#include "shared/Vocabulary.h"
#include "shared/modGlobal.h"

// Inserts a statement for an entry of the Action menu: on a line of its own, ended by a semicolon.
void frmSQLEditor::m_InsertStatement(const std::wstring& Statement) {
    if (!Statement.empty()) m_InsertSQL(LineBreak + Statement + L";" + LineBreak);
}

// Does nothing: the entries follow the selection, not the opening of the menu.
void frmSQLEditor::mnuAction_Click() try {
} catch (...) {
    ReportError(Module, L"mnuAction_Click");
}

void frmSQLEditor::mnuActionSelect_Click() try {
    if (const auto Item = m_GetActiveItem()) m_InsertStatement(Item->SelectText());
} catch (...) {
    ReportError(Module, L"mnuActionSelect_Click");
}

void frmSQLEditor::mnuActionInsert_Click() try {
    if (const auto Item = m_GetActiveItem()) m_InsertStatement(Item->InsertText());
} catch (...) {
    ReportError(Module, L"mnuActionInsert_Click");
}

void frmSQLEditor::mnuActionUpdate_Click() try {
    if (const auto Item = m_GetActiveItem()) m_InsertStatement(Item->UpdateText());
} catch (...) {
    ReportError(Module, L"mnuActionUpdate_Click");
}

void frmSQLEditor::mnuActionDelete_Click() try {
    if (const auto Item = m_GetActiveItem()) m_InsertStatement(Item->DeleteText());
} catch (...) {
    ReportError(Module, L"mnuActionDelete_Click");
}

void frmSQLEditor::mnuActionExecute_Click() try {
    if (const auto Item = m_GetActiveItem()) m_InsertStatement(Item->ExecuteText());
} catch (...) {
    ReportError(Module, L"mnuActionExecute_Click");
}

void frmSQLEditor::mnuActionCreate_Click() try {
    if (m_GetActiveItem() == nullptr) return;
    std::wstring Statement;
    bool Cancelled = false;
    {
        const NotTopmost notTopmost;
        HostDatabase.Call(L"ShowCreateTableDialog1", ByRef(Statement), ByRef(Cancelled));
    }
    if (!Cancelled) m_InsertStatement(Statement);
} catch (...) {
    ReportError(Module, L"mnuActionCreate_Click");
}

void frmSQLEditor::mnuActionTask_Click(short Index) try {
    if (const auto Item = m_GetActiveItem()) m_InsertStatement(Item->GetCommand(Index));
} catch (...) {
    ReportError(Module, L"mnuActionTask_Click");
}

void frmSQLEditor::m_InsertSQL(const std::wstring& SQL) try {
    const long LeadingBreak = SQL.compare(0, 2, LineBreak) == 0 ? 2 : 0;
    // After the selection: the selected text is never replaced.
    const long Position = rtbSQL.SelStart() + rtbSQL.SelLength();
    rtbSQL.Select(Position, 0);
    rtbSQL.SetSelText(SQL);
    // Up to where the caret is now: the control makes CR LF of every line end, so that the text may be longer than what
    // was given.
    const long Inserted = rtbSQL.SelStart() - Position;
    rtbSQL.Select(Position + LeadingBreak, Inserted - LeadingBreak);
    rtbSQL.ScrollCaret();
} catch (...) {
    ReportError(Module, L"m_InsertSQL");
}
