#pragma once

#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>
#include <shellscalingapi.h>
#include <uxtheme.h>

#include "automation/SystemLibrary.h"

// The functions of the system that this floor binds when it needs them (automation/SystemLibrary.h tells why), by
// library. They are called as System::PrintDlgW(...).
namespace System {

// Version 6 of the common controls, as the module's manifest asks for it; see Surroundings.
HMODULE CommonControls() noexcept;
inline constinit SystemFunction<decltype(::InitCommonControlsEx)> InitCommonControlsEx{&CommonControls,
                                                                                       "InitCommonControlsEx"};
inline constinit SystemFunction<decltype(::ImageList_Create)> ImageList_Create{&CommonControls, "ImageList_Create"};
inline constinit SystemFunction<decltype(::ImageList_Destroy)> ImageList_Destroy{&CommonControls, "ImageList_Destroy"};
inline constinit SystemFunction<decltype(::ImageList_GetIconSize)> ImageList_GetIconSize{&CommonControls,
                                                                                         "ImageList_GetIconSize"};
inline constinit SystemFunction<decltype(::ImageList_ReplaceIcon)> ImageList_ReplaceIcon{&CommonControls,
                                                                                         "ImageList_ReplaceIcon"};

// Dialogs for files and printers.
inline HMODULE CommonDialogs() noexcept { return LoadSystemLibrary(L"comdlg32.dll"); }
inline constinit SystemFunction<decltype(::CommDlgExtendedError)> CommDlgExtendedError{&CommonDialogs,
                                                                                       "CommDlgExtendedError"};
inline constinit SystemFunction<decltype(::GetOpenFileNameW)> GetOpenFileNameW{&CommonDialogs, "GetOpenFileNameW"};
inline constinit SystemFunction<decltype(::GetSaveFileNameW)> GetSaveFileNameW{&CommonDialogs, "GetSaveFileNameW"};
inline constinit SystemFunction<decltype(::PrintDlgW)> PrintDlgW{&CommonDialogs, "PrintDlgW"};

// What a window's theme draws. Without it no window has one.
inline HMODULE Themes() noexcept { return LoadSystemLibrary(L"uxtheme.dll"); }
inline constinit SystemFunction<decltype(::CloseThemeData)> CloseThemeData{&Themes, "CloseThemeData"};
inline constinit SystemFunction<decltype(::DrawThemeBackground)> DrawThemeBackground{&Themes, "DrawThemeBackground"};
inline constinit SystemFunction<decltype(::GetWindowTheme)> GetWindowTheme{&Themes, "GetWindowTheme"};
inline constinit SystemFunction<decltype(::IsThemePartDefined)> IsThemePartDefined{&Themes, "IsThemePartDefined"};
inline constinit SystemFunction<decltype(::OpenThemeData)> OpenThemeData{&Themes, "OpenThemeData"};

// Windows 8.1 and later.
inline HMODULE Shcore() noexcept { return LoadSystemLibrary(L"shcore.dll"); }
inline constinit SystemFunction<decltype(::GetDpiForMonitor)> GetDpiForMonitor{&Shcore, "GetDpiForMonitor"};

// Windows 10 and later.
inline constinit SystemFunction<decltype(::GetDpiForWindow)> GetDpiForWindow{&User, "GetDpiForWindow"};
inline constinit SystemFunction<decltype(::GetSystemMetricsForDpi)> GetSystemMetricsForDpi{&User,
                                                                                           "GetSystemMetricsForDpi"};
inline constinit SystemFunction<decltype(::SystemParametersInfoForDpi)> SystemParametersInfoForDpi{
    &User, "SystemParametersInfoForDpi"};

}  // namespace System
