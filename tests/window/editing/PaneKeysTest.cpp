#include <oleacc.h>

#include "editor/ControlIds.h"
#include "support/EditorTree.h"
#include "support/Steps.h"

// The keyboard goes from pane to pane and does there what dragging does. Real keys, to whatever has the focus.
class PaneKeysTest : public StepsFixture {
protected:
    static Step Focused(const std::function<HWND()>& window) {
        return [=] { return GetFocus() == window(); };
    }
    static Step Focus(const std::function<HWND()>& window) {
        return [=] {
            SetForegroundWindow(EditorWindow::Find());
            SetFocus(window());
        };
    }
    static HWND Editor() { return EditorWindow::Editor(); }
    static HWND Toolbar() { return GetDlgItem(EditorWindow::Find(), 1000); }
    static HWND Tree0() { return View(0); }
    static int LeftWidth() {
        RECT page;
        GetWindowRect(GetParent(View(0)), &page);
        return IsWindowVisible(GetParent(View(0))) ? static_cast<int>(page.right - page.left) : 0;
    }
};

TEST_F(PaneKeysTest, CtrlEnterInsertsWhatADragWouldDrop) {
    std::wstring before;
    const auto grown = [&] { return EditorWindow::Text().size() > before.size(); };
    const auto keep = [&] { before = EditorWindow::Text(); };
    const std::wstring text = InSteps(
        L"a b",
        {[&] {
             SelectText(1, 1);
             Tree.OpenDownTo({0, 0});
             Tree.Click(Tree.At({0, 0, 0}));
         },
         Focus(Tree0), Press(VK_RETURN, FCONTROL), [] { return EditorWindow::Text() == L"aORDERS b"; }, Focused(Tree0),
         [] { EXPECT_EQ(L"1-7", Selection()); },
         // After what was inserted, and a folder's names.
         [&] {
             Tree.Click(Tree.At({0, 0}));
         },
         Focus(Tree0), Press(VK_RETURN, FCONTROL),
         [] { return EditorWindow::Text() == L"aORDERSORDERS\r\nodd \"name\" b"; }, Press('Z', FCONTROL), keep,
         // One step of undo for each.
         Focus(Editor), Press('Z', FCONTROL), Press('Z', FCONTROL), [] { return EditorWindow::Text() == L"a b"; },
         // A placeholder is nothing.
         [&] {
             Tree.Open(Tree.At({1}));
             Tree.Select(Tree.At({1, 0, 0}));
         },
         Focus(Tree0), Press(VK_RETURN, FCONTROL), Press('2', FALT), Focused([] { return View(1); }), keep,
         Press(VK_RETURN, FCONTROL), grown, Focused([] { return View(1); }), Press('4', FALT),
         Focused([] { return View(3); }), keep, Press(VK_HOME), Press(VK_RETURN, FCONTROL), grown, Press('3', FALT),
         Focused([] { return View(2); }), keep,
         // A category drops nothing, an entry its syntax.
         Press(VK_HOME), Press(VK_RETURN, FCONTROL), [&] { EXPECT_EQ(before, EditorWindow::Text()); }, Press(VK_RIGHT),
         Press(VK_RIGHT), Press(VK_RETURN, FCONTROL), grown, Focused([] { return View(2); })});
    EXPECT_NE(L"a b", text);
}

TEST_F(PaneKeysTest, ShiftTabLeavesTheEditor) {
    EXPECT_EQ(L"\ta", InSteps(L"a", {Focus(Editor), [] { SelectText(0, 0); }, Press(VK_TAB),
                                     [] { return EditorWindow::Text() == L"\ta"; }, Press(VK_TAB, FSHIFT),
                                     [] { return GetFocus() != Editor(); }}));
}

TEST_F(PaneKeysTest, AltAndADigitChooseThePage) {
    EXPECT_EQ(L"a", InSteps(L"a", {Focus(Editor), Press('3', FALT), Focused([] { return View(2); }), Press('2', FALT),
                                   Focused([] { return View(1); }), Press('4', FALT), Focused([] { return View(3); }),
                                   Press('1', FALT), Focused(Tree0),
                                   // A pane that is collapsed comes back.
                                   [] {
                                       EditorWindow::Choose(L"View", L"Object Browser");
                                       EXPECT_EQ(0, LeftWidth());
                                   },
                                   Focus(Editor), Press('2', FALT), Focused([] { return View(1); }),
                                   [] { return LeftWidth() > 0; }}));
}

