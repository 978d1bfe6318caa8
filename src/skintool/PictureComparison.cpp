#include "skintool/PictureComparison.h"

namespace vantor {

namespace {

bool areEqual(QRgb a, QRgb b) {
    return a == b || (qAlpha(a) == 0 && qAlpha(b) == 0);
}

QRgb faint(QRgb pixel) {
    const int grey = 160 + qGray(pixel) * 3 / 8;
    return qRgb(grey, grey, grey);
}

} // namespace

PictureComparison PictureComparison::compare(const QImage &picture, const QImage &reference) {
    constexpr QRgb differs = qRgb(220, 0, 0);
    const QImage mine = picture.convertToFormat(QImage::Format_ARGB32);
    const QImage theirs = reference.convertToFormat(QImage::Format_ARGB32);
    PictureComparison result;
    result.totalPixels = mine.width() * mine.height();
    result.difference = QImage(mine.size(), QImage::Format_RGB32);
    for (int y = 0; y < mine.height(); ++y) {
        for (int x = 0; x < mine.width(); ++x) {
            const QRgb pixel = mine.pixel(x, y);
            const bool equal = areEqual(pixel, theirs.pixel(x, y));
            result.difference.setPixel(x, y, equal ? faint(pixel) : differs);
            if (equal)
                continue;
            ++result.differingPixels;
            result.bounds |= QRect(x, y, 1, 1);
        }
    }
    return result;
}

} // namespace vantor
