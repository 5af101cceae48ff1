#include "editor/ControlIds.h"
#include "support/Editing.h"

class ClipboardTest : public EditingFixture {};

TEST_F(ClipboardTest, CopyTakesTheTextOfTheControlThatHasTheFocus) {
    Inside(L"a\r\nb\r\nc", [this] {
        SelectText(0, 4);
        Choose(L"Copy");
        EXPECT_EQ(L"a\r\nb\r", ClipboardText().substr(0, 5));
        EXPECT_EQ(L"0-4", Selection());

        Tree.Open(Tree.At({}));
        Tree.Click(Tree.At({3}));
        Choose(L"Copy");
        EXPECT_EQ(L"Sales & Co", ClipboardText());
        ShowPage(1);
        Choose(L"Copy");
        EXPECT_EQ(L"COMMIT", ClipboardText());
        ShowPage(3);
        Choose(L"Copy");
        EXPECT_EQ(L"@", ClipboardText());
        ShowPage(2);
        Choose(L"Copy");
        EXPECT_EQ(L"SQL Commands", ClipboardText());
        // Another control has no text to copy.
        SetFocus(EditorWindow::Control(IdLeftButton));
        Choose(L"Copy");
        EXPECT_EQ(L"SQL Commands", ClipboardText());
    });
}

TEST_F(ClipboardTest, ATextThatIsTooLargeIsRefusedAtOnce) {
    PutText(std::wstring(4 * 1024 * 1024 + 1, L'x'));
    Inside(L"mine", [] {
        Choose(L"Paste");
        EXPECT_EQ(L"mine", EditorWindow::Text());
    });
    EXPECT_EQ(L"frmSQLEditor.mnuEditPaste_Click 7", Errors.Places());
    PutText(L"");
}

TEST_F(ClipboardTest, CopyingNothingLeavesTheClipboard) {
    PutText(L"kept");
    Inside([] {
        SelectText(2, 2);
        Choose(L"Copy");
        Choose(L"Cut");
        EXPECT_EQ(L"kept", ClipboardText());
        EXPECT_EQ(L"select 1", EditorWindow::Text());
    });
}

// Programs that paste take it for the end of the text.
TEST_F(ClipboardTest, ANulIsABlankThere) {
    Inside(std::wstring(L"one\0two", 7), [] {
        SelectText(0, 7);
        Choose(L"Copy");
        EXPECT_EQ(L"one two", ClipboardText());
    });
}

TEST_F(ClipboardTest, CutCopiesAndTakesAway) {
    EXPECT_EQ(L"one two", Inside(L"one and two", [] {
                  SelectText(3, 7);
                  Choose(L"Cut");
                  EXPECT_EQ(L" and", ClipboardText());
                  EXPECT_EQ(L"3-3", Selection());
              }));
}

// The control's own copy brings rich text with its fonts. Other programs ask for it by message, wherever the focus is.
TEST_F(ClipboardTest, EveryDoorCopiesPlainText) {
    Inside(L"one two", [this] {
        const HWND editor = EditorWindow::Editor();
        const auto plain = [] {
            return IsClipboardFormatAvailable(RegisterClipboardFormatW(L"Rich Text Format")) ? L"<rich>"
                                                                                             : ClipboardText();
        };
        SelectText(0, 3);
        SendMessageW(editor, WM_COPY, 0, 0);
        EXPECT_EQ(L"one", plain());
        SetFocus(Tree.Handle());
        SelectText(4, 7);
        SendMessageW(editor, WM_COPY, 0, 0);
        EXPECT_EQ(L"two", plain());
        SelectText(3, 7);
        SendMessageW(editor, WM_CUT, 0, 0);
        EXPECT_EQ(L" two", plain());
        EXPECT_EQ(L"one", EditorWindow::Text());
        SelectText(3, 3);
        SendMessageW(editor, WM_CUT, 0, 0);
        EXPECT_EQ(L" two", plain());
    });
}

TEST_F(ClipboardTest, PasteGoesBehindTheSelectionFromEveryDoor) {
    PutText(L"+");
    EXPECT_EQ(L"one+++ two", Inside(L"one two", [] {
                  const HWND editor = EditorWindow::Editor();
                  SelectText(0, 3);
                  Choose(L"Paste");
                  EXPECT_EQ(L"one+ two", EditorWindow::Text());
                  EXPECT_EQ(L"4-4", Selection());
                  SelectText(0, 4);
                  SendMessageW(editor, WM_PASTE, 0, 0);
                  EXPECT_EQ(L"one++ two", EditorWindow::Text());
                  SelectText(0, 5);
                  BYTE keys[256]{};
                  keys[VK_SHIFT] = 0x80;
                  SetKeyboardState(keys);
                  SendMessageW(editor, WM_KEYDOWN, VK_INSERT, 1);
                  keys[VK_SHIFT] = 0;
                  SetKeyboardState(keys);
                  EXPECT_EQ(L"one+++ two", EditorWindow::Text());
                  // In one step of undo each.
                  SendMessageW(editor, EM_UNDO, 0, 0);
                  EXPECT_EQ(L"one++ two", EditorWindow::Text());
                  SendMessageW(editor, EM_REDO, 0, 0);
              }));
}

