#include <windows.h>
#include <commctrl.h>
#include <oleacc.h>

#include <algorithm>

#include "automation/App.h"
#include "editor/ControlIds.h"
#include "editor/frmSQLEditor.h"
#include "forms/Handles.h"
#include "forms/Surroundings.h"
#include "forms/SystemFunctions.h"
#include "forms/Twips.h"

namespace {

constexpr WORD ReturnIcon = 2;
constexpr float LeastFirstSplit = 2400;  // twips
constexpr float IconSize = 240;          // twips

// A small arrow head in the middle of the box, pointing left or right.
void PaintArrow(HDC Context, const RECT& Client, bool ToLeft) {
    const int X = (Client.left + Client.right) / 2;
    const int Y = (Client.top + Client.bottom) / 2;
    int Size = (Client.bottom - Client.top) / 4;
    const int Widest = (Client.right - Client.left - 2) / 2;
    if (Size > Widest) Size = Widest;
    if (Size < 2) Size = 2;
    const int Tip = ToLeft ? X - Size / 2 : X + Size / 2;
    const int Back = ToLeft ? Tip + Size : Tip - Size;
    const POINT Arrow[] = {{Tip, Y}, {Back, Y - Size}, {Back, Y + Size}};
    const SelectedObject Pen(Context, GetStockObject(NULL_PEN));
    const SelectedObject Brush(Context, GetSysColorBrush(COLOR_BTNTEXT));
    Polygon(Context, Arrow, 3);
}

// The face of a small button.
void PaintBox(HDC Context, const RECT& Client) {
    RECT Edge = Client;
    DrawEdge(Context, &Edge, BDR_RAISEDINNER, BF_RECT);
}

std::wstring FixedPitchFace(HWND Window) {
    for (const wchar_t* Face : {L"Consolas", L"Courier New"}) {
        LOGFONTW Wanted{};
        Wanted.lfCharSet = DEFAULT_CHARSET;
        lstrcpynW(Wanted.lfFaceName, Face, LF_FACESIZE);
        bool Found = false;
        const WindowDc Context(Window);
        EnumFontFamiliesExW(
            Context, &Wanted,
            [](const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM Parameter) WINAPI -> int {
                *reinterpret_cast<bool*>(Parameter) = true;
                return 0;
            },
            reinterpret_cast<LPARAM>(&Found), 0);
        if (Found) return Face;
    }
    return L"Courier New";
}

}  // namespace

void frmSQLEditor::CreateImages() {
    const Surroundings surroundings;
    int Size = TwipsToPixels(IconSize * FontScale(), Dpi());
    // The sizes that the icon is drawn in: one that is scaled is blurred.
    for (const int Drawn : {48, 32, 24, 20, 16}) {
        if (Drawn <= Size) {
            if (Size < 64) Size = Drawn;
            break;
        }
    }
    int Width = 0;
    int Height = 0;
    if (imlImages && System::ImageList_GetIconSize(imlImages.get(), &Width, &Height) && Height == Size) return;
    ImageListHandle Images(System::ImageList_Create(Size, Size, ILC_COLOR32, 1, 0));
    const auto Icon = static_cast<HICON>(
        LoadImageW(App::Module(), MAKEINTRESOURCEW(ReturnIcon), IMAGE_ICON, Size, Size, LR_DEFAULTCOLOR));
    if (Icon != nullptr) {
        const IconHandle Owned(Icon);
        if (Images) System::ImageList_ReplaceIcon(Images.get(), -1, Icon);
    }
    // The former list lives until the toolbar has the new one, whether or not the call succeeds.
    std::swap(imlImages, Images);
    tlbToolbar.SetImageList(imlImages.get());
}

