#pragma once

#include <windows.h>
#include <commctrl.h>

#include <initializer_list>
#include <string>
#include <vector>

// The trees and lists of the editor's left pane as they are shown, worked by the messages of the mouse and the
// keyboard. A node is named by the child positions on the way to it from the first root.
class EditorTree {
public:
    static constexpr int ObjectBrowser = 0;
    static constexpr int DatabaseSpecific = 2;

    explicit EditorTree(int view = ObjectBrowser) : view_(view) {}

    HWND Handle() const;
    HTREEITEM Next(UINT relation, HTREEITEM item) const;
    HTREEITEM At(std::initializer_list<int> path) const;
    std::wstring Text(HTREEITEM item) const;
    std::wstring Children(HTREEITEM item) const;                   // joined by "|"
    HTREEITEM Named(HTREEITEM parent, const wchar_t* text) const;  // a child by its text
    HTREEITEM Selected() const;
    int Count() const;

    // As another program does it, such as a screen reader: no click.
    void Select(HTREEITEM item) const;
    // The left button goes down and up over the item's text, scrolled into view first.
    void Click(HTREEITEM item) const;
    void RightClick(HTREEITEM item) const;
    void Key(WPARAM key) const;
    // Opens or closes by the keyboard.
    void Open(HTREEITEM item) const;
    void Shut(HTREEITEM item) const;
    // Where the item's text is, in client pixels; false when it does not show.
    bool Place(HTREEITEM item, POINT& at) const;

private:
    int view_;
};

// The page of the left pane: 0 object browser, 1 ANSI SQL, 2 database-specific, 3 the host's commands.
void ShowPage(int page);
HWND View(int page);
std::wstring Description();
// The entries of a menu in their order, "+" behind those that can be chosen, "-" behind the others; a submenu's in
// brackets. Separators are left out.
std::wstring MenuEntries(const wchar_t* menu);

// Answers the message boxes that come while it lives, each with a button (IDOK, IDYES, ...), and keeps what they said.
class BoxAnswerer {
public:
    explicit BoxAnswerer(int button = IDOK);
    ~BoxAnswerer();
    BoxAnswerer(const BoxAnswerer&) = delete;
    BoxAnswerer& operator=(const BoxAnswerer&) = delete;
    int Boxes = 0;
    std::wstring Text;
    std::wstring Title;
    std::vector<std::wstring> All;  // "title: text" of each
    // Of the last one: "information", "exclamation", "question", "hand" or "none"; the window that it belongs to; how
    // many buttons it has.
    std::wstring Icon;
    HWND Owner = nullptr;
    int Buttons = 0;
    int Button;

private:
    UINT_PTR timer_;
};

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
