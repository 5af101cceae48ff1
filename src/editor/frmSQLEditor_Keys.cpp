#include <array>

#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"

// Keys that go from pane to pane and do there what the mouse does.
namespace {

constexpr float SplitterStep = 150;  // twips

bool IsIn(const Control& Control, HWND Window) noexcept {
    return Control.Handle() != nullptr && (Window == Control.Handle() || IsChild(Control.Handle(), Window));
}

}  // namespace

Control& frmSQLEditor::m_View(int Index) {
    Control* const Views[] = {&trvDBObjects, &lstAnsiSQL, &trvDatabaseSpecific, &lstKolvex};
    return *Views[Index];
}

bool frmSQLEditor::KeyPreview(MSG& message) try {
    if (message.message != WM_KEYDOWN && message.message != WM_SYSKEYDOWN) return false;
    tipHelp_.Hide();
    const bool Ctrl = GetKeyState(VK_CONTROL) < 0;
    const bool Shift = GetKeyState(VK_SHIFT) < 0;
    const bool Alt = GetKeyState(VK_MENU) < 0;
    const WPARAM Key = message.wParam;
    if (Key == VK_F6 && !Ctrl && !Alt) {
        m_NextPane(Shift);
        return true;
    }
    if (Key == 'F' && Ctrl && Shift && !Alt) {
        m_FindNode();
        return true;
    }
    // F3 goes on where the search was, when it was in the tree; elsewhere it is Find Next.
    if (Key == VK_F3 && !Ctrl && !Shift && !Alt && !nodeText_.empty() && trvDBObjects.HasFocus()) {
        m_FindNextNode();
        return true;
    }
    if (Key == VK_F1 && !Ctrl && !Shift && !Alt) {
        m_ShowHelp();
        return true;
    }
    if (Key == VK_F5 && !Ctrl && !Shift && !Alt && trvDBObjects.HasFocus()) {
        m_ReadAgain();
        return true;
    }
    if (Ctrl && Alt && !Shift && (Key == VK_LEFT || Key == VK_RIGHT)) {
        m_MoveSplitter(Key == VK_RIGHT ? SplitterStep : -SplitterStep);
        return true;
    }
    if (Alt && !Ctrl && !Shift && Key >= '1' && Key <= '4') {
        if (!picLeft[0].Visible()) picUnhide_Click();
        cmdLeft_Click(static_cast<int>(Key - '1'));
        return true;
    }
    if (Ctrl && !Alt && !Shift && Key == VK_RETURN && m_View(activeView_).HasFocus()) {
        m_InsertDragText(m_View(activeView_));
        return true;
    }
    return false;
} catch (...) {
    ReportError(Module, L"KeyPreview");
    return true;
}

// The toolbar, the left pane unless it is collapsed, and the SQL, round and round.
void frmSQLEditor::m_NextPane(bool Back) {
    const bool Left = picLeft[0].Visible();
    const std::array<Control*, 3> Panes = {&tlbToolbar, &m_View(activeView_), &rtbSQL};
    // What is in none of the others is in the left pane, its buttons among them.
    const HWND Focus = GetFocus();
    int At = IsIn(tlbToolbar, Focus) ? 0 : IsIn(picRight, Focus) ? 2 : 1;
    do {
        At = (At + (Back ? 2 : 1)) % 3;
    } while (At == 1 && !Left);
    // Keyboard users need the focus rectangle even if the mouse has hidden it.
    SendMessageW(Handle(), WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
    Panes[static_cast<size_t>(At)]->SetFocus();
}

// As a drag to the caret would. What is not selected, and what a drag would not take, inserts nothing.
void frmSQLEditor::m_InsertDragText(Control& Source) {
    if (&Source == &trvDBObjects && (trvDBObjects.RefusesInput() || !trvDBObjects.SelectedItem())) return;
    if (&Source == &trvDatabaseSpecific && !trvDatabaseSpecific.SelectedItem()) return;
    for (const ListBox* List : {&lstAnsiSQL, &lstKolvex}) {
        if (&Source == List && List->ListIndex() == -1) return;
    }
    const std::wstring Text = m_DragText(Source);
    if (!Text.empty()) m_InsertSQL(Text);
}

void frmSQLEditor::m_MoveSplitter(float By) {
    if (!picLeft[0].Visible()) {
        if (By > 0) picUnhide_Click();
        return;
    }
    m_DragSplitterTo(imgSplitterV.Left() + By);
    m_SizeControls();
}
