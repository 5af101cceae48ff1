#include "forms/PopupList.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <utility>

#include "forms/Dpi.h"
#include "forms/NotTopmost.h"

namespace {

constexpr long MostRows = 12;    // shown at a time
constexpr int WidthAt96 = 360;   // pixels
constexpr int NotePercent = 35;  // of the width

}  // namespace

RECT PopupList::PlaceBeside(const RECT& line, SIZE size, const RECT& workArea) {
    size.cx = std::min(size.cx, workArea.right - workArea.left);
    const LONG below = std::max(workArea.bottom - line.bottom, 0L);
    const LONG above = std::max(line.top - workArea.top, 0L);
    const bool under = size.cy <= below || below >= above;
    const LONG height = std::min(size.cy, under ? below : above);
    const LONG left = std::clamp(line.left, workArea.left, workArea.right - size.cx);
    const LONG top = std::clamp(under ? line.bottom : line.top - height, workArea.top, workArea.bottom - height);
    return {left, top, left + size.cx, top + height};
}

RECT PopupList::PlaceBeside(const RECT& line, SIZE size) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    if (!GetMonitorInfoW(MonitorFromRect(&line, MONITOR_DEFAULTTONEAREST), &monitor))
        monitor.rcWork = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    return PlaceBeside(line, size, monitor.rcWork);
}

// A window that was made for other dots per inch, another font or other settings is not shown again, and Wine lets no
// owned window stop being topmost.
bool PopupList::Fits(HWND owner, HFONT font) const noexcept {
    return Handle() != nullptr && !stale_ && font == font_ && DpiOf(owner) == dpi_ &&
           GetWindow(Handle(), GW_OWNER) == owner && IsTopmost(Handle()) == IsTopmost(owner);
}

void PopupList::Make(HWND owner, const std::wstring& accessibleName) {
    CreateWindowOf(
        WC_LISTVIEWW,
        WS_POPUP | WS_BORDER | LVS_REPORT | LVS_OWNERDATA | LVS_NOCOLUMNHEADER | LVS_SINGLESEL | LVS_SHOWSELALWAYS,
        WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE | (IsTopmost(owner) ? WS_EX_TOPMOST : 0), owner, 0, accessibleName.c_str());
    dpi_ = 0;
    count_ = 0;
    selected_ = -1;
    SetFont(font_);
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    for (int column = 0; column < 2; ++column) {
        LVCOLUMNW made{};
        Send(LVM_INSERTCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&made));
    }
    // The height of a row is asked of the first.
    Send(LVM_SETITEMCOUNT, 1, LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
    count_ = 1;
    // Last: a window that was made half-way is made again.
    stale_ = false;
    dpi_ = DpiOf(owner);
}

void PopupList::Open(HWND owner, const RECT& line, HFONT font, const std::wstring& accessibleName) {
    Close();
    if (!Fits(owner, font)) {
        Discard();
        font_ = font;
        Make(owner, accessibleName);
    }
    line_ = line;
    open_ = true;
}

void PopupList::Close() noexcept {
    rows_ = 0;
    whyNone_.clear();
    pressed_ = -1;
    if (!std::exchange(open_, false) || Handle() == nullptr) return;
    // Hidden by somebody else, as when its owner was minimized: Windows would show it again with the owner.
    if (!IsWindowVisible(Handle())) return Destroy();
    // The scroll bar may be held.
    if (GetCapture() == Handle()) ReleaseCapture();
    ShowWindow(Handle(), SW_HIDE);
}

void PopupList::Discard() noexcept {
    Close();
    Destroy();
}

void PopupList::SetRows(size_t count, std::wstring whyNone) {
    if (!IsOpen()) return;
    rows_ = count;
    whyNone_ = std::move(whyNone);
    const size_t wanted = std::max<size_t>(count, 1);
    const bool more = wanted > count_;
    UINT painted = RDW_INVALIDATE;
    // Rows go before their room does and come after it: no bar is ever needed in between. Under Wine a vertical bar,
    // which takes room from the columns, and a horizontal one, which takes it from the rows, would keep each other.
    if (!more) painted |= SetCount(wanted);
    Arrange();
    if (more) painted |= SetCount(wanted);
    if (!IsOpen()) return;
    // The control says nothing of a selection that is behind the end now.
    if (selected_ >= static_cast<long>(wanted)) selected_ = -1;
    Select(count > 0 ? 0 : -1);
    if (IsOpen() && !IsWindowVisible(Handle()))
        SetWindowPos(Handle(), HWND_TOP, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_NOOWNERZORDER | SWP_SHOWWINDOW);
    if (IsOpen()) RedrawWindow(Handle(), nullptr, nullptr, painted);
}

