#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "FaultyHost.h"
#include "support/Dialogs.h"

// The part of the matrix that comes before the window: Constructor and the first Display, each case in a component that
// knows nothing yet.

namespace {

class StartFaultsTest : public FaultyHostFixture {
protected:
    struct Seen {
        std::wstring Left = L"<not shown>";
        std::wstring Sql = L"-- mine";
    };

    // Constructor, and Display of a window that is closed at once.
    Seen Start(std::optional<Case> wanted) {
        Wanted.Arm(std::move(wanted));
        editor_.Call(L"Constructor", MakeHost());
        const Seen seen = Show();
        Wanted.Disarm();
        return seen;
    }

    Seen Show() {
        Seen seen;
        {
            // What is not shown leaves "<not shown>", which the model knows of.
            const WhenShown shown(
                [&] {
                    seen.Left = EditorWindow::Status() + L"/" + EditorWindow::Root();
                    EditorWindow::Close();
                },
                WhenShown::Expect::MayStayHidden);
            editor_.Call(L"Display", ByRef(seen.Sql));
        }
        return seen;
    }

    void DoInside(Fault fault) {
        if (fault == Fault::Reenters) {
            Pump();
            std::wstring other = L"another text";
            // Before the window is shown a second Display is the first one.
            const WhenShown shown([] { EditorWindow::Close(); }, WhenShown::Expect::MayStayHidden);
            editor_.Call(L"Display", ByRef(other));
            EXPECT_EQ(L"another text", other);
        } else if (fault == Fault::Forgets) {
            editor_.Call(L"Constructor", Object());
        } else if (EndsWindow(fault)) {
            editor_.Call(L"Destructor");
        }
    }

    Object editor_;
};

}  // namespace

TEST_F(StartFaultsTest, ConstructorAndDisplay) {
    Wanted.Inside = [this](Fault fault) { DoInside(fault); };
    Model well({});
    const Outcome right = well.Start();
    int cases = 0;
    const auto run = [&](const Case& wanted, bool connected, bool again) {
        ++cases;
        const std::string name = std::string(wanted.Member.begin(), wanted.Member.end()) + ", " + NameOf(wanted.Way) +
                                 (connected ? ", connected before" : "");
        SCOPED_TRACE(name);
        Dog.Begin(name);
        ASSERT_EQ(S_OK, Dll.CanUnload());
        editor_ = Dll.Create();
        Model model(wanted);
        const Outcome expected = model.Start(connected);
        BoxAnswerer boxes;
        if (connected) editor_.Call(L"Constructor", MakeHost());
        const Seen seen = Start(wanted);
        EXPECT_LE(1, Wanted.Injected()) << "the call was not made";
        Compare(expected, boxes.All);
        EXPECT_EQ(expected.Left, seen.Left);
        EXPECT_EQ(L"-- mine", seen.Sql);
        // The next call works: in a window of its own, since this one is as far as it was built.
        editor_.Call(L"Destructor");
        if (again) {
            const Seen next = Start({});
            Compare(right, boxes.All);
            EXPECT_EQ(right.Left, next.Left);
            EXPECT_EQ(right.Calls, Wanted.Calls());
            editor_.Call(L"Destructor");
        }
        editor_ = Object();
    };
    size_t number = 0;
    for (const std::wstring& member : right.Calls) {
        for (const Fault fault : AllFaults) {
            if (fault == Fault::Closes) continue;  // there is no window yet
            // Where the one is reported so is the other.
            const bool alike = IsSpecialNumber(fault) || fault == Fault::MissingMember || fault == Fault::OwnLimit;
            if ((alike && !EveryCase()) || !IsChosen(number++, 1, 5)) continue;
            // The first call stands for the others of its procedure in what comes after it.
            const bool first = member == right.Calls.front() || member == L"DBTypeName";
            run({member, 1, fault}, false, EveryCase() || (first && IsFollowedUp(fault)));
            // What was there before a Constructor that fails is there still, as far as it was not replaced.
            if (fault == Fault::ObjectError || fault == Fault::Empty || EveryCase()) {
                run({member, 1, fault}, true, false);
            }
        }
    }
    std::printf("fault matrix, start: %d cases\n", cases);
}

TEST_F(StartFaultsTest, TheSecondDisplay) {
    Wanted.Inside = [this](Fault fault) { DoInside(fault); };
    Model well({});
    const Outcome right = well.StartTwice();
    int cases = 0;
    for (const Fault fault : AllFaults) {
        // What does not depend on which time it is.
        if (fault == Fault::UnknownName || fault == Fault::Closes || (IsSpecialNumber(fault) && !EveryCase())) continue;
        ++cases;
        const Case wanted{L"DBTypeName", 2, fault};
        SCOPED_TRACE(NameOf(fault));
        Dog.Begin("the second Display, " + NameOf(fault));
        editor_ = Dll.Create();
        Model model(wanted);
        const Outcome expected = model.StartTwice();
        BoxAnswerer boxes;
        Wanted.Arm(wanted);
        editor_.Call(L"Constructor", MakeHost());
        EXPECT_EQ(right.Left, Show().Left);
        const Seen seen = Show();
        EXPECT_EQ(1, Wanted.Injected());
        Compare(expected, boxes.All);
        EXPECT_EQ(expected.Left, seen.Left);
        EXPECT_EQ(L"-- mine", seen.Sql);
        // The third shows the window as it was, unless the host has let go of it or of the connection.
        Wanted.Disarm();
        if (fault != Fault::Forgets) {
            EXPECT_EQ(right.Left, Show().Left);
            Compare({}, boxes.All);
        }
        editor_ = Object();
    }
    std::printf("fault matrix, second Display: %d cases\n", cases);
}
