#pragma once

#include <windows.h>

#include <optional>

#include "automation/ActivationContext.h"

// A host has its own surroundings: the activation context, which decides the libraries, window classes and
// registration-free components that its code gets, and the DPI awareness of its windows. While a call of the host is
// under way we set ours for our windows; whenever the host's code runs inside that call, its own are restored. Releases
// of Windows without per-thread DPI awareness have the activation context alone.

// Constructed where a call of the host comes in, before anything is changed. Remembers the thread's contexts at that
// moment; calls nest.
class HostContexts {
public:
    HostContexts() noexcept;
    ~HostContexts();
    HostContexts(const HostContexts&) = delete;
    HostContexts& operator=(const HostContexts&) = delete;

private:
    friend class InHostContexts;
    HANDLE activation_ = nullptr;  // null: the process's own
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
