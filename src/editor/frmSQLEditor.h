#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "automation/RuntimeError.h"
#include "editor/Colours.h"
#include "editor/NameList.h"
#include "forms/Annotations.h"
#include "forms/CommandButton.h"
#include "forms/DropTarget.h"
#include "forms/FileDialog.h"
#include "forms/Form.h"
#include "forms/HelpTip.h"
#include "forms/Label.h"
#include "forms/ListBox.h"
#include "forms/Menu.h"
#include "forms/PictureBox.h"
#include "forms/PopupList.h"
#include "forms/RichTextBox.h"
#include "forms/StatusBar.h"
#include "forms/ToolWindow.h"
#include "forms/Toolbar.h"
#include "forms/TreeView.h"

class clsListItem;

// The editor window: modal while Display runs, hidden between, never unloaded while the component holds it. One class,
// whose subjects are defined in the files that the banners name.
class frmSQLEditor : public Form, public std::enable_shared_from_this<frmSQLEditor> {
public:
    // What reports and logs call it.
    static constexpr const wchar_t* Module = L"frmSQLEditor";

    frmSQLEditor();
    ~frmSQLEditor() override;

    // ---- Lifecycle (editor/frmSQLEditor_Lifecycle.cpp)

    // Selects the owner's schema in the object browser, which loads the window when there is an owner.
    void Constructor();
    // Shows the window on `SQL` and returns when it was closed, the editor's text in `SQL`. When it fails before the
    // window was shown, `SQL` is unchanged. Error 400 from inside Constructor or another Display, reported.
    void Display(std::wstring& SQL);
    // No call is under way, and the window or a control it needs could not be made or was destroyed by others: another
    // form has to take its place.
    bool m_IsGone() const noexcept;
    std::shared_ptr<void> Hold() noexcept override { return weak_from_this().lock(); }

    // The panels of the status bar.
    enum Panel { ConnectionPanel = 1, CaretPanel, FormatPanel, LengthPanel, ChangedPanel, ZoomPanel };

    // ---- Controls (made and wired in editor/frmSQLEditor_Controls.cpp). Public for modLists, which fills the tree and
    // the lists.

    Toolbar tlbToolbar;
    std::array<CommandButton, 4> cmdLeft;
    std::array<PictureBox, 4> picLeft;
    TreeView trvDBObjects;
    ListBox lstAnsiSQL;
    TreeView trvDatabaseSpecific;
    ListBox lstKolvex;
    Label lblDescription;
    PictureBox picHide;
    PictureBox picUnhide;
    PictureBox imgSplitterV;
    PictureBox picSplitterV;
    PictureBox picRight;
    RichTextBox rtbSQL;
    StatusBar sbStatusBar;
    FileDialog dlgCommonDialog;
    ToolWindow winReplace;
    ToolWindow winGoto;
    PopupList lstNames;
    ImageListHandle imlImages;
    Annotations accAnnotations;

    MenuItem mnuFile{L"&File"};
    MenuItem mnuFileNew{L"&New", {FCONTROL, 'N', L"Ctrl+N"}};
    MenuItem mnuFileOpen{L"&Open...", {FCONTROL, 'O', L"Ctrl+O"}};
    MenuItem mnuFileSave{L"&Save", {FCONTROL, 'S', L"Ctrl+S"}};
    MenuItem mnuFileSaveAs{L"Save &As..."};
    MenuItem mnuFilePrint{L"&Print...", {FCONTROL, 'P', L"Ctrl+P"}};
    MenuItem mnuFileClose{L"&Close"};

