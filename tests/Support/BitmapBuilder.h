#pragma once

#include "SkinKit/RGBColor.h"

#include <QByteArray>
#include <QPoint>
#include <QRgb>
#include <QSize>

#include <cstdint>
#include <optional>
#include <vector>

/// Makes bitmap, cursor and animation files byte by byte: sound ones by default, broken ones by setting a
/// field to a lie.
namespace vantor::test {

[[nodiscard]] QByteArray le16(int value);
[[nodiscard]] QByteArray le32(std::int64_t value);

/// The parts of a device-independent bitmap.
struct BitmapBuilder {
    int width = 0;
    int height = 0; ///< negative for top-down
    int depth = 24;
    QByteArray pixels = {}; ///< rows as they lie in the file, or a run-length stream
    std::vector<RGBColor> palette = {};
    int compression = 0;
    QByteArray masks = {}; ///< 12 bytes in bit-field data
    int headerSize = 40;   ///< 12 makes a core header
    std::optional<std::int64_t> pixelOffset = {};
    std::optional<std::uint32_t> colorsUsed = {}; ///< the palette's length unless set

    /// Without the file header, as in cursors.
    [[nodiscard]] QByteArray dib() const;
    [[nodiscard]] QByteArray bmp() const;
};

/// A whole 24-bit bitmap file of one colour.
[[nodiscard]] QByteArray solidBMP(int width, int height, RGBColor color);

[[nodiscard]] QByteArray solidPNG(QSize size, QRgb color);

/// A headerless 32-bit bitmap of one opaque colour for a directory entry, with an all-zero mask.
[[nodiscard]] QByteArray solidCursorDib(int side, RGBColor color);

struct DirectoryEntry {
    int width = 32;
    int height = 32;
    int first = 0;  ///< hot spot x, or planes
    int second = 0; ///< hot spot y, or bit count
    QByteArray data = {};
};

/// An icon (type 1) or cursor (type 2) file.
[[nodiscard]] QByteArray cursorDirectory(int type, const std::vector<DirectoryEntry> &entries);

/// A 32 × 32 cursor of one colour.
[[nodiscard]] QByteArray solidCursor(RGBColor color, QPoint hotSpot = {});

[[nodiscard]] QByteArray riffChunk(const char *id, const QByteArray &data);
[[nodiscard]] QByteArray riffList(const char *form, const QByteArray &chunks);
[[nodiscard]] QByteArray riffSteps(const char *id, const std::vector<std::uint32_t> &values);
/// The header chunk of an animation; `rate` is the default display rate in jiffies.
[[nodiscard]] QByteArray aniHeader(std::uint32_t rate);
[[nodiscard]] QByteArray aniFile(const QByteArray &chunks);

} // namespace vantor::test
