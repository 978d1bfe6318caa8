#include "LocalPlayback/Playlists/PlaylistParser.h"

#include <gtest/gtest.h>

using namespace vantor;
using namespace vantor::PlaylistParser;

namespace {

Result lines(std::vector<Line> lines, bool areURIs = false, bool isDamaged = false) {
    for (Line &line : lines)
        line.isURI = areURIs;
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
         "#EXTINF:9 odd\"quote,U\nw",
         lines({{u"x"_qs, u"A - B, C"_qs}, {u"y"_qs, u"T \"q\""_qs}, {u"z"_qs, {}}, {u"w"_qs, u"U"_qs}})},
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
         lines({{u"a%20b.mp3"_qs, u"T & U"_qs, true, u"A"_qs}, {u"c"_qs, {}}}, true)},
        {"xspf that breaks off", "xspf",
         "<playlist><trackList><track><location>a</location></track><track><location>b</loc",
         lines({{u"a"_qs, {}}}, true, true)},
        {"another document", "xspf", "<html></html>", lines({}, false, true)},
        {"bottomless xspf", "xspf", "<playlist>" + QByteArray("<a>").repeated(100'000),
         lines({}, false, true)},
        {"cue of one file", "cue",
         "PERFORMER \"P\"\nTITLE \"Album\"\nFILE \"disc one.wav\" WAVE\n  TRACK 01 AUDIO\n    TITLE \"One\"\n"
         "    INDEX 01 00:00:00\n  TRACK 02 AUDIO\n    TITLE \"Two\"\n",
         lines({{u"disc one.wav"_qs, u"Album"_qs, false, u"P"_qs}})},
        {"cue of a file each", "cue",
         "PERFORMER P\nFILE a.wav WAVE\nTRACK 01 AUDIO\nTITLE \"One\"\nFILE b c.wav WAVE\nTRACK 02 AUDIO\n"
         "TITLE Two Words\nPERFORMER \"Q\"",
         lines({{u"a.wav"_qs, u"One"_qs, false, u"P"_qs}, {u"b c.wav"_qs, u"Two Words"_qs, false, u"Q"_qs}})},
        {"cue whose pauses end the file before", "cue",
         "TITLE Album\nFILE\ta.wav WAVE\nTRACK 01 AUDIO\nTITLE One\nINDEX 01 00:00:00\nTRACK 02 AUDIO\n"
         "TITLE Two\nINDEX 00 03:00:00\nFILE b.wav WAVE\nINDEX 01 00:00:00\nTRACK 03 AUDIO\nTITLE Three\n"
         "INDEX 00 04:00:00\nFILE c.wav WAVE\nINDEX 01 00:00:00",
         lines({{u"a.wav"_qs, u"One"_qs}, {u"b.wav"_qs, u"Two"_qs}, {u"c.wav"_qs, u"Three"_qs}})},
        {"cue that names its file for every track", "cue",
         "TITLE Album\nFILE a.wav WAVE\nTRACK 01 AUDIO\nTITLE One\nFILE a.wav WAVE\nTRACK 02 AUDIO\nTITLE "
         "Two",
         lines({{u"a.wav"_qs, u"Album"_qs}})},
        {"cue of one file in parts", "cue",
         "PERFORMER P\nTITLE Album\nFILE disc.flac WAVE\nTRACK 01 AUDIO\nTITLE One\nINDEX 01 00:00:33\n"
         "TRACK 02 AUDIO\nPERFORMER Q\nINDEX 00 02:59:00\nINDEX 01 03:01:15\nTRACK 03 AUDIO\nTITLE Three\n"
         "INDEX 01 100:00:00",
         lines({{u"disc.flac"_qs, u"One"_qs, false, u"P"_qs, u"Album"_qs, TrackRange{0.44, 181.2}},
                {u"disc.flac"_qs, u"Track 2"_qs, false, u"Q"_qs, u"Album"_qs, TrackRange{181.2, 6000}},
                {u"disc.flac"_qs, u"Three"_qs, false, u"P"_qs, u"Album"_qs, TrackRange{6000, {}}}})},
        {"cue whose places make no sense", "cue",
         "TITLE Album\nFILE a W\nTRACK 01 AUDIO\nINDEX 01 03:00:00\nTRACK 02 AUDIO\nINDEX 01 03:00:00\n"
         "FILE b W\nTRACK 03 AUDIO\nINDEX 01 00:00:00\nTRACK 04 AUDIO\nINDEX 01 00:61:00\n"
         "FILE http://h/c W\nTRACK 05 AUDIO\nINDEX 01 00:00:00\nTRACK 06 AUDIO\nINDEX 01 01:00:00",
         lines({{u"a"_qs, u"Album"_qs}, {u"b"_qs, u"Album"_qs}, {u"http://h/c"_qs, u"Album"_qs}})},
        {"no text", "m3u", QByteArray("\x89PNG\0\1\2", 7), lines({}, false, true)},
        {"nothing", "pls", "", lines({})},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(parse(row.bytes, formatOf(row.bytes, QLatin1String(row.extension)), 100), row.expected);
    }
}

TEST(PlaylistParserTest, EveryFormatStopsAtTheLimit) {
    const QByteArray track = "<track><location>a</location></track>";
    const std::pair<Format, QByteArray> rows[] = {
        {Format::m3u, "a\nb\n#c\nd"},
        {Format::pls, "File1=a\nFile2=b\nTitle2=t\nFile3=c"},
        {Format::cue, "FILE a W\nFILE b W\nFILE c W"},
        {Format::cue, "FILE a W\nTRACK 1\nINDEX 01 0:0:0\nTRACK 2\nINDEX 01 1:0:0\nTRACK 3\nINDEX 01 2:0:0"},
        {Format::xspf, "<playlist><trackList>" + track.repeated(3) + "</trackList></playlist>"},
    };
    for (const auto &[format, bytes] : rows) {
        SCOPED_TRACE(static_cast<int>(format));
        const Result three = parse(bytes, format, 3);
        EXPECT_TRUE(three.lines.size() == 3 && !three.isCut && !three.isDamaged);
        const Result two = parse(bytes, format, 2);
        EXPECT_TRUE(two.lines.size() == 2 && two.isCut && !two.isDamaged);
    }
}
