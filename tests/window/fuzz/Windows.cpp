#include "Windows.h"

#include <richedit.h>

#include <vector>

#include "support/EditorTree.h"
#include "support/EditorWindow.h"

std::wstring EditorText() {
    const HWND editor = EditorWindow::Editor();
    GETTEXTLENGTHEX measure{GTL_USECRLF | GTL_NUMCHARS | GTL_PRECISE, 1200};
    const LRESULT length = SendMessageW(editor, EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&measure), 0);
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    GETTEXTEX request{};
    request.cb = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    request.flags = GT_USECRLF;
    request.codepage = 1200;
    text.resize(static_cast<size_t>(
        SendMessageW(editor, EM_GETTEXTEX, reinterpret_cast<WPARAM>(&request), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::wstring NodeText(HTREEITEM item) {
    static std::vector<wchar_t> text(256 * 1024);
    text[0] = L'\0';
    TVITEMW read{};
    read.mask = TVIF_TEXT;
    read.hItem = item;
    read.pszText = text.data();
    read.cchTextMax = static_cast<int>(text.size());
    SendMessageW(View(0), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&read));
    return text.data();
}

void PutText(const std::wstring& text) {
    SETTEXTEX request{ST_DEFAULT, 1200};
    SendMessageW(EditorWindow::Editor(), EM_SETTEXTEX, reinterpret_cast<WPARAM>(&request),
                 reinterpret_cast<LPARAM>(text.c_str()));
}
