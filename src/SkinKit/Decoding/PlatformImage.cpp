#include "SkinKit/Decoding/PlatformImage.h"

#include <QBuffer>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>

namespace vantor::PlatformImage {

namespace {

bool isWithin(QSize size, int maxSide, std::int64_t maxPixels) {
    return size.width() >= 1 && size.width() <= maxSide && size.height() >= 1 && size.height() <= maxSide &&
           std::int64_t{size.width()} * size.height() <= maxPixels;
}

constexpr QByteArrayView pngSignature("\x89PNG\r\n\x1a\n", 8);

QByteArray formatOf(QByteArrayView data) {
    if (data.startsWith(pngSignature))
        return "png";
    if (data.startsWith("\xff\xd8"))
        return "jpeg";
    return data.startsWith("GIF87a") || data.startsWith("GIF89a") ? "gif" : QByteArray();
}

/// The picture without its texts, profile and the like: Qt inflates every one of those, however large, before
/// it tells as much as the size. A chunk that is cut short is left to the reader to judge.
QByteArray withoutSideChunks(QByteArrayView png) {
    static constexpr QByteArrayView kept[] = {"IHDR", "PLTE", "tRNS", "IDAT", "IEND"};
    constexpr qsizetype frameBytes = 12; // length, name and checksum
    QByteArray result;
    result.reserve(png.size());
    result += png.first(pngSignature.size());
    for (QByteArrayView rest = png.sliced(pngSignature.size()); rest.size() >= frameBytes;) {
        const qsizetype length = frameBytes + qFromBigEndian<quint32>(rest.data());
        const QByteArrayView chunk = rest.first(std::min(length, rest.size()));
        if (std::ranges::find(kept, chunk.sliced(4, 4)) != std::end(kept))
            result += chunk;
        rest = rest.sliced(chunk.size());
    }
    return result;
}

/// A progressive JPEG of a megabyte can hold tens of thousands of passes over the whole picture. Every marker
/// is counted, embedded thumbnails included, so that none is missed.
bool hasTooManyScans(const QByteArray &jpeg) {
    constexpr qsizetype maxScans = 100;
    return jpeg.count("\xff\xda") > maxScans;
}

/// Comments of a picture would stay with it for as long as it lives.
QImage withoutTexts(const QImage &image) {
    if (image.textKeys().isEmpty())
        return image;
    const QImage view(image.constBits(), image.width(), image.height(), image.bytesPerLine(), image.format());
    QImage pixels = view.copy();
    pixels.setColorTable(image.colorTable());
    return pixels;
}

} // namespace

QImage decode(QByteArrayView data, int maxSide, std::int64_t maxPixels) {
    const QByteArray format = formatOf(data);
    if (format.isEmpty())
        return {};
    QByteArray bytes =
        format == "png" ? withoutSideChunks(data) : QByteArray::fromRawData(data.data(), data.size());
    if (format == "jpeg" && hasTooManyScans(bytes))
        return {};
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    if (!isWithin(reader.size(), maxSide, maxPixels))
        return {};
    const QImage image = reader.read();
    return isWithin(image.size(), maxSide, maxPixels) ? withoutTexts(image) : QImage();
}

} // namespace vantor::PlatformImage
