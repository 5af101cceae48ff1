#include "forms/Menu.h"

#include "automation/RuntimeError.h"
#include "forms/Events.h"

MenuItem::MenuItem(std::wstring caption, Shortcut shortcut)
    : caption_(std::move(caption)), shortcut_(shortcut), shown_(Shown(caption_, shortcut_)) {}

std::wstring MenuItem::Shown(const std::wstring& caption, const Shortcut& shortcut) {
    return *shortcut.Text != L'\0' ? caption + L"\t" + shortcut.Text : caption;
}

void MenuItem::Append(MenuItem& entry) {
    entry.parent_ = this;
    entries_.push_back(&entry);
}

void MenuItem::AppendSeparator() { entries_.push_back(nullptr); }

void MenuItem::SetCaption(std::wstring caption) {
    if (caption_ == caption) return;
    shown_ = Shown(caption, shortcut_);
    caption_ = std::move(caption);
    Changed();
}

void MenuItem::SetEnabled(bool enabled) {
    if (enabled_ == enabled) return;
    enabled_ = enabled;
    Changed();
}

void MenuItem::SetVisible(bool visible) {
    if (visible_ == visible) return;
    visible_ = visible;
    Changed();
}

void MenuItem::SetChecked(bool checked) {
    if (checked_ == checked) return;
    checked_ = checked;
    Changed();
}

void MenuItem::Changed() noexcept {
    if (parent_ != nullptr) parent_->Rebuild();
}

void MenuItem::Rebuild() noexcept {
    if (menu_ == nullptr) return;
    // RemoveMenu, not DeleteMenu: a submenu is kept for reuse.
    while (GetMenuItemCount(menu_) > 0) RemoveMenu(menu_, 0, MF_BYPOSITION);
    bool separate = false;
    for (const MenuItem* entry : entries_) {
        if (entry == nullptr) {
            separate = GetMenuItemCount(menu_) > 0;
            continue;
        }
        if (!entry->visible_) continue;
        if (separate) AppendMenuW(menu_, MF_SEPARATOR, 0, nullptr);
        separate = false;
        MENUITEMINFOW info{};
        info.cbSize = sizeof info;
        info.fMask = MIIM_ID | MIIM_STATE | MIIM_STRING | MIIM_SUBMENU;
        info.wID = entry->id_;
        info.fState = (entry->enabled_ ? MFS_ENABLED : MFS_DISABLED) | (entry->checked_ ? MFS_CHECKED : MFS_UNCHECKED);
        info.hSubMenu = entry->menu_;
        info.dwTypeData = const_cast<wchar_t*>(entry->shown_.c_str());
        InsertMenuItemW(menu_, static_cast<UINT>(GetMenuItemCount(menu_)), TRUE, &info);
    }
}

void MenuItem::PopUp(const POINT* at) {
    if (menu_ == nullptr) return;
    POINT point{};
    if (at != nullptr) {
        point = *at;
    } else {
        GetCursorPos(&point);
    }
    const HWND window = bar_->window_;
    Events::Call call;
    TrackPopupMenuEx(menu_, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON, point.x, point.y, window, nullptr);
    call.Rethrow();
}

void MenuBar::Append(MenuItem& menu) { menus_.push_back(&menu); }

void MenuBar::Adopt(MenuItem& item) {
    item.bar_ = this;
    item.id_ = nextId_++;
    byId_.push_back(&item);
    if (item.entries_.empty()) return;
    item.menu_ = CreatePopupMenu();
    if (item.menu_ == nullptr) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    for (MenuItem* entry : item.entries_) {
        if (entry != nullptr) Adopt(*entry);
    }
    item.Rebuild();
}

void MenuBar::Create(HWND window) {
    window_ = window;
    bar_ = CreateMenu();
    if (bar_ == nullptr) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    for (MenuItem* menu : menus_) {
        Adopt(*menu);
        AppendMenuW(bar_, MF_POPUP | MF_STRING, reinterpret_cast<UINT_PTR>(menu->menu_), menu->caption_.c_str());
    }
    SetMenu(window, bar_);  // from here on the window owns it

    std::vector<ACCEL> keys;
    for (const MenuItem* item : byId_) {
        if (item->shortcut_.Key != 0) {
            keys.push_back({static_cast<BYTE>(item->shortcut_.Modifiers | FVIRTKEY), item->shortcut_.Key,
                            static_cast<WORD>(item->id_)});
        }
    }
    if (!keys.empty()) accelerators_.reset(CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size())));
}

MenuItem* MenuBar::Find(UINT id) const noexcept {
    return id >= firstId_ && id - firstId_ < byId_.size() ? byId_[id - firstId_] : nullptr;
}

bool MenuBar::OnCommand(UINT id) {
    MenuItem* item = Find(id);
    if (item == nullptr) return false;
    for (const MenuItem* above = item; above != nullptr; above = above->parent_) {
        if (!above->enabled_ || !above->visible_) return true;
    }
    if (item->Click) item->Click();
    return true;
}

const MenuItem* MenuBar::Highlighted(WPARAM wParam, LPARAM lParam) const noexcept {
    const UINT flags = HIWORD(wParam);
    if ((flags & (MF_SYSMENU | MF_SEPARATOR)) != 0) return nullptr;
    if ((flags & MF_POPUP) == 0) return Find(LOWORD(wParam));
    // What opens another menu is told by its position.
    const HMENU popup = GetSubMenu(reinterpret_cast<HMENU>(lParam), LOWORD(wParam));
    if (popup == nullptr) return nullptr;
    for (const MenuItem* item : byId_) {
        if (item->menu_ == popup) return item;
    }
    return nullptr;
}

void MenuBar::OnInitPopup(HMENU popup) {
    for (MenuItem* item : byId_) {
        if (item->menu_ == popup && item->Click) {
            item->Click();
            return;
        }
    }
}

bool MenuBar::Translate(MSG& message) const {
    return accelerators_ && TranslateAcceleratorW(window_, accelerators_.get(), &message) != 0;
}
