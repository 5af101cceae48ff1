#include "support/Files.h"

#include <richedit.h>

#include "support/Dialogs.h"

void FilesFixture::Type(const std::wstring& text) {
    const HWND editor = EditorWindow::Editor();
    SendMessageW(editor, EM_SETSEL, 0x7FFFFFFF, 0x7FFFFFFF);
    SendMessageW(editor, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
}

void FilesFixture::Load(const std::wstring& path) {
    Dialogs dialogs;
    dialogs.File(path);
    Open();
    ASSERT_EQ(1U, dialogs.All.size());
    ASSERT_EQ(L"SQL Editor - " + path.substr(path.find_last_of(L'\\') + 1), EditorWindow::Caption());
}

bool FilesFixture::Modified() {
    const std::wstring text = EditorWindow::Text();
    Dialogs dialogs;
    dialogs.Cancel();  // Open asks or shows its dialog: both are cancelled
    Open();
    EXPECT_EQ(text, EditorWindow::Text());
    return dialogs.All.size() == 1 && dialogs.All[0].Name.empty() && dialogs.All[0].Buttons.size() == 3;
}
