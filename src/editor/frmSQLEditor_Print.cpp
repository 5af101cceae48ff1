#include <windows.h>

#include <commdlg.h>

#include "automation/Scope.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/NotTopmost.h"
#include "forms/Printer.h"

namespace {

// Under this name the job stands in the printer's queue.
std::wstring DocumentName(const std::wstring& FileName) {
    const std::wstring Name = FileName.substr(FileName.find_last_of(L"\\/") + 1);
    return Name.empty() ? std::wstring(L"SQL Editor") : Name;
}

}  // namespace

void frmSQLEditor::mnuFilePrint_Click() try {
    // The window is in use while the printer asks for the name of a file.
    if (printing_) return;
    const AutoReset Printing(printing_, true);
    rtbSQL.SetSelLength(0);
    const NotTopmost notTopmost;  // a driver's box for the name of a file may be another process's
    // The dialog offers to print the selection too. Nothing is selected, so it prints the whole text.
    Printer Chosen = Printer::Choose(Handle(), PD_RETURNDC | PD_NOPAGENUMS);
    Chosen.StartDocument(DocumentName(rtbSQL.FileName));
    if (!Visible()) return;  // closed meanwhile
    PrintingNotice Notice(Handle());
    rtbSQL.Print(Chosen, Notice);
} catch (...) {
    // The dialog can be cancelled without a word.
    if (CurrentError().Number != ErrorNumber::DialogCancelled) ReportError(Module, L"mnuFilePrint_Click");
}
