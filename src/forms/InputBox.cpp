#include "forms/InputBox.h"

#include <vector>

#include "automation/App.h"
#include "automation/RuntimeError.h"
#include "forms/Events.h"
#include "forms/Surroundings.h"

namespace {

enum Id { PromptId = 100, TextId = 101 };
constexpr int LongestText = 1000;

struct Asked {
    std::wstring Text;
    HWND Owner;
};

// A dialog template is a stream of words and texts, each control at a multiple of four bytes.
class Template {
public:
    Template(const std::wstring& title, const NONCLIENTMETRICSW& metrics, UINT dpi, int width, int height) {
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

void CentreOn(HWND dialog, HWND owner) {
    RECT own, around;
    GetWindowRect(dialog, &own);
    GetWindowRect(owner, &around);
    const int width = own.right - own.left;
    const int height = own.bottom - own.top;
    int x = (around.left + around.right - width) / 2;
    int y = (around.top + around.bottom - height) / 2;
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    if (GetMonitorInfoW(MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST), &monitor)) {
        const RECT& work = monitor.rcWork;
        if (x + width > work.right) x = work.right - width;
        if (y + height > work.bottom) y = work.bottom - height;
        if (x < work.left) x = work.left;
        if (y < work.top) y = work.top;
    }
    SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    switch (message) {
        case WM_INITDIALOG: {
            const auto& asked = *reinterpret_cast<const Asked*>(lParam);
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            SendDlgItemMessageW(dialog, TextId, EM_LIMITTEXT, LongestText, 0);
            SetDlgItemTextW(dialog, TextId, asked.Text.c_str());
            SendDlgItemMessageW(dialog, TextId, EM_SETSEL, 0, -1);
            CentreOn(dialog, asked.Owner);
            return TRUE;  // the focus goes to the first control of the Tab key: the text
        }
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK) {
                auto& asked = *reinterpret_cast<Asked*>(GetWindowLongPtrW(dialog, DWLP_USER));
                wchar_t text[LongestText + 1];
                const UINT length = GetDlgItemTextW(dialog, TextId, text, LongestText + 1);
                Events::Raise([&] { asked.Text.assign(text, length); });
            }
            if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
                EndDialog(dialog, LOWORD(wParam));
                return TRUE;
            }
            return FALSE;
        default:
            return FALSE;
    }
}

}  // namespace

std::optional<std::wstring> InputBox(HWND owner, const std::wstring& prompt, const std::wstring& title,
                                     const std::wstring& text) {
    const Surroundings surroundings;
    const UINT dpi = DpiOf(owner);
    // In the dialog's own units, which follow its font.
    Template form(title, MetricsFor(dpi), dpi, 220, 62);
    constexpr WORD Button = 0x0080, Edit = 0x0081, Static = 0x0082;
    form.Add(Static, SS_LEFT | SS_NOPREFIX, 0, 8, 8, 204, 10, PromptId, prompt);
    form.Add(Edit, ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE, 8, 20, 204, 13, TextId, L"");
    form.Add(Button, BS_DEFPUSHBUTTON | WS_TABSTOP, 0, 108, 42, 50, 14, IDOK, L"OK");
    form.Add(Button, BS_PUSHBUTTON | WS_TABSTOP, 0, 162, 42, 50, 14, IDCANCEL, L"Cancel");
    Asked asked{text.substr(0, LongestText), owner};
    const INT_PTR answer =
        DialogBoxIndirectParamW(App::Module(), form.Get(), owner, &Procedure, reinterpret_cast<LPARAM>(&asked));
    if (answer == -1) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    Events::Rethrow();
    if (answer != IDOK) return std::nullopt;
    return asked.Text;
}
