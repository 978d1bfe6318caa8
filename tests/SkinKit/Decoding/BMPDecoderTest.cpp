#include "SkinKit/Decoding/BMPDecoder.h"

#include "tests/Support/BitmapBuilder.h"

#include <gtest/gtest.h>

#include <climits>

using namespace vantor;
using namespace vantor::test;

namespace {

const std::vector<RGBColor> colors = {{0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};

/// One letter a pixel (black is K), rows separated by bars; "none" for a null image.
std::string picture(const QImage &image) {
    if (image.isNull())
        return "none";
    EXPECT_EQ(image.format(), QImage::Format_RGBX8888);
    std::string rows;
    for (int y = 0; y < image.height(); ++y) {
        rows += y == 0 ? "" : "|";
        for (int x = 0; x < image.width(); ++x) {
            const uchar *p = image.constScanLine(y) + x * 4;
            const auto found = std::ranges::find(colors, RGBColor{p[0], p[1], p[2]});
            rows += p[3] == 255 && found != colors.end() ? "KRGBW"[found - colors.begin()] : '?';
        }
    }
    return rows;
}

QByteArray hex(const char *digits) {
    return QByteArray::fromHex(digits);
}

} // namespace

TEST(BMPDecoderTest, EveryLayoutYieldsItsPixels) {
    const QByteArray rgb = hex("0000ff 00ff00 0000"); // red, green, padding
    const QByteArray bw = hex("ffffff 000000 0000");
    const QByteArray masks565 = le32(0xF800) + le32(0x07E0) + le32(0x001F);
    const QByteArray masksWide = le32(0x3FF00000) + le32(0x000FFC00) + le32(0);
    const struct {
        const char *name;
        BitmapBuilder bitmap;
        const char *expected;
    } rows[] = {
        {"24 bits, bottom-up", {2, 2, 24, rgb + bw}, "WK|RG"},
        {"24 bits, top-down", {2, -2, 24, rgb + bw}, "RG|WK"},
        {"1 bit", {9, 1, 1, hex("a0800000"), {colors[1], colors[4]}}, "WRWRRRRRW"},
        {"4 bits, odd width", {3, 1, 4, hex("12400000"), colors}, "RGW"},
        {"core header and palette", {2, 1, 4, hex("34000000"), {16, colors[3]}, 0, {}, 12}, "BB"},
        {"8 bits, index beyond the palette", {4, 1, 8, hex("0104ff02"), colors}, "RWKG"},
        {"300 colours are 256", {1, 1, 8, hex("ff000000"), {256, colors[2]}, 0, {}, 40, {}, 300}, "G"},
        {"16 bits are 5-5-5", {4, 1, 16, hex("ff7f 007c e003 1f00")}, "WRGB"},
        {"32 bits, fourth byte ignored", {2, 1, 32, hex("0000ff00 00ff007f")}, "RG"},
        {"32 bits, 10-bit and absent masks", {2, 1, 32, hex("0000f03f 00fc0f00"), {}, 3, masksWide}, "RG"},
        {"masks inside a later header", {2, 1, 16, hex("00f8 e007"), {}, 3, masks565, 56}, "RG"},
        {"a mask with gaps", {1, 1, 32, hex("ff000000"), {}, 3, le32(0x81) + le32(0) + le32(0)}, "R"},
        {"offset into the palette", {1, 1, 8, hex("01000000"), colors, 0, {}, 40, 60}, "R"},
        {"offset behind the data", {1, 1, 8, hex("01000000"), colors, 0, {}, 40, 78}, "R"},
        {"offset over a gap", {1, 1, 24, hex("ffffffff 0000ff00"), {}, 0, {}, 40, 58}, "R"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const QByteArray file = row.bitmap.bmp();
        EXPECT_EQ(picture(BMPDecoder::decode(file)), row.expected);
        // A cut may turn a false offset into another rule's case.
        for (qsizetype size = 0; size < file.size() && !row.bitmap.pixelOffset; ++size)
            EXPECT_TRUE(BMPDecoder::decode(QByteArray(file.constData(), size)).isNull()) << size;
    }
}

TEST(BMPDecoderTest, RunLengthStreams) {
    const struct {
        const char *name;
        int depth;
        const char *stream;
        const char *expected; // 4 × 2
    } rows[] = {
        {"runs, the rest is entry 0", 8, "0201 0102 0000 0404 0001", "WWWW|RRGK"},
        {"a literal with padding", 8, "0003 010203 00 0104 0001", "KKKK|RGBW"},
        {"a delta skips over pixels", 8, "0101 0002 0101 0103 0001", "KKBK|RKKK"},
        {"a run is cut at the width", 8, "0601 0102 0000 0103 0001", "BKKK|RRRR"},
        {"reaching the height needs no end code", 8, "0401 0000 0402 0000", "GGGG|RRRR"},
        {"deltas beyond the width", 8, "0002 ff00 0002 ff00 0101 0001", "KKKK|KKKK"},
        {"no end code", 8, "0401 0000 0402", "none"},
        {"a literal longer than the data", 8, "0004 010203", "none"},
        {"a delta cut off", 8, "0002 01", "none"},
        {"nibbles alternate from the high one", 4, "0312 0103 0000 0441 0001", "WRWR|RGRK"},
        {"nibble literals of odd byte length", 4, "0005 123400 01 0000 0411 0001", "RRRR|RGBW"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const BitmapBuilder bitmap{4, 2, row.depth, hex(row.stream), colors, row.depth == 8 ? 1 : 2};
        EXPECT_EQ(picture(BMPDecoder::decode(bitmap.bmp())), row.expected);
    }
}

TEST(BMPDecoderTest, LyingFieldsAndCaps) {
    const QByteArray row(4096 / 8, '\0');
    const std::vector<RGBColor> two = {colors[0], colors[1]};
    const struct {
        const char *name;
        BitmapBuilder bitmap;
        bool accepted;
    } rows[] = {
        {"as many pixels as allowed", {4096, 2048, 1, row.repeated(2048), two}, true},
        {"a row more", {4096, 2049, 1, row.repeated(2049), two}, false},
        {"too wide", {4097, 1, 1, row.repeated(2), two}, false},
        {"too high", {1, 4097, 1, QByteArray(4 * 4097, '\0'), two}, false},
        {"top-down at the limit", {1, -4096, 1, QByteArray(4 * 4096, '\0'), two}, true},
        {"the least height", {1, INT_MIN, 1, row, two}, false},
        {"no width", {0, 1, 24, row}, false},
        {"no height", {1, 0, 24, row}, false},
        {"no such depth", {1, 1, 2, row, two}, false},
        {"no such header", {1, 1, 24, row, {}, 0, {}, 64}, false},
        {"top-down run lengths", {1, -1, 8, hex("01000001"), two, 1}, false},
        {"4-bit run lengths of 8 bits", {1, 1, 8, hex("01000001"), two, 2}, false},
        {"bit fields of 24 bits", {1, 1, 24, row, {}, 3}, false},
        {"embedded formats", {1, 1, 0, row, {}, 5}, false},
        {"the longest palette just fits", {1, 1, 8, QByteArray(1020, 0), two, 0, {}, 40, {}, 0}, true},
        {"and does not", {1, 1, 8, QByteArray(1019, 0), two, 0, {}, 40, {}, 0}, false},
    };
    for (const auto &[name, bitmap, accepted] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(!BMPDecoder::decode(bitmap.bmp()).isNull(), accepted);
    }
    EXPECT_TRUE(BMPDecoder::decode("XM" + solidBMP(1, 1, {}).sliced(2)).isNull());
}

// The row loops take several pixels a step; every width must come out the same, whatever is left at its end.
TEST(BMPDecoderTest, EveryWidthIsExact) {
    for (int width = 1; width <= 70; ++width) {
        QByteArray row;
        for (int index = 0; index < width * 3; ++index)
            row += static_cast<char>(index * 7);
        const QByteArray padded = row + QByteArray((4 - row.size() % 4) % 4, '\xEE');
        const QImage image = BMPDecoder::decode(BitmapBuilder{width, 1, 24, padded}.bmp());
        ASSERT_EQ(image.size(), QSize(width, 1));
        const auto level = [](int index) { return index * 7 % 256; };
        for (int x = 0; x < width; ++x)
            ASSERT_EQ(image.pixel(x, 0), qRgb(level(x * 3 + 2), level(x * 3 + 1), level(x * 3))) << width;
    }
}
