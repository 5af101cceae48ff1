#include "forms/Events.h"

namespace {
std::exception_ptr kept;
}

void Events::Keep() noexcept {
    if (!kept) kept = std::current_exception();
}

void Events::Rethrow() {
    if (kept) std::rethrow_exception(std::exchange(kept, nullptr));
}
