#include <windows.h>
#include <commctrl.h>

#include "support/Component.h"
#include "support/Screen.h"

namespace {

// All places in twips, relative to the client area, of the window that is shown.
struct Place {
    float Left, Top, Width, Height;
    float Right() const { return Left + Width; }
    float Bottom() const { return Top + Height; }
};

class LayoutTest : public ComponentFixture, public WindowParts {
protected:
    static float Twips(int pixels) { return static_cast<float>(pixels) * 1440.0F / static_cast<float>(ScreenDpi()); }
    static int Pixels(float twips) {
        return static_cast<int>(twips * static_cast<float>(ScreenDpi()) / 1440.0F + 0.5F);
    }
    static constexpr float Pixel = 16;  // a little more than one at 96 dots per inch
    static Place Of(HWND window) {
        RECT bounds;
        GetWindowRect(window, &bounds);
        MapWindowPoints(nullptr, EditorWindow::Find(), reinterpret_cast<POINT*>(&bounds), 2);
        return {Twips(bounds.left), Twips(bounds.top), Twips(bounds.right - bounds.left),
                Twips(bounds.bottom - bounds.top)};
    }
    static HWND Grip() { return Control(IdSplitter); }
    static HWND Bar() { return Control(IdSplitterBar); }
    static float InnerWidth() {
        RECT client;
        GetClientRect(EditorWindow::Find(), &client);
        return Twips(client.right);
    }
    static void Resize(float width, float height) {
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, Pixels(width), Pixels(height), SWP_NOMOVE | SWP_NOZORDER);
    }
    // Drags the splitter so that the mouse is `distance` twips from where it took the grip; `middle` runs before it
    // lets go.
    static void Drag(float distance, const std::function<void()>& middle = {}) {
        const HWND grip = Grip();
        SendMessageW(grip, WM_LBUTTONDOWN, MK_LBUTTON, 0);
        SendMessageW(grip, WM_MOUSEMOVE, MK_LBUTTON,
                     MAKELPARAM(static_cast<WORD>(static_cast<short>(Pixels(distance + 100000) - Pixels(100000))), 5));
        if (middle) middle();
        SendMessageW(grip, WM_LBUTTONUP, 0, 0);
    }
};

}  // namespace

TEST_F(LayoutTest, ThePanesStandSideBySide) {
    Inside([] {
        Resize(12000, 9000);
        const Place tab = Of(Tab(0));
        const Place editor = Of(EditorWindow::Editor());
        EXPECT_NEAR(50, tab.Left, Pixel);
        EXPECT_NEAR(tab.Right() + 40, editor.Left, 2 * Pixel);
        EXPECT_NEAR(InnerWidth() - tab.Width - 140, editor.Width, 2 * Pixel);
        const Place toolbar = Of(EditorWindow::Child(TOOLBARCLASSNAMEW));
        const Place status = Of(EditorWindow::Child(STATUSCLASSNAMEW));
        EXPECT_NEAR(toolbar.Bottom(), editor.Top, Pixel);
        EXPECT_NEAR(status.Top, editor.Bottom(), Pixel);
    });
}

