#include "forms/RichTextBox.h"

#include <richedit.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

#include "automation/RuntimeError.h"
#include "automation/Scope.h"
#include "forms/Events.h"
#include "forms/Messages.h"
#include "forms/PlainText.h"
#include "forms/RichEdit.h"
#include "forms/RichTextSize.h"
#include "forms/ThemedBorder.h"
#include "forms/Twips.h"

namespace {

// Overwriting a text in place costs the control more the longer the text is, under Wine with the square of it. Beyond
// this many characters a fresh control takes the new text.
constexpr long ReplaceBeyond = 16 * 1024;

constexpr UINT RunLater = WM_APP + 1;  // a message of our own

// Texts that EM_SETTEXTEX would not take as plain text, or would cut short.
bool NeedsStream(const std::wstring& text) noexcept {
    return text.rfind(L"{\\rtf", 0) == 0 || text.rfind(L"{\\urtf", 0) == 0 || text.rfind(L"{urtf", 0) == 0 ||
           text.find(L'\0') != std::wstring::npos;
}

// How much of a text a control holds at the least that took it all: it may change line ends and control characters, and
// nothing else. What it answers to the messages themselves differs by version.
long LeastLength(const std::wstring& text) noexcept {
    return static_cast<long>(
        std::count_if(text.begin(), text.end(), [](wchar_t unit) { return unit >= L' ' || unit == L'\t'; }));
}

struct StreamSource {
    const wchar_t* Text;
    size_t Length;
    size_t Position;
};

DWORD CALLBACK ReadStream(DWORD_PTR cookie, LPBYTE buffer, LONG capacity, LONG* written) noexcept {
    auto& source = *reinterpret_cast<StreamSource*>(cookie);
    size_t take = std::min(static_cast<size_t>(capacity) / sizeof(wchar_t), source.Length - source.Position);
    // A CR LF that is split between two buffers becomes two line ends under Wine: a full buffer ends after a line
    // feed.
    if (source.Position + take < source.Length) {
        for (size_t end = take; end > 0; --end) {
            if (source.Text[source.Position + end - 1] == L'\n') {
                take = end;
                break;
            }
        }
        if (take > 1 && source.Text[source.Position + take - 1] == L'\r') --take;
    }
    std::memcpy(buffer, source.Text + source.Position, take * sizeof(wchar_t));
    source.Position += take;
    *written = static_cast<LONG>(take * sizeof(wchar_t));
    return 0;
}

}  // namespace

void RichTextBox::Create(HWND container, int id) {
    target_.Accepts = [](const DroppedData& data) {
        using Format = DroppedData::Format;
        return data.GetFormat(Format::RichText) || data.GetFormat(Format::Text) || data.GetFormat(Format::Files);
    };
    target_.Over = [this](POINT screen) { ShowDropPlace(screen); };
    target_.Leave = [this] { ForgetDropPlace(); };
    target_.Drop = [this](const DroppedData& data) {
        droppedBefore_.reset();
        SetForegroundWindow(GetAncestor(Handle(), GA_ROOT));
        SetFocus();
        if (OLEDragDrop) OLEDragDrop(data);
    };
    MakeWindow(container, id);
}

void RichTextBox::MakeWindow(HWND container, int id) {
    CreateWindowOf(RichEditClass(),
                   ES_MULTILINE | ES_NOOLEDRAGDROP | ES_AUTOHSCROLL | ES_AUTOVSCROLL | ES_NOHIDESEL | ES_WANTRETURN |
                       WS_HSCROLL | WS_VSCROLL | WS_TABSTOP | WS_VISIBLE | WS_CLIPSIBLINGS,
                   WS_EX_CLIENTEDGE, container, id, L"");
    Prepare();
}

