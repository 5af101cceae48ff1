#include "forms/Form.h"

#include <functional>
#include <gtest/gtest.h>

#include "forms/CommandButton.h"
#include "forms/Drag.h"
#include "forms/RichTextBox.h"
#include "forms/Twips.h"
#include "support/Errors.h"
#include "support/PatchedFunction.h"
#include "support/Shortage.h"
#include "support/WindowWatchdog.h"

namespace {

// The log without the resizes, of which a window manager may cause any number.
std::wstring WithoutResizes(std::wstring log) {
    for (size_t at; (at = log.find(L"resize ")) != std::wstring::npos;) log.erase(at, 7);
    return log;
}

class TestForm : public Form {
public:
    std::wstring Log;
    std::function<void()> OnLoad;
    std::function<void()> OnActivate;
    std::function<void()> OnUnload;
    std::function<void()> OnResize;
    std::function<bool(const MSG&)> OnKey;
    int Fonts = 0;
    int Colours = 0;
    CommandButton First;
    CommandButton Second;

    using Form::Menus;

protected:
    void CreateControls() override {
        Log += L"controls ";
        First.Create(Handle(), 1, L"First");
        Second.Create(Handle(), 2, L"Second");
        First.Move(0, 0, 1500, 300);
        Second.Move(0, 300, 1500, 300);
    }
    void FontsChanged() override { ++Fonts; }
    void ColoursChanged() override { ++Colours; }
    bool KeyPreview(MSG& message) override { return OnKey && OnKey(message); }
    float MinimumWidth() const override { return 3000; }
    float MinimumHeight() const override { return 2250; }
    void Form_Load() override {
        Log += L"load ";
        if (OnLoad) OnLoad();
    }
    void Form_Activate() override {
        Log += L"activate ";
        if (OnActivate) OnActivate();
    }
    void Form_Resize() override {
        Log += L"resize ";
        if (OnResize) OnResize();
    }
    void Form_Unload(bool& cancel) override {
        cancel = true;
        Log += L"unload ";
        if (OnUnload) OnUnload();
        Hide();
    }
};

void MoveElsewhere(TestForm& form) {
    Placement place = form.Place();
    place.SetLeft(1500);
    place.SetTop(3000);
    place.SetWidth(9000);
    place.SetHeight(7500);
    form.MoveTo(place);
}

// Runs work once the modal loop turns, and gives up on a window that nobody closes.
class Later {
public:
    static inline std::function<void()> Work;
    explicit Later(std::function<void()> work) {
        Work = std::move(work);
        timer_ = SetTimer(nullptr, 0, 50, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
            KillTimer(nullptr, id);
            Work();
        });
    }
    ~Later() { KillTimer(nullptr, timer_); }
    Later(const Later&) = delete;
    Later& operator=(const Later&) = delete;

private:
    UINT_PTR timer_;
    const WindowWatchdog watchdog_{20000};
};

HWND MakeHostWindow() {
    return CreateWindowExW(0, L"Static", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100, nullptr, nullptr,
                           nullptr, nullptr);
}

}  // namespace

TEST(Form, LoadsOnceAndLaysOutAfterTheLoad) {
    TestForm form;
    form.OnLoad = [&] {
        form.SetWidth(4500);
        form.SetHeight(4500);
    };
    form.Load();
    form.Load();
    EXPECT_EQ(L"controls load resize ", form.Log);
    form.SetWidth(6000);
    EXPECT_EQ(L"controls load resize resize ", form.Log);
}

TEST(Form, ALoadThatFailsIsLaidOutAndNotRunAgain) {
    TestForm form;
    form.OnLoad = [] { RaiseError(13); };
    EXPECT_EQ(13, NumberOf([&] { form.Load(); }));
    EXPECT_EQ(L"controls load resize ", form.Log);
    EXPECT_EQ(0, NumberOf([&] { form.Load(); }));
}

TEST(Form, PositionsAreInTwips) {
    TestForm form;
    form.Load();
    Placement place = form.Place();
    place.SetLeft(1000);
    place.SetTop(1500);
    form.MoveTo(place);
    form.SetWidth(6500);
    form.SetHeight(6000);
    const UINT dpi = form.Dpi();
    EXPECT_FLOAT_EQ(67 * 15, form.Left());
    EXPECT_FLOAT_EQ(1500, form.Top());
    EXPECT_FLOAT_EQ(PixelsToTwips(TwipsToPixels(6500, dpi), dpi), form.Width());
    EXPECT_FLOAT_EQ(PixelsToTwips(TwipsToPixels(6000, dpi), dpi), form.Height());
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([&] { form.SetWidth(1e30F); }));
}

