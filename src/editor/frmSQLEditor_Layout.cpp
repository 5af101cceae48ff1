#include <algorithm>

#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/Twips.h"

// All lengths in twips.
namespace {

constexpr float LeastWidth = 3000;
constexpr float LeastHeight = 4000;
constexpr float SplitLimit = 500;      // how near to either side the splitter can be dragged
constexpr float CollapsedSplit = 20;   // the split position that stands for a collapsed left pane
constexpr float CollapsedBelow = 100;  // a left pane that is no wider counts as collapsed
constexpr float NarrowestPane = 1500;  // of either pane, when there is room for both
constexpr float Margin = 50;           // from the window's sides
constexpr float SplitterWidth = 40;    // between the panes
constexpr float TabHeight = 300;
constexpr float Gap = 20;
constexpr float CollapseWidth = 360;     // 24 pixels of 96 dpi each way
constexpr float CollapseHeight = 380;    // with the gap
constexpr float LongestDescription = 8;  // lines
constexpr int TabCount = 4;

}  // namespace

float frmSQLEditor::MinimumWidth() const { return LeastWidth; }

float frmSQLEditor::MinimumHeight() const { return LeastHeight; }

void frmSQLEditor::Form_Resize() try {
    // What stands beside the caret would stay where it was, in the size and the font that it had.
    lstNames.Close();
    tipHelp_.Hide();
    if (WindowState() == State::Minimized) return;
    // Compared in pixels: a minimum that is no whole number of them is reached all the same.
    const UINT dpi = Dpi();
    if (TwipsToPixels(Width(), dpi) < TwipsToPixels(LeastWidth, dpi)) SetWidth(LeastWidth);
    if (TwipsToPixels(Height(), dpi) < TwipsToPixels(LeastHeight, dpi)) SetHeight(LeastHeight);
    m_SizeControls();
} catch (...) {
    ReportError(Module, L"Form_Resize");
}

void frmSQLEditor::m_SizeControls() try {
    const float InnerWidth = ScaleWidth();
    const float InnerHeight = ScaleHeight();

    float LeftWidth = picSplitterV.Left();
    const bool Shown = LeftWidth > CollapsedBelow;

    if (Shown && LeftWidth < NarrowestPane) LeftWidth = NarrowestPane;
    if (LeftWidth > InnerWidth - NarrowestPane) LeftWidth = InnerWidth - NarrowestPane;
    // Collapsing keeps a whole number of twips, which pixels of 168 or 192 dots per inch are not: restored from that,
    // the panes have to stand on the same pixels.
    LeftWidth = static_cast<float>(WholeTwips(LeftWidth));

    const float Top = tlbToolbar.Arrange();
    float Bottom = InnerHeight;
    if (sbStatusBar.Visible()) Bottom -= sbStatusBar.Arrange();
    const float PaneHeight = std::max(Bottom - Top, 0.0F);

    // A button is higher only where the user's font needs it.
    float ButtonHeight = TabHeight;
    for (const CommandButton& Button : cmdLeft) ButtonHeight = std::max(ButtonHeight, Button.LeastHeight());

    // The description gets room for the longest description at the default width, and less in a low window, where its
    // tooltip shows the rest. The collapse button has the line under it.
    const float LabelHeight = std::min(
        LongestDescription * lblDescription.LineHeight() + 2 * Label::MarginDown + CollapseHeight, PaneHeight * 0.3F);
    const float PageHeight = std::max(PaneHeight - TabCount * ButtonHeight - (TabCount + 3) * Gap - LabelHeight, 0.0F);

    float Y = Top + Gap;
    for (int Index = 0; Index < TabCount; ++Index) {
        const auto At = static_cast<size_t>(Index);
        cmdLeft[At].Move(Margin, Y, LeftWidth, ButtonHeight);
        Y += ButtonHeight + Gap;
        if (Index == activeView_) {
            for (PictureBox& Page : picLeft) Page.Move(Margin, Y, LeftWidth, PageHeight);
            Y += PageHeight + Gap;
        }
    }
    lblDescription.Move(Margin, Y, LeftWidth, std::max(Bottom - CollapseHeight - Y, 0.0F));
    for (CommandButton& Button : cmdLeft) Button.SetVisible(Shown);
    for (PictureBox& Page : picLeft) Page.SetVisible(Shown);
    lblDescription.SetVisible(Shown);

    // The grip lies under the panes and shows in the gap between them; their borders let the mouse through to it. It
    // holds the actual split; the bar holds the requested one, which a window that grows again restores.
    imgSplitterV.Move(LeftWidth, Top, Margin + SplitterWidth + Margin, PaneHeight);
    picHide.Move(Margin + LeftWidth - CollapseWidth, Bottom - CollapseHeight, CollapseWidth, CollapseHeight - Gap);
    picHide.SetVisible(Shown);
    picUnhide.Move(0, Top, Margin + LeftWidth, PaneHeight);
    picUnhide.SetVisible(!Shown);

    picRight.Move(Margin + LeftWidth + SplitterWidth, Top, std::max(InnerWidth - LeftWidth - 140, 0.0F), PaneHeight);
    mnuViewObjectBrowser.SetChecked(Shown);
} catch (...) {
    ReportError(Module, L"m_SizeControls");
}

