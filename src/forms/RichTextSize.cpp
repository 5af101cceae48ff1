#include "forms/RichTextSize.h"

#include <richedit.h>

#include <cmath>

#include "automation/App.h"
#include "forms/Dpi.h"
#include "forms/Handles.h"
#include "forms/RichEdit.h"
#include "forms/Surroundings.h"

float RichTextCorrection(int measured, int expected, UINT dpi, UINT systemDpi) noexcept {
    if (measured <= 0 || expected <= 0 || dpi == 0 || systemDpi == 0 || dpi == systemDpi) return 1;
    const double ratio = static_cast<double>(dpi) / systemDpi;
    double best = 1;
    double least = std::abs(std::log(static_cast<double>(measured) / expected));
    for (const double correction : {ratio, 1 / ratio}) {
        const double left = std::abs(std::log(measured * correction / expected));
        if (left < least) {
            least = left;
            best = correction;
        }
    }
    constexpr double Rounding = 0.2;  // of pixels, and the space that a font wants between its lines
    return least < Rounding ? static_cast<float>(best) : 1.0F;
}

int LineDistance(HWND richEdit) noexcept {
    const LRESULT second = SendMessageW(richEdit, EM_LINEINDEX, 1, 0);
    if (second <= 0) return 0;
    POINTL above{};
    POINTL below{};
    SendMessageW(richEdit, EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&above), 0);
    SendMessageW(richEdit, EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&below), second);
    return static_cast<int>(below.y - above.y);
}

float RichTextCorrection(HWND container, const std::wstring& face, float points) {
    const UINT dpi = DpiOf(container);
    const UINT system = DpiOf(nullptr);
    if (dpi == system) return 1;
    const Surroundings surroundings;
    const HWND probe = CreateWindowExW(0, RichEditClass(), L"", WS_CHILD | ES_MULTILINE, 0, 0, 400, 400, container,
                                       nullptr, App::Module(), nullptr);
    if (probe == nullptr) return 1;
    CHARFORMAT2W format{};
    format.cbSize = sizeof format;
    format.dwMask = CFM_FACE | CFM_SIZE | CFM_CHARSET;
    format.yHeight = static_cast<LONG>(points * 20);  // twips
    format.bCharSet = DEFAULT_CHARSET;
    lstrcpynW(format.szFaceName, face.c_str(), LF_FACESIZE);
    SendMessageW(probe, EM_SETCHARFORMAT, SCF_DEFAULT, reinterpret_cast<LPARAM>(&format));
    SendMessageW(probe, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"x\r\nx"));
    const int line = LineDistance(probe);
    DestroyWindow(probe);

    LOGFONTW wanted{};
    wanted.lfHeight = -static_cast<LONG>(std::lround(points * static_cast<float>(dpi) / 72));
    wanted.lfCharSet = DEFAULT_CHARSET;
    lstrcpynW(wanted.lfFaceName, face.c_str(), LF_FACESIZE);
    const FontHandle font(CreateFontIndirectW(&wanted));
    const WindowDc context(container);
    const SelectedObject inFont(context, font.get());
    TEXTMETRICW metrics{};
    GetTextMetricsW(context, &metrics);
    return RichTextCorrection(line, static_cast<int>(metrics.tmHeight), dpi, system);
}
