#include <windows.h>

#include <cstdint>

// What the compiler's protection of the stack (-fstack-protector-strong) refers to. The compiler's library would do,
// but fetches its random number from the cryptographic service when the module is loaded, which takes longer than the
// rest of the loading. This one is mixed from what Microsoft's compiler takes.
extern "C" {

uintptr_t __stack_chk_guard = sizeof(uintptr_t) == 8 ? static_cast<uintptr_t>(0x9D4F2B7AE61C8300) : 0x9D4F2B00;

// A buffer on the stack was overrun: no state of this process can be trusted.
[[noreturn]] void __stack_chk_fail() {
    constexpr unsigned CookieCheckFailed = 2;  // FAST_FAIL_STACK_COOKIE_CHECK_FAILURE
    asm volatile("int $0x29" : : "c"(CookieCheckFailed) : "memory");
    // Windows 7 does not implement that interrupt and raises an exception, which a handler may have swallowed.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_STACK_BUFFER_OVERRUN));
    __builtin_trap();
}
}

namespace {

// Before all other constructors: no protected function may be running when the value changes.
__attribute__((constructor(101), no_stack_protector)) void MixGuard() {
    LARGE_INTEGER counter{};
    QueryPerformanceCounter(&counter);
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    uint64_t mixed =
        static_cast<uint64_t>(counter.QuadPart) ^ (uint64_t{time.dwLowDateTime} << 21) ^ time.dwHighDateTime;
    mixed ^= reinterpret_cast<uintptr_t>(&mixed) ^ (uint64_t{GetCurrentProcessId()} << 32) ^ GetCurrentThreadId();
    mixed *= 0x9E3779B97F4A7C15;
    // The high bits are well mixed. The lowest byte is zero, so that an overrunning string copy stops at it.
    mixed >>= 64 - 8 * sizeof(uintptr_t);
    __stack_chk_guard = static_cast<uintptr_t>(mixed) & ~uintptr_t{0xFF};
}

}  // namespace
