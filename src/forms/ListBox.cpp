#include "forms/ListBox.h"

#include <algorithm>

#include "automation/RuntimeError.h"
#include "forms/Events.h"

void ListBox::Create(HWND container, int id) {
    CreateWindowOf(
        L"ListBox",
        LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | LBS_HASSTRINGS | WS_VSCROLL | WS_TABSTOP | WS_VISIBLE | WS_CLIPSIBLINGS,
        WS_EX_CLIENTEDGE, container, id, L"");
}

void ListBox::Clear() { Send(LB_RESETCONTENT); }

int ListBox::ListCount() const { return static_cast<int>(Send(LB_GETCOUNT)); }

int ListBox::AddItem(const std::wstring& text) {
    const auto row = static_cast<int>(Send(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str())));
    if (row < 0) RaiseError(ErrorNumber::OutOfMemory);
    return row;
}

std::wstring ListBox::List(int row) const {
    const LRESULT length = Send(LB_GETTEXTLEN, static_cast<WPARAM>(row));
    if (length <= 0) return {};
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    const LRESULT copied = Send(LB_GETTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text.data()));
    text.resize(copied > 0 ? static_cast<size_t>(copied) : 0);
    return text;
}

void ListBox::SetItemData(int row, long data) {
    if (Send(LB_SETITEMDATA, static_cast<WPARAM>(row), data) == LB_ERR) RaiseError(ErrorNumber::InvalidPropertyValue);
}

long ListBox::ItemData(int row) const { return static_cast<long>(Send(LB_GETITEMDATA, static_cast<WPARAM>(row))); }

int ListBox::ListIndex() const { return static_cast<int>(Send(LB_GETCURSEL)); }

void ListBox::SetListIndex(int row) {
    if (row < -1 || row >= ListCount()) RaiseError(ErrorNumber::InvalidPropertyValue);
    Send(LB_SETCURSEL, static_cast<WPARAM>(row));
    if (Click) Click();
}

bool ListBox::OnReflected(UINT message, WPARAM wParam, LPARAM, LRESULT&) {
    if (message != WM_COMMAND || HIWORD(wParam) != LBN_SELCHANGE) return false;
    if (Click) Click();
    return true;
}

std::wstring ListBox::DragCaption() const { return List(ListIndex()); }

LRESULT ListBox::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_MOUSEMOVE:
            if ((wParam & MK_LBUTTON) == 0) break;
            // The row that was pressed is what is dragged: the list must not select others on the way.
            RaiseMouse(MouseMove, MouseButtons(wParam), lParam);
            return 0;
        case WM_RBUTTONDOWN:
            SetFocus();
            break;
        default:
            break;
    }
    return Control::OnMessage(message, wParam, lParam);
}

void ListBox::EndTracking(LPARAM press) {
    Events::Call call;
    // Selects for good what was pressed, and gives the mouse back.
    Original(WM_LBUTTONUP, 0, press);
    call.Rethrow();
}

POINT ListBox::MenuPoint() const {
    RECT row{};
    if (ListIndex() < 0 ||
        Send(LB_GETITEMRECT, static_cast<WPARAM>(ListIndex()), reinterpret_cast<LPARAM>(&row)) == LB_ERR) {
        return Control::MenuPoint();
    }
    RECT client;
    GetClientRect(Handle(), &client);
    POINT point{row.left + (row.bottom - row.top), std::clamp(row.bottom, client.top, client.bottom)};
    ClientToScreen(Handle(), &point);
    return point;
}
