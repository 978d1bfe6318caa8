#include "SkinKit/Decoding/SkinCursor.h"

#include <algorithm>
#include <cstring>

namespace vantor {

// QImage::scaled steps through the source in fixed point, which drifts off the pixel grid at larger factors.
QImage SkinCursor::Frame::upscaled(int factor) const {
    factor = std::max(factor, 1);
    QImage large(image.width() * factor, image.height() * factor, image.format());
    if (image.isNull() || large.isNull())
        return {};
    for (int y = 0; y < image.height(); ++y) {
        const auto *source = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        auto *target = reinterpret_cast<QRgb *>(large.scanLine(y * factor));
        for (int x = 0; x < image.width(); ++x)
            std::fill_n(target + x * factor, factor, source[x]);
        for (int copy = 1; copy < factor; ++copy)
            std::memcpy(large.scanLine(y * factor + copy), target,
                        static_cast<std::size_t>(large.bytesPerLine()));
    }
    return large;
}

} // namespace vantor
