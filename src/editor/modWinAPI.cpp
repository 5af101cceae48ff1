#include "editor/modWinAPI.h"

#include "errors/modErrorHandler.h"
#include "forms/Events.h"
#include "forms/Form.h"

void modWinAPI::SetWindowTopMost(::Form& Form) try {
    Events::Call call;
    SetWindowPos(Form.Handle(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
    call.Rethrow();
} catch (...) {
    ReportError(L"modWinAPI", L"SetWindowTopMost");
}
