#include "HeapSweep.h"

#include <gtest/gtest.h>

// In every test program: the test that damaged the heap fails, and not one that comes later.
namespace {

class HeapSweep : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo&) override {
        EXPECT_TRUE(HeapsAreWhole()) << "a block of the heap is damaged";
    }
};

// Before the program's main function: the test library deletes it at the end.
[[maybe_unused]] const bool added = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new HeapSweep);
    return true;
}();

}  // namespace
