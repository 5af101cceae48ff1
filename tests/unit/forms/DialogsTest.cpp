#include <gtest/gtest.h>
#include <windows.h>

#include <functional>

#include "forms/InputBox.h"
#include "forms/Printer.h"
#include "support/PatchedFunction.h"
#include "support/TopWindow.h"

// The small dialogs that are made in memory: what is where, in dialog units, and in which order the Tab key goes.
namespace {

// Looks at the dialog with a title once it is there, from inside the loop that shows it.
class Looker {
public:
    Looker(const wchar_t* title, std::function<void(HWND)> look) {
        title_ = title;
        look_ = std::move(look);
        Looked = 0;
        timer_ = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
            const HWND dialog = FindWindowW(L"#32770", title_);
            if (dialog == nullptr || !IsWindowVisible(dialog)) return;
            KillTimer(nullptr, id);
            ++Looked;
            look_(dialog);
        });
    }
    ~Looker() { KillTimer(nullptr, timer_); }
    Looker(const Looker&) = delete;
    Looker& operator=(const Looker&) = delete;
    static inline int Looked;

private:
    static inline const wchar_t* title_;
    static inline std::function<void(HWND)> look_;
    UINT_PTR timer_;
};

// Where the last dialog was when it was shown: a window manager may move it a moment later.
class PlaceWhenShown {
public:
    PlaceWhenShown()
        : hook_(SetWindowsHookExW(
              WH_CALLWNDPROC,
              [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
                  const CWPSTRUCT& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
                  if (code == HC_ACTION && sent.message == WM_SHOWWINDOW && sent.wParam != FALSE &&
                      GetClassLongPtrW(sent.hwnd, GCW_ATOM) == reinterpret_cast<ULONG_PTR>(WC_DIALOG))
                      GetWindowRect(sent.hwnd, &place_);
                  return CallNextHookEx(nullptr, code, wParam, lParam);
              },
              nullptr, GetCurrentThreadId())) {
        place_ = {};
    }
    ~PlaceWhenShown() { UnhookWindowsHookEx(hook_); }
    PlaceWhenShown(const PlaceWhenShown&) = delete;
    PlaceWhenShown& operator=(const PlaceWhenShown&) = delete;
    static void ExpectMiddleOf(HWND owner) {
        RECT around{};
        GetWindowRect(owner, &around);
        EXPECT_LT(place_.left, place_.right);
        EXPECT_NEAR((around.left + around.right) / 2, (place_.left + place_.right) / 2, 1);
        EXPECT_NEAR((around.top + around.bottom) / 2, (place_.top + place_.bottom) / 2, 1);
    }

private:
    static inline RECT place_;
    HHOOK hook_;
};

RECT InClient(HWND dialog, HWND control) {
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// In dialog units, to the nearest.
RECT Units(HWND dialog, RECT place) {
    RECT thousand{0, 0, 1000, 1000};
    MapDialogRect(dialog, &thousand);
    const auto across = [&](LONG x) { return MulDiv(x, 1000, thousand.right); };
    const auto down = [&](LONG y) { return MulDiv(y, 1000, thousand.bottom); };
    return {across(place.left), down(place.top), across(place.right), down(place.bottom)};
}

struct Expected {
    int Id;
    const wchar_t* Class;
    const wchar_t* Text;
    RECT Place;  // left, top, width, height
    DWORD Style;
    DWORD ExStyle;
};

void ExpectControls(HWND dialog, SIZE size, std::initializer_list<Expected> controls) {
    constexpr DWORD Frame = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;
    EXPECT_EQ(Frame, static_cast<DWORD>(GetWindowLongW(dialog, GWL_STYLE)) &
                         (Frame | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX));
    RECT client{};
    GetClientRect(dialog, &client);
    const RECT inside = Units(dialog, client);
    EXPECT_NEAR(size.cx, inside.right, 1);
    EXPECT_NEAR(size.cy, inside.bottom, 1);
    HWND control = GetWindow(dialog, GW_CHILD);
    for (const Expected& expected : controls) {
        ASSERT_NE(nullptr, control) << expected.Id;
        EXPECT_EQ(expected.Id, GetDlgCtrlID(control));
        wchar_t text[100]{};
        GetClassNameW(control, text, 100);
        EXPECT_EQ(0, lstrcmpiW(expected.Class, text)) << expected.Id;
        GetWindowTextW(control, text, 100);
        EXPECT_STREQ(expected.Text, text);
        RECT place{0, 0, expected.Place.right, expected.Place.bottom};
        OffsetRect(&place, expected.Place.left, expected.Place.top);
        MapDialogRect(dialog, &place);
        const RECT found = InClient(dialog, control);
        EXPECT_NEAR(place.left, found.left, 1) << expected.Id;
        EXPECT_NEAR(place.top, found.top, 1) << expected.Id;
        EXPECT_NEAR(place.right, found.right, 1) << expected.Id;
        EXPECT_NEAR(place.bottom, found.bottom, 1) << expected.Id;
        const auto style = static_cast<DWORD>(GetWindowLongW(control, GWL_STYLE));
        EXPECT_EQ(expected.Style | WS_CHILD | WS_VISIBLE, style & ~static_cast<DWORD>(WS_CLIPSIBLINGS | WS_BORDER))
            << expected.Id;
        const auto exStyle = static_cast<DWORD>(GetWindowLongW(control, GWL_EXSTYLE));
        EXPECT_EQ(expected.ExStyle, exStyle & ~static_cast<DWORD>(WS_EX_NOPARENTNOTIFY)) << expected.Id;
        control = GetWindow(control, GW_HWNDNEXT);
    }
    EXPECT_EQ(nullptr, control);
}

constexpr int PromptId = 100;
constexpr int TextId = 101;

DWORD tick = 0;
DWORD WINAPI TickInstead() noexcept { return tick; }

}  // namespace

