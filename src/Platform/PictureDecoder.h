#pragma once

#include <QByteArray>
#include <QImage>

namespace vantor {

/// Decodes a picture from outside, scaled down to fit a square of `largestSide` pixels. A null image for what
/// is none of the usual kinds, is damaged, or claims to have more than `maxPixels` pixels. Any thread.
[[nodiscard]] QImage decodePicture(const QByteArray &bytes, int largestSide, qint64 maxPixels);

/// Whether it is of a usual kind and claims to have no more than `maxPixels` pixels; it may still be damaged.
/// Any thread.
[[nodiscard]] bool isPicture(const QByteArray &bytes, qint64 maxPixels);

} // namespace vantor
