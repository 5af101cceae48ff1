#pragma once

#include <windows.h>

#include <array>

// While it lives, calls of a function of a system library in this process go to another function, however the caller
// has bound it: the function begins with a jump. For answers that the system does not give on request.
class PatchedFunction {
public:
    // `instead` has the signature and the calling convention of the function. The library must be loaded or loadable.
    PatchedFunction(const wchar_t* library, const char* name, void* instead);
    ~PatchedFunction();
    PatchedFunction(const PatchedFunction&) = delete;
    PatchedFunction& operator=(const PatchedFunction&) = delete;

    // False where the function does not exist or its code cannot be changed: nothing is replaced.
    explicit operator bool() const noexcept { return code_ != nullptr; }

private:
    using Jump = std::array<unsigned char, 14>;
    void Write(const Jump& bytes) const noexcept;

    unsigned char* code_ = nullptr;
    Jump before_{};
};
