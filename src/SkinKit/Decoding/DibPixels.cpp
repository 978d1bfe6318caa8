#include "SkinKit/Decoding/DibPixels_p.h"

#include <QtEndian>

#include <algorithm>

#if defined(__x86_64__) || defined(__i386__)
#include <tmmintrin.h>
#endif

namespace vantor::dib {

namespace {

/// One channel of a 16- or 32-bit word, scaled to 0–255. Values of up to 8 bits, which is nearly all there
/// are, come from a table instead of a division.
class Channel {
  public:
    explicit Channel(std::uint32_t mask)
        : m_mask(mask), m_shift(mask == 0 ? 0 : std::countr_zero(mask)),
          m_maximum(mask == 0 ? 1 : (std::uint64_t{1} << std::popcount(mask)) - 1) {
        for (std::uint32_t value = 0; value < m_scaled.size() && value <= m_mask >> m_shift; ++value)
            m_scaled[value] = scale(value);
    }

    [[nodiscard]] std::uint8_t operator()(std::uint32_t word) const {
        const std::uint32_t value = (word & m_mask) >> m_shift;
        return value < m_scaled.size() ? m_scaled[value] : scale(value);
    }

  private:
    // A mask with gaps can hold values above its maximum.
    [[nodiscard]] std::uint8_t scale(std::uint64_t value) const {
        return static_cast<std::uint8_t>(std::min<std::uint64_t>(value * 255 / m_maximum, 255));
    }

    std::uint32_t m_mask;
    int m_shift;
    std::uint64_t m_maximum;
    std::array<std::uint8_t, 256> m_scaled{};
};

struct Channels {
    explicit Channels(const ChannelMasks &masks) : red(masks.red), green(masks.green), blue(masks.blue) {}

    [[nodiscard]] Pixel operator()(std::uint32_t word) const {
        return pixel(red(word), green(word), blue(word));
    }

    Channel red;
    Channel green;
    Channel blue;
};

void decodeRow1(const uchar *source, Pixel *target, int width, const Palette &palette) {
    for (int x = 0; x < width; ++x)
        target[x] = palette.colors[(source[x / 8] >> (7 - x % 8)) & 1];
}

void decodeRow4(const uchar *source, Pixel *target, int width, const Palette &palette) {
    for (int x = 0; x + 1 < width; x += 2) {
        target[x] = palette.colors[source[x / 2] >> 4];
        target[x + 1] = palette.colors[source[x / 2] & 15];
    }
    if (width % 2 != 0)
        target[width - 1] = palette.colors[source[width / 2] >> 4];
}

// A table look-up a pixel is what the processor's load units allow; gathering instructions are no faster.
void decodeRow8(const uchar *source, Pixel *target, int width, const Palette &palette) {
    for (int x = 0; x < width; ++x)
        target[x] = palette.colors[source[x]];
}

template <typename Word>
void decodeRowWords(const uchar *source, Pixel *target, int width, const Channels &channels) {
    for (int x = 0; x < width; ++x)
        target[x] = channels(qFromLittleEndian<Word>(source + x * qsizetype{sizeof(Word)}));
}

void decodeRow24(const uchar *source, Pixel *target, int width) {
    for (int x = 0; x < width; ++x, source += 3)
        target[x] = pixel(source[2], source[1], source[0]);
}

void decodeRow32(const uchar *source, Pixel *target, int width) {
    for (int x = 0; x < width; ++x) {
        const auto word = qFromLittleEndian<std::uint32_t>(source + qsizetype{x} * 4);
        target[x] = qToLittleEndian((word >> 16 & 0xFF) | (word & 0xFF00) | (word & 0xFF) << 16 | 0xFF000000);
    }
}

using RowFunction = void (*)(const uchar *, Pixel *, int);

#if defined(__x86_64__) || defined(__i386__)
// Four pixels a step. A load takes 16 bytes, of which 24-bit pixels use 12: the loop ends while the four
// surplus bytes still belong to the row.
__attribute__((target("ssse3"))) void decodeRow24Ssse3(const uchar *source, Pixel *target, int width) {
    const __m128i order = _mm_setr_epi8(2, 1, 0, -1, 5, 4, 3, -1, 8, 7, 6, -1, 11, 10, 9, -1);
    const __m128i opaque = _mm_set1_epi32(static_cast<int>(0xFF000000));
    int x = 0;
    for (; width - x >= 6; x += 4) {
        const __m128i packed = _mm_loadu_si128(reinterpret_cast<const __m128i *>(source + x * 3));
        const __m128i pixels = _mm_or_si128(_mm_shuffle_epi8(packed, order), opaque);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(target + x), pixels);
    }
    decodeRow24(source + x * 3, target + x, width - x);
}
#endif

RowFunction fastestRow24() {
#if defined(__x86_64__) || defined(__i386__)
    if (__builtin_cpu_supports("ssse3"))
        return decodeRow24Ssse3;
#endif
    return decodeRow24;
}

} // namespace

