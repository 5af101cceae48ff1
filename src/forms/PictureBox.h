#pragma once

#include <optional>

#include "forms/Control.h"

// A plain child window that holds other controls or that its owner draws: pages, panes, grips and bars.
class PictureBox : public Control {
public:
    // `id` is the window's control id; tab order follows the order of creation.
    void Create(HWND container, int id, DWORD style = WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS,
                DWORD exStyle = 0);

    // The system colour of the background, COLOR_BTNFACE unless set.
    void SetBackColor(int systemColor) noexcept;
    // Shown while the mouse is over it, IDC_ARROW unless set.
    void SetMousePointer(const wchar_t* systemCursor) noexcept;
    // Makes it a push button for the keyboard and for screen readers: the Tab key comes to it, Space and Enter press
    // it, and a rectangle shows that it has the focus. The mouse presses it without giving it the focus.
    void SetPushButton();
    // Paints the client area after the background was erased.
    std::function<void(HDC context, const RECT& client)> Paint;

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    // Answers what a push button answers. Returns nothing for other boxes and for messages that every box handles.
    std::optional<LRESULT> OnButton(UINT message, WPARAM wParam, LPARAM lParam);
    int backColor_ = COLOR_BTNFACE;
    HCURSOR cursor_ = nullptr;
    bool clicking_ = false;  // the left button went down here and is held
    bool pushButton_ = false;
    bool spaceDown_ = false;
};
