#pragma once

#include <QByteArrayView>
#include <QImage>

#include <cstdint>

/// PNG, JPEG and GIF pictures from untrusted bytes, read by Qt. Any thread.
namespace vantor::PlatformImage {

/// The first picture of the data, in whatever pixel format it has and without its texts, or a null image. A
/// picture of unknown size, with a side above `maxSide` or of more than `maxPixels` is refused before its
/// pixels are touched, and so is a JPEG of more than 100 scans. Bitmaps, icons and cursors belong to our own
/// decoders; every other format is refused, because nobody draws skins in it and its reader's work is not
/// bounded by the size of the picture.
[[nodiscard]] QImage decode(QByteArrayView data, int maxSide, std::int64_t maxPixels);

} // namespace vantor::PlatformImage
