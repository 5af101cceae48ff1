#include <windows.h>

#include <commdlg.h>

#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/NotTopmost.h"
#include "forms/Printer.h"

namespace {

constexpr const wchar_t* Module = L"frmSQLEditor";

// Under this name the job stands in the printer's queue.
std::wstring DocumentName(const std::wstring& FileName) {
    const std::wstring Name = FileName.substr(FileName.find_last_of(L"\\/") + 1);
    return Name.empty() ? std::wstring(L"SQL Editor") : Name;
}

}  // namespace

void frmSQLEditor::mnuFilePrint_Click() try {
    rtbSQL.SetSelLength(0);
    const NotTopmost notTopmost;  // a driver's box for the name of a file may be another process's
    Printer Chosen = Printer::Choose(Handle(), PD_RETURNDC | PD_NOPAGENUMS);
    PrintingNotice Notice(Handle());
    rtbSQL.Print(Chosen, DocumentName(rtbSQL.FileName), Notice);
} catch (...) {
    // The dialog can be cancelled without a word.
    if (CurrentError().Number != ErrorNumber::DialogCancelled) ReportError(Module, L"mnuFilePrint_Click");
}
