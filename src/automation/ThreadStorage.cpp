#include <windows.h>

#include <array>

// The compiler's library takes an index of thread-local storage with the module's first exception and never frees it.
// A process has 1,088 of them, and a host unloads the module whenever it is idle: after as many lives no library of the
// process would get one any more. This file stands in for the import of TlsAlloc in the modules that it is linked into,
// keeps the indices that they take, and frees them with the module. Linked by name, since the reference to the import
// comes from a library that the linker reads last.
namespace {

constexpr LONG Most = 8;
std::array<DWORD, Most> taken;
LONG count = 0;

DWORD WINAPI TakeIndex() {
    using Function = DWORD(WINAPI*)();
    const auto allocate = reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "TlsAlloc")));
    const DWORD index = allocate();
    if (index == TLS_OUT_OF_INDEXES) return index;
    const LONG at = InterlockedIncrement(&count) - 1;
    if (at < Most) taken[static_cast<size_t>(at)] = index;
    return index;
}

// After all other destructors, any of which may still throw and catch. What the unloading thread kept below the indices
// has been freed by then; other threads leave a few bytes.
__attribute__((destructor(101))) void FreeIndices() {
    for (LONG at = 0; at < count && at < Most; ++at) TlsFree(taken[static_cast<size_t>(at)]);
}

}  // namespace

// The name under which code finds the address of an imported function.
#ifdef _WIN64
extern "C" __attribute__((used)) DWORD(WINAPI* const brvTlsAlloc)() __asm__("__imp_TlsAlloc") = &TakeIndex;
#else
extern "C" __attribute__((used)) DWORD(WINAPI* const brvTlsAlloc)() __asm__("__imp__TlsAlloc@0") = &TakeIndex;
#endif
