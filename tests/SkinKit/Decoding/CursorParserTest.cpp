#include "SkinKit/Decoding/CursorParser.h"

#include "SkinKit/Decoding/AniParser.h"
#include "SkinKit/Decoding/CursorBitmap.h"
#include "tests/Support/BitmapBuilder.h"

#include <gtest/gtest.h>

using namespace vantor;
using namespace vantor::test;

namespace {

constexpr RGBColor red{255, 0, 0};
constexpr RGBColor blue{0, 0, 255};

DirectoryEntry entry(int side, RGBColor color, int bitCount = 0) {
    return {side % 256, side % 256, 3, bitCount, solidCursorDib(side, color)};
}

/// Size, hot spot and bytes of the first pixel, such as "32x32 @3,4 ff0000ff".
std::string summary(const std::optional<SkinCursor::Frame> &frame) {
    if (!frame)
        return "none";
    EXPECT_EQ(frame->image.format(), QImage::Format_RGBA8888_Premultiplied);
    const QByteArray pixel(reinterpret_cast<const char *>(frame->image.constBits()), 4);
    return QString::asprintf("%dx%d @%d,%d %s", frame->image.width(), frame->image.height(),
                             frame->hotSpot.x(), frame->hotSpot.y(), pixel.toHex().constData())
        .toStdString();
}

} // namespace

