#include "forms/DragCursor.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "forms/Dpi.h"
#include "forms/Handles.h"
#include "forms/Twips.h"

namespace {

constexpr size_t LongestLabel = 40;     // characters
constexpr COLORREF Clear = 0x00FE01FD;  // what is left in this colour is transparent; no colour scheme has it

std::wstring LabelOf(const std::wstring& text) {
    std::wstring label = text.substr(0, text.find_first_of(L"\r\n"));
    if (label.size() > LongestLabel) label = label.substr(0, LongestLabel - 1) + L"\x2026";
    return label;
}

class Canvas {
public:
    Canvas(int width, int height) : context_(CreateCompatibleDC(nullptr)), width_(width), height_(height) {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        bitmap_.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        bits_ = static_cast<uint32_t*>(bits);
        if (bitmap_) drawn_.emplace(context_.get(), bitmap_.get());
    }

    explicit operator bool() const noexcept { return bitmap_ != nullptr; }
    HDC Context() const noexcept { return context_.get(); }
    void Fill(const RECT& area, COLORREF color) const {
        const BrushHandle brush(CreateSolidBrush(color));
        FillRect(context_.get(), &area, brush.get());
    }

    // What was drawn becomes opaque, the rest clear.
    CursorHandle ToCursor() {
        GdiFlush();
        drawn_.reset();
        const uint32_t key = (GetRValue(Clear) << 16) | (GetGValue(Clear) << 8) | GetBValue(Clear);
        const int stride = (width_ + 15) / 16 * 2;
        std::vector<BYTE> mask(static_cast<size_t>(stride) * static_cast<size_t>(height_));
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_; ++x) {
                uint32_t& pixel = bits_[y * width_ + x];
                if ((pixel & 0xFFFFFF) == key) {
                    pixel = 0;
                    mask[static_cast<size_t>(y * stride + x / 8)] |= static_cast<BYTE>(0x80 >> (x % 8));
                } else {
                    pixel |= 0xFF000000;
                }
            }
        }
        const BitmapHandle monochrome(CreateBitmap(width_, height_, 1, 1, mask.data()));
        ICONINFO info{};
        info.fIcon = FALSE;
        info.hbmMask = monochrome.get();
        info.hbmColor = bitmap_.get();
        return CursorHandle(CreateIconIndirect(&info));
    }

private:
    MemoryDc context_;
    int width_;
    int height_;
    BitmapHandle bitmap_;
    uint32_t* bits_ = nullptr;
    std::optional<SelectedObject> drawn_;  // before the bitmap and the context go
};

}  // namespace

CursorHandle MakeDragCursor(HWND window, const std::wstring& text) {
    const UINT dpi = DpiOf(window);
    const auto scaled = [dpi](int pixels) { return MulDiv(pixels, static_cast<int>(dpi), 96); };
    const std::wstring label = LabelOf(text);
    const NONCLIENTMETRICSW metrics = MetricsFor(dpi);
    const FontHandle font(CreateFontIndirectW(&metrics.lfStatusFont));

    SIZE size{};
    if (!label.empty()) {
        const WindowDc screen(nullptr);
        const SelectedObject inFont(screen, font.get());
        GetTextExtentPoint32W(screen, label.c_str(), static_cast<int>(label.size()), &size);
    }
    const RECT box{scaled(10), scaled(20), scaled(10) + size.cx + scaled(8), scaled(20) + size.cy + scaled(4)};
    const int width = std::max<int>(label.empty() ? 0 : box.right, scaled(32));
    const int height = std::max<int>(label.empty() ? 0 : box.bottom, scaled(32));
    Canvas canvas(width, height);
    if (!canvas) return {};
    canvas.Fill({0, 0, width, height}, Clear);

    const HDC context = canvas.Context();
    const POINT arrow[] = {{0, 0},
                           {0, scaled(16)},
                           {scaled(4), scaled(12)},
                           {scaled(6), scaled(18)},
                           {scaled(9), scaled(17)},
                           {scaled(7), scaled(11)},
                           {scaled(11), scaled(11)}};
    SelectObject(context, GetStockObject(BLACK_PEN));
    SelectObject(context, GetStockObject(WHITE_BRUSH));
    Polygon(context, arrow, static_cast<int>(std::size(arrow)));
    if (!label.empty()) {
        canvas.Fill(box, GetSysColor(COLOR_INFOTEXT));
        canvas.Fill({box.left + 1, box.top + 1, box.right - 1, box.bottom - 1}, GetSysColor(COLOR_INFOBK));
        const SelectedObject inFont(context, font.get());
        SetTextColor(context, GetSysColor(COLOR_INFOTEXT));
        SetBkMode(context, TRANSPARENT);
        TextOutW(context, box.left + scaled(4), box.top + scaled(2), label.c_str(), static_cast<int>(label.size()));
    }
    return canvas.ToCursor();
}
