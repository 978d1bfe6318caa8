#include "SkinKit/Decoding/BMPDecoder.h"

#include "SkinKit/Decoding/DibPixels_p.h"

#include <algorithm>
#include <cstdlib>

namespace vantor::BMPDecoder {

namespace {

constexpr int fileHeaderBytes = 14;
constexpr int coreHeaderBytes = 12;
constexpr int masksPosition = fileHeaderBytes + 40;
constexpr int masksBytes = 12;

struct Header {
    std::uint32_t bytes = 0; ///< of the bitmap header, without the file header
    std::uint32_t pixelOffset = 0;
    int width = 0;
    int height = 0;
    bool topDown = false;
    int depth = 0;
    std::uint32_t compression = dib::uncompressed;
    std::uint32_t colorsUsed = 0;
    int paletteEntryBytes = 4;
};

bool readCoreHeader(ByteReader &reader, Header &header) {
    const auto width = reader.u16();
    const auto height = reader.u16();
    const auto planes = reader.u16();
    const auto depth = reader.u16();
    if (!width || !height || !planes || !depth)
        return false;
    header.width = *width;
    header.height = *height;
    header.depth = *depth;
    header.paletteEntryBytes = 3;
    return true;
}

bool readInformationHeader(ByteReader &reader, Header &header) {
    const auto info = dib::readInfoHeader(reader);
    if (!info || info->height < -maxSide)
        return false;
    header.width = info->width;
    header.height = std::abs(info->height);
    header.topDown = info->height < 0;
    header.depth = info->depth;
    header.compression = info->compression;
    header.colorsUsed = info->colorsUsed;
    return true;
}

bool isAcceptable(const Header &header) {
    if (header.width < 1 || header.width > maxSide || header.height < 1 || header.height > maxSide)
        return false;
    if (header.width * header.height > maxPixels)
        return false;
    switch (header.compression) {
    case dib::runLength8:
        return header.depth == 8 && !header.topDown;
    case dib::runLength4:
        return header.depth == 4 && !header.topDown;
    default:
        return dib::isPlainLayout(header.compression, header.depth);
    }
}

std::optional<Header> readHeader(QByteArrayView data) {
    if (!data.startsWith("BM"))
        return std::nullopt;
    ByteReader reader(data, 10);
    const auto pixelOffset = reader.u32();
    const auto bytes = reader.u32();
    if (!pixelOffset || !bytes || data.size() < fileHeaderBytes + std::int64_t{*bytes})
        return std::nullopt;
    Header header{.bytes = *bytes, .pixelOffset = *pixelOffset};
    constexpr std::uint32_t informationHeaders[] = {40, 52, 56, 108, 124};
    const bool read = *bytes == coreHeaderBytes ? readCoreHeader(reader, header)
                      : std::ranges::find(informationHeaders, *bytes) != std::end(informationHeaders)
                          ? readInformationHeader(reader, header)
                          : false;
    return read && isAcceptable(header) ? std::optional(header) : std::nullopt;
}

/// Plays a run-length stream into an image. Rows are counted from the bottom; what falls outside is dropped.
class RunLengthPlayer {
  public:
    RunLengthPlayer(QByteArrayView stream, int depth, const dib::Palette &palette, QImage &image)
        : m_reader(stream), m_depth(depth), m_palette(palette), m_bits(image.bits()),
          m_bytesPerLine(image.bytesPerLine()), m_width(image.width()), m_height(image.height()) {}

    /// False when the data ends before the bitmap does.
    bool play() {
        while (m_row < m_height) {
            const auto pair = m_reader.bytes(2);
            if (!pair)
                return false;
            const auto count = static_cast<std::uint8_t>((*pair)[0]);
            const auto value = static_cast<std::uint8_t>((*pair)[1]);
            if (count > 0)
                drawRun(count, value);
            else if (value == endOfBitmap)
                return true;
            else if (!escape(value))
                return false;
        }
        return true;
    }

