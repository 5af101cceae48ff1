#include "forms/StatusBar.h"

#include <commctrl.h>

#include <algorithm>
#include <numeric>

#include "automation/RuntimeError.h"
#include "forms/Surroundings.h"
#include "forms/Twips.h"

namespace {
constexpr float PanelMargin = 180;  // twips, on both sides of a panel's text together
}

void StatusBar::Create(HWND container, int id, std::vector<float> widths) {
    CreateWindowOf(STATUSCLASSNAMEW, WS_VISIBLE | SBARS_SIZEGRIP | CCS_BOTTOM | WS_CLIPSIBLINGS, 0, container, id, L"");
    widths_ = std::move(widths);
    texts_.resize(widths_.size() + 1);
    // The panels are there before their first text; Arrange gives them their places.
    std::vector<int> edges(texts_.size(), 0);
    edges.back() = -1;
    Send(SB_SETPARTS, edges.size(), reinterpret_cast<LPARAM>(edges.data()));
    needed_.resize(widths_.size() + 1);
}

void StatusBar::SetPanelText(int panel, const std::wstring& text) {
    if (panel < 1 || panel > static_cast<int>(texts_.size())) RaiseError(ErrorNumber::IndexOutOfBounds);
    auto& kept = texts_[static_cast<size_t>(panel - 1)];
    if (kept == text) return;
    kept = text;
    ClearNote();
    Send(SB_SETTEXTW, static_cast<WPARAM>(panel - 1), reinterpret_cast<LPARAM>(text.c_str()));
    int& needed = needed_[static_cast<size_t>(panel - 1)];
    const int before = needed;
    if (panel == 1) needed = 0;
    Measure(static_cast<size_t>(panel - 1));
    if (panel == 1 || needed > before) PlacePanels();
}

std::wstring StatusBar::PanelText(int panel) const {
    if (panel < 1 || panel > static_cast<int>(texts_.size())) RaiseError(ErrorNumber::IndexOutOfBounds);
    return texts_[static_cast<size_t>(panel - 1)];
}

void StatusBar::ShowNote(const std::wstring& note) {
    note_ = note;
    Send(SB_SETTEXTW, SB_SIMPLEID, reinterpret_cast<LPARAM>(note_.c_str()));
    Send(SB_SIMPLE, TRUE);
    PlacePanels();
}

void StatusBar::ClearNote() {
    if (note_.empty()) return;
    note_.clear();
    Send(SB_SIMPLE, FALSE);
    PlacePanels();
}

void StatusBar::SetFont(HFONT font) {
    font_ = font;
    Control::SetFont(font);
    tip_.SetFont(font);
    for (size_t panel = 0; panel < texts_.size(); ++panel) {
        needed_[panel] = 0;
        Measure(panel);
    }
}

// A panel behind the first keeps the width of the widest text that it had: others move once, not with each digit that
// comes and goes.
void StatusBar::Measure(size_t panel) { needed_[panel] = std::max(needed_[panel], WidthOf(texts_[panel])); }

int StatusBar::WidthOf(const std::wstring& text) const {
    SIZE size{};
    const HDC context = GetDC(Handle());
    const HGDIOBJ previous = font_ != nullptr ? SelectObject(context, font_) : nullptr;
    GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
    if (previous != nullptr) SelectObject(context, previous);
    ReleaseDC(Handle(), context);
    return static_cast<int>(size.cx) + TwipsToPixels(PanelMargin, Dpi());
}

void StatusBar::PlacePanels() {
    const UINT dpi = Dpi();
    RECT bar;
    GetClientRect(Handle(), &bar);
    const int grip = SystemMetricFor(SM_CXVSCROLL, dpi);
    const int width = static_cast<int>(bar.right);
    std::vector<int> others;
    const auto left = [&] { return width - grip - std::accumulate(others.begin(), others.end(), 0); };
    for (size_t at = 0; at < widths_.size(); ++at) {
        others.push_back(std::max(TwipsToPixels(widths_[at], dpi), needed_[at + 1]));
    }
    // In a narrow window the other panels have what their texts take, and the connection has at least half of the bar.
    if (left() < std::max(width / 2, needed_[0])) others.assign(needed_.begin() + 1, needed_.end());
    int edge = std::max(left(), width / 2);
    if (note_.empty()) {
        tip_.SetText(Handle(), needed_[0] > edge ? texts_[0] : std::wstring());
    } else {
        tip_.SetText(Handle(), WidthOf(note_) > width ? note_ : std::wstring());
    }
    std::vector<int> edges{edge};
    for (const int other : others) edges.push_back(edge += other);
    if (edges.size() > 1) edges.back() = -1;
    Send(SB_SETPARTS, edges.size(), reinterpret_cast<LPARAM>(edges.data()));
}

LRESULT StatusBar::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_MOUSEMOVE) tip_.OnMouse(message, wParam, lParam);
    return Control::OnMessage(message, wParam, lParam);
}

float StatusBar::Arrange() {
    Send(WM_SIZE);  // the bar finds its own place and height
    PlacePanels();
    RECT bar;
    GetWindowRect(Handle(), &bar);
    return PixelsToTwips(bar.bottom - bar.top, Dpi());
}
