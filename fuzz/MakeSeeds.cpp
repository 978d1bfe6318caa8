#include "AudioCore/Equalizer/EQFFile.h"
#include "tests/Support/BitmapBuilder.h"
#include "tests/Support/ZipBuilder.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QMap>

#include <cstdio>

using namespace vantor;
using namespace vantor::test;

// Writes a small corpus for each fuzz target: fuzz-seeds <folder> makes <folder>/BMPDecoder/… and so on.
namespace {

using Seeds = QMap<QString, QByteArray>;

const std::vector<RGBColor> colors = {{0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}};

Seeds bitmaps() {
    Seeds seeds;
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        BitmapBuilder bitmap{11, 3, depth, QByteArray((11 * depth + 31) / 32 * 4 * 3, '\x21')};
        if (depth <= 8)
            bitmap.palette = std::vector(colors.begin(), colors.begin() + (depth == 1 ? 2 : 4));
        seeds[QStringLiteral("depth%1").arg(depth)] = bitmap.bmp();
        if (depth == 16 || depth == 32) {
            bitmap.compression = 3;
            bitmap.masks = le32(0xF800) + le32(0x07E0) + le32(0x001F);
            seeds[QStringLiteral("fields%1").arg(depth)] = bitmap.bmp();
            bitmap.headerSize = 124;
            seeds[QStringLiteral("late%1").arg(depth)] = bitmap.bmp();
        }
    }
    const QByteArray stream = QByteArray::fromHex("0201 0102 0000 0003 010203 00 0002 0101 0402 0001");
    seeds[QStringLiteral("runs8")] = BitmapBuilder{6, 4, 8, stream, colors, 1}.bmp();
    seeds[QStringLiteral("runs4")] = BitmapBuilder{6, 4, 4, stream, colors, 2}.bmp();
    seeds[QStringLiteral("core")] = BitmapBuilder{4, 1, 24, QByteArray(12, 'x'), {}, 0, {}, 12}.bmp();
    return seeds;
}

QByteArray smallPNG() {
    QImage image(5, 4, QImage::Format_ARGB32);
    image.fill(qRgba(200, 100, 50, 128));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

Seeds cursors() {
    const QByteArray mask(4 * 4, '\x80');
    Seeds seeds;
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        BitmapBuilder bitmap{4, 8, depth, QByteArray((4 * depth + 31) / 32 * 4 * 4, '\x21') + mask};
        if (depth <= 8)
            bitmap.palette = std::vector(colors.begin(), colors.begin() + (depth == 1 ? 2 : 4));
        seeds[QStringLiteral("depth%1").arg(depth)] = cursorDirectory(2, {{4, 4, 1, 2, bitmap.dib()}});
    }
    seeds[QStringLiteral("png")] = cursorDirectory(1, {{5, 4, 1, 32, smallPNG()}});
    seeds[QStringLiteral("several")] = cursorDirectory(
        2, {{2, 2, 0, 0, "broken"}, {5, 4, 0, 0, smallPNG()}, {2, 2, 0, 0, solidCursorDib(2, colors[1])}});
    return seeds;
}

Seeds animations() {
    const auto icon = [](RGBColor color) {
        return riffChunk("icon", cursorDirectory(2, {{2, 2, 0, 0, solidCursorDib(2, color)}}));
    };
    const QByteArray frames = riffList("fram", icon(colors[1]) + icon(colors[2]));
    return {{QStringLiteral("plain"), aniFile(aniHeader(4) + frames)},
            {QStringLiteral("steps"),
             aniFile(aniHeader(4) + riffSteps("rate", {1, 2, 3}) + riffSteps("seq ", {1, 0, 1}) + frames)},
            {QStringLiteral("nested"), aniFile(aniHeader(4) + riffList("more", frames))}};
}

Seeds texts() {
    return {{QStringLiteral("pledit"), "[Text]\r\nNormal=#00FF00\r\nCurrent=bad\r\nNormalBG=\"#000000\"\r\n"
                                       "SelectedBG=#0000C6\r\nFont=Arial\r\n"},
            {QStringLiteral("viscolor"), "24,33,41, // dots\r\n255\n300 0 0\n; none\n1,2,3\r"},
            {QStringLiteral("region"),
             "[Normal]\r\nNumPoints=3,4\r\nPointList=0,0,9,0,0,9, 1,1 2,+1 2,-2 1,2\r\n"
             "[WindowShade]\nnumpoints=4\npointlist=0,0,275,0,275,14,0,14\n"}};
}

