#include "Platform/TextDecoding.h"
#include "Platform/Windows1252.h"
#include "SkinKit/Texts/IniParser.h"
#include "SkinKit/Texts/PlaylistStyle.h"
#include "SkinKit/Texts/SkinRegion.h"
#include "SkinKit/Texts/VisColors.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(TextDecodingTest, FallsBackFromUtf8ToWindowsToLatin) {
    const struct {
        const char *name;
        QByteArray bytes;
        std::optional<QString> utf8;
        std::optional<QString> windows;
        QString lenient;
    } rows[] = {
        {"UTF-8", "\xC3\xA9", u"é"_qs, u"Ã©"_qs, u"é"_qs},
        {"byte-order mark", "\xEF\xBB\xBFx", u"x"_qs, u"ï»¿x"_qs, u"x"_qs},
        {"cut UTF-8", "\xE2\x82", {}, u"â‚"_qs, u"â‚"_qs},
        {"Windows", "\x80 \x9F \xE9", {}, u"€ Ÿ é"_qs, u"€ Ÿ é"_qs},
        {"unassigned", "\x81\xE9", {}, {}, u"\u0081é"_qs},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(TextDecoding::utf8(row.bytes), row.utf8);
        EXPECT_EQ(Windows1252::decode(row.bytes), row.windows);
        EXPECT_EQ(TextDecoding::lenient(row.bytes), row.lenient);
    }
}

TEST(IniParserTest, Lines) {
    const struct {
        const char *name, *text, *expected;
    } rows[] = {
        {"every line end", "[A]\r\nx=1\ry=2\n\nz=3", "[a]x=1,y=2,z=3,"},
        {"keys and sections fold, values do not", " [Ab] \n X Y = V \n", "[ab]x y=V,"},
        {"names keep their blanks", "[ a ]\nb=\n", "[ a ]b=,"},
        {"comments and noise", "b=1\n[a]\n ;b=1\nnoise\n//c\n", "[a]"},
        {"too short for a section", "[a]\nb=1\n[]\nb=2", "[a]b=2,"},
        {"one pair of quotes", "[a]\nb=\"'x'\"\nc=\"\nd='\"", "[a]b='x',c=,d='\","},
        {"later duplicates win across sections", "[a]\nb=1\n[c]\n[A]\nb=2=3", "[a]b=2=3,[c]"},
    };
    for (const auto &row : rows) {
        const IniDocument document = IniParser::parse(QString::fromLatin1(row.text));
        QString summary;
        for (auto section = document.begin(); section != document.end(); ++section) {
            summary += u'[' + section.key() + u']';
            for (auto value = section->begin(); value != section->end(); ++value)
                summary += value.key() + u'=' + *value + u',';
        }
        EXPECT_EQ(summary.toStdString(), row.expected) << row.name;
    }
}

// Millions of short lines or points must not become as many map nodes or edges.
TEST(IniParserTest, HostileSizesAreCutOff) {
    QString lines = QStringLiteral("[a]\n");
    for (int line = 0; line < IniParser::maxEntries; ++line)
        lines += QString::number(line) + QStringLiteral("=\n");
    EXPECT_EQ(IniParser::parse(lines).value(QStringLiteral("a")).size(), IniParser::maxEntries - 1);

    const auto polygons = [](int count) {
        return RegionParser::parse(u"[normal]\nnumpoints="_qs + QString::number(count) + u"\npointlist="_qs +
                                   QString(count * 4, u'1').replace(u"11"_qs, u"1,"_qs));
    };
    EXPECT_TRUE(polygons(SkinRegion::maxPoints).normal());
    EXPECT_FALSE(polygons(SkinRegion::maxPoints + 1).normal());
}

