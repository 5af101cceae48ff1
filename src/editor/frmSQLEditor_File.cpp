#include <optional>

#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/MsgBox.h"

namespace {

// A step whose errors are not reported. Nothing that makes it look done may follow a step that failed.
template <class Step>
std::optional<RuntimeError> FailureOf(Step&& step) {
    try {
        step();
        return std::nullopt;
    } catch (...) {
        return CurrentError();
    }
}

std::wstring Described(const TextFile::Format& Format) {
    using TextFile::Encoding;
    using TextFile::LineEnd;
    std::wstring Text = Format.Kind == Encoding::Utf8                ? L"UTF-8"
                        : Format.Kind == Encoding::Utf16LittleEndian ? L"UTF-16 LE"
                        : Format.Kind == Encoding::Utf16BigEndian    ? L"UTF-16 BE"
                                                                     : L"ANSI";
    if (Format.Kind == Encoding::Utf8 && Format.ByteOrderMark) Text += L" BOM";
    if (Format.Lines != LineEnd::CrLf) Text += Format.Lines == LineEnd::Lf ? L", LF" : L", CR";
    return Text;
}

}  // namespace

bool frmSQLEditor::m_MayDiscard(const wchar_t* Question) {
    return !rtbSQL.DataChanged || MsgBox(Handle(), Question, MB_YESNOCANCEL | MB_ICONINFORMATION) == IDYES;
}

void frmSQLEditor::m_TellNotDone(const std::wstring& What, const RuntimeError& Why) {
    if (Why.Number != ErrorNumber::DialogCancelled) sbStatusBar.ShowNote(What + L": " + Why.Description);
}

void frmSQLEditor::m_ShowFileFormat() try {
    sbStatusBar.ClearNote();
    const bool Rich = RichTextBox::KindOf(rtbSQL.FileName) == RichTextBox::FileKind::RichText;
    sbStatusBar.SetPanelText(FormatPanel, Rich ? L"Rich text" : Described(rtbSQL.FileFormat));
} catch (...) {
    ReportError(Module, L"m_ShowFileFormat");
}

void frmSQLEditor::mnuFileNew_Click() try {
    if (!m_MayDiscard(L"Are you sure you wish to clear the current SQL?")) return;
    rtbSQL.SetText(L"");
    rtbSQL.FileName.clear();
    rtbSQL.FileFormat = {};
    m_FormTitle(L"");
    rtbSQL.DataChanged = false;
    m_ShowFileFormat();
} catch (...) {
    ReportError(Module, L"mnuFileNew_Click");
}

void frmSQLEditor::mnuFileOpen_Click() try {
    if (!m_MayDiscard(
            L"You have not saved the current SQL. Opening another file will discard the current SQL. Do you want to "
            L"continue?")) {
        return;
    }
    // From here on errors are ignored, a cancelled dialog among them: the status bar alone tells of them.
    if (const auto Failure = FailureOf([this] { dlgCommonDialog.ShowOpen(Handle()); })) {
        return m_TellNotDone(L"No file was opened", *Failure);
    }
    const std::wstring& File = dlgCommonDialog.FileName;
    if (const auto Failure = FailureOf([&] { rtbSQL.LoadFile(File, RichTextBox::KindOf(File)); })) {
        return m_TellNotDone(dlgCommonDialog.FileTitle() + L" was not opened", *Failure);
    }
    m_FormTitle(dlgCommonDialog.FileTitle());
    rtbSQL.DataChanged = false;
    m_ShowFileFormat();
} catch (...) {
    ReportError(Module, L"mnuFileOpen_Click");
}

void frmSQLEditor::mnuFileSave_Click() try {
    if (rtbSQL.FileName.empty()) return mnuFileSaveAs_Click();
    if (rtbSQL.FileChangedOutside() &&
        MsgBox(Handle(),
               rtbSQL.FileName +
                   L"\r\nhas been changed by another program since it was opened or saved here. Do you want to "
                   L"overwrite it?",
               MB_YESNO | MB_DEFBUTTON2 | MB_ICONEXCLAMATION) != IDYES) {
        return;
    }
    rtbSQL.SaveFile(rtbSQL.FileName, RichTextBox::KindOf(rtbSQL.FileName));
    rtbSQL.DataChanged = false;
    m_ShowFileFormat();
} catch (...) {
    ReportError(Module, L"mnuFileSave_Click");
}

void frmSQLEditor::mnuFileSaveAs_Click() try {
    dlgCommonDialog.FileName = rtbSQL.FileName;
    // From here on errors are ignored, as in File Open.
    if (const auto Failure = FailureOf([this] { dlgCommonDialog.ShowSave(Handle()); })) {
        return m_TellNotDone(L"The SQL was not saved", *Failure);
    }
    const std::wstring& File = dlgCommonDialog.FileName;
    if (const auto Failure = FailureOf([&] { rtbSQL.SaveFile(File, RichTextBox::KindOf(File)); })) {
        return m_TellNotDone(dlgCommonDialog.FileTitle() + L" was not saved", *Failure);
    }
    m_FormTitle(dlgCommonDialog.FileTitle());
    rtbSQL.DataChanged = false;
    m_ShowFileFormat();
} catch (...) {
    ReportError(Module, L"mnuFileSaveAs_Click");
}
