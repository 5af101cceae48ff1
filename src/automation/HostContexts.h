#pragma once

#include <windows.h>

#include <optional>

#include "automation/ActivationContext.h"

// A host has surroundings of its own: the activation context that says which libraries, window classes and
// registration-free components its code gets, and the awareness of dots per inch that its windows are made with. While
// a call of the host is under way we set ours for our windows; whenever the host's code runs inside it, it gets its own
// back. On releases of Windows that know no awareness of threads the activation context is all there is.

// Taken where a call of the host comes in, before anything is changed. Remembers the contexts of that moment for the
// thread; calls nest.
class HostContexts {
public:
    HostContexts() noexcept;
    ~HostContexts();
    HostContexts(const HostContexts&) = delete;
    HostContexts& operator=(const HostContexts&) = delete;

private:
    friend class InHostContexts;
    HANDLE activation_ = nullptr;  // null: that of the process
    DPI_AWARENESS_CONTEXT awareness_ = nullptr;
    DWORD thread_;
    HostContexts* outer_;
};

// While one lives the thread has the contexts of the innermost call that came in on it; without such a call it does
// nothing. Cheap, and cheaper still where they are in force already; nests.
class InHostContexts {
public:
    InHostContexts() noexcept;
    ~InHostContexts();
    InHostContexts(const InHostContexts&) = delete;
    InHostContexts& operator=(const InHostContexts&) = delete;

private:
    std::optional<ActiveContext> active_;
    DPI_AWARENESS_CONTEXT before_ = nullptr;
};
