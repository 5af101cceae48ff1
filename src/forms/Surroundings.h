#pragma once

#include <windows.h>

#include "automation/ActivationContext.h"

// While one of these lives, the thread measures and makes windows with per-monitor dots per inch, whatever the host's
// process does; afterwards the host has its own back. Cheap; nests.
class Awareness {
public:
    Awareness() noexcept;
    ~Awareness();
    Awareness(const Awareness&) = delete;
    Awareness& operator=(const Awareness&) = delete;

private:
    DPI_AWARENESS_CONTEXT before_;
};

// The same, and windows are made with this module's manifest (common controls 6): the host's process may carry an old
// one or none. What the manifest asks for is loaded with the first of these; after that it is cheap. Nests.
class Surroundings {
public:
    Surroundings() noexcept;
    ~Surroundings() = default;
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

private:
    ActiveContext activeContext_;
    Awareness awareness_;
};
