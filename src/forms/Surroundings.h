#pragma once

#include <windows.h>

#include "automation/ActivationContext.h"

// The host's process may carry an old manifest or none, and its own idea of dots per inch. While one of these lives,
// the thread makes windows with this module's manifest (common controls 6) and per-monitor dots per inch; afterwards
// the host has its surroundings back. Cheap; nests.
class Surroundings {
public:
    Surroundings() noexcept;
    ~Surroundings();
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

private:
    ActiveContext activeContext_;
    void* dpiContext_ = nullptr;
};
