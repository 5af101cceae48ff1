#include <gtest/gtest.h>
#include <ole2.h>

#include <cstdlib>

namespace {

// The windows under test know the dots per inch of their screen; whoever measures them from a thread that does not is
// told scaled coordinates, by Windows and by Wine 10, but not by Wine 8. Before any window. BRV_UNAWARE in the
// environment: a host that knows nothing.
void BecomeAware() {
    if (std::getenv("BRV_UNAWARE") != nullptr) return;
    using Set = BOOL(WINAPI*)(DPI_AWARENESS_CONTEXT);
    const auto set = reinterpret_cast<Set>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetProcessDpiAwarenessContext")));
    if (set != nullptr) set(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
}

}  // namespace

int main(int argc, char** argv) {
    BecomeAware();
    testing::InitGoogleTest(&argc, argv);
    OleInitialize(nullptr);
    const int result = RUN_ALL_TESTS();
    OleUninitialize();
    return result;
}
