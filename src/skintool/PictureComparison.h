#pragma once

#include <QImage>
#include <QRect>

namespace vantor {

/// How two pictures of one size differ. Pixels that are fully transparent in both count as equal.
struct PictureComparison {
    int differingPixels = 0;
    int totalPixels = 0;
    QRect bounds;      ///< of the differing pixels; empty when there are none
    QImage difference; ///< the picture in faint grey, differing pixels in red

    /// The sizes must agree.
    [[nodiscard]] static PictureComparison compare(const QImage &picture, const QImage &reference);
};

} // namespace vantor
