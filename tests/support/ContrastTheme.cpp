#include "support/ContrastTheme.h"

namespace {

bool contrastTheme = false;
int timesAsked = 0;

BOOL WINAPI ParametersInstead(UINT action, UINT size, void* data, UINT flags) {
    if (action == SPI_GETHIGHCONTRAST) {
        ++timesAsked;
        static_cast<HIGHCONTRASTW*>(data)->dwFlags = contrastTheme ? HCF_HIGHCONTRASTON | HCF_AVAILABLE : HCF_AVAILABLE;
        return TRUE;
    }
    // What the function itself calls.
    using Parameters = BOOL(WINAPI*)(UINT, UINT, void*, UINT);
    static const auto below = reinterpret_cast<Parameters>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"win32u.dll"), "NtUserSystemParametersInfo")));
    return below != nullptr && below(action, size, data, flags);
}

}  // namespace

ContrastTheme::ContrastTheme(bool chosen)
    : parameters_(L"user32.dll", "SystemParametersInfoW", reinterpret_cast<void*>(&ParametersInstead)) {
    Choose(chosen);
}

void ContrastTheme::Choose(bool chosen) noexcept {
    contrastTheme = chosen;
    timesAsked = 0;
}

int ContrastTheme::TimesAsked() noexcept { return timesAsked; }
