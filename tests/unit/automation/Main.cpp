#include <gtest/gtest.h>
#include <ole2.h>

#include "automation/App.h"

namespace App {
const wchar_t* const Title = L"AutomationTest";
const short Major = 1;
const short Minor = 2;
const short Revision = 3;
}  // namespace App

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    OleInitialize(nullptr);
    const int result = RUN_ALL_TESTS();
    OleUninitialize();
    return result;
}
