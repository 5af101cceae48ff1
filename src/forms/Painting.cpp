#include "forms/Painting.h"

#include <algorithm>

namespace {

std::vector<HWND>& Held() {
    static std::vector<HWND> held;  // of the one thread that has the form
    return held;
}

void Hold(HWND window) { SendMessageW(window, WM_SETREDRAW, FALSE, 0); }

void Resume(HWND window) {
    SendMessageW(window, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(window, nullptr, TRUE);
}

}  // namespace

PaintingHeld::PaintingHeld(Control& control) : control_(control) {
    if (control_.paintingHeld_ == 0) {
        Held().push_back(control_.Handle());
        Hold(control_.Handle());
    }
    ++control_.paintingHeld_;
}

PaintingHeld::~PaintingHeld() {
    if (--control_.paintingHeld_ > 0) return;
    std::erase(Held(), control_.Handle());
    Resume(control_.Handle());
}

PaintingResumed::PaintingResumed() : windows_(Held()) {
    for (const HWND window : windows_) Resume(window);
}

PaintingResumed::~PaintingResumed() {
    for (const HWND window : windows_) {
        // One whose work has ended meanwhile stays as it is.
        if (std::ranges::find(Held(), window) != Held().end()) Hold(window);
    }
}
