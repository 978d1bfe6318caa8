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
        {"plain", "abc", u"abc"_qs, u"abc"_qs, u"abc"_qs},
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
    const auto only = [](const char *section, QMap<QString, QString> values) {
        return IniDocument{{QLatin1String(section), std::move(values)}};
    };
    const struct {
        const char *name;
        QString text;
        IniDocument expected;
    } rows[] = {
        {"every line end", u"[A]\r\nx=1\ry=2\n\nz=3"_qs,
         only("a", {{u"x"_qs, u"1"_qs}, {u"y"_qs, u"2"_qs}, {u"z"_qs, u"3"_qs}})},
        {"keys and sections fold, values do not", u" [Ab] \n X Y = V \n"_qs,
         only("ab", {{u"x y"_qs, u"V"_qs}})},
        {"names keep their blanks", u"[ a ]\nb=\n"_qs, only(" a ", {{u"b"_qs, u""_qs}})},
        {"comments and noise", u"[a]\n ;b=1\nnoise\n//c\n"_qs, only("a", {})},
        {"too short for a section", u"[a]\nb=1\n[]\nb=2"_qs, only("a", {{u"b"_qs, u"2"_qs}})},
        {"before the first section", u"b=1\n[a]"_qs, only("a", {})},
        {"one pair of quotes", u"[a]\nb=\"'x'\"\nc=\"\nd='\"\ne=''"_qs,
         only("a", {{u"b"_qs, u"'x'"_qs}, {u"c"_qs, u""_qs}, {u"d"_qs, u"'\""_qs}, {u"e"_qs, u""_qs}})},
        {"later duplicates win across sections",
         u"[a]\nb=1\n[c]\n[A]\nb=2=3"_qs,
         {{u"a"_qs, {{u"b"_qs, u"2=3"_qs}}}, {u"c"_qs, {}}}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(IniParser::parse(row.text), row.expected);
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
    const auto style = [](auto change) {
        PlaylistStyle changed;
        change(changed);
        return changed;
    };
    const struct {
        const char *name;
        const char *text;
        PlaylistStyleParser::Result expected;
    } rows[] = {
        {"empty", "", {}},
        {"another section", "[other]\nnormal=#010203", {}},
        {"all",
         "[Text]\r\nNormal=#010203\r\nCurrent=0a0B0c\r\nNormalBG=#00FF00FF\r\nSelectedBG=\"#111111\"\r\nFont="
         "Foo Bar",
         {{{1, 2, 3}, {10, 11, 12}, {0, 255, 0}, {17, 17, 17}, u"Foo Bar"_qs}, {}}},
        {"empty font",
         "[text]\nFont=\ncurrent=#000001",
         {style([](PlaylistStyle &s) { s.current = {0, 0, 1}; }), {}}},
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
    const struct {
        const char *line;
        std::optional<RGBColor> expected;
    } rows[] = {
        {"24,33,41, // text", RGBColor{24, 33, 41}},
        {"\t1 2\t3", RGBColor{1, 2, 3}},
        {"1 , 2 ,3", RGBColor{1, 2, 3}},
        {"300 0 0", RGBColor{255, 0, 0}},
        {"99999999999999999999 0007 1", RGBColor{255, 7, 1}},
        {"255", RGBColor{2, 5, 5}},
        {"1234", RGBColor{12, 3, 4}},
        {"12 34", RGBColor{12, 3, 4}},
        {"12,3", RGBColor{1, 2, 3}},
        {"123,,4,5", RGBColor{1, 2, 3}},
        {"1,,2,3", {}},
        {"-1,2,3", {}},
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
        {"surplus points", "3", "0,0,4,0,0,4,9,9,9", Polygons{triangle}},
        {"a size too many", "3,1", "0,0,4,0,0,4,9", Polygons{triangle}},
        {"an absurd size", "3,99999999999999999999", "0,0,4,0,0,4,9,9", Polygons{triangle}},
        {"a negative size", "3,-1,1", "0,0,4,0,0,4,9,9", Polygons{triangle}},
        {"empty polygons", "0,3,0", "0,0,4,0,0,4", Polygons{triangle}},
        {"text ends a list", "3,3", "0,0,4,0,0,4,1,1,x,2,2,2,2", Polygons{triangle}},
        {"coordinates are clamped", "1", "-99999999999,2000000", Polygons{{{-1'000'000, 1'000'000}}}},
        {"no whole polygon", "4", "0,0,4,0,0,4", {}},
        {"no points", "3", "", {}},
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
