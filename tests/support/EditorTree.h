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
    std::wstring SelectedPath() const;  // the texts from the root to what is selected, joined by "/"
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
    // Opens the root, each node on the way, and the one at its end.
    void OpenDownTo(std::initializer_list<int> path) const;
    bool Expanded(HTREEITEM item) const;
    // Where the item's text is, in client pixels; false when it does not show.
    bool Place(HTREEITEM item, POINT& at) const;

private:
    int view_;
};

// The page of the left pane: 0 object browser, 1 ANSI SQL, 2 database-specific, 3 the host's commands.
void ShowPage(int page);
HWND View(int page);
std::wstring Description();
