#include <windows.h>

#include <richedit.h>

#include <algorithm>
#include <cmath>

#include "forms/RichTextBox.h"
#include "forms/Twips.h"

bool RichTextBox::FindFrom(long from, long to, const std::wstring& text) {
    FINDTEXTEXW request{};
    request.chrg = {from, to};
    request.lpstrText = text.c_str();
    if (Send(EM_FINDTEXTEXW, FR_DOWN, reinterpret_cast<LPARAM>(&request)) < 0) return false;
    Send(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&request.chrgText));
    ScrollCaret();
    return true;
}

bool RichTextBox::Find(const std::wstring& text) {
    if (text.empty()) return false;
    const CHARRANGE selected = Selected();
    if (FindFrom(selected.cpMax, -1, text)) return true;
    // From the top and past the selection too, so that the only occurrence is found again.
    return FindFrom(0, -1, text);
}

POINT RichTextBox::MenuPoint() const {
    const CHARRANGE selected = Selected();
    POINTL caret{};
    Send(EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&caret), selected.cpMax);
    RECT client;
    GetClientRect(Handle(), &client);
    // Under the line, which stays in sight.
    POINT point{caret.x, caret.y + TwipsToPixels(points_ * 20 * 1.2F, Dpi())};
    if (!PtInRect(&client, point)) point = {};
    ClientToScreen(Handle(), &point);
    return point;
}

void RichTextBox::Zoom(int steps) {
    constexpr long Least = 20;  // percent
    constexpr long Most = 500;
    const long percent = steps == 0 ? 100 : ZoomPercent() + steps * 10;
    const float wanted = zoom_ * static_cast<float>(std::clamp(percent, Least, Most));
    Send(EM_SETZOOM, static_cast<WPARAM>(std::lround(wanted)), 100);
}

long RichTextBox::ZoomPercent() const {
    int numerator = 0;
    int denominator = 0;
    Send(EM_GETZOOM, reinterpret_cast<WPARAM>(&numerator), reinterpret_cast<LPARAM>(&denominator));
    // Not zoomed, it answers with zeros.
    const float now =
        denominator > 0 && numerator > 0 ? static_cast<float>(numerator) / static_cast<float>(denominator) : 1.0F;
    return std::lround(now * 100 / zoom_);
}

void RichTextBox::GoToLine(long line) {
    const long last = static_cast<long>(Send(EM_GETLINECOUNT));
    const auto start =
        static_cast<long>(Send(EM_LINEINDEX, static_cast<WPARAM>(std::clamp(line, 1L, std::max(last, 1L)) - 1)));
    RawSelect(start, start);
    ScrollCaret();
}
