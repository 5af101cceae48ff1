#include <gtest/gtest.h>

#include "Component.h"

namespace {

// A visible window of this thread that is the active one.
class ActiveWindow {
public:
    explicit ActiveWindow(DWORD extended = 0)
        : window_(CreateWindowExW(extended, L"Static", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50, 50, 300, 200,
                                  nullptr, nullptr, GetModuleHandleW(nullptr), nullptr)) {
        SetActiveWindow(window_);
        EXPECT_EQ(GetActiveWindow(), window_);
    }
    ~ActiveWindow() { DestroyWindow(window_); }
    ActiveWindow(const ActiveWindow&) = delete;
    ActiveWindow& operator=(const ActiveWindow&) = delete;
    HWND Handle() const { return window_; }

private:
    HWND window_;
};

class BrvErrorAlert : public testing::Test {
protected:
    LogFolder Log;
    EnvironmentValue Alerts{L"BRVERROR_ALERTS", nullptr};
};

}  // namespace

TEST_F(BrvErrorAlert, ShowsAnErrorInPlainWords) {
    const Object component = Component::MakeConstructed();
    const auto boxes = BoxesOf([&] {
        component.Call(L"ErrorMessage", L"frmMain", L"Form_Load", MakeError(13, L"Source", L"Type mismatch"), 40L,
                       L"debug");
    });
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].Title, L"Test Program");
    EXPECT_EQ(boxes[0].Text, L"Type mismatch\r\n\r\nIn frmMain.Form_Load (number 13, source Source)");
    EXPECT_TRUE(boxes[0].Warning);
    EXPECT_FALSE(boxes[0].Information);
}

TEST_F(BrvErrorAlert, IsOwnedByTheActiveWindow) {
    const Object component = Component::MakeConstructed();
    const ActiveWindow other;
    const ActiveWindow owner(WS_EX_TOPMOST);
    const auto boxes = BoxesOf([&] {
        component.Call(L"ErrorMessage", L"m", L"r", MakeError(5, L"s", L"d"), 0L);
        component.Call(L"Alert", L"message");
    });
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].Owner, owner.Handle());
    EXPECT_EQ(boxes[1].Owner, owner.Handle());
}

TEST_F(BrvErrorAlert, IsOwnedByATopmostWindowThatIsNotActive) {
    const Object component = Component::MakeConstructed();
    const auto make = [](DWORD extended, DWORD style) {
        return CreateWindowExW(extended | WS_EX_NOACTIVATE, L"Static", L"window", WS_POPUP | WS_BORDER | style, 20, 20,
                               100, 100, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    };
    const HWND ordinary = make(0, 0);
    const HWND topmost = make(WS_EX_TOPMOST, 0);
    const HWND hidden = make(WS_EX_TOPMOST, 0);
    const HWND disabled = make(WS_EX_TOPMOST, WS_DISABLED);
    for (const HWND shown : {ordinary, topmost, disabled}) ShowWindow(shown, SW_SHOWNOACTIVATE);
    SetActiveWindow(nullptr);
    ASSERT_EQ(GetActiveWindow(), nullptr);
    const auto boxes = BoxesOf([&] { component.Call(L"Alert", L"message"); });
    for (const HWND made : {disabled, topmost, hidden, ordinary}) DestroyWindow(made);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].Owner, topmost);
}

// A timer of the host goes on while a box is open, and what it does fails each time.
TEST_F(BrvErrorAlert, ShowsOneAtATimeAndLogsTheOthers) {
    static Object component;
    static int ticks;
    component = Component::MakeConstructed();
    ticks = 0;
    const UINT_PTR timer = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
        if (++ticks > 3) KillTimer(nullptr, id);
        component.Call(L"ErrorMessage", L"m", L"timer", MakeError(5, L"s", L"again"), 0L);
        component.Call(L"Alert", L"told");
    });
    const auto boxes = BoxesOf([&] {
        const DWORD begun = GetTickCount();
        // The box is closed as soon as it is seen: until a tick came inside one.
        while (ticks == 0 && GetTickCount() - begun < 10000) component.Call(L"Alert", L"first");
    });
    KillTimer(nullptr, timer);
    ASSERT_LT(0, ticks);
    for (const auto& box : boxes) EXPECT_EQ(box.Text, L"first");
    const auto entries = EntriesOf(Log.File());
    EXPECT_EQ(static_cast<size_t>(ticks) * 2, entries.size());
    component = Object();
}

