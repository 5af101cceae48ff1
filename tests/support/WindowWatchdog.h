#pragma once

#include <windows.h>

// Ends the process, with 99, when it lives longer than its time: a modal window that nobody closes would hang the run.
class WindowWatchdog {
public:
    explicit WindowWatchdog(UINT milliseconds);
    ~WindowWatchdog();
    WindowWatchdog(const WindowWatchdog&) = delete;
    WindowWatchdog& operator=(const WindowWatchdog&) = delete;

    // A time that a quiet machine needs, as often as BRV_PATIENCE in the environment says: for a machine that does
    // other things, or a build that takes longer for the same.
    static UINT Patient(UINT milliseconds);

private:
    UINT_PTR timer_;
};