namespace {
RECT BoundsOf(HWND window) {
    RECT bounds{};
    GetWindowRect(window, &bounds);
    return bounds;
}
}  // namespace

// Position and size go to Windows together: one message each, and no stop on another monitor between them.
TEST(Form, IsPlacedInOneStep) {
    static int moves;
    static HWND window;
    TestForm form;
    form.Load();
    window = form.Handle();
    moves = 0;
    const HHOOK hook = SetWindowsHookExW(
        WH_CALLWNDPROC,
        [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
            const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
            if (sent.hwnd == window && sent.message == WM_WINDOWPOSCHANGED) ++moves;
            return CallNextHookEx(nullptr, code, wParam, lParam);
        },
        nullptr, GetCurrentThreadId());
    MoveElsewhere(form);
    UnhookWindowsHookEx(hook);
    EXPECT_EQ(1, moves);
    EXPECT_FLOAT_EQ(1500, form.Left());
    EXPECT_FLOAT_EQ(3000, form.Top());
    EXPECT_NEAR(9000, form.Width(), 8);
    EXPECT_NEAR(7500, form.Height(), 8);
}

// A window comes to a monitor of other dots per inch while it is placed: Windows tells it so in the middle and suggests
// another size.
TEST(Form, KeepsTheSizeThatItIsPlacedWithWhenTheDotsChangeMeanwhile) {
    static HWND window;
    static bool told;
    TestForm form;
    form.Load();
    window = form.Handle();
    told = false;
    const HHOOK hook = SetWindowsHookExW(
        WH_CALLWNDPROCRET,
        [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
            const auto& sent = *reinterpret_cast<const CWPRETSTRUCT*>(lParam);
            if (sent.hwnd == window && sent.message == WM_WINDOWPOSCHANGED && !told) {
                told = true;
                RECT twice = BoundsOf(window);
                twice.right += twice.right - twice.left;
                twice.bottom += twice.bottom - twice.top;
                SetWindowPos(window, nullptr, 0, 0, twice.right, twice.bottom, SWP_NOMOVE | SWP_NOZORDER);
                SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(192, 192), reinterpret_cast<LPARAM>(&twice));
            }
            return CallNextHookEx(nullptr, code, wParam, lParam);
        },
        nullptr, GetCurrentThreadId());
    MoveElsewhere(form);
    UnhookWindowsHookEx(hook);
    EXPECT_TRUE(told);
    EXPECT_FLOAT_EQ(1500, form.Left());
    EXPECT_NEAR(9000, form.Width(), 8);
    EXPECT_NEAR(7500, form.Height(), 8);
    // Afterwards, as by the user's hand, the suggestion counts.
    const RECT wanted{40, 50, 640, 550};
    SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(96, 96), reinterpret_cast<LPARAM>(&wanted));
    EXPECT_EQ(600, BoundsOf(window).right - BoundsOf(window).left);
}

