#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/MsgBox.h"

namespace {

constexpr const wchar_t* Module = L"frmSQLEditor";

// A step whose errors are ignored. What would look done must not follow one that was not: false when it failed.
template <class Step>
bool Succeeds(Step&& step) noexcept {
    try {
        step();
        return true;
    } catch (...) {
        return false;
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

void frmSQLEditor::m_ShowFileFormat() try {
    const bool Rich = RichTextBox::KindOf(rtbSQL.FileName) == RichTextBox::FileKind::RichText;
    sbStatusBar.SetPanelText(3, Rich ? L"Rich text" : Described(rtbSQL.FileFormat));
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
    // From here on errors are ignored, a cancelled dialog among them.
    if (!Succeeds([this] { dlgCommonDialog.ShowOpen(Handle()); })) return;
    if (!Succeeds([this] { rtbSQL.LoadFile(dlgCommonDialog.FileName, RichTextBox::KindOf(dlgCommonDialog.FileName)); }))
        return;
    m_FormTitle(dlgCommonDialog.FileTitle());
    rtbSQL.DataChanged = false;
    m_ShowFileFormat();
} catch (...) {
    ReportError(Module, L"mnuFileOpen_Click");
}

void frmSQLEditor::mnuFileSave_Click() try {
    if (rtbSQL.FileName.empty()) return mnuFileSaveAs_Click();
    rtbSQL.SaveFile(rtbSQL.FileName, RichTextBox::KindOf(rtbSQL.FileName));
    rtbSQL.DataChanged = false;
    m_ShowFileFormat();
} catch (...) {
    ReportError(Module, L"mnuFileSave_Click");
}

void frmSQLEditor::mnuFileSaveAs_Click() try {
    dlgCommonDialog.FileName = rtbSQL.FileName;
    // From here on errors are ignored, a cancelled dialog among them.
    if (!Succeeds([this] { dlgCommonDialog.ShowSave(Handle()); })) return;
    if (!Succeeds([this] { rtbSQL.SaveFile(dlgCommonDialog.FileName, RichTextBox::KindOf(dlgCommonDialog.FileName)); }))
        return;
    m_FormTitle(dlgCommonDialog.FileTitle());
    rtbSQL.DataChanged = false;
    m_ShowFileFormat();
} catch (...) {
    ReportError(Module, L"mnuFileSaveAs_Click");
}