void RichTextBox::Prepare() {
    Send(EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    // Lines are not wrapped: wrapped SQL reads as if it had line breaks.
    Send(EM_SETTARGETDEVICE, 0, 1);
    Send(EM_SETUNDOLIMIT, 1000);
    Send(EM_AUTOURLDETECT, 0);
    if (!face_.empty()) SetEditorFont(face_, points_);
    Send(EM_SETEVENTMASK, 0, ENM_CHANGE | ENM_SELCHANGE);
    if (!later_.empty()) PostMessageW(Handle(), RunLater, 0, 0);
    if (!accessibleName_.empty()) annotations_.SetName(Handle(), accessibleName_);
    target_.Register(Handle());
}

void RichTextBox::SetAccessibleName(const std::wstring& name) {
    accessibleName_ = name;
    annotations_.SetName(Handle(), name);
}

void RichTextBox::SetFont(HFONT) {}

void RichTextBox::SetEditorFont(const std::wstring& face, float points) {
    face_ = face;
    points_ = points;
    CHARFORMAT2W format{};
    format.cbSize = sizeof format;
    format.dwMask = CFM_FACE | CFM_SIZE | CFM_BOLD | CFM_ITALIC | CFM_CHARSET | CFM_COLOR;
    format.yHeight = static_cast<LONG>(points * 20);  // twips
    format.bCharSet = DEFAULT_CHARSET;
    format.dwEffects = CFE_AUTOCOLOR;
    format.bPitchAndFamily = FIXED_PITCH | FF_MODERN;
    lstrcpynW(format.szFaceName, face.c_str(), LF_FACESIZE);
    Send(EM_SETCHARFORMAT, SCF_DEFAULT, reinterpret_cast<LPARAM>(&format));
    Send(EM_SETCHARFORMAT, SCF_ALL, reinterpret_cast<LPARAM>(&format));
}

void RichTextBox::SetScale(float scale) {
    const float zoom = scale * RichTextCorrection(GetParent(Handle()), face_, points_);
    if (zoom == zoom_) return;
    zoom_ = zoom;
    Send(EM_SETZOOM, static_cast<WPARAM>(std::lround(zoom * 100)), 100);
}

long RichTextBox::TextLength() const {
    GETTEXTLENGTHEX request{};
    request.flags = GTL_USECRLF | GTL_NUMCHARS | GTL_PRECISE;
    request.codepage = 1200;
    return static_cast<long>(Send(EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&request)));
}

std::wstring RichTextBox::Text() const {
    if (Handle() == nullptr) {
        if (!lastText_) RaiseError(ErrorNumber::ObjectNotSet);
        return *lastText_;
    }
    const long length = TextLength();
    if (length <= 0) return {};
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    GETTEXTEX request{};
    request.cb = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    request.flags = GT_USECRLF;
    request.codepage = 1200;
    const LRESULT copied =
        Send(EM_GETTEXTEX, reinterpret_cast<WPARAM>(&request), reinterpret_cast<LPARAM>(text.data()));
    // Short of memory, the control returns nothing, which is not the same as an empty text.
    if (copied <= 0) RaiseError(ErrorNumber::OutOfMemory);
    text.resize(static_cast<size_t>(std::clamp<LRESULT>(copied, 0, length)));
    // Another program may have brought one in that this one has not seen: by the control's object model.
    return PlainText::HasOddLineEnds(text) ? PlainText::WithCrLf(text) : text;
}

void RichTextBox::StreamIn(const std::wstring& text, WPARAM flags) {
    StreamSource source{text.data(), text.size(), 0};
    EDITSTREAM stream{};
    stream.dwCookie = reinterpret_cast<DWORD_PTR>(&source);
    stream.pfnCallback = &ReadStream;
    Send(EM_STREAMIN, SF_TEXT | SF_UNICODE | flags, reinterpret_cast<LPARAM>(&stream));
    if (stream.dwError != 0) RaiseError(ErrorNumber::OutOfMemory);
}

