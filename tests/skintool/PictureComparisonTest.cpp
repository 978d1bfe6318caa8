#include "skintool/PictureComparison.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(PictureComparisonTest, CountsAndFramesWhatDiffers) {
    QImage picture(8, 6, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::blue);
    picture.setPixel(0, 0, qRgba(0, 0, 0, 0));
    QImage reference = picture.convertToFormat(QImage::Format_ARGB32);
    reference.setPixel(0, 0, qRgba(255, 255, 255, 0)); // as invisible as the other
    EXPECT_EQ(PictureComparison::compare(picture, reference).differingPixels, 0);

    reference.setPixel(2, 1, qRgb(0, 0, 254));
    reference.setPixel(5, 4, qRgba(0, 0, 255, 254));
    const PictureComparison result = PictureComparison::compare(picture, reference);
    EXPECT_EQ(result.differingPixels, 2);
    EXPECT_EQ(result.totalPixels, 48);
    EXPECT_EQ(result.bounds, QRect(2, 1, 4, 4));
    EXPECT_EQ(result.difference.pixel(2, 1), result.difference.pixel(5, 4));
    EXPECT_NE(result.difference.pixel(2, 1), result.difference.pixel(3, 3));
}