// The place is applied as it is; what is shown is seen.
TEST(Form, AWindowBeyondEveryMonitorIsBroughtIntoViewWhenItIsShown) {
    const RECT area = GetDesktop().front().WorkArea;
    TestForm form;
    form.Load();
    Placement place = form.Place();
    place.SetLeft(300000);
    place.SetTop(1500);
    place.SetWidth(6000);
    place.SetHeight(6000);
    form.MoveTo(place);
    EXPECT_FLOAT_EQ(300000, form.Left());
    RECT shown{};
    {
        const Later later([&] {
            shown = BoundsOf(form.Handle());
            SendMessageW(form.Handle(), WM_CLOSE, 0, 0);
        });
        form.ShowModal();
    }
    EXPECT_EQ(area.right, shown.right);
    EXPECT_EQ(100, shown.top);
    EXPECT_NEAR(400, shown.right - shown.left, 1);
    // The screen was unplugged between two showings; this time the window is minimised too.
    SetWindowPos(form.Handle(), nullptr, -9000, 100, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(form.Handle(), SW_SHOWMINNOACTIVE);
    ShowWindow(form.Handle(), SW_HIDE);
    {
        const Later later([&] {
            shown = BoundsOf(form.Handle());
            SendMessageW(form.Handle(), WM_CLOSE, 0, 0);
        });
        form.ShowModal();
    }
    // Where a window manager has a say, it may stand anywhere on the screen.
    EXPECT_GE(shown.left, area.left);
    EXPECT_LE(shown.right, area.right);
}

TEST(Form, IsModalAndGivesTheHostItsWindowsBack) {
    const HWND host = MakeHostWindow();
    const HWND disabledBefore = MakeHostWindow();
    EnableWindow(disabledBefore, FALSE);
    TestForm form;
    bool hostWasEnabled = true;
    const Later later([&] {
        hostWasEnabled = IsWindowEnabled(host) != FALSE;
        SendMessageW(form.Handle(), WM_CLOSE, 0, 0);
    });
    form.ShowModal();
    EXPECT_FALSE(hostWasEnabled);
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_FALSE(IsWindowEnabled(disabledBefore));
    EXPECT_FALSE(IsWindowVisible(form.Handle()));
    EXPECT_EQ(L"controls load activate unload ", WithoutResizes(form.Log));
    DestroyWindow(host);
    DestroyWindow(disabledBefore);
}

// Were the window hidden first, the system would find no window of this program to activate.
TEST(Form, EnablesTheHostBeforeItHides) {
    static HWND shown;
    static std::wstring seen;
    static WNDPROC before;
    const HWND host = MakeHostWindow();
    before = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
        host, GWLP_WNDPROC,
        reinterpret_cast<LONG_PTR>(
            static_cast<WNDPROC>([](HWND window, UINT message, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
                if (message == WM_ENABLE) {
                    seen += wParam != 0 ? L"enabled " : L"disabled ";
                    seen += IsWindowVisible(shown) ? L"seen " : L"hidden ";
                }
                return CallWindowProcW(before, window, message, wParam, lParam);
            }))));
    TestForm form;
    form.Load();
    shown = form.Handle();
    seen.clear();
    const Later later([&] { form.Hide(); });
    form.ShowModal();
    EXPECT_EQ(L"disabled hidden enabled seen ", seen);
    EXPECT_FALSE(IsWindowVisible(form.Handle()));
    DestroyWindow(host);
}

// The list of the host's windows is made while the system enumerates them: what fails there comes out of ShowModal.
TEST(Form, IsNotShownWhenMemoryIsShortAndTheHostIsEnabled) {
    const Shortage shortage(GetModuleHandleW(nullptr));
    std::vector<HWND> hosts;
    for (int at = 0; at < 6; ++at) hosts.push_back(MakeHostWindow());
    TestForm form;
    form.Load();
    long count = 1;
    long failed = 0;
    for (long which = 0; which <= count; ++which) {
        form.OnActivate = [&] {
            if (which == 0) count = Shortage::Count();
            form.Hide();
        };
        Shortage::Begin(which, false);
        try {
            form.ShowModal();
        } catch (const std::bad_alloc&) {
            ++failed;
        }
        Shortage::End();
        EXPECT_FALSE(form.Visible()) << which;
        for (const HWND host : hosts) EXPECT_TRUE(IsWindowEnabled(host)) << which;
    }
    EXPECT_LT(2, count);
    EXPECT_LT(2, failed);
    for (const HWND host : hosts) DestroyWindow(host);
}

// Any program of the session may post them.
TEST(Form, MessagesThatPointToNothingAreNobodys) {
    TestForm form;
    form.Load();
    const RECT before = [&] {
        RECT place{};
        GetWindowRect(form.Handle(), &place);
        return place;
    }();
    for (const LPARAM nowhere : {0, 1, 0xFFFF, -1}) {
        for (const UINT message : {WM_NOTIFY, WM_DRAWITEM, WM_GETMINMAXINFO, WM_DPICHANGED, WM_NCCREATE, WM_CREATE}) {
            SendMessageW(form.Handle(), message, 0, nowhere);
            EXPECT_TRUE(IsWindow(form.Handle())) << message;
        }
    }
    RECT after{};
    GetWindowRect(form.Handle(), &after);
    EXPECT_TRUE(EqualRect(&before, &after));
}

TEST(Form, ASecondShowIsAnErrorAndTheWindowStays) {
    TestForm form;
    long number = 0;
    bool stayed = false;
    const Later later([&] {
        number = NumberOf([&] { form.ShowModal(); });
        stayed = IsWindowVisible(form.Handle()) != FALSE;
        form.Unload();
    });
    form.ShowModal();
    EXPECT_EQ(ErrorNumber::FormAlreadyShown, number);
    EXPECT_TRUE(stayed);
}

