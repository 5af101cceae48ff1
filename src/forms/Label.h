#pragma once

#include "forms/Control.h"
#include "forms/Tooltip.h"

// A text that the user reads, with a little room around it. It wraps; a text that does not fit its height is shown
// whole as a tooltip.
class Label : public Control {
public:
    void Create(HWND container, int id, const std::wstring& caption);

    const std::wstring& Caption() const noexcept { return caption_; }
    void SetCaption(const std::wstring& caption);
    // The height in twips that the caption takes at that width, both without the margins, in the label's font.
    float HeightFor(float width) const;
    float LineHeight() const;                  // twips
    static constexpr float MarginAcross = 60;  // twips, on either side
    static constexpr float MarginDown = 30;    // above and below
    void SetFont(HFONT font) override;

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

private:
    void UpdateTip();
    void PaintMargins() const;
    std::wstring caption_;
    HFONT font_ = nullptr;
    Tooltip tip_;
};
