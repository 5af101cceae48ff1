#pragma once

#include "forms/Control.h"
#include "forms/Tooltip.h"

// A push button. Click is raised by mouse and keyboard alike. A caption that is wider than the button is shown whole as
// a tooltip.
class CommandButton : public Control {
public:
    void Create(HWND container, int id, const std::wstring& caption);

    // Shows the button as checked until it is told otherwise: the one of several that is in force.
    void SetPressed(bool pressed);
    // The least width and height in twips that show the caption whole, in the button's font.
    float LeastWidth() const;
    float LeastHeight() const;
    void SetFont(HFONT font) override;

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

private:
    SIZE CaptionSize() const;  // pixels
    bool Pressed() const;
    bool PaintsItself() const;
    void Paint(HDC context) const;
    void UpdateTip();
    HFONT font_ = nullptr;
    Tooltip tip_;
};
