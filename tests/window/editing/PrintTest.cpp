#include <windows.h>
#include <dlgs.h>

#include "support/Editing.h"

namespace {

// What stood in the box that Print shows: the print dialog, or the system's message that there is no printer. Both are
// closed.
struct Box {
    bool Came = false;
    bool IsDialog = false;
    bool Pages = true;  // whether page numbers can be chosen
    HWND Owner = nullptr;
    std::wstring Selection;
};

class PrintTest : public EditingFixture {
protected:
    // Chooses Print with a part of the text selected.
    Box Print() {
        static Box box;
        box = {};
        Inside(
            [] {
                SelectText(3, 9);
                const UINT_PTR timer = SetTimer(nullptr, 0, 30, [](HWND, UINT, UINT_PTR, DWORD) WINAPI {
                    const HWND shown = FindWindowW(L"#32770", nullptr);
                    if (shown == nullptr || !IsWindowVisible(shown)) return;
                    const HWND pages = GetDlgItem(shown, rad3);
                    box.Came = true;
                    box.IsDialog = pages != nullptr;
                    box.Pages = pages != nullptr && IsWindowEnabled(pages);
                    box.Owner = GetWindow(shown, GW_OWNER);
                    box.Selection = Selection();
                    SendMessageW(shown, WM_COMMAND, pages != nullptr ? IDCANCEL : IDOK, 0);
                });
                EditorWindow::Choose(L"File", L"Print...");
                KillTimer(nullptr, timer);
                EXPECT_EQ(L"3-3", Selection());
                EXPECT_TRUE(IsWindowEnabled(EditorWindow::Find()));
                EXPECT_EQ(L"one two three", EditorWindow::Text());
            },
            L"one two three");
        return box;
    }
};

}  // namespace

TEST_F(PrintTest, TheSelectionIsCollapsedAndThePagesCannotBeChosen) {
    const Box box = Print();
    EXPECT_TRUE(box.Came);
    EXPECT_EQ(L"3-3", box.Selection);  // before the dialog comes
    EXPECT_FALSE(box.Pages);
    // Cancelled, or told by the system that there is no printer: either way the user knows.
    EXPECT_EQ(L"", Errors.Places());
    EXPECT_TRUE(Errors.Told.empty());
}
