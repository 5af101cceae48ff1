#pragma once

#include "support/PatchedFunction.h"

// While it lives, the system says that the user has chosen a contrast theme, or that none is chosen, as it is told
// here. Wine has none that could be chosen. Windows are not told: that is the test's.
class ContrastTheme {
public:
    explicit ContrastTheme(bool chosen);
    static void Choose(bool chosen) noexcept;
    // How often it was asked since Choose.
    static int TimesAsked() noexcept;
    explicit operator bool() const noexcept { return static_cast<bool>(parameters_); }

private:
    PatchedFunction parameters_;
};
