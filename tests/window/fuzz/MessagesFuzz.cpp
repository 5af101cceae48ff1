#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include <vector>

#include "Cases.h"
#include "support/Browsed.h"
#include "support/Dialogs.h"
#include "support/Errors.h"

// Messages that any program of the session may send or post to the window and to each of its controls, with nothing or
// small numbers where an address, a handle or a position belongs. What they change is theirs; the window goes on, gives
// the host a text back, and the next one is as new.
namespace {

class MessagesFuzz : public BrowsedFixture {};

struct Range {
    UINT First;
    UINT Last;
};
// The system's messages, and those of the controls.
constexpr Range SystemMessages{0, WM_USER - 1};
constexpr Range ControlMessages[] = {
    {WM_USER, WM_USER + 0x100},  // toolbar, status bar, rich edit
    {TV_FIRST, TV_FIRST + 80},      {LB_ADDSTRING, LB_MSGMAX}, {EM_GETSEL, EM_GETIMESTATUS},
    {BM_GETCHECK, BM_SETDONTCLICK}, {CCM_FIRST, CCM_LAST},     {WM_APP, WM_APP + 8},
};

// What would end the window on purpose, or begin a loop that waits for the mouse, the keyboard or a dialog.
bool IsLeftOut(UINT message, WPARAM first) {
    switch (message) {
        case WM_DESTROY:
        case WM_NCDESTROY:
        case WM_CLOSE:
        case WM_QUIT:
        case WM_QUERYENDSESSION:
        case WM_SYSCOMMAND:
        case WM_NCLBUTTONDOWN:
        case WM_NCLBUTTONDBLCLK:
        case WM_NCRBUTTONDOWN:
        case WM_NCRBUTTONUP:
        case WM_CONTEXTMENU:
        case WM_LBUTTONDOWN:  // the controls' own loops
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDOWN:
        case WM_RBUTTONUP:
        case WM_SYSKEYDOWN:
        case WM_SYSKEYUP:
        case WM_SYSCHAR:
        case WM_KEYDOWN:
        case WM_HOTKEY:
        case WM_HELP:
        case WM_ENTERIDLE:
        case 0x0313:  // the system's menu of the window
            return true;
        case WM_COMMAND:
            return LOWORD(first) >= 100 && LOWORD(first) < 200;  // the menus
        default:
            return false;
    }
}

std::vector<HWND> WindowsOf(HWND window) {
    std::vector<HWND> windows{window};
    EnumChildWindows(
        window,
        [](HWND child, LPARAM all) WINAPI -> BOOL {
            reinterpret_cast<std::vector<HWND>*>(all)->push_back(child);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&windows));
    return windows;
}

// What a class of the platform makes of its own messages beyond the system's is not ours.
bool IsOurs(HWND window) {
    wchar_t name[100]{};
    GetClassNameW(window, name, 100);
    return std::wstring(name).starts_with(L"brv");
}

LPARAM SmallNumber(Random& random) {
    switch (random.Below(5)) {
        case 0:
        case 1:
            return 0;
        case 2:
            return random.Between(1, 16);
        case 3:
            return random.Between(0, 0xFFFF);
        default:
            return -random.Between(1, 4);
    }
}

}  // namespace

TEST_F(MessagesFuzz, WithNothingToPointTo) {
    ForEachCase(8, [&](Random& random) {
        std::wstring sql = L"select 1";
        {
            const Object editor = Connected();
            const BoxAnswerer boxes;
            const WhenShown shown([&] {
                const HWND window = EditorWindow::Find();
                Tree.OpenDownTo({0});
                const std::vector<HWND> windows = WindowsOf(window);
                for (int at = 0; at < 300; ++at) {
                    const HWND to = random.Pick(windows);
                    const bool controls = random.OneIn(3) && IsOurs(to);
                    const Range range =
                        controls ? ControlMessages[random.Below(std::size(ControlMessages))] : SystemMessages;
                    const auto message = static_cast<UINT>(
                        random.Between(static_cast<long>(range.First), static_cast<long>(range.Last)));
                    const auto first = static_cast<WPARAM>(SmallNumber(random));
                    const LPARAM second = SmallNumber(random);
                    if (IsLeftOut(message, first)) continue;
                    if (IsRepeating()) {
                        std::printf("%p %x %lx %lx\n", static_cast<void*>(to), message,
                                    static_cast<unsigned long>(first), static_cast<unsigned long>(second));
                        std::fflush(stdout);
                    }
                    if (random.OneIn(4)) {
                        PostMessageW(to, message, first, second);
                    } else {
                        SendMessageW(to, message, first, second);
                    }
                }
                EXPECT_TRUE(IsWindow(window));
                // After what was posted.
                PostMessageW(window, WM_CLOSE, 0, 0);
            });
            EXPECT_EQ(0, NumberOf([&] { editor.Call(L"Display", ByRef(sql)); }));
            editor.Call(L"Destructor");
        }
        const Object editor = Connected();
        EXPECT_EQ(L"select 2", DisplayAndClose(editor, L"select 2", [&] {
                      EXPECT_EQ(L"Schemas", EditorWindow::Root());
                      EXPECT_EQ(L"SQL Editor", EditorWindow::Caption());
                  }));
    });
}
