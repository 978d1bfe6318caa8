#include "SkinKit/Decoding/PlatformImage.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>

namespace vantor::PlatformImage {

namespace {

bool isWithin(QSize size, int maxSide, std::int64_t maxPixels) {
    return size.width() >= 1 && size.width() <= maxSide && size.height() >= 1 && size.height() <= maxSide &&
           std::int64_t{size.width()} * size.height() <= maxPixels;
}

} // namespace

QImage decode(QByteArrayView data, int maxSide, std::int64_t maxPixels) {
    static constexpr QByteArrayView refused[] = {"bmp", "dib", "ico", "cur", "svg", "svgz"};
    QByteArray bytes = QByteArray::fromRawData(data.data(), data.size());
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    const QByteArray format = QImageReader::imageFormat(&buffer);
    if (format.isEmpty() || std::ranges::find(refused, QByteArrayView(format)) != std::end(refused))
        return {};
    QImageReader reader(&buffer, format);
    if (!isWithin(reader.size(), maxSide, maxPixels))
        return {};
    const QImage image = reader.read();
    return isWithin(image.size(), maxSide, maxPixels) ? image : QImage();
}

} // namespace vantor::PlatformImage
