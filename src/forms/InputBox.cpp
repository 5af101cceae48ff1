#include "forms/InputBox.h"

#include "automation/App.h"
#include "automation/RuntimeError.h"
#include "forms/DialogTemplate.h"
#include "forms/Dpi.h"
#include "forms/Events.h"
#include "forms/Surroundings.h"

namespace {

enum Id { PromptId = 100, TextId = 101 };
constexpr int LongestText = 1000;

struct Asked {
    std::wstring Text;
    HWND Owner;
};

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
    DialogTemplate form(title, MetricsFor(dpi), dpi, 220, 62);
    using namespace DialogClass;
    form.Add(Static, SS_LEFT | SS_NOPREFIX, 0, 8, 8, 204, 10, PromptId, prompt);
    form.Add(Edit, ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE, 8, 20, 204, 13, TextId, L"");
    form.Add(Button, BS_DEFPUSHBUTTON | WS_TABSTOP, 0, 108, 42, 50, 14, IDOK, L"OK");
    form.Add(Button, BS_PUSHBUTTON | WS_TABSTOP, 0, 162, 42, 50, 14, IDCANCEL, L"Cancel");
    Asked asked{text.substr(0, LongestText), owner};
    Events::Call call;
    const INT_PTR answer =
        DialogBoxIndirectParamW(App::Module(), form.Get(), owner, &Procedure, reinterpret_cast<LPARAM>(&asked));
    if (answer == -1) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    call.Rethrow();
    if (answer != IDOK) return std::nullopt;
    return asked.Text;
}
