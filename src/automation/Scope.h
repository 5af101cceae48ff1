#pragma once

#include <utility>

// Runs `end`, which must not throw, when the scope is left, however that is.
template <class End>
class [[nodiscard]] ScopeExit {
public:
    explicit ScopeExit(End end) noexcept : end_(std::move(end)) {}
    ~ScopeExit() { end_(); }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;

private:
    End end_;
};

// Gives a variable a value for the time that it lives.
template <class T>
class [[nodiscard]] AutoReset {
public:
    AutoReset(T& variable, T value) noexcept
        : variable_(variable), before_(std::exchange(variable, std::move(value))) {}
    ~AutoReset() { variable_ = std::move(before_); }
    AutoReset(const AutoReset&) = delete;
    AutoReset& operator=(const AutoReset&) = delete;

private:
    T& variable_;
    T before_;
};
