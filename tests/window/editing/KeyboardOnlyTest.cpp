#include "support/Dialogs.h"
#include "support/Folder.h"
#include "support/Steps.h"

// The user guide from its first chapter to its last, by the keyboard alone: every key is one that a keyboard sends, and
// goes where the focus is.
class KeyboardOnlyTest : public StepsFixture {
protected:
    // Characters as a keyboard without the right keys sends them.
    static Step Write(const std::wstring& text) {
        return [text] {
            for (const wchar_t c : text) {
                INPUT input{};
                input.type = INPUT_KEYBOARD;
                input.ki.wScan = c;
                input.ki.dwFlags = KEYEVENTF_UNICODE;
                SendInput(1, &input, sizeof input);
                input.ki.dwFlags |= KEYEVENTF_KEYUP;
                SendInput(1, &input, sizeof input);
            }
        };
    }
    static Step Until(const std::function<bool()>& done) {
        return [done] { return done(); };
    }
    static Step Holds(const std::wstring& text) { return Becomes(text, &EditorWindow::Text, 60); }
    static Step Opens(const wchar_t* title) {
        return [title] {
            const HWND window = FindWindowW(L"#32770", title);
            return window != nullptr && IsWindowVisible(window) && GetForegroundWindow() == window;
        };
    }
    static Step Editing() {
        return [] { return GetFocus() == EditorWindow::Editor() && FindWindowW(L"#32768", nullptr) == nullptr; };
    }
    Step Selects(const std::wstring& text) {
        return [this, text] { return Tree.Text(Tree.Selected()) == text && GetFocus() == Tree.Handle(); };
    }
    static Step MenuOpens() {
        return [] {
            const HWND menu = FindWindowW(L"#32768", nullptr);
            return menu != nullptr && IsWindowVisible(menu);
        };
    }
};

