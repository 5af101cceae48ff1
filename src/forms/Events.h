#pragma once

#include <exception>
#include <utility>

// Events are raised from window procedures, and no exception may leave a window procedure: through SendMessage it would
// end the process. What an event procedure lets out is kept by the call into the platform that raised the event, and
// goes on from there once that call is back in our own code: every forms call that can raise an event stands between an
// Events::Call and its Rethrow, and so does each turn of the modal loop.
//
// Such calls nest, and each throws what was kept while it was the innermost one, and nothing older: what an event lets
// out while the host pumps messages inside a call of ours belongs to whoever runs the loop around it, and not to the
// next innocent call. What nobody waits for, such as an event of a hidden window, is dropped.
namespace Events {

class Call {
public:
    Call() noexcept;
    // What was kept and not thrown goes to the call around this one, unless another exception is on its way there.
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    // Throws what was kept since this call began, if anything was.
    void Rethrow();

private:
    friend void Keep() noexcept;
    void Take(std::exception_ptr exception) noexcept;

    Call* outer_;
    std::exception_ptr kept_;
};

// Keeps the exception that is being handled for the innermost call. The first one wins; the ones that follow from it
// are dropped.
void Keep() noexcept;

// Runs an event procedure inside a window procedure.
template <class Procedure>
void Raise(Procedure&& procedure) noexcept {
    try {
        std::forward<Procedure>(procedure)();
    } catch (...) {
        Keep();
    }
}
}  // namespace Events
