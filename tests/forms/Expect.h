#pragma once

#include <gtest/gtest.h>

#include "automation/RuntimeError.h"

// The number of the run-time error that the work raises, 0 when it raises none.
template <class Work>
long NumberOf(Work&& work) {
    try {
        work();
    } catch (const RuntimeError& error) {
        return error.Number;
    }
    return 0;
}

// A plain top-level window to put controls on.
class TopWindow {
public:
    TopWindow()
        : handle_(CreateWindowExW(0, L"Static", L"top", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0, 600, 500, nullptr, nullptr,
                                  GetModuleHandleW(nullptr), nullptr)) {}
    ~TopWindow() { DestroyWindow(handle_); }
    TopWindow(const TopWindow&) = delete;
    TopWindow& operator=(const TopWindow&) = delete;
    HWND Handle() const { return handle_; }

private:
    HWND handle_;
};