TEST_F(KeyboardOnlyTest, TheWholeGuide) {
    Type(8);
    const Folder folder;
    const std::wstring file = folder / L"saved.sql";
    const Steps begin{[] { SetForegroundWindow(EditorWindow::Find()); }, Editing(), Write(L"select x"),
                      Holds(L"select x")};
    // The object browser: from pane to pane, down to a column, which is put into the SQL.
    const Steps browse{Press(VK_F6, FSHIFT),
                       Until([this] { return GetFocus() == Tree.Handle(); }),
                       Press(VK_HOME),
                       Selects(EditorWindow::Root().empty() ? L"" : L"Schemas"),
                       Press(VK_RIGHT),
                       Press(VK_RIGHT),
                       Selects(L"HR"),
                       Press(VK_RIGHT),
                       Press(VK_RIGHT),
                       Selects(L"Tables"),
                       Press(VK_RIGHT),
                       Press(VK_RIGHT),
                       Selects(L"ORDERS"),
                       Press(VK_RIGHT),
                       Press(VK_RIGHT),
                       Selects(L"Columns"),
                       Press(VK_RIGHT),
                       Selects(L"ID"),
                       Press(VK_DOWN),
                       Selects(L"NAME"),
                       Press(VK_RETURN, FCONTROL),
                       Holds(L"select xNAME"),
                       Press(VK_F1),
                       Press(VK_F5),
                       Selects(L"NAME"),
                       Press('F', FCONTROL | FSHIFT),
                       Opens(L"Find"),
                       Write(L"odd"),
                       Press(VK_RETURN),
                       Selects(L"odd \"name\""),
                       Press(VK_F3),
                       Press('C', FCONTROL)};
    // A statement of the Action menu, and taken back.
    const Steps action{Press('F', FCONTROL | FSHIFT), Opens(L"Find"), Write(L"ORDERS"), Press(VK_RETURN),
                       Selects(L"ORDERS"),
                       // As a click on it, which reads its columns.
                       Press(VK_RETURN), Press('A', FALT), MenuOpens(), Press('D'),
                       Until([] { return EditorWindow::Text().find(L"DELETE FROM") != std::wstring::npos; }),
                       Press(VK_F6), Editing(), Press('Z', FCONTROL), Holds(L"select xNAME")};
    // The pages, each with an entry of the reference.
    const Steps pages{Press('2', FALT),
                      Until([] { return GetFocus() == View(1); }),
                      Press(VK_HOME),
                      Press(VK_F10, FSHIFT),
                      MenuOpens(),
                      Press(VK_ESCAPE),
                      Until([] { return FindWindowW(L"#32768", nullptr) == nullptr; }),
                      Press('4', FALT),
                      Until([] { return GetFocus() == View(3); }),
                      Press('3', FALT),
                      Until([] { return GetFocus() == View(2); }),
                      Press('1', FALT),
                      Until([] { return GetFocus() == View(0); }),
                      Press(VK_RIGHT, FCONTROL | FALT),
                      Press(VK_LEFT, FCONTROL | FALT),
                      Press(VK_F6),
                      Editing()};
    // Editing: lines, search, replacement, completion, an object of the text in the tree, and help.
    const Steps edit{Press('A', FCONTROL),
                     Press(VK_DELETE),
                     Holds(L""),
                     Write(L"select o."),
                     Press(VK_SPACE, FCONTROL | FSHIFT),
                     Press(VK_END),
                     Write(L"id from HR.ORDERS o"),
                     Holds(L"select o.id from HR.ORDERS o"),
                     Press(VK_F12),
                     Until([this] { return Tree.Text(Tree.Selected()) == L"ORDERS"; }),
                     Editing(),
                     Press('D', FCONTROL),
                     Holds(L"select o.id from HR.ORDERS o\r\nselect o.id from HR.ORDERS o"),
                     Press(VK_OEM_2, FCONTROL),
                     Holds(L"select o.id from HR.ORDERS o\r\n-- select o.id from HR.ORDERS o"),
                     Press(VK_UP, FALT),
                     Holds(L"-- select o.id from HR.ORDERS o\r\nselect o.id from HR.ORDERS o"),
                     Press('K', FCONTROL | FSHIFT),
                     Holds(L"select o.id from HR.ORDERS o"),
                     Press('F', FCONTROL),
                     Opens(L"Find"),
                     Write(L"from"),
                     Press(VK_RETURN),
                     Editing(),
                     Until([] { return EditorWindow::SelectedText() == L"from"; }),
                     Press(VK_F3),
                     Press('H', FCONTROL),
                     Opens(L"Replace"),
                     Press('A', FCONTROL),
                     Write(L"o.id"),
                     Press(VK_TAB),
                     Write(L"o."),
                     Press('A', FALT),
                     Holds(L"select o. from HR.ORDERS o"),
                     Press(VK_ESCAPE),
                     Editing(),
                     Press('G', FCONTROL),
                     Opens(L"Go To Line"),
                     Press(VK_ESCAPE),
                     Editing(),
                     [] { EXPECT_TRUE(SetForegroundWindow(EditorWindow::Find())); },
                     Press(VK_HOME),
                     Press(VK_RIGHT, FCONTROL),
                     Press(VK_END),
                     Press(VK_HOME)};
    const Steps complete{Write(L"x "),
                         Press(VK_HOME),
                         Press(VK_DELETE),
                         Press(VK_DELETE),
                         Holds(L"select o. from HR.ORDERS o"),
                         Press(VK_RIGHT, FCONTROL),
                         Press(VK_RIGHT),
                         Press(VK_RIGHT),
                         Press(VK_SPACE, FCONTROL),
                         Write(L"n"),
                         Press(VK_TAB),
                         Holds(L"select o.NAME from HR.ORDERS o"),
                         Press('C', FCONTROL | FSHIFT),
                         Press(VK_END, FCONTROL),
                         Press('V', FCONTROL | FSHIFT),
                         Holds(L"select o.NAME from HR.ORDERS oselect o.NAME from HR.ORDERS o"),
                         Press('Z', FCONTROL),
                         Holds(L"select o.NAME from HR.ORDERS o"),
                         Press(VK_F1)};
    // The menus, a file and the way out.
    const Steps files{Press('V', FALT),
                      MenuOpens(),
                      Press('S'),
                      Until([] { return !IsWindowVisible(EditorWindow::Child(L"msctls_statusbar32")); }),
                      Press('V', FALT),
                      MenuOpens(),
                      Press('S'),
                      Until([] { return IsWindowVisible(EditorWindow::Child(L"msctls_statusbar32")) != FALSE; }),
                      Press('S', FCONTROL),
                      Until([] {
                          const HWND window = GetForegroundWindow();
                          return window != EditorWindow::Find() && GetWindow(window, GW_OWNER) == EditorWindow::Find();
                      }),
                      Write(file),
                      Press(VK_RETURN),
                      Until([] { return EditorWindow::Caption().find(L"saved.sql") != std::wstring::npos; }),
                      Editing(),
                      Press(VK_F6),
                      Press(VK_RETURN)};
    const std::wstring returned = InSteps(L"", Joined({begin, browse, action, pages, edit, complete, files}));
    EXPECT_EQ(L"select o.NAME from HR.ORDERS o", returned);
    EXPECT_EQ("select o.NAME from HR.ORDERS o", BytesOf(file));
}