TEST_F(LayoutTest, TheTabsAreStackedRoundTheActivePage) {
    Inside([] {
        Resize(12000, 9000);
        const float bottom = Of(EditorWindow::Child(STATUSCLASSNAMEW)).Top;
        for (int active = 0; active < 4; ++active) {
            SendMessageW(Tab(active), BM_CLICK, 0, 0);
            for (int index = 0; index < 4; ++index) {
                const Place tab = Of(Tab(index));
                EXPECT_NEAR(300, tab.Height, Pixel);
                EXPECT_NEAR(50, tab.Left, Pixel);
                EXPECT_NEAR(Of(Page(active)).Width, tab.Width, Pixel);
                if (index > 0) {
                    EXPECT_GE(tab.Top, Of(Tab(index - 1)).Bottom() - 1);
                }
            }
            const Place page = Of(Page(active));
            EXPECT_GE(page.Top, Of(Tab(active)).Bottom() - 1);
            if (active < 3) {
                EXPECT_LE(page.Bottom(), Of(Tab(active + 1)).Top + 1);
            }
            EXPECT_GT(page.Height, 3000);
            const Place view = Of(View(active));
            EXPECT_NEAR(page.Width, view.Width, Pixel);
            EXPECT_NEAR(page.Height, view.Height, Pixel);
            const Place description = Of(Description());
            EXPECT_GE(description.Top, (active < 3 ? Of(Tab(3)) : page).Bottom() - 1);
            EXPECT_LE(description.Bottom(), bottom + 1);
            EXPECT_GT(description.Height, 600);
            EXPECT_NEAR(page.Width, description.Width, Pixel);
            // The active page is in front, and its view has the focus.
            POINT middle{Pixels(page.Left + page.Width / 2), Pixels(page.Top + page.Height / 2)};
            EXPECT_EQ(Page(active), ChildWindowFromPoint(EditorWindow::Find(), middle));
            EXPECT_EQ(View(active), GetFocus());
        }
    });
}

TEST_F(LayoutTest, TheStackHasItsGapsAndTheButtonsTheirPlaces) {
    Inside([] {
        Resize(12000, 9000);
        const float top = Of(EditorWindow::Child(TOOLBARCLASSNAMEW)).Bottom();
        const float bottom = Of(EditorWindow::Child(STATUSCLASSNAMEW)).Top;
        SendMessageW(Tab(1), BM_CLICK, 0, 0);
        EXPECT_NEAR(top + 20, Of(Tab(0)).Top, Pixel);
        EXPECT_NEAR(Of(Tab(0)).Bottom() + 20, Of(Tab(1)).Top, Pixel);
        EXPECT_NEAR(Of(Tab(1)).Bottom() + 20, Of(Page(1)).Top, Pixel);
        EXPECT_NEAR(Of(Page(1)).Bottom() + 20, Of(Tab(2)).Top, Pixel);
        EXPECT_NEAR(Of(Tab(3)).Bottom() + 20, Of(Description()).Top, Pixel);
        EXPECT_NEAR(bottom - 380, Of(Description()).Bottom(), Pixel);
        for (int page = 0; page < 4; ++page) {
            EXPECT_EQ(page == 1, IsWindowEnabled(Page(page)) != FALSE) << page;
        }
        const Place hide = Of(Control(IdHide));
        EXPECT_NEAR(Of(Tab(0)).Right(), hide.Right(), Pixel);
        EXPECT_NEAR(360, hide.Width, Pixel);
        EXPECT_NEAR(bottom - 380, hide.Top, Pixel);
        EXPECT_NEAR(360, hide.Height, Pixel);
        EXPECT_FALSE(IsWindowVisible(Control(IdUnhide)));
        const Place grip = Of(Grip());
        EXPECT_NEAR(Of(Tab(0)).Width, grip.Left, Pixel);
        EXPECT_NEAR(140, grip.Width, Pixel);
        EXPECT_NEAR(top, grip.Top, Pixel);
        EXPECT_NEAR(bottom - top, grip.Height, Pixel);
        EditorWindow::Choose(L"View", L"Object Browser");
        EXPECT_FALSE(IsWindowVisible(Control(IdHide)));
        EXPECT_FALSE(IsWindowVisible(Description()));
        const Place unhide = Of(Control(IdUnhide));
        EXPECT_NEAR(0, unhide.Left, Pixel);
        EXPECT_NEAR(70, unhide.Width, Pixel);
        EXPECT_NEAR(top, unhide.Top, Pixel);
        EXPECT_NEAR(bottom - top, unhide.Height, Pixel);
    });
}