TEST(PlaylistStyleParserTest, Values) {
    const struct {
        const char *name;
        const char *text;
        PlaylistStyleParser::Result expected;
    } rows[] = {
        {"another section", "[other]\nnormal=#010203", {}},
        {"all",
         "[Text]\r\nNormal=#010203\r\nCurrent=0a0B0c\r\nNormalBG=#00FF00FF\r\nSelectedBG=\"#111111\"\r\nFont="
         "Foo Bar",
         {{{1, 2, 3}, {10, 11, 12}, {0, 255, 0}, {17, 17, 17}, u"Foo Bar"_qs}, {}}},
        {"empty font", "[text]\nFont=\ncurrent=#000001", {{.current = {0, 0, 1}}, {}}},
        {"messages in the order of the keys",
         "[text]\nselectedbg=\nnormal=#0F0\ncurrent=#12345g\nnormalbg='##00000'",
         {{},
          {u"pledit.txt normal '#0F0' unusable; default"_qs,
           u"pledit.txt current '#12345g' unusable; default"_qs,
           u"pledit.txt normalbg '##00000' unusable; default"_qs,
           u"pledit.txt selectedbg '' unusable; default"_qs}}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(PlaylistStyleParser::parse(QByteArrayView(row.text)), row.expected);
    }
    EXPECT_EQ(PlaylistStyleParser::hexColour(u"#٠٠٠٠٠٠"_qs), std::nullopt);
}

TEST(VisColorParserTest, LineShapes) {
    const std::pair<const char *, std::optional<RGBColor>> rows[] = {
        {"24,33,41, // text", RGBColor{24, 33, 41}},
        {"\t1 2\t3", RGBColor{1, 2, 3}},
        {"300 0 0", RGBColor{255, 0, 0}},
        {"99999999999999999999 0007 1", RGBColor{255, 7, 1}},
        {"255", RGBColor{2, 5, 5}},
        {"12 34", RGBColor{12, 3, 4}},
        {"12,3", RGBColor{1, 2, 3}},
        {"123,,4,5", RGBColor{1, 2, 3}},
        {"1,,2,3", {}},
        {"1 2 x3", {}},
        {"// 1,2,3", {}},
    };
    for (const auto &[line, expected] : rows) {
        SCOPED_TRACE(line);
        VisColorParser::Result result;
        if (expected)
            result.colors[0] = *expected;
        result.parsedCount = expected ? 1 : 0;
        EXPECT_EQ(VisColorParser::parseCounted(line), result);
    }
}

TEST(VisColorParserTest, SkippedLinesUseUpNoIndexAndTheFileEndsAt24) {
    QByteArray file = "header\r\n1,1,1\rnoise\n";
    for (int line = 0; line < 30; ++line)
        file += QByteArray::number(line) + ",0,0\r\n";
    const VisColorParser::Result result = VisColorParser::parseCounted(file);
    EXPECT_EQ(result.parsedCount, 24);
    EXPECT_EQ(result.colors[0], (RGBColor{1, 1, 1}));
    EXPECT_EQ(result.colors[23], (RGBColor{22, 0, 0}));
}

TEST(RegionParserTest, CutsWholePolygons) {
    using Polygons = QList<SkinRegion::Polygon>;
    const SkinRegion::Polygon triangle = {{0, 0}, {4, 0}, {0, 4}};
    const struct {
        const char *name;
        const char *sizes;
        const char *points;
        std::optional<Polygons> expected;
    } rows[] = {
        {"one", "3", "0,0,4,0,0,4", Polygons{triangle}},
        {"two, blanks and signs", "3, 1", "0,0, +4,0, 0,4, -5,-6", Polygons{triangle, {{-5, -6}}}},
        {"blanks for commas", "3", "0 0 4 0  0 4", Polygons{triangle}},
        {"a size too many", "3,1", "0,0,4,0,0,4,9", Polygons{triangle}},
        {"an absurd size", "3,99999999999999999999", "0,0,4,0,0,4,9,9", Polygons{triangle}},
        {"a negative size", "3,-1,1", "0,0,4,0,0,4,9,9", Polygons{triangle}},
        {"empty polygons", "0,3,0", "0,0,4,0,0,4", Polygons{triangle}},
        {"text ends a list", "3,3", "0,0,4,0,0,4,1,1,x,2,2,2,2", Polygons{triangle}},
        {"coordinates are clamped", "1", "-99999999999,2000000", Polygons{{{-1'000'000, 1'000'000}}}},
        {"no whole polygon", "4", "0,0,4,0,0,4", {}},
        {"no sizes", "", "0,0,4,0,0,4", {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const QByteArray file =
            QByteArray("[WindowShade]\r\nNumPoints=") + row.sizes + "\r\nPointList=" + row.points;
        EXPECT_EQ(RegionParser::parse(QByteArrayView(file)).windowShade(), row.expected);
    }
    EXPECT_EQ(RegionParser::parse(QByteArrayView("[normal]\nnumpoints=1")), SkinRegion::empty);
}
