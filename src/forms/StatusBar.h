#pragma once

#include <vector>

#include "forms/Control.h"
#include "forms/Tooltip.h"

// A status bar with panels. The first panel takes the width that the others leave; these grow with their texts.
class StatusBar : public Control {
public:
    // `widths`: the least widths in twips of the panels behind the first one, where there is room for them.
    void Create(HWND container, int id, std::vector<float> widths);

    // The text of a panel, counted from 1. An unknown panel is error 35600.
    void SetPanelText(int panel, const std::wstring& text);
    std::wstring PanelText(int panel) const;
    // Shows a note over the whole bar instead of the panels, which keep their texts, until ClearNote or until a panel
    // gets another text.
    void ShowNote(const std::wstring& note);
    void ClearNote();
    // Lets the bar take its place at the bottom of its container, and returns its height in twips.
    float Arrange();
    void SetFont(HFONT font) override;

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void Measure(size_t panel);
    int WidthOf(const std::wstring& text) const;  // pixels, with its margin
    void PlacePanels();
    std::vector<float> widths_;
    std::vector<std::wstring> texts_;
    std::vector<int> needed_;  // pixels that the widest text has taken in each panel
    HFONT font_ = nullptr;
    Tooltip tip_;  // the first panel's text or the note, where it does not fit
    std::wstring note_;
};
