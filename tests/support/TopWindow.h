#pragma once

#include "forms/PictureBox.h"

// A container on a hidden top-level window, to put controls on.
class TopWindow {
public:
    TopWindow()
        : top_(CreateWindowExW(0, L"Static", L"top", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0, 600, 500, nullptr,
                               nullptr, GetModuleHandleW(nullptr), nullptr)) {
        container_.Create(top_, 1);
        container_.Move(0, 0, 9000, 7000);
    }
    ~TopWindow() { DestroyWindow(top_); }
    TopWindow(const TopWindow&) = delete;
    TopWindow& operator=(const TopWindow&) = delete;
    HWND Handle() const { return container_.Handle(); }
    HWND Top() const { return top_; }

private:
    HWND top_;
    PictureBox container_;
};
