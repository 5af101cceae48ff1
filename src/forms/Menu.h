#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "forms/Handles.h"

class MenuBar;

// A key that chooses a menu entry: modifiers as in ACCEL (FCONTROL, FSHIFT, FALT) and a virtual key.
struct Shortcut {
    BYTE Modifiers = 0;
    WORD Key = 0;
    const wchar_t* Text = L"";  // shown beside the caption: "Ctrl+N"
};

// A menu or an entry of one. The caption's "&" marks the access key. Changes show at once.
class MenuItem {
public:
    explicit MenuItem(std::wstring caption, Shortcut shortcut = {});
    MenuItem(const MenuItem&) = delete;
    MenuItem& operator=(const MenuItem&) = delete;

    // Entries in their order; they must outlive the menu.
    void Append(MenuItem& entry);
    void AppendSeparator();

    const std::wstring& Caption() const noexcept { return caption_; }
    void SetCaption(std::wstring caption);
    bool Enabled() const noexcept { return enabled_; }
    void SetEnabled(bool enabled);
    bool Visible() const noexcept { return visible_; }
    void SetVisible(bool visible);  // an entry that is not visible is not in the menu at all
    bool Checked() const noexcept { return checked_; }
    void SetChecked(bool checked);

    // An entry was chosen; for a menu: it is about to open.
    std::function<void()> Click;

    // Shows the menu at the mouse position, or at `at` (screen pixels) when it is given, for the window that has the
    // menu bar.
    void PopUp(const POINT* at = nullptr);

private:
    friend class MenuBar;
    static std::wstring Shown(const std::wstring& caption, const Shortcut& shortcut);
    // Needs no memory: a menu that was emptied is filled again.
    void Rebuild() noexcept;
    void Changed() noexcept;

    std::wstring caption_;
    Shortcut shortcut_;
    std::wstring shown_;              // the caption with the shortcut beside it
    std::vector<MenuItem*> entries_;  // null: a separator
    MenuItem* parent_ = nullptr;
    MenuBar* bar_ = nullptr;
    HMENU menu_ = nullptr;  // of a menu with entries; the menu above it owns it
    UINT id_ = 0;
    bool enabled_ = true;
    bool visible_ = true;
    bool checked_ = false;
};

// The menu bar of a window.
class MenuBar {
public:
    explicit MenuBar(UINT firstId) : nextId_(firstId), firstId_(firstId) {}

    void Append(MenuItem& menu);
    // Builds the menus and gives them to the window.
    void Create(HWND window);

    // WM_COMMAND: whether the id was one of an entry. Entries that are disabled or hidden are not chosen.
    bool OnCommand(UINT id);
    // WM_MENUSELECT: the menu or the entry that is highlighted; null: none of ours.
    const MenuItem* Highlighted(WPARAM wParam, LPARAM lParam) const noexcept;
    // WM_INITMENUPOPUP: lets the menu prepare itself.
    void OnInitPopup(HMENU popup);
    // Translates the shortcuts; the window must be the one with the bar.
    bool Translate(MSG& message) const;

private:
    friend class MenuItem;
    void Adopt(MenuItem& item);
    MenuItem* Find(UINT id) const noexcept;

    std::vector<MenuItem*> menus_;
    std::vector<MenuItem*> byId_;
    AcceleratorHandle accelerators_;
    HWND window_ = nullptr;
    HMENU bar_ = nullptr;
    UINT nextId_;
    UINT firstId_;
};
