#include "forms/Printer.h"

#include <utility>

#include "automation/App.h"
#include "automation/RuntimeError.h"
#include "forms/DialogTemplate.h"
#include "forms/Dpi.h"
#include "forms/Events.h"
#include "forms/Surroundings.h"
#include "forms/SystemFunctions.h"

namespace {

constexpr long PrinterError = 482;
constexpr DWORD MomentLength = 700;  // milliseconds until the notice shows
constexpr int PageId = 100;

[[noreturn]] void RaisePrinterError(const std::wstring& why) {
    RaiseError(PrinterError, App::Title, L"Printer error: " + why);
}

std::wstring DialogFailure(DWORD error) {
    switch (error) {
        case PDERR_NODEVICES:
        case PDERR_DNDMMISMATCH:
            return L"no printer is installed.";
        case PDERR_PRINTERNOTFOUND:
            return L"the printer was not found.";
        case PDERR_CREATEICFAILURE:
        case PDERR_GETDEVMODEFAIL:
        case PDERR_LOADDRVFAILURE:
        case PDERR_INITFAILURE:
            return L"the printer's driver cannot be used.";
        default:
            return L"the print dialog failed (" + std::to_wstring(error) + L").";
    }
}

// Checks the result of a document call.
void Check(int result) {
    if (result > 0) return;
    const DWORD error = GetLastError();
    if (result == SP_APPABORT || result == SP_USERABORT || error == ERROR_CANCELLED || error == ERROR_PRINT_CANCELLED)
        RaiseError(ErrorNumber::DialogCancelled);
    RaisePrinterError(L"the printer did not take the document.");
}

}  // namespace

Printer Printer::Choose(HWND owner, DWORD flags) {
    const Surroundings surroundings;
    if (!System::PrintDlgW) RaisePrinterError(L"the print dialog cannot be loaded.");
    PRINTDLGW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.Flags = flags;
    dialog.nCopies = 1;
    Events::Call call;
    const BOOL chosen = System::PrintDlgW(&dialog);
    const DWORD error = chosen ? 0 : System::CommDlgExtendedError();
    GlobalFree(dialog.hDevMode);
    GlobalFree(dialog.hDevNames);
    Printer printer(chosen ? dialog.hDC : nullptr);
    if (dialog.nCopies > 1) printer.copies_ = dialog.nCopies;
    printer.collated_ = (dialog.Flags & PD_COLLATE) != 0;
    printer.toFile_ = (dialog.Flags & PD_PRINTTOFILE) != 0;
    call.Rethrow();
    // Where there is no default printer the dialog itself has said so.
    if (!chosen && (error == 0 || error == PDERR_NODEFAULTPRN)) RaiseError(ErrorNumber::DialogCancelled);
    if (!chosen) RaisePrinterError(DialogFailure(error));
    if (printer.context_ == nullptr) RaisePrinterError(L"the printer's driver cannot be used.");
    return printer;
}

Printer::Printer(Printer&& other) noexcept
    : context_(std::exchange(other.context_, nullptr)),
      copies_(other.copies_),
      collated_(other.collated_),
      toFile_(other.toFile_),
      started_(std::exchange(other.started_, false)) {}

Printer::~Printer() {
    if (started_) AbortDoc(context_);
    if (context_ != nullptr) DeleteDC(context_);
}

void Printer::StartDocument(const std::wstring& name) {
    DOCINFOW document{};
    document.cbSize = sizeof document;
    document.lpszDocName = name.c_str();
    if (toFile_) document.lpszOutput = L"FILE:";
    SetLastError(ERROR_SUCCESS);
    Check(StartDocW(context_, &document));
    started_ = true;
}

void Printer::StartPage() {
    SetLastError(ERROR_SUCCESS);
    Check(::StartPage(context_));
}

void Printer::EndPage() {
    SetLastError(ERROR_SUCCESS);
    Check(::EndPage(context_));
}

void Printer::EndDocument() {
    started_ = false;
    SetLastError(ERROR_SUCCESS);
    Check(EndDoc(context_));
}

// ---- PrintingNotice

PrintingNotice::PrintingNotice(HWND owner)
    : owner_(owner), started_(GetTickCount()), enabled_(!EnableWindow(owner, FALSE)) {}

PrintingNotice::~PrintingNotice() {
    // Before the dialog is destroyed, else another program would be activated.
    if (enabled_) EnableWindow(owner_, TRUE);
    if (dialog_ != nullptr) DestroyWindow(dialog_);
}

bool PrintingNotice::Continue(int page) {
    if (dialog_ == nullptr && GetTickCount() - started_ > MomentLength) {
        const Surroundings surroundings;
        const UINT dpi = DpiOf(owner_);
        DialogTemplate form(L"Print", MetricsFor(dpi), dpi, 160, 48);
        form.Add(DialogClass::Static, SS_LEFT, 0, 8, 8, 144, 10, PageId, L"");
        form.Add(DialogClass::Button, BS_PUSHBUTTON | WS_TABSTOP, 0, 55, 26, 50, 14, IDCANCEL, L"Cancel");
        dialog_ = CreateDialogIndirectParamW(
            App::Module(), form.Get(), owner_,
            [](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) WINAPI -> INT_PTR {
                if (message == WM_INITDIALOG) {
                    SetWindowLongPtrW(dialog, DWLP_USER, lParam);
                    return TRUE;
                }
                if (message != WM_COMMAND || LOWORD(wParam) != IDCANCEL) return FALSE;
                *reinterpret_cast<bool*>(GetWindowLongPtrW(dialog, DWLP_USER)) = true;
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&stopped_));
        if (dialog_ != nullptr) {
            CentreOn(dialog_, owner_);
            ShowWindow(dialog_, SW_SHOW);
        }
    }
    if (dialog_ != nullptr)
        SetDlgItemTextW(dialog_, PageId, (L"Printing page " + std::to_wstring(page) + L" ...").c_str());
    Events::Call call;
    MSG message;
    while (!stopped_ && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return false;
        }
        if (dialog_ != nullptr && IsDialogMessageW(dialog_, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    call.Rethrow();
    return !stopped_;
}
