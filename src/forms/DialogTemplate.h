#pragma once

#include <windows.h>

#include <cstdlib>
#include <string>
#include <vector>

// A dialog made in memory: a stream of words and texts, each control at a multiple of four bytes. Places and sizes are
// in the dialog's own units, which follow its font.
class DialogTemplate {
public:
    DialogTemplate(const std::wstring& title, const NONCLIENTMETRICSW& metrics, UINT dpi, int width, int height) {
        Long(DS_MODALFRAME | DS_SETFONT | WS_POPUP | WS_CAPTION | WS_SYSMENU);
        Long(0);
        Word(0);  // controls: counted below
        for (const int value : {0, 0, width, height}) Word(static_cast<WORD>(value));
        Word(0);
        Word(0);
        Text(title);
        Word(static_cast<WORD>(MulDiv(std::abs(metrics.lfMessageFont.lfHeight), 72, static_cast<int>(dpi))));
        Text(metrics.lfMessageFont.lfFaceName);
    }
    void Add(WORD windowClass, DWORD style, DWORD exStyle, int x, int y, int width, int height, int id,
             const std::wstring& text) {
        if (words_.size() % 2 != 0) Word(0);
        Long(style | WS_CHILD | WS_VISIBLE);
        Long(exStyle);
        for (const int value : {x, y, width, height, id}) Word(static_cast<WORD>(value));
        Word(0xFFFF);
        Word(windowClass);
        Text(text);
        Word(0);
        ++words_[4];
    }
    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(words_.data()); }

private:
    void Word(WORD value) { words_.push_back(value); }
    void Long(DWORD value) {
        Word(LOWORD(value));
        Word(HIWORD(value));
    }
    void Text(const std::wstring& text) {
        for (const wchar_t unit : text) Word(unit);
        Word(0);
    }
    std::vector<WORD> words_;
};

// The classes of controls, as a template names them.
namespace DialogClass {
inline constexpr WORD Button = 0x0080;
inline constexpr WORD Edit = 0x0081;
inline constexpr WORD Static = 0x0082;
}  // namespace DialogClass

// Puts a dialog in the middle of its owner, within the monitor's work area.
void CentreOn(HWND dialog, HWND owner);
