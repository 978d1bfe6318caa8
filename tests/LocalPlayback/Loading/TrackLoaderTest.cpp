#include "LocalPlayback/Loading/TrackLoader.h"

#include "tests/LocalPlayback/FolderFixture.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/HttpTestServer.h"

using namespace vantor;

namespace {

class TrackLoaderTest : public test::FolderFixture {
  protected:
    /// Titles of the tracks, and names and reasons of the others.
    [[nodiscard]] static QStringList load(const QUrl &url) {
        QStringList texts;
        TrackLoader::load({url}, {}, [&](const TrackLoader::Batch &batch) {
            for (const Track &track : batch.tracks)
                texts << (track.artist.isEmpty() ? track.title : track.artist + u": "_qs + track.title);
            for (const SkippedFile &file : batch.skipped)
                texts << file.url.fileName() + u": "_qs + file.reason;
        });
        texts.sort(); // what was skipped comes with the next tracks
        return texts;
    }
};

} // namespace

TEST_F(TrackLoaderTest, AFolderGivesItsAudioAndAListWhatItNames) {
    makeFolder(u"album"_qs);
    writeAudioFile(m_folder.filePath(u"album/b.wav"_qs));
    writeAudioFile(m_folder.filePath(u"album/a.flac"_qs), {.tags = {{u"title"_qs, u"Tagged"_qs}}});
    write(u"album/album.m3u"_qs, "b.wav");
    write(u"album/notes.txt"_qs, "no sound");
    EXPECT_EQ(load(url(u"album"_qs)), (QStringList{u"Tagged"_qs, u"b"_qs}));

    const QUrl list = write(u"list.m3u"_qs, "#EXTINF:1,Somebody - Listed\nalbum/b.wav\n#EXTINF:1,Ignored\n"
                                            "album/a.flac\nalbum/notes.txt\nalbum");
    EXPECT_EQ(load(list), (QStringList{u"Somebody - Listed"_qs, u"Tagged"_qs,
                                       u"album: This file is not a supported audio file."_qs,
                                       u"notes.txt: This file is not a supported audio file."_qs}));
    EXPECT_EQ(load(write(u"sheet.cue"_qs, "PERFORMER Ana\nTITLE Dusk\nFILE album/a.wav WAVE\n"
                                          "FILE album/b.ape WAVE\nFILE album/c.wav WAVE")),
              (QStringList{u"Ana: Dusk"_qs, u"Tagged"_qs, u"c.wav: This audio file could not be read."_qs}));
    std::vector<Track> parts;
    const QUrl sheet = write(u"parts.cue"_qs, "PERFORMER Ana\nTITLE Dusk\nFILE album/a.wav WAVE\nTRACK 1\n"
                                              "TITLE One\nINDEX 01 00:00:00\nTRACK 2\nINDEX 01 00:00:15");
    TrackLoader::load({sheet}, {}, [&](const TrackLoader::Batch &batch) {
        parts.insert(parts.end(), batch.tracks.begin(), batch.tracks.end());
    });
    ASSERT_EQ(parts.size(), 2U);
    EXPECT_EQ(parts[0].title + parts[0].artist + *parts[0].album, u"OneAnaDusk"_qs);
    EXPECT_EQ(parts[0].source, Track::Source(url(u"album/a.flac"_qs)));
    EXPECT_EQ(parts[0].range, (TrackRange{0, 0.2}));
    EXPECT_NEAR(parts[0].duration, 0.2, 1e-9);
    EXPECT_EQ(parts[1].title, u"Track 2"_qs) << "not the file's own";
    EXPECT_NEAR(parts[1].duration, 0.8, 1e-6);
    EXPECT_NE(parts[0].id, parts[1].id);
    EXPECT_EQ(load(write(u"gone.m3u"_qs, QByteArray("gone.mp3\n").repeated(10'000))),
              QStringList(10'000, u"gone.mp3: This audio file could not be read."_qs));

    // The first track comes at once, and nothing after cancelling.
    std::stop_source stop;
    std::vector<size_t> deliveries;
    TrackLoader::load({list}, stop.get_token(), [&](const TrackLoader::Batch &batch) {
        deliveries.push_back(batch.tracks.size());
        stop.request_stop();
    });
    EXPECT_EQ(deliveries, std::vector<size_t>{1});
}

TEST_F(TrackLoaderTest, AddressesBecomeTracksAndListsThereWhatTheyName) {
    const auto answer = [](const char *type, const QByteArray &body) {
        return QByteArray("HTTP/1.1 200 OK\r\nContent-Type: ") + type +
               "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
    };
    const HttpTestServer server([&](const HttpTestServer::Request &request,
                                    HttpTestServer::Connection &connection) {
        const std::map<QByteArray, QByteArray> answers{
            {"/radio", "ICY 200 OK\r\nicy-name: The Station\r\n\r\nsound"},
            {"/listen",
             answer("audio/x-scpls", "[playlist]\nFile1=http://h/a\nTitle1=One\nFile2=/b/two.mp3\n")},
            {"/dir/a.m3u", answer("text/plain", "#EXTINF:-1,Named\nc%20d.mp3\nfile:///etc/passwd\nb.m3u\n")},
            {"/dir/b.m3u", answer("text/plain", "http://other.host/\na.m3u\n")},
            {"/hls.m3u8", answer("audio/mpegurl", "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXTINF:5,\na.ts\n")},
            {"/big.pls", answer("audio/x-scpls", QByteArray(2 << 20, 'x'))},
        };
        if (request.path.startsWith("/list") && request.path.endsWith(".m3u")) {
            const int next = request.path.mid(5, 1).toInt() + 1;
            connection.send(answer("text/plain", "song.mp3\n/list" + QByteArray::number(next) + ".m3u\n"));
            return;
        }
        const auto found = answers.find(request.path);
        connection.send(found == answers.end() ? "HTTP/1.1 404 No\r\n\r\n" : found->second);
    });
    const std::pair<const char *, QStringList> rows[] = {
        {"/radio", {u"The Station"_qs}},
        {"/listen", {u"One"_qs, u"two"_qs}},
        {"/dir/a.m3u",
         {u"Named"_qs, u"a.m3u: This playlist contains itself."_qs, u"other.host"_qs,
          u"passwd: This kind of address is not supported."_qs}},
        {"/hls.m3u8", {u"hls.m3u8: This audio file's format is not supported."_qs}},
        {"/list0.m3u",
         {u"list5.m3u: This playlist lies too deep inside other playlists."_qs, u"song"_qs, u"song"_qs,
          u"song"_qs, u"song"_qs, u"song"_qs}},
        {"/big.pls", {u"big.pls: This playlist file is too large."_qs}},
        {"/gone", {u"gone"_qs}},
        {"/gone%20song.mp3", {u"gone song"_qs}},
        {"/gone.m3u", {u"gone.m3u: This audio file could not be read."_qs}},
    };
    for (const auto &[path, expected] : rows)
        EXPECT_EQ(load(server.url(path)), expected) << path;
    const QByteArray host = server.url("").toEncoded();
    EXPECT_EQ(load(write(u"list.m3u"_qs, "#EXTINF:-1,Named\n" + host + "/radio\n" + host + "/listen\n")),
              (QStringList{u"Named"_qs, u"listen"_qs}))
        << "the many addresses of a list are not all asked";
}
