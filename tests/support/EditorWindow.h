#pragma once

#include <windows.h>

#include <richedit.h>

#include <functional>
#include <string>

#include "support/WindowWatchdog.h"

// The editor's window, found from outside.
namespace EditorWindow {
HWND Find();                                               // null when none is shown
HWND Child(const wchar_t* windowClass, int position = 0);  // in creation order, however deep
HWND Control(int id);  // see editor/ControlIds.h; one of the window itself, not in a page
HWND Editor();
std::wstring Text();
void SetText(const std::wstring& text);
// What is selected in the editor, as the control counts: one position a line end.
CHARRANGE Selection();
void Select(LONG from, LONG to);
std::wstring SelectedText();
std::wstring Status(int panel = 1);  // a panel of the status bar
std::wstring Caption();
std::wstring Root();  // text of the object browser's first node, "<none>" when there is none
void Choose(const wchar_t* menu, const wchar_t* entry);
void PressReturn();
// The list of Ctrl+Space; null when none is open.
HWND NameList();
// A key goes down in the SQL, with Ctrl or alone, without a loop between.
void PressKey(WORD key, bool control = false);
void Close();
}  // namespace EditorWindow

// Runs a step from inside the modal loop, once the window is shown. A window that nobody closes ends the process. The
// test fails when the window was never shown, since its expectations were not looked at then, and when the step was cut
// off; MayStayHidden is for starts that are meant to fail, which look at Ran().
class WhenShown {
public:
    enum class Expect { Shown, MayStayHidden };
    explicit WhenShown(std::function<void()> step, Expect expect = Expect::Shown);
    ~WhenShown();
    WhenShown(const WhenShown&) = delete;
    WhenShown& operator=(const WhenShown&) = delete;
    bool Ran() const { return ran_; }
    static inline UINT Limit = 60000;  // milliseconds

private:
    std::function<void()> step_;
    Expect expect_;
    UINT_PTR timer_;
    const WindowWatchdog watchdog_;
    bool ran_ = false;
    bool finished_ = false;
};
