#pragma once

#include <windows.h>

#include <string>

// The system's dialogs that ask for the name of a file. They are owned by a window, and cancelling one is run-time
// error 32755. The process keeps its current folder whatever the user looks at.
class FileDialog {
public:
    // Pairs of a description and its patterns, all separated by bars: "Texts (*.txt)|*.txt|All files (*.*)|*.*".
    std::wstring Filter;
    int FilterIndex = 1;  // from 1; the one that the user chose last
    // What is added to a name without an extension.
    std::wstring DefaultExt;

    // The dialogs begin with this file's name and folder; the user's choice with its folder, when they are back.
    std::wstring FileName;
    // The name of the chosen file without its folder.
    std::wstring FileTitle() const;

    // The file must exist.
    void ShowOpen(HWND owner);
    // The user is asked before a file is overwritten.
    void ShowSave(HWND owner);

private:
    void Show(HWND owner, bool save);
};
