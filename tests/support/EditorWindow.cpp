#include "support/EditorWindow.h"

#include <gtest/gtest.h>
#include <commctrl.h>

#include <cstdio>
#include <map>

#include "editor/ControlIds.h"
#include "support/Menus.h"

namespace {

struct Search {
    const wchar_t* Class;
    int Left;
    HWND Found;
};

std::wstring ClassOf(HWND window) {
    wchar_t name[100]{};
    GetClassNameW(window, name, 100);
    return name;
}

}  // namespace

HWND EditorWindow::Find() {
    HWND found = nullptr;
    EnumWindows(
        [](HWND window, LPARAM result) WINAPI -> BOOL {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            wchar_t caption[100]{};
            GetWindowTextW(window, caption, 100);
            if (process != GetCurrentProcessId() || !IsWindowVisible(window) ||
                wcsncmp(caption, L"SQL Editor", 10) != 0) {
                return TRUE;
            }
            *reinterpret_cast<HWND*>(result) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

HWND EditorWindow::Child(const wchar_t* windowClass, int position) {
    Search search{windowClass, position, nullptr};
    EnumChildWindows(
        Find(),
        [](HWND window, LPARAM parameter) WINAPI -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(parameter);
            if (lstrcmpiW(ClassOf(window).c_str(), wanted.Class) != 0 || wanted.Left-- > 0) return TRUE;
            wanted.Found = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.Found;
}

HWND EditorWindow::Control(int id) { return GetDlgItem(Find(), id); }

HWND EditorWindow::Editor() {
    const HWND editor = Child(L"RICHEDIT50W");
    return editor != nullptr ? editor : Child(L"RichEdit20W");
}

std::wstring EditorWindow::Text() {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(Editor())) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(Editor(), text.data(), static_cast<int>(text.size()))));
    return text;
}

void EditorWindow::SetText(const std::wstring& text) {
    SendMessageW(Editor(), EM_SETSEL, 0, -1);
    SendMessageW(Editor(), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
}

CHARRANGE EditorWindow::Selection() {
    CHARRANGE range{};
    SendMessageW(Editor(), EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    return range;
}

void EditorWindow::Select(LONG from, LONG to) {
    CHARRANGE range{from, to};
    SendMessageW(Editor(), EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
}

std::wstring EditorWindow::SelectedText() {
    const CHARRANGE range = Selection();
    std::wstring text(static_cast<size_t>(range.cpMax - range.cpMin) + 1, L'\0');
    text.resize(static_cast<size_t>(SendMessageW(Editor(), EM_GETSELTEXT, 0, reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::wstring EditorWindow::Status(int panel) {
    wchar_t text[1000]{};
    SendMessageW(Child(STATUSCLASSNAMEW), SB_GETTEXTW, static_cast<WPARAM>(panel - 1), reinterpret_cast<LPARAM>(text));
    return text;
}

std::wstring EditorWindow::Caption() {
    wchar_t text[300]{};
    GetWindowTextW(Find(), text, 300);
    return text;
}

HWND EditorWindow::NameList() {
    for (HWND list = nullptr; (list = FindWindowExW(nullptr, list, WC_LISTVIEWW, nullptr)) != nullptr;) {
        if (GetWindow(list, GW_OWNER) == Find() && IsWindowVisible(list)) return list;
    }
    return nullptr;
}

void EditorWindow::PressKey(WORD key, bool control) {
    BYTE before[256];
    GetKeyboardState(before);
    BYTE keys[256]{};
    if (control) keys[VK_CONTROL] = 0x80;
    SetKeyboardState(keys);
    SendMessageW(Editor(), WM_KEYDOWN, key, 1);
    SetKeyboardState(before);
}

std::wstring EditorWindow::Root() {
    const HWND tree = GetDlgItem(Control(IdLeftPage), IdView);
    wchar_t text[300]{};
    TVITEMW item{};
    item.mask = TVIF_TEXT;
    item.hItem = reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0));
    item.pszText = text;
    item.cchTextMax = 300;
    if (item.hItem == nullptr) return L"<none>";
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return text;
}

void EditorWindow::Choose(const wchar_t* menu, const wchar_t* entry) {
    const HWND window = Find();
    const HMENU bar = GetMenu(window);
    for (int at = 0; at < GetMenuItemCount(bar); ++at) {
        if (PlainCaption(bar, at) != menu) continue;
        const HMENU popup = GetSubMenu(bar, at);
        SendMessageW(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(popup), at);
        for (int below = 0; below < GetMenuItemCount(popup); ++below) {
            if (PlainCaption(popup, below) != entry) continue;
            SendMessageW(window, WM_COMMAND, GetMenuItemID(popup, below), 0);
            return;
        }
        for (int below = 0; below < GetMenuItemCount(popup); ++below) {
            const HMENU inner = GetSubMenu(popup, below);
            for (int task = 0; inner != nullptr && task < GetMenuItemCount(inner); ++task) {
                if (PlainCaption(inner, task) != entry) continue;
                SendMessageW(window, WM_COMMAND, GetMenuItemID(inner, task), 0);
                return;
            }
        }
    }
    ADD_FAILURE() << "no such menu entry";
}

void EditorWindow::PressReturn() {
    const HWND bar = Child(TOOLBARCLASSNAMEW);
    TBBUTTON button{};
    SendMessageW(bar, TB_GETBUTTON, 0, reinterpret_cast<LPARAM>(&button));
    SendMessageW(Find(), WM_COMMAND, static_cast<WPARAM>(button.idCommand), reinterpret_cast<LPARAM>(bar));
}

void EditorWindow::Close() { SendMessageW(Find(), WM_CLOSE, 0, 0); }

WhenShown::WhenShown(std::function<void()> step, Expect expect)
    : step_(std::move(step)), expect_(expect), watchdog_(Limit) {
    static std::map<UINT_PTR, WhenShown*> all;
    timer_ = SetTimer(nullptr, 0, 15, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
        const auto found = all.find(id);
        if (found == all.end() || EditorWindow::Find() == nullptr) return;
        WhenShown& self = *found->second;
        all.erase(found);
        KillTimer(nullptr, id);
        self.ran_ = true;
        self.step_();
        self.finished_ = true;
    });
    all[timer_] = this;
}

WhenShown::~WhenShown() {
    // Whoever calls a timer's procedure may catch an access violation in it and go on as if nothing had been.
    EXPECT_EQ(ran_, finished_) << "the step was cut off in the middle: something crashed";
    EXPECT_TRUE(ran_ || expect_ == Expect::MayStayHidden) << "the window was never shown";
    KillTimer(nullptr, timer_);
}
