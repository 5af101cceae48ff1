#include "support/Dialogs.h"

#include <commctrl.h>
#include <dlgs.h>

#include <algorithm>
#include <map>

namespace {

std::map<UINT_PTR, Dialogs*> all;

std::wstring TextOf(HWND window) {
    wchar_t text[2000]{};
    GetWindowTextW(window, text, 2000);
    return text;
}

// The dialog that waits for an answer: the one that is enabled.
HWND Waiting() {
    HWND found = nullptr;
    EnumWindows(
        [](HWND window, LPARAM result) WINAPI -> BOOL {
            DWORD process = 0;
            wchar_t name[20]{};
            GetWindowThreadProcessId(window, &process);
            GetClassNameW(window, name, 20);
            if (process != GetCurrentProcessId() || lstrcmpW(name, L"#32770") != 0 || !IsWindowVisible(window) ||
                !IsWindowEnabled(window)) {
                return TRUE;
            }
            *reinterpret_cast<HWND*>(result) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

// Where a file dialog takes the name: a field of its own or that of a list of names.
HWND NameField(HWND dialog) {
    for (const int id : {edt1, cmb13}) {
        const HWND field = GetDlgItem(dialog, id);
        if (field != nullptr) return field;
    }
    return nullptr;
}

}  // namespace

Dialogs::Dialogs()
    : timer_(SetTimer(nullptr, 0, 30, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
          const auto found = all.find(id);
          if (found != all.end()) found->second->Look();
      })) {
    all[timer_] = this;
}

Dialogs::~Dialogs() {
    KillTimer(nullptr, timer_);
    all.erase(timer_);
    EXPECT_TRUE(answers_.empty()) << answers_.size() << " answers that nobody asked for";
}

Dialogs& Dialogs::Button(int id) {
    answers_.push_back({id, {}});
    return *this;
}

Dialogs& Dialogs::File(const std::wstring& path) {
    answers_.push_back({IDOK, path});
    return *this;
}

void Dialogs::Look() {
    const HWND dialog = Waiting();
    // A file dialog is back after the question that it asked was answered by no.
    if (dialog == nullptr || dialog == answered_) return;
    answered_ = dialog;
    Seen seen;
    seen.Title = TextOf(dialog);
    seen.Owner = GetWindow(dialog, GW_OWNER);
    seen.OwnerDisabled = !IsWindowEnabled(seen.Owner);
    const HWND field = NameField(dialog);
    if (field != nullptr) {
        seen.Name = TextOf(field);
    } else {
        for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
            wchar_t name[20]{};
            GetClassNameW(child, name, 20);
            const LONG style = GetWindowLongW(child, GWL_STYLE);
            if ((style & WS_VISIBLE) == 0) continue;
            if (lstrcmpiW(name, L"Button") == 0) seen.Buttons.push_back(GetDlgCtrlID(child));
            if (lstrcmpiW(name, L"Static") == 0 && (style & SS_TYPEMASK) == SS_ICON) seen.HasIcon = true;
            if (TextOf(child).size() > seen.Text.size()) seen.Text = TextOf(child);
        }
        std::sort(seen.Buttons.begin(), seen.Buttons.end());
    }
    All.push_back(seen);
    Answer answer{IDCANCEL, {}};
    if (answers_.empty()) {
        ADD_FAILURE() << "nobody expected " << testing::PrintToString(seen.Title) << testing::PrintToString(seen.Text);
        if (!seen.Buttons.empty()) answer.Button = seen.Buttons.back();
    } else {
        answer = answers_.front();
        answers_.erase(answers_.begin());
        EXPECT_EQ(!answer.Path.empty(), field != nullptr && answer.Button == IDOK)
            << testing::PrintToString(seen.Title);
    }
    if (!answer.Path.empty() && field != nullptr) SetWindowTextW(field, answer.Path.c_str());
    PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(answer.Button), 0);
}

Folder::Folder() {
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    path_ = std::wstring(temporary) + L"sql files " + std::to_wstring(GetCurrentProcessId()) + L"\\";
    CreateDirectoryW(path_.c_str(), nullptr);
}

Folder::~Folder() {
    for (const std::wstring& name : List()) {
        SetFileAttributesW((path_ + name).c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileW((path_ + name).c_str());
        RemoveDirectoryW((path_ + name).c_str());
    }
    RemoveDirectoryW(path_.c_str());
}

std::vector<std::wstring> Folder::List() const {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((path_ + L"*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        const std::wstring name = found.cFileName;
        if (name != L"." && name != L"..") names.push_back(name);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    std::sort(names.begin(), names.end());
    return names;
}

std::wstring Folder::Names() const {
    std::wstring all;
    for (const std::wstring& name : List()) all += name + L"|";
    return all;
}

std::string BytesOf(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, 7, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return "<none>";
    std::string bytes(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    EXPECT_EQ(bytes.size(), read);
    return bytes;
}

void PutBytes(const std::wstring& path, const std::string& bytes) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
    ASSERT_EQ(bytes.size(), written);
}

std::wstring FilesFixture::Inside(const std::wstring& sql, const std::function<void()>& steps) {
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Database.Make());
    return DisplayAndClose(editor, sql, steps);
}

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

std::wstring FilesFixture::FormatPanel() {
    wchar_t text[200]{};
    SendMessageW(EditorWindow::Child(STATUSCLASSNAMEW), SB_GETTEXTW, 2, reinterpret_cast<LPARAM>(text));
    return text;
}