Seeds archives() {
    const QByteArray main = solidBMP(3, 2, colors[1]);
    const std::vector<ZipEntry> skin = {{"Skin/MAIN.BMP", main},
                                        {"text.png", smallPNG()},
                                        {"viscolor.txt", "1,2,3\n4,5,6\n"},
                                        {"pledit.txt", "[Text]\nNormal=bad\n"},
                                        {"region.txt", "[Normal]\nNumPoints=3\nPointList=0,0,9,0,0,9"},
                                        {"readme.txt", "hello"},
                                        {"normal.cur", solidCursor(colors[2])}};
    std::vector<ZipEntry> stored = skin;
    for (ZipEntry &entry : stored)
        entry.stored = true;
    return {{QStringLiteral("skin"), zipFile(skin)},
            {QStringLiteral("stored"), zipFile(stored)},
            {QStringLiteral("small"), zipFile({{"main.bmp", main}})},
            {QStringLiteral("modern"), zipFile({{"skin.xml", "<x/>"}, {"main.bmp", main}})},
            {QStringLiteral("lies"),
             zipFile({{.name = "a/main.bmp", .data = main, .declaredSize = 7, .crc = 1},
                      {.name = "main.bmp", .data = main, .unixMode = 0120777},
                      {.name = "gen.bmp", .data = QByteArray(20'000, 'x'), .declaredSize = 1}})}};
}

Seeds playlists() {
    return {{QStringLiteral("m3u"), "0#EXTM3U\n#EXTINF:12 a=\"b,c\",A - B\nx.mp3\r\nsub/y.m3u\n"},
            {QStringLiteral("pls"), "1[playlist]\nFile1=a\nTitle1=b\nLength1=3\nNumberOfEntries=1\n"},
            {QStringLiteral("xspf"),
             "2<?xml version=\"1.0\"?><playlist><trackList><track><location>a</location>"
             "<creator>b</creator><title>c</title></track></trackList></playlist>"},
            {QStringLiteral("cue"), "3PERFORMER \"p\"\nFILE \"a.wav\" WAVE\n TRACK 01 AUDIO\n  TITLE t\n"}};
}

Seeds answers() {
    const QByteArray chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    return {{QStringLiteral("radio"), "\4ICY 200 OK\r\nicy-name: x\r\n\r\nabcd\1StreamTitle='1';efgh"},
            {QStringLiteral("chunks"), '\2' + chunked + "3;a=b\r\nab\0\r\n1\r\nc\r\n0\r\nT: t\r\n\r\n"},
            {QStringLiteral("counted"), "\1HTTP/1.0 206 Partial\nContent-Length: 3\n\nabc"}};
}

Seeds transfers() {
    return {{QStringLiteral("transfer"),
             R"({"ids":[{"kind":"album","rawValue":"1"},{"kind":"radio","rawValue":"\ud83c\udfb5"}]})"}};
}

Seeds queues() {
    return {{QStringLiteral("queue"),
             R"({"currentIndex":1,"items":[
{"artist":"a","album":"b","bitrate":320,"channels":2,"duration":0.5,"id":"00010000-0001-0002-0304-05060708090a",
"sampleRate":44100,"source":{"kind":"file","path":"/a"},"title":"t"},
{"id":"00010001-0001-0002-0304-05060708090a","mediaID":{"kind":"album","rawValue":"5"},"title":"u"}],
"repeat":"one","shuffle":true,"version":1})"}};
}

Seeds presets() {
    const EQPreset slope(QStringLiteral("Slope"), -3,
                         std::array<float, 10>{12, 9, 6, 3, 0, 0, -3, -6, -9, -12});
    const EQPreset named(QString(300, QLatin1Char('n')), 12, slope.gains());
    return {{QStringLiteral("none"), EQFFile::serialize({})},
            {QStringLiteral("one"), EQFFile::serialize(std::array{slope})},
            {QStringLiteral("several"), EQFFile::serialize(std::array{slope, named, slope})},
            {QStringLiteral("cut"), EQFFile::serialize(std::array{slope, named}).chopped(9)}};
}

Seeds envelopes() {
    return {
        {QStringLiteral("info"),
         R"({"server_id":"s","server_version":"2.7.0","schema_version":65,"min_supported_schema_version":28,)"
         R"("base_url":"http://s:8095","homeassistant_addon":true,"onboard_done":true,"name":"n"})"},
        {QStringLiteral("auth"),
         R"({"message_id":"1","result":{"authenticated":true,"user":{"user_id":"u","username":"n",)"
         R"("role":"user","display_name":"d"}},"partial":false})"},
        {QStringLiteral("piece"), R"({"message_id":7,"result":[{"item_id":"1","name":"t"}],"partial":true})"},
        {QStringLiteral("error"), R"({"message_id":"7","error_code":23,"details":"d"})"},
        {QStringLiteral("event"), R"({"event":"queue_updated","object_id":"q","data":{"items":3}})"}};
}

Seeds items() {
    const QByteArray identity = R"("item_id":"1","provider":"library","name":"n","uri":"library://track/1")";
    const QByteArray mapping =
        '{' + identity + R"(,"media_type":"album","image":{"path":"p","provider":"q"}})";
    const QByteArray track =
        '{' + identity + R"(,"media_type":"track","duration":1.5,"artists":[)" + mapping + R"(],"album":)" +
        mapping +
        R"(,"provider_mappings":[{"item_id":"i","provider_domain":"d","audio_format":)"
        R"({"sample_rate":44100,"bit_rate":320}}],"metadata":{"images":[{"path":"x"}],"genres":["g"]},)"
        R"("position":3,"favorite":true})";
    const QByteArray entry =
        R"({"queue_item_id":"e","name":"a - b","duration":3,"media_item":)" + track + '}';
    return {{QStringLiteral("track"), track},
            {QStringLiteral("queue"),
             R"({"queue_id":"q","items":2,"current_index":0,"current_item":)" + entry + '}'},
            {QStringLiteral("page"), '[' + entry + ",7]"},
            {QStringLiteral("player"),
             R"({"player_id":"p","group_members":["p","r"],"current_media":{"uri":"u","title":"t"},)"
             R"("output_protocols":[{"output_protocol_id":"c","protocol_domain":"sendspin"}]})"},
            {QStringLiteral("commands"),
             R"([{"command":"music/playlists/move_playlist_track","parameters":[{"name":"playlist_id"},)"
             R"({"name":"from"},{"name":"to_index"}]}])"}};
}

Seeds sendspinFrames() {
    return {{QStringLiteral("audio"), QByteArray("0\4\0\0\0\0\0\0\0\1sound", 15)},
            {QStringLiteral("hello"),
             R"(1{"type":"server/hello","payload":{"server_id":"s","name":"n","version":1,)"
             R"("active_roles":["player@v1"],"connection_reason":"playback"}})"},
            {QStringLiteral("time"), R"(1{"type":"server/time","payload":{"client_transmitted":1,)"
                                     R"("server_received":2,"server_transmitted":3}})"},
            {QStringLiteral("start"), R"(1{"type":"stream/start","payload":{"player":{"codec":"flac",)"
                                      R"("sample_rate":44100,"channels":2,"bit_depth":24,)"
                                      R"("codec_header":"ZkxhQw=="},"server_transmitted":7}})"},
            {QStringLiteral("end"), R"(1{"type":"stream/end","payload":{"roles":["player"]}})"},
            {QStringLiteral("group"), R"(1{"type":"group/update","payload":{"playback_state":"playing",)"
                                      R"("group_id":null,"group_name":"n"}})"},
            {QStringLiteral("command"),
             R"(1{"type":"server/command","payload":{"player":{"command":"volume",)"
             R"("volume":30,"mute":true,"static_delay_ms":9}}})"}};
}

Seeds museumPages() {
    const QByteArray row = R"({"md5":"0123456789abcdef0123456789abcdef","filename":"a/b.wsz","nsfw":true,)"
                           R"("screenshot_url":"https://s/1","download_url":"https://d/1",)"
                           R"("museum_url":"https://m/1"})";
    return {{QStringLiteral("browse"), R"(6{"data":{"skins":{"count":7,"nodes":[)" + row + "]}}}"},
            {QStringLiteral("search"), R"(7{"data":{"search_classic_skins":[)" + row + "]}}"},
            {QStringLiteral("error"), R"(6{"errors":[{"message":"m"}],"data":null})"}};
}

bool write(const QString &folder, const Seeds &seeds) {
    if (!QDir().mkpath(folder))
        return false;
    for (auto seed = seeds.cbegin(); seed != seeds.cend(); ++seed) {
        QFile file(folder + QLatin1Char('/') + seed.key());
        if (!file.open(QIODevice::WriteOnly) || file.write(*seed) != seed->size())
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fputs("usage: fuzz-seeds <folder>\n", stderr);
        return 2;
    }
    const QString folder = QFile::decodeName(argv[1]) + QLatin1Char('/');
    const bool written = write(folder + QStringLiteral("BMPDecoder"), bitmaps()) &&
                         write(folder + QStringLiteral("CursorBitmap"), cursors()) &&
                         write(folder + QStringLiteral("AniParser"), animations()) &&
                         write(folder + QStringLiteral("EQFFile"), presets()) &&
                         write(folder + QStringLiteral("HttpAnswer"), answers()) &&
                         write(folder + QStringLiteral("MAEnvelope"), envelopes()) &&
                         write(folder + QStringLiteral("MAItems"), items()) &&
                         write(folder + QStringLiteral("MediaIDTransfer"), transfers()) &&
                         write(folder + QStringLiteral("MuseumPage"), museumPages()) &&
                         write(folder + QStringLiteral("PlaylistFile"), playlists()) &&
                         write(folder + QStringLiteral("QueueFile"), queues()) &&
                         write(folder + QStringLiteral("SendspinIncoming"), sendspinFrames()) &&
                         write(folder + QStringLiteral("SkinArchive"), archives()) &&
                         write(folder + QStringLiteral("SkinTexts"), texts());
    return written ? 0 : 1;
}