TEST(Form, AnErrorInTheModalLoopEndsItAndTheHostIsEnabledAgain) {
    const HWND host = MakeHostWindow();
    TestForm form;
    form.First.Click = [] { RaiseError(42); };
    form.Load();
    const Later later([&] { PostMessageW(form.First.Handle(), BM_CLICK, 0, 0); });
    EXPECT_EQ(42, NumberOf([&] { form.ShowModal(); }));
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_FALSE(form.Visible());
    EXPECT_FALSE(IsWindowVisible(form.Handle()));
    DestroyWindow(host);
}

TEST(Form, AnErrorOnActivationLeavesTheHostEnabled) {
    const HWND host = MakeHostWindow();
    TestForm form;
    form.OnActivate = [] { RaiseError(43); };
    EXPECT_EQ(43, NumberOf([&] { form.ShowModal(); }));
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_FALSE(form.Visible());
    DestroyWindow(host);
}

TEST(Form, QuittingGoesOnInTheHostsLoop) {
    TestForm form;
    const Later later([] { PostQuitMessage(5); });
    form.ShowModal();
    EXPECT_FALSE(form.Visible());
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(5U, message.wParam);
}

TEST(Form, AMinimisedWindowComesBackRestored) {
    TestForm form;
    {
        const Later later([&] {
            ShowWindow(form.Handle(), SW_MINIMIZE);
            form.Unload();
        });
        form.ShowModal();
    }
    bool minimised = true;
    const Later later([&] {
        minimised = form.WindowState() == Form::State::Minimized;
        form.Unload();
    });
    form.ShowModal();
    EXPECT_FALSE(minimised);
}

TEST(Form, KeepsTheModuleWhileItsWindowIsLoaded) {
    EXPECT_TRUE(Server::CanUnload());
    {
        TestForm form;
        form.Load();
        EXPECT_FALSE(Server::CanUnload());
    }
    EXPECT_TRUE(Server::CanUnload());
}

TEST(Form, MayBeHiddenByAnEventAndShownAgain) {
    TestForm form;
    for (int round = 0; round < 3; ++round) {
        const Later later([&] { form.Hide(); });
        form.ShowModal();
    }
    EXPECT_EQ(L"controls load activate activate activate ", WithoutResizes(form.Log));
}

TEST(Form, EveryCallPassesOnWhatItsEventsLetOut) {
    TestForm form;
    form.Load();
    MoveElsewhere(form);
    form.OnResize = [] { RaiseError(42); };
    EXPECT_EQ(42, NumberOf([&] { form.SetWidth(6000); }));
    EXPECT_EQ(42, NumberOf([&] { form.SetHeight(6000); }));
    EXPECT_EQ(42, NumberOf([&] { MoveElsewhere(form); }));
    EXPECT_EQ(0, NumberOf([&] { MoveElsewhere(form); })) << "it is there already";
}

