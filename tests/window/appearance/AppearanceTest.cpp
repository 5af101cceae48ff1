#include "Appearance.h"

#include <richedit.h>
#include <uxtheme.h>

#include <cstdlib>
#include <set>

namespace {

class AppearanceTest : public AppearanceFixture {
protected:
    // The screen that the caller has set up; -1: any.
    static int Expected(const char* name) {
        const char* value = std::getenv(name);
        return value != nullptr ? std::atoi(value) : -1;
    }
    // Whether one of the tips of this thread belongs to the window, once the mouse has come over it.
    static bool HasTip(HWND window) {
        SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
        struct Search {
            HWND Window;
            bool Found;
        } search{window, false};
        EnumThreadWindows(
            GetCurrentThreadId(),
            [](HWND tip, LPARAM parameter) WINAPI -> BOOL {
                auto& wanted = *reinterpret_cast<Search*>(parameter);
                wchar_t name[40];
                GetClassNameW(tip, name, 40);
                if (lstrcmpiW(name, TOOLTIPS_CLASSW) != 0) return TRUE;
                for (WPARAM at = 0; at < static_cast<WPARAM>(SendMessageW(tip, TTM_GETTOOLCOUNT, 0, 0)); ++at) {
                    wchar_t text[4000];
                    TTTOOLINFOW tool{};
                    tool.cbSize = TTTOOLINFOW_V1_SIZE;
                    tool.lpszText = text;
                    SendMessageW(tip, TTM_ENUMTOOLSW, at, reinterpret_cast<LPARAM>(&tool));
                    if (tool.uId == reinterpret_cast<UINT_PTR>(wanted.Window)) wanted.Found = true;
                }
                return !wanted.Found;
            },
            reinterpret_cast<LPARAM>(&search));
        return search.Found;
    }
    static int Row(int index) {
        const bool tree = index == 0 || index == 2;
        return static_cast<int>(SendMessageW(View(index), tree ? TVM_GETITEMHEIGHT : LB_GETITEMHEIGHT, 0, 0));
    }
    // How far the second line of the text stands below the first.
    static int EditorLine() {
        POINTL first{}, second{};
        const LRESULT start = SendMessageW(EditorWindow::Editor(), EM_LINEINDEX, 1, 0);
        SendMessageW(EditorWindow::Editor(), EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&first), 0);
        SendMessageW(EditorWindow::Editor(), EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&second), start);
        return static_cast<int>(second.y - first.y);
    }
    // All windows in it, one a line.
    static std::wstring Places() {
        std::wstring places;
        EnumChildWindows(
            EditorWindow::Find(),
            [](HWND child, LPARAM parameter) WINAPI -> BOOL {
                const RECT place = Place(child);
                auto& places = *reinterpret_cast<std::wstring*>(parameter);
                places += std::to_wstring(GetDlgCtrlID(child)) + L":";
                for (const LONG edge : {place.left, place.top, place.right, place.bottom})
                    places += L" " + std::to_wstring(edge);
                places += L"\n";
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&places));
        return places;
    }
};

}  // namespace

void AppearanceFixture::ExpectThatCaptionsFit() {
    for (int index = 0; index < 4; ++index) {
        const HWND tab = Tab(index);
        const Context context(tab);
        // A pixel or two of frame on each side.
        EXPECT_LE(context.Width(Caption(tab)) + 4, WidthOf(tab)) << "button " << index;
        EXPECT_LE(context.Height() + 2, HeightOf(tab)) << "button " << index;
        if (index > 0) {
            EXPECT_GE(Place(tab).top, Place(Tab(index - 1)).bottom);
        }
    }
    EXPECT_LE(Place(Tab(3)).bottom, Place(Description()).top);
    EXPECT_LE(Place(Description()).bottom, Place(Control(IdHide)).top);  // the collapse button
    EXPECT_GE(HeightOf(Description()), Context(Description()).Height());
}