// Names for screen readers. These windows do not show their text; both the text and the annotation are set, since one
// accessibility interface takes the name of a tree or list from the text and the other from the annotation.
void frmSQLEditor::NameControls() {
    const auto Name = [this](Control& Named, const std::wstring& Text) {
        Named.SetWindowCaption(Text);
        accAnnotations.SetName(Named.Handle(), Text);
    };
    Control* const Views[] = {&trvDBObjects, &lstAnsiSQL, &trvDatabaseSpecific, &lstKolvex};
    for (size_t At = 0; At < picLeft.size(); ++At) {
        Name(picLeft[At], cmdLeft[At].WindowCaption());
        Name(*Views[At], cmdLeft[At].WindowCaption());
    }
    Name(tlbToolbar, L"Toolbar");
    Name(picRight, L"SQL");
    Name(picSplitterV, L"Splitter");
    Name(imgSplitterV, L"Splitter");
    Name(picHide, L"Hide the left pane");
    Name(picUnhide, L"Show the left pane");
    // The text of these two is their name.
    rtbSQL.SetAccessibleName(L"SQL");
    accAnnotations.SetName(sbStatusBar.Handle(), L"Status bar");

    for (PictureBox* Box : {&picHide, &picUnhide}) accAnnotations.SetRole(Box->Handle(), ROLE_SYSTEM_PUSHBUTTON);
    for (PictureBox* Bar : {&imgSplitterV, &picSplitterV}) accAnnotations.SetRole(Bar->Handle(), ROLE_SYSTEM_SEPARATOR);
    for (PictureBox& Page : picLeft) accAnnotations.SetRole(Page.Handle(), ROLE_SYSTEM_GROUPING);
    accAnnotations.SetRole(picRight.Handle(), ROLE_SYSTEM_GROUPING);
}

// The order of creation is the order of the Tab key.
void frmSQLEditor::CreatePanes() {
    const HWND Window = Handle();
    tlbToolbar.Create(Window, IdToolbar);
    for (int Index = 0; Index < 4; ++Index) {
        static constexpr const wchar_t* Captions[] = {L"Database Objects", L"ANSI SQL", L"Database Specific",
                                                      L"Kolvex"};
        const auto At = static_cast<size_t>(Index);
        cmdLeft[At].Create(Window, IdLeftButton + Index, Captions[Index]);
        cmdLeft[At].Click = [this, Index] { cmdLeft_Click(Index); };
    }
    for (int Index = 0; Index < 4; ++Index) {
        const auto At = static_cast<size_t>(Index);
        picLeft[At].Create(Window, IdLeftPage + Index, WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS,
                           WS_EX_CONTROLPARENT);
        picLeft[At].Resize = [this, Index] { picLeft_Resize(Index); };
    }
    trvDBObjects.Create(picLeft[0].Handle(), IdView);
    lstAnsiSQL.Create(picLeft[1].Handle(), IdView + 1);
    trvDatabaseSpecific.Create(picLeft[2].Handle(), IdView + 2);
    lstKolvex.Create(picLeft[3].Handle(), IdView + 3);
    lblDescription.Create(Window, IdDescription, L"");
    picHide.Create(Window, IdHide);
    picUnhide.Create(Window, IdUnhide);
    picRight.Create(Window, IdRight, WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, WS_EX_CONTROLPARENT);
    picRight.Resize = [this] { picRight_Resize(); };
    rtbSQL.Create(picRight.Handle(), IdEditor);
    rtbSQL.SetEditorFont(FixedPitchFace(Window), 10);
    imgSplitterV.Create(Window, IdSplitter);
    picSplitterV.Create(Window, IdSplitterBar, WS_CLIPSIBLINGS);
    sbStatusBar.Create(Window, IdStatusBar, {1500, 1400, 1500, 900, 600});
    sbStatusBar.KeepRoom(ChangedPanel, ChangedText);
    sbStatusBar.SetPanelTip(ZoomPanel, L"Ctrl+Plus, Ctrl+Minus, Ctrl+0");
    m_ShowFileFormat();  // a panel of a bar that shows is painted at once
}

