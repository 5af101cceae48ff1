#include "forms/Form.h"

#include <ole2.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

#include "automation/App.h"
#include "automation/HostContexts.h"
#include "automation/RuntimeError.h"
#include "automation/Scope.h"
#include "forms/Dpi.h"
#include "forms/Events.h"
#include "forms/Messages.h"
#include "forms/Surroundings.h"
#include "forms/Twips.h"
#include "forms/WindowClass.h"

namespace {

constexpr const wchar_t* FormClass = L"brvSQLEditorForm";
constexpr UINT LayOutLater = WM_APP;  // a message of our own
constexpr double UsualPoints = 9;     // of the dialog font, as Windows comes

HWND shownForm = nullptr;

HMODULE HoldModule() noexcept {
    HMODULE held = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&HoldModule), &held);
    return held;
}

}  // namespace

Form::Form() = default;

void Form::DestroyForm() noexcept {
    EnableOthers();
    if (handle_ != nullptr) DestroyWindow(handle_);
}

Form::~Form() {
    DestroyForm();
    // The window procedure is not called any more: the reference that kept the code in the process can go. It is never
    // the last one, since the caller came through COM, which has its own.
    if (held_ != nullptr) FreeLibrary(held_);
    if (ole_ && OnItsThread()) OleUninitialize();
}

UINT Form::Dpi() const noexcept { return DpiOf(handle_); }