  private:
    static constexpr std::uint8_t endOfLine = 0;
    static constexpr std::uint8_t endOfBitmap = 1;
    static constexpr std::uint8_t delta = 2;

    bool escape(std::uint8_t code) {
        if (code == endOfLine) {
            ++m_row;
            m_column = 0;
            return true;
        }
        const int literalBytes = m_depth == 8 ? code : (code + 1) / 2;
        const auto operand = m_reader.bytes(code == delta ? 2 : literalBytes);
        if (!operand)
            return false;
        const auto *bytes = reinterpret_cast<const std::uint8_t *>(operand->data());
        if (code == delta) {
            advance(bytes[0]);
            m_row += bytes[1];
            return true;
        }
        drawLiterals(bytes, code);
        if (literalBytes % 2 != 0)
            m_reader.setPosition(m_reader.position() + 1);
        return true;
    }

    void drawRun(int count, std::uint8_t value) {
        dib::Pixel *target = line() + m_column;
        const int visible = advance(count);
        if (m_depth == 8) {
            std::fill_n(target, visible, m_palette.colors[value]);
            return;
        }
        const dib::Pixel pair[] = {m_palette.colors[value >> 4], m_palette.colors[value & 15]};
        for (int index = 0; index < visible; ++index)
            target[index] = pair[index % 2];
    }

    void drawLiterals(const std::uint8_t *bytes, int count) {
        dib::Pixel *target = line() + m_column;
        const int visible = advance(count);
        for (int index = 0; index < visible; ++index) {
            const int value =
                m_depth == 8 ? bytes[index] : (bytes[index / 2] >> (index % 2 == 0 ? 4 : 0)) & 15;
            target[index] = m_palette.colors[static_cast<std::size_t>(value)];
        }
    }

    [[nodiscard]] dib::Pixel *line() const {
        return reinterpret_cast<dib::Pixel *>(m_bits + (m_height - 1 - m_row) * m_bytesPerLine);
    }

    /// Moves the column, which stops at the width, behind which everything is dropped; returns how many of
    /// the pixels lie inside.
    int advance(int count) {
        const int visible = std::min(count, m_width - m_column);
        m_column += visible;
        return visible;
    }

    ByteReader m_reader;
    int m_depth;
    const dib::Palette &m_palette;
    uchar *m_bits;
    qsizetype m_bytesPerLine;
    int m_width;
    int m_height;
    int m_row = 0;
    int m_column = 0;
};

} // namespace

QImage decode(QByteArrayView data) {
    const auto header = readHeader(data);
    if (!header)
        return {};
    auto masks = std::optional(dib::standardMasks(header->depth));
    std::int64_t paletteStart = fileHeaderBytes + std::int64_t{header->bytes};
    if (header->compression == dib::bitFields) {
        masks = dib::readMasks(data, masksPosition);
        if (header->bytes == 40)
            paletteStart += masksBytes;
    }
    if (!masks)
        return {};
    const auto palette =
        dib::readPalette(data, paletteStart, header->depth, header->colorsUsed, header->paletteEntryBytes);
    if (!palette)
        return {};
    const bool trustOffset = header->pixelOffset >= palette->end && header->pixelOffset < data.size();
    const std::int64_t start = trustOffset ? header->pixelOffset : palette->end;
    if (header->compression == dib::uncompressed || header->compression == dib::bitFields)
        return dib::decodeRows(data, {start, header->width, header->height, header->depth, header->topDown},
                               *palette, *masks);

    QImage image(header->width, header->height, QImage::Format_RGBX8888);
    if (image.isNull())
        return {};
    std::fill_n(reinterpret_cast<dib::Pixel *>(image.bits()), header->width * header->height,
                palette->colors[0]);
    RunLengthPlayer player(data.sliced(start), header->depth, *palette, image);
    return player.play() ? image : QImage();
}

} // namespace vantor::BMPDecoder
