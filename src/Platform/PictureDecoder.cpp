#include "Platform/PictureDecoder.h"

#include <QBuffer>
#include <QImageReader>

namespace vantor {

QImage decodePicture(const QByteArray &bytes, int largestSide, qint64 maxPixels) {
    // Those of covers, and none with a life of their own, such as those that name further files.
    static const QList<QByteArray> kinds{"jpeg", "png", "gif", "bmp", "webp"};
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    if (!kinds.contains(reader.format()))
        return {};
    const QSize size = reader.size();
    if (size.isEmpty() || qint64(size.width()) * size.height() > maxPixels)
        return {};
    if (size.width() > largestSide || size.height() > largestSide) {
        const QSize scaled = size.scaled(largestSide, largestSide, Qt::KeepAspectRatio);
        reader.setScaledSize(scaled.expandedTo(QSize(1, 1)));
    }
    reader.setAutoTransform(true);
    return reader.read();
}

} // namespace vantor
