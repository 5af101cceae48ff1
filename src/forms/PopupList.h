#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>

#include "forms/Control.h"

// A list that opens beside a place in another control and leaves the focus there: keys come through Move. Its rows are
// asked for while they are drawn, so that a long list opens as fast as a short one. Making and first showing the window
// takes longer than all the rest, so a closed list is a hidden one that is shown again.
class PopupList : public Control {
public:
    struct Row {
        std::wstring Text;
        std::wstring Note;  // in a second column
    };

    // Opens the list without rows. `line`: the line that it stands beside, in pixels of the screen. `owner`: a
    // top-level window; the list is topmost where that one is. `font` is not owned. Error 7 when Windows makes no
    // window.
    void Open(HWND owner, const RECT& line, HFONT font, const std::wstring& accessibleName);
    void Close() noexcept;
    // Destroys the window, whether it is open or not. The next Open makes another. Windows destroys it with its owner.
    void Discard() noexcept;
    bool IsOpen() const noexcept { return open_ && Handle() != nullptr; }

    // Shows so many rows, the first one selected, or a single row with the reason why there are none.
    void SetRows(size_t count, std::wstring whyNone);
    // Selects another row: so many further down, or up. PageRows: how many a page has.
    void Move(long rows);
    long PageRows() const;
    // -1: there are no rows.
    long Selected() const;

    // The row's texts, from 0.
    std::function<Row(size_t row)> RowOf;
    // The selected row was clicked.
    Event Chosen;

    // A message of the modal loop: the mouse is pressed somewhere else.
    bool IsPressElsewhere(const MSG& message) const noexcept;

    // Where a list of that size stands beside a line: below it, or above where there is more room, and within the work
    // area. All in pixels.
    static RECT PlaceBeside(const RECT& line, SIZE size, const RECT& workArea);
    // On the monitor of the line.
    static RECT PlaceBeside(const RECT& line, SIZE size);

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

private:
    long RowAt(LPARAM point) const;
    void Select(long row);
    LRESULT Draw(LPARAM lParam) const;
    void FollowSelection(const NMLISTVIEW& change) noexcept;
    void Make(HWND owner, const std::wstring& accessibleName);
    bool Fits(HWND owner, HFONT font) const noexcept;
    UINT SetCount(size_t count);
    void SetColumns(LONG first, LONG second);
    void Arrange();

    bool open_ = false;
    bool stale_ = false;  // the system's colours, fonts, sizes or theme have changed since the window was made
    UINT dpi_ = 0;        // of the owner when it was made
    HFONT font_ = nullptr;
    size_t count_ = 0;  // rows of the control
    RECT line_{};
    size_t rows_ = 0;
    std::wstring whyNone_;
    long selected_ = -1;
    long pressed_ = -1;
};
