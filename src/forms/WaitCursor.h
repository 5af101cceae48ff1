#pragma once

#include <windows.h>

// Shows the hourglass while a host is asked for something that may take its time.
class WaitCursor {
public:
    WaitCursor() noexcept : before_(SetCursor(LoadCursorW(nullptr, IDC_WAIT))) {}
    ~WaitCursor() { SetCursor(before_); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    HCURSOR before_;
};
