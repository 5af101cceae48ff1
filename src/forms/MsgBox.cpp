#include "forms/MsgBox.h"

#include "automation/App.h"
#include "forms/Events.h"
#include "forms/Painting.h"
#include "forms/Surroundings.h"

int MsgBox(HWND owner, const std::wstring& prompt, UINT flags) { return MsgBox(owner, prompt, flags, App::Title); }

int MsgBox(HWND owner, const std::wstring& prompt, UINT flags, const std::wstring& title) {
    const Surroundings surroundings;
    const PaintingResumed resumed;
    Events::Call call;
    const int answer = MessageBoxW(owner, prompt.c_str(), title.c_str(), flags);
    call.Rethrow();
    return answer;
}
