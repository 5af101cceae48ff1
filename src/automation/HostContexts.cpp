#include "automation/HostContexts.h"

namespace {

template <class Function>
Function UserFunction(const char* name) noexcept {
    const HMODULE user = GetModuleHandleW(L"user32.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(user, name)));
}

DPI_AWARENESS_CONTEXT Awareness() noexcept {
    static const auto function = UserFunction<DPI_AWARENESS_CONTEXT(WINAPI*)()>("GetThreadDpiAwarenessContext");
    return function != nullptr ? function() : nullptr;
}

DPI_AWARENESS_CONTEXT SetAwareness(DPI_AWARENESS_CONTEXT awareness) noexcept {
    static const auto function =
        UserFunction<DPI_AWARENESS_CONTEXT(WINAPI*)(DPI_AWARENESS_CONTEXT)>("SetThreadDpiAwarenessContext");
    return function != nullptr ? function(awareness) : nullptr;
}

// Null for that of the process.
HANDLE CurrentActivation() noexcept {
    HANDLE current = nullptr;
    return GetCurrentActCtx(&current) ? current : nullptr;
}

void Release(HANDLE activation) noexcept {
    if (activation != nullptr) ReleaseActCtx(activation);
}

// The calls that are under way, newest first. Two threads may be inside the module, each with calls of its own.
SRWLOCK lock = SRWLOCK_INIT;
HostContexts* newest = nullptr;

}  // namespace

HostContexts::HostContexts() noexcept
    : activation_(CurrentActivation()), awareness_(Awareness()), thread_(GetCurrentThreadId()) {
    AcquireSRWLockExclusive(&lock);
    outer_ = newest;
    newest = this;
    ReleaseSRWLockExclusive(&lock);
}

HostContexts::~HostContexts() {
    AcquireSRWLockExclusive(&lock);
    // Calls of another thread may have come in since.
    for (HostContexts** link = &newest; *link != nullptr; link = &(*link)->outer_) {
        if (*link != this) continue;
        *link = outer_;
        break;
    }
    ReleaseSRWLockExclusive(&lock);
    Release(activation_);
}

InHostContexts::InHostContexts() noexcept {
    const DWORD thread = GetCurrentThreadId();
    AcquireSRWLockShared(&lock);
    const HostContexts* call = newest;
    while (call != nullptr && call->thread_ != thread) call = call->outer_;
    ReleaseSRWLockShared(&lock);
    // It cannot go meanwhile: this thread is inside it.
    if (call == nullptr) return;
    const HANDLE current = CurrentActivation();
    Release(current);  // compared as an address only
    if (current != call->activation_) active_.emplace(call->activation_);
    if (call->awareness_ != nullptr && Awareness() != call->awareness_) before_ = SetAwareness(call->awareness_);
}

InHostContexts::~InHostContexts() {
    if (before_ != nullptr) SetAwareness(before_);
}
