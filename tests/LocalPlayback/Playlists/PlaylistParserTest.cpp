#include "LocalPlayback/Playlists/PlaylistParser.h"

#include <gtest/gtest.h>

using namespace vantor;
using namespace vantor::PlaylistParser;

namespace {

Result lines(std::vector<Line> lines, bool isDamaged = false) {
    return {.lines = std::move(lines), .isDamaged = isDamaged};
}

Result addresses(std::vector<Line> lines, bool isDamaged = false) {
    for (Line &line : lines)
        line.isURI = true;
    return {.lines = std::move(lines), .isDamaged = isDamaged};
}

} // namespace

TEST(PlaylistParserTest, ReadsEveryFormat) {
    const struct {
        const char *name;
        const char *extension;
        QByteArray bytes;
        Result expected;
    } rows[] = {
        {"plain m3u, every line end", "m3u", "a.mp3\r\n\n  b c.mp3 \r#comment\nd.mp3",
         lines({{u"a.mp3"_qs, {}}, {u"b c.mp3"_qs, {}}, {u"d.mp3"_qs, {}}})},
        {"titles, attributes and commas", "m3u8",
         "\xEF\xBB\xBF#EXTM3U\n#EXTINF:12,A - B, C\nx\n#extinf:-1 logo=\"u,v\" k=\"w\",T \"q\"\ny\nz\n"
         "#EXTINF:9 odd\"quote,U\nw\n#EXTINF:3\nv",
         lines({{u"x"_qs, u"A - B, C"_qs},
                {u"y"_qs, u"T \"q\""_qs},
                {u"z"_qs, {}},
                {u"w"_qs, u"U"_qs},
                {u"v"_qs, {}}})},
        {"Windows-1252", "m3u", "#EXTINF:1,\x80 \xE9\n\xFC.mp3", lines({{u"ü.mp3"_qs, u"€ é"_qs}})},
        {"pls in any order", "pls",
         "[playlist]\r\nTitle2=Second\r\nfile10=c=d\r\nFile2= b "
         "\r\nFILE1=a\r\nLength1=5\r\nFile=x\r\nTitle3=none\r\n",
         lines({{u"a"_qs, {}}, {u"b"_qs, u"Second"_qs}, {u"c=d"_qs, {}}})},
        {"pls under another name", "m3u", "\n[Playlist]\nFile1=a", lines({{u"a"_qs, {}}})},
        {"xspf", "xspf",
         R"(<?xml version="1.0"?><playlist xmlns="http://xspf.org/ns/0/"><title>no</title><trackList>
            <track><location> a%20b.mp3 </location><title>T &amp; U</title><creator>A</creator>
              <location>other</location><extension><deep/></extension></track>
            <track><title>nowhere</title></track><track><location>c</location></track></trackList></playlist>)",
         addresses({{u"a%20b.mp3"_qs, u"A - T & U"_qs}, {u"c"_qs, {}}})},
        {"xspf that breaks off", "xspf",
         "<playlist><trackList><track><location>a</location></track><track><location>b</loc",
         addresses({{u"a"_qs, {}}}, true)},
        {"another document", "xspf", "<html></html>", lines({}, true)},
        {"bottomless xspf", "xspf", "<playlist>" + QByteArray("<a>").repeated(100'000), lines({}, true)},
        {"cue of one file", "cue",
         "PERFORMER \"P\"\nTITLE \"Album\"\nFILE \"disc one.wav\" WAVE\n  TRACK 01 AUDIO\n    TITLE \"One\"\n"
         "    INDEX 01 00:00:00\n  TRACK 02 AUDIO\n    TITLE \"Two\"\n",
         lines({{u"disc one.wav"_qs, u"P - Album"_qs}})},
        {"cue of a file each", "cue",
         "PERFORMER P\nFILE a.wav WAVE\nTRACK 01 AUDIO\nTITLE \"One\"\nFILE b c.wav WAVE\nTRACK 02 AUDIO\n"
         "TITLE Two Words\nPERFORMER \"Q\"",
         lines({{u"a.wav"_qs, u"P - One"_qs}, {u"b c.wav"_qs, u"Q - Two Words"_qs}})},
        {"no text", "m3u", QByteArray("\x89PNG\0\1\2", 7), lines({}, true)},
        {"nothing", "pls", "", lines({})},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const Result result = parse(row.bytes, formatOf(row.bytes, QLatin1String(row.extension)), 100);
        EXPECT_EQ(result, row.expected);
        for (const Line &line : result.lines)
            SCOPED_TRACE(qPrintable(line.location + u"|"_qs + line.title));
    }
}

TEST(PlaylistParserTest, EveryFormatStopsAtTheLimit) {
    const struct {
        Format format;
        QByteArray two;
        QByteArray three;
    } rows[] = {
        {Format::m3u, "a\nb\n#c\n", "a\nb\nc"},
        {Format::pls, "File1=a\nFile2=b\nTitle1=t", "File1=a\nFile2=b\nFile3=c"},
        {Format::cue, "FILE a W\nFILE b W\n", "FILE a W\nFILE b W\nFILE c W"},
        {Format::xspf,
         "<playlist><trackList><track><location>a</location></track><track><location>b</location></track>"
         "</trackList></playlist>",
         "<playlist><trackList><track><location>a</location></track><track><location>b</location></track>"
         "<track><location>c</location></track></trackList></playlist>"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(static_cast<int>(row.format));
        const Result two = parse(row.two, row.format, 2);
        EXPECT_EQ(two.lines.size(), 2U);
        EXPECT_FALSE(two.isCut || two.isDamaged);
        const Result three = parse(row.three, row.format, 2);
        EXPECT_EQ(three.lines.size(), 2U);
        EXPECT_TRUE(three.isCut && !three.isDamaged);
    }
}