    MenuItem mnuEdit{L"&Edit"};
    MenuItem mnuEditCut{L"Cu&t", {FCONTROL, 'X', L"Ctrl+X"}};
    MenuItem mnuEditCopy{L"&Copy", {FCONTROL, 'C', L"Ctrl+C"}};
    MenuItem mnuEditPaste{L"&Paste", {FCONTROL, 'V', L"Ctrl+V"}};
    MenuItem mnuEditDelete{L"&Delete", {0, 0, L"Del"}};  // the key is the editor's own
    MenuItem mnuEditMakeLowerCase{L"Make &Lower Case"};
    MenuItem mnuEditMakeUpperCase{L"Make &Upper Case"};
    MenuItem mnuFind{L"&Find...", {FCONTROL, 'F', L"Ctrl+F"}};
    MenuItem mnuFindNext{L"Find &Next", {0, VK_F3, L"F3"}};
    MenuItem mnuEditReplace{L"&Replace..."};
    MenuItem mnuEditGoto{L"&Goto..."};
    MenuItem mnuEditSelectAll{L"Select &All", {FCONTROL, 'A', L"Ctrl+A"}};
    MenuItem mnuEditTimeDate{L"Time/&Date"};

    MenuItem mnuAction{L"&Action"};
    MenuItem mnuActionSelect{L"&Select"};
    MenuItem mnuActionInsert{L"&Insert"};
    MenuItem mnuActionUpdate{L"&Update"};
    MenuItem mnuActionDelete{L"&Delete"};
    MenuItem mnuActionExecute{L"&Execute"};
    MenuItem mnuActionCreate{L"&Create"};
    MenuItem mnuActionTasks{L"&Tasks"};
    std::array<MenuItem, 3> mnuActionTask{MenuItem(L"undefined"), MenuItem(L"undefined"), MenuItem(L"undefined")};

    MenuItem mnuView{L"&View"};
    MenuItem mnuViewStatusBar{L"&StatusBar"};
    MenuItem mnuViewObjectBrowser{L"&Object Browser"};
    MenuItem mnuViewSystem{L"System Tables&Views"};

protected:
    // ---- Controls
    void CreateControls() override;
    void FontsChanged() override;

    // ---- Colours and small windows (editor/frmSQLEditor_Colours.cpp)
    bool Idle() override;
    bool ToolMessage(MSG& message) override;
    void ToolsClose() noexcept override;
    void HiddenToolsGo() noexcept override { lstNames.Discard(); }
    void ColoursChanged() override;

    // ---- Keys for the panes (editor/frmSQLEditor_Keys.cpp)
    bool KeyPreview(MSG& message) override;

    // ---- Status bar (editor/frmSQLEditor_Status.cpp)
    void MenuHighlighted(const MenuItem* Entry) override;
    void MenusClosed() override;

    // ---- Lifecycle
    const wchar_t* FirstCaption() const override { return L"SQL Editor"; }
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;

    // ---- Layout (editor/frmSQLEditor_Layout.cpp)
    void Form_Resize() override;
    float MinimumWidth() const override;
    float MinimumHeight() const override;

private:
    // ---- Lifecycle
    void Form_Initialize();
    void m_FormTitle(const std::wstring& Title);
    void m_ShowConnection();
    void m_RestorePlacement();
    void mnuFileClose_Click();
    std::wstring m_ReturnedText();  // what Display gives back
    void tlbToolbar_ButtonClick(const Toolbar::Button& Button);

    // ---- Menu bar (editor/frmSQLEditor_Menus.cpp)
    void CreateMenus();

    // ---- Controls
    void CreatePanes();
    void CreateImages();
    void NameControls();
    // What happens where: the events of the trees and lists, of the editor, and of what lies between the panes.
    void WireViews();
    void WireEditor();
    void WirePanes();
    void m_PlaceSplitterFirst();

    // ---- Layout
    void m_SizeControls();
    void cmdLeft_Click(int Index);
    void m_BringPageToFront(int Index);
    void imgSplitterV_MouseDown(int Button, int Shift, float X, float Y);
    void imgSplitterV_MouseMove(int Button, int Shift, float X, float Y);
    void imgSplitterV_MouseUp(int Button, int Shift, float X, float Y);
    void imgSplitterV_CaptureLost();
    // Moves the bar, as far as it may go.
    void m_DragSplitterTo(float Position);
    void picHide_Click();
    void picUnhide_Click();
    // Moves the splitter there. When a control that has the focus is hidden by it, another one gets the focus, since no
    // key would reach that one.
    void m_ShowLeftPane(float Split, Control& Instead);
    void picLeft_Resize(int Index);
    void picRight_Resize();
    void mnuViewObjectBrowser_Click();
    void mnuViewStatusBar_Click();

