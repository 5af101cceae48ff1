#pragma once

#include <cstring>

#include "support/Browsed.h"

class EditingFixture : public BrowsedFixture {
protected:
    static void SelectText(LONG from, LONG to) { EditorWindow::Select(from, to); }
    // "from-to", as the control counts.
    static std::wstring Selection() {
        const CHARRANGE range = EditorWindow::Selection();
        return std::to_wstring(range.cpMin) + L"-" + std::to_wstring(range.cpMax);
    }
    static void Choose(const wchar_t* entry) { EditorWindow::Choose(L"Edit", entry); }

    static void PutOnClipboard(UINT format, const void* data, size_t bytes) {
        ASSERT_TRUE(OpenClipboard(nullptr));
        EmptyClipboard();
        if (data != nullptr) {
            const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
            memcpy(GlobalLock(memory), data, bytes);
            GlobalUnlock(memory);
            SetClipboardData(format, memory);
        }
        CloseClipboard();
    }
    static void PutText(const std::wstring& text) {
        PutOnClipboard(CF_UNICODETEXT, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }
    static std::wstring ClipboardText() {
        if (!OpenClipboard(nullptr)) return L"<cannot be opened>";
        std::wstring text = L"<no text>";
        if (const HANDLE handle = GetClipboardData(CF_UNICODETEXT)) {
            text = static_cast<const wchar_t*>(GlobalLock(handle));
            GlobalUnlock(handle);
        }
        CloseClipboard();
        return text;
    }
};
