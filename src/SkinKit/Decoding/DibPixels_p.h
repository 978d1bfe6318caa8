#pragma once

#include "SkinKit/Decoding/ByteReader.h"

#include <QByteArrayView>
#include <QImage>

#include <array>
#include <bit>
#include <cstdint>
#include <optional>

/// What bitmap files and the headerless bitmaps inside cursors have in common. Any thread.
namespace vantor::dib {

/// One pixel as it lies in memory: red, green, blue, 255.
using Pixel = std::uint32_t;

[[nodiscard]] constexpr Pixel pixel(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    return std::bit_cast<Pixel>(std::array<std::uint8_t, 4>{red, green, blue, 255});
}

enum Compression : std::uint32_t { uncompressed = 0, runLength8 = 1, runLength4 = 2, bitFields = 3 };

/// The fields of the 40-byte information header that matter, as they stand in the file.
struct InfoHeader {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint16_t depth = 0;
    std::uint32_t compression = uncompressed;
    std::uint32_t colorsUsed = 0;
};

/// Reads from behind the header-size field.
[[nodiscard]] std::optional<InfoHeader> readInfoHeader(ByteReader &reader);

/// Whether rows of this depth may be stored this way; the run-length forms are the caller's matter.
[[nodiscard]] bool isPlainLayout(std::uint32_t compression, int depth);

struct ChannelMasks {
    std::uint32_t red = 0xFF0000;
    std::uint32_t green = 0xFF00;
    std::uint32_t blue = 0xFF;

    bool operator==(const ChannelMasks &) const = default;
};

/// The masks of data without bit fields.
[[nodiscard]] ChannelMasks standardMasks(int depth);
[[nodiscard]] std::optional<ChannelMasks> readMasks(QByteArrayView data, std::int64_t position);

struct Palette {
    std::array<Pixel, 256> colors; ///< black from the palette's length on, so that no index needs a check
    std::int64_t end = 0;          ///< position in the data behind the last entry
};

/// The palette that starts at `start`; depths above 8 bits have none. Nothing if it leaves the data.
[[nodiscard]] std::optional<Palette> readPalette(QByteArrayView data, std::int64_t start, int depth,
                                                 std::uint32_t colorsUsed, int entryBytes);

/// Bytes of one stored row: whole 32-bit words.
[[nodiscard]] std::int64_t rowBytes(int width, int depth);

/// Uncompressed rows inside some data; the caller has checked the dimensions and the depth.
struct Rows {
    std::int64_t start = 0;
    int width = 0;
    int height = 0;
    int depth = 0;
    bool topDown = false;
};

/// The rows as Format_RGBX8888, or a null image when the data does not hold them all.
[[nodiscard]] QImage decodeRows(QByteArrayView data, const Rows &rows, const Palette &palette,
                                const ChannelMasks &masks);

} // namespace vantor::dib