void frmSQLEditor::WireViews() {
    trvDBObjects.Expand = [this](const Node& Node) { trvDBObjects_Expand(Node, true); };
    trvDBObjects.Collapse = [this](const Node& Node) { trvDBObjects_Collapse(Node); };
    trvDBObjects.NodeClick = [this](const Node& Node) { trvDBObjects_NodeClick(Node); };
    trvDBObjects.SelChange = [this](const Node& Node) { trvDBObjects_SelChange(Node); };
    for (TreeView* Tree : {&trvDBObjects, &trvDatabaseSpecific})
        Tree->ExpandAllRequested = [this, Tree](const Node& Node) { m_ExpandAll(*Tree, Node); };
    trvDBObjects.NodeTip = [this](const Node& Node) { return m_NodeTip(Node); };
    trvDBObjects.ContextMenu = [this](const POINT& At) { trvDBObjects_ContextMenu(At); };
    trvDBObjects.MouseDown = [this](int B, int S, float X, float Y) { trvDBObjects_MouseDown(B, S, X, Y); };
    trvDBObjects.MouseMove = [this](int B, int S, float X, float Y) { trvDBObjects_MouseMove(B, S, X, Y); };
    trvDBObjects.MouseUp = [this](int B, int S, float X, float Y) { trvDBObjects_MouseUp(B, S, X, Y); };
    lstAnsiSQL.Click = [this] { lstAnsiSQL_Click(); };
    lstAnsiSQL.MouseDown = [this](int B, int S, float X, float Y) { lstAnsiSQL_MouseDown(B, S, X, Y); };
    lstAnsiSQL.MouseMove = [this](int B, int S, float X, float Y) { lstAnsiSQL_MouseMove(B, S, X, Y); };
    lstAnsiSQL.MouseUp = [this](int B, int S, float X, float Y) { lstAnsiSQL_MouseUp(B, S, X, Y); };
    lstKolvex.Click = [this] { lstKolvex_Click(); };
    lstKolvex.MouseDown = [this](int B, int S, float X, float Y) { lstKolvex_MouseDown(B, S, X, Y); };
    lstKolvex.MouseMove = [this](int B, int S, float X, float Y) { lstKolvex_MouseMove(B, S, X, Y); };
    lstKolvex.MouseUp = [this](int B, int S, float X, float Y) { lstKolvex_MouseUp(B, S, X, Y); };
    trvDatabaseSpecific.NodeClick = [this](const Node& Node) { trvDatabaseSpecific_NodeClick(Node); };
    trvDatabaseSpecific.SelChange = [this](const Node& Node) { trvDatabaseSpecific_NodeClick(Node); };
    trvDatabaseSpecific.MouseDown = [this](int B, int S, float X, float Y) {
        trvDatabaseSpecific_MouseDown(B, S, X, Y);
    };
    trvDatabaseSpecific.MouseMove = [this](int B, int S, float X, float Y) {
        trvDatabaseSpecific_MouseMove(B, S, X, Y);
    };
    trvDatabaseSpecific.MouseUp = [this](int B, int S, float X, float Y) { trvDatabaseSpecific_MouseUp(B, S, X, Y); };
    for (Control* View : {static_cast<Control*>(&lstAnsiSQL), static_cast<Control*>(&lstKolvex),
                          static_cast<Control*>(&trvDatabaseSpecific)}) {
        View->ContextMenu = [this](const POINT& At) { m_ReferenceContextMenu(At); };
    }
    for (int Index = 0; Index < 4; ++Index) m_View(Index).LostFocus = [this] { tipHelp_.Hide(); };
}

void frmSQLEditor::WireEditor() {
    rtbSQL.ContextMenu = [this](const POINT& At) { rtbSQL_ContextMenu(At); };
    rtbSQL.PasteRequested = [this] { mnuEditPaste_Click(); };
    rtbSQL.CopyRequested = [this] { rtbSQL_CopyRequested(); };
    rtbSQL.CutRequested = [this] { rtbSQL_CutRequested(); };
    rtbSQL.Change = [this] { rtbSQL_Change(); };
    rtbSQL.KeyPressed = [this](int Key, int Shift) { return rtbSQL_KeyPressed(Key, Shift); };
    rtbSQL.MadePlain = [this] { colours_.MadePlain(); };
    rtbSQL.SelChange = [this] { rtbSQL_SelChange(); };
    rtbSQL.Zoomed = [this] { rtbSQL_Zoomed(); };
    rtbSQL.LostFocus = [this] {
        lstNames.Close();
        tipHelp_.Hide();
    };
    lstNames.RowOf = [this](size_t Row) { return m_NameRow(Row); };
    lstNames.Chosen = [this] { lstNames_Chosen(); };
    rtbSQL.DragOver = [this](Control& Source, float X, float Y, DragState State) {
        rtbSQL_DragOver(Source, X, Y, State);
    };
    rtbSQL.DragDrop = [this](Control& Source, float X, float Y) { rtbSQL_DragDrop(Source, X, Y); };
    rtbSQL.AcceptsDrag = [this](Control& Source) { return m_CanDrop(Source); };
    rtbSQL.OLEDragDrop = [this](const DroppedData& Data) { rtbSQL_OLEDragDrop(Data); };
}

