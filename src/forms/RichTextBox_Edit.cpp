#include <windows.h>

#include <richedit.h>

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
    // From the top, over what is selected too: the only occurrence is found again.
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
