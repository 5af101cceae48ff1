#pragma once

#include <windows.h>

// An activation context, active on the thread for as long as this lives; INVALID_HANDLE_VALUE does nothing. The handle
// is not owned.
class ActiveContext {
public:
    explicit ActiveContext(HANDLE context) noexcept {
        if (context != INVALID_HANDLE_VALUE) active_ = ActivateActCtx(context, &cookie_) != FALSE;
    }
    // In between code of the host may have run that activated a context and never left it, say since a procedure of its
    // was cut off by an exception. What lies above ours on the thread's stack goes with it then: without the flag the
    // system would raise an exception that ends the process. With it the system may refuse what lies on top, the usual
    // case, and that is what 0 is for.
    ~ActiveContext() {
        if (active_ && !DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, cookie_))
            DeactivateActCtx(0, cookie_);
    }
    ActiveContext(const ActiveContext&) = delete;
    ActiveContext& operator=(const ActiveContext&) = delete;

private:
    ULONG_PTR cookie_ = 0;
    bool active_ = false;
};
