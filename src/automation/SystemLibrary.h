#pragma once

#include <windows.h>

#include <atomic>

// What the module names as its imports has to be found before the module is there, and COM loads a server with the
// server's own folder as the first place to look. A file that somebody has put beside it under the name of a library of
// the system would be taken, unless the process has that library already or Windows keeps it open for everybody
// (KnownDLLs; Wine keeps none). So the module imports only what every host with a window has loaded: kernel32, user32,
// gdi32, advapi32, ole32, oleaut32 and msvcrt. All else is bound here, when it is needed, and loading takes less time.

// A library of the system, by its name with its extension, from the system's folder and nowhere else. Null when there
// is none. It stays loaded. By its full path, since Windows 7 knows LOAD_LIBRARY_SEARCH_SYSTEM32 only with an update.
HMODULE LoadSystemLibrary(const wchar_t* name) noexcept;

// A function of a library of the system that is bound when it is first called or asked for. The type is that of the
// declaration in the platform's headers: SystemFunction<decltype(::PrintDlgW)>. Constant, so a table of them costs
// nothing at load. Calls may come on any thread.
template <class Function>
class SystemFunction;

template <class Result, class... Parameters>
class SystemFunction<Result WINAPI(Parameters...)> {
public:
    using Pointer = Result(WINAPI*)(Parameters...);
    using Loader = HMODULE (*)() noexcept;

    // `load` returns the library, or null when it is missing; `name` is that of the export.
    constexpr SystemFunction(Loader load, const char* name) noexcept : load_(load), name_(name) {}
    SystemFunction(const SystemFunction&) = delete;
    SystemFunction& operator=(const SystemFunction&) = delete;

    // False where this release of Windows lacks the library or the function.
    explicit operator bool() const noexcept { return Bound() != nullptr; }
    // Without the function it does nothing and returns zero.
    Result operator()(Parameters... parameters) const noexcept {
        const Pointer function = Bound();
        return function != nullptr ? function(parameters...) : Result();
    }

private:
    Pointer Bound() const noexcept {
        // Two threads may both look it up: they find the same.
        if (!asked_.load(std::memory_order_acquire)) {
            const HMODULE library = load_();
            if (library != nullptr) {
                found_.store(reinterpret_cast<Pointer>(reinterpret_cast<void*>(GetProcAddress(library, name_))),
                             std::memory_order_relaxed);
            }
            asked_.store(true, std::memory_order_release);
        }
        return found_.load(std::memory_order_relaxed);
    }

    const Loader load_;
    const char* const name_;
    mutable std::atomic<Pointer> found_ = nullptr;
    mutable std::atomic<bool> asked_ = false;
};

// What this floor and those above bind of user32: Windows 10 and later.
namespace System {
inline HMODULE User() noexcept { return LoadSystemLibrary(L"user32.dll"); }
inline constinit SystemFunction<decltype(::GetThreadDpiAwarenessContext)> GetThreadDpiAwarenessContext{
    &User, "GetThreadDpiAwarenessContext"};
inline constinit SystemFunction<decltype(::SetThreadDpiAwarenessContext)> SetThreadDpiAwarenessContext{
    &User, "SetThreadDpiAwarenessContext"};
}  // namespace System
