#include "support/Component.h"
#include "support/Screen.h"
#include "support/Settings.h"

#include <cstdlib>

namespace {

class PlacementTest : public ComponentFixture {
protected:
    static float Twips(int pixels) { return static_cast<float>(pixels) * 1440.0F / static_cast<float>(ScreenDpi()); }
    static float Stored(const wchar_t* key) { return static_cast<float>(_wtof(Settings::Get(key).c_str())); }
    // Within the pixel that the twips fall into.
    static void ExpectPlace(const RECT& place, float left, float top, float width, float height) {
        const float pixel = Twips(1);
        // The corner's unit is the same on every screen.
        EXPECT_NEAR(left, place.left * 15.0F, 15);
        EXPECT_NEAR(top, place.top * 15.0F, 15);
        EXPECT_NEAR(width, Twips(place.right - place.left), pixel);
        EXPECT_NEAR(height, Twips(place.bottom - place.top), pixel);
    }
    RECT Place(const Object& editor) {
        RECT place{};
        DisplayAndClose(editor, L"x", [&] { GetWindowRect(EditorWindow::Find(), &place); });
        return place;
    }
    Object Disconnected() {
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", Object());
        return editor;
    }
};

}  // namespace

TEST_F(PlacementTest, WithoutSettingsTheWindowOpensAtItsFirstPlace) {
    ExpectPlace(Place(Disconnected()), 1000, 1000, 6500, 6500);
}

TEST_F(PlacementTest, ClosingKeepsThePlaceForTheNextWindow) {
    {
        const Object editor = Disconnected();
        DisplayAndClose(editor, L"x", [] {
            SetWindowPos(EditorWindow::Find(), nullptr, 150, 120, 640, 480, SWP_NOZORDER | SWP_NOACTIVATE);
        });
    }
    EXPECT_FLOAT_EQ(150 * 15, Stored(L"MainLeft"));
    EXPECT_FLOAT_EQ(120 * 15, Stored(L"MainTop"));
    EXPECT_FLOAT_EQ(Twips(640), Stored(L"MainWidth"));
    EXPECT_FLOAT_EQ(Twips(480), Stored(L"MainHeight"));
    const RECT place = Place(Disconnected());
    EXPECT_EQ(150, place.left);
    EXPECT_EQ(120, place.top);
    EXPECT_EQ(640, place.right - place.left);
    EXPECT_EQ(480, place.bottom - place.top);
}

TEST_F(PlacementTest, FractionsAndBlanksAreRead) {
    Settings::Put(L"MainLeft", L"1507.5");
    Settings::Put(L"MainTop", L" 750 ");
    ExpectPlace(Place(Disconnected()), 1507.5F, 750, 6500, 6500);
}

TEST_F(PlacementTest, AHiddenWindowIsShownAgainWhereItWas) {
    const Object editor = Disconnected();
    DisplayAndClose(editor, L"x", [] {
        SetWindowPos(EditorWindow::Find(), nullptr, 150, 120, 640, 480, SWP_NOZORDER | SWP_NOACTIVATE);
    });
    // Settings are for windows that are made, not for one that is shown again.
    Settings::Put(L"MainLeft", L"3000");
    EXPECT_EQ(150, Place(editor).left);
}

TEST_F(PlacementTest, WhatIsNoNumberSkipsTheRestOfTheLoadAndTheWindowOpens) {
    for (const wchar_t* text : {L"wide", L"", L"12 px"}) {
        Settings::Clear();
        Settings::Put(L"MainLeft", L"1500");
        Settings::Put(L"MainTop", text);
        Settings::Put(L"MainWidth", L"9000");
        Errors.Forget();
        const Object editor = Connected();
        RECT place{};
        std::wstring root;
        EXPECT_EQ(L"x", DisplayAndClose(editor, L"x", [&] {
                      GetWindowRect(EditorWindow::Find(), &place);
                      root = EditorWindow::Root();
                  }));
        EXPECT_EQ(L"<none>", root);  // the tree is filled after the placement
        EXPECT_EQ(L"frmSQLEditor.Form_Load 13|frmSQLEditor.Constructor 35601", Errors.Places());
        EXPECT_EQ(100, place.left);
        EXPECT_LT(Twips(place.right - place.left), 8000);
    }
}

