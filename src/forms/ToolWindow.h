#pragma once

#include <windows.h>

#include <functional>
#include <string>

class DialogTemplate;

// A small window of another one, which stays open while one works there. Its messages come through the modal loop of
// the form that it is added to.
class ToolWindow {
public:
    ToolWindow() = default;
    ~ToolWindow() { Close(); }
    ToolWindow(const ToolWindow&) = delete;
    ToolWindow& operator=(const ToolWindow&) = delete;

    // Shows the dialog that the template describes, centred on its owner; error 7 when Windows cannot.
    void Open(HWND owner, const DialogTemplate& form);
    void Close() noexcept;
    bool IsOpen() const noexcept { return handle_ != nullptr; }
    HWND Handle() const noexcept { return handle_; }
    void Activate() const noexcept;

    std::wstring Text(int id) const;
    void SetText(int id, const std::wstring& text) const;
    bool Checked(int id) const noexcept;
    void SetChecked(int id, bool checked) const noexcept;

    // A button was pressed, by its id. The one with IDCANCEL closes the window without it.
    std::function<void(int id)> Pressed;

    // A message of the modal loop: true when it was this window's.
    bool Translate(MSG& message) const noexcept;

private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    HWND handle_ = nullptr;
};
