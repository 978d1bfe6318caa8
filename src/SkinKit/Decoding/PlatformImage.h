#pragma once

#include <QByteArrayView>
#include <QImage>

#include <cstdint>

/// Pictures in the formats that Qt reads, from untrusted bytes. Any thread.
namespace vantor::PlatformImage {

/// The first picture of the data, in whatever pixel format it has, or a null image. A picture of unknown
/// size, with a side above `maxSide` or of more than `maxPixels` is refused before its pixels are touched.
/// Bitmaps, icons and cursors belong to our own decoders and are refused, and so are vector formats, which
/// may refer to other files.
[[nodiscard]] QImage decode(QByteArrayView data, int maxSide, std::int64_t maxPixels);

} // namespace vantor::PlatformImage
