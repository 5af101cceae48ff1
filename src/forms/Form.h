#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/Server.h"
#include "forms/Control.h"
#include "forms/Handles.h"
#include "forms/Menu.h"
#include "forms/Placement.h"

// A top-level window that is loaded late, shown modally without an owner, and hidden rather than closed. Its corner is
// in twips of one unit for all monitors (see Placement), sizes are in twips of the window's own dots per inch. Lives on
// one thread.
class Form {
public:
    enum class State { Normal, Minimized, Maximized };

    Form();
    virtual ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    // Makes the window and its controls and raises Form_Load, the first time that it is called; lays out and does
    // nothing else afterwards. Every public member that touches the window or a control begins with it.
    void Load();
    bool Loaded() const noexcept { return loaded_; }
    // The form was loaded and has no window: none could be made, or somebody destroyed it. It never gets another one.
    bool Lost() const noexcept { return loaded_ && handle_ == nullptr; }
    // Whether the calling thread is the one that the window was made on, or there is no window yet.
    bool OnItsThread() const noexcept { return thread_ == 0 || thread_ == GetCurrentThreadId(); }
    HWND Handle() const noexcept { return handle_; }
    // The form whose window this is, or null.
    static Form* Of(HWND window) noexcept;
    // Held while a window procedure of the form or of one of its controls runs, because an event may release the form.
    // Null for a form that is not shared.
    virtual std::shared_ptr<void> Hold() noexcept { return nullptr; }
    // The form is not topmost while a piece of the host's code runs. The windows that it keeps hidden go: Wine would
    // make them topmost again in its place.
    virtual void HiddenToolsGo() noexcept {}
    UINT Dpi() const noexcept;

    float Left() const;
    float Top() const;
    float Width() const;
    float Height() const;
    void SetWidth(float width);
    void SetHeight(float height);
    float ScaleWidth() const;   // inside the borders
    float ScaleHeight() const;  // below the menu bar
    State WindowState() const noexcept;
    // Where the window stands, to be changed and given to MoveTo.
    Placement Place() const;
    // Moves and sizes the window in one step. It may go where no monitor is: what is shown is brought into view.
    void MoveTo(const Placement& place);

    void SetCaption(const std::wstring& caption);
    // Shows the window, raises Form_Activate, and runs a message loop until the window is hidden or destroyed. The
    // thread's other windows are disabled meanwhile and enabled again whatever happens. Code of the host that is told
    // of that may hide the window before it shows: then nothing is raised. Error 400 when it is shown already, 91 when
    // there is no window.
    void ShowModal();
    bool Visible() const noexcept { return shown_; }
    // The form of this module that is shown, or null; the innermost one where one is shown over another.
    static HWND Shown() noexcept;
    // Ends ShowModal.
    void Hide();
    // What the close box does: asks Form_Unload.
    void Unload();

protected:
    // The names and the order of events are those of the hosts' own forms package.
    virtual void CreateControls() = 0;
    virtual void Form_Load() = 0;
    virtual void Form_Activate() = 0;
    virtual void Form_Resize() = 0;
    virtual void Form_Unload(bool& cancel) = 0;
    // What the title says until SetCaption.
    virtual const wchar_t* FirstCaption() const { return L""; }
    // The least width and height in twips that the user can give the window; 0: no limit of the form's own.
    virtual float MinimumWidth() const { return 0; }
    virtual float MinimumHeight() const { return 0; }
    // The fonts were made, or made again because the dots per inch or the user's choice changed.
    virtual void FontsChanged() = 0;
    // The user goes through the menus: on an entry or a menu, or on nothing of the form's (null). MenusClosed follows.
    virtual void MenuHighlighted(const MenuItem*) {}
    virtual void MenusClosed() {}
    // The system's colours or its contrast scheme changed.
    virtual void ColoursChanged() {}
    // The modal loop has nothing to do: one step of some milliseconds of what can wait. False: there is nothing left,
    // until a message comes.
    virtual bool Idle() { return false; }
    // A message of the modal loop that may be one of the form's small windows. True: it was.
    virtual bool ToolMessage(MSG&) { return false; }
    // The form is hidden: its small windows go.
    virtual void ToolsClose() noexcept {}
    // A key before it goes to the control that has the focus. True: it is swallowed.
    virtual bool KeyPreview(MSG& message);

    // Destroys the window with its controls while their objects still live: a derived form's destructor begins with it.
    void DestroyForm() noexcept;

    HFONT MessageFont() const noexcept { return messageFont_.get(); }  // the system's dialog font
    // How many times as large as by default the user has made that font; 1 when it is about as large, or smaller.
    float FontScale() const noexcept;
    MenuBar Menus{100};
    void DrawMenuBar() const noexcept { ::DrawMenuBar(handle_); }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void LimitSize(MINMAXINFO& limits) const;
    void OnActivate(bool active, bool minimised) noexcept;
    void OnDpiChanged(const RECT& suggested);
    // One of WM_SETTINGCHANGE, WM_SYSCOLORCHANGE and WM_THEMECHANGED.
    void OnAppearanceChanged(UINT message, WPARAM wParam, LPARAM lParam);
    void MakeFonts();
    void RenewFonts();
    void LayOutAgain();
    void TellControls(UINT message, WPARAM wParam, LPARAM lParam) const noexcept;
    RECT Bounds() const noexcept;
    void SetBounds(int x, int y, int width, int height, UINT flags);
    void SetBounds(const RECT& place);
    void BringIntoView();
    void DisableOthers();
    void EnableOthers() noexcept;
    void ActivatePrevious() noexcept;
    void OnDestroyed() noexcept;
    void RunLoop();
    bool Navigate(const MSG& message);

    HWND handle_ = nullptr;
    HWND lastFocus_ = nullptr;
    std::vector<HWND> disabled_;
    HWND previousActive_ = nullptr;
    FontHandle messageFont_;
    FontHandle formerFont_;
    ModuleLock lock_;
    HMODULE held_ = nullptr;
    DWORD thread_ = 0;
    bool loaded_ = false;
    bool ready_ = false;  // Form_Load is over: sizes are laid out from here on
    bool shown_ = false;
    bool placing_ = false;     // SetBounds is under way: the size is the one that it sets
    bool dpiChanged_ = false;  // while placing
    bool ole_ = false;
};