void AppearanceFixture::ExpectThatRowsFit() {
    for (const int index : {1, 3}) {
        EXPECT_GE(SendMessageW(View(index), LB_GETITEMHEIGHT, 0, 0), Context(View(index)).Height());
    }
    for (const int index : {0, 2}) {
        EXPECT_GE(SendMessageW(View(index), TVM_GETITEMHEIGHT, 0, 0), Context(View(index)).Height());
    }
    // The active page shows some of them.
    const Context context(View(0));
    EXPECT_GE(HeightOf(View(0)), 2 * context.Height());
}

void AppearanceFixture::ExpectThatTheToolbarFits() {
    RECT button{};
    ASSERT_TRUE(SendMessageW(Toolbar(), TB_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&button)));
    const Context context(Toolbar());
    int imageWidth = 0, imageHeight = 0;
    const auto images = reinterpret_cast<HIMAGELIST>(SendMessageW(Toolbar(), TB_GETIMAGELIST, 0, 0));
    ASSERT_TRUE(ImageList_GetIconSize(images, &imageWidth, &imageHeight));
    EXPECT_EQ(imageWidth, imageHeight);
    // One of the sizes that it is drawn in, about as high as the text beside it.
    EXPECT_TRUE(std::set<int>({16, 20, 24, 32, 48}).contains(imageHeight)) << imageHeight;
    EXPECT_GE(imageHeight, Pixels(240) * 3 / 4);
    EXPECT_GE(imageHeight, context.Height() * 2 / 3);
    EXPECT_LE(imageHeight, context.Height() * 3 / 2);
    EXPECT_GE(button.right - button.left, imageWidth + context.Width(L"Return SQL to Kolvex"));
    EXPECT_GE(button.bottom - button.top, std::max(imageHeight, context.Height()));
    RECT client;
    GetClientRect(Toolbar(), &client);
    EXPECT_GE(client.right, button.right);
    EXPECT_GE(client.bottom, button.bottom);
    EXPECT_EQ(Place(Toolbar()).bottom, Place(Page(0)).top - (Place(Tab(0)).bottom - Place(Toolbar()).bottom) -
                                           (Place(Page(0)).top - Place(Tab(0)).bottom));
    EXPECT_NEAR(Place(Toolbar()).bottom, Place(Control(IdRight)).top, 1);  // the right pane
}

void AppearanceFixture::ExpectThatTheStatusBarFits() {
    const Context context(StatusBar());
    const auto parts = static_cast<int>(SendMessageW(StatusBar(), SB_GETPARTS, 0, 0));
    ASSERT_LE(3, parts);
    RECT client;
    GetClientRect(StatusBar(), &client);
    for (int part = 0; part < parts; ++part) {
        RECT area{};
        SendMessageW(StatusBar(), SB_GETRECT, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(&area));
        const int edge = 3;  // between the border and the text
        EXPECT_LE(context.Width(EditorWindow::Status(part + 1)) + edge, area.right - area.left) << "part " << part;
        EXPECT_LE(context.Height(), area.bottom - area.top) << "part " << part;
        EXPECT_LE(area.right, client.right);
    }
    EXPECT_NEAR(Place(StatusBar()).top, Place(Control(IdRight)).bottom, 1);
}

TEST_F(AppearanceTest, TheScreenIsWhatTheCallerSays) {
    if (Expected("BRV_EXPECTED_DPI") > 0) {
        // With a window on it: Wine 10 says 96 before.
        Inside([] { EXPECT_EQ(Expected("BRV_EXPECTED_DPI"), ScreenDpi()); });
    }
    if (Expected("BRV_EXPECTED_THEME") >= 0) {
        EXPECT_EQ(Expected("BRV_EXPECTED_THEME") != 0, IsThemeActive() != FALSE);
    }
    if (Expected("BRV_EXPECTED_FONT") > 0) {
        NONCLIENTMETRICSW metrics{};
        metrics.cbSize = sizeof metrics;
        SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
        EXPECT_EQ(-Expected("BRV_EXPECTED_FONT"), metrics.lfMessageFont.lfHeight);
        Inside([&] {
            LOGFONTW font{};
            GetObjectW(reinterpret_cast<HGDIOBJ>(SendMessageW(Tab(0), WM_GETFONT, 0, 0)), sizeof font, &font);
            EXPECT_EQ(metrics.lfMessageFont.lfHeight, font.lfHeight);
        });
    }
}

