#include "forms/Dpi.h"

#include <initializer_list>

#include "forms/Handles.h"
#include "forms/SystemFunctions.h"

UINT DpiOf(HWND window) noexcept {
    if (window != nullptr) {
        if (const UINT dpi = System::GetDpiForWindow(window)) return dpi;
    }
    const int dpi = GetDeviceCaps(WindowDc(nullptr), LOGPIXELSX);
    return dpi > 0 ? static_cast<UINT>(dpi) : 96U;
}

int SystemMetricFor(int index, UINT dpi) noexcept {
    if (System::GetSystemMetricsForDpi) return System::GetSystemMetricsForDpi(index, dpi);
    return MulDiv(GetSystemMetrics(index), static_cast<int>(dpi), static_cast<int>(DpiOf(nullptr)));
}

NONCLIENTMETRICSW MetricsFor(UINT dpi) noexcept {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (System::SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi)) return metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    const auto screen = static_cast<int>(DpiOf(nullptr));
    for (LOGFONTW* font :
         {&metrics.lfMessageFont, &metrics.lfMenuFont, &metrics.lfStatusFont, &metrics.lfCaptionFont}) {
        font->lfHeight = MulDiv(font->lfHeight, static_cast<int>(dpi), screen);
    }
    return metrics;
}
