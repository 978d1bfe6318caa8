#include "Platform/PictureDecoder.h"

#include <QBuffer>
#include <QImageReader>

namespace vantor {

// Those of covers, and none with a life of their own, such as those that name further files.
static bool isAllowed(const QImageReader &reader, qint64 maxPixels) {
    static const QList<QByteArray> kinds{"jpeg", "png", "gif", "bmp", "webp"};
    if (!kinds.contains(reader.format()))
        return false;
    const QSize size = reader.size();
    return !size.isEmpty() && qint64(size.width()) * size.height() <= maxPixels;
}

bool isPicture(const QByteArray &bytes, qint64 maxPixels) {
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    return isAllowed(reader, maxPixels);
}

QImage decodePicture(const QByteArray &bytes, int largestSide, qint64 maxPixels) {
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    if (!isAllowed(reader, maxPixels))
        return {};
    const QSize size = reader.size();
    if (size.width() > largestSide || size.height() > largestSide) {
        const QSize scaled = size.scaled(largestSide, largestSide, Qt::KeepAspectRatio);
        reader.setScaledSize(scaled.expandedTo(QSize(1, 1)));
    }
    reader.setAutoTransform(true);
    return reader.read();
}

} // namespace vantor