// Also where the host knows nothing of them (BRV_UNAWARE=1).
TEST_F(AppearanceTest, TheWindowKnowsTheDotsOfItsScreen) {
    const int expected = Expected("BRV_EXPECTED_DPI");
    Inside([&] { EXPECT_EQ(expected > 0 ? expected : 96, static_cast<int>(GetDpiForWindow(EditorWindow::Find()))); });
}

TEST_F(AppearanceTest, AllFitsWhenTheWindowOpensForTheFirstTime) {
    Inside([] {
        EXPECT_NEAR(Pixels(6500), WidthOf(EditorWindow::Find()), 1);
        ExpectThatAllFits();
    });
}

TEST_F(AppearanceTest, AllFitsInAWideWindow) {
    Inside([] {
        Resize(12000, 9000);
        ExpectThatAllFits();
        // The status bar goes with its texts: far down in a long one.
        std::wstring text;
        for (int line = 0; line < 1200; ++line) text += L"select 1\r\n";
        EditorWindow::SetText(text + std::wstring(300, L'x'));
        SelectText(-1, -1);
        const auto end = static_cast<LONG>(text.size() - 1200 + 300);
        SelectText(end, end);
        EXPECT_EQ(L"Ln 1201, Col 301", EditorWindow::Status(2));
        ExpectThatTheStatusBarFits();
    });
}

