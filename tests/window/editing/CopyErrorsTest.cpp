#include "support/Editing.h"
#include "support/PatchedFunction.h"

class CopyErrorsTest : public EditingFixture {
protected:
    static void Focus(HWND window) { SetFocus(window); }
};

TEST_F(CopyErrorsTest, WhereNoNodeIsSelectedTheErrorIsReportedAndNotTold) {
    PutText(L"kept");
    Database.Members[L"DBType"] = [](const Arguments&) { return Variant(17L); };
    Inside([this] {
        // Neither tree has a selected node: the object browser from the first, the other has no nodes at all.
        for (const HWND view : {Tree.Handle(), View(2)}) {
            ShowPage(view == Tree.Handle() ? 0 : 2);
            Focus(view);
            ASSERT_EQ(0, SendMessageW(view, TVM_GETNEXTITEM, TVGN_CARET, 0));
            Errors.Forget();
            Choose(L"Copy");
            EXPECT_EQ(L"frmSQLEditor.mnuEditCopy_Click 91", Errors.Places());
        }
        EXPECT_TRUE(Errors.Told.empty());
        EXPECT_EQ(L"kept", ClipboardText());
    });
}

// The clipboard was opened and does not take the text: that is not the message of one that is locked.
TEST_F(CopyErrorsTest, AClipboardThatRefusesTheTextIsReportedAndNotTold) {
    Inside(L"one two", [this] {
        SelectText(0, 3);
        Focus(EditorWindow::Editor());
        const PatchedFunction refused(
            L"user32.dll", "SetClipboardData",
            reinterpret_cast<void*>(static_cast<HANDLE(WINAPI*)(UINT, HANDLE)>([](UINT, HANDLE) WINAPI -> HANDLE {
                SetLastError(ERROR_NOT_ENOUGH_MEMORY);
                return nullptr;
            })));
        ASSERT_TRUE(refused);
        Choose(L"Copy");
        EXPECT_EQ(L"frmSQLEditor.mnuEditCopy_Click 7", Errors.Places());
        Errors.Forget();
        Choose(L"Cut");
        EXPECT_EQ(L"frmSQLEditor.mnuEditCopy_Click 7", Errors.Places());
        EXPECT_EQ(L"one two", EditorWindow::Text());  // what was not copied is not cut
        Errors.Forget();
    });
    EXPECT_TRUE(Errors.Told.empty());
}

TEST_F(CopyErrorsTest, WhereNoRowIsSelectedNothingIsCopied) {
    PutText(L"kept");
    Inside([] {
        for (const int page : {1, 3}) {
            ShowPage(page);
            SendMessageW(View(page), LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
            Choose(L"Copy");
            EXPECT_EQ(L"kept", ClipboardText());
        }
    });
}

TEST_F(CopyErrorsTest, TheLastRowsAreCopiedToo) {
    Inside([] {
        const struct {
            int Page;
            WPARAM Row;
            const wchar_t* Text;
        } rows[] = {{1, 9, L"UPDATE"}, {3, 24, L"VARIABLE"}, {1, 1, L"CREATE TABLE"}};
        for (const auto& row : rows) {
            ShowPage(row.Page);
            SendMessageW(View(row.Page), LB_SETCURSEL, row.Row, 0);
            Choose(L"Copy");
            EXPECT_EQ(std::wstring(row.Text), ClipboardText());
        }
    });
}

TEST_F(CopyErrorsTest, WhatIsPastedAndTheTimeAreScrolledIntoView) {
    PutText(L"pasted");
    std::wstring lines;
    for (int at = 0; at < 200; ++at) lines += L"line\r\n";
    Inside(lines, [] {
        const HWND editor = EditorWindow::Editor();
        for (const wchar_t* entry : {L"Paste", L"Time/Date"}) {
            SelectText(0x7FFFFFF, 0x7FFFFFF);
            SendMessageW(editor, WM_VSCROLL, SB_TOP, 0);
            EXPECT_EQ(0, SendMessageW(editor, EM_GETFIRSTVISIBLELINE, 0, 0)) << entry;
            Choose(entry);
            EXPECT_GT(SendMessageW(editor, EM_GETFIRSTVISIBLELINE, 0, 0), 150) << entry;
        }
    });
}

TEST_F(CopyErrorsTest, TheTabKeyOfTheWindowsLoopWritesATab) {
    const Object editor = Connected();
    std::wstring text = L"ab";
    const WhenShown shown([] {
        SelectText(1, 1);
        // Through the window's own message loop, where Tab could move the focus instead.
        PostMessageW(EditorWindow::Editor(), WM_KEYDOWN, VK_TAB, MapVirtualKeyW(VK_TAB, 0) << 16 | 1);
        static int turns;
        turns = 0;
        SetTimer(nullptr, 0, 30, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
            if (EditorWindow::Text() != L"a\tb" && ++turns < 50) return;
            KillTimer(nullptr, id);
            EXPECT_EQ(EditorWindow::Editor(), GetFocus());
            EditorWindow::Close();
        });
    });
    editor.Call(L"Display", ByRef(text));
    EXPECT_EQ(L"a\tb", text);
}
