#include "SkinKit/Decoding/CursorBitmap.h"

#include "SkinKit/Decoding/DibPixels_p.h"
#include "SkinKit/Decoding/PlatformImage.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>
#include <vector>

namespace vantor::CursorBitmap {

namespace {

constexpr std::uint16_t iconType = 1;
constexpr std::uint16_t cursorType = 2;
constexpr std::uint32_t informationHeaderBytes = 40;
constexpr std::uint32_t masksEnd = informationHeaderBytes + 12;
constexpr int preferredSide = 32;

struct Candidate {
    int distance = 0; ///< from 32 × 32, in pixels
    int bitCount = 0;
    int index = 0;
    QPoint hotSpot;
    QByteArrayView data;

    [[nodiscard]] bool isBetterThan(const Candidate &other) const {
        return std::tuple(distance, -bitCount, index) <
               std::tuple(other.distance, -other.bitCount, other.index);
    }
};

/// The header of a headerless bitmap: everything but the "BM" that a file would have in front.
struct DibHeader {
    std::uint32_t bytes = 0;
    dib::InfoHeader info;
};

std::optional<DibHeader> readDibHeader(QByteArrayView data) {
    ByteReader reader(data);
    const auto bytes = reader.u32();
    if (!bytes || *bytes < informationHeaderBytes || *bytes > data.size())
        return std::nullopt;
    const auto info = dib::readInfoHeader(reader);
    return info ? std::optional(DibHeader{*bytes, *info}) : std::nullopt;
}

/// Takes the fourth bytes of 32-bit rows (stored bottom-up) as alpha; false when all are zero, which is how
/// data without an alpha channel looks.
bool applyOwnAlpha(QByteArrayView rows, QImage &image) {
    const auto *source = reinterpret_cast<const uchar *>(rows.data());
    uchar alphaSeen = 0;
    for (qsizetype pixel = 0; pixel < rows.size() / 4; ++pixel)
        alphaSeen |= source[pixel * 4 + 3];
    if (alphaSeen == 0)
        return false;
    const int width = image.width();
    for (int y = image.height() - 1; y >= 0; --y) {
        uchar *line = image.scanLine(y);
        for (int x = 0; x < width; ++x, source += 4)
            line[x * 4 + 3] = source[3];
    }
    return true;
}

/// Clears the pixels whose mask bit is set; false when the mask leaves the data.
bool applyMask(QByteArrayView data, std::int64_t start, QImage &image) {
    const std::int64_t length = dib::rowBytes(image.width(), 1);
    const auto mask = ByteReader(data, start).bytes(length * image.height());
    if (!mask)
        return false;
    const auto *bits = reinterpret_cast<const uchar *>(mask->data());
    for (int y = image.height() - 1; y >= 0; --y, bits += length) {
        auto *line = reinterpret_cast<dib::Pixel *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if ((bits[x / 8] >> (7 - x % 8)) & 1)
                line[x] = 0;
        }
    }
    return true;
}

QImage decodeHeaderless(QByteArrayView data, const DibHeader &header) {
    const dib::InfoHeader &info = header.info;
    if (info.width < 1 || info.width > maxSide || info.height < 1 || info.height > 2 * maxSide)
        return {};
    // The stored height counts the colour rows and the mask below them.
    const int height = info.height / 2;
    if (height < 1 || !dib::isPlainLayout(info.compression, info.depth))
        return {};
    std::int64_t paletteStart = header.bytes;
    auto masks = std::optional(dib::standardMasks(info.depth));
    if (info.compression == dib::bitFields) {
        masks = dib::readMasks(data, informationHeaderBytes);
        paletteStart = std::max(header.bytes, masksEnd);
        if (!masks || (info.depth == 32 && *masks != dib::ChannelMasks{}))
            return {};
    }
    const auto palette = dib::readPalette(data, paletteStart, info.depth, info.colorsUsed, 4);
    if (!palette)
        return {};
    QImage image =
        dib::decodeRows(data, {palette->end, info.width, height, info.depth, false}, *palette, *masks);
    if (image.isNull() || !image.reinterpretAsFormat(QImage::Format_RGBA8888))
        return {};
    const std::int64_t colorBytes = dib::rowBytes(info.width, info.depth) * height;
    const bool ownAlpha = info.depth == 32 && applyOwnAlpha(data.sliced(palette->end, colorBytes), image);
    return ownAlpha || applyMask(data, palette->end + colorBytes, image) ? image : QImage();
}

QImage decodeEntry(QByteArrayView data) {
    // The two cannot be confused: read as a header size, the signature of any other format leaves the data.
    const auto header = readDibHeader(data);
    QImage image = header ? decodeHeaderless(data, *header) : QImage();
    if (image.isNull())
        image = PlatformImage::decode(data, maxSide, std::int64_t{maxSide} * maxSide);
    image.convertTo(QImage::Format_RGBA8888_Premultiplied);
    return image;
}

int sideFromByte(char byte) {
    return byte == 0 ? maxSide : static_cast<std::uint8_t>(byte);
}

std::optional<Candidate> makeCandidate(QByteArrayView file, QByteArrayView entry, std::uint16_t type) {
    ByteReader reader(entry, 4);
    const auto first = reader.u16();
    const auto second = reader.u16();
    const auto size = reader.u32();
    const auto offset = reader.u32();
    const auto data = ByteReader(file, offset.value_or(0)).bytes(size.value_or(0));
    if (!first || !second || !data || data->isEmpty())
        return std::nullopt;
    Candidate candidate;
    candidate.distance =
        std::abs(sideFromByte(entry[0]) - preferredSide) + std::abs(sideFromByte(entry[1]) - preferredSide);
    candidate.data = *data;
    if (type == cursorType)
        candidate.hotSpot = QPoint(*first, *second);
    // A cursor's directory has the hot spot where an icon's has the bit count; its pictures count as 32 bits.
    if (const auto header = readDibHeader(*data))
        candidate.bitCount = header->info.depth;
    else
        candidate.bitCount = type == iconType ? *second : 32;
    return candidate;
}

} // namespace

std::optional<SkinCursor::Frame> decode(QByteArrayView data) {
    ByteReader reader(data);
    const auto reserved = reader.u16();
    const auto type = reader.u16();
    const auto count = reader.u16();
    if (reserved != 0 || (type != iconType && type != cursorType) || !count || *count < 1 ||
        *count > maxEntries)
        return std::nullopt;
    std::vector<Candidate> candidates;
    for (int index = 0; index < *count; ++index) {
        const auto entry = reader.bytes(16);
        if (!entry)
            return std::nullopt;
        if (auto candidate = makeCandidate(data, *entry, *type)) {
            candidate->index = index;
            candidates.push_back(*candidate);
        }
    }
    std::ranges::sort(candidates, [](const Candidate &a, const Candidate &b) { return a.isBetterThan(b); });
    int failures = 0;
    for (const Candidate &candidate : candidates) {
        if (const QImage image = decodeEntry(candidate.data); !image.isNull())
            return SkinCursor::Frame{image, candidate.hotSpot};
        if (++failures == maxFailures)
            break;
    }
    return std::nullopt;
}

} // namespace vantor::CursorBitmap
