#include <optional>

#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/Clipboard.h"
#include "forms/InputBox.h"
#include "sql/CodeStrings.h"

namespace {

// Whether the editor of Basic, which knows the system's code page alone, can hold the character.
bool FitsBasic(wchar_t Character) {
    char Bytes[8];
    BOOL Replaced = FALSE;
    // A code page that holds everything refuses the flag; that editor knows nothing of those.
    return WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, &Character, 1, Bytes, sizeof Bytes, nullptr, &Replaced) >
               0 &&
           !Replaced;
}
}  // namespace

void frmSQLEditor::rtbSQL_Change() try {
    rtbSQL.DataChanged = true;
    changedSince_ = true;
    sbStatusBar.ClearNote();
    colours_.TextChanged();
    m_ShowLengths();
    m_NoteChange();
    m_FollowName();
} catch (...) {
    ReportError(Module, L"rtbSQL_Change");
}

void frmSQLEditor::rtbSQL_SelChange() try {
    sbStatusBar.ClearNote();
    colours_.SelectionChanged();
    m_ShowCaret();
    m_ShowLengths();
    m_FollowName();
} catch (...) {
    ReportError(Module, L"rtbSQL_SelChange");
}

// The other entries stay as they are, whatever has the focus.
void frmSQLEditor::mnuEdit_Click() try {
    const bool Editing = rtbSQL.HasFocus();
    mnuEditCut.SetEnabled(Editing);
    mnuEditDelete.SetEnabled(Editing);
} catch (...) {
    ReportError(Module, L"mnuEdit_Click");
}

std::wstring frmSQLEditor::m_CopiedText() {
    if (rtbSQL.HasFocus()) return rtbSQL.SelText();
    if (trvDBObjects.HasFocus()) return trvDBObjects.SelectedItem().Text();
    if (lstAnsiSQL.HasFocus()) return lstAnsiSQL.List(lstAnsiSQL.ListIndex());
    if (lstKolvex.HasFocus()) return lstKolvex.List(lstKolvex.ListIndex());
    if (trvDatabaseSpecific.HasFocus()) return trvDatabaseSpecific.SelectedItem().Text();
    return {};
}

// Returns whether the text is on the clipboard: Cut must not remove what was not copied.
bool frmSQLEditor::m_Copy(const std::wstring& Text, const wchar_t* Routine) try {
    // Nothing to copy is no reason to empty the clipboard.
    if (!Text.empty()) Clipboard::SetText(Handle(), Text);
    return true;
} catch (...) {
    if (CurrentError().Number == ErrorNumber::ClipboardNotOpened) {
        AlertUser(
            L"Unable to access the clipboard. Another program has locked the clipboard and not released it yet. If it "
            L"persists, "
            L"try closing other applications to find the program that locks the clipboard.");
    } else {
        ReportError(Module, Routine);
    }
    return false;
}

void frmSQLEditor::mnuEditCopy_Click() try { m_Copy(m_CopiedText(), L"mnuEditCopy_Click"); } catch (...) {
    ReportError(Module, L"mnuEditCopy_Click");
}

void frmSQLEditor::mnuEditCut_Click() try {
    if (m_Copy(m_CopiedText(), L"mnuEditCopy_Click")) m_DeleteSelection();
} catch (...) {
    ReportError(Module, L"mnuEditCut_Click");
}

// The editor's own keys, and other programs, mean the editor wherever the focus is.
void frmSQLEditor::rtbSQL_CopyRequested() try { m_Copy(rtbSQL.SelText(), L"rtbSQL_CopyRequested"); } catch (...) {
    ReportError(Module, L"rtbSQL_CopyRequested");
}

void frmSQLEditor::rtbSQL_CutRequested() try {
    if (m_Copy(rtbSQL.SelText(), L"rtbSQL_CutRequested")) m_DeleteSelection();
} catch (...) {
    ReportError(Module, L"rtbSQL_CutRequested");
}

void frmSQLEditor::mnuEditDelete_Click() try { m_DeleteSelection(); } catch (...) {
    ReportError(Module, L"mnuEditDelete_Click");
}

// An empty selection is left alone: replacing nothing by nothing would count as a change.
void frmSQLEditor::m_DeleteSelection() {
    if (rtbSQL.SelLength() > 0) rtbSQL.SetSelText(L"");
}

