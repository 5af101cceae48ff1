#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

#include "forms/SystemFunctions.h"

// Owned Windows handles: one alias a kind. Each is empty (false) or owns its handle.
template <auto Close>
struct HandleCloser {
    template <class T>
    void operator()(T* handle) const noexcept {
        Close(handle);
    }
};

inline void DestroyImageList(HIMAGELIST list) noexcept { System::ImageList_Destroy(list); }

using FontHandle = std::unique_ptr<std::remove_pointer_t<HFONT>, HandleCloser<&DeleteObject>>;
using BrushHandle = std::unique_ptr<std::remove_pointer_t<HBRUSH>, HandleCloser<&DeleteObject>>;
using BitmapHandle = std::unique_ptr<std::remove_pointer_t<HBITMAP>, HandleCloser<&DeleteObject>>;
using AcceleratorHandle = std::unique_ptr<std::remove_pointer_t<HACCEL>, HandleCloser<&DestroyAcceleratorTable>>;
using IconHandle = std::unique_ptr<std::remove_pointer_t<HICON>, HandleCloser<&DestroyIcon>>;
using CursorHandle = std::unique_ptr<std::remove_pointer_t<HCURSOR>, HandleCloser<&DestroyCursor>>;
using ImageListHandle = std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, HandleCloser<&DestroyImageList>>;
using MemoryDc = std::unique_ptr<std::remove_pointer_t<HDC>, HandleCloser<&DeleteDC>>;
using RegistryKey = std::unique_ptr<std::remove_pointer_t<HKEY>, HandleCloser<&RegCloseKey>>;

// The device context of a window, or of the screen for null, for as long as this lives.
class WindowDc {
public:
    explicit WindowDc(HWND window) noexcept : WindowDc(window, GetDC(window)) {}
    // Takes a context of the window over, such as GetWindowDC's.
    WindowDc(HWND window, HDC context) noexcept : window_(window), context_(context) {}
    ~WindowDc() {
        if (context_ != nullptr) ReleaseDC(window_, context_);
    }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    operator HDC() const noexcept { return context_; }

private:
    HWND window_;
    HDC context_;
};

// Draws with an object while it lives, and with the former one afterwards.
class SelectedObject {
public:
    SelectedObject(HDC context, HGDIOBJ object) noexcept : context_(context), before_(SelectObject(context, object)) {}
    ~SelectedObject() {
        if (before_ != nullptr) SelectObject(context_, before_);
    }
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;

private:
    HDC context_;
    HGDIOBJ before_;
};