TEST_F(PlacementTest, ANumberThatNoWindowTakesIsAnOverflow) {
    for (const wchar_t* text : {L"1e30", L"1e39"}) {
        Settings::Clear();
        Settings::Put(L"MainLeft", text);
        Errors.Forget();
        const Object editor = Disconnected();
        EXPECT_EQ(L"x", DisplayAndClose(editor, L"x"));
        EXPECT_EQ(L"frmSQLEditor.Form_Load 6", Errors.Places());
    }
}

TEST_F(PlacementTest, AValueOfAnotherKindIsNoNumber) {
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\VB and VBA Program Settings\\brvSQLEditor\\Settings", 0, nullptr, 0,
                    KEY_SET_VALUE, nullptr, &key, nullptr);
    const DWORD number = 1500;
    RegSetValueExW(key, L"MainHeight", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
    RegCloseKey(key);
    DisplayAndClose(Disconnected(), L"x");
    EXPECT_EQ(L"frmSQLEditor.Form_Load 13", Errors.Places());
}

TEST_F(PlacementTest, ATinyWindowOpensAtTheLeastSize) {
    Settings::Put(L"MainWidth", L"100");
    Settings::Put(L"MainHeight", L"-100");
    const RECT place = Place(Disconnected());
    EXPECT_NEAR(3000, Twips(place.right - place.left), Twips(1));
    EXPECT_NEAR(4000, Twips(place.bottom - place.top), Twips(1));
}