TEST_F(BrvErrorAlert, TellsAMessageUnderTheTitleGivenOrTheProgramsOwn) {
    const Object component = Component::MakeConstructed();
    const auto boxes = BoxesOf([&] {
        component.Call(L"Alert", L"first");
        component.Call(L"Alert", L"second", L"Another Title");
        component.Call(L"Alert", L"third", Variant::Missing());
        component.Call(L"Alert", L"fourth", Variant::Null());
    });
    ASSERT_EQ(boxes.size(), 4u);
    EXPECT_EQ(boxes[0].Text, L"first");
    EXPECT_EQ(boxes[0].Title, L"Test Program");
    EXPECT_TRUE(boxes[0].Information);
    EXPECT_EQ(boxes[1].Text, L"second");
    EXPECT_EQ(boxes[1].Title, L"Another Title");
    EXPECT_EQ(boxes[2].Title, L"Test Program");
    EXPECT_EQ(boxes[3].Title, L"Test Program");
    EXPECT_FALSE(FileExists(Log.File()));
}

TEST_F(BrvErrorAlert, AsksThePropertyWhetherToShowErrors) {
    const Object component = Component::MakeConstructed();
    EXPECT_TRUE(component.Get(L"DisplayAlerts").ToBoolean());
    EXPECT_EQ(component.Get(L"DisplayAlerts").vt, VT_BOOL);
    component.Let(L"DisplayAlerts", false);
    EXPECT_FALSE(component.Get(L"DisplayAlerts").ToBoolean());
    auto boxes = BoxesOf([&] { component.Call(L"ErrorMessage", L"m", L"r", MakeError(5, L"s", L"quiet"), 0L); });
    EXPECT_TRUE(boxes.empty());
    component.Let(L"DisplayAlerts", -1L);  // any number that is not 0
    boxes = BoxesOf([&] { component.Call(L"ErrorMessage", L"m", L"r", MakeError(5, L"s", L"loud"), 0L); });
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(EntriesOf(Log.File()).size(), 2u) << "both are logged";
}

TEST_F(BrvErrorAlert, RefusesWhatIsNoBoolean) {
    const Object component = Component::MakeConstructed();
    for (const auto& [value, number] : {std::pair<Variant, long>{L"perhaps", ErrorNumber::TypeMismatch},
                                        {Variant::Null(), ErrorNumber::InvalidUseOfNull}}) {
        try {
            component.Let(L"DisplayAlerts", value);
            ADD_FAILURE() << number;
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number, number);
        }
        EXPECT_TRUE(component.Get(L"DisplayAlerts").ToBoolean());
    }
}

TEST_F(BrvErrorAlert, StartsSilentWhereNobodyWatches) {
    {
        const EnvironmentValue off(L"BRVERROR_ALERTS", L"0");
        const Object component = Component::MakeConstructed();
        EXPECT_FALSE(component.Get(L"DisplayAlerts").ToBoolean());
        const auto boxes = BoxesOf([&] { component.Call(L"Alert", L"unseen"); });
        EXPECT_TRUE(boxes.empty());
        const auto entries = EntriesOf(Log.File());
        ASSERT_EQ(entries.size(), 1u) << "what nobody could see is kept";
        EXPECT_EQ(entries[0].at(6), L"unseen");
        component.Let(L"DisplayAlerts", true);
        EXPECT_EQ(BoxesOf([&] { component.Call(L"Alert", L"seen"); }).size(), 1u);
    }
    for (const wchar_t* other : {L"1", L"", L"00", L"no"}) {
        const EnvironmentValue on(L"BRVERROR_ALERTS", other);
        EXPECT_TRUE(Component::Make().Get(L"DisplayAlerts").ToBoolean());
    }
}