// Returns what has to be painted again beside the rows, as flags of RedrawWindow. The list stays where it is scrolled
// to.
UINT PopupList::SetCount(size_t count) {
    if (!IsOpen() || std::exchange(count_, count) == count) return 0;
    // A hidden window is not told to hold its painting, since the message that ends it would show it.
    const bool shown = IsWindowVisible(Handle()) != FALSE;
    if (shown) Send(WM_SETREDRAW, FALSE);
    Send(LVM_SETITEMCOUNT, count, LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
    if (!shown) return 0;
    Send(WM_SETREDRAW, TRUE);
    return RDW_FRAME;
}

void PopupList::SetColumns(LONG first, LONG second) {
    // Each change of a width paints a list that shows.
    if (Send(LVM_GETCOLUMNWIDTH, 0) != first) Send(LVM_SETCOLUMNWIDTH, 0, first);
    if (Send(LVM_GETCOLUMNWIDTH, 1) != second) Send(LVM_SETCOLUMNWIDTH, 1, second);
}

// As high as its rows are, up to a dozen.
void PopupList::Arrange() {
    if (!IsOpen()) return;
    const auto shown = static_cast<long>(std::min<size_t>(std::max<size_t>(rows_, 1), MostRows));
    RECT row{LVIR_BOUNDS, 0, 0, 0};
    Send(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row));
    const LONG rowHeight = std::max(row.bottom - row.top, 1L);
    RECT frame{};
    AdjustWindowRectEx(
        &frame,
        static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_STYLE)) & ~static_cast<DWORD>(WS_VSCROLL | WS_HSCROLL),
        FALSE, static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_EXSTYLE)));
    const SIZE frames{frame.right - frame.left, frame.bottom - frame.top};
    const RECT place =
        PlaceBeside(line_, {MulDiv(WidthAt96, static_cast<int>(dpi_), 96) + frames.cx, shown * rowHeight + frames.cy});
    const LONG rowsInSight = (place.bottom - place.top - frames.cy) / rowHeight;
    const LONG bar = static_cast<long>(rows_) > rowsInSight ? SystemMetricFor(SM_CXVSCROLL, dpi_) : 0;
    const LONG width = std::max(place.right - place.left - frames.cx - bar, 0L);
    const LONG note = rows_ > 0 ? width * NotePercent / 100 : 0;
    // Columns, too, are never wider than the list is at the moment.
    const bool narrower = width < Send(LVM_GETCOLUMNWIDTH, 0) + Send(LVM_GETCOLUMNWIDTH, 1);
    if (narrower) SetColumns(width - note, note);
    RECT now{};
    GetWindowRect(Handle(), &now);
    if (!EqualRect(&now, &place))
        SetWindowPos(Handle(), nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                     SWP_NOACTIVATE | SWP_NOZORDER);
    if (!narrower) SetColumns(width - note, note);
}

void PopupList::Select(long row) {
    LVITEMW state{};
    state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    if (selected_ >= 0 && selected_ != row)
        Send(LVM_SETITEMSTATE, static_cast<WPARAM>(selected_), reinterpret_cast<LPARAM>(&state));
    if (row < 0 || !IsOpen()) return;
    state.state = LVIS_SELECTED | LVIS_FOCUSED;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
    Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    // The control says so itself only while it has the focus.
    if (IsOpen()) NotifyWinEvent(EVENT_OBJECT_SELECTION, Handle(), OBJID_CLIENT, row + 1);
}

void PopupList::Move(long rows) {
    if (rows_ == 0) return;
    Select(std::clamp(std::max(Selected(), 0L) + rows, 0L, static_cast<long>(rows_) - 1));
}

long PopupList::PageRows() const { return std::max(static_cast<long>(Send(LVM_GETCOUNTPERPAGE)), 1L); }

long PopupList::Selected() const { return IsOpen() && rows_ > 0 ? selected_ : -1; }