TEST(CursorBitmapTest, ChoosesTheEntryThatFitsBest) {
    const QByteArray halfRed = solidPNG({48, 48}, qRgba(255, 0, 0, 128));
    const BitmapBuilder shallow{32, 64, 24, QByteArray(32 * 96 + 128, '\x80')};
    std::vector<DirectoryEntry> fourBroken(4, {32, 32, 0, 0, "no picture"});
    fourBroken.push_back(entry(16, red));
    const struct {
        const char *name;
        int type;
        std::vector<DirectoryEntry> entries;
        const char *expected;
    } rows[] = {
        {"closest to 32", 2, {entry(16, blue), entry(32, red, 4), entry(48, blue)}, "32x32 @3,4 ff0000ff"},
        {"an icon has no hot spot", 1, {entry(32, red, 4)}, "32x32 @0,0 ff0000ff"},
        {"deeper first", 2, {{32, 32, 0, 99, shallow.dib()}, entry(32, red)}, "32x32 @3,0 ff0000ff"},
        {"a tie goes to the earlier", 2, {entry(16, red), entry(48, blue)}, "16x16 @3,0 ff0000ff"},
        {"the best is broken", 2, {{32, 32, 0, 0, "none"}, entry(16, red)}, "16x16 @3,0 ff0000ff"},
        {"zero means 256", 2, {entry(256, red)}, "256x256 @3,0 ff0000ff"},
        {"empty entries do not count as broken", 2, {{}, {}, {}, {}, entry(16, red)}, "16x16 @3,0 ff0000ff"},
        {"the search ends at the fourth broken one", 2, fourBroken, "none"},
        {"a PNG, premultiplied", 2, {{48, 48, 1, 2, halfRed}}, "48x48 @1,2 80000080"},
        {"a PNG that is too wide", 2, {{32, 32, 0, 0, solidPNG({257, 1}, 0)}}, "none"},
        {"64 entries", 2, std::vector(64, entry(1, red)), "1x1 @3,0 ff0000ff"},
        {"65 entries", 2, std::vector(65, entry(1, red)), "none"},
        {"another type", 3, {entry(32, red)}, "none"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const QByteArray file = cursorDirectory(row.type, row.entries);
        EXPECT_EQ(summary(CursorBitmap::decode(file)), row.expected);
    }
    QByteArray outside = cursorDirectory(2, {entry(32, blue), entry(16, red)});
    outside.replace(14, 4, le32(outside.size()));
    EXPECT_EQ(summary(CursorBitmap::decode(outside)), "16x16 @3,0 ff0000ff");
    EXPECT_EQ(summary(CursorBitmap::decode("\1" + outside.sliced(1))), "none");
}

TEST(CursorBitmapTest, AlphaAndMask) {
    const QByteArray black = le32(0);
    const QByteArray masked = QByteArray::fromHex("80000000");
    const QByteArray unmasked = le32(0), clear = QByteArray::fromHex("0000ff00");
    const QByteArray standard = le32(0xFF0000) + le32(0xFF00) + le32(0xFF);
    const struct {
        const char *name;
        BitmapBuilder bitmap;
        const char *expected;
    } rows[] = {
        {"own alpha, mask ignored", {1, 2, 32, QByteArray::fromHex("0000ff80") + masked}, "80000080"},
        {"own alpha needs no mask", {1, 2, 32, QByteArray::fromHex("0000ffff")}, "ff0000ff"},
        {"no alpha seen: opaque", {1, 2, 32, clear + unmasked}, "ff0000ff"},
        {"no alpha seen: masked", {1, 2, 32, clear + masked}, "00000000"},
        {"no alpha seen: mask missing", {1, 2, 32, clear + masked.first(3)}, "none"},
        {"24 bits, masked", {1, 2, 24, black + masked}, "00000000"},
        {"1 bit, opaque", {1, 2, 1, masked + unmasked, {blue, red}}, "ff0000ff"},
        {"rows and mask from the bottom", {1, 4, 24, black + clear + masked + unmasked}, "ff0000ff"},
        {"standard masks", {1, 2, 32, QByteArray::fromHex("0000ffff"), {}, 3, standard}, "ff0000ff"},
        {"other masks", {1, 2, 32, clear, {}, 3, standard.sliced(4) + black}, "none"},
        {"run lengths", {1, 2, 8, QByteArray(64, '\1'), {red, blue}, 1}, "none"},
        {"a core header", {1, 2, 24, QByteArray(64, '\1'), {}, 0, {}, 12}, "none"},
        {"too wide", {257, 2, 1, QByteArray(80, '\1'), {red, blue}}, "none"},
        {"too high", {1, 514, 1, QByteArray(4 * 514, '\1'), {red, blue}}, "none"},
        {"no rows besides the mask", {1, 1, 1, QByteArray(80, '\1'), {red, blue}}, "none"},
        {"top-down", {1, -2, 1, QByteArray(80, '\1'), {red, blue}}, "none"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const auto frame = CursorBitmap::decode(cursorDirectory(2, {{.data = row.bitmap.dib()}}));
        const std::string text = summary(frame);
        EXPECT_EQ(text.substr(text.rfind(' ') + 1), row.expected);
    }
}

TEST(CursorParserTest, StillPointersHaveOneFrameAndOneStep) {
    const auto cursor = CursorParser::parse(solidCursor(red, {5, 6}));
    ASSERT_TRUE(cursor && cursor->frames.size() == 1);
    EXPECT_EQ(summary(cursor->frames[0]), "32x32 @5,6 ff0000ff");
    EXPECT_EQ(cursor->steps, (std::vector<SkinCursor::Step>{{}}));
    EXPECT_EQ(CursorParser::parse(aniFile(aniHeader(4))), std::nullopt);
}

TEST(CursorParserTest, UpscaledRepeatsEveryPixelExactly) {
    QImage image(11, 3, QImage::Format_RGBA8888_Premultiplied);
    for (int x = 0; x < 33; ++x)
        image.setPixel(x % 11, x / 11, qRgba(x, 0, 0, 255));
    for (const int factor : {-1, 1, 2, 13})
        EXPECT_EQ((SkinCursor::Frame{image, {}}.upscaled(factor)),
                  image.scaled(image.size() * std::max(factor, 1)));
}

TEST(AniParserTest, StepsFollowSequenceAndRates) {
    const QByteArray a = riffChunk("icon", solidCursor(red));
    const QByteArray b = riffChunk("icon", solidCursor(blue));
    const QByteArray broken = riffChunk("icon", "odd");
    const QByteArray head = aniHeader(7);
    QByteArray shortHead = riffChunk("anih", QByteArray(35, '\0'));
    QByteArray nested = riffList("fram", a);
    for (int depth = 1; depth < AniParser::maxDepth; ++depth)
        nested = riffList("more", nested);
    const struct {
        const char *name;
        QByteArray chunks;
        const char *expected; // colours of the frames, then frame:jiffies for each step
    } rows[] = {
        {"a step per frame at the default rate", head + riffList("fram", a + b), "RB 0:7 1:7"},
        {"rates shorter than the steps", head + riffSteps("rate", {3}) + a + b, "RB 0:3 1:7"},
        {"a sequence", head + a + b + riffSteps("seq ", {1, 0, 1}) + riffSteps("rate", {1, 2, 3, 4}),
         "RB 1:1 0:2 1:3"},
        {"a zero rate is one jiffy", aniHeader(0) + a, "R 0:1"},
        {"a step keeps its own rate when others are dropped",
         head + broken + b + riffSteps("seq ", {0, 9, 1}) + riffSteps("rate", {1, 2, 3}), "B 0:3"},
        {"no step left", head + a + riffSteps("seq ", {1}), "none"},
        {"no header", a, "none"},
        {"a short header", shortHead + a, "none"},
        {"no frame", head + riffSteps("seq ", {0}), "none"},
        {"unknown chunks, odd lengths", riffChunk("junk", "x") + head + a, "R 0:7"},
        {"deepest nesting", head + nested, "R 0:7"},
        {"one deeper", head + riffList("more", nested), "none"},
        {"a list without a form", head + a + riffChunk("LIST", "ab"), "none"},
        {"a chunk beyond its parent", head + a + "junk" + le32(1), "none"},
        {"a length near 2^32", head + a + "junk" + le32(0xFFFFFFFF), "none"},
        {"a few bytes after the last chunk", head + a + "junk", "R 0:7"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const auto cursor = CursorParser::parse(aniFile(row.chunks));
        std::string text = cursor ? "" : "none";
        if (cursor) {
            for (const SkinCursor::Frame &frame : cursor->frames)
                text += frame.image.constBits()[0] == 255 ? 'R' : 'B';
            for (const SkinCursor::Step &step : cursor->steps)
                text += ' ' + std::to_string(step.frame) + ':' + std::to_string(step.duration.count());
        }
        EXPECT_EQ(text, row.expected);
    }
}

TEST(AniParserTest, CapsAndLyingLengths) {
    const QByteArray icon = riffChunk("icon", cursorDirectory(2, {entry(1, red)}));
    const auto many = CursorParser::parse(aniFile(aniHeader(1) + icon.repeated(AniParser::maxFrames + 1)));
    ASSERT_TRUE(many);
    EXPECT_EQ(many->frames.size(), AniParser::maxFrames);
    const std::vector<std::uint32_t> sequence(AniParser::maxSteps + 1, 0);
    const auto longest = CursorParser::parse(aniFile(aniHeader(1) + icon + riffSteps("seq ", sequence)));
    ASSERT_TRUE(longest);
    EXPECT_EQ(longest->steps.size(), AniParser::maxSteps);

    const QByteArray broken = riffChunk("icon", "odd").repeated(AniParser::maxFailures);
    EXPECT_TRUE(CursorParser::parse(aniFile(aniHeader(1) + icon + broken + icon)));
    EXPECT_FALSE(CursorParser::parse(aniFile(aniHeader(1) + broken + icon)));
    EXPECT_TRUE(CursorParser::parse(aniFile(aniHeader(1) + icon + icon), 2));
    EXPECT_FALSE(CursorParser::parse(aniFile(aniHeader(1) + icon + icon), 1));

    const QByteArray file = aniFile(aniHeader(1) + icon);
    for (qsizetype size = 0; size < file.size(); ++size)
        EXPECT_EQ(CursorParser::parse(file.first(size)), std::nullopt) << size;
    QByteArray lying = file;
    EXPECT_TRUE(CursorParser::parse(lying.replace(4, 4, le32(0xFFFFFFFF))));
    EXPECT_FALSE(CursorParser::parse(lying.replace(4, 4, le32(4 + 44))));
    EXPECT_FALSE(CursorParser::parse(lying.replace(4, 4, le32(0))));
    EXPECT_FALSE(CursorParser::parse(QByteArray(file).replace("ACON", "WAVE")));
}
