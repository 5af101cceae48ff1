#include <windows.h>
#include <commctrl.h>

#include "editor/ControlIds.h"
#include "support/Component.h"
#include "support/EditorTree.h"

namespace {

class WindowTest : public ComponentFixture {
protected:
    static std::vector<std::wstring> Classes() {
        std::vector<std::wstring> classes;
        EnumChildWindows(
            EditorWindow::Find(),
            [](HWND window, LPARAM list) WINAPI -> BOOL {
                wchar_t name[100]{};
                GetClassNameW(window, name, 100);
                reinterpret_cast<std::vector<std::wstring>*>(list)->push_back(name);
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&classes));
        return classes;
    }
    static long CountOf(const std::vector<std::wstring>& classes, const wchar_t* name) {
        long count = 0;
        for (const std::wstring& one : classes) count += lstrcmpiW(one.c_str(), name) == 0;
        return count;
    }
};

}  // namespace

TEST_F(WindowTest, IsMadeOfThePlatformsOwnControls) {
    Inside([] {
        const auto classes = Classes();
        EXPECT_EQ(2, CountOf(classes, L"SysTreeView32"));
        EXPECT_EQ(2, CountOf(classes, L"ListBox"));
        EXPECT_EQ(4, CountOf(classes, L"Button"));
        EXPECT_EQ(1, CountOf(classes, L"Static"));
        EXPECT_EQ(1, CountOf(classes, TOOLBARCLASSNAMEW));
        EXPECT_EQ(1, CountOf(classes, STATUSCLASSNAMEW));
        EXPECT_EQ(1, CountOf(classes, L"RICHEDIT50W"));
        EXPECT_TRUE(IsWindowUnicode(EditorWindow::Editor()));
        const wchar_t* const captions[] = {L"Database Objects", L"ANSI SQL", L"Database Specific", L"Kolvex"};
        for (int index = 0; index < 4; ++index) {
            wchar_t text[100]{};
            GetWindowTextW(EditorWindow::Control(IdLeftButton + index), text, 100);
            EXPECT_STREQ(captions[index], text);
        }
    });
}

TEST_F(WindowTest, TheToolbarHasOneButtonThatSaysWhatItDoes) {
    Inside([] {
        const HWND bar = EditorWindow::Child(TOOLBARCLASSNAMEW);
        EXPECT_EQ(1, SendMessageW(bar, TB_BUTTONCOUNT, 0, 0));
        TBBUTTON button{};
        SendMessageW(bar, TB_GETBUTTON, 0, reinterpret_cast<LPARAM>(&button));
        wchar_t text[100]{};
        SendMessageW(bar, TB_GETBUTTONTEXTW, static_cast<WPARAM>(button.idCommand), reinterpret_cast<LPARAM>(text));
        EXPECT_STREQ(L"Return SQL to Kolvex", text);
        const auto tips = reinterpret_cast<HWND>(SendMessageW(bar, TB_GETTOOLTIPS, 0, 0));
        ASSERT_NE(nullptr, tips);
        EXPECT_EQ(nullptr, GetWindow(tips, GW_OWNER));
        wchar_t tip[200]{};
        TTTOOLINFOW tool{};
        tool.cbSize = TTTOOLINFOW_V2_SIZE;
        tool.hwnd = bar;
        tool.uId = static_cast<UINT_PTR>(button.idCommand);
        tool.lpszText = tip;
        SendMessageW(tips, TTM_GETTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
        EXPECT_STREQ(L"Close the editor and return the SQL to Kolvex", tip);
    });
}

namespace {

// What the tip of a control says; "<none>" while it has none.
std::wstring TipOf(HWND control) {
    struct Search {
        HWND Control;
        std::wstring Text;
    } search{control, L"<none>"};
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM parameter) WINAPI -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(parameter);
            wchar_t name[50]{};
            GetClassNameW(window, name, 50);
            if (lstrcmpiW(name, TOOLTIPS_CLASSW) != 0) return TRUE;
            wchar_t text[1000]{};
            TTTOOLINFOW tool{};
            tool.cbSize = TTTOOLINFOW_V2_SIZE;
            tool.hwnd = wanted.Control;
            tool.uId = reinterpret_cast<UINT_PTR>(wanted.Control);
            tool.lpszText = text;
            SendMessageW(window, TTM_GETTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
            if (text[0] != L'\0') wanted.Text = text;
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.Text;
}

}  // namespace

TEST_F(WindowTest, ADescriptionThatDoesNotFitIsShownWholeWhenTheMouseComes) {
    Inside([] {
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 10, 10, SWP_NOMOVE | SWP_NOZORDER);
        ShowPage(3);
        const HWND label = EditorWindow::Control(IdDescription);
        const auto choose = [](WPARAM row) {
            const HWND list = View(3);
            SendMessageW(list, LB_SETCURSEL, row, 0);
            SendMessageW(GetParent(list), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), LBN_SELCHANGE),
                         reinterpret_cast<LPARAM>(list));
        };
        choose(1);
        const std::wstring first = Description();
        ASSERT_LT(60U, first.size());
        EXPECT_EQ(L"<none>", TipOf(label));
        SendMessageW(label, WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
        EXPECT_EQ(first, TipOf(label));
        // From then on it follows the text, and goes when there is room for it.
        choose(4);
        EXPECT_NE(first, Description());
        EXPECT_EQ(Description(), TipOf(label));
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 900, 900, SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_EQ(L"<none>", TipOf(label));
    });
}

