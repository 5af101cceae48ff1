#pragma once

#include <windows.h>

#include <string>
#include <vector>

// A dialog made in memory. Places and sizes are in the dialog's own units, which follow its font.
class DialogTemplate {
public:
    DialogTemplate(const std::wstring& title, const NONCLIENTMETRICSW& metrics, UINT dpi, int width, int height);
    // `windowClass`: one of DialogClass.
    void Add(WORD windowClass, DWORD style, DWORD exStyle, int x, int y, int width, int height, int id,
             const std::wstring& text);
    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(words_.data()); }

private:
    void Word(WORD value) { words_.push_back(value); }
    void Long(DWORD value);
    void Text(const std::wstring& text);
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
