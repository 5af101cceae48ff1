#include "support/Dialogs.h"

#include <gtest/gtest.h>
#include <commctrl.h>
#include <dlgs.h>

#include <algorithm>
#include <map>

namespace {

std::map<UINT_PTR, Dialogs*> all;
BoxAnswerer* answerer = nullptr;

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

std::wstring IconOf(HWND box) {
    for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        const auto icon = reinterpret_cast<HICON>(SendMessageW(child, STM_GETICON, 0, 0));
        wchar_t name[20]{};
        GetClassNameW(child, name, 20);
        if (lstrcmpiW(name, L"Static") != 0 || icon == nullptr) continue;
        if (icon == LoadIconW(nullptr, IDI_INFORMATION)) return L"information";
        if (icon == LoadIconW(nullptr, IDI_EXCLAMATION)) return L"exclamation";
        if (icon == LoadIconW(nullptr, IDI_QUESTION)) return L"question";
        return icon == LoadIconW(nullptr, IDI_HAND) ? L"hand" : L"another";
    }
    return L"none";
}

int ButtonsOf(HWND box) {
    int buttons = 0;
    for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        wchar_t name[20]{};
        GetClassNameW(child, name, 20);
        buttons += lstrcmpiW(name, L"Button") == 0 && (GetWindowLongW(child, GWL_STYLE) & WS_VISIBLE) != 0 ? 1 : 0;
    }
    return buttons;
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
            if ((GetWindowLongW(child, GWL_STYLE) & WS_VISIBLE) == 0) continue;
            if (lstrcmpiW(name, L"Button") == 0) seen.Buttons.push_back(GetDlgCtrlID(child));
            if (TextOf(child).size() > seen.Text.size()) seen.Text = TextOf(child);
        }
        std::sort(seen.Buttons.begin(), seen.Buttons.end());
        seen.Icon = IconOf(dialog);
        seen.Default = GetDlgCtrlID(GetFocus());
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

BoxAnswerer::BoxAnswerer(int button) : Button(button) {
    answerer = this;
    timer_ = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) WINAPI {
        const HWND box = FindWindowW(L"#32770", nullptr);
        if (box == nullptr || answerer == nullptr || !IsWindowVisible(box)) return;
        wchar_t text[1000]{};
        GetWindowTextW(box, text, 1000);
        answerer->Title = text;
        GetDlgItemTextW(box, 0xFFFF, text, 1000);
        answerer->Text = text;
        answerer->All.push_back(answerer->Title + L": " + answerer->Text);
        answerer->Icon = IconOf(box);
        answerer->Owner = GetWindow(box, GW_OWNER);
        answerer->Buttons = ButtonsOf(box);
        ++answerer->Boxes;
        SendMessageW(box, WM_COMMAND, static_cast<WPARAM>(answerer->Button), 0);
    });
}

BoxAnswerer::~BoxAnswerer() {
    KillTimer(nullptr, timer_);
    answerer = nullptr;
}
