#pragma once

#include <windows.h>

#include <string>

// The caption of a menu's entry without the shortcut after it; a plain one is also without the mark of its letter.
std::wstring CaptionOf(HMENU menu, int position);
std::wstring PlainCaption(HMENU menu, int position);

// The entries of a menu in their order, "+" after those that can be chosen, "-" after the others; a submenu's in
// brackets. Separators are left out.
std::wstring MenuEntries(const wchar_t* menu);

// While it lives, each menu that pops up is closed again; its entries are kept, as MenuEntries gives them.
class MenuCatcher {
public:
    MenuCatcher();
    ~MenuCatcher();
    MenuCatcher(const MenuCatcher&) = delete;
    MenuCatcher& operator=(const MenuCatcher&) = delete;
    int Menus = 0;
    std::wstring Entries;
    POINT At{};

private:
    HHOOK hook_;
    UINT_PTR timer_;
};