void RichTextBox::Replace() {
    const HWND old = Handle();
    const HWND container = GetParent(old);
    const int id = GetDlgCtrlID(old);
    const bool focus = GetFocus() == old;
    const bool visible = Visible();
    RECT place;
    GetWindowRect(old, &place);
    MapWindowPoints(nullptr, container, reinterpret_cast<POINT*>(&place), 2);
    const HWND after = GetWindow(old, GW_HWNDPREV);
    int zoom = 0;
    int of = 0;
    const bool zoomed = Send(EM_GETZOOM, reinterpret_cast<WPARAM>(&zoom), reinterpret_cast<LPARAM>(&of)) != 0;
    annotations_.Clear();
    shaded_ = false;
    try {
        MakeWindow(container, id);
    } catch (...) {
        TakeBack(old);
        throw;
    }
    const ScopeExit former([&] { DestroyFormer(old); });
    SetWindowPos(Handle(), after != nullptr ? after : HWND_TOP, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOACTIVATE);
    if (zoomed && zoom != 0) Send(EM_SETZOOM, static_cast<WPARAM>(zoom), of);
    if (!visible) SetVisible(false);
    if (focus) ::SetFocus(Handle());
}

void RichTextBox::FillWith(const std::wstring& text) {
    if (PlainText::HasOddLineEnds(text)) {
        StreamIn(PlainText::WithCrLf(text));
    } else if (NeedsStream(text)) {
        StreamIn(text);
    } else {
        SETTEXTEX request{};
        request.flags = ST_DEFAULT;
        request.codepage = 1200;
        Send(EM_SETTEXTEX, reinterpret_cast<WPARAM>(&request), reinterpret_cast<LPARAM>(text.c_str()));
    }
    if (TextLength() < LeastLength(text)) RaiseError(ErrorNumber::OutOfMemory);
}

void RichTextBox::SetText(const std::wstring& text) {
    if (Handle() == nullptr) RaiseError(ErrorNumber::ObjectNotSet);
    {
        const AutoReset filling(filling_, true);
        // Replacing text in place may leave old formatting behind.
        if (rich_ || TextLength() > ReplaceBeyond) Replace();
        rich_ = false;
        FillWith(text);
        ForgetShades();
        Send(EM_SETSEL, 0, 0);
        Send(EM_EMPTYUNDOBUFFER);
    }
    if (Change) Change();
    if (SelChange) SelChange();
}

// Where lines are not wrapped, the line of a position tells how many line ends stand before it.
long RichTextBox::FromControl(long position) const {
    return position + static_cast<long>(Send(EM_EXLINEFROMCHAR, 0, position));
}

long RichTextBox::ToControl(long position) const {
    // The mapping grows with the position, so it can be turned round by halving. A position between CR and LF is the
    // one before the line end.
    long low = 0;
    long high = position;
    while (low < high) {
        const long middle = low + (high - low + 1) / 2;
        if (FromControl(middle) <= position) {
            low = middle;
        } else {
            high = middle - 1;
        }
    }
    return low;
}

long RichTextBox::ControlLength() const {
    GETTEXTLENGTHEX request{GTL_DEFAULT, 1200};
    return static_cast<long>(Send(EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&request)));
}

