#include "forms/Surroundings.h"

#include <new>
#include <string>

#include "automation/App.h"
#include "forms/SystemFunctions.h"

namespace {

// What the module's manifest asks for, version 6 of the common controls. Made with the first window and kept until the
// module goes: windows that are still to be made may need it.
struct Controls {
    HANDLE Context = INVALID_HANDLE_VALUE;
    HMODULE Library = nullptr;
};

// A program has its manifest as resource 1. A DLL has it as resource 3: as resource 2 the loader would make a context
// of it for the DLL's own imports each time it loads the DLL, which takes longer than all the rest of the loading.
HANDLE MakeContext() noexcept {
    std::wstring path;
    try {
        path = App::ModulePath();
    } catch (const std::bad_alloc&) {
        // The module alone does as well.
    }
    for (const LPCWSTR resource :
         {ISOLATIONAWARE_NOSTATICIMPORT_MANIFEST_RESOURCE_ID, CREATEPROCESS_MANIFEST_RESOURCE_ID}) {
        ACTCTXW request{};
        request.cbSize = sizeof request;
        request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
        request.lpSource = path.empty() ? nullptr : path.c_str();
        request.lpResourceName = resource;
        request.hModule = App::Module();
        const HANDLE made = CreateActCtxW(&request);
        if (made != INVALID_HANDLE_VALUE) return made;
    }
    return INVALID_HANDLE_VALUE;
}

const Controls& ModuleControls() noexcept {
    static const Controls controls = [] {
        Controls made;
        made.Context = MakeContext();
        const ActiveContext active(made.Context);
        // The context leads the bare name to the folder of version 6 and no other is searched; the system's folder has
        // version 5.
        made.Library =
            made.Context != INVALID_HANDLE_VALUE ? LoadLibraryW(L"comctl32.dll") : LoadSystemLibrary(L"comctl32.dll");
        return made;
    }();
    return controls;
}

}  // namespace

HMODULE System::CommonControls() noexcept { return ModuleControls().Library; }

Awareness::Awareness() noexcept
    : before_(System::SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2)) {
    // Windows 10 before 1703 knows the first form only.
    if (before_ == nullptr) before_ = System::SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE);
}

Awareness::~Awareness() {
    if (before_ != nullptr) System::SetThreadDpiAwarenessContext(before_);
}

// The classes of windows belong to the context: they are registered once the library is there.
Surroundings::Surroundings() noexcept : activeContext_(ModuleControls().Context) {
    static const bool registered = [] {
        INITCOMMONCONTROLSEX classes{};
        classes.dwSize = sizeof classes;
        classes.dwICC = ICC_STANDARD_CLASSES | ICC_TREEVIEW_CLASSES | ICC_BAR_CLASSES;
        return System::InitCommonControlsEx(&classes) != FALSE;
    }();
    static_cast<void>(registered);
}
