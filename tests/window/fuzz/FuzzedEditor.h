#pragma once

#include "forms/RichTextBox.h"
#include "support/Folder.h"
#include "support/TopWindow.h"

// What an editor raises for a file that it does not take.
inline constexpr long InvalidFormat = 321;

// An editor without its window, and a file in a folder that goes with it.
struct FuzzedEditor {
    explicit FuzzedEditor(const wchar_t* file) : Path(Here / file) {
        Box.Create(Top.Handle(), 1);
        Box.Move(0, 0, 6000, 5000);
        Box.Change = [this] { ++Changes; };
    }
    TopWindow Top;
    RichTextBox Box;
    Folder Here;
    const std::wstring Path;
    int Changes = 0;
};
