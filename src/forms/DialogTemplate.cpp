#include "forms/DialogTemplate.h"

void CentreOn(HWND dialog, HWND owner) {
    RECT own, around;
    GetWindowRect(dialog, &own);
    GetWindowRect(owner, &around);
    const int width = own.right - own.left;
    const int height = own.bottom - own.top;
    int x = (around.left + around.right - width) / 2;
    int y = (around.top + around.bottom - height) / 2;
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    if (GetMonitorInfoW(MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST), &monitor)) {
        const RECT& work = monitor.rcWork;
        if (x + width > work.right) x = work.right - width;
        if (y + height > work.bottom) y = work.bottom - height;
        if (x < work.left) x = work.left;
        if (y < work.top) y = work.top;
    }
    SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}