TEST_F(BrvErrorAlert, SaysWhatItKnowsOfAnErrorThatTellsLittle) {
    const Object component = Component::MakeConstructed();
    auto* partial = new DynamicObject;
    const Object error = Object::Attach(partial);
    partial->Define(L"Number", [](const Arguments&) { return Variant(7L); });
    partial->Define(L"Source", [](const Arguments&) -> Variant { RaiseError(ErrorNumber::PermissionDenied); });
    const auto boxes = BoxesOf([&] {
        component.Call(L"ErrorMessage", L"m", L"r", error, 0L);
        component.Call(L"ErrorMessage", L"m", L"r", Variant::Nothing(), 0L);
        component.Call(L"ErrorMessage");
    });
    ASSERT_EQ(boxes.size(), 3u);
    EXPECT_EQ(boxes[0].Text, L"An error occurred that has no description.\r\n\r\nIn m.r (number 7)");
    EXPECT_EQ(boxes[1].Text, L"An error occurred that has no description.\r\n\r\nIn m.r");
    EXPECT_EQ(boxes[2].Text, L"An error occurred that has no description.\r\n\r\nIn an unnamed place");
}

TEST_F(BrvErrorAlert, ComesAllTheSameWhenTheLogCannotBeWritten) {
    const Object component = Component::MakeConstructed();
    const EnvironmentValue nowhere(L"BRVERROR_LOG", L"C:\\no such folder\\deeper\\events.log");
    auto boxes = BoxesOf([&] { component.Call(L"ErrorMessage", L"m", L"r", MakeError(5, L"s", L"d"), 0L); });
    EXPECT_EQ(boxes.size(), 1u);
    // A folder that has the file's name.
    ASSERT_TRUE(CreateDirectoryW(Log.File(L"folder").c_str(), nullptr));
    const EnvironmentValue folder(L"BRVERROR_LOG", Log.File(L"folder").c_str());
    boxes = BoxesOf([&] {
        component.Call(L"ErrorMessage", L"m", L"r", MakeError(5, L"s", L"d"), 0L);
        component.Call(L"LogEvent", L"lost");
    });
    EXPECT_EQ(boxes.size(), 1u);
}

TEST_F(BrvErrorAlert, CutsATextThatNoScreenHolds) {
    const Object component = Component::MakeConstructed();
    const std::wstring huge(200000, L'x');
    const auto boxes = BoxesOf([&] {
        component.Call(L"ErrorMessage", L"m", L"r", MakeError(5, L"s", huge.c_str()), 0L);
        component.Call(L"Alert", huge, huge);
    });
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_LT(boxes[0].Text.size(), 2200u);
    EXPECT_NE(boxes[0].Text.find(L"x...\r\n\r\nIn m.r (number 5, source s)"), std::wstring::npos)
        << "where it happened is seen all the same";
    EXPECT_LT(boxes[1].Text.size(), 2200u);
    EXPECT_LT(boxes[1].Title.size(), 2200u);
}

TEST_F(BrvErrorAlert, IsNotCutOffByANulCharacter) {
    const Object component = Component::MakeConstructed();
    const auto boxes = BoxesOf([&] { component.Call(L"Alert", std::wstring(L"before\0behind", 13)); });
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].Text, L"before behind");
}

TEST_F(BrvErrorAlert, WorksBeforeConstructor) {
    const Object component = Component::Make();
    const auto boxes = BoxesOf([&] {
        component.Call(L"Alert", L"early");
        component.Call(L"ErrorMessage", L"m", L"r", MakeError(5, L"s", L"d"), 0L);
    });
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].Title, L"brvError");
    EXPECT_EQ(boxes[1].Title, L"brvError");
}
