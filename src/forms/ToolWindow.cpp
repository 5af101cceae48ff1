#include "forms/ToolWindow.h"

#include "automation/App.h"
#include "automation/RuntimeError.h"
#include "forms/DialogTemplate.h"
#include "forms/Events.h"
#include "forms/Surroundings.h"

INT_PTR CALLBACK ToolWindow::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        reinterpret_cast<ToolWindow*>(lParam)->handle_ = dialog;
        CentreOn(dialog, GetWindow(dialog, GW_OWNER));
        return TRUE;
    }
    auto* const self = reinterpret_cast<ToolWindow*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (self == nullptr) return FALSE;
    switch (message) {
        case WM_COMMAND:
            if (LOWORD(wParam) == IDCANCEL) {
                self->Close();
            } else if (HIWORD(wParam) == BN_CLICKED && self->Pressed) {
                Events::Raise([&] { self->Pressed(LOWORD(wParam)); });
            }
            return TRUE;
        case WM_CLOSE:
            self->Close();
            return TRUE;
        case WM_NCDESTROY:
            self->handle_ = nullptr;
            return FALSE;
        default:
            return FALSE;
    }
}

void ToolWindow::Open(HWND owner, const DialogTemplate& form) {
    const Surroundings surroundings;
    if (CreateDialogIndirectParamW(App::Module(), form.Get(), owner, &Procedure, reinterpret_cast<LPARAM>(this)) ==
        nullptr) {
        RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    }
    ShowWindow(handle_, SW_SHOW);
}

void ToolWindow::Close() noexcept {
    if (handle_ == nullptr) return;
    const HWND owner = GetWindow(handle_, GW_OWNER);
    const bool active = GetActiveWindow() == handle_;
    DestroyWindow(handle_);
    if (active && owner != nullptr) SetActiveWindow(owner);
}

void ToolWindow::Activate() const noexcept { SetActiveWindow(handle_); }

std::wstring ToolWindow::Text(int id) const {
    const HWND control = GetDlgItem(handle_, id);
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(control)), L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()) + 1)));
    return text;
}

void ToolWindow::SetText(int id, const std::wstring& text) const { SetDlgItemTextW(handle_, id, text.c_str()); }

bool ToolWindow::Checked(int id) const noexcept { return IsDlgButtonChecked(handle_, id) == BST_CHECKED; }

void ToolWindow::SetChecked(int id, bool checked) const noexcept {
    CheckDlgButton(handle_, id, checked ? BST_CHECKED : BST_UNCHECKED);
}

bool ToolWindow::Translate(MSG& message) const noexcept {
    return handle_ != nullptr && (message.hwnd == handle_ || IsChild(handle_, message.hwnd)) &&
           IsDialogMessageW(handle_, &message);
}
