#include "automation/HostContexts.h"

#include "automation/SystemLibrary.h"

namespace {

// Null means the process's own context.
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
    : activation_(CurrentActivation()),
      awareness_(System::GetThreadDpiAwarenessContext()),
      thread_(GetCurrentThreadId()) {
    AcquireSRWLockExclusive(&lock);
    outer_ = newest;
    newest = this;
    ReleaseSRWLockExclusive(&lock);
}

HostContexts::~HostContexts() {
    AcquireSRWLockExclusive(&lock);
    // Another thread may have called in since.
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
    if (call->awareness_ != nullptr && System::GetThreadDpiAwarenessContext() != call->awareness_)
        before_ = System::SetThreadDpiAwarenessContext(call->awareness_);
}

InHostContexts::~InHostContexts() {
    if (before_ != nullptr) System::SetThreadDpiAwarenessContext(before_);
}
