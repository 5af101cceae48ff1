#include "support/WindowWatchdog.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

WindowWatchdog::WindowWatchdog(UINT milliseconds)
    : timer_(SetTimer(nullptr, 0, Patient(milliseconds), [](HWND, UINT, UINT_PTR, DWORD) WINAPI {
          std::puts("the watchdog ends a test whose window nobody closes");
          std::fflush(stdout);
          TerminateProcess(GetCurrentProcess(), 99);
      })) {}

WindowWatchdog::~WindowWatchdog() { KillTimer(nullptr, timer_); }

UINT WindowWatchdog::Patient(UINT milliseconds) {
    const char* const patience = std::getenv("BRV_PATIENCE");
    return milliseconds * static_cast<UINT>(std::clamp(patience != nullptr ? std::atoi(patience) : 1, 1, 100));
}