std::optional<InfoHeader> readInfoHeader(ByteReader &reader) {
    const auto width = reader.u32();
    const auto height = reader.u32();
    const auto planes = reader.u16();
    const auto depth = reader.u16();
    const auto compression = reader.u32();
    const auto sizeAndResolution = reader.bytes(12);
    const auto colorsUsed = reader.u32();
    if (!width || !height || !planes || !depth || !compression || !sizeAndResolution || !colorsUsed)
        return std::nullopt;
    return InfoHeader{.width = static_cast<std::int32_t>(*width),
                      .height = static_cast<std::int32_t>(*height),
                      .depth = *depth,
                      .compression = *compression,
                      .colorsUsed = *colorsUsed};
}

bool isPlainLayout(std::uint32_t compression, int depth) {
    switch (depth) {
    case 1:
    case 4:
    case 8:
    case 24:
        return compression == uncompressed;
    case 16:
    case 32:
        return compression == uncompressed || compression == bitFields;
    default:
        return false;
    }
}

ChannelMasks standardMasks(int depth) {
    return depth == 16 ? ChannelMasks{0x7C00, 0x03E0, 0x001F} : ChannelMasks{};
}

std::optional<ChannelMasks> readMasks(QByteArrayView data, std::int64_t position) {
    ByteReader reader(data, position);
    const auto red = reader.u32();
    const auto green = reader.u32();
    const auto blue = reader.u32();
    if (!red || !green || !blue)
        return std::nullopt;
    return ChannelMasks{*red, *green, *blue};
}

std::optional<Palette> readPalette(QByteArrayView data, std::int64_t start, int depth,
                                   std::uint32_t colorsUsed, int entryBytes) {
    const std::uint32_t possible = depth <= 8 ? 1U << depth : 0;
    const std::uint32_t length = colorsUsed != 0 && colorsUsed <= possible ? colorsUsed : possible;
    ByteReader reader(data, start);
    const auto entries = reader.bytes(std::int64_t{length} * entryBytes);
    if (!entries)
        return std::nullopt;
    Palette palette;
    palette.colors.fill(pixel(0, 0, 0));
    palette.end = reader.position();
    const auto *entry = reinterpret_cast<const uchar *>(entries->data());
    for (std::uint32_t index = 0; index < length; ++index, entry += entryBytes)
        palette.colors[index] = pixel(entry[2], entry[1], entry[0]);
    return palette;
}

std::int64_t rowBytes(int width, int depth) {
    return (std::int64_t{width} * depth + 31) / 32 * 4;
}

QImage decodeRows(QByteArrayView data, const Rows &rows, const Palette &palette, const ChannelMasks &masks) {
    const std::int64_t length = rowBytes(rows.width, rows.depth);
    const auto stored = ByteReader(data, rows.start).bytes(length * rows.height);
    if (!stored)
        return {};
    QImage image(rows.width, rows.height, QImage::Format_RGBX8888);
    if (image.isNull())
        return {};
    const auto *source = reinterpret_cast<const uchar *>(stored->data());
    uchar *bits = image.bits();
    const qsizetype bytesPerLine = image.bytesPerLine();
    const auto eachRow = [&](auto decodeRow) {
        for (int row = 0; row < rows.height; ++row) {
            const int line = rows.topDown ? row : rows.height - 1 - row;
            decodeRow(source + row * length, reinterpret_cast<Pixel *>(bits + line * bytesPerLine),
                      rows.width);
        }
    };
    switch (rows.depth) {
    case 1:
        eachRow([&](const uchar *from, Pixel *to, int width) { decodeRow1(from, to, width, palette); });
        break;
    case 4:
        eachRow([&](const uchar *from, Pixel *to, int width) { decodeRow4(from, to, width, palette); });
        break;
    case 8:
        eachRow([&](const uchar *from, Pixel *to, int width) { decodeRow8(from, to, width, palette); });
        break;
    case 16:
        eachRow([channels = Channels(masks)](const uchar *from, Pixel *to, int width) {
            decodeRowWords<std::uint16_t>(from, to, width, channels);
        });
        break;
    case 24:
        eachRow(fastestRow24());
        break;
    case 32:
        if (masks == ChannelMasks{})
            eachRow(decodeRow32);
        else
            eachRow([channels = Channels(masks)](const uchar *from, Pixel *to, int width) {
                decodeRowWords<std::uint32_t>(from, to, width, channels);
            });
        break;
    default:
        return {};
    }
    return image;
}

} // namespace vantor::dib
