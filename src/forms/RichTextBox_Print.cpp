#include <windows.h>

#include <algorithm>
#include <string_view>

#include "forms/Events.h"
#include "forms/Handles.h"
#include "forms/Printer.h"
#include "forms/RichTextBox.h"

namespace {

constexpr LONG Margin = 1440;  // twips, from the edges of the paper

// The part of the paper for the text, in twips from where the printer can print.
RECT TextArea(HDC context) {
    const auto twips = [context](int index, int resolution) {
        return MulDiv(GetDeviceCaps(context, index), 1440, std::max(GetDeviceCaps(context, resolution), 1));
    };
    const LONG left = twips(PHYSICALOFFSETX, LOGPIXELSX);
    const LONG top = twips(PHYSICALOFFSETY, LOGPIXELSY);
    const LONG width = twips(PHYSICALWIDTH, LOGPIXELSX);
    const LONG height = twips(PHYSICALHEIGHT, LOGPIXELSY);
    const LONG printableWidth = twips(HORZRES, LOGPIXELSX);
    const LONG printableHeight = twips(VERTRES, LOGPIXELSY);
    const LONG right = std::max(width, printableWidth);
    const LONG bottom = std::max(height, printableHeight);
    // A label printer has no room for such margins: at most an eighth of the paper each.
    const LONG across = std::min(Margin, right / 8);
    const LONG down = std::min(Margin, bottom / 8);
    return {std::max(across - left, 0L), std::max(down - top, 0L), std::min(right - across - left, printableWidth),
            std::min(bottom - down - top, printableHeight)};
}

// Draws a text as it stands, in black, lines wrapped at the width. The control could print too (EM_FORMATRANGE), where
// it is Windows' and not Wine's; in the colour that text has in windows, which may be white.
class PlainPages {
public:
    PlainPages(HDC context, const std::wstring& face, float points, const RECT& area, std::wstring text)
        : context_(context), text_(std::move(text)) {
        LOGFONTW wanted{};
        wanted.lfHeight = -MulDiv(static_cast<int>(points * 20), GetDeviceCaps(context, LOGPIXELSY), 1440);
        wanted.lfCharSet = DEFAULT_CHARSET;
        wanted.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
        lstrcpynW(wanted.lfFaceName, face.c_str(), LF_FACESIZE);
        font_.reset(CreateFontIndirectW(&wanted));
        const auto pixels = [context](LONG twips, int resolution) {
            return MulDiv(twips, GetDeviceCaps(context, resolution), 1440);
        };
        area_ = {pixels(area.left, LOGPIXELSX), pixels(area.top, LOGPIXELSY), pixels(area.right, LOGPIXELSX),
                 pixels(area.bottom, LOGPIXELSY)};
    }

    size_t Length() const noexcept { return text_.size(); }

    // Draws the page that begins at a position; returns where the next one begins.
    size_t Draw(size_t from, bool first) const {
        // A page begins with a context of its own state under some drivers.
        const SelectedObject font(context_, font_.get());
        SetTextColor(context_, RGB(0, 0, 0));
        SetBkMode(context_, TRANSPARENT);
        TEXTMETRICW metrics{};
        GetTextMetricsW(context_, &metrics);
        const int height = std::max<int>(metrics.tmHeight + metrics.tmExternalLeading, 1);
        int y = area_.top + (first ? height : 0);
        do {
            const size_t end = std::min(text_.find(L"\r\n", from), text_.size());
            const size_t fits = from + Fitting(std::wstring_view(text_).substr(from, end - from));
            Put(y, std::wstring_view(text_).substr(from, fits - from));
            from = fits < end ? fits : std::min(end + 2, text_.size());
            y += height;
        } while (from < text_.size() && y + height <= area_.bottom);
        return from;
    }

private:
    static constexpr int Tab = 8;  // characters

    static std::wstring Expanded(std::wstring_view line) {
        std::wstring text;
        for (const wchar_t unit : line) {
            if (unit == L'\t') {
                text.append(Tab - text.size() % Tab, L' ');
            } else {
                text += unit;
            }
        }
        return text;
    }
    // How many characters of a line fit, at least one; it is broken after a blank where it has one.
    size_t Fitting(std::wstring_view line) const {
        if (line.find(L'\t') != line.npos) return FittingByTrial(line);
        int count = 0;
        SIZE size{};
        const auto length = static_cast<int>(std::min<size_t>(line.size(), 8192));
        GetTextExtentExPointW(context_, line.data(), length, area_.right - area_.left, &count, nullptr, &size);
        return Break(line, static_cast<size_t>(std::max(count, 1)));
    }
    size_t FittingByTrial(std::wstring_view line) const {
        size_t count = 0;
        SIZE size{};
        while (count < line.size()) {
            const std::wstring text = Expanded(line.substr(0, count + 1));
            GetTextExtentPoint32W(context_, text.c_str(), static_cast<int>(text.size()), &size);
            if (size.cx > area_.right - area_.left) break;
            ++count;
        }
        return Break(line, std::max<size_t>(count, 1));
    }
    static size_t Break(std::wstring_view line, size_t count) {
        if (count >= line.size()) return line.size();
        const size_t blank = line.find_last_of(L" \t", count);
        if (blank != line.npos && blank > 0) return std::min(blank + 1, line.size());
        // Both halves of a character stay together.
        return count > 1 && IS_LOW_SURROGATE(line[count]) ? count - 1 : count;
    }
    void Put(int y, std::wstring_view line) const {
        const std::wstring text = Expanded(line);
        TextOutW(context_, area_.left, y, text.c_str(), static_cast<int>(text.size()));
    }

    HDC context_;
    std::wstring text_;
    FontHandle font_;
    RECT area_{};
};

}  // namespace

bool RichTextBox::Print(Printer& printer, PrintingNotice& notice) const {
    const PlainPages pages(printer.Context(), face_, points_, TextArea(printer.Context()), Text());
    const int texts = printer.Collated() ? printer.Copies() : 1;
    const int sheets = printer.Collated() ? 1 : printer.Copies();
    int number = 0;
    for (int text = 0; text < texts; ++text) {
        size_t from = 0;
        do {
            size_t next = from;
            for (int sheet = 0; sheet < sheets; ++sheet) {
                if (!notice.Continue(++number)) return false;
                printer.StartPage();
                next = pages.Draw(from, from == 0);
                printer.EndPage();
            }
            from = next;
        } while (from < pages.Length());
    }
    printer.EndDocument();
    return true;
}