    // ---- Files (editor/frmSQLEditor_File.cpp)
    void mnuFileNew_Click();
    void mnuFileOpen_Click();
    void mnuFileSave_Click();
    void mnuFileSaveAs_Click();
    // Whether the text was not changed, or the user lets it go.
    bool m_MayDiscard(const wchar_t* Question);
    // Says in the status bar how the text's file writes it down.
    void m_ShowFileFormat();
    // Says in the status bar what was not done, and why, until the text or the caret changes.
    void m_TellNotDone(const std::wstring& What, const RuntimeError& Why);

    // ---- Printing (editor/frmSQLEditor_Print.cpp)
    void mnuFilePrint_Click();

    // ---- Editing (editor/frmSQLEditor_Edit.cpp)
    void mnuEdit_Click();
    void mnuEditCut_Click();
    void mnuEditCopy_Click();
    void mnuEditPaste_Click();
    void mnuEditDelete_Click();
    void mnuEditMakeLowerCase_Click();
    void mnuEditMakeUpperCase_Click();
    void mnuFind_Click();
    void mnuFindNext_Click();
    void mnuEditSelectAll_Click();
    void mnuEditTimeDate_Click();
    void m_FindNext(const std::wstring* Text = nullptr);
    // To and from the code of a program.
    void m_CopyAsBasic();
    void m_PasteFromCode();
    std::wstring m_CopiedText();
    bool m_Copy(const std::wstring& Text, const wchar_t* Routine);
    void m_DeleteSelection();
    void m_ChangeCase(DWORD Mapping);          // LCMAP_LOWERCASE or LCMAP_UPPERCASE
    void rtbSQL_ContextMenu(const POINT& At);  // in pixels of the screen
    void rtbSQL_CopyRequested();
    void rtbSQL_CutRequested();
    void rtbSQL_Change();
    void rtbSQL_SelChange();

    // ---- Keys for whole lines and statements (editor/frmSQLEditor_Lines.cpp)
    bool rtbSQL_KeyPressed(int Key, int Shift);
    std::pair<long, long> m_SelectedLines();
    void m_ReplaceRaw(long From, long To, const std::wstring& Text, long SelectFrom, long SelectTo);
    void m_ChangeLines(const std::function<void(std::vector<std::wstring>&)>& Change);
    void m_MoveLines(bool Down);
    void m_DoubleLines();
    void m_DeleteLines();
    void m_BreakLine();
    void m_SelectStatement();
    // Puts the text back that Display brought.
    void m_RestoreDisplayed();

    // ---- Keys for the panes
    Control& m_View(int Index);
    void m_NextPane(bool Back);
    void m_InsertDragText(Control& Source);
    // Moves the splitter by so many twips; to the right, it shows a left pane that is collapsed.
    void m_MoveSplitter(float By);

    // ---- The windows of Ctrl+H and Ctrl+G (editor/frmSQLEditor_Find.cpp)
    void m_OpenReplace();
    void m_OpenGoto();
    void winReplace_Pressed(int Id);
    void winGoto_Pressed(int Id);
    bool m_FindAgain();
    void m_ReplaceOne();
    void m_ReplaceAll();
    void m_Result(const std::wstring& Text);

    // ---- Status bar
    static constexpr const wchar_t* ChangedText = L"Changed";
    void m_ShowCaret();
    void m_ShowLengths();
    void m_ShowChanged(bool Changed);
    void m_NoteChange();
    void m_CompareWithDisplayed();
    void rtbSQL_Zoomed();
    // What an entry does, for the status bar. The host is not asked.
    std::wstring m_Hint(const MenuItem& Entry);
    std::wstring m_ActionHint(const MenuItem& Entry);
    std::wstring m_ActiveName();

