#include "forms/WindowClass.h"

#include <vector>

#include "automation/App.h"
#include "automation/RuntimeError.h"

namespace {

std::vector<const wchar_t*>& Classes() {
    static std::vector<const wchar_t*> classes;
    return classes;
}

}  // namespace

void RegisterWindowClass(const wchar_t* name, WNDPROC procedure, UINT style) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    if (GetClassInfoExW(App::Module(), name, &windowClass)) return;
    windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = style;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = App::Module();
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_BTNFACE + 1));
    windowClass.lpszClassName = name;
    windowClass.hIcon = LoadIconW(App::Module(), MAKEINTRESOURCEW(1));
    if (RegisterClassExW(&windowClass) == 0) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
    Classes().push_back(name);
}

void UnregisterWindowClasses() noexcept {
    for (const wchar_t* const name : Classes()) UnregisterClassW(name, App::Module());
    Classes().clear();
}
