#include "forms/Form.h"

#include <functional>

#include "Expect.h"
#include "forms/CommandButton.h"
#include "forms/RichTextBox.h"
#include "forms/Twips.h"

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
    void FontsChanged() override {}
    void Form_Load() override {
        Log += L"load ";
        if (OnLoad) OnLoad();
    }
    void Form_Activate() override {
        Log += L"activate ";
        if (OnActivate) OnActivate();
    }
    void Form_Resize() override { Log += L"resize "; }
    void Form_Unload(bool& cancel) override {
        cancel = true;
        Log += L"unload ";
        if (OnUnload) OnUnload();
        Hide();
    }
};

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
        watchdog_ = SetTimer(nullptr, 0, 20000, [](HWND, UINT, UINT_PTR, DWORD) WINAPI { ExitProcess(99); });
    }
    ~Later() {
        KillTimer(nullptr, timer_);
        KillTimer(nullptr, watchdog_);
    }
    Later(const Later&) = delete;
    Later& operator=(const Later&) = delete;

private:
    UINT_PTR timer_;
    UINT_PTR watchdog_;
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
    form.SetLeft(1000);
    form.SetTop(1500);
    form.SetWidth(6500);
    form.SetHeight(6000);
    const UINT dpi = form.Dpi();
    EXPECT_FLOAT_EQ(PixelsToTwips(TwipsToPixels(1000, dpi), dpi), form.Left());
    EXPECT_FLOAT_EQ(PixelsToTwips(TwipsToPixels(1500, dpi), dpi), form.Top());
    EXPECT_FLOAT_EQ(PixelsToTwips(TwipsToPixels(6500, dpi), dpi), form.Width());
    EXPECT_FLOAT_EQ(PixelsToTwips(TwipsToPixels(6000, dpi), dpi), form.Height());
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([&] { form.SetLeft(1e30F); }));
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
