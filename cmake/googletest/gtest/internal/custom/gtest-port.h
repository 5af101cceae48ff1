#pragma once

// GoogleTest's place for what a platform lacks. With the win32 thread model the compiler has no std::mutex and no
// std::condition_variable, which GoogleTest's own Notification needs; the rest of its thread support is plain Windows.
// This keeps assertions usable from any thread.
#include <atomic>

extern "C" __declspec(dllimport) void __stdcall Sleep(unsigned long milliseconds);

namespace testing {
namespace internal {
class Notification {
public:
    Notification() = default;
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;
    void Notify() { notified_ = true; }
    void WaitForNotification() {
        while (!notified_) Sleep(1);
    }

private:
    std::atomic<bool> notified_{false};
};
}  // namespace internal
}  // namespace testing

#define GTEST_HAS_NOTIFICATION_ 1
