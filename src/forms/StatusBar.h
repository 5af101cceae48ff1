#pragma once

#include <optional>
#include <string>
#include <vector>

#include "forms/Control.h"
#include "forms/Tooltip.h"

// A status bar with panels, counted from 1; an unknown one is error 35600. The first panel takes the width that the
// others leave; these grow with their texts. In a bar that is too narrow for all of them the last ones are not shown.
class StatusBar : public Control {
public:
    // `widths`: the least widths in twips of the panels after the first one, where there is room for them.
    void Create(HWND container, int id, std::vector<float> widths);

    void SetPanelText(int panel, const std::wstring& text);
    // A text that the panel will have: it has room for it from now on, so that no other panel moves then.
    void KeepRoom(int panel, const std::wstring& text);
    // What the tip says over the panel; empty: what the whole bar says, where not all of it is to be seen.
    void SetPanelTip(int panel, const std::wstring& tip);
    // Shows a note over the whole bar instead of the panels, which keep their texts, until ClearNote or until a panel
    // gets another text.
    void ShowNote(const std::wstring& note);
    void ClearNote();
    // Shows a hint over both, which may be empty, until ClearHint.
    void ShowHint(const std::wstring& hint);
    void ClearHint();
    // Lets the bar take its place at the bottom of its container, and returns its height in twips.
    float Arrange();
    void SetFont(HFONT font) override;

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    struct Panel {
        float Least = 0;  // twips
        int Needed = 0;   // pixels that the widest text has taken
        std::wstring Text;
        std::wstring Room;
        std::wstring Tip;
    };
    size_t IndexOf(int panel) const;
    void Measure(Panel& panel);
    int WidthOf(const std::wstring& text) const;  // pixels, with its margin
    void PlacePanels();
    void ShowOver();
    std::wstring TipAt(int x) const;
    void RenewTip(int x);

    std::vector<Panel> panels_;
    std::vector<int> edges_;  // the right ones, in pixels, of those that are shown
    bool whole_ = true;       // all panels show all of their texts
    HFONT font_ = nullptr;
    Tooltip tip_;
    std::wstring shownTip_;
    std::wstring note_;
    std::optional<std::wstring> hint_;
};
