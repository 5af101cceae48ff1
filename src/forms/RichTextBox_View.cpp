#include <windows.h>

#include <commctrl.h>
#include <richedit.h>
#include <richole.h>
#include <tom.h>

#include <algorithm>
#include <cmath>

#include "automation/ComPtr.h"
#include "automation/Scope.h"
#include "forms/RichTextBox.h"

// How characters are shown, apart from the text. The formats set here are not content: they make no undo step and no
// change, and are removed before the text leaves the control with formats.

namespace {

// Some import libraries lack it.
constexpr IID TextDocumentId = {0x8CC497C0, 0xA1DF, 0x11CE, {0x80, 0x98, 0x00, 0xAA, 0x00, 0x47, 0xBE, 0x5D}};

ComPtr<ITextDocument> DocumentOf(HWND window) noexcept {
    ComPtr<IUnknown> ole;
    SendMessageW(window, EM_GETOLEINTERFACE, 0, reinterpret_cast<LPARAM>(ole.Receive()));
    return ole.As<ITextDocument>(TextDocumentId);
}

// While one lives, the control records no undo, does not paint and does not count as changed.
class Unrecorded {
public:
    Unrecorded(HWND window, ITextDocument& document) noexcept : window_(window), document_(document) {
        modified_ = SendMessageW(window_, EM_GETMODIFY, 0, 0) != 0;
        long count = 0;
        document_.Undo(tomSuspend, &count);
        // A control whose painting is held already shows all of it afterwards.
        visible_ = (GetWindowLongPtrW(window_, GWL_STYLE) & WS_VISIBLE) != 0;
        if (!visible_) return;
        // Suspending painting discards pending paint requests.
        waiting_ = CreateRectRgn(0, 0, 0, 0);
        GetUpdateRgn(window_, waiting_, FALSE);
        SendMessageW(window_, WM_SETREDRAW, FALSE, 0);
    }
    ~Unrecorded() {
        if (visible_) SendMessageW(window_, WM_SETREDRAW, TRUE, 0);
        long count = 0;
        document_.Undo(tomResume, &count);
        if (!modified_ && SendMessageW(window_, EM_GETMODIFY, 0, 0) != 0) SendMessageW(window_, EM_SETMODIFY, FALSE, 0);
        if (!visible_) return;
        InvalidateRgn(window_, waiting_, FALSE);
        DeleteObject(waiting_);
    }
    Unrecorded(const Unrecorded&) = delete;
    Unrecorded& operator=(const Unrecorded&) = delete;

private:
    HWND window_;
    ITextDocument& document_;
    HRGN waiting_ = nullptr;
    bool modified_ = false;
    bool visible_ = false;
};

bool SetColour(ITextDocument& document, long from, long to, bool ground, COLORREF colour) noexcept {
    ITextRange* range = nullptr;
    if (FAILED(document.Range(from, to, &range)) || range == nullptr) return false;
    const ComPtr<ITextRange> held(range);
    ITextFont* font = nullptr;
    if (FAILED(range->GetFont(&font)) || font == nullptr) return false;
    const ComPtr<ITextFont> heldFont(font);
    const long value = colour == CLR_DEFAULT ? static_cast<long>(tomAutoColor) : static_cast<long>(colour);
    return SUCCEEDED(ground ? font->SetBackColor(value) : font->SetForeColor(value));
}

}  // namespace

bool RichTextBox::Show(std::span<const Shade> shades) {
    if (shades.empty()) return true;
    const ComPtr<ITextDocument> document = DocumentOf(Handle());
    if (!document) return false;
    RECT client;
    GetClientRect(Handle(), &client);
    RECT changed{0, client.bottom, client.right, 0};
    bool all = true;
    {
        const AutoReset filling(filling_, true);
        const Unrecorded unrecorded(Handle(), *document);
        for (const Shade& shade : shades) {
            all = SetColour(*document, shade.From, shade.To, shade.Ground, shade.Colour) && all;
        }
        shaded_ = true;
        for (const Shade& shade : shades) {
            POINTL place{};
            Send(EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&place), shade.From);
            changed.top = std::min<LONG>(changed.top, place.y);
            changed.bottom = std::max<LONG>(changed.bottom, place.y);
        }
    }
    // The line of the last one is as high as the text is, which need not be known to the pixel.
    changed.bottom += 2 * LinePixels();
    if (changed.bottom > 0 && changed.top < client.bottom) InvalidateRect(Handle(), &changed, FALSE);
    return all;
}

