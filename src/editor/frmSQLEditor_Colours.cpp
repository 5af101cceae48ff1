#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "shared/modGlobal.h"

namespace {

bool IsPress(const MSG& message) noexcept {
    return (message.message >= WM_LBUTTONDOWN && message.message <= WM_MOUSELAST) ||
           (message.message >= WM_NCLBUTTONDOWN && message.message <= WM_NCXBUTTONDBLCLK);
}
}  // namespace

bool frmSQLEditor::Idle() try {
    if (comparing_) {
        m_CompareWithDisplayed();
        return true;
    }
    return colours_.Idle();
} catch (...) {
    // Once: the text stays as it is shown, and is whole.
    colours_.GiveUp();
    try {
        ReportError(Module, L"Idle");
    } catch (...) {
        // The user did nothing: that colours are missing, and cannot even be reported, is no reason to end the window.
    }
    return false;
}

void frmSQLEditor::ColoursChanged() try { colours_.SettingsChanged(); } catch (...) {
    ReportError(Module, L"ColoursChanged");
}

void frmSQLEditor::ToolsClose() noexcept {
    winReplace.Close();
    winGoto.Close();
    lstNames.Discard();
    tipHelp_.Hide();
}

bool frmSQLEditor::ToolMessage(MSG& message) {
    if (lstNames.IsPressElsewhere(message)) lstNames.Close();
    if (tipHelp_.IsShown() && IsPress(message)) tipHelp_.Hide();
    return winReplace.Translate(message) || winGoto.Translate(message);
}