TEST_F(LayoutTest, TheWindowKeepsItsLeastSize) {
    Inside([] {
        Resize(1500, 2000);
        RECT bounds;
        GetWindowRect(EditorWindow::Find(), &bounds);
        EXPECT_NEAR(3000, Twips(bounds.right - bounds.left), Pixel);
        EXPECT_NEAR(4000, Twips(bounds.bottom - bounds.top), Pixel);
        // Nothing lies outside or over another control there.
        const float status = Of(EditorWindow::Child(STATUSCLASSNAMEW)).Top;
        EXPECT_LE(Of(Description()).Bottom(), status + 1);
        EXPECT_LE(Of(Control(IdHide)).Bottom(), status + 1);
        // What is left for the tree is a row at least. Wine 8 leaves more: its title and status bar are 7 and 6 pixels
        // lower than those of Wine 10, which are Windows'.
        EXPECT_GE(SendMessageW(View(0), TVM_GETVISIBLECOUNT, 0, 0), 1);
        EXPECT_GT(Of(EditorWindow::Editor()).Width, 1000);
    });
}

// Whoever sets the size without the question for it that Windows sends.
TEST_F(LayoutTest, ASizeThatTheWindowIsNotAskedForIsTheLeastToo) {
    Inside([] {
        const HWND window = EditorWindow::Find();
        const int wide = Pixels(9000);
        for (const POINT& size : {POINT{wide, Pixels(2000)}, POINT{Pixels(1500), wide}}) {
            SetWindowPos(window, nullptr, 0, 0, size.x, size.y, SWP_NOMOVE | SWP_NOZORDER | SWP_NOSENDCHANGING);
            RECT bounds;
            GetWindowRect(window, &bounds);
            EXPECT_EQ(std::max<LONG>(size.x, Pixels(3000)), bounds.right - bounds.left);
            EXPECT_EQ(std::max<LONG>(size.y, Pixels(4000)), bounds.bottom - bounds.top);
        }
    });
}

TEST_F(LayoutTest, AMinimisedWindowIsLeftAlone) {
    Inside([] {
        const HWND window = EditorWindow::Find();
        RECT before;
        GetWindowRect(window, &before);
        const Place tab = Of(Tab(0));
        const Place page = Of(Page(0));
        const Place editor = Of(EditorWindow::Editor());
        ShowWindow(window, SW_MINIMIZE);
        ASSERT_TRUE(IsIconic(window));
        // Neither it nor what is in it was laid out for the size of an icon.
        WINDOWPLACEMENT placement{};
        placement.length = sizeof placement;
        GetWindowPlacement(window, &placement);
        EXPECT_EQ(before.right - before.left, placement.rcNormalPosition.right - placement.rcNormalPosition.left);
        EXPECT_EQ(before.bottom - before.top, placement.rcNormalPosition.bottom - placement.rcNormalPosition.top);
        RECT icon;
        GetWindowRect(window, &icon);
        EXPECT_LT(icon.right - icon.left, Pixels(3000));
        EXPECT_FLOAT_EQ(tab.Width, Of(Tab(0)).Width);
        EXPECT_FLOAT_EQ(page.Height, Of(Page(0)).Height);
        EXPECT_FLOAT_EQ(editor.Width, Of(EditorWindow::Editor()).Width);
        EXPECT_FLOAT_EQ(editor.Height, Of(EditorWindow::Editor()).Height);
        ShowWindow(window, SW_RESTORE);
        RECT after;
        GetWindowRect(window, &after);
        EXPECT_TRUE(EqualRect(&before, &after));
    });
}

TEST_F(LayoutTest, TheSplitterFollowsTheMouseBetweenItsLimits) {
    Inside([] {
        Resize(15000, 9000);
        const float grip = Of(Grip()).Left;
        EXPECT_FALSE(IsWindowVisible(Bar()));
        Drag(1500, [&] {
            EXPECT_TRUE(IsWindowVisible(Bar()));
            EXPECT_NEAR(grip + 1500, Of(Bar()).Left, Pixel);
            EXPECT_NEAR(Of(Grip()).Height - 20, Of(Bar()).Height, Pixel);
        });
        EXPECT_FALSE(IsWindowVisible(Bar()));
        EXPECT_NEAR(grip + 1500, Of(Tab(0)).Width, 2 * Pixel);

        Drag(-30000, [] { EXPECT_NEAR(500, Of(Bar()).Left, Pixel); });
        EXPECT_NEAR(1500, Of(Tab(0)).Width, 2 * Pixel);  // wider than collapsed, and so at least this wide

        Drag(30000, [] { EXPECT_NEAR(InnerWidth() - 500, Of(Bar()).Left, Pixel); });
        EXPECT_NEAR(InnerWidth() - 1500, Of(Tab(0)).Width, 2 * Pixel);
    });
}

