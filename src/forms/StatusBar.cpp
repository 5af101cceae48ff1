#include "forms/StatusBar.h"

#include <windowsx.h>
#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "automation/RuntimeError.h"
#include "forms/Dpi.h"
#include "forms/Handles.h"
#include "forms/Twips.h"

namespace {

constexpr float PanelMargin = 180;  // twips, on both sides of a panel's text together

// A status bar reads a tab character in its text as an alignment mark.
std::wstring Plain(std::wstring text) {
    std::replace_if(
        text.begin(), text.end(), [](wchar_t c) { return c < L' '; }, L' ');
    return text;
}

}  // namespace

void StatusBar::Create(HWND container, int id, std::vector<float> widths) {
    CreateWindowOf(STATUSCLASSNAMEW, WS_VISIBLE | SBARS_SIZEGRIP | CCS_BOTTOM | WS_CLIPSIBLINGS, 0, container, id, L"");
    panels_.resize(widths.size() + 1);
    for (size_t at = 0; at < widths.size(); ++at) panels_[at + 1].Least = widths[at];
    // The panels are there before their first text; Arrange gives them their places.
    edges_.assign(panels_.size(), 0);
    edges_.back() = -1;
    Send(SB_SETPARTS, edges_.size(), reinterpret_cast<LPARAM>(edges_.data()));
}

size_t StatusBar::IndexOf(int panel) const {
    if (panel < 1 || panel > static_cast<int>(panels_.size())) RaiseError(ErrorNumber::IndexOutOfBounds);
    return static_cast<size_t>(panel - 1);
}

void StatusBar::SetPanelText(int panel, const std::wstring& text) {
    const size_t at = IndexOf(panel);
    Panel& changed = panels_[at];
    if (changed.Text == text) return;
    changed.Text = text;
    ClearNote();
    if (at < edges_.size()) Send(SB_SETTEXTW, at, reinterpret_cast<LPARAM>(text.c_str()));
    const int before = changed.Needed;
    if (panel == 1) changed.Needed = 0;
    Measure(changed);
    if (panel == 1 || changed.Needed > before) PlacePanels();
}

void StatusBar::KeepRoom(int panel, const std::wstring& text) {
    Panel& kept = panels_[IndexOf(panel)];
    kept.Room = text;
    Measure(kept);
}

void StatusBar::SetPanelTip(int panel, const std::wstring& tip) { panels_[IndexOf(panel)].Tip = tip; }

void StatusBar::ShowNote(const std::wstring& note) {
    note_ = note;
    ShowOver();
}

void StatusBar::ClearNote() {
    if (note_.empty()) return;
    note_.clear();
    ShowOver();
}

void StatusBar::ShowHint(const std::wstring& hint) {
    if (hint_ == hint) return;
    hint_ = hint;
    ShowOver();
}

void StatusBar::ClearHint() {
    if (!hint_) return;
    hint_.reset();
    ShowOver();
}

void StatusBar::ShowOver() {
    const bool over = hint_ || !note_.empty();
    if (over) {
        const std::wstring text = Plain(hint_ ? *hint_ : note_);
        Send(SB_SETTEXTW, SB_SIMPLEID, reinterpret_cast<LPARAM>(text.c_str()));
    }
    if ((Send(SB_ISSIMPLE) != 0) != over) Send(SB_SIMPLE, over ? TRUE : FALSE);
}

void StatusBar::SetFont(HFONT font) {
    font_ = font;
    Control::SetFont(font);
    tip_.SetFont(font);
    for (Panel& panel : panels_) {
        panel.Needed = 0;
        Measure(panel);
    }
}

// Panels after the first only grow, so neighbours do not jitter as digits change.
void StatusBar::Measure(Panel& panel) {
    panel.Needed = std::max({panel.Needed, WidthOf(panel.Text), panel.Room.empty() ? 0 : WidthOf(panel.Room)});
}

int StatusBar::WidthOf(const std::wstring& text) const {
    SIZE size{};
    const WindowDc context(Handle());
    const SelectedObject font(context, font_);
    GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
    return static_cast<int>(size.cx) + TwipsToPixels(PanelMargin, Dpi());
}

void StatusBar::PlacePanels() {
    const UINT dpi = Dpi();
    RECT bar;
    GetClientRect(Handle(), &bar);
    const int width = static_cast<int>(bar.right);
    const int room = width - SystemMetricFor(SM_CXVSCROLL, dpi);  // without the grip
    const auto place = [&](bool wide, size_t count) {
        std::vector<int> edges(count);
        int edge = room;
        for (size_t at = count; at-- > 0;) {
            edges[at] = edge;
            edge -= wide ? std::max(TwipsToPixels(panels_[at].Least, dpi), panels_[at].Needed) : panels_[at].Needed;
        }
        return edges;
    };
    const int own = panels_[0].Needed;
    std::vector<int> edges = place(true, panels_.size());
    // In a narrow window the other panels have what their texts take, and as many of them are shown as leave the first
    // one what its own takes, or half of the bar.
    if (edges[0] < std::max(width / 2, own)) edges = place(false, panels_.size());
    while (edges.size() > 2 && edges[0] < std::min(width / 2, own)) edges = place(false, edges.size() - 1);
    whole_ = edges.size() == panels_.size() && own <= edges[0];
    edges[0] = std::max(edges[0], std::min(width / 2, own));
    edges.back() = edges.size() > 1 ? -1 : room;
    if (edges == edges_) return;
    const size_t before = edges_.size();
    edges_ = std::move(edges);
    Send(SB_SETPARTS, edges_.size(), reinterpret_cast<LPARAM>(edges_.data()));
    for (size_t at = before; at < edges_.size(); ++at)
        Send(SB_SETTEXTW, at, reinterpret_cast<LPARAM>(panels_[at].Text.c_str()));
}

std::wstring StatusBar::TipAt(int x) const {
    RECT bar;
    GetClientRect(Handle(), &bar);
    if (hint_ || !note_.empty()) {
        const std::wstring& over = hint_ ? *hint_ : note_;
        return WidthOf(over) > bar.right ? over : std::wstring();
    }
    for (size_t at = 0; at < edges_.size(); ++at) {
        if (edges_[at] >= 0 && x >= edges_[at]) continue;
        if (!panels_[at].Tip.empty()) return panels_[at].Tip;
        break;
    }
    std::wstring all;
    if (whole_) return all;
    for (const Panel& panel : panels_) {
        if (!panel.Text.empty()) all.append(all.empty() ? L"" : L"\r\n").append(panel.Text);
    }
    return all;
}

void StatusBar::RenewTip(int x) {
    std::wstring tip = TipAt(x);
    if (tip == shownTip_) return;
    tip_.SetText(Handle(), tip);
    shownTip_ = std::move(tip);
}

LRESULT StatusBar::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_MOUSEMOVE) {
        RenewTip(GET_X_LPARAM(lParam));
        tip_.OnMouse(message, wParam, lParam);
    }
    return Control::OnMessage(message, wParam, lParam);
}

float StatusBar::Arrange() {
    Send(WM_SIZE);  // the bar finds its own place and height
    PlacePanels();
    RECT bar;
    GetWindowRect(Handle(), &bar);
    return PixelsToTwips(bar.bottom - bar.top, Dpi());
}
