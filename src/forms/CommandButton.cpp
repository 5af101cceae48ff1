#include "forms/CommandButton.h"

void CommandButton::Create(HWND container, int id, const std::wstring& caption) {
    CreateWindowOf(L"Button", BS_PUSHBUTTON | WS_TABSTOP | WS_VISIBLE | WS_CLIPSIBLINGS, 0, container, id,
                   caption.c_str());
}

void CommandButton::SetPressed(bool pressed) { Send(BM_SETSTATE, pressed); }

bool CommandButton::OnReflected(UINT message, WPARAM wParam, LPARAM, LRESULT&) {
    if (message != WM_COMMAND || HIWORD(wParam) != BN_CLICKED) return false;
    if (Click) Click();
    return true;
}