void frmSQLEditor::cmdLeft_Click(int Index) try {
    for (int Other = 0; Other < TabCount; ++Other) {
        const auto At = static_cast<size_t>(Other);
        // The hidden pages are still visible windows; disabling them keeps the Tab key out.
        picLeft[At].SetEnabled(Other == Index);
        cmdLeft[At].SetPressed(Other == Index);
    }
    if (Index != activeView_) m_BringPageToFront(Index);
    switch (Index) {
        case 0:
            lblDescription.SetCaption(L"");
            if (const Node Selected = trvDBObjects.SelectedItem()) m_DescribeNode(Selected);
            trvDBObjects.SetFocus();
            break;
        case 1:
            lstAnsiSQL.SetFocus();
            lstAnsiSQL.SetListIndex(lstAnsiSQL.ListIndex());
            break;
        case 2:
            trvDatabaseSpecific.SetFocus();
            trvDatabaseSpecific_NodeClick(trvDatabaseSpecific.SelectedItem());
            break;
        default:
            lstKolvex.SetFocus();
            lstKolvex.SetListIndex(lstKolvex.ListIndex());
            break;
    }
    activeView_ = static_cast<short>(Index);
    m_EnableActionMenu();  // the menu speaks of the view that shows
    m_SizeControls();
} catch (...) {
    ReportError(Module, L"cmdLeft_Click");
}

// In front of the other pages, and after its button in the order of the Tab key.
void frmSQLEditor::m_BringPageToFront(int Index) {
    for (int Other = 0; Other < TabCount; ++Other) {
        if (Other != Index) picLeft[static_cast<size_t>(Other)].SendToBack();
    }
    picLeft[static_cast<size_t>(Index)].PlaceBehind(cmdLeft[static_cast<size_t>(Index)]);
}

void frmSQLEditor::m_DragSplitterTo(float Position) {
    const float Furthest = ScaleWidth() - SplitLimit;
    picSplitterV.SetLeft(Position < SplitLimit ? SplitLimit : Position > Furthest ? Furthest : Position);
}

// Any button drags the splitter.
void frmSQLEditor::imgSplitterV_MouseDown(int, int, float, float) try {
    SetCapture(imgSplitterV.Handle());
    picSplitterV.Move(imgSplitterV.Left(), imgSplitterV.Top(), imgSplitterV.Width(), imgSplitterV.Height() - 20);
    picSplitterV.SetVisible(true);
    picSplitterV.BringToFront();
    moving_ = true;
} catch (...) {
    ReportError(Module, L"imgSplitterV_MouseDown");
}

void frmSQLEditor::imgSplitterV_MouseMove(int, int, float X, float) try {
    if (moving_) m_DragSplitterTo(imgSplitterV.Left() + X);
} catch (...) {
    ReportError(Module, L"imgSplitterV_MouseMove");
}

void frmSQLEditor::imgSplitterV_MouseUp(int, int, float, float) try {
    if (!moving_) return;
    moving_ = false;
    ReleaseCapture();
    m_SizeControls();
    picSplitterV.SetVisible(false);
} catch (...) {
    ReportError(Module, L"imgSplitterV_MouseUp");
}

// Another window took the mouse in the middle of a drag: the splitter goes back to where it was.
void frmSQLEditor::imgSplitterV_CaptureLost() try {
    if (!moving_) return;
    moving_ = false;
    picSplitterV.SetLeft(imgSplitterV.Left());
    picSplitterV.SetVisible(false);
} catch (...) {
    ReportError(Module, L"imgSplitterV_CaptureLost");
}

void frmSQLEditor::m_ShowLeftPane(float Split, Control& Instead) {
    const HWND Focus = ::GetFocus();
    imgSplitterV.SetLeft(Split);
    picSplitterV.SetLeft(Split);
    m_SizeControls();
    if (Focus != nullptr && IsChild(Handle(), Focus) && !IsWindowVisible(Focus)) Instead.SetFocus();
}

void frmSQLEditor::picHide_Click() try {
    const bool ByKey = picHide.HasFocus();
    savedSplit_ = WholeTwips(imgSplitterV.Left());
    m_ShowLeftPane(CollapsedSplit, ByKey ? static_cast<Control&>(picUnhide) : rtbSQL);
} catch (...) {
    ReportError(Module, L"picHide_Click");
}

void frmSQLEditor::picUnhide_Click() try { m_ShowLeftPane(static_cast<float>(savedSplit_), picHide); } catch (...) {
    ReportError(Module, L"picUnhide_Click");
}

void frmSQLEditor::picLeft_Resize(int Index) try {
    const PictureBox& Page = picLeft[static_cast<size_t>(Index)];
    Control* const Views[] = {&trvDBObjects, &lstAnsiSQL, &trvDatabaseSpecific, &lstKolvex};
    if (Views[Index]->Handle() != nullptr) Views[Index]->Move(0, 0, Page.ScaleWidth(), Page.ScaleHeight());
} catch (...) {
    ReportError(Module, L"picLeft_Resize");
}

void frmSQLEditor::picRight_Resize() try {
    if (rtbSQL.Handle() != nullptr) rtbSQL.Move(0, 0, picRight.ScaleWidth(), picRight.ScaleHeight());
} catch (...) {
    ReportError(Module, L"picRight_Resize");
}

void frmSQLEditor::mnuViewObjectBrowser_Click() try {
    mnuViewObjectBrowser.SetChecked(!mnuViewObjectBrowser.Checked());
    if (mnuViewObjectBrowser.Checked()) {
        picUnhide_Click();
    } else {
        picHide_Click();
    }
} catch (...) {
    ReportError(Module, L"mnuViewObjectBrowser_Click");
}

void frmSQLEditor::mnuViewStatusBar_Click() try {
    mnuViewStatusBar.SetChecked(!mnuViewStatusBar.Checked());
    sbStatusBar.SetVisible(mnuViewStatusBar.Checked());
    m_SizeControls();
} catch (...) {
    ReportError(Module, L"mnuViewStatusBar_Click");
}
