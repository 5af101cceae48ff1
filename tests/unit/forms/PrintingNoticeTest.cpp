#include "forms/Printer.h"

#include <gtest/gtest.h>
#include "support/TopWindow.h"

TEST(PrintingNotice, LeavesItsOwnerAsItWas) {
    const TopWindow owner;
    {
        const PrintingNotice notice(owner.Top());
        EXPECT_FALSE(IsWindowEnabled(owner.Top()));
    }
    EXPECT_TRUE(IsWindowEnabled(owner.Top()));
    EnableWindow(owner.Top(), FALSE);
    { const PrintingNotice notice(owner.Top()); }
    EXPECT_FALSE(IsWindowEnabled(owner.Top())) << "somebody else had disabled it";
}