TEST(InputBox, HasItsControlsInTheirPlaces) {
    const TopWindow owner;
    const PlaceWhenShown places;
    const Looker looker(L"a title", [&](HWND dialog) {
        EXPECT_EQ(owner.Top(), GetWindow(dialog, GW_OWNER));
        ExpectControls(dialog, {220, 62},
                       {{PromptId, L"Static", L"R&D:", {8, 8, 204, 10}, SS_LEFT | SS_NOPREFIX, 0},
                        {TextId, L"Edit", L"before", {8, 20, 204, 13}, ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE},
                        {IDOK, L"Button", L"OK", {108, 42, 50, 14}, BS_DEFPUSHBUTTON | WS_TABSTOP, 0},
                        {IDCANCEL, L"Button", L"Cancel", {162, 42, 50, 14}, BS_PUSHBUTTON | WS_TABSTOP, 0}});
        // What stands there is selected, and the next letter takes its place.
        const HWND text = GetDlgItem(dialog, TextId);
        EXPECT_EQ(MAKELONG(0, 6), SendMessageW(text, EM_GETSEL, 0, 0));
        EXPECT_EQ(1000, SendMessageW(text, EM_GETLIMITTEXT, 0, 0));
        PlaceWhenShown::ExpectMiddleOf(owner.Top());
        SetWindowTextW(text, L"after");
        // Another notification, and a button that does not exist, close nothing.
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(TextId, EN_CHANGE), reinterpret_cast<LPARAM>(text));
        SendMessageW(dialog, WM_COMMAND, IDCANCEL + 1, 0);
        EXPECT_TRUE(IsWindow(dialog));
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(L"after", InputBox(owner.Top(), L"R&D:", L"a title", L"before"));
    EXPECT_EQ(1, Looker::Looked);
}

TEST(InputBox, CancelGivesNothingBack) {
    const TopWindow owner;
    const Looker looker(L"a title", [](HWND dialog) {
        SetDlgItemTextW(dialog, TextId, L"after");
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(std::nullopt, InputBox(owner.Top(), L"", L"a title", L"before"));
    EXPECT_EQ(1, Looker::Looked);
}

TEST(InputBox, HoldsAThousandCharacters) {
    const TopWindow owner;
    size_t shown = 0;
    const Looker looker(L"a title", [&](HWND dialog) {
        shown = static_cast<size_t>(GetWindowTextLengthW(GetDlgItem(dialog, TextId)));
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(std::wstring(1000, L'x'), InputBox(owner.Top(), L"", L"a title", std::wstring(1001, L'x')));
    EXPECT_EQ(1000U, shown);
}

TEST(PrintingNotice, ComesAfterAMomentAndItsButtonStopsThePrinting) {
    const PatchedFunction clock(L"kernel32.dll", "GetTickCount", reinterpret_cast<void*>(&TickInstead));
    ASSERT_TRUE(clock);
    const TopWindow owner;
    const PlaceWhenShown places;
    tick = 0xFFFFFF00;  // the clock of the system begins again at 0
    {
        PrintingNotice notice(owner.Top());
        const auto dialog = [] { return FindWindowW(L"#32770", L"Print"); };
        tick += 700;
        EXPECT_TRUE(notice.Continue(1));
        EXPECT_EQ(nullptr, dialog());
        ++tick;
        EXPECT_TRUE(notice.Continue(2));
        const HWND shown = dialog();
        ASSERT_NE(nullptr, shown);
        EXPECT_TRUE(IsWindowVisible(shown));
        EXPECT_EQ(owner.Top(), GetWindow(shown, GW_OWNER));
        ExpectControls(shown, {160, 48},
                       {{100, L"Static", L"Printing page 2 ...", {8, 8, 144, 10}, SS_LEFT, 0},
                        {IDCANCEL, L"Button", L"Cancel", {55, 26, 50, 14}, BS_PUSHBUTTON | WS_TABSTOP, 0}});
        PlaceWhenShown::ExpectMiddleOf(owner.Top());
        EXPECT_TRUE(notice.Continue(13));
        EXPECT_EQ(shown, dialog()) << "the same one";
        wchar_t text[100]{};
        GetDlgItemTextW(shown, 100, text, 100);
        EXPECT_STREQ(L"Printing page 13 ...", text);
        // A notification of the page's number stops nothing.
        SendMessageW(shown, WM_COMMAND, 100, 0);
        EXPECT_TRUE(notice.Continue(14));
        PostMessageW(shown, WM_COMMAND, IDCANCEL, 0);
        EXPECT_FALSE(notice.Continue(15));
        EXPECT_FALSE(notice.Continue(16));
    }
    EXPECT_EQ(nullptr, FindWindowW(L"#32770", L"Print"));
}

TEST(PrintingNotice, EndsWhenTheProgramDoesAndSaysSo) {
    const TopWindow owner;
    PrintingNotice notice(owner.Top());
    PostQuitMessage(7);
    EXPECT_FALSE(notice.Continue(1));
    MSG message{};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(7U, message.wParam);
}