TEST_F(PaneKeysTest, F6GoesFromPaneToPane) {
    InSteps(L"a", {Focus(Editor), Press(VK_F6), Focused(Toolbar), Press(VK_F6), Focused(Tree0), Press(VK_F6),
                   Focused(Editor), Press(VK_F6, FSHIFT), Focused(Tree0), Press(VK_F6, FSHIFT), Focused(Toolbar),
                   Press(VK_F6, FSHIFT), Focused(Editor),
                   // From one of its buttons to the SQL.
                   Focus([] { return GetDlgItem(EditorWindow::Find(), 1011); }), Press(VK_F6), Focused(Editor),
                   [] { EditorWindow::Choose(L"View", L"Object Browser"); }, Focus(Toolbar), Press(VK_F6),
                   Focused(Editor), Press(VK_F6), Focused(Toolbar)});
}

TEST_F(PaneKeysTest, TheSplitterMovesByKeys) {
    int width = 0;
    InSteps(L"a", {Focus(Editor),
                   [&] {
                       SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 900, 500, SWP_NOMOVE | SWP_NOZORDER);
                       width = LeftWidth();
                   },
                   Press(VK_RIGHT, FCONTROL | FALT), [&] { return LeftWidth() == width + 10; },
                   Press(VK_LEFT, FCONTROL | FALT), [&] { return LeftWidth() == width; },
                   [] {
                       // As far as dragging goes: 1500 twips.
                       for (int times = 0; times < 10; ++times) Key(VK_LEFT, FCONTROL | FALT);
                   },
                   [] { return LeftWidth() == 100; }, [] { return LeftWidth() == 100; },
                   Press(VK_RIGHT, FCONTROL | FALT), [] { return LeftWidth() == 110; }, Focused(Editor),
                   [] {
                       EditorWindow::Choose(L"View", L"Object Browser");
                       return LeftWidth() == 0;
                   },
                   Press(VK_LEFT, FCONTROL | FALT), [] { return LeftWidth() == 0; }, Press(VK_RIGHT, FCONTROL | FALT),
                   [] { return LeftWidth() == 110; },
                   // The caret has not moved.
                   [] { return Selection() == L"0-0"; }});
}

TEST_F(PaneKeysTest, TheCollapseButtonIsPressedByTheKeyboard) {
    const auto hide = [] { return GetDlgItem(EditorWindow::Find(), IdHide); };
    const auto unhide = [] { return GetDlgItem(EditorWindow::Find(), IdUnhide); };
    for (const WORD key : {VK_SPACE, VK_RETURN}) {
        int width = 0;
        EXPECT_EQ(
            L"a",
            InSteps(L"a", {Focus(Tree0), Press(VK_TAB), Press(VK_TAB), Press(VK_TAB), Press(VK_TAB), Focused(hide),
                           [&] {
                               RECT button;
                               GetWindowRect(hide(), &button);
                               const UINT dpi = GetDpiForWindow(hide());
                               EXPECT_GE(button.right - button.left, MulDiv(24, static_cast<int>(dpi), 96));
                               EXPECT_GE(button.bottom - button.top, MulDiv(24, static_cast<int>(dpi), 96));
                               width = LeftWidth();
                           },
                           // The other one takes its place, so that the key undoes what it did.
                           Press(key), Focused(unhide), [] { return LeftWidth() == 0; }, Press(key), Focused(hide),
                           [&] { return LeftWidth() == width; }, Press(VK_TAB), Focused(Editor)}));
    }
}

TEST_F(PaneKeysTest, ThePressOfAnotherProgramCollapsesTooAndTheMouseLeavesTheFocus) {
    InSteps(L"a", {Focus(Editor), [] {
                       const HWND hide = GetDlgItem(EditorWindow::Find(), IdHide);
                       // What a screen reader takes it for, and does.
                       EXPECT_EQ(65536 + 2, SendMessageW(hide, WM_GETOBJECT, 0, OBJID_QUERYCLASSNAMEIDX));
                       EXPECT_NE(0, SendMessageW(hide, WM_GETDLGCODE, 0, 0) & DLGC_BUTTON);
                       SendMessageW(hide, BM_CLICK, 0, 0);
                       EXPECT_EQ(0, LeftWidth());
                       const HWND unhide = GetDlgItem(EditorWindow::Find(), IdUnhide);
                       SendMessageW(unhide, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 3));
                       SendMessageW(unhide, WM_LBUTTONUP, 0, MAKELPARAM(1, 3));
                       EXPECT_LT(0, LeftWidth());
                       EXPECT_EQ(Editor(), GetFocus());
                   }});
}

TEST_F(PaneKeysTest, TheFocusLeavesAPaneThatIsHidden) {
    InSteps(L"a", {Focus(Tree0),
                   [] {
                       EditorWindow::Choose(L"View", L"Object Browser");
                       EXPECT_EQ(0, LeftWidth());
                   },
                   Focused(Editor)});
}
