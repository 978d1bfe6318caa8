#include "SkinKit/Layout/EQLayout.h"

#include "SkinKit/Layout/EqualizerWindowControl.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

using namespace vantor;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(EQLayoutTest, AGainHasOnePlaceOnItsSlider) {
    const struct {
        double gain;
        double value;
        int frame;
        int thumbY;
    } rows[] = {{12, 100, 27, 0}, {0, 50, 14, 25},  {-12, 0, 0, 51},       {6, 75, 20, 12},
                {-6, 25, 7, 38},  {99, 100, 27, 0}, {-infinity, 0, 0, 51}, {notANumber, 0, 0, 51}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.gain);
        const double value = EQLayout::value(row.gain);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(EQLayout::frame(value), row.frame);
        EXPECT_EQ(EQLayout::thumbY(value), row.thumbY);
    }
    for (const auto &[value, gain] :
         {std::pair(-1.0, -12.0), {12.5, -9.0}, {50.0, 0.0}, {250.0, 12.0}, {notANumber, -12.0}})
        EXPECT_EQ(EQLayout::gain(value), gain) << value;
}

TEST(EQLayoutTest, ThePointerHoldsTheThumbByItsMiddleAndTheMiddleCatches) {
    for (const auto &[y, value] :
         {std::pair(-50.0, 100.0), {5.5, 100.0}, {31.0, 50.0}, {56.5, 0.0}, {500.0, 0.0}})
        EXPECT_EQ(EQLayout::valueForPointerY(y), value) << y;
    for (const auto &[value, snapped] : {std::pair(45.0, 45.0), {45.01, 50.0}, {54.0, 50.0}, {55.0, 55.0}})
        EXPECT_EQ(EQLayout::snapped(value), snapped) << value;
}

TEST(EQLayoutTest, BandsAndFramesLieInRows) {
    for (const auto &[x, band] : {std::pair(77.0, 0),
                                  {95.9, 0},
                                  {96.0, 1},
                                  {239.0, 8},
                                  {240.0, 9},
                                  {260.0, 9},
                                  {-1e300, 0},
                                  {infinity, 0},
                                  {notANumber, 0}})
        EXPECT_EQ(EQLayout::bandIndex(x), band) << x;
    const QRect sheet(13, 164, 209, 129);
    EXPECT_EQ(EQLayout::bandFrameRect(sheet, 0), QRect(13, 164, 14, 63));
    EXPECT_EQ(EQLayout::bandFrameRect(sheet, 13), QRect(208, 164, 14, 63));
    EXPECT_EQ(EQLayout::bandFrameRect(sheet, 14), QRect(13, 229, 14, 63));
}

TEST(EQLayoutTest, APointFindsItsControl) {
    using Control = EqualizerWindowControl;
    const std::tuple<QPoint, bool, Control> rows[] = {
        {{254, 3}, false, Control::shade},    {{14, 18}, false, Control::on},
        {{40, 18}, false, Control::autoLoad}, {{217, 29}, false, Control::presets},
        {{35, 50}, false, Control::none},     {{45, 43}, false, Control::plus12},
        {{66, 64}, false, Control::zero},     {{78, 38}, false, bandControl(0)},
        {{95, 100}, false, bandControl(0)},   {{253, 60}, false, bandControl(9)},
        {{254, 60}, false, Control::none},    {{254, 3}, true, Control::shade},
        {{61, 4}, true, Control::volume},     {{206, 9}, true, Control::balance},
        {{160, 6}, true, Control::none},      {{21, 13}, true, Control::none},
    };
    for (const auto &[point, shaded, expected] : rows) {
        const Control found = equalizerWindowControlAt(point, shaded);
        EXPECT_EQ(found, expected) << point.x() << ", " << point.y() << ": " << static_cast<int>(found);
    }
}
