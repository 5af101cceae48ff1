#pragma once

#include "forms/Control.h"

// A push button. Click is raised by mouse and keyboard alike.
class CommandButton : public Control {
public:
    void Create(HWND container, int id, const std::wstring& caption);

protected:
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
};
