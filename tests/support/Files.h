#pragma once

#include "support/Component.h"
#include "support/Folder.h"

// The window's File menu, with the dialogs answered.
class FilesFixture : public ComponentFixture {
protected:
    static void New() { EditorWindow::Choose(L"File", L"New"); }
    static void Open() { EditorWindow::Choose(L"File", L"Open..."); }
    static void Save() { EditorWindow::Choose(L"File", L"Save"); }
    static void SaveAs() { EditorWindow::Choose(L"File", L"Save As..."); }
    static void Type(const std::wstring& text);  // at the end
    // Opens a file that must come in.
    void Load(const std::wstring& path);
    // Whether New would ask; the text is kept when it does.
    bool Modified();
    static std::wstring FormatPanel() { return EditorWindow::Status(3); }

    Folder Here;
};
