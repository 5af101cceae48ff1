#pragma once

#include <functional>
#include <string>
#include <vector>

#include "forms/Control.h"
#include "forms/Handles.h"

// A toolbar along the top of a window, its buttons with an image and a caption beside it.
class Toolbar : public Control {
public:
    struct Button {
        std::wstring Key;
        std::wstring Caption;
        std::wstring ToolTipText;
        int Image = I_IMAGENONE;  // position in the image list
    };

    void Create(HWND container, int id);
    ~Toolbar() override;

    // The list stays the caller's and must outlive the toolbar, or be replaced.
    void SetImageList(HIMAGELIST images);
    void AddButton(const Button& button);
    // Lets the bar take its place at the top of its container, and returns its height in twips.
    float Arrange();
    void SetFont(HFONT font) override;

    // A button was clicked, by mouse, keyboard or accessibility interface.
    std::function<void(const Button&)> ButtonClick;

protected:
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void MeasureButtons();
    void MakeTips();
    std::vector<Button> buttons_;
    HWND tips_ = nullptr;
};
