#include "SkinKit/Layout/MainSliders.h"

#include "SkinKit/Sprites/SkinSprites.h"

#include <gtest/gtest.h>

#include <limits>

using namespace vantor;
using namespace vantor::MainSliders;

static constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
static constexpr float infinity = std::numeric_limits<float>::infinity();

TEST(MainSlidersTest, ThumbFollowsTheFractionAndThePointerHoldsItsMiddle) {
    const std::pair<double, int> thumbs[] = {{-1, 107}, {0, 107},   {0.5, 133},       {0.52, 134},
                                             {1, 158},  {1e9, 158}, {notANumber, 107}};
    for (const auto &[fraction, x] : thumbs)
        EXPECT_EQ(Slider::volume.thumbX(fraction), x) << fraction;

    const std::pair<double, double> pointers[] = {{107, 0}, {114, 0},  {139.5, 0.5},
                                                  {165, 1}, {1000, 1}, {notANumber, 0}};
    for (const auto &[x, fraction] : pointers)
        EXPECT_EQ(Slider::volume.fraction(x), fraction) << x;
    EXPECT_EQ(Slider::position.fraction(16 + 14.5 + 219), 1);
    EXPECT_EQ((Slider{{0, 0}, {10, 10}, {4, 4}, 0, 0}.fraction(8)), 0);
}

TEST(MainSlidersTest, LevelsChooseTheirFrames) {
    const std::pair<float, int> volumes[] = {{0.053F, 0}, {0.054F, 1}, {0.5F, 13},    {1.0F, 27},
                                             {9.0F, 27},  {-1.0F, 0},  {infinity, 0}, {-infinity, 0}};
    for (const auto &[volume, frame] : volumes)
        EXPECT_EQ(volumeFrame(volume), frame) << volume;
    const std::pair<float, int> balances[] = {{0.03F, 0},  {-0.5F, 13}, {0.5F, 13},
                                              {-1.0F, 27}, {5.0F, 27},  {-infinity, 0}};
    for (const auto &[balance, frame] : balances)
        EXPECT_EQ(balanceFrame(balance), frame) << balance;

    // The last frame must still lie inside the strip that the catalogue names.
    const Sprite strip = SkinSprites::byName().value(QStringLiteral("MAIN_BALANCE_BACKGROUND")).sprite;
    EXPECT_EQ(frameRect(strip, 2), QRect(9, 30, 38, 13));
    EXPECT_TRUE(strip.rect().contains(frameRect(strip, frameCount - 1)));
}

TEST(MainSlidersTest, BalanceSnapsAndConvertsBothWays) {
    const std::pair<double, double> snaps[] = {{-0.2499, 0}, {0.25, 0.25}, {-0.25, -0.25}, {notANumber, 0}};
    for (const auto &[from, to] : snaps)
        EXPECT_EQ(snappedBalance(from), to) << from;
    for (const auto &[from, to] : {std::pair(0.25, -0.5), {-4, -1}, {4, 1}, {notANumber, 0}})
        EXPECT_EQ(balance(from), to) << from;
    for (const auto &[from, to] : {std::pair(-0.5, 0.25), {-7, 0}, {7, 1}, {notANumber, 0.5}})
        EXPECT_EQ(fraction(from), to) << from;
}

TEST(MainSlidersTest, ShadeSegmentAndThumbChangeAtDifferentFractions) {
    using enum ShadeSegment;
    const std::tuple<double, ShadeSegment, const char *> cases[] = {
        {0.24, left, "_LEFT"},    {0.25, center, "_LEFT"}, {0.33, center, "_LEFT"},
        {0.34, center, ""},       {0.65, center, ""},      {0.66, center, "_RIGHT"},
        {0.74, center, "_RIGHT"}, {0.75, right, "_RIGHT"}, {notANumber, left, "_LEFT"}};
    for (const auto &[place, segment, thumb] : cases) {
        EXPECT_EQ(shadeSegment(place), segment) << place;
        EXPECT_EQ(shadePositionThumbName(place).toStdString(),
                  std::string("MAIN_SHADE_POSITION_THUMB") + thumb)
            << place;
    }
}
