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

Skin parse(const Files &files) {
    const SkinArchive archive(files);
    const Skin skin = SkinParser::parse(archive);
    EXPECT_EQ(SkinParser::warnings(archive), skin.warnings);
    return skin;
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
    QSet<QString> sheets = skin.generatedSheets;
    EXPECT_EQ(sheets.size(), 11);
    sheets.insert(line("MAIN"));
    EXPECT_EQ(QSet<QString>(skin.sheets.keyBegin(), skin.sheets.keyEnd()), sheets);
    EXPECT_EQ(skin.visColors, defaultVisColors);
}

TEST(SkinParserTest, ReportsWhatChangesInACompleteSkin) {
    const struct {
        const char *removed; ///< names with blanks between them
        Files added;
        const char *report; ///< the warnings, a semicolon, the fallbacks
    } rows[] = {
        {"", {}, ";"},
        {"main.bmp", {}, "Missing main.bmp;main.bmp missing; generated base"},
        {"", {{line("main.bmp"), "BM"}}, "Undecodable main.bmp;main.bmp undecodable; generated base"},
        {"", {{line("gen.bmp"), "BM"}, {line("gen.png"), solidPNG({1, 1}, 0)}}, "Undecodable gen.bmp;"},
        {"gen.bmp", {{line("gen.png"), "\x89PNG\r\n"}}, "Undecodable gen.bmp;"},
        {"numbers.bmp nums_ex.bmp",
         {},
         "Missing numbers.bmp and nums_ex.bmp;numbers.bmp missing; generated base"},
        {"numbers.bmp", {}, ";numbers.bmp missing; digits use nums_ex.bmp"},
        {"balance.bmp eq_ex.bmp gen.bmp nums_ex.bmp",
         {},
         ";balance.bmp missing; balance slider uses volume.bmp|nums_ex.bmp missing; digits use numbers.bmp|"
         "eq_ex.bmp missing; EQ maximize button uses eqmain.bmp|gen.bmp missing (not used in v1)"},
        {"nums_ex.bmp",
         {{line("numbers.bmp"), "x"}},
         "Undecodable numbers.bmp;numbers.bmp undecodable; generated base|"
         "nums_ex.bmp missing; digits use numbers.bmp"},
        {"",
         {{line("balance.bmp"), "x"}, {line("eq_ex.bmp"), "x"}},
         "Undecodable balance.bmp|Undecodable eq_ex.bmp;"},
        {"",
         {{line("viscolor.txt"), colors24.chopped(6)}},
         ";viscolor.txt has 23 of 24 colours; defaults for 23"},
        {"",
         {{line("viscolor.txt"), colors24.chopped(36)}},
         ";viscolor.txt has 18 of 24 colours; defaults for 18–23"},
        {"",
         {{line("pledit.txt"), "[text]\nselectedbg=1\nnormal=#0F0"}},
         ";pledit.txt normal '#0F0' unusable; default|pledit.txt selectedbg '1' unusable; default"},
    };
    for (const auto &row : rows) {
        Files files = complete();
        for (const QString &name : line(row.removed).split(QLatin1Char(' ')))
            files.remove(name);
        files.insert(row.added);
        const Skin skin = parse(files);
        const QString bar = QStringLiteral("|");
        EXPECT_EQ(skin.warnings.join(bar) + QLatin1Char(';') + skin.fallbacks.join(bar), line(row.report))
            << row.removed;
    }
}

TEST(SkinParserTest, RefusesForThreeReasonsOnly) {
    Files modern = complete();
    modern.insert(QStringLiteral("Skin.XML"), "");
    const char *const noBitmaps = "No classic skin bitmaps found";
    const std::pair<Files, const char *> rows[] = {
        {modern, "Modern (Winamp 3/5) skin; not supported"},
        {{}, noBitmaps},
        {{{line("main.bmp"), "BM"}, {line("text.png"), "x"}}, noBitmaps},
        {{{line("preview.bmp"), bitmap}}, noBitmaps},
    };
    for (const auto &[files, description] : rows) {
        try {
            (void)parse(files);
            ADD_FAILURE() << "accepted";
        } catch (const SkinError &error) {
            EXPECT_STREQ(error.what(), description);
        }
    }
}

TEST(SkinParserTest, DecodesSheetsByContentAndDropsAlpha) {
    const Skin skin = parse({{line("main.bmp"), solidPNG({3, 2}, qRgba(200, 100, 0, 255))},
                             {line("text.png"), solidPNG({3, 2}, qRgba(255, 255, 255, 51))},
                             {line("gen.png"), bitmap},
                             {line("eq_ex.png"), solidPNG({4097, 1}, 0)}});
    EXPECT_EQ(skin.sheets.value(line("MAIN")).pixel(0, 0), qRgb(200, 100, 0));
    EXPECT_EQ(skin.sheets.value(line("TEXT")).pixel(2, 1), qRgb(255, 255, 255));
    EXPECT_EQ(skin.sheets.value(line("GEN")).pixel(3, 3), qRgb(10, 20, 30));
    EXPECT_TRUE(skin.warnings.contains(line("Undecodable eq_ex.bmp")));
    for (const QImage &sheet : skin.sheets)
        EXPECT_EQ(sheet.format(), QImage::Format_RGBX8888);
}

TEST(SkinParserTest, ReadsTextsAndCursors) {
    const QByteArray cursor = solidCursor({1, 2, 3}, {4, 5});
    const Skin skin = parse({{line("main.bmp"), bitmap},
                             {line("viscolor.txt"), "9,8,7"},
                             {line("region.txt"), "[Normal]\nNumPoints=3\nPointList=0,0, 5,0, 5,5"},
                             {line("pledit.txt"), "[Text]\nFont=Tahoma\nCurrent=123456"},
                             {line("normal.cur"), cursor},
                             {line("close.cur"), "broken"},
                             {line("titlebar.cur"), aniFile(aniHeader(6) + riffChunk("icon", cursor))},
                             {line("volbal.cur"), cursor + QByteArray(8'388'608, '\0')},
                             {line("other.cur"), cursor}});

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
    const QByteArray withTexts = solidPNG({3, 2}, qRgb(1, 2, 3)).insert(33, text.repeated(1'000));
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
