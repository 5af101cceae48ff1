#include "support/EditorTree.h"

#include <cstring>

#include "support/Fakes.h"

HWND View(int page) { return GetDlgItem(GetDlgItem(EditorWindow::Find(), 1020 + page), 1030 + page); }

void ShowPage(int page) { SendMessageW(GetDlgItem(EditorWindow::Find(), 1010 + page), BM_CLICK, 0, 0); }

std::wstring Description() {
    wchar_t text[4000]{};
    GetWindowTextW(GetDlgItem(EditorWindow::Find(), 1003), text, 4000);
    return text;
}

// ---- EditorTree

HWND EditorTree::Handle() const { return View(view_); }

HTREEITEM EditorTree::Next(UINT relation, HTREEITEM item) const {
    return reinterpret_cast<HTREEITEM>(
        SendMessageW(Handle(), TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
}

HTREEITEM EditorTree::At(std::initializer_list<int> path) const {
    HTREEITEM item = Next(TVGN_ROOT, nullptr);
    for (int position : path) {
        item = Next(TVGN_CHILD, item);
        while (position-- > 0 && item != nullptr) item = Next(TVGN_NEXT, item);
    }
    return item;
}

std::wstring EditorTree::Text(HTREEITEM item) const {
    wchar_t text[1000]{};
    TVITEMW read{};
    read.mask = TVIF_TEXT;
    read.hItem = item;
    read.pszText = text;
    read.cchTextMax = 1000;
    SendMessageW(Handle(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&read));
    return text;
}

std::wstring EditorTree::Children(HTREEITEM item) const {
    std::wstring texts;
    const HTREEITEM first = Next(TVGN_CHILD, item);
    for (HTREEITEM child = first; child != nullptr; child = Next(TVGN_NEXT, child)) {
        texts += (child == first ? L"" : L"|") + Text(child);
    }
    return texts;
}

HTREEITEM EditorTree::Named(HTREEITEM parent, const wchar_t* text) const {
    for (HTREEITEM child = Next(TVGN_CHILD, parent); child != nullptr; child = Next(TVGN_NEXT, child)) {
        if (Text(child) == text) return child;
    }
    ADD_FAILURE() << "no such node";
    return nullptr;
}

HTREEITEM EditorTree::Selected() const { return Next(TVGN_CARET, nullptr); }

int EditorTree::Count() const { return static_cast<int>(SendMessageW(Handle(), TVM_GETCOUNT, 0, 0) & 0xFFFF); }

void EditorTree::Select(HTREEITEM item) const {
    SendMessageW(Handle(), TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
}

bool EditorTree::Place(HTREEITEM item, POINT& at) const {
    RECT place{};
    std::memcpy(&place, &item, sizeof item);  // where the message looks for it
    if (!SendMessageW(Handle(), TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&place))) return false;
    at = {place.left + 3, (place.top + place.bottom) / 2};
    return true;
}

void EditorTree::Click(HTREEITEM item) const {
    SendMessageW(Handle(), TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
    POINT at{};
    ASSERT_TRUE(Place(item, at));
    SendMessageW(Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
    SendMessageW(Handle(), WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
}

void EditorTree::RightClick(HTREEITEM item) const {
    POINT at{2, 2};
    if (item != nullptr) {
        ASSERT_TRUE(Place(item, at));
    }
    SendMessageW(Handle(), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(at.x, at.y));
    SendMessageW(Handle(), WM_RBUTTONUP, 0, MAKELPARAM(at.x, at.y));
}

void EditorTree::Key(WPARAM key) const { SendMessageW(Handle(), WM_KEYDOWN, key, 1); }

void EditorTree::Open(HTREEITEM item) const {
    Select(item);
    Key(VK_RIGHT);
}

void EditorTree::Shut(HTREEITEM item) const {
    Select(item);
    Key(VK_LEFT);
}

// ---- menus

namespace {

std::wstring EntriesOf(HMENU menu) {
    std::wstring entries;
    for (int at = 0; at < GetMenuItemCount(menu); ++at) {
        wchar_t text[200]{};
        GetMenuStringW(menu, static_cast<UINT>(at), text, 200, MF_BYPOSITION);
        const UINT state = GetMenuState(menu, static_cast<UINT>(at), MF_BYPOSITION);
        if ((state & MF_SEPARATOR) != 0 && (state & MF_POPUP) == 0) continue;
        std::wstring caption(text);
        caption = caption.substr(0, caption.find(L'\t'));
        for (size_t mark; (mark = caption.find(L'&')) != std::wstring::npos;) caption.erase(mark, 1);
        if (!entries.empty()) entries += L"|";
        entries += caption + ((state & (MF_GRAYED | MF_DISABLED)) != 0 ? L"-" : L"+");
        if (const HMENU below = GetSubMenu(menu, at)) entries += L"[" + EntriesOf(below) + L"]";
    }
    return entries;
}

BoxAnswerer* answerer = nullptr;
MenuCatcher* catcher = nullptr;

}  // namespace

std::wstring MenuEntries(const wchar_t* menu) {
    const HMENU bar = GetMenu(EditorWindow::Find());
    for (int at = 0; at < GetMenuItemCount(bar); ++at) {
        wchar_t text[200]{};
        GetMenuStringW(bar, static_cast<UINT>(at), text, 200, MF_BYPOSITION);
        if (std::wstring(text) == std::wstring(L"&") + menu) return EntriesOf(GetSubMenu(bar, at));
    }
    return L"<no such menu>";
}

namespace {

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

}  // namespace

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

MenuCatcher::MenuCatcher() {
    catcher = this;
    hook_ = SetWindowsHookExW(
        WH_CALLWNDPROC,
        [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
            const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lParam);
            if (code == HC_ACTION && catcher != nullptr && message.message == WM_INITMENUPOPUP) {
                ++catcher->Menus;
                catcher->Entries = EntriesOf(reinterpret_cast<HMENU>(message.wParam));
            }
            return CallNextHookEx(nullptr, code, wParam, lParam);
        },
        nullptr, GetCurrentThreadId());
    timer_ = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) WINAPI {
        const HWND shown = FindWindowW(L"#32768", nullptr);
        if (shown == nullptr || catcher == nullptr) return;
        RECT place;
        GetWindowRect(shown, &place);
        catcher->At = {place.left, place.top};
        EndMenu();
    });
}

MenuCatcher::~MenuCatcher() {
    UnhookWindowsHookEx(hook_);
    KillTimer(nullptr, timer_);
    catcher = nullptr;
}
