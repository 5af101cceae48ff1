#pragma once

#include <windows.h>
#include <ole2.h>

#include <functional>
#include <string>
#include <vector>

#include "automation/ComPtr.h"

// What another program drops: a view of its data object, valid for the time of the event.
class DroppedData {
public:
    enum class Format {
        Text = 1,
        Bitmap = 2,
        Metafile = 3,
        DeviceIndependentBitmap = 8,
        Palette = 9,
        EnhancedMetafile = 14,
        Files = 15,
        RichText = -16639
    };

    explicit DroppedData(IDataObject* data) noexcept : data_(data) {}

    bool GetFormat(Format format) const noexcept;
    // The text, without formatting where it is rich text; empty when the other program does not hand it over after all.
    // Error 7 for one that is longer than HandedText::Longest.
    std::wstring Text(Format format) const;
    std::vector<std::wstring> Files() const;  // full names, in the order of the drop

private:
    template <class Character>
    std::basic_string<Character> TextOf(CLIPFORMAT format) const;
    std::string FileList() const;
    IDataObject* data_;
};

// Makes a window a target of drops from other programs. Every call comes on the window's thread.
class DropTarget {
public:
    using DragEvent = std::function<void(POINT screen)>;

    DropTarget();
    ~DropTarget();
    DropTarget(const DropTarget&) = delete;
    DropTarget& operator=(const DropTarget&) = delete;

    // Needs OLE on the thread; without it the window is no target.
    void Register(HWND window);
    void Revoke() noexcept;

    std::function<bool(const DroppedData&)> Accepts;  // whether there is something that can be taken
    DragEvent Over;                                   // the mouse, in pixels of the screen
    std::function<void()> Leave;                      // gone without a drop
    std::function<void(const DroppedData&)> Drop;     // also when nothing was accepted

private:
    class Target;
    ComPtr<Target> target_;
    HWND window_ = nullptr;
};
