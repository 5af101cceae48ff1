#include "forms/Surroundings.h"

#include <iterator>

#include "automation/App.h"
#include "forms/UserFunction.h"

namespace {

// A DLL keeps its manifest as resource 2, a program as resource 1. Made once a module and never released: an activation
// context is a small thing, and windows that are still to be made may need it until the module goes.
HANDLE ModuleContext() noexcept {
    static const HANDLE context = [] {
        wchar_t path[MAX_PATH * 4];
        const DWORD length = GetModuleFileNameW(App::Module(), path, static_cast<DWORD>(std::size(path)));
        if (length == 0 || length == std::size(path)) return INVALID_HANDLE_VALUE;
        for (const WORD resource : {WORD{2}, WORD{1}}) {
            ACTCTXW request{};
            request.cbSize = sizeof request;
            request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
            request.lpSource = path;
            request.lpResourceName = MAKEINTRESOURCEW(resource);
            request.hModule = App::Module();
            const HANDLE made = CreateActCtxW(&request);
            if (made != INVALID_HANDLE_VALUE) return made;
        }
        return INVALID_HANDLE_VALUE;
    }();
    return context;
}

using SetContext = DPI_AWARENESS_CONTEXT(WINAPI*)(DPI_AWARENESS_CONTEXT);

SetContext SetThreadContext() noexcept {
    static const auto function = UserFunction<SetContext>("SetThreadDpiAwarenessContext");
    return function;
}

}  // namespace

Surroundings::Surroundings() noexcept : activeContext_(ModuleContext()) {
    if (const auto set = SetThreadContext()) {
        dpiContext_ = set(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
        // Windows 10 before 1703 knows the first form only.
        if (dpiContext_ == nullptr) dpiContext_ = set(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE);
    }
}

Surroundings::~Surroundings() {
    if (dpiContext_ != nullptr) SetThreadContext()(static_cast<DPI_AWARENESS_CONTEXT>(dpiContext_));
}