TEST_F(LayoutTest, ARealMouseDragsTheSplitterByTheEdgeOfAPane) {
    const Object editor = Connected();
    static float before;
    static float after;
    static int step;
    static POINT grip;
    step = 0;
    // Each step is one turn of the loop, as between the movements of a hand.
    const WhenShown shown([] {
        Resize(12000, 9000);
        const Place pane = Of(EditorWindow::Editor());
        // The editor's own sunken border, which lets the mouse through to the grip under it.
        grip = {Pixels(pane.Left) + 1, Pixels(pane.Top + pane.Height / 2)};
        before = Twips(grip.x);
        ClientToScreen(EditorWindow::Find(), &grip);
        SetTimer(nullptr, 0, 40, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
            const auto move = [](int to) {
                SetCursorPos(to, grip.y);
                INPUT input{};
                input.type = INPUT_MOUSE;
                input.mi.dwFlags = MOUSEEVENTF_MOVE;
                SendInput(1, &input, sizeof input);
            };
            const auto button = [](DWORD flag) {
                INPUT input{};
                input.type = INPUT_MOUSE;
                input.mi.dwFlags = flag;
                SendInput(1, &input, sizeof input);
            };
            switch (step++) {
                case 0:
                    move(grip.x);
                    break;
                case 1:
                    button(MOUSEEVENTF_LEFTDOWN);
                    break;
                case 2:
                    move(grip.x + 30);
                    break;
                case 3:
                    move(grip.x + 60);
                    break;
                case 4:
                    button(MOUSEEVENTF_LEFTUP);
                    break;
                case 5:
                    break;
                default:
                    KillTimer(nullptr, id);
                    after = Of(Tab(0)).Width;
                    EditorWindow::Close();
            }
        });
    });
    std::wstring sql = L"x";
    editor.Call(L"Display", ByRef(sql));
    // The split position is where the mouse is.
    EXPECT_NEAR(before + Twips(60), after, 2 * Pixel);
}

