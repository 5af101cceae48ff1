#include "forms/Dpi.h"

#include <initializer_list>

#include "forms/UserFunction.h"

UINT DpiOf(HWND window) noexcept {
    static const auto forWindow = UserFunction<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
    if (forWindow != nullptr && window != nullptr) {
        if (const UINT dpi = forWindow(window)) return dpi;
    }
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi > 0 ? static_cast<UINT>(dpi) : 96U;
}

int SystemMetricFor(int index, UINT dpi) noexcept {
    static const auto forDpi = UserFunction<int(WINAPI*)(int, UINT)>("GetSystemMetricsForDpi");
    if (forDpi != nullptr) return forDpi(index, dpi);
    return MulDiv(GetSystemMetrics(index), static_cast<int>(dpi), static_cast<int>(DpiOf(nullptr)));
}

NONCLIENTMETRICSW MetricsFor(UINT dpi) noexcept {
    static const auto forDpi = UserFunction<BOOL(WINAPI*)(UINT, UINT, PVOID, UINT, UINT)>("SystemParametersInfoForDpi");
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (forDpi != nullptr && forDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi)) return metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    const auto screen = static_cast<int>(DpiOf(nullptr));
    for (LOGFONTW* font :
         {&metrics.lfMessageFont, &metrics.lfMenuFont, &metrics.lfStatusFont, &metrics.lfCaptionFont}) {
        font->lfHeight = MulDiv(font->lfHeight, static_cast<int>(dpi), screen);
    }
    return metrics;
}
