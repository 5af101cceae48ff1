#include "forms/Twips.h"

#include <gtest/gtest.h>
#include <limits>

#include "support/Errors.h"

TEST(Twips, RoundToTheNearestPixelHalvesToEven) {
    EXPECT_EQ(67, TwipsToPixels(1000, 96));
    EXPECT_EQ(433, TwipsToPixels(6500, 96));
    EXPECT_EQ(0, TwipsToPixels(7.5F, 96));
    EXPECT_EQ(2, TwipsToPixels(22.5F, 96));
    EXPECT_EQ(-67, TwipsToPixels(-1000, 96));
    EXPECT_EQ(100, TwipsToPixels(1000, 144));
    EXPECT_EQ(133, TwipsToPixels(1000, 192));
}

TEST(Twips, PixelsComeBackExactly) {
    for (const UINT dpi : {96U, 120U, 144U, 168U, 192U}) {
        for (int pixels = -3000; pixels < 5000; pixels += 7)
            EXPECT_EQ(pixels, TwipsToPixels(PixelsToTwips(pixels, dpi), dpi));
    }
    EXPECT_FLOAT_EQ(1005, PixelsToTwips(67, 96));
    EXPECT_FLOAT_EQ(10, PixelsToTwips(1, 144));
}

TEST(Twips, WholeOnesAreTheNearestHalvesToEven) {
    EXPECT_EQ(2409, WholeTwips(2408.57F));
    EXPECT_EQ(2408, WholeTwips(2408.43F));
    EXPECT_EQ(2408, WholeTwips(2407.5F));
    EXPECT_EQ(2406, WholeTwips(2406.5F));
    EXPECT_EQ(-21, WholeTwips(-20.7F));
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([] { WholeTwips(3e9F); }));
}

TEST(Twips, WhatNoWindowHoldsIsAnOverflow) {
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([] { TwipsToPixels(1e30F, 96); }));
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([] { TwipsToPixels(-1e30F, 96); }));
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([] { TwipsToPixels(std::numeric_limits<float>::quiet_NaN(), 96); }));
}