    // ---- The list of names of Ctrl+Space (editor/frmSQLEditor_Complete.cpp)
    void m_Complete();
    void m_FollowName();
    void m_TakeName();
    bool m_NameKey(int Key, int Shift);
    PopupList::Row m_NameRow(size_t Row) const;
    void m_AddEverything();
    void m_AddTables(const Node& Schema);
    void m_AddColumns(const Node& Table);
    void m_AddOwner(const std::wstring& Name);
    std::wstring m_AddQualified(const std::wstring& Text, size_t Caret, const std::vector<std::wstring>& Qualifiers);
    void lstNames_Chosen();

    // ---- Tips (editor/frmSQLEditor_Help.cpp)
    std::wstring m_NodeTip(const Node& Node);
    std::wstring m_HelpText();
    void m_ShowHelp();

    // ---- Finding nodes (browser/frmSQLEditor_Search.cpp)
    void m_ShowNode(const Node& Node);
    void m_FindObject();
    void m_FindNode();
    void m_FindNextNode();

    // ---- Reading a branch again (browser/frmSQLEditor_Refresh.cpp)
    void m_ReadAgain();

    // ---- Object browser (browser/frmSQLEditor_Browser.cpp)
    // `Opened`: the user opens the branch; false where it is only filled.
    void trvDBObjects_Expand(const Node& Node, bool Opened = false);
    void trvDBObjects_Collapse(const Node& Node);
    void trvDBObjects_NodeClick(const Node& Node);
    void trvDBObjects_MouseDown(int Button, int Shift, float X, float Y);
    void trvDBObjects_MouseMove(int Button, int Shift, float X, float Y);
    void trvDBObjects_MouseUp(int Button, int Shift, float X, float Y);
    void trvDBObjects_ContextMenu(const POINT& At);  // by the keyboard; in pixels of the screen
    void trvDBObjects_SelChange(const Node& Node);
    // Says in the description label what the node is; kinds without a description leave it as it is.
    void m_DescribeNode(const Node& Node);
    // The "*" key, in either tree.
    void m_ExpandAll(TreeView& Tree, const Node& Node);
    void mnuViewSystem_Click();

    // ---- Reference lists (catalogue/frmSQLEditor_Lists.cpp)
    void lstAnsiSQL_Click();
    void lstKolvex_Click();
    void trvDatabaseSpecific_NodeClick(const Node& Node);
    void lstAnsiSQL_MouseDown(int Button, int Shift, float X, float Y);
    void lstAnsiSQL_MouseMove(int Button, int Shift, float X, float Y);
    void lstAnsiSQL_MouseUp(int Button, int Shift, float X, float Y);
    void lstKolvex_MouseDown(int Button, int Shift, float X, float Y);
    void lstKolvex_MouseMove(int Button, int Shift, float X, float Y);
    void lstKolvex_MouseUp(int Button, int Shift, float X, float Y);
    void trvDatabaseSpecific_MouseDown(int Button, int Shift, float X, float Y);
    void trvDatabaseSpecific_MouseMove(int Button, int Shift, float X, float Y);
    void trvDatabaseSpecific_MouseUp(int Button, int Shift, float X, float Y);
    // The context-menu key in one of the three views; `At` in screen pixels.
    void m_ReferenceContextMenu(const POINT& At);

