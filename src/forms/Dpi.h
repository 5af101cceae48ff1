#pragma once

#include <windows.h>

// Dots per inch of a window, or of the screen for null, on every release of Windows.
UINT DpiOf(HWND window) noexcept;
// GetSystemMetrics for those dots per inch.
int SystemMetricFor(int index, UINT dpi) noexcept;
// SystemParametersInfo(SPI_GETNONCLIENTMETRICS) for those dots per inch.
NONCLIENTMETRICSW MetricsFor(UINT dpi) noexcept;
