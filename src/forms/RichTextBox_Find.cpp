#include <windows.h>

#include <richedit.h>

#include <algorithm>

#include "forms/RichTextBox.h"

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

void RichTextBox::GoToLine(long line) {
    const long last = static_cast<long>(Send(EM_GETLINECOUNT));
    const auto start =
        static_cast<long>(Send(EM_LINEINDEX, static_cast<WPARAM>(std::clamp(line, 1L, std::max(last, 1L)) - 1)));
    RawSelect(start, start);
    ScrollCaret();
}
