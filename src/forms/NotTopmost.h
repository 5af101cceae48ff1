#pragma once

#include <windows.h>

bool IsTopmost(HWND window) noexcept;

// While one of these lives the shown form is not topmost: the code that runs may show an ordinary window, which would
// open behind a topmost one. The form stays in front of all ordinary windows meanwhile, and what it owns in front of
// it. Afterwards it is topmost again if it was before, and active again if that code has left no window active. The
// outermost one counts; where no form is shown it does nothing.
class NotTopmost {
public:
    NotTopmost() noexcept;
    ~NotTopmost();
    NotTopmost(const NotTopmost&) = delete;
    NotTopmost& operator=(const NotTopmost&) = delete;

private:
    HWND form_ = nullptr;  // null: nothing to take back
    bool active_ = false;
};