TEST_F(ClipboardTest, PasteElsewhereDoesNothing) {
    PutText(L"pasted");
    EXPECT_EQ(L"select 1", Inside([this] {
                  SetFocus(Tree.Handle());
                  Choose(L"Paste");
              }));
}

TEST_F(ClipboardTest, OnlyPlainTextEnters) {
    const char rtf[] = "{\\rtf1\\ansi{\\b bold}\\par next}";
    EXPECT_EQ(L"bold\r\nnext", Inside(L"", [&] {
                  PutOnClipboard(RegisterClipboardFormatW(L"Rich Text Format"), rtf, sizeof rtf);
                  Choose(L"Paste");
              }));
    EXPECT_EQ(L"a\r\nb", Inside(L"", [] {
                  PutText(L"a\nb");  // the line ends of other systems
                  Choose(L"Paste");
              }));
    EXPECT_EQ(L"{\\rtf1 x}", Inside(L"", [] {
                  PutText(L"{\\rtf1 x}");  // text, whatever it looks like
                  Choose(L"Paste");
              }));
}

TEST_F(ClipboardTest, AnEmptyClipboardAndOneWithoutText) {
    EXPECT_EQ(L"select 1", Inside([] {
                  PutOnClipboard(0, nullptr, 0);
                  SelectText(0, 6);
                  Choose(L"Paste");
                  // The selection is collapsed before the clipboard is asked, and that is all.
                  EXPECT_EQ(L"6-6", Selection());
                  const BYTE picture[64]{};
                  PutOnClipboard(CF_DIB, picture, sizeof picture);
                  SelectText(0, 6);
                  Choose(L"Paste");
                  EXPECT_EQ(L"6-6", Selection());
              }));
}

TEST_F(ClipboardTest, TwoMegabytes) {
    std::wstring line(1024, L'x');
    line += L"\r\n";
    std::wstring text;
    while (text.size() < 1024 * 1024) text += line;
    const std::wstring back = Inside(L"", [&] {
        PutText(text);
        Choose(L"Paste");
        Choose(L"Select All");
        Choose(L"Copy");
    });
    EXPECT_EQ(text.size(), back.size());
    EXPECT_TRUE(text == back);
    EXPECT_TRUE(text == ClipboardText());
}

TEST_F(ClipboardTest, AnotherProgramHoldsIt) {
    // Another thread with a window of its own is another program to the clipboard.
    static HANDLE holding, release;
    holding = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    release = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const HANDLE thread = CreateThread(
        nullptr, 0,
        [](void*) WINAPI -> DWORD {
            const HWND window =
                CreateWindowExW(0, L"Static", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
            OpenClipboard(window);
            SetEvent(holding);
            WaitForSingleObject(release, 20000);
            CloseClipboard();
            DestroyWindow(window);
            return 0;
        },
        nullptr, 0, nullptr);
    WaitForSingleObject(holding, 5000);
    const wchar_t* const told =
        L"Unable to access the clipboard. Another program has locked the clipboard and not released it yet. If it "
        L"persists, try closing "
        L"other applications to find the program that locks the clipboard.";
    Inside([&] {
        SelectText(0, 6);
        Choose(L"Copy");
        ASSERT_EQ(1U, Errors.Told.size());
        EXPECT_EQ(std::wstring(L"Alert,") + told + L",<missing>", Errors.Told[0]);
        EXPECT_EQ(L"", Errors.Places());
        Choose(L"Cut");  // what cannot be copied is not taken away
        EXPECT_EQ(2U, Errors.Told.size());
        EXPECT_EQ(L"select 1", EditorWindow::Text());
        EXPECT_EQ(L"0-6", Selection());
        Choose(L"Paste");
        EXPECT_EQ(L"select 1", EditorWindow::Text());
        EXPECT_EQ(L"6-6", Selection());
        SetEvent(release);
        WaitForSingleObject(thread, 5000);
        SelectText(0, 6);
        Choose(L"Copy");
        EXPECT_EQ(L"select", ClipboardText());
    });
    EXPECT_EQ(L"frmSQLEditor.mnuEditPaste_Click 521", Errors.Places());
    CloseHandle(thread);
    CloseHandle(holding);
    CloseHandle(release);
}