    // ---- Statements for a node of the object browser (statements/frmSQLEditor_Builders.cpp). Lines end in CR LF,
    // several statements are joined by ";" CR LF; empty where there is nothing to build. A failure is reported and
    // gives nothing.
    std::wstring m_BuildTable(const std::wstring& Schema, const std::wstring& Table);
    std::wstring m_BuildStmtSampleRows(const std::wstring& Schema, const std::wstring& Table);
    std::wstring m_GetStmtCountRows(const Node& Node);
    std::wstring m_GetStmtDescribe(const Node& Node);
    std::wstring m_GetStmtSampleRows(const Node& Node);
    std::wstring m_GetStmtSelectTable(const Node& Node);
    // These three take the node for a table or view, whatever it is.
    std::wstring m_GetStmtInsertTable(const Node& Node);
    std::wstring m_GetStmtUpdateTable(const Node& Node);
    std::wstring m_GetStmtDeleteTable(const Node& Node);

    // ---- What is selected (statements/frmSQLEditor_ActiveItem.cpp)

    // What is selected in the active view, with statements as the tree stands now; nothing when there is no such thing.
    std::shared_ptr<const clsListItem> m_GetActiveItem();
    // Enables the entries for what is selected and names the tasks. No statement is built and the host is not asked.
    void m_EnableActionMenu();
    void m_SelectFromListBox(const ListBox& List);
    void m_SelectFromTreeView(const TreeView& Tree);

    // ---- Action menu (statements/frmSQLEditor_ActionMenu.cpp)
    void m_InsertStatement(const std::wstring& Statement);
    // Inserts the text after the editor's selection, which stays in the text, and selects what was inserted, without a
    // leading line break.
    void m_InsertSQL(const std::wstring& SQL);
    void mnuAction_Click();
    void mnuActionSelect_Click();
    void mnuActionInsert_Click();
    void mnuActionUpdate_Click();
    void mnuActionDelete_Click();
    void mnuActionExecute_Click();
    void mnuActionCreate_Click();
    void mnuActionTask_Click(short Index);

    // ---- Drag and drop (statements/frmSQLEditor_DragDrop.cpp)
    void rtbSQL_DragOver(Control& Source, float X, float Y, DragState State);
    void rtbSQL_DragDrop(Control& Source, float X, float Y);
    void rtbSQL_OLEDragDrop(const DroppedData& Data);
    // Inserts the text that another program hands over. A large one is asked for, and one that is too large refused,
    // when the other program has its answer.
    void m_InsertDropped(const DroppedData& Data, DroppedData::Format Kind);
    void m_InsertLater(const std::wstring& Text, const std::wstring& Refused);
    // Inserts the texts of files one after the other, asks before large ones, and tells which could not be inserted.
    void m_InsertFiles(const std::vector<std::wstring>& Files);
    // What a drop of this view's selection inserts; empty for kinds of node that drop nothing.
    std::wstring m_DragText(Control& Source);
    bool m_CanDrop(Control& Source);

    long connection_ = 0;  // the one that the tree and the reference are of: see modGlobal::Connection
    Colours colours_{rtbSQL};
    bool displaying_ = false;               // Constructor or a Display is under way
    bool printing_ = false;                 // what the Print command began is not over
    std::optional<std::wstring> returned_;  // the text as it was when the window was closed
    bool changedSince_ = false;             // and whether it was changed after that
    bool moving_ = false;                   // the splitter is being dragged
    short activeView_ = 0;      // 0 object browser, 1 ANSI SQL list, 2 database-specific tree, 3 host command list
    float firstSplit_ = 0;      // where the splitter stands until it is moved, twips
    long savedSplit_ = 0;       // split position, twips, from before the left pane was collapsed
    std::wstring findText_;     // what Find Next looks for
    std::wstring displayed_;    // the text that Display brought
    long displayedLength_ = 0;  // of it in the editor
    bool comparing_ = false;    // it has to be compared with the editor's
    NameList names_;            // that the open list shows
    std::vector<std::wstring> nameOwners_;  // tables of columns, schemas of tables
    std::pair<long, long> namePlace_{};     // of what the chosen name replaces
    std::wstring nameBegun_;                // that the list shows the names of
    std::wstring whyNoName_;
    std::wstring nodeText_;       // what was looked for in the object browser
    bool nameQualified_ = false;  // something and a point stand before it
    HelpTip tipHelp_;
};
