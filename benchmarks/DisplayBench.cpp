#include <windows.h>

#include <optional>

#include "Bench.h"
#include "RawWindow.h"
#include "Shown.h"
#include "support/Browsed.h"

// The way to a window that the user sees: from the call of Display on an object that has none yet until everything is
// painted, against a window that is made and shown by bare calls and shows the same: classes, styles, places, fonts,
// menu, texts, rows and nodes.
class DisplayBench : public BrowsedFixture {};

TEST_F(DisplayBench, TheFirstToTheFirstPaint) {
    Type(8);  // the database-specific tree is not empty
    WindowPlan plan;
    {
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", Database.Make());
        DisplayAndClose(editor, L"select 1", [&] { plan = WindowPlan::OfEditor(); });
        editor.Call(L"Destructor");
    }
    EXPECT_LT(15U, plan.Parts.size());
    const auto ours = [&] {
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", Database.Make());
        double painted = 0;
        const WhenWaiting step([&] {
            const HWND window = ShownEditor();
            PaintNow(window);
            painted = Now();
            SendMessageW(window, WM_CLOSE, 0, 0);
        });
        std::wstring text = L"select 1";
        const double called = Now();
        editor.Call(L"Display", ByRef(text));
        editor.Call(L"Destructor");
        return painted - called;
    };
    const auto raw = [&] {
        std::optional<RawWindow> window;
        const double time = Took([&] {
            window.emplace(plan);
            const wchar_t* text = L"select 1";
            SendMessageW(window->Editor(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
            window->Show();
        });
        window->Hide();
        return time;
    };
    Compare({"first Display to the first paint, against a bare window", 0, 1.5}, ours, raw);
}
