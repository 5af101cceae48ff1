#pragma once

#include <windows.h>

// An activation context, active on the thread for as long as this lives; INVALID_HANDLE_VALUE does nothing. The handle
// is not owned.
class ActiveContext {
public:
    explicit ActiveContext(HANDLE context) noexcept {
        if (context != INVALID_HANDLE_VALUE) active_ = ActivateActCtx(context, &cookie_) != FALSE;
    }
    // Code of the host may have activated a context in between and never left it, for example because an exception cut
    // a procedure off. With the flag, deactivating ours also pops the contexts above it; without it the system raises
    // an exception that ends the process. The system may refuse the flag when ours is on top, the usual case: then 0 is
    // right.
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