void frmSQLEditor::WirePanes() {
    for (PictureBox* Box : {&picHide, &picUnhide}) Box->SetPushButton();
    picHide.Click = [this] { picHide_Click(); };
    picHide.Paint = [](HDC Context, const RECT& Client) {
        PaintBox(Context, Client);
        PaintArrow(Context, Client, true);
    };
    picUnhide.Click = [this] { picUnhide_Click(); };
    picUnhide.Paint = [](HDC Context, const RECT& Client) {
        PaintBox(Context, Client);
        PaintArrow(Context, Client, false);
    };

    imgSplitterV.SetMousePointer(IDC_SIZEWE);
    imgSplitterV.MouseDown = [this](int B, int S, float X, float Y) { imgSplitterV_MouseDown(B, S, X, Y); };
    imgSplitterV.MouseMove = [this](int B, int S, float X, float Y) { imgSplitterV_MouseMove(B, S, X, Y); };
    imgSplitterV.MouseUp = [this](int B, int S, float X, float Y) { imgSplitterV_MouseUp(B, S, X, Y); };
    imgSplitterV.CaptureLost = [this] { imgSplitterV_CaptureLost(); };
    picSplitterV.SetBackColor(COLOR_3DSHADOW);
    constexpr int Edge = 2;  // the width of a sunken border, which has no use for the mouse
    picRight.SetMouseEdges(Edge, 0);
    rtbSQL.SetMouseEdges(Edge, 0);
    for (PictureBox& Page : picLeft) Page.SetMouseEdges(0, Edge);
    trvDBObjects.SetMouseEdges(0, Edge);
    lstAnsiSQL.SetMouseEdges(0, Edge);
    trvDatabaseSpecific.SetMouseEdges(0, Edge);
    lstKolvex.SetMouseEdges(0, Edge);
}

void frmSQLEditor::CreateControls() {
    CreateMenus();
    CreatePanes();
    dlgCommonDialog.Filter = L"SQL Files (*.sql;*.txt)|*.sql;*.txt|Rich Text (*.rtf)|*.rtf|All Files (*.*)|*.*";
    dlgCommonDialog.DefaultExt = L"sql";

    tlbToolbar.ButtonClick = [this](const Toolbar::Button& Button) { tlbToolbar_ButtonClick(Button); };
    NameControls();
    CreateImages();
    tlbToolbar.AddButton({L"return", L"Return SQL to Kolvex", L"Close the editor and return the SQL to Kolvex", 0});

    WireViews();
    WireEditor();
    WirePanes();

    // As cmdLeft_Click leaves them, which finds nothing to change when the window is shown for the first time.
    for (size_t At = 1; At < picLeft.size(); ++At) picLeft[At].SetEnabled(false);
    cmdLeft[0].SetPressed(true);
    m_BringPageToFront(activeView_);
}

// The splitter stands where the widest caption of a tab button fits, until it is moved.
void frmSQLEditor::m_PlaceSplitterFirst() {
    if (picSplitterV.Left() != firstSplit_) return;
    firstSplit_ = LeastFirstSplit;
    for (const CommandButton& Button : cmdLeft) firstSplit_ = std::max(firstSplit_, Button.LeastWidth());
    imgSplitterV.SetLeft(firstSplit_);
    picSplitterV.SetLeft(firstSplit_);
}

void frmSQLEditor::FontsChanged() {
    const HFONT Font = MessageFont();
    tlbToolbar.SetFont(Font);
    for (CommandButton& Button : cmdLeft) Button.SetFont(Font);
    trvDBObjects.SetFont(Font);
    lstAnsiSQL.SetFont(Font);
    trvDatabaseSpecific.SetFont(Font);
    lstKolvex.SetFont(Font);
    lblDescription.SetFont(Font);
    sbStatusBar.SetFont(Font);
    rtbSQL.SetScale(FontScale());
    rtbSQL_Zoomed();
    CreateImages();
    m_PlaceSplitterFirst();
}
