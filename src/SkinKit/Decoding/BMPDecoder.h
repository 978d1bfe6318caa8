#pragma once

#include <QByteArrayView>
#include <QImage>

/// Decodes Windows device-independent bitmaps from untrusted bytes. Any thread.
namespace vantor::BMPDecoder {

inline constexpr int maxSide = 4096;
inline constexpr int maxPixels = 8'388'608; ///< binds before maxSide does: 4096 × 4096 is refused

/// The picture as QImage::Format_RGBX8888, or a null image when the data breaks any rule. Depths 1, 4, 8, 16,
/// 24 and 32, both run-length forms and bit fields; no colour is transparent. Reads never leave the data, and
/// nothing is allocated before the dimensions passed the caps.
[[nodiscard]] QImage decode(QByteArrayView data);

} // namespace vantor::BMPDecoder