void frmSQLEditor::m_ChangeCase(DWORD Mapping) {
    const std::wstring Text = rtbSQL.SelText();
    if (Text.empty()) return;
    const long Start = rtbSQL.SelStart();
    // Letters alone, so that a mapping never makes a character more or less, and not by the casing rules of a language:
    // in a Turkish one an i of "distinct" would become a letter that no database knows.
    std::wstring Mapped(Text.size(), L'\0');
    const int Length = LCMapStringEx(LOCALE_NAME_USER_DEFAULT, Mapping, Text.c_str(), static_cast<int>(Text.size()),
                                     Mapped.data(), static_cast<int>(Mapped.size()), nullptr, nullptr, 0);
    if (Length == 0) RaiseSystemError(ErrorNumber::InvalidProcedureCall, GetLastError());
    Mapped.resize(static_cast<size_t>(Length));
    rtbSQL.SetSelText(Mapped);
    // Still selected, so that the other case is one more step away.
    rtbSQL.Select(Start, static_cast<long>(Mapped.size()));
}

void frmSQLEditor::mnuEditMakeLowerCase_Click() try { m_ChangeCase(LCMAP_LOWERCASE); } catch (...) {
    ReportError(Module, L"mnuEditMakeLowerCase_Click");
}

void frmSQLEditor::mnuEditMakeUpperCase_Click() try { m_ChangeCase(LCMAP_UPPERCASE); } catch (...) {
    ReportError(Module, L"mnuEditMakeUpperCase_Click");
}

void frmSQLEditor::mnuEditPaste_Click() try {
    if (!rtbSQL.HasFocus()) return;
    // Inserting never replaces the selected text. The selection is collapsed first, whatever the clipboard holds.
    rtbSQL.Select(rtbSQL.SelStart() + rtbSQL.SelLength(), 0);
    const std::wstring Text = Clipboard::GetText(Handle());
    if (Text.empty()) return;
    rtbSQL.SetSelText(Text);
    rtbSQL.ScrollCaret();
} catch (...) {
    ReportError(Module, L"mnuEditPaste_Click");
}

// What is selected, or all of it.
void frmSQLEditor::m_CopyAsBasic() {
    const std::wstring Selected = rtbSQL.SelText();
    const Sql::BasicText Basic = Sql::ToBasic(Selected.empty() ? rtbSQL.Text() : Selected, FitsBasic);
    if (!m_Copy(Basic.Code, L"m_CopyAsBasic")) return;
    sbStatusBar.ShowNote(Basic.Statements == 1
                             ? std::wstring(L"Copied as a string of Basic.")
                             : L"Copied as " + std::to_wstring(Basic.Statements) +
                                   L" statements of Basic that build SQL: one takes no more than 25 lines.");
}

void frmSQLEditor::m_PasteFromCode() {
    const std::optional<std::wstring> Text = Sql::FromCode(Clipboard::GetText(Handle()));
    if (!Text) return sbStatusBar.ShowNote(L"The clipboard has no string of Basic, C# or Java code.");
    // After the selection, as a paste.
    rtbSQL.Select(rtbSQL.SelStart() + rtbSQL.SelLength(), 0);
    rtbSQL.SetSelText(*Text);
    rtbSQL.ScrollCaret();
}

void frmSQLEditor::mnuEditSelectAll_Click() try { rtbSQL.Select(0, rtbSQL.TextLength()); } catch (...) {
    ReportError(Module, L"mnuEditSelectAll_Click");
}

void frmSQLEditor::mnuEditTimeDate_Click() try {
    SYSTEMTIME Now{};
    GetLocalTime(&Now);
    Variant General;
    if (!SystemTimeToVariantTime(&Now, &General.date)) RaiseError(ErrorNumber::InvalidProcedureCall);
    General.vt = VT_DATE;
    // The regional settings' short date and long time, as Basic's "General Date" has them.
    rtbSQL.SetSelText(General.ToText());
    rtbSQL.ScrollCaret();
} catch (...) {
    ReportError(Module, L"mnuEditTimeDate_Click");
}

void frmSQLEditor::mnuFind_Click() try {
    const std::optional<std::wstring> Text = InputBox(Handle(), L"Enter text to find", L"Find", findText_);
    if (Text) m_FindNext(&*Text);
} catch (...) {
    ReportError(Module, L"mnuFind_Click");
}

void frmSQLEditor::mnuFindNext_Click() try { m_FindNext(); } catch (...) {
    ReportError(Module, L"mnuFindNext_Click");
}

// A text that is not found is told in the status bar alone: the selection stays where it is.
void frmSQLEditor::m_FindNext(const std::wstring* Text) try {
    if (Text != nullptr) findText_ = *Text;
    if (!findText_.empty() && !rtbSQL.Find(findText_)) sbStatusBar.SetPanelText(CaretPanel, L"Not found");
} catch (...) {
    ReportError(Module, L"m_FindNext");
}

void frmSQLEditor::rtbSQL_ContextMenu(const POINT& At) try { mnuEdit.PopUp(&At); } catch (...) {
    ReportError(Module, L"rtbSQL_ContextMenu");
}
