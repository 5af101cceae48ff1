#pragma once

#include <windows.h>

#include <commctrl.h>
#include <richedit.h>

#include <string>
#include <vector>

// What a window is made of, in so much detail that it can be made again by bare calls: classes, styles, places, texts,
// fonts, rows and menus. Taken from the editor's window, so that the raw side of a comparison shows the same.
struct WindowPlan {
    struct Entry {  // of a menu
        std::wstring Text;
        UINT Id = 0;
        UINT Type = 0;
        UINT State = 0;
        std::vector<Entry> Below;
    };
    struct Row {  // of a list or a tree, or a button of a toolbar, or a panel of a status bar
        std::wstring Text;
        int Number = 0;  // how deep the node lies; the button's command; the panel's right edge
    };
    struct Part {
        int Parent = -1;  // its position among the parts; -1 is the window
        std::wstring Class;
        std::wstring Text;
        DWORD Style = 0;
        DWORD ExStyle = 0;
        int Id = 0;
        RECT Place{};  // in the parent's client pixels
        bool Font = false;
        bool Pressed = false;
        int Selected = -1;
        std::vector<Row> Rows;
    };
    std::wstring Caption;
    DWORD Style = 0;
    DWORD ExStyle = 0;
    RECT Place{};
    LOGFONTW Font{};
    CHARFORMAT2W EditorFont{};
    std::vector<Entry> Menu;
    std::vector<Part> Parts;  // in the order of creation, parents first

    // The shown window of the editor.
    static WindowPlan OfEditor();
    // Through a file, to another process.
    void Write(const std::wstring& path) const;
    static WindowPlan Read(const std::wstring& path);
};

// A window of the platform's own classes, made by bare calls after a plan. Nobody answers its messages.
class RawWindow {
public:
    explicit RawWindow(const WindowPlan& plan);
    ~RawWindow();
    RawWindow(const RawWindow&) = delete;
    RawWindow& operator=(const RawWindow&) = delete;

    // As the editor shows itself: above all others, with the focus in the text, everything painted.
    void Show() const;
    void Hide() const;
    HWND Handle() const { return window_; }
    HWND Editor() const { return editor_; }
    HWND Tree() const { return tree_; }  // the object browser's
    // Takes a new rich edit control in the place of the old one.
    void RenewEditor();

private:
    HWND MakeEditor(const WindowPlan::Part& part, HWND parent) const;

    const WindowPlan& plan_;
    HWND window_ = nullptr;
    HWND editor_ = nullptr;
    HWND tree_ = nullptr;
    HFONT font_ = nullptr;
    HIMAGELIST images_ = nullptr;
    size_t editorPart_ = 0;
};

// Paints what is waiting to be painted, in the window and all its children.
void PaintNow(HWND window);