TEST_F(WindowTest, AHintThatDoesNotFitIsShownWholeWhenTheMouseComes) {
    Inside([] {
        const HWND window = EditorWindow::Find();
        const HWND bar = EditorWindow::Child(L"msctls_statusbar32");
        const HMENU view = GetSubMenu(GetMenu(window), 3);
        const auto highlight = [&] {
            SendMessageW(window, WM_MENUSELECT, MAKEWPARAM(GetMenuItemID(view, 2), MF_HILITE),
                         reinterpret_cast<LPARAM>(view));
            SendMessageW(bar, WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
            return TipOf(bar);
        };
        SetWindowPos(window, nullptr, 0, 0, 10, 10, SWP_NOMOVE | SWP_NOZORDER);
        const std::wstring hint = highlight();
        EXPECT_EQ(0U, hint.find(L"Lists the system's tables and views too")) << testing::PrintToString(hint);
        SetWindowPos(window, nullptr, 0, 0, 900, 500, SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_EQ(L"<none>", highlight());
        SendMessageW(window, WM_MENUSELECT, MAKEWPARAM(0, 0xFFFF), 0);
    });
}

TEST_F(WindowTest, ThePanelsHaveTips) {
    Inside(std::wstring(40000, L'x'), [] {
        const HWND bar = EditorWindow::Child(L"msctls_statusbar32");
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 1200, 500, SWP_NOMOVE | SWP_NOZORDER);
        const auto tips = [&] {
            std::wstring all;
            for (WPARAM panel = 0; panel < 6; ++panel) {
                RECT place{};
                SendMessageW(bar, SB_GETRECT, panel, reinterpret_cast<LPARAM>(&place));
                // The last pixel of a panel is its own.
                SendMessageW(bar, WM_MOUSEMOVE, 0, MAKELPARAM(panel == 5 ? place.left + 3 : place.right - 1, 3));
                all += TipOf(bar) + L"|";
            }
            return all;
        };
        const std::wstring none = L"<none>|<none>|<none>|";
        const std::wstring length = L"The SQL has 40000 characters. A cell of the sheet holds 32767.|";
        const std::wstring zoom = L"Ctrl+Plus, Ctrl+Minus, Ctrl+0|";
        EXPECT_EQ(none + length + L"<none>|" + zoom, tips());
        EditorWindow::Select(0, 10000);
        SendMessageW(EditorWindow::Editor(), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(L""));
        EXPECT_EQ(
            none + L"<none>|The SQL is not as the sheet gave it. Ctrl+Shift+R in the SQL brings that back.|" + zoom,
            tips());
    });
}

TEST_F(WindowTest, TheRootFollowsTheConnection) {
    Database.Members[L"SchemaTerm"] = [](const Arguments&) { return Variant(L"Catalog"); };
    Inside([] {
        EXPECT_EQ(L"Catalogs", EditorWindow::Root());
        const HWND tree = View(0);
        EXPECT_EQ(2, SendMessageW(tree, TVM_GETCOUNT, 0, 0));  // the root and its placeholder
    });
}

TEST_F(WindowTest, TheHostsWindowsAreDisabledMeanwhile) {
    const HWND host = CreateWindowExW(0, L"Static", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 99, 99, nullptr,
                                      nullptr, nullptr, nullptr);
    Inside([&] { EXPECT_FALSE(IsWindowEnabled(host)); });
    EXPECT_TRUE(IsWindowEnabled(host));
    DestroyWindow(host);
}

TEST_F(WindowTest, TheStatusBarTellsWhereTheCaretIs) {
    Inside([] {
        EXPECT_EQ(L"Ln 1, Col 1", EditorWindow::Status(2));
        EditorWindow::SetText(L"select 1\r\nfrom");
        EXPECT_EQ(L"Ln 2, Col 5", EditorWindow::Status(2));
    });
}

TEST_F(WindowTest, TheKeyboardGoesRoundTheWindow) {
    Inside([] {
        EXPECT_EQ(EditorWindow::Editor(), GetFocus());
        // In the editor the Tab key types a tab.
        SendMessageW(GetFocus(), WM_CHAR, VK_TAB, 1);
        EXPECT_EQ(EditorWindow::Editor(), GetFocus());
        EXPECT_EQ(L"\tselect 1", EditorWindow::Text());
    });
}

TEST_F(WindowTest, FunctionKeyAndTabMoveTheFocus) {
    const Object editor = Connected();
    std::wstring sql = L"x";
    std::vector<HWND> visited;
    HWND tabbed = nullptr;
    // Keys are posted, so that they come through the window's own loop.
    static std::vector<HWND>* trail;
    static HWND* second;
    static int steps;
    trail = &visited;
    second = &tabbed;
    steps = 0;
    const WhenShown shown([] {
        SetTimer(nullptr, 0, 60, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
            trail->push_back(GetFocus());
            if (++steps <= 8) {
                PostMessageW(GetFocus(), WM_KEYDOWN, VK_F6, 1);
            } else if (steps == 9) {
                SetFocus(EditorWindow::Control(IdLeftButton));
                PostMessageW(GetFocus(), WM_KEYDOWN, VK_TAB, 1);
            } else {
                *second = GetFocus();
                KillTimer(nullptr, id);
                EditorWindow::Close();
            }
        });
    });
    editor.Call(L"Display", ByRef(sql));
    // Toolbar, the active view and the editor: three panes, and round again.
    for (const size_t at : {3U, 6U}) EXPECT_EQ(visited[0], visited[at]);
    for (const size_t at : {1U, 2U, 4U, 5U, 7U, 8U}) EXPECT_NE(visited[0], visited[at]);
    EXPECT_NE(visited[1], visited[2]);
    EXPECT_NE(nullptr, tabbed);
}
