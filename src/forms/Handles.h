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
using MenuHandle = std::unique_ptr<std::remove_pointer_t<HMENU>, HandleCloser<&DestroyMenu>>;
using AcceleratorHandle = std::unique_ptr<std::remove_pointer_t<HACCEL>, HandleCloser<&DestroyAcceleratorTable>>;
using IconHandle = std::unique_ptr<std::remove_pointer_t<HICON>, HandleCloser<&DestroyIcon>>;
using CursorHandle = std::unique_ptr<std::remove_pointer_t<HCURSOR>, HandleCloser<&DestroyCursor>>;
using ImageListHandle = std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, HandleCloser<&DestroyImageList>>;
using RegistryKey = std::unique_ptr<std::remove_pointer_t<HKEY>, HandleCloser<&RegCloseKey>>;