TEST_F(LayoutTest, TheMouseAloneMovesNothing) {
    Inside([] {
        const float width = Of(Tab(0)).Width;
        SendMessageW(Grip(), WM_MOUSEMOVE, 0, MAKELPARAM(200, 5));
        SendMessageW(Grip(), WM_LBUTTONUP, 0, MAKELPARAM(200, 5));
        EXPECT_FLOAT_EQ(width, Of(Tab(0)).Width);
        Drag(300);
        const float dragged = Of(Tab(0)).Width;
        SendMessageW(Grip(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(200, 5));
        EXPECT_FALSE(IsWindowVisible(Bar()));
        EXPECT_FLOAT_EQ(dragged, Of(Tab(0)).Width);
    });
}

TEST_F(LayoutTest, ADragThatIsTakenAwayEndsWhereItBegan) {
    Inside([] {
        Resize(15000, 9000);
        const float width = Of(Tab(0)).Width;
        SendMessageW(Grip(), WM_LBUTTONDOWN, MK_LBUTTON, 0);
        SendMessageW(Grip(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(100, 5));
        ReleaseCapture();
        EXPECT_FALSE(IsWindowVisible(Bar()));
        SendMessageW(Grip(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(150, 5));
        EXPECT_FALSE(IsWindowVisible(Bar()));
        Resize(14000, 9000);
        EXPECT_NEAR(width, Of(Tab(0)).Width, Pixel);
    });
}

TEST_F(LayoutTest, CollapseAndRestoreGiveTheSplitterBack) {
    Inside([] {
        Resize(12000, 9000);
        Drag(777);
        const Place tab = Of(Tab(0));
        const Place editor = Of(EditorWindow::Editor());
        for (const bool byMenu : {true, false}) {
            if (byMenu) {
                EditorWindow::Choose(L"View", L"Object Browser");
            } else {
                SendMessageW(Control(IdHide), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
                SendMessageW(Control(IdHide), WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
            }
            EXPECT_NEAR(20, Of(Grip()).Left, Pixel);
            for (int index = 0; index < 4; ++index) {
                EXPECT_FALSE(IsWindowVisible(Tab(index)));
                EXPECT_FALSE(IsWindowVisible(Page(index)));
            }
            EXPECT_NEAR(InnerWidth() - 20 - 140, Of(EditorWindow::Editor()).Width, 2 * Pixel);
            EXPECT_TRUE(IsWindowVisible(Control(IdUnhide)));
            Resize(11000, 9000);
            EXPECT_FALSE(IsWindowVisible(Tab(0)));  // stays collapsed
            Resize(12000, 9000);
            if (byMenu) {
                EditorWindow::Choose(L"View", L"Object Browser");
            } else {
                SendMessageW(Control(IdUnhide), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 3));
                SendMessageW(Control(IdUnhide), WM_LBUTTONUP, 0, MAKELPARAM(1, 3));
            }
            EXPECT_TRUE(IsWindowVisible(Tab(0)));
            EXPECT_FLOAT_EQ(tab.Width, Of(Tab(0)).Width);
            EXPECT_FLOAT_EQ(editor.Left, Of(EditorWindow::Editor()).Left);
            EXPECT_FLOAT_EQ(editor.Width, Of(EditorWindow::Editor()).Width);
        }
    });
}

TEST_F(LayoutTest, CollapseAndRestoreChangeNoPixel) {
    // At 168 dots per inch the split position is no whole number of twips.
    Inside([] {
        Resize(12000, 9000);
        for (int at = 0; at < 8; ++at) {
            Drag(Twips(10 + at));
            const Place tab = Of(Tab(0));
            const Place editor = Of(EditorWindow::Editor());
            EditorWindow::Choose(L"View", L"Object Browser");
            EditorWindow::Choose(L"View", L"Object Browser");
            EXPECT_FLOAT_EQ(tab.Width, Of(Tab(0)).Width);
            EXPECT_NEAR(editor.Left, Of(EditorWindow::Editor()).Left, Twips(1) / 2);
        }
    });
}

TEST_F(LayoutTest, AnyButtonDragsTheSplitter) {
    Inside([] {
        Resize(12000, 9000);
        struct Button {
            UINT Down, Up;
            WPARAM Held;
        };
        for (const Button button :
             {Button{WM_RBUTTONDOWN, WM_RBUTTONUP, MK_RBUTTON}, Button{WM_MBUTTONDOWN, WM_MBUTTONUP, MK_MBUTTON}}) {
            const float width = Of(Tab(0)).Width;
            SendMessageW(Grip(), button.Down, button.Held, 0);
            EXPECT_TRUE(IsWindowVisible(Bar()));
            SendMessageW(Grip(), WM_MOUSEMOVE, button.Held, MAKELPARAM(40, 5));
            SendMessageW(Grip(), button.Up, 0, MAKELPARAM(40, 5));
            EXPECT_FALSE(IsWindowVisible(Bar()));
            EXPECT_NEAR(width + Twips(40), Of(Tab(0)).Width, Pixel);
        }
    });
}

TEST_F(LayoutTest, AClickBeginsAndEndsOnItsButton) {
    Inside([] {
        const HWND hide = Control(IdHide);
        const LPARAM inside = MAKELPARAM(3, 3);
        const LPARAM outside = MAKELPARAM(3, 500);
        // Pressed elsewhere.
        SendMessageW(hide, WM_LBUTTONUP, 0, inside);
        EXPECT_TRUE(IsWindowVisible(Tab(0)));
        // Released elsewhere: the button has the mouse until then.
        SendMessageW(hide, WM_LBUTTONDOWN, MK_LBUTTON, inside);
        EXPECT_EQ(hide, GetCapture());
        SendMessageW(hide, WM_LBUTTONUP, 0, outside);
        EXPECT_EQ(nullptr, GetCapture());
        EXPECT_TRUE(IsWindowVisible(Tab(0)));
        SendMessageW(hide, WM_LBUTTONUP, 0, inside);
        EXPECT_TRUE(IsWindowVisible(Tab(0))) << "that press is over";
        // The mouse was taken away in between.
        SendMessageW(hide, WM_LBUTTONDOWN, MK_LBUTTON, inside);
        ReleaseCapture();
        SendMessageW(hide, WM_LBUTTONUP, 0, inside);
        EXPECT_TRUE(IsWindowVisible(Tab(0)));
        SendMessageW(hide, WM_LBUTTONDOWN, MK_LBUTTON, inside);
        SendMessageW(hide, WM_LBUTTONUP, 0, inside);
        EXPECT_FALSE(IsWindowVisible(Tab(0)));
    });
}

TEST_F(LayoutTest, HidingTheStatusBarGivesItsHeightToThePanes) {
    Inside([] {
        const HWND status = EditorWindow::Child(STATUSCLASSNAMEW);
        const float height = Of(status).Height;
        const Place editor = Of(EditorWindow::Editor());
        const Place page = Of(Page(0));
        EditorWindow::Choose(L"View", L"StatusBar");
        EXPECT_FALSE(IsWindowVisible(status));
        EXPECT_NEAR(editor.Height + height, Of(EditorWindow::Editor()).Height, Pixel);
        EXPECT_GT(Of(Page(0)).Height, page.Height);
        EditorWindow::Choose(L"View", L"StatusBar");
        EXPECT_TRUE(IsWindowVisible(status));
        EXPECT_FLOAT_EQ(editor.Height, Of(EditorWindow::Editor()).Height);
        EXPECT_FLOAT_EQ(page.Height, Of(Page(0)).Height);
    });
}

TEST_F(LayoutTest, ANarrowerWindowTakesFromTheLeftPaneAndAWiderOneGivesBack) {
    Inside([] {
        Resize(15000, 9000);
        Drag(4000);
        const float width = Of(Tab(0)).Width;
        Resize(6000, 9000);
        EXPECT_NEAR(InnerWidth() - 1500, Of(Tab(0)).Width, 2 * Pixel);
        Resize(15000, 9000);
        EXPECT_NEAR(width, Of(Tab(0)).Width, Pixel);
    });
}

// What is kept is where the splitter stands, and not where it was dragged to when there was more room.
TEST_F(LayoutTest, APaneThatWasNarrowedComesBackAsNarrowAsItWas) {
    Inside([] {
        Resize(12000, 9000);
        Drag(8000 - Of(Grip()).Left);
        Resize(7000, 9000);
        const float narrow = Of(Tab(0)).Width;
        EXPECT_LT(narrow, 6000);
        EditorWindow::Choose(L"View", L"Object Browser");
        EXPECT_FALSE(IsWindowVisible(Tab(0)));
        EditorWindow::Choose(L"View", L"Object Browser");
        Resize(12000, 9000);
        EXPECT_NEAR(narrow, Of(Tab(0)).Width, 2 * Pixel);
    });
}

TEST_F(LayoutTest, LayoutIsKeptFromShowToShow) {
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Object());
    float width = 0;
    DisplayAndClose(editor, L"x", [&] {
        Drag(333);
        SendMessageW(Tab(2), BM_CLICK, 0, 0);
        EditorWindow::Choose(L"View", L"StatusBar");
        width = Of(Tab(0)).Width;
    });
    DisplayAndClose(editor, L"x", [&] {
        EXPECT_FLOAT_EQ(width, Of(Tab(0)).Width);
        EXPECT_FALSE(IsWindowVisible(EditorWindow::Child(STATUSCLASSNAMEW)));
        EXPECT_TRUE(IsWindowEnabled(Page(0)));  // each show begins with the object browser
        EXPECT_EQ(EditorWindow::Editor(), GetFocus());
    });
}
