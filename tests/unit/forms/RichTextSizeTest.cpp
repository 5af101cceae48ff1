#include "forms/RichTextSize.h"

#include <gtest/gtest.h>
#include <richedit.h>

#include "forms/RichTextBox.h"
#include "support/TopWindow.h"

// A font of 10 points whose lines are 16 pixels high at 96 dots per inch.

TEST(RichTextSizeTest, AControlThatMindsItsWindowIsLeftAlone) {
    EXPECT_FLOAT_EQ(1, RichTextCorrection(24, 24, 144, 96));
    EXPECT_FLOAT_EQ(1, RichTextCorrection(16, 16, 96, 192));
    // Rounding, and room between the lines.
    EXPECT_FLOAT_EQ(1, RichTextCorrection(26, 24, 144, 96));
    EXPECT_FLOAT_EQ(1, RichTextCorrection(20, 19, 120, 96));
}

TEST(RichTextSizeTest, AControlThatMindsTheSystemAloneIsZoomed) {
    EXPECT_FLOAT_EQ(1.5F, RichTextCorrection(16, 24, 144, 96));
    EXPECT_FLOAT_EQ(2, RichTextCorrection(16, 32, 192, 96));
    EXPECT_FLOAT_EQ(0.5F, RichTextCorrection(32, 16, 96, 192));
    EXPECT_FLOAT_EQ(1.25F, RichTextCorrection(16, 20, 120, 96));
}

TEST(RichTextSizeTest, AControlThatMindsItTwiceIsZoomedBack) {
    EXPECT_FLOAT_EQ(1 / 1.5F, RichTextCorrection(36, 24, 144, 96));
    EXPECT_FLOAT_EQ(2, RichTextCorrection(8, 16, 96, 192));
}

TEST(RichTextSizeTest, WhatNobodyCanExplainIsNoReasonToZoom) {
    EXPECT_FLOAT_EQ(1, RichTextCorrection(100, 16, 144, 96));
    EXPECT_FLOAT_EQ(1, RichTextCorrection(0, 16, 144, 96));
    EXPECT_FLOAT_EQ(1, RichTextCorrection(16, 0, 144, 96));
    EXPECT_FLOAT_EQ(1, RichTextCorrection(30, 16, 96, 96));
    EXPECT_FLOAT_EQ(1, RichTextCorrection(16, 16, 0, 96));
    EXPECT_FLOAT_EQ(1, RichTextCorrection(16, 16, 96, 0));
    EXPECT_FLOAT_EQ(1, RichTextCorrection(-1, 1, 96, 48));
}

TEST(RichTextSizeTest, OneOfAnythingIsEnough) {
    EXPECT_FLOAT_EQ(2, RichTextCorrection(1, 2, 192, 96));
    EXPECT_FLOAT_EQ(0.5F, RichTextCorrection(2, 1, 192, 96));
    EXPECT_FLOAT_EQ(2, RichTextCorrection(8, 16, 1, 2));
    EXPECT_FLOAT_EQ(2, RichTextCorrection(8, 16, 2, 1));
}

TEST(RichTextSizeTest, LinesAreMeasuredAsTheyAreShown) {
    const TopWindow top;
    RichTextBox box;
    box.Create(top.Handle(), 2);
    box.Move(0, 0, 6000, 4000);
    EXPECT_EQ(0, LineDistance(box.Handle()));
    box.SetText(L"one\r\ntwo\r\nthree");
    const int line = LineDistance(box.Handle());
    EXPECT_GT(line, 8);
    box.Send(EM_SETZOOM, 2, 1);
    EXPECT_NEAR(2 * line, LineDistance(box.Handle()), 2);
    // Here every screen has the dots of the system, and nothing is made up for.
    EXPECT_FLOAT_EQ(1, RichTextCorrection(top.Handle(), L"Courier New", 10));
}
