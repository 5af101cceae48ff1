#include "forms/DialogTemplate.h"

#include <cstdlib>

// A template is a stream of words and texts, each control at a multiple of four bytes.
namespace {
constexpr size_t CountOfControls = 4;  // the word that holds it
}

DialogTemplate::DialogTemplate(const std::wstring& title, const NONCLIENTMETRICSW& metrics, UINT dpi, int width,
                               int height) {
    Long(DS_MODALFRAME | DS_SETFONT | WS_POPUP | WS_CAPTION | WS_SYSMENU);
    Long(0);
    Word(0);  // CountOfControls
    for (const int value : {0, 0, width, height}) Word(static_cast<WORD>(value));
    Word(0);
    Word(0);
    Text(title);
    Word(static_cast<WORD>(MulDiv(std::abs(metrics.lfMessageFont.lfHeight), 72, static_cast<int>(dpi))));
    Text(metrics.lfMessageFont.lfFaceName);
}

void DialogTemplate::Add(WORD windowClass, DWORD style, DWORD exStyle, int x, int y, int width, int height, int id,
                         const std::wstring& text) {
    if (words_.size() % 2 != 0) Word(0);
    Long(style | WS_CHILD | WS_VISIBLE);
    Long(exStyle);
    for (const int value : {x, y, width, height, id}) Word(static_cast<WORD>(value));
    Word(0xFFFF);
    Word(windowClass);
    Text(text);
    Word(0);
    ++words_[CountOfControls];
}

void DialogTemplate::Long(DWORD value) {
    Word(LOWORD(value));
    Word(HIWORD(value));
}

void DialogTemplate::Text(const std::wstring& text) {
    for (const wchar_t unit : text) Word(unit);
    Word(0);
}

void CentreOn(HWND dialog, HWND owner) {
    RECT own, around;
    GetWindowRect(dialog, &own);
    GetWindowRect(owner, &around);
    const int width = own.right - own.left;
    const int height = own.bottom - own.top;
    int x = (around.left + around.right - width) / 2;
    int y = (around.top + around.bottom - height) / 2;
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    if (GetMonitorInfoW(MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST), &monitor)) {
        const RECT& work = monitor.rcWork;
        if (x + width > work.right) x = work.right - width;
        if (y + height > work.bottom) y = work.bottom - height;
        if (x < work.left) x = work.left;
        if (y < work.top) y = work.top;
    }
    SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}
