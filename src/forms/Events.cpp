#include "forms/Events.h"

namespace {
Events::Call* innermost = nullptr;
}

Events::Call::Call() noexcept : outer_(std::exchange(innermost, this)) {}

Events::Call::~Call() {
    innermost = outer_;
    if (kept_ && outer_ != nullptr && std::uncaught_exceptions() == 0) outer_->Take(std::move(kept_));
}

void Events::Call::Take(std::exception_ptr exception) noexcept {
    if (!kept_) kept_ = std::move(exception);
}

void Events::Call::Rethrow() {
    if (kept_) std::rethrow_exception(std::exchange(kept_, nullptr));
}

void Events::Keep() noexcept {
    if (innermost != nullptr) innermost->Take(std::current_exception());
}
