#include "AudioCore/Analysis/VisBars.h"

#include <gtest/gtest.h>

using namespace vantor;

static std::vector<float> level(float value) {
    return std::vector<float>(VisBars::columnCount, value);
}

TEST(VisBarsTest, FourColumnsShowTheirMean) {
    const std::tuple<const char *, std::vector<float>, size_t, int> rows[] = {
        {"mean, truncated", {0.25F, 0.25F, 0.25F, 0.5F}, 3, 5},
        {"each capped before the mean", {1, 0, 0, 0}, 0, 3},
        {"columns beyond the spectrum", {0.5F, 0.5F}, 0, 4},
        {"the last group has three columns", level(1), 74, 11},
        {"not a level", {NAN, -1, 0.5F, 0.5F}, 0, 4}};
    for (const auto &[name, spectrum, column, height] : rows) {
        VisBars bars;
        bars.step(spectrum);
        EXPECT_EQ(bars.heights[column], height) << name;
    }
}

TEST(VisBarsTest, ThinLinesShowEachColumnItsOwn) {
    VisBars bars;
    bars.columnsPerBar = 1;
    bars.step(std::vector<float>{0.25F, 0.5F, 1});
    EXPECT_EQ((std::array{bars.heights[0], bars.heights[1], bars.heights[2], bars.heights[3]}),
              (std::array{4, 8, 15, 0}));
}

TEST(VisBarsTest, ABarFallsFromTheTopInTwentySteps) {
    VisBars bars;
    bars.step(level(1));
    std::vector<int> heights;
    for (int step = 0; step < 20; ++step) {
        EXPECT_GT(bars.fallingBars[0], 0);
        bars.step({});
        heights.push_back(bars.heights[0]);
    }
    EXPECT_EQ(heights, (std::vector{14, 14, 13, 12, 11, 11, 10, 9, 8, 8, 7, 6, 5, 5, 4, 3, 2, 2, 1, 0}));
    EXPECT_EQ(bars.fallingBars[0], 0);
}

TEST(VisBarsTest, APeakFallsFasterAndFasterAndHides) {
    VisBars bars;
    EXPECT_LE(bars.peaks[0], -2);
    bars.step(level(1));
    EXPECT_EQ(bars.peaks[0], 16);
    for (const int position : {3834, 3830, 3826, 3822}) { // drops of 3.3 … 4.39 after the first 3
        bars.step({});
        EXPECT_EQ(bars.peaks[0], 15);
        EXPECT_EQ(bars.peakPositions[0], position);
    }
    int steps = 5;
    for (; bars.peaks[0] > 0 && steps < 100; ++steps)
        bars.step({});
    EXPECT_EQ(bars.peaks[0], -2);
    // The sum of the drops, 3 (1.1ⁿ − 1) / 0.1, passes the 14 levels down to the bottom row at n = 51.
    EXPECT_NEAR(steps, 52, 1);
    bars.step(level(0.5F)); // caught again
    EXPECT_EQ(bars.peaks[0], 9);
    EXPECT_EQ(bars.peakPositions[0], 8 * 256 - 3);
}
