#pragma once

#include <functional>

#include "Bench.h"
#include "support/Component.h"
#include "support/WindowWatchdog.h"

// Runs a step in the moment when the editor's window waits for its first message: shown, not yet painted. No timer,
// whose interval would be in the measurement.
class WhenWaiting {
public:
    explicit WhenWaiting(std::function<void()> step);
    ~WhenWaiting();
    WhenWaiting(const WhenWaiting&) = delete;
    WhenWaiting& operator=(const WhenWaiting&) = delete;
    bool Ran() const { return ran_; }

private:
    static LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam);
    std::function<void()> step_;
    HHOOK hook_;
    const WindowWatchdog watchdog_{120000};
    bool ran_ = false;
};

// The window of the editor, which must be shown.
HWND ShownEditor();
// The id of an entry of its menu bar, by the place of the menu and the entry's text.
UINT CommandOf(int menu, const wchar_t* entry);