TEST(Form, IsNoSmallerThanItsLeastSize) {
    TestForm form;
    form.Load();
    MINMAXINFO limits{};
    SendMessageW(form.Handle(), WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    EXPECT_EQ(TwipsToPixels(3000, form.Dpi()), limits.ptMinTrackSize.x);
    EXPECT_EQ(TwipsToPixels(2250, form.Dpi()), limits.ptMinTrackSize.y);
    limits.ptMinTrackSize = {9000, 8000};
    SendMessageW(form.Handle(), WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    EXPECT_EQ(9000, limits.ptMinTrackSize.x) << "what the system wants counts too";
    EXPECT_EQ(8000, limits.ptMinTrackSize.y);
}

TEST(Form, IsLaidOutAgainWhenFontsOrBarsChangeThoughItsSizeDoesNot) {
    TestForm form;
    form.Load();
    MoveElsewhere(form);
    const auto after = [&](UINT message, WPARAM wParam, LPARAM lParam) {
        form.Log.clear();
        form.Fonts = form.Colours = 0;
        SendMessageW(form.Handle(), message, wParam, lParam);
        return std::to_wstring(form.Fonts) + L" fonts " + std::to_wstring(form.Colours) + L" colours " + form.Log;
    };
    RECT same = BoundsOf(form.Handle());
    EXPECT_EQ(L"1 fonts 0 colours resize ", after(WM_DPICHANGED, MAKEWPARAM(96, 96), reinterpret_cast<LPARAM>(&same)));
    EXPECT_EQ(L"1 fonts 0 colours resize ", after(WM_SETTINGCHANGE, SPI_SETNONCLIENTMETRICS, 0));
    EXPECT_EQ(L"1 fonts 1 colours resize ", after(WM_SETTINGCHANGE, SPI_SETHIGHCONTRAST, 0));
    EXPECT_EQ(L"0 fonts 0 colours ", after(WM_SETTINGCHANGE, SPI_SETWORKAREA, 0));
    EXPECT_EQ(L"0 fonts 1 colours ", after(WM_SYSCOLORCHANGE, 0, 0));
    EXPECT_EQ(L"0 fonts 1 colours ", after(WM_THEMECHANGED, 0, 0));
    // The bars hear of the theme after the window does.
    MSG message;
    while (PeekMessageW(&message, form.Handle(), WM_APP, WM_APP, PM_REMOVE)) DispatchMessageW(&message);
    EXPECT_EQ(L"resize ", form.Log);
}

TEST(Form, RunsFromLeftToRightInAHostThatDoesNot) {
    DWORD before = 0;
    ASSERT_TRUE(GetProcessDefaultLayout(&before));
    SetProcessDefaultLayout(LAYOUT_RTL);
    const HWND host = MakeHostWindow();
    TestForm form;
    form.Load();
    SetProcessDefaultLayout(before);
    EXPECT_NE(0, GetWindowLongW(host, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
    EXPECT_EQ(0, GetWindowLongW(form.Handle(), GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
    EXPECT_EQ(0, GetWindowLongW(form.First.Handle(), GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
    DestroyWindow(host);
}

// While its window lives the code must stay in the process, whatever the host does with its references.
TEST(Form, GivesBackTheModuleThatItHeld) {
    static int given;
    const PatchedFunction release(
        L"kernel32.dll", "FreeLibrary",
        reinterpret_cast<void*>(static_cast<BOOL(WINAPI*)(HMODULE)>([](HMODULE module) WINAPI {
            if (module == GetModuleHandleW(nullptr)) ++given;
            return TRUE;
        })));
    ASSERT_TRUE(release);
    given = 0;
    {
        TestForm form;
        form.Load();
        EXPECT_EQ(0, given);
    }
    EXPECT_EQ(1, given);
    { const TestForm unused; }
    EXPECT_EQ(1, given);
}

TEST(Form, AnErrorInTheRepetitionOfADragComesOutBeforeAnotherMessageIsHandled) {
    static HWND under;
    const PatchedFunction window(
        L"user32.dll", "WindowFromPoint",
        reinterpret_cast<void*>(static_cast<HWND(WINAPI*)(POINT)>([](POINT) WINAPI { return under; })));
    ASSERT_TRUE(window);
    TestForm form;
    form.Load();
    under = form.First.Handle();
    int clicks = 0;
    int overs = 0;
    form.Second.Click = [&] { ++clicks; };
    form.First.DragOver = [&](Control&, float, float, DragState state) {
        if (state != DragState::Over || ++overs == 1) return;
        PostMessageW(form.Second.Handle(), BM_CLICK, 0, 0);
        RaiseError(44);
    };
    const Later later([&] { Dragging::Begin(form.Second, {}); });
    EXPECT_EQ(44, NumberOf([&] { form.ShowModal(); }));
    EXPECT_EQ(2, overs);
    EXPECT_EQ(0, clicks);
    EXPECT_FALSE(form.Visible());
    Dragging::Cancel();
    Dragging::Released();
}

TEST(Form, AMessageWhosePreviewFailsStillArrives) {
    TestForm form;
    form.Load();
    int clicks = 0;
    form.First.Click = [&] { ++clicks; };
    form.OnKey = [](const MSG& message) {
        if (message.message == BM_CLICK) RaiseError(45);
        return false;
    };
    {
        const Later later([&] { PostMessageW(form.First.Handle(), BM_CLICK, 0, 0); });
        EXPECT_EQ(45, NumberOf([&] { form.ShowModal(); }));
    }
    EXPECT_EQ(1, clicks);
    // What the preview takes does not.
    form.OnKey = [&](const MSG& message) {
        if (message.message == BM_CLICK) form.Hide();
        return message.message == BM_CLICK;
    };
    const Later later([&] { PostMessageW(form.First.Handle(), BM_CLICK, 0, 0); });
    form.ShowModal();
    EXPECT_EQ(1, clicks);
}