long PopupList::RowAt(LPARAM point) const {
    LVHITTESTINFO hit{};
    hit.pt = {GET_X_LPARAM(point), GET_Y_LPARAM(point)};
    const auto row = static_cast<long>(Send(LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
    return row >= 0 && row < static_cast<long>(rows_) ? row : -1;
}

bool PopupList::IsPressElsewhere(const MSG& message) const noexcept {
    if (!IsOpen() || message.hwnd == Handle()) return false;
    switch (message.message) {
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_MBUTTONDOWN:
        case WM_NCLBUTTONDOWN:
        case WM_NCRBUTTONDOWN:
            return true;
        default:
            return false;
    }
}

LRESULT PopupList::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_MOUSEACTIVATE:
            return MA_NOACTIVATE;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            // Handled here: the class would take the focus.
            pressed_ = RowAt(lParam);
            if (pressed_ >= 0) Select(pressed_);
            return 0;
        case WM_LBUTTONUP: {
            const long pressed = std::exchange(pressed_, -1);
            if (pressed >= 0 && pressed == RowAt(lParam) && Chosen) Chosen();
            return 0;
        }
        case WM_RBUTTONDOWN:
        case WM_RBUTTONUP:
        case WM_MBUTTONDOWN:
            return 0;
        case WM_SETTINGCHANGE:
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED:
            stale_ = true;
            return Control::OnMessage(message, wParam, lParam);
        case WM_SETREDRAW: {
            // Windows' list view passes it on. Wine's does not, and so paints the scroll bar at every change of it.
            const LRESULT result = Original(message, wParam, lParam);
            DefWindowProcW(Handle(), message, wParam, lParam);
            return result;
        }
        case WM_CLOSE:
            Close();
            return 0;
        default:
            return Control::OnMessage(message, wParam, lParam);
    }
}

// The selected row has the colours of a selection though the focus is elsewhere.
LRESULT PopupList::Draw(LPARAM lParam) const {
    auto& draw = *reinterpret_cast<NMLVCUSTOMDRAW*>(lParam);
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
            return CDRF_NOTIFYITEMDRAW;
        case CDDS_ITEMPREPAINT:
            if (rows_ > 0 && static_cast<long>(draw.nmcd.dwItemSpec) == Selected()) {
                draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_SELECTED | CDIS_FOCUS);
                draw.clrText = GetSysColor(COLOR_HIGHLIGHTTEXT);
                draw.clrTextBk = GetSysColor(COLOR_HIGHLIGHT);
            }
            return CDRF_NEWFONT;
        default:
            return CDRF_DODEFAULT;
    }
}

// The row is kept, since the control finds it by looking at one after the other.
void PopupList::FollowSelection(const NMLISTVIEW& change) noexcept {
    if ((change.uChanged & LVIF_STATE) == 0) return;
    if ((change.uNewState & LVIS_SELECTED) != 0) {
        selected_ = change.iItem;
    } else if ((change.uOldState & LVIS_SELECTED) != 0 && (change.iItem == selected_ || change.iItem < 0)) {
        selected_ = -1;
    }
}

bool PopupList::OnReflected(UINT message, WPARAM, LPARAM lParam, LRESULT& result) {
    if (message != WM_NOTIFY) return false;
    const UINT code = reinterpret_cast<const NMHDR*>(lParam)->code;
    if (code == NM_CUSTOMDRAW) {
        result = Draw(lParam);
        return true;
    }
    if (code == LVN_ITEMCHANGED) {
        FollowSelection(*reinterpret_cast<const NMLISTVIEW*>(lParam));
        return true;
    }
    if (code != LVN_GETDISPINFOW) return false;
    LVITEMW& item = reinterpret_cast<NMLVDISPINFOW*>(lParam)->item;
    if ((item.mask & LVIF_TEXT) == 0 || item.pszText == nullptr || item.cchTextMax <= 0) return true;
    std::wstring text;
    if (rows_ == 0) {
        if (item.iSubItem == 0) text = whyNone_;
    } else if (item.iItem >= 0 && static_cast<size_t>(item.iItem) < rows_ && RowOf) {
        Row row = RowOf(static_cast<size_t>(item.iItem));
        text = std::move(item.iSubItem == 0 ? row.Text : row.Note);
    }
    lstrcpynW(item.pszText, text.c_str(), item.cchTextMax);
    return true;
}
