#pragma once

#include <vector>

#include "forms/Control.h"

// A status bar with panels. The first panel takes the width that the others leave.
class StatusBar : public Control {
public:
    // `widths`: the widths in twips of the panels behind the first one.
    void Create(HWND container, int id, std::vector<float> widths);

    // The text of a panel, counted from 1. An unknown panel is error 35600.
    void SetPanelText(int panel, const std::wstring& text);
    std::wstring PanelText(int panel) const;
    // Lets the bar take its place at the bottom of its container, and returns its height in twips.
    float Arrange();

private:
    std::vector<float> widths_;
    std::vector<std::wstring> texts_;
};
