#include "editor/ControlIds.h"
#include "support/Component.h"
#include "support/Menus.h"

namespace {

class MenusTest : public ComponentFixture {
protected:
    static std::wstring Texts(HMENU menu) {
        std::wstring texts;
        for (int at = 0; at < GetMenuItemCount(menu); ++at) {
            const std::wstring caption = CaptionOf(menu, at);
            if (!caption.empty()) texts += caption + L"|";
        }
        return texts;
    }
    static HMENU Menu(int position) {
        const HMENU menu = GetSubMenu(GetMenu(EditorWindow::Find()), position);
        SendMessageW(EditorWindow::Find(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), position);
        return menu;
    }
    static bool Checked(HMENU menu, int position) {
        return (GetMenuState(menu, static_cast<UINT>(position), MF_BYPOSITION) & MF_CHECKED) != 0;
    }
};

}  // namespace

TEST_F(MenusTest, HaveTheirEntriesInOrder) {
    Inside([] {
        EXPECT_EQ(L"&File|&Edit|&Action|&View|", Texts(GetMenu(EditorWindow::Find())));
        EXPECT_EQ(L"&New|&Open...|&Save|Save &As...|&Print...|&Close|", Texts(Menu(0)));
        EXPECT_EQ(
            L"Cu&t|&Copy|&Paste|&Delete|Make &Lower Case|Make &Upper Case|&Find...|Find &Next|&Replace...|&Goto...|"
            L"Select &All|Time/&Date|",
            Texts(Menu(1)));
        EXPECT_EQ(L"&Select|&Insert|&Update|&Delete|&Execute|&Create|&Tasks|", Texts(Menu(2)));
        EXPECT_EQ(L"undefined|undefined|undefined|", Texts(GetSubMenu(Menu(2), 6)));
        EXPECT_EQ(L"&StatusBar|&Object Browser|System Tables&Views|", Texts(Menu(3)));
    });
}

TEST_F(MenusTest, NothingCanBeDoneWhereNothingIsSelected) {
    Inside([] {
        const HMENU action = Menu(2);
        for (UINT at = 0; at < 7; ++at) {
            EXPECT_TRUE(GetMenuState(action, at, MF_BYPOSITION) & (MF_GRAYED | MF_DISABLED)) << at;
        }
    });
}

TEST_F(MenusTest, TheViewMenuShowsWhatIsShown) {
    Inside([] {
        EXPECT_TRUE(Checked(Menu(3), 0));
        EXPECT_TRUE(Checked(Menu(3), 1));
        EXPECT_FALSE(Checked(Menu(3), 2));
        EditorWindow::Choose(L"View", L"StatusBar");
        EditorWindow::Choose(L"View", L"Object Browser");
        EXPECT_FALSE(Checked(Menu(3), 0));
        EXPECT_FALSE(Checked(Menu(3), 1));
        EditorWindow::Choose(L"View", L"Object Browser");
        EXPECT_TRUE(Checked(Menu(3), 1));
        // By the small button too.
        const HWND button = EditorWindow::Control(IdHide);
        SendMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
        SendMessageW(button, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
        EXPECT_FALSE(Checked(Menu(3), 1));
    });
}
