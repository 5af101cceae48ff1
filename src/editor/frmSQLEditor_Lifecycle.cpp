#include <algorithm>
#include <utility>

#include "automation/App.h"
#include "automation/Scope.h"
#include "automation/Text.h"
#include "browser/modLists_Tree.h"
#include "catalogue/modLists_Lists.h"
#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "editor/modWinAPI.h"
#include "errors/modErrorHandler.h"
#include "forms/PlainText.h"
#include "forms/Settings.h"
#include "shared/modGlobal.h"

namespace {

constexpr const wchar_t* SettingsSection = L"Settings";

float SavedPlacement(const wchar_t* Key, const wchar_t* Default) {
    return ToSingle(GetSetting(App::Title, SettingsSection, Key, Default));
}

void SavePlacement(const wchar_t* Key, float Value) {
    SaveSetting(App::Title, SettingsSection, Key, FromSingle(Value));
}

}  // namespace

frmSQLEditor::frmSQLEditor() { Form_Initialize(); }

frmSQLEditor::~frmSQLEditor() {
    accAnnotations.Clear();
    DestroyForm();
}

void frmSQLEditor::Form_Initialize() try { moving_ = false; } catch (...) {
    ReportError(Module, L"Form_Initialize");
}

bool frmSQLEditor::m_IsGone() const noexcept {
    return !displaying_ && (Lost() || (Loaded() && (rtbSQL.Handle() == nullptr || trvDBObjects.Handle() == nullptr)));
}

void frmSQLEditor::Constructor() try {
    const AutoReset Displaying(displaying_, true);
    if (OwnerName.empty()) return;
    Load();
    const Node Schemas = trvDBObjects.Items().Item(std::wstring(modLists::NodeKind::Schemas));
    for (Node Schema = Schemas.Child(); Schema; Schema = Schema.Next()) {
        if (SameName(Schema.Text(), OwnerName)) {
            trvDBObjects.SetSelectedItem(Schema);
            Schema.EnsureVisible();
            return;
        }
    }
} catch (...) {
    ReportError(Module, L"Constructor");
}

void frmSQLEditor::Display(std::wstring& SQL) try {
    // Checked first, so that a nested call cannot touch the text being edited. A flag, because the window is not yet
    // visible while DBTypeName is read.
    if (displaying_) RaiseError(ErrorNumber::FormAlreadyShown);
    const auto held = shared_from_this();  // the host may let go of the window while it is shown
    const AutoReset displaying(displaying_, true);
    Load();
    if (connection_ != modGlobal::Connection()) m_ShowConnection();
    colours_.SetLanguage(DBType);
    rtbSQL.SetText(SQL);
    displayed_ = SQL;
    displayedLength_ = rtbSQL.TextLength();
    comparing_ = false;
    m_ShowChanged(false);
    m_ShowLengths();
    rtbSQL.DataChanged = false;
    returned_.reset();
    // What comes back is the editor's text, which has CR LF for CR and LF. Characters that the editor alone takes for
    // line ends go back as they came while nobody changes the text.
    const auto TakeBack = [&] {
        std::wstring Text = m_ReturnedText();
        const bool Same =
            std::any_of(SQL.begin(), SQL.end(), PlainText::IsLineBreak) && Text == PlainText::WithCrLf(SQL);
        if (!Same) SQL = std::move(Text);
    };
    const bool Connected = Dictionary != nullptr && Dictionary->Connected();
    sbStatusBar.SetPanelText(ConnectionPanel, Connected ? HostDatabase.Get(L"DBTypeName", ByRef(DBType)).ToText()
                                                        : std::wstring(L"Not connected to a database"));
    modWinAPI::SetWindowTopMost(*this);
    try {
        ShowModal();
    } catch (...) {
        // An event that could not even report its error has ended the window. What was written in it is not lost.
        TakeBack();
        throw;
    }
    TakeBack();
} catch (...) {
    ReportError(Module, L"Display");
}

void frmSQLEditor::Form_Load() try {
    EditorForm = shared_from_this();
    connection_ = modGlobal::Connection();
    m_RestorePlacement();
    modLists::PopulateDBObjects();
    modLists::PopulateAnsiSQLCommands();
    modLists::PopulateDatabaseSpecificCommands();
    modLists::PopulateKolvexCommands();
} catch (...) {
    ReportError(Module, L"Form_Load");
}

// Each value is checked as it is read: those before a wrong one are applied.
void frmSQLEditor::m_RestorePlacement() {
    Placement Restored = Place();
    try {
        Restored.SetLeft(SavedPlacement(L"MainLeft", L"1000"));
        Restored.SetTop(SavedPlacement(L"MainTop", L"1000"));
        Restored.SetWidth(SavedPlacement(L"MainWidth", L"6500"));
        Restored.SetHeight(SavedPlacement(L"MainHeight", L"6500"));
    } catch (...) {
        MoveTo(Restored);
        throw;
    }
    MoveTo(Restored);
}

// The host has given the component another connection since the window was filled: its tree and reference are made for
// it. The lists, the layout and the place stay as the user left them.
void frmSQLEditor::m_ShowConnection() {
    connection_ = modGlobal::Connection();
    modLists::PopulateDBObjects();
    modLists::PopulateDatabaseSpecificCommands();
}

void frmSQLEditor::Form_Activate() try {
    rtbSQL.DataChanged = false;
    rtbSQL.FileName.clear();
    rtbSQL.FileFormat = {};
    m_ShowFileFormat();
    m_FormTitle(L"");
    cmdLeft_Click(0);
    rtbSQL.SetFocus();
    m_EnableActionMenu();
} catch (...) {
    ReportError(Module, L"Form_Activate");
}

void frmSQLEditor::m_FormTitle(const std::wstring& Title) try {
    SetCaption(Title.empty() ? L"SQL Editor" : L"SQL Editor - " + Title);
} catch (...) {
    ReportError(Module, L"m_FormTitle");
}

// Every way of closing the window comes through here: none leaves the host's SQL unchanged.
void frmSQLEditor::mnuFileClose_Click() try {
    // Only a minimised window has no place worth keeping: a maximised one opens as large as it was closed.
    if (Handle() != nullptr && WindowState() != State::Minimized) {
        SavePlacement(L"MainLeft", Left());
        SavePlacement(L"MainTop", Top());
        SavePlacement(L"MainWidth", Width());
        SavePlacement(L"MainHeight", Height());
    }
    // Read while the window shows: what cannot be read keeps it open.
    if (Visible()) {
        returned_ = rtbSQL.Text();
        changedSince_ = false;
    }
    Hide();
} catch (...) {
    ReportError(Module, L"mnuFileClose_Click");
}

// What the editor holds now. The window may have ended without being closed: the host quits, an event's failure could
// not be reported, or somebody destroyed it. What was under way when it was closed may have gone on to write.
std::wstring frmSQLEditor::m_ReturnedText() {
    const std::optional<std::wstring> Read = std::exchange(returned_, {});
    if (Read && !changedSince_) return *Read;
    try {
        return rtbSQL.Text();
    } catch (...) {
        if (!Read) throw;
        return *Read;
    }
}

void frmSQLEditor::Form_Unload(bool& cancel) try {
    cancel = true;
    mnuFileClose_Click();
} catch (...) {
    ReportError(Module, L"Form_Unload");
}

void frmSQLEditor::tlbToolbar_ButtonClick(const Toolbar::Button& Button) try {
    if (Button.Key == L"return") mnuFileClose_Click();
} catch (...) {
    ReportError(Module, L"tlbToolbar_ButtonClick");
}
