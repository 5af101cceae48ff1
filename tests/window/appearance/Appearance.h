#pragma once

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/Editing.h"
#include "support/Screen.h"

// What is to be seen of the window, measured as it stands.
class AppearanceFixture : public EditingFixture, public WindowParts {
protected:
    static int Pixels(int twips) { return MulDiv(twips, ScreenDpi(), 1440); }
    static RECT Place(HWND window) {
        RECT bounds;
        GetWindowRect(window, &bounds);
        return bounds;
    }
    static int WidthOf(HWND window) { return static_cast<int>(Place(window).right - Place(window).left); }
    static int HeightOf(HWND window) { return static_cast<int>(Place(window).bottom - Place(window).top); }
    static void Resize(int width, int height) {
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, Pixels(width), Pixels(height), SWP_NOMOVE | SWP_NOZORDER);
    }

    // A context of a window with the font that the window draws with.
    class Context {
    public:
        explicit Context(HWND window) : window_(window), context_(GetDC(window)) {
            const auto font = reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0));
            EXPECT_NE(nullptr, font);
            before_ = SelectObject(context_, font);
        }
        ~Context() {
            SelectObject(context_, before_);
            ReleaseDC(window_, context_);
        }
        Context(const Context&) = delete;
        Context& operator=(const Context&) = delete;
        int Width(const std::wstring& text) const {
            SIZE size{};
            GetTextExtentPoint32W(context_, text.c_str(), static_cast<int>(text.size()), &size);
            return static_cast<int>(size.cx);
        }
        int Height() const {
            TEXTMETRICW metrics{};
            GetTextMetricsW(context_, &metrics);
            return static_cast<int>(metrics.tmHeight);
        }

    private:
        HWND window_;
        HDC context_;
        HGDIOBJ before_;
    };

    static std::wstring Caption(HWND window) {
        wchar_t text[200];
        return std::wstring(text, static_cast<size_t>(GetWindowTextW(window, text, 200)));
    }

    // The checks that hold in every appearance; of the window as it is when it opens for the first time, or wider.
    static void ExpectThatCaptionsFit();
    static void ExpectThatRowsFit();
    static void ExpectThatTheToolbarFits();
    static void ExpectThatTheStatusBarFits();
    static void ExpectThatAllFits() {
        ExpectThatCaptionsFit();
        ExpectThatRowsFit();
        ExpectThatTheToolbarFits();
        ExpectThatTheStatusBarFits();
    }
};

// Every font of the system so many times as large while it lives, as after a change by the user.
class LargeFonts {
public:
    explicit LargeFonts(int times) {
        former_.cbSize = sizeof former_;
        EXPECT_TRUE(SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof former_, &former_, 0));
        NONCLIENTMETRICSW metrics = former_;
        for (LOGFONTW* font : {&metrics.lfMessageFont, &metrics.lfMenuFont, &metrics.lfStatusFont})
            font->lfHeight *= times;
        Set(metrics);
    }
    ~LargeFonts() { Set(former_); }
    LargeFonts(const LargeFonts&) = delete;
    LargeFonts& operator=(const LargeFonts&) = delete;

private:
    static void Set(NONCLIENTMETRICSW& metrics) {
        EXPECT_TRUE(SystemParametersInfoW(SPI_SETNONCLIENTMETRICS, sizeof metrics, &metrics, 0));
        // To this window alone, where SPIF_SENDCHANGE would tell the whole desktop.
        if (const HWND window = EditorWindow::Find())
            SendMessageW(window, WM_SETTINGCHANGE, SPI_SETNONCLIENTMETRICS, 0);
    }
    NONCLIENTMETRICSW former_{};
};