void RichTextBox::ShowPlain() {
    if (!shaded_) return;
    const ComPtr<ITextDocument> document = DocumentOf(Handle());
    if (!document) return;
    {
        const AutoReset filling(filling_, true);
        const Unrecorded unrecorded(Handle(), *document);
        // After the last character too: what is typed there would take its colour from it.
        const long end = RawLength() + 1;
        SetColour(*document, 0, end, false, CLR_DEFAULT);
        SetColour(*document, 0, end, true, CLR_DEFAULT);
        shaded_ = false;
    }
    InvalidateRect(Handle(), nullptr, FALSE);
    if (MadePlain) MadePlain();
}

// The text is new, and was put where another one stood: it may have taken over how that was shown.
void RichTextBox::ForgetShades() {
    ++texts_;
    if (!shaded_) return;
    CHARFORMAT2W format{};
    format.cbSize = sizeof format;
    format.dwMask = CFM_COLOR | CFM_BACKCOLOR;
    format.dwEffects = CFE_AUTOCOLOR | CFE_AUTOBACKCOLOR;
    Send(EM_SETCHARFORMAT, SCF_ALL, reinterpret_cast<LPARAM>(&format));
    shaded_ = false;
}

long RichTextBox::RawLength() const {
    GETTEXTLENGTHEX request{GTL_NUMCHARS | GTL_PRECISE, 1200};
    return static_cast<long>(Send(EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&request)));
}

std::wstring RichTextBox::RawText(long from, long to) const {
    if (to <= from) return {};
    std::wstring text(static_cast<size_t>(to - from) + 1, L'\0');
    TEXTRANGEW request{{from, to}, text.data()};
    const LRESULT length = Send(EM_GETTEXTRANGE, 0, reinterpret_cast<LPARAM>(&request));
    text.resize(static_cast<size_t>(std::clamp<LRESULT>(length, 0, to - from)));
    return text;
}

std::pair<long, long> RichTextBox::RawSelection() const {
    CHARRANGE range{};
    Send(EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    return {range.cpMin, range.cpMax};
}

void RichTextBox::RawSelect(long from, long to) {
    CHARRANGE range{from, to};
    Send(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
}

long RichTextBox::RawLineStart(long position) const {
    return static_cast<long>(Send(EM_LINEINDEX, static_cast<WPARAM>(Send(EM_EXLINEFROMCHAR, 0, position))));
}

long RichTextBox::RawLineEnd(long position) const {
    const long start = RawLineStart(position);
    return start + static_cast<long>(Send(EM_LINELENGTH, static_cast<WPARAM>(start)));
}

std::pair<long, long> RichTextBox::Seen() const {
    const auto first = static_cast<WPARAM>(Send(EM_GETFIRSTVISIBLELINE));
    RECT client;
    GetClientRect(Handle(), &client);
    POINTL below{0, std::max<LONG>(client.bottom - 1, 0)};
    return {static_cast<long>(Send(EM_LINEINDEX, first)),
            static_cast<long>(Send(EM_CHARFROMPOS, 0, reinterpret_cast<LPARAM>(&below)))};
}

RECT RichTextBox::RawPlace(long position) const {
    POINTL place{};
    Send(EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&place), position);
    POINT corner{place.x, place.y};
    ClientToScreen(Handle(), &corner);
    return {corner.x, corner.y, corner.x, corner.y + LinePixels()};
}

int RichTextBox::LinePixels() const noexcept {
    return MulDiv(static_cast<int>(points_ * zoom_ * 1.5F), static_cast<int>(Dpi()), 72);
}

RichTextBox::Noting::Noting(RichTextBox& box, UINT message, WPARAM wParam) : Box(box), Before(box.edit_) {
    using How = Edit::How;
    How how = How::Anything;
    switch (message) {
        case WM_CHAR:
            how = (wParam >= L' ' && wParam != 0x7F) || wParam == L'\r' || wParam == L'\t' ? How::Typed : How::Near;
            break;
        case WM_KEYDOWN:
            // Other keys may undo something anywhere.
            if (wParam == VK_DELETE || (wParam == VK_BACK && GetKeyState(VK_MENU) >= 0)) how = How::Near;
            break;
        case WM_CLEAR:
        case WM_CUT:
        case WM_PASTE:
        case EM_REPLACESEL:
            how = How::Near;
            break;
        case WM_IME_STARTCOMPOSITION:
            box.composing_ = true;
            return;
        case WM_IME_ENDCOMPOSITION:
            box.composing_ = false;
            return;
        default:
            return;
    }
    Box.edit_.Kind = how;
    const auto [from, to] = box.RawSelection();
    Box.edit_.From = from;
    Box.edit_.To = to;
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
