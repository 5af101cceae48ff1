#include "forms/ThemedBorder.h"

#include <vsstyle.h>

#include "forms/Dpi.h"
#include "forms/Handles.h"
#include "forms/SystemFunctions.h"

void PaintThemedBorder(HWND window) noexcept {
    // Checked before the theme is opened: without the style there is no border.
    if ((GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_CLIENTEDGE) == 0) return;
    const HTHEME theme = System::OpenThemeData(window, VSCLASS_LISTBOX);
    if (theme == nullptr) return;
    if (const WindowDc context(window, GetWindowDC(window)); context != nullptr) {
        RECT border;
        GetWindowRect(window, &border);
        OffsetRect(&border, -border.left, -border.top);
        const UINT dpi = DpiOf(window);
        const int across = SystemMetricFor(SM_CXEDGE, dpi);
        const int down = SystemMetricFor(SM_CYEDGE, dpi);
        ExcludeClipRect(context, across, down, border.right - across, border.bottom - down);
        // Older themes have one look for the whole class.
        const bool named = System::IsThemePartDefined(theme, LBCP_BORDER_NOSCROLL, 0) != FALSE;
        System::DrawThemeBackground(theme, context, named ? LBCP_BORDER_NOSCROLL : 0, named ? LBPSN_NORMAL : 0, &border,
                                    nullptr);
    }
    System::CloseThemeData(theme);
}
