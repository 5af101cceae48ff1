#include "editor/Palette.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

namespace {

// White, black, and colours between them in every direction.
std::vector<COLORREF> Grounds() {
    std::vector<COLORREF> all = {RGB(255, 255, 225), RGB(30, 30, 30),    RGB(128, 128, 128),
                                 RGB(118, 118, 118), RGB(119, 119, 119), RGB(0, 0, 128)};
    for (int red = 0; red <= 255; red += 51)
        for (int green = 0; green <= 255; green += 51)
            for (int blue = 0; blue <= 255; blue += 51) all.push_back(RGB(red, green, blue));
    return all;
}

COLORREF TextOn(COLORREF window) {
    const COLORREF black = RGB(0, 0, 0);
    const COLORREF white = RGB(255, 255, 255);
    return ContrastOf(window, black) >= ContrastOf(window, white) ? black : white;
}

}  // namespace

TEST(Palette, ContrastIsThatOfTheGuidelines) {
    EXPECT_NEAR(21, ContrastOf(RGB(0, 0, 0), RGB(255, 255, 255)), 0.001);
    EXPECT_NEAR(21, ContrastOf(RGB(255, 255, 255), RGB(0, 0, 0)), 0.001);
    EXPECT_NEAR(1, ContrastOf(RGB(10, 20, 30), RGB(10, 20, 30)), 0.001);
    // As others have measured them.
    EXPECT_NEAR(4.54, ContrastOf(RGB(118, 118, 118), RGB(255, 255, 255)), 0.01);
    EXPECT_NEAR(3.998, ContrastOf(RGB(255, 0, 0), RGB(255, 255, 255)), 0.01);
    EXPECT_NEAR(8.59, ContrastOf(RGB(0, 0, 255), RGB(255, 255, 255)), 0.01);
}

TEST(Palette, CanBeReadOnEveryWindow) {
    for (const COLORREF window : Grounds()) {
        const COLORREF text = TextOn(window);
        const Palette palette = Palette::For(window, text);
        SCOPED_TRACE(testing::Message() << std::hex << window);
        EXPECT_EQ(CLR_DEFAULT, palette.Text[0]);
        EXPECT_EQ(CLR_DEFAULT, palette.Ground[0]);
        for (size_t mark = 1; mark < palette.Ground.size(); ++mark) {
            EXPECT_GE(ContrastOf(text, palette.Ground[mark]), 4.5) << mark;
            EXPECT_NE(window, palette.Ground[mark]) << mark;
        }
        for (size_t at = 1; at < palette.Text.size(); ++at) {
            EXPECT_GE(ContrastOf(palette.Text[at], window), 4.5) << at;
            for (size_t mark = 1; mark < palette.Ground.size(); ++mark)
                EXPECT_GE(ContrastOf(palette.Text[at], palette.Ground[mark]), 4.5) << at << " on " << mark;
        }
    }
}

TEST(Palette, TellsTheColoursApartOnUsualWindows) {
    for (const COLORREF window : {RGB(255, 255, 255), RGB(0, 0, 0), RGB(255, 255, 225), RGB(32, 32, 32)}) {
        const Palette palette = Palette::For(window, TextOn(window));
        std::set<COLORREF> text(palette.Text.begin(), palette.Text.end());
        std::set<COLORREF> grounds(palette.Ground.begin(), palette.Ground.end());
        EXPECT_EQ(palette.Text.size(), text.size());
        EXPECT_EQ(palette.Ground.size(), grounds.size());
        EXPECT_FALSE(text.contains(window));
        EXPECT_FALSE(text.contains(TextOn(window)));
    }
}

// A theme whose own text can hardly be read is no reason for colours that cannot.
TEST(Palette, DoesNotNeedATextThatReads) {
    const Palette palette = Palette::For(RGB(255, 255, 255), RGB(200, 200, 200));
    for (size_t at = 1; at < palette.Text.size(); ++at)
        EXPECT_GE(ContrastOf(palette.Text[at], RGB(255, 255, 255)), 4.5) << at;
}