TEST_F(AppearanceTest, ALongDescriptionIsReadWholeOrInItsTip) {
    Inside([] {
        SendMessageW(Tab(3), BM_CLICK, 0, 0);
        int whole = 0, byTip = 0;
        for (WPARAM row = 0; row < static_cast<WPARAM>(SendMessageW(View(3), LB_GETCOUNT, 0, 0)); ++row) {
            SendMessageW(View(3), LB_SETCURSEL, row, 0);
            SendMessageW(Page(3), WM_COMMAND, MAKEWPARAM(IdView + 3, LBN_SELCHANGE), reinterpret_cast<LPARAM>(View(3)));
            wchar_t text[4000];
            const int length = GetWindowTextW(Description(), text, 4000);
            ASSERT_GT(length, 0);
            RECT client;
            GetClientRect(Description(), &client);
            RECT needed{0, 0, client.right, 0};
            const HDC context = GetDC(Description());
            const HGDIOBJ before =
                SelectObject(context, reinterpret_cast<HGDIOBJ>(SendMessageW(Description(), WM_GETFONT, 0, 0)));
            DrawTextW(context, text, length, &needed, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
            SelectObject(context, before);
            ReleaseDC(Description(), context);
            const bool fits = needed.bottom <= client.bottom;
            EXPECT_EQ(!fits, HasTip(Description())) << text << " " << needed.bottom << " of " << client.bottom;
            ++(fits ? whole : byTip);
        }
        EXPECT_GT(whole + byTip, 5);
    });
}

TEST_F(AppearanceTest, ACaptionThatANarrowPaneCutsOffHasATip) {
    Inside([] {
        EXPECT_FALSE(HasTip(Tab(2)));
        // The narrowest pane, and the text twice the size.
        const HWND grip = Control(IdSplitter);
        SendMessageW(grip, WM_LBUTTONDOWN, MK_LBUTTON, 0);
        SendMessageW(grip, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(static_cast<WORD>(-2000), 5));
        SendMessageW(grip, WM_LBUTTONUP, 0, 0);
        EXPECT_NEAR(Pixels(1500), WidthOf(Tab(2)), 2);
        const LargeFonts large(2);
        EXPECT_GT(Context(Tab(2)).Width(Caption(Tab(2))), WidthOf(Tab(2)));
        EXPECT_TRUE(HasTip(Tab(2)));
        EXPECT_FALSE(HasTip(Tab(3)));
    });
}

TEST_F(AppearanceTest, AConnectionThatIsCutOffHasATip) {
    Database.Members[L"DBTypeName"] = [](const Arguments&) { return Variant(std::wstring(40, L'M')); };
    Inside([] {
        EXPECT_TRUE(HasTip(StatusBar()));
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 2 * Context(StatusBar()).Width(std::wstring(40, L'M')),
                     Pixels(6500), SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_FALSE(HasTip(StatusBar()));
    });
}

TEST_F(AppearanceTest, OtherFontsAreFollowedAndTakenBack) {
    Inside(L"select 1\r\nfrom a", [] {
        const std::wstring before = Places();
        const int height = Context(Tab(0)).Height();
        const int row = Row(0);
        const int line = EditorLine();
        const auto image = [] {
            int across = 0, down = 0;
            const auto images = reinterpret_cast<HIMAGELIST>(SendMessageW(Toolbar(), TB_GETIMAGELIST, 0, 0));
            EXPECT_TRUE(ImageList_GetIconSize(images, &across, &down));
            return down;
        };
        const int imageBefore = image();
        {
            const LargeFonts large(2);
            EXPECT_NEAR(2 * height, Context(Tab(0)).Height(), 3);
            EXPECT_GT(image(), imageBefore);  // the icons come in steps
            EXPECT_GT(Row(0), row + height / 2);
            EXPECT_NEAR(2 * height, Context(View(1)).Height(), 3);
            // The editor has another font than the labels. It grows with theirs.
            EXPECT_GT(EditorLine(), line * 3 / 2);
            ExpectThatAllFits();
            Resize(9000, 9000);
            ExpectThatAllFits();
            Resize(6500, 6500);
        }
        EXPECT_EQ(height, Context(Tab(0)).Height());
        EXPECT_EQ(imageBefore, image());
        EXPECT_EQ(line, EditorLine());
        EXPECT_EQ(before, Places());
    });
}

// A long text is replaced by making the control again.
TEST_F(AppearanceTest, AFreshEditorKeepsItsZoom) {
    const Object editor = Connected();
    HWND first = nullptr;
    int line = 0;
    DisplayAndClose(editor, L"a\r\n" + std::wstring(40000, L'x'), [&] {
        first = EditorWindow::Editor();
        SendMessageW(first, EM_SETZOOM, 3, 1);  // as the wheel does with the Ctrl key
        line = EditorLine();
    });
    DisplayAndClose(editor, L"b\r\nc", [&] {
        EXPECT_NE(first, EditorWindow::Editor());
        EXPECT_EQ(line, EditorLine());
    });
    EXPECT_GT(line, Pixels(600));
}

TEST_F(AppearanceTest, TheWindowGoesWhereAScreenOfOtherDotsWantsIt) {
    Inside([] {
        const HWND window = EditorWindow::Find();
        RECT wanted{40, 50, 40 + Pixels(9000), 50 + Pixels(8000)};
        // Wine says one number for every screen: the fonts stay as they are.
        SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(&wanted));
        const RECT place = Place(window);
        EXPECT_EQ(wanted.right - wanted.left, place.right - place.left);
        EXPECT_EQ(wanted.bottom - wanted.top, place.bottom - place.top);
        ExpectThatAllFits();
    });
}

TEST_F(AppearanceTest, TheTextsOfABoxFit) {
    static int texts;
    texts = 0;
    Inside([] {
        SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
            const HWND box = FindWindowW(L"#32770", L"Find");
            if (box == nullptr || !IsWindowVisible(box)) return;
            KillTimer(nullptr, id);
            for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
                const std::wstring text = Caption(child);
                if (text.empty()) continue;
                ++texts;
                const Context context(child);
                EXPECT_LE(context.Width(text), WidthOf(child));
                EXPECT_LE(context.Height(), HeightOf(child));
            }
            // As large as the rest of the window's text, to the rounding of points.
            EXPECT_NEAR(Context(Tab(0)).Height(), Context(GetDlgItem(box, IDOK)).Height(), 2);
            SendMessageW(box, WM_COMMAND, IDCANCEL, 0);
        });
        Choose(L"Find...");
    });
    EXPECT_EQ(3, texts);  // the question and two buttons
}
