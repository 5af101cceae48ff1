#include "forms/StatusBar.h"

#include <commctrl.h>

#include "automation/RuntimeError.h"
#include "forms/Twips.h"

void StatusBar::Create(HWND container, int id, std::vector<float> widths) {
    CreateWindowOf(STATUSCLASSNAMEW, WS_VISIBLE | SBARS_SIZEGRIP | CCS_BOTTOM | WS_CLIPSIBLINGS, 0, container, id, L"");
    widths_ = std::move(widths);
    texts_.resize(widths_.size() + 1);
}

void StatusBar::SetPanelText(int panel, const std::wstring& text) {
    if (panel < 1 || panel > static_cast<int>(texts_.size())) RaiseError(ErrorNumber::IndexOutOfBounds);
    auto& kept = texts_[static_cast<size_t>(panel - 1)];
    if (kept == text) return;
    kept = text;
    Send(SB_SETTEXTW, static_cast<WPARAM>(panel - 1), reinterpret_cast<LPARAM>(text.c_str()));
}

std::wstring StatusBar::PanelText(int panel) const {
    if (panel < 1 || panel > static_cast<int>(texts_.size())) RaiseError(ErrorNumber::IndexOutOfBounds);
    return texts_[static_cast<size_t>(panel - 1)];
}

float StatusBar::Arrange() {
    const UINT dpi = Dpi();
    Send(WM_SIZE);  // the bar finds its own place and height
    RECT bar;
    GetWindowRect(Handle(), &bar);
    const int width = bar.right - bar.left;
    // In a narrow window the connection keeps at least half of the bar; the other panels share the rest from the left.
    int others = 0;
    for (const float panel : widths_) others += TwipsToPixels(panel, dpi);
    const int grip = GetSystemMetrics(SM_CXVSCROLL);
    int edge = width - others - grip;
    if (edge < width / 2) edge = width / 2;
    std::vector<int> edges{edge};
    for (const float panel : widths_) {
        edge += TwipsToPixels(panel, dpi);
        edges.push_back(edge);
    }
    if (edges.size() > 1) edges.back() = -1;
    Send(SB_SETPARTS, edges.size(), reinterpret_cast<LPARAM>(edges.data()));
    return PixelsToTwips(bar.bottom - bar.top, dpi);
}
