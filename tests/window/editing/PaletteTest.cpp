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
    for (size_t mark = 1; mark < palette.Ground.size(); ++mark)
        EXPECT_NE(RGB(255, 255, 255), palette.Ground[mark]) << mark;
}

TEST(Palette, KeepsTheOwnTextReadableWhereItIsNeitherBlackNorWhite) {
    const COLORREF grey = RGB(110, 110, 110);
    const Palette palette = Palette::For(RGB(255, 255, 255), grey);
    for (size_t mark = 1; mark < palette.Ground.size(); ++mark) {
        EXPECT_NE(RGB(255, 255, 255), palette.Ground[mark]) << mark;
        EXPECT_GE(ContrastOf(grey, palette.Ground[mark]), 4.5) << mark;
    }
}

// What docs/accessibility.md tells of the colours: check-documents compares its tables with this one.
TEST(Palette, IsWhatTheDocumentsTell) {
    struct Row {
        COLORREF Window, Own;
        unsigned Colour;  // as it is written, red first
        double OnWindow, OnGrounds;
    };
    constexpr COLORREF White = RGB(255, 255, 255);
    constexpr COLORREF Black = RGB(0, 0, 0);
    constexpr COLORREF Dark = RGB(0x1E, 0x1E, 0x1E);
    // clang-format off
    constexpr Row Texts[] = {
        {White, Black, 0x0000C8, 11.45, 6.69}, {White, Black, 0x820082, 9.24, 5.40}, {White, Black, 0xA31515, 7.85, 4.58},
        {White, Black, 0x005D5D, 7.71, 4.50},  {White, Black, 0x005D00, 8.18, 4.78}, {White, Black, 0x754800, 7.83, 4.57},
        {Dark, White, 0x83B6FF, 8.02, 4.54},   {Dark, White, 0xDD9BFF, 8.10, 4.59},  {Dark, White, 0xEDA08E, 7.95, 4.50},
        {Dark, White, 0x78D2D2, 9.48, 5.37},   {Dark, White, 0x82C86E, 8.28, 4.69},  {Dark, White, 0xE1C378, 9.75, 5.52},
    };
    struct GroundRow {
        COLORREF Window, Own;
        unsigned Ground;
        double OwnOnIt;
    };
    constexpr GroundRow Grounds[] = {
        {White, Black, 0xD1D1D1, 13.75}, {White, Black, 0xFFB2B2, 12.26}, {White, Black, 0xE8E8E8, 17.14},
        {Dark, White, 0x464646, 9.44},   {Dark, White, 0x611515, 12.91},  {Dark, White, 0x323232, 12.82},
    };
    // clang-format on
    const auto written = [](COLORREF colour) {
        return static_cast<unsigned>(GetRValue(colour) << 16 | GetGValue(colour) << 8 | GetBValue(colour));
    };
    for (size_t at = 0; at < std::size(Texts); ++at) {
        const Row& row = Texts[at];
        const Palette palette = Palette::For(row.Window, row.Own);
        const COLORREF colour = palette.Text[1 + at % 6];
        SCOPED_TRACE(at);
        EXPECT_EQ(row.Colour, written(colour));
        EXPECT_NEAR(row.OnWindow, ContrastOf(colour, row.Window), 0.005);
        double least = 21;
        for (size_t mark = 1; mark < palette.Ground.size(); ++mark)
            least = std::min(least, ContrastOf(colour, palette.Ground[mark]));
        EXPECT_NEAR(row.OnGrounds, least, 0.005);
    }
    for (size_t at = 0; at < std::size(Grounds); ++at) {
        const GroundRow& row = Grounds[at];
        const COLORREF ground = Palette::For(row.Window, row.Own).Ground[1 + at % 3];
        SCOPED_TRACE(at);
        EXPECT_EQ(row.Ground, written(ground));
        EXPECT_NEAR(row.OwnOnIt, ContrastOf(row.Own, ground), 0.005);
    }
}