CHARRANGE RichTextBox::Selected() const {
    CHARRANGE range{};
    Send(EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    const long end = ControlLength();
    return {std::min(range.cpMin, end), std::min(range.cpMax, end)};
}

long RichTextBox::SelStart() const { return FromControl(Selected().cpMin); }

long RichTextBox::SelLength() const {
    const CHARRANGE range = Selected();
    return FromControl(range.cpMax) - FromControl(range.cpMin);
}

std::wstring RichTextBox::SelText() const {
    const CHARRANGE range = Selected();
    if (range.cpMax <= range.cpMin) return {};
    // With one more for the end of the last paragraph, which the control may have selected too.
    std::wstring raw(static_cast<size_t>(range.cpMax - range.cpMin) + 2, L'\0');
    const LRESULT copied = Send(EM_GETSELTEXT, 0, reinterpret_cast<LPARAM>(raw.data()));
    raw.resize(static_cast<size_t>(std::clamp<LRESULT>(copied, 0, range.cpMax - range.cpMin)));
    return PlainText::WithCrLf(raw);
}

void RichTextBox::SetSelStart(long start) {
    if (start < 0) RaiseError(ErrorNumber::InvalidPropertyValue);
    CHARRANGE range{};
    range.cpMin = range.cpMax = ToControl(start);
    Send(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
}

void RichTextBox::SetSelLength(long length) {
    if (length < 0) RaiseError(ErrorNumber::InvalidPropertyValue);
    CHARRANGE range = Selected();
    range.cpMax = ToControl(FromControl(range.cpMin) + length);
    Send(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
}

void RichTextBox::Select(long start, long length) {
    if (start < 0 || length < 0) RaiseError(ErrorNumber::InvalidPropertyValue);
    CHARRANGE now{};
    CHARRANGE range{};
    range.cpMin = range.cpMax = ToControl(start);
    if (length > 0) range.cpMax = ToControl(FromControl(range.cpMin) + length);
    Send(EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&now));
    if (now.cpMin == range.cpMin && now.cpMax == range.cpMax) return;
    Send(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
}

void RichTextBox::SetSelText(const std::wstring& text) {
    if (PlainText::HasOddLineEnds(text)) return SetSelText(PlainText::WithCrLf(text));
    if (text.find(L'\0') != std::wstring::npos) {
        StreamIn(text, SFF_SELECTION);  // the message would end at the NUL character
    } else {
        Send(EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
    }
}

void RichTextBox::ScrollCaret() { Send(EM_SCROLLCARET); }

long RichTextBox::CharFromPos(int x, int y) const {
    RECT client;
    GetClientRect(Handle(), &client);
    // Outside the control need not know of any character.
    x = static_cast<int>(std::clamp<LONG>(x, 0, std::max(client.right - 1, 0L)));
    y = static_cast<int>(std::clamp<LONG>(y, 0, std::max(client.bottom - 1, 0L)));
    POINTL point{x, y};
    auto position = static_cast<long>(Send(EM_CHARFROMPOS, 0, reinterpret_cast<LPARAM>(&point)));
    if (position < 0) return SelStart();
    // For a point just past the end of a line Wine returns the start of the next line.
    POINTL found{};
    Send(EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&found), position);
    if (position > 0 && found.y > y &&
        Send(EM_LINEINDEX, static_cast<WPARAM>(Send(EM_EXLINEFROMCHAR, 0, position))) == position) {
        --position;
    }
    return FromControl(position);
}

void RichTextBox::ScrollAtEdge(int x, int y) {
    RECT client;
    GetClientRect(Handle(), &client);
    const EdgeScroll::Step step =
        edges_.At({x, y}, client, MulDiv(DD_DEFSCROLLINSET, static_cast<int>(Dpi()), 96), GetTickCount());
    if (step.Down != 0) Send(WM_VSCROLL, step.Down < 0 ? SB_LINEUP : SB_LINEDOWN);
    if (step.Across != 0) Send(WM_HSCROLL, step.Across < 0 ? SB_LINELEFT : SB_LINERIGHT);
}

void RichTextBox::Later(std::function<void()> work) {
    later_.push_back(std::move(work));
    PostMessageW(Handle(), RunLater, 0, 0);
}

void RichTextBox::DoLater() {
    const std::vector<std::function<void()>> works = std::exchange(later_, {});
    // The window was closed meanwhile: it will show another text the next time.
    if (!IsWindowVisible(Handle())) return;
    for (const std::function<void()>& work : works) Events::Raise(work);
}

// The caret shows where a drop would go, unless the mouse is not over the text at all, as with programs that only call.
void RichTextBox::ShowDropPlace(POINT screen) {
    RECT client;
    GetClientRect(Handle(), &client);
    ScreenToClient(Handle(), &screen);
    if (!PtInRect(&client, screen)) return;
    if (!droppedBefore_) {
        const CHARRANGE selected = Selected();
        droppedBefore_ = {selected.cpMin, selected.cpMax};
        // The caret first: the control scrolls to it when the focus comes.
        SetSelStart(CharFromPos(screen.x, screen.y));
        SetFocus();
    }
    ScrollAtEdge(screen.x, screen.y);
    SetSelStart(CharFromPos(screen.x, screen.y));
}

void RichTextBox::ForgetDropPlace() {
    if (!droppedBefore_) return;
    CHARRANGE selected{droppedBefore_->first, droppedBefore_->second};
    droppedBefore_.reset();
    Send(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&selected));
}

void RichTextBox::CaretPosition(long& line, long& column) const {
    const CHARRANGE range = Selected();
    const LRESULT row = Send(EM_EXLINEFROMCHAR, 0, range.cpMax);
    line = static_cast<long>(row) + 1;
    column = range.cpMax - static_cast<long>(Send(EM_LINEINDEX, static_cast<WPARAM>(row))) + 1;
}

bool RichTextBox::OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT&) {
    if (message == WM_COMMAND && HIWORD(wParam) == EN_CHANGE) {
        if (!filling_ && Change) Change();
        return true;
    }
    if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == EN_SELCHANGE) {
        if (filling_) return true;
        // The end of the last paragraph is selected by some ways of the mouse and by programs that read the screen.
        CHARRANGE range{};
        Send(EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
        if (const long end = ControlLength(); range.cpMax > end) {
            const AutoReset filling(filling_, true);
            range = {std::min(range.cpMin, end), end};
            Send(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
        }
        if (SelChange) SelChange();
        return true;
    }
    return false;
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

LRESULT RichTextBox::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (OnKey(message, wParam, lParam, result)) return result;
    const Noting noting(*this, message, wParam);
    switch (message) {
        case WM_DESTROY:
            // Somebody else destroys the window that the user is writing in.
            if (FormVisible()) Events::Raise([this] { lastText_ = Text(); });
            target_.Revoke();  // while OLE still knows the window
            annotations_.Clear();
            break;
        case WM_NCPAINT: {
            const LRESULT result = Control::OnMessage(message, wParam, lParam);
            PaintThemedBorder(Handle());
            return result;
        }
        case WM_RBUTTONDOWN:
            SetFocus();
            break;
        case WM_MOUSEWHEEL:
        case EM_SETZOOM: {
            const LRESULT done = Control::OnMessage(message, wParam, lParam);
            if (Zoomed) Zoomed();
            return done;
        }
        case RunLater:
            DoLater();
            return 0;
        case WM_PASTE:
        case EM_PASTESPECIAL:
            if (PasteRequested) PasteRequested();
            return 0;
        case WM_COPY:
            if (CopyRequested) CopyRequested();
            return 0;
        case WM_CUT:
            if (CutRequested) CutRequested();
            return 0;
        case WM_SETTEXT:
        case EM_REPLACESEL: {
            // From other programs too.
            const auto* given = reinterpret_cast<const wchar_t*>(lParam);
            if (!IsAddress(lParam) || !PlainText::HasOddLineEnds(given)) break;
            const std::wstring text = PlainText::WithCrLf(given);
            return Control::OnMessage(message, wParam, reinterpret_cast<LPARAM>(text.c_str()));
        }
        case WM_GETDLGCODE:
            // Asked with a message, as dialogs do, the control takes itself for a dialog's from then on: Escape would
            // close the window that it stands in, and Enter write nothing.
            return DLGC_WANTALLKEYS | DLGC_WANTARROWS | DLGC_WANTTAB | DLGC_WANTCHARS | DLGC_HASSETSEL;
        default:
            break;
    }
    return Control::OnMessage(message, wParam, lParam);
}
