#include "support/EditorTree.h"

#include <gtest/gtest.h>

#include <cstring>

#include "editor/ControlIds.h"
#include "support/EditorWindow.h"

HWND View(int page) { return GetDlgItem(EditorWindow::Control(IdLeftPage + page), IdView + page); }

void ShowPage(int page) { SendMessageW(EditorWindow::Control(IdLeftButton + page), BM_CLICK, 0, 0); }

std::wstring Description() {
    const HWND label = EditorWindow::Control(IdDescription);
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(label)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(label, text.data(), static_cast<int>(text.size()))));
    return text;
}

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

std::wstring EditorTree::SelectedPath() const {
    std::wstring path;
    for (HTREEITEM at = Selected(); at != nullptr; at = Next(TVGN_PARENT, at))
        path = Text(at) + (path.empty() ? L"" : L"/") + path;
    return path.empty() ? L"<none>" : path;
}

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

void EditorTree::OpenDownTo(std::initializer_list<int> path) const {
    HTREEITEM item = Next(TVGN_ROOT, nullptr);
    Open(item);
    for (int position : path) {
        item = Next(TVGN_CHILD, item);
        while (position-- > 0 && item != nullptr) item = Next(TVGN_NEXT, item);
        Open(item);
    }
}

bool EditorTree::Expanded(HTREEITEM item) const {
    return (SendMessageW(Handle(), TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), TVIS_EXPANDED) & TVIS_EXPANDED) !=
           0;
}