void Form::Load() {
    if (loaded_) {
        // The messages of a window come to its own thread alone: shown from another one it would never answer.
        if (handle_ != nullptr && GetWindowThreadProcessId(handle_, nullptr) != GetCurrentThreadId()) {
            CheckHresult(RPC_E_WRONG_THREAD);
        }
        return;
    }
    // Set first: a load that fails is not run again, and what it touches finds the window loaded.
    loaded_ = true;
    thread_ = GetCurrentThreadId();
    const Surroundings surroundings;
    Events::Call call;
    // Drag and drop and the clipboard need OLE, which the host may not have started on this thread.
    ole_ = SUCCEEDED(OleInitialize(nullptr));
    RegisterWindowClass(FormClass, &Form::Procedure, 0);
    held_ = HoldModule();
    const HWND window = CreateWindowExW(0, FormClass, FirstCaption(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0, 0, 0,
                                        nullptr, nullptr, App::Module(), this);
    if (window == nullptr) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    // A right-to-left host process mirrors its unowned windows. This layout runs left to right: the style is taken off,
    // and the controls inherit that.
    SetWindowLongPtrW(window, GWL_EXSTYLE,
                      GetWindowLongPtrW(window, GWL_EXSTYLE) & ~static_cast<LONG_PTR>(WS_EX_LAYOUTRTL));
    MakeFonts();
    CreateControls();
    FontsChanged();
    call.Rethrow();
    // The window is laid out even if loading fails.
    struct LayOut {
        Form& Self;
        bool Done = false;
        void Run() {
            Done = true;
            Self.ready_ = true;
            Self.Form_Resize();
        }
        ~LayOut() {
            if (!Done) Events::Raise([this] { Run(); });
        }
    } layOut{*this};
    Form_Load();
    layOut.Run();
}

void Form::MakeFonts() {
    const NONCLIENTMETRICSW metrics = MetricsFor(Dpi());
    // The controls still show the former font: it goes when they have the new one.
    formerFont_ = std::move(messageFont_);
    messageFont_.reset(CreateFontIndirectW(&metrics.lfMessageFont));
}

void Form::RenewFonts() {
    MakeFonts();
    FontsChanged();
    formerFont_.reset();
    // Windows remeasures the menu bar on a font change; Wine needs DrawMenuBar.
    DrawMenuBar();
}

float Form::FontScale() const noexcept {
    LOGFONTW font{};
    GetObjectW(messageFont_.get(), sizeof font, &font);
    const double points = std::abs(font.lfHeight) * 72.0 / Dpi();
    // A tenth more or less is the rounding to pixels, or another face.
    return points < UsualPoints * 1.1 ? 1.0F : static_cast<float>(points / UsualPoints);
}

void Form::LayOutAgain() {
    if (ready_) Form_Resize();
}

// Forwards messages that only top-level windows receive.
void Form::TellControls(UINT message, WPARAM wParam, LPARAM lParam) const noexcept {
    struct Message {
        UINT Number;
        WPARAM First;
        LPARAM Second;
    } told{message, wParam, lParam};
    EnumChildWindows(
        handle_,
        [](HWND child, LPARAM parameter) WINAPI -> BOOL {
            const auto& told = *reinterpret_cast<const Message*>(parameter);
            SendMessageW(child, told.Number, told.First, told.Second);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&told));
}

RECT Form::Bounds() const noexcept {
    RECT bounds{};
    GetWindowRect(handle_, &bounds);
    return bounds;
}

void Form::SetBounds(int x, int y, int width, int height, UINT flags) {
    Events::Call call;
    SetWindowPos(handle_, nullptr, x, y, width, height, flags | SWP_NOZORDER | SWP_NOACTIVATE);
    call.Rethrow();
}

// On the way to a monitor of other dots per inch Windows suggests a size that is scaled from the one that the window
// had; here it has its new one already. Whether the size that was asked for outlasts that message is not documented: it
// is set once more.
void Form::SetBounds(const RECT& place) {
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    placing_ = true;
    dpiChanged_ = false;
    Events::Call call;
    SetWindowPos(handle_, nullptr, place.left, place.top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    if (dpiChanged_) {
        SetWindowPos(handle_, nullptr, place.left, place.top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    placing_ = false;
    call.Rethrow();
}

Placement Form::Place() const { return Placement(GetDesktop(), Bounds()); }

void Form::MoveTo(const Placement& place) { SetBounds(place.Pixels()); }

// The screen that the window stood on may be unplugged, or was another one when the place was stored.
void Form::BringIntoView() {
    const RECT place = Bounds();
    const RECT seen = BroughtIntoView(place, GetDesktop());
    if (!EqualRect(&place, &seen)) SetBounds(seen);
}

float Form::Left() const { return PixelsToTwips(Bounds().left, CornerDpi); }

float Form::Top() const { return PixelsToTwips(Bounds().top, CornerDpi); }

float Form::Width() const {
    const RECT bounds = Bounds();
    return PixelsToTwips(bounds.right - bounds.left, Dpi());
}

float Form::Height() const {
    const RECT bounds = Bounds();
    return PixelsToTwips(bounds.bottom - bounds.top, Dpi());
}

void Form::SetWidth(float width) {
    const RECT bounds = Bounds();
    SetBounds(0, 0, TwipsToPixels(width, Dpi()), bounds.bottom - bounds.top, SWP_NOMOVE);
}

void Form::SetHeight(float height) {
    const RECT bounds = Bounds();
    SetBounds(0, 0, bounds.right - bounds.left, TwipsToPixels(height, Dpi()), SWP_NOMOVE);
}

float Form::ScaleWidth() const {
    RECT client{};
    GetClientRect(handle_, &client);
    return PixelsToTwips(client.right, Dpi());
}

float Form::ScaleHeight() const {
    RECT client{};
    GetClientRect(handle_, &client);
    return PixelsToTwips(client.bottom, Dpi());
}

Form::State Form::WindowState() const noexcept {
    if (IsIconic(handle_)) return State::Minimized;
    return IsZoomed(handle_) ? State::Maximized : State::Normal;
}

void Form::SetCaption(const std::wstring& caption) {
    // Setting the same title again would repaint it and notify the taskbar for nothing.
    std::wstring shown(static_cast<size_t>(GetWindowTextLengthW(handle_)), L'\0');
    GetWindowTextW(handle_, shown.data(), static_cast<int>(shown.size()) + 1);
    if (shown == caption) return;
    Events::Call call;
    SetWindowTextW(handle_, caption.c_str());
    call.Rethrow();
}

void Form::DisableOthers() {
    previousActive_ = GetActiveWindow();
    struct Search {
        HWND Own;
        std::vector<HWND> Found;
    } search{handle_, {}};
    Events::Call call;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM parameter) WINAPI -> BOOL {
            auto& search = *reinterpret_cast<Search*>(parameter);
            if (window == search.Own || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
            // No exception may pass through the system's own code.
            Events::Raise([&] { search.Found.push_back(window); });
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    call.Rethrow();
    disabled_.reserve(search.Found.size());
    const InHostContexts host;
    // After the enumeration: a host may make or destroy windows when one of its own is disabled. It may hide this one.
    for (const HWND window : search.Found) {
        if (!shown_) return;  // the host has closed it
        if (!IsWindow(window)) continue;
        disabled_.push_back(window);
        EnableWindow(window, FALSE);
    }
}

void Form::EnableOthers() noexcept {
    const InHostContexts host;
    // The host is told of each, and may show or hide this window meanwhile.
    for (const HWND window : std::exchange(disabled_, {})) {
        if (IsWindow(window)) EnableWindow(window, TRUE);
    }
}

void Form::ActivatePrevious() noexcept {
    const HWND previous = std::exchange(previousActive_, nullptr);
    if (IsWindow(previous) && GetForegroundWindow() != previous) SetForegroundWindow(previous);
}

// The window is destroyed, by others or by its form: the loop that shows it ends.
void Form::OnDestroyed() noexcept {
    handle_ = nullptr;
    if (!shown_) return;
    shown_ = false;
    EnableOthers();
    ActivatePrevious();
    PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0);  // wakes a loop that waits in GetMessage
}

HWND Form::Shown() noexcept { return shownForm != nullptr && IsWindowVisible(shownForm) ? shownForm : nullptr; }

void Form::ShowModal() {
    Load();
    if (handle_ == nullptr) RaiseError(ErrorNumber::ObjectNotSet);  // the load found no memory for a window
    if (shown_) RaiseError(ErrorNumber::FormAlreadyShown);
    const Surroundings surroundings;
    Events::Call call;
    const ScopeExit showing([this, outer = shownForm] {
        shownForm = outer;
        if (shown_) Events::Raise([this] { Hide(); });
        EnableOthers();
    });
    shown_ = true;
    shownForm = handle_;
    DisableOthers();
    if (!shown_) return call.Rethrow();
    // A window that was minimised when it was closed would come back as a button in the taskbar, with the host disabled
    // behind it: it is restored.
    const bool minimised = IsIconic(handle_) != FALSE;
    const int command = minimised ? SW_RESTORE : SW_SHOW;
    if (!minimised) BringIntoView();
    ShowWindow(handle_, command);
    if (shown_ && minimised) BringIntoView();
    // A process that was started hidden has its first ShowWindow turned into hiding.
    if (shown_ && !IsWindowVisible(handle_)) ShowWindow(handle_, command);
    if (shown_) SetForegroundWindow(handle_);
    // Hidden by the host's code, which is told of the activation: the showing may have gone on after that.
    if (!shown_ && handle_ != nullptr) ShowWindow(handle_, SW_HIDE);
    call.Rethrow();
    if (!shown_) return;
    Form_Activate();
    RunLoop();
}

void Form::RunLoop() {
    // The loop runs the host's code, hooks and timers included, except for messages of this window.
    const InHostContexts host;
    while (shown_) {
        Events::Call call;
        MSG message;
        if (Dragging::Active()) {
            MsgWaitForMultipleObjectsEx(0, nullptr, Dragging::RepeatInterval, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
            {
                const Surroundings surroundings;
                Events::Raise([] { Dragging::Repeat(); });
            }
            call.Rethrow();
        }
        // Messages are taken and never only looked at: a message that Wine finds it cannot deliver, such as one of DDE
        // with no memory after it, is dropped when it is taken, and looked at again and again otherwise.
        bool got = PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;
        if (!got) {
            // Nothing is waited for while something is dragged, nor while there is something to do. Each step of that
            // is over soon, and none is begun while a message waits.
            const bool busy = shown_ && (Dragging::Active() || Idle());
            call.Rethrow();
            if (busy) continue;
            if (!shown_) break;
            got = GetMessageW(&message, nullptr, 0, 0) >= 0;
        }
        if (!got || message.message == WM_QUIT) {
            // The host is quitting: its own loop has to see that too.
            if (got) PostQuitMessage(static_cast<int>(message.wParam));
            Hide();
            break;
        }
        if (CallMsgFilterW(&message, MSGF_DIALOGBOX)) continue;
        const bool ours = message.hwnd == handle_ || IsChild(handle_, message.hwnd);
        bool swallowed = false;
        std::optional<Surroundings> surroundings;
        if (ours) {
            surroundings.emplace();
            Events::Raise([&] {
                swallowed = ToolMessage(message) || Dragging::Translate(message) || KeyPreview(message) ||
                            Menus.Translate(message) || Navigate(message);
            });
        } else {
            Events::Raise([&] { swallowed = ToolMessage(message); });
        }
        if (!swallowed) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        call.Rethrow();
    }
}

bool Form::KeyPreview(MSG&) { return false; }

bool Form::Navigate(const MSG& message) {
    if (message.message != WM_KEYDOWN) return false;
    const bool ctrl = GetKeyState(VK_CONTROL) < 0;
    const bool back = GetKeyState(VK_SHIFT) < 0;
    const bool tab = message.wParam == VK_TAB && GetKeyState(VK_MENU) >= 0;
    if (message.wParam == VK_RETURN && (SendMessageW(message.hwnd, WM_GETDLGCODE, 0, 0) & DLGC_BUTTON) != 0) {
        SendMessageW(message.hwnd, BM_CLICK, 0, 0);
        return true;
    }
    // Ctrl+Tab leaves controls that take the Tab key for themselves.
    if (!tab) return false;
    if (!ctrl && (SendMessageW(message.hwnd, WM_GETDLGCODE, VK_TAB, 0) & (DLGC_WANTTAB | DLGC_WANTALLKEYS)) != 0 &&
        !back) {
        return false;
    }
    const HWND next = GetNextDlgTabItem(handle_, GetFocus(), back);
    // Keyboard users need the focus rectangle even if the mouse has hidden it.
    SendMessageW(handle_, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
    if (next != nullptr) ::SetFocus(next);
    return true;
}

void Form::Hide() {
    if (!shown_) return;
    shown_ = false;
    Events::Call call;
    // Enabled before this window goes, else the activation would go to another program.
    ToolsClose();
    EnableOthers();
    ShowWindow(handle_, SW_HIDE);
    ActivatePrevious();
    // Wakes a loop that waits in GetMessage.
    PostMessageW(handle_, WM_NULL, 0, 0);
    call.Rethrow();
}

void Form::Unload() {
    if (!loaded_) return;
    bool cancel = false;
    Form_Unload(cancel);
}

LRESULT CALLBACK Form::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (LacksAddress(message, wParam, lParam)) return 0;
    if (message == WM_NCCREATE) {
        if (GetWindowLongPtrW(window, GWLP_USERDATA) != 0) return TRUE;  // it was made before
        auto* form = static_cast<Form*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
        form->handle_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(form));
    }
    auto* form = reinterpret_cast<Form*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (form == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    // Handling the message may release the form.
    const std::shared_ptr<void> held = form->Hold();
    LRESULT result = 0;
    Events::Raise([&] { result = form->OnMessage(message, wParam, lParam); });
    // Also the end of a creation that failed half-way.
    if (message == WM_NCDESTROY) form->OnDestroyed();
    return result;
}

Form* Form::Of(HWND window) noexcept {
    // By the class, since the window may have been subclassed.
    if (window == nullptr || GetClassLongPtrW(window, GCLP_WNDPROC) != reinterpret_cast<ULONG_PTR>(&Form::Procedure)) {
        return nullptr;
    }
    return reinterpret_cast<Form*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

LRESULT Form::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (Control::Reflect(message, wParam, lParam, result)) return result;
    switch (message) {
        case WM_COMMAND:
            if (lParam == 0 && Menus.OnCommand(LOWORD(wParam))) return 0;
            break;
        case WM_MENUSELECT:
            if (lParam == 0 && HIWORD(wParam) == 0xFFFF) {
                MenusClosed();
            } else {
                MenuHighlighted(Menus.Highlighted(wParam, lParam));
            }
            break;
        case WM_INITMENUPOPUP:
            if (HIWORD(lParam) == 0) Menus.OnInitPopup(reinterpret_cast<HMENU>(wParam));
            break;
        case WM_SIZE:
            if (ready_) Form_Resize();
            return 0;
        case WM_GETMINMAXINFO:
            LimitSize(*reinterpret_cast<MINMAXINFO*>(lParam));
            return 0;
        case WM_CLOSE:
            Unload();
            return 0;
        case WM_QUERYENDSESSION:
            // Now and not with WM_ENDSESSION, after which the process may end at any moment: the host has the edited
            // SQL when its own turn comes.
            if (shown_) Unload();
            return TRUE;
        case WM_ACTIVATE:
            OnActivate(LOWORD(wParam) != WA_INACTIVE, HIWORD(wParam) != 0);
            return 0;
        case WM_DPICHANGED:
            OnDpiChanged(*reinterpret_cast<const RECT*>(lParam));
            return 0;
        case WM_SETTINGCHANGE:
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED:
            OnAppearanceChanged(message, wParam, lParam);
            break;
        case LayOutLater:
            LayOutAgain();
            return 0;
        default:
            break;
    }
    return DefWindowProcW(handle_, message, wParam, lParam);
}

void Form::LimitSize(MINMAXINFO& limits) const {
    const UINT dpi = Dpi();
    limits.ptMinTrackSize.x = std::max<LONG>(limits.ptMinTrackSize.x, TwipsToPixels(MinimumWidth(), dpi));
    limits.ptMinTrackSize.y = std::max<LONG>(limits.ptMinTrackSize.y, TwipsToPixels(MinimumHeight(), dpi));
}

// Restores the focus to the control that had it, as a dialog does.
void Form::OnActivate(bool active, bool minimised) noexcept {
    if (!active) {
        const HWND focus = GetFocus();
        if (focus != nullptr && IsChild(handle_, focus)) lastFocus_ = focus;
    } else if (!minimised && IsWindow(lastFocus_) && IsChild(handle_, lastFocus_)) {
        ::SetFocus(lastFocus_);
    }
}

void Form::OnDpiChanged(const RECT& suggested) {
    RenewFonts();
    if (placing_) {
        dpiChanged_ = true;
    } else {
        SetWindowPos(handle_, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                     suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    LayOutAgain();
}

void Form::OnAppearanceChanged(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_THEMECHANGED) TellControls(message, wParam, lParam);
    if (message != WM_SETTINGCHANGE || wParam == SPI_SETHIGHCONTRAST) ColoursChanged();
    if (message == WM_SYSCOLORCHANGE)
        RedrawWindow(handle_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
    // A theme change alters the height of the bars: laid out after they have handled it too.
    if (message == WM_THEMECHANGED) PostMessageW(handle_, LayOutLater, 0, 0);
    if (message == WM_SETTINGCHANGE && (wParam == SPI_SETNONCLIENTMETRICS || wParam == SPI_SETHIGHCONTRAST)) {
        RenewFonts();
        LayOutAgain();
    }
}
