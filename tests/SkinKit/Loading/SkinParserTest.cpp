#include "SkinKit/Loading/SkinParser.h"

#include "SkinKit/Loading/SkinError.h"
#include "tests/Support/BitmapBuilder.h"

#include <QBuffer>
#include <QtEndian>

#include <gtest/gtest.h>
#include <zlib.h>

using namespace vantor;
using namespace vantor::test;

namespace {

using Files = QMap<QString, QByteArray>;

const QByteArray bitmap = solidBMP(4, 4, {10, 20, 30});
const QByteArray colors24 = QByteArray("1,2,3\n").repeated(24);

QString line(const char *text) {
    return QString::fromUtf8(text);
}

QStringList lines(std::initializer_list<const char *> texts) {
    QStringList result;
    for (const char *text : texts)
        result.append(line(text));
    return result;
}

/// A skin that lacks nothing.
Files complete() {
    Files files;
    for (const char *sheet :
         {"main", "cbuttons", "titlebar", "numbers", "nums_ex", "playpaus", "monoster", "posbar", "volume",
          "balance", "shufrep", "text", "eqmain", "eq_ex", "pledit", "gen"})
        files.insert(line(sheet) + QStringLiteral(".bmp"), bitmap);
    files.insert(QStringLiteral("viscolor.txt"), colors24);
    files.insert(QStringLiteral("pledit.txt"), "[Text]\nNormal=#00FF00");
    return files;
}

QByteArray png(QRgb color) {
    QImage image(3, 2, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor::fromRgba(color));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

Skin parse(const Files &files) {
    return SkinParser::parse(SkinArchive(files));
}

} // namespace

TEST(SkinParserTest, ReportsEveryGapOfABareSkin) {
    const Skin skin = parse({{QStringLiteral("main.bmp"), bitmap}});
    EXPECT_EQ(skin.warnings, lines({"Missing cbuttons.bmp", "Missing eqmain.bmp", "Missing monoster.bmp",
                                    "Missing playpaus.bmp", "Missing pledit.bmp", "Missing posbar.bmp",
                                    "Missing shufrep.bmp", "Missing text.bmp", "Missing titlebar.bmp",
                                    "Missing volume.bmp", "Missing numbers.bmp and nums_ex.bmp"}));
    EXPECT_EQ(
        skin.fallbacks,
        lines({"cbuttons.bmp missing; generated base", "eqmain.bmp missing; generated base",
               "monoster.bmp missing; generated base", "numbers.bmp missing; generated base",
               "playpaus.bmp missing; generated base", "pledit.bmp missing; generated base",
               "posbar.bmp missing; generated base", "shufrep.bmp missing; generated base",
               "text.bmp missing; generated base", "titlebar.bmp missing; generated base",
               "volume.bmp missing; generated base", "balance.bmp missing; balance slider uses volume.bmp",
               "eq_ex.bmp missing; EQ maximize button uses eqmain.bmp", "gen.bmp missing (not used in v1)",
               "viscolor.txt missing; Webamp defaults",
               "pledit.txt missing; Webamp default playlist colours"}));
    QStringList generated(skin.generatedSheets.cbegin(), skin.generatedSheets.cend());
    generated.sort();
    EXPECT_EQ(generated + QStringList(QStringLiteral("MAIN")),
              lines({"CBUTTONS", "EQMAIN", "MONOSTER", "NUMBERS", "PLAYPAUS", "PLEDIT", "POSBAR", "SHUFREP",
                     "TEXT", "TITLEBAR", "VOLUME", "MAIN"}));
    EXPECT_EQ(skin.sheets.size(), 12);
    EXPECT_EQ(skin.visColors, defaultVisColors);
}

TEST(SkinParserTest, ReportsWhatChangesInACompleteSkin) {
    const struct {
        const char *name;
        std::vector<const char *> removed;
        Files added;
        QStringList warnings;
        QStringList fallbacks;
    } rows[] = {
        {"nothing", {}, {}, {}, {}},
        {"no main",
         {"main.bmp"},
         {},
         lines({"Missing main.bmp"}),
         lines({"main.bmp missing; generated base"})},
        {"broken main",
         {},
         {{line("main.bmp"), "BM nothing"}},
         lines({"Undecodable main.bmp"}),
         lines({"main.bmp undecodable; generated base"})},
        {"a broken bitmap is not retried as PNG",
         {},
         {{line("gen.bmp"), "BM"}, {line("gen.png"), png(0)}},
         lines({"Undecodable gen.bmp"}),
         {}},
        {"a broken PNG is named as a bitmap",
         {"gen.bmp"},
         {{line("gen.png"), "\x89PNG\r\n"}},
         lines({"Undecodable gen.bmp"}),
         {}},
        {"no digits",
         {"numbers.bmp", "nums_ex.bmp"},
         {},
         lines({"Missing numbers.bmp and nums_ex.bmp"}),
         lines({"numbers.bmp missing; generated base"})},
        {"no plain digits", {"numbers.bmp"}, {}, {}, lines({"numbers.bmp missing; digits use nums_ex.bmp"})},
        {"no extended digits",
         {"nums_ex.bmp"},
         {},
         {},
         lines({"nums_ex.bmp missing; digits use numbers.bmp"})},
        {"broken plain digits",
         {"nums_ex.bmp"},
         {{line("numbers.bmp"), "x"}},
         lines({"Undecodable numbers.bmp"}),
         lines({"numbers.bmp undecodable; generated base", "nums_ex.bmp missing; digits use numbers.bmp"})},
        {"broken optional sheets are not missing",
         {},
         {{line("balance.bmp"), "x"}, {line("eq_ex.bmp"), "x"}},
         lines({"Undecodable balance.bmp", "Undecodable eq_ex.bmp"}),
         {}},
        {"optional sheets",
         {"balance.bmp", "eq_ex.bmp", "gen.bmp"},
         {},
         {},
         lines({"balance.bmp missing; balance slider uses volume.bmp",
                "eq_ex.bmp missing; EQ maximize button uses eqmain.bmp",
                "gen.bmp missing (not used in v1)"})},
        {"23 colours",
         {},
         {{line("viscolor.txt"), QByteArray("1,2,3\n").repeated(23)}},
         {},
         lines({"viscolor.txt has 23 of 24 colours; defaults for 23"})},
        {"18 colours",
         {},
         {{line("viscolor.txt"), QByteArray("1,2,3\n").repeated(18)}},
         {},
         lines({"viscolor.txt has 18 of 24 colours; defaults for 18–23"})},
        {"no usable colour",
         {},
         {{line("viscolor.txt"), "red"}},
         {},
         lines({"viscolor.txt has 0 of 24 colours; defaults for 0–23"})},
        {"unusable playlist colours",
         {},
         {{line("pledit.txt"), "[text]\nselectedbg=1\nnormal=#0F0"}},
         {},
         lines(
             {"pledit.txt normal '#0F0' unusable; default", "pledit.txt selectedbg '1' unusable; default"})},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        Files files = complete();
        for (const char *name : row.removed)
            files.remove(line(name));
        files.insert(row.added);
        const Skin skin = parse(files);
        EXPECT_EQ(skin.warnings, row.warnings);
        EXPECT_EQ(skin.fallbacks, row.fallbacks);
    }
}

TEST(SkinParserTest, RefusesForThreeReasonsOnly) {
    Files modern = complete();
    modern.insert(QStringLiteral("Skin.XML"), "");
    const struct {
        const char *name;
        Files files;
        const char *description;
    } rows[] = {
        {"modern", modern, "Modern (Winamp 3/5) skin; not supported"},
        {"empty", {}, "No classic skin bitmaps found"},
        {"undecodable alone",
         {{line("main.bmp"), "BM"}, {line("text.png"), "x"}},
         "No classic skin bitmaps found"},
        {"pictures that are no sheets", {{line("preview.bmp"), bitmap}}, "No classic skin bitmaps found"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        try {
            (void)parse(row.files);
            ADD_FAILURE() << "accepted";
        } catch (const SkinError &error) {
            EXPECT_EQ(error.description(), line(row.description));
            EXPECT_STREQ(error.what(), row.description);
        }
    }
}

TEST(SkinParserTest, DecodesSheetsByContentAndDropsAlpha) {
    Files tooLarge{{line("main.png"), bitmap}};
    QImage wide(4097, 1, QImage::Format_Mono);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    wide.save(&buffer, "PNG");
    const Skin skin = parse({{line("main.bmp"), png(qRgba(200, 100, 0, 255))},
                             {line("text.png"), png(qRgba(255, 255, 255, 51))},
                             {line("gen.png"), bitmap},
                             {line("eq_ex.png"), bytes}});
    EXPECT_EQ(skin.sheets.value(line("MAIN")).pixel(0, 0), qRgb(200, 100, 0));
    EXPECT_EQ(skin.sheets.value(line("TEXT")).pixel(2, 1), qRgb(255, 255, 255));
    EXPECT_EQ(skin.sheets.value(line("GEN")).pixel(3, 3), qRgb(10, 20, 30));
    EXPECT_TRUE(skin.warnings.contains(line("Undecodable eq_ex.bmp")));
    for (const QImage &sheet : skin.sheets)
        EXPECT_EQ(sheet.format(), QImage::Format_RGBX8888);
}

TEST(SkinParserTest, ReadsTextsAndCursors) {
    Files files = complete();
    files.insert(line("viscolor.txt"), "9,8,7");
    files.insert(line("region.txt"), "[Normal]\nNumPoints=3\nPointList=0,0, 5,0, 5,5");
    files.insert(line("pledit.txt"), "[Text]\nFont=Tahoma\nCurrent=123456");
    files.insert(line("normal.cur"), solidCursor({1, 2, 3}, {4, 5}));
    files.insert(line("close.cur"), "broken");
    files.insert(line("titlebar.cur"),
                 aniFile(aniHeader(6) + riffList("fram", riffChunk("icon", solidCursor({1, 2, 3})))));
    files.insert(line("volbal.cur"), solidCursor({1, 2, 3}) + QByteArray(8'388'608, '\0'));
    files.insert(line("other.cur"), solidCursor({1, 2, 3}));
    const Skin skin = parse(files);

    VisColors colors = defaultVisColors;
    colors[0] = {9, 8, 7};
    EXPECT_EQ(skin.visColors, colors);
    EXPECT_EQ(skin.region.normal(), QList<SkinRegion::Polygon>({{{0, 0}, {5, 0}, {5, 5}}}));
    EXPECT_EQ(skin.playlistStyle, (PlaylistStyle{.current = {0x12, 0x34, 0x56}, .font = line("Tahoma")}));
    EXPECT_EQ(skin.cursors.cursors.keys(), lines({"NORMAL", "TITLEBAR"}));
    EXPECT_EQ(skin.cursors.cursors.value(line("NORMAL")).frames.at(0).hotSpot, QPoint(4, 5));
    EXPECT_EQ(skin.cursors.cursors.value(line("TITLEBAR")).steps.at(0).duration, Jiffies(6));
    EXPECT_EQ(skin.cursors.unreadable, lines({"close.cur", "volbal.cur"}));
}

TEST(SkinParserTest, PicturesThatAskForTooMuchWork) {
    // A thousand texts that inflate to millions of letters each, between the header and the pixels.
    const QByteArray letters = qCompress(QByteArray(7'900'000, 'a'), 9).sliced(4);
    QByteArray text = QByteArray(4, '\0') + QByteArray("zTXtk\0\0", 7) + letters + QByteArray(4, '\0');
    qToBigEndian(static_cast<quint32>(letters.size() + 3), text.data());
    const auto bytes = reinterpret_cast<const uchar *>(text.constData());
    qToBigEndian(static_cast<quint32>(crc32(0, bytes + 4, static_cast<uInt>(text.size() - 8))),
                 text.data() + text.size() - 4);
    const QByteArray withTexts = png(qRgb(1, 2, 3)).insert(33, text.repeated(1'000));
    QImage gray(8, 8, QImage::Format_Grayscale8);
    gray.fill(7);
    QBuffer jpeg;
    ASSERT_TRUE(gray.save(&jpeg, "JPEG"));
    const QByteArray scans =
        QByteArray(jpeg.data()).insert(20, (QByteArray("\xff\xfe\0\4", 4) + "\xff\xda").repeated(101));
    QBuffer portable;
    ASSERT_TRUE(gray.save(&portable, "PGM"));

    const auto start = std::chrono::steady_clock::now();
    const Skin skin = parse({{line("main.png"), withTexts},
                             {line("text.png"), jpeg.data()},
                             {line("gen.png"), scans},
                             {line("eq_ex.png"), portable.data()}});
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_EQ(skin.sheets.value(line("MAIN")).pixel(2, 1), qRgb(1, 2, 3));
    EXPECT_EQ(skin.sheets.value(line("TEXT")).pixel(0, 0), qRgb(7, 7, 7));
    EXPECT_FALSE(skin.sheets.contains(line("GEN")) || skin.sheets.contains(line("EQ_EX")));
}

TEST(SkinParserTest, CursorsShareOneBudgetOfPixels) {
    const QByteArray frame = cursorDirectory(2, {{.data = solidCursorDib(256, {1, 2, 3})}});
    const QByteArray large = aniFile(aniHeader(1) + riffChunk("icon", frame).repeated(20)); // 5 MiB of pixels
    Files files{{line("main.bmp"), bitmap}};
    for (const QString &name : SkinCursors::names())
        files.insert(name + QStringLiteral(".cur"), large);
    EXPECT_EQ(parse(files).cursors.cursors.size(), 12); // of 24
}
