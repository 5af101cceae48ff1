#pragma once

#include <exception>
#include <utility>

// Events are raised from window procedures, and no exception may leave a window procedure: through SendMessage it would
// end the process. What an event procedure lets out is kept here until the call that raised the event is back in our
// own code, and goes on from there: every forms call that can raise an event ends with Rethrow, and so does each turn
// of the modal loop. The first exception wins; the ones that follow from it are dropped.
namespace Events {
// Keeps the exception that is being handled.
void Keep() noexcept;
// Throws the kept exception, if there is one.
void Rethrow();

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
