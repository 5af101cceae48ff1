#pragma once

#include <windows.h>

// While one of these lives the form that is shown is not topmost: code runs that may show a window of its own, which
// need not be topmost and would open behind it. The form stands in front of all ordinary windows meanwhile, so that
// nothing else comes between. Afterwards it is topmost again if it was before, and active again where that code has
// left the activation with nobody. The outermost one counts; where no form is shown it does nothing.
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
