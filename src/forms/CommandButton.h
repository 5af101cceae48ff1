#pragma once

#include "forms/Control.h"

// A push button. Click is raised by mouse and keyboard alike.
class CommandButton : public Control {
public:
    void Create(HWND container, int id, const std::wstring& caption);

    // Shows the button as pressed until it is told otherwise: the one of several that is in force.
    void SetPressed(bool pressed);

protected:
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
};
