#include "SkinKit/Rendering/EQGraph.h"

#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Rendering/CubicSpline.h"

#include <gtest/gtest.h>

using namespace vantor;

namespace {

/// Line colours by row, the preamp's line and the background; `height` cuts the sheet off.
Skin graphSkin(int height) {
    QImage sheet(275, 315, QImage::Format_RGBX8888);
    sheet.fill(Qt::blue);
    for (int row = 0; row < 19; ++row)
        sheet.setPixel(115, 294 + row, qRgb(255, row, 0));
    for (int x = 0; x < 113; ++x)
        sheet.setPixel(x, 314, qRgb(0, 255, 0));
    Skin skin;
    skin.sheets.insert(QStringLiteral("EQMAIN"), sheet.copy(0, 0, 275, height));
    return skin;
}

} // namespace

// The second derivatives at these knots are 0, 0.75 and 0.
TEST(CubicSplineTest, BendsNaturallyBetweenTheKnots) {
    const std::vector<double> xs{0, 2, 4};
    const std::vector<double> ys{0, 1, 4};
    const std::vector<double> heights = CubicSpline::interpolate(xs, ys);
    const std::vector<double> expected{0, 0.3125, 1, 2.3125, 4};
    ASSERT_EQ(heights.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(heights[i], expected[i], 1e-12) << i;
    EXPECT_EQ(CubicSpline::interpolate(std::vector<double>{1}, std::vector<double>{7}),
              (std::vector<double>{7}));
    EXPECT_EQ(CubicSpline::interpolate(xs, std::vector<double>{7, 8}), (std::vector<double>{7, 8}));
}

TEST(EQGraphTest, KnotsAndThePreampRunOppositeWays) {
    for (const auto &[value, knot, preamp] : {std::tuple(100.0, 0, 18),
                                              {50.0, 9, 9},
                                              {0.0, 18, 0},
                                              {-4.0, 18, 0},
                                              {400.0, 0, 18},
                                              {75.0, 5, 14}}) {
        EXPECT_EQ(EQGraph::knotY(value), knot) << value;
        EXPECT_EQ(EQGraph::preampLineY(value), preamp) << value;
    }
}

TEST(EQGraphTest, TheCurveMeetsItsBandsAndStaysInside) {
    EXPECT_EQ(EQGraph::curve({}), std::vector<int>(109, 9));
    EXPECT_EQ(EQGraph::curve(std::vector<double>(12, 100)), std::vector<int>(109, 0));
    // Full steps up and down overshoot, which the edges cut off.
    const std::vector<double> wild{0, 100, 0, 0, 100, 100, 0, 100, 0, 100};
    const std::vector<int> rows = EQGraph::curve(wild);
    ASSERT_EQ(rows.size(), 109);
    for (std::size_t band = 0; band < wild.size(); ++band)
        EXPECT_EQ(rows[12 * band], EQGraph::knotY(wild[band])) << band;
    EXPECT_EQ(rows[30], 18);
    EXPECT_EQ(rows[54], 0);
}

TEST(EQGraphTest, ThePictureUsesTheSkinsColours) {
    const Skin skin = graphSkin(315);
    std::vector<double> values(10, 50);
    values[0] = 100;
    const std::optional<QImage> picture = EQGraph::render(skin, values, 100);
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->size(), QSize(113, 19));
    EXPECT_EQ(picture->pixel(0, 18), qRgb(0, 255, 0));
    EXPECT_EQ(picture->pixel(2, 0), qRgb(255, 0, 0));
    EXPECT_EQ(picture->pixel(110, 9), qRgb(255, 9, 0));
    EXPECT_EQ(picture->pixel(111, 9), qRgb(0, 0, 255));
    // No gap in the falling part: every row from the top to the middle is touched.
    for (int row = 0; row < 9; ++row) {
        bool touched = false;
        for (int x = 2; x < 15; ++x)
            touched = touched || picture->pixel(x, row) == qRgb(255, row, 0);
        EXPECT_TRUE(touched) << row;
    }
}

TEST(EQGraphTest, ASheetThatEndsEarlyGivesWhatItHas) {
    const std::vector<double> low(10, 0);
    EXPECT_EQ(EQGraph::render(graphSkin(294), low, 0), std::nullopt);
    EXPECT_EQ(EQGraph::render(Skin(), low, 0), std::nullopt);
    const std::optional<QImage> cut = EQGraph::render(graphSkin(300), low, 50);
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->pixel(50, 18), qRgb(255, 5, 0));
    EXPECT_EQ(cut->pixel(50, 10), qRgb(0, 0, 0));
}