// The screen that the window stood on when it was closed is not there any more: nobody could reach a window that is
// modal and shows nothing.
TEST_F(PlacementTest, AWindowBeyondTheScreenIsBroughtIntoViewWhenItIsShown) {
    RECT area{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    Settings::Put(L"MainLeft", L"300000");
    Settings::Put(L"MainTop", L"-90000");
    const Object editor = Disconnected();
    RECT place = Place(editor);
    EXPECT_EQ(area.right, place.right);
    EXPECT_EQ(area.top, place.top);
    EXPECT_NEAR(6500, Twips(place.right - place.left), Twips(1));
    // It is kept where it was seen.
    EXPECT_FLOAT_EQ(place.left * 15.0F, Stored(L"MainLeft"));
    EXPECT_FLOAT_EQ(place.top * 15.0F, Stored(L"MainTop"));
}

// Its screen may be gone when it is restored.
TEST_F(PlacementTest, AWindowThatComesBackFromMinimisedIsBroughtIntoView) {
    const Object editor = Disconnected();
    HWND window = nullptr;
    DisplayAndClose(editor, L"x", [&] {
        window = EditorWindow::Find();
        SetWindowPos(window, nullptr, 30000, 100, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        ShowWindow(window, SW_MINIMIZE);
    });
    RECT seen{};
    DisplayAndClose(editor, L"x", [&] {
        EXPECT_FALSE(IsIconic(window));
        GetWindowRect(window, &seen);
    });
    RECT common{};
    const RECT screen{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    EXPECT_TRUE(IntersectRect(&common, &seen, &screen)) << seen.left << "," << seen.top;
}

TEST_F(PlacementTest, ClosingMinimisedSavesNothing) {
    const Object editor = Disconnected();
    DisplayAndClose(editor, L"x", [] { ShowWindow(EditorWindow::Find(), SW_MINIMIZE); });
    EXPECT_EQ(L"<none>", Settings::Get(L"MainLeft"));
    EXPECT_EQ(L"<none>", Settings::Get(L"MainHeight"));
}

TEST_F(PlacementTest, ClosingMaximisedSavesTheMaximisedPlace) {
    const Object editor = Disconnected();
    RECT place{};
    DisplayAndClose(editor, L"x", [&] {
        ShowWindow(EditorWindow::Find(), SW_MAXIMIZE);
        GetWindowRect(EditorWindow::Find(), &place);
    });
    EXPECT_FLOAT_EQ(Twips(place.right - place.left), Stored(L"MainWidth"));
    EXPECT_GT(Stored(L"MainWidth"), 10000);
}

TEST_F(PlacementTest, WhenSavingIsRefusedTheWindowStaysOpen) {
    const Object editor = Disconnected();
    bool stayed = false;
    const auto inside = [&] {
        Settings::Refuse();
        EditorWindow::Close();
        EditorWindow::PressReturn();
        EditorWindow::Choose(L"File", L"Close");
        stayed = EditorWindow::Find() != nullptr;
        Settings::Clear();
    };
    EXPECT_EQ(L"x", DisplayAndClose(editor, L"x", inside));
    EXPECT_TRUE(stayed);
    EXPECT_EQ(L"frmSQLEditor.mnuFileClose_Click 5|frmSQLEditor.mnuFileClose_Click 5|frmSQLEditor.mnuFileClose_Click 5",
              Errors.Places());
}

namespace {

// While it lives, the editor's window cannot be made on this thread.
class NoWindow {
public:
    NoWindow() : hook_(SetWindowsHookExW(WH_CBT, &Refuse, nullptr, GetCurrentThreadId())) {}
    ~NoWindow() { UnhookWindowsHookEx(hook_); }
    NoWindow(const NoWindow&) = delete;
    NoWindow& operator=(const NoWindow&) = delete;

private:
    static LRESULT CALLBACK Refuse(int code, WPARAM window, LPARAM) {
        wchar_t name[100]{};
        return code == HCBT_CREATEWND && GetClassNameW(reinterpret_cast<HWND>(window), name, 100) > 0 &&
               wcscmp(name, L"brvSQLEditorForm") == 0;
    }
    HHOOK hook_;
};

}  // namespace

TEST_F(PlacementTest, AWindowThatCouldNotBeMadeSavesNoPlacement) {
    const Object editor = Dll.Create();
    {
        const NoWindow none;
        std::wstring sql = L"select 1";
        editor.Call(L"Display", ByRef(sql));
        EXPECT_EQ(L"select 1", sql);
    }
    ASSERT_FALSE(Errors.Reports.empty());
    Errors.Forget();
    editor.Call(L"Destructor");
    for (const wchar_t* const key : {L"MainLeft", L"MainTop", L"MainWidth", L"MainHeight"}) {
        EXPECT_EQ(L"<none>", Settings::Get(key));
    }
}

TEST_F(PlacementTest, TheEndOfTheWindowSavesItsPlaceToo) {
    const Object editor = Disconnected();
    DisplayAndClose(editor, L"x", [] {
        SetWindowPos(EditorWindow::Find(), nullptr, 150, 120, 640, 480, SWP_NOZORDER | SWP_NOACTIVATE);
    });
    Settings::Clear();
    editor.Call(L"Destructor");
    EXPECT_FLOAT_EQ(Twips(150), Stored(L"MainLeft"));
    EXPECT_FLOAT_EQ(Twips(120), Stored(L"MainTop"));
    EXPECT_FLOAT_EQ(Twips(640), Stored(L"MainWidth"));
    EXPECT_FLOAT_EQ(Twips(480), Stored(L"MainHeight"));
    // Once: there is no window any more.
    Settings::Clear();
    editor.Call(L"Destructor");
    EXPECT_EQ(L"<none>", Settings::Get(L"MainLeft"));
}

TEST_F(PlacementTest, TheEndOfAWindowThatWasClosedMinimisedSavesNothing) {
    const Object editor = Disconnected();
    DisplayAndClose(editor, L"x", [] { ShowWindow(EditorWindow::Find(), SW_MINIMIZE); });
    editor.Call(L"Destructor");
    for (const wchar_t* key : {L"MainLeft", L"MainTop", L"MainWidth", L"MainHeight"})
        EXPECT_EQ(L"<none>", Settings::Get(key)) << key;
}
