#include <gtest/gtest.h>
#include <ole2.h>

#include "Cases.h"
#include "support/EditorWindow.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    OleInitialize(nullptr);
    WatchCases();
    WhenShown::Limit = 300000;  // a window is shown for many cases; the cases themselves are watched
    const int result = RUN_ALL_TESTS();
    OleUninitialize();
    return result;
}
