#include "tests/Support/BitmapBuilder.h"

#include <QBuffer>
#include <QImage>
#include <QtEndian>

#include <cstdlib>

namespace vantor::test {

QByteArray le16(int value) {
    const auto stored = qToLittleEndian(static_cast<std::uint16_t>(value));
    return QByteArray(reinterpret_cast<const char *>(&stored), sizeof stored);
}

QByteArray le32(std::int64_t value) {
    const auto stored = qToLittleEndian(static_cast<std::uint32_t>(value));
    return QByteArray(reinterpret_cast<const char *>(&stored), sizeof stored);
}

QByteArray BitmapBuilder::dib() const {
    const bool core = headerSize == 12;
    QByteArray bytes = le32(headerSize);
    if (core) {
        bytes += le16(width) + le16(height) + le16(1) + le16(depth);
    } else {
        bytes += le32(width) + le32(height) + le16(1) + le16(depth) + le32(compression);
        bytes += le32(pixels.size()) + le32(0) + le32(0) +
                 le32(colorsUsed.value_or(static_cast<std::uint32_t>(palette.size()))) + le32(0) + masks;
        if (bytes.size() < headerSize)
            bytes.append(headerSize - bytes.size(), '\0');
    }
    for (const RGBColor &color : palette) {
        bytes += static_cast<char>(color.blue);
        bytes += static_cast<char>(color.green);
        bytes += static_cast<char>(color.red);
        if (!core)
            bytes += '\0';
    }
    return bytes + pixels;
}

QByteArray BitmapBuilder::bmp() const {
    const QByteArray bitmap = dib();
    const std::int64_t start = pixelOffset.value_or(14 + bitmap.size() - pixels.size());
    return QByteArray("BM") + le32(14 + bitmap.size()) + le32(0) + le32(start) + bitmap;
}

QByteArray solidBMP(int width, int height, RGBColor color) {
    QByteArray row;
    for (int x = 0; x < width; ++x) {
        row += static_cast<char>(color.blue);
        row += static_cast<char>(color.green);
        row += static_cast<char>(color.red);
    }
    row.append((4 - row.size() % 4) % 4, '\0');
    return BitmapBuilder{.width = width, .height = height, .pixels = row.repeated(std::abs(height))}.bmp();
}

QByteArray solidPNG(QSize size, QRgb color) {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QByteArray solidCursorDib(int side, RGBColor color) {
    const char pixel[] = {static_cast<char>(color.blue), static_cast<char>(color.green),
                          static_cast<char>(color.red), '\xFF'};
    const QByteArray mask((side + 31) / 32 * 4 * side, '\0');
    return BitmapBuilder{.width = side,
                         .height = 2 * side,
                         .depth = 32,
                         .pixels = QByteArray(pixel, sizeof pixel).repeated(side * side) + mask}
        .dib();
}

QByteArray cursorDirectory(int type, const std::vector<DirectoryEntry> &entries) {
    QByteArray directory = le16(0) + le16(type) + le16(static_cast<int>(entries.size()));
    QByteArray data;
    const auto dataStart = directory.size() + 16 * static_cast<qsizetype>(entries.size());
    for (const DirectoryEntry &entry : entries) {
        directory += static_cast<char>(entry.width);
        directory += static_cast<char>(entry.height);
        directory += le16(0) + le16(entry.first) + le16(entry.second);
        directory += le32(entry.data.size()) + le32(dataStart + data.size());
        data += entry.data;
    }
    return directory + data;
}

QByteArray solidCursor(RGBColor color, QPoint hotSpot) {
    return cursorDirectory(
        2, {{.first = hotSpot.x(), .second = hotSpot.y(), .data = solidCursorDib(32, color)}});
}

QByteArray riffChunk(const char *id, const QByteArray &data) {
    return QByteArray(id) + le32(data.size()) + data + QByteArray(data.size() % 2, '\0');
}

QByteArray riffList(const char *form, const QByteArray &chunks) {
    return riffChunk("LIST", form + chunks);
}

QByteArray riffSteps(const char *id, const std::vector<std::uint32_t> &values) {
    QByteArray data;
    for (const std::uint32_t value : values)
        data += le32(value);
    return riffChunk(id, data);
}

QByteArray aniHeader(std::uint32_t rate) {
    return riffSteps("anih", {36, 1, 1, 0, 0, 0, 0, rate, 1});
}

QByteArray aniFile(const QByteArray &chunks) {
    return riffChunk("RIFF", "ACON" + chunks);
}

} // namespace vantor::test
