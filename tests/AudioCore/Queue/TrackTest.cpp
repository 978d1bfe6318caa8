#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Queue/PlaylistSelection.h"
#include "AudioCore/Queue/TrackInfo.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/TestFolder.h"

#include <gtest/gtest.h>
#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>

#include <random>

using namespace vantor;

namespace {

TEST(TrackTest, ReadsWhatFilesSayOfThemselves) {
    struct Row {
        const char *extension;
        int sampleRate, channels;
        double tolerance; ///< seconds; lossy coders pad
    };
    const QTemporaryDir folder;
    for (const Row &row : {Row{"wav", 22050, 1, 0.001},
                           {"aiff", 44100, 2, 0.001},
                           {"flac", 96000, 2, 0.001},
                           {"mp3", 44100, 2, 0.08},
                           {"ogg", 48000, 1, 0.02},
                           {"opus", 48000, 2, 0.02},
                           {"m4a", 44100, 2, 0.05},
                           {"mka", 48000, 2, 0.02}}) {
        SCOPED_TRACE(row.extension);
        const QString path = folder.filePath(u"Über 夜.v2."_qs) + QLatin1String(row.extension);
        const QUrl url = QUrl::fromLocalFile(path);
        AudioFileContent content{.seconds = 1.5, .sampleRate = row.sampleRate, .channels = row.channels};
        writeAudioFile(path, content);
        Track expected = Track::file(url);
        EXPECT_NEAR(expected.duration, content.seconds, row.tolerance);
        EXPECT_GT(expected.bitrate.value_or(0), 1);
        EXPECT_LT(expected.bitrate.value_or(0), 3100);
        EXPECT_EQ(std::tie(expected.title, expected.artist, expected.album, expected.source),
                  std::tuple(u"Über 夜.v2"_qs, QString(), std::nullopt, Track::Source(url)));
        EXPECT_EQ(std::tie(expected.sampleRate, expected.channels), std::tie(row.sampleRate, row.channels));
        content.tags = {
            {u"title"_qs, u"Żółw\n"_qs}, {u"artist"_qs, u"Ana & 夜"_qs}, {u"album"_qs, u"Dusk"_qs}};
        writeAudioFile(path, content);
        const Track tagged = Track::file(url);
        EXPECT_NE(tagged.id, expected.id);
        EXPECT_EQ(std::tie(tagged.title, tagged.artist, tagged.album, tagged.sampleRate),
                  std::tuple(u"Żółw"_qs, u"Ana & 夜"_qs, u"Dusk"_qs, expected.sampleRate));
    }
}

TEST(TrackTest, JoinsSeveralArtists) {
    const QTemporaryDir folder;
    for (const char *name : {"a.flac", "a.mp3", "a.m4a"}) {
        const QString path = folder.filePath(QLatin1String(name));
        writeAudioFile(path, {.seconds = 0.1});
        TagLib::FileRef file(path.toUtf8().constData());
        TagLib::PropertyMap tags;
        tags["ARTIST"] = TagLib::StringList("Ana").append("Bo").append("Ana");
        file.file()->setProperties(tags);
        ASSERT_TRUE(file.save());
        EXPECT_EQ(Track::file(QUrl::fromLocalFile(path)).artist, u"Ana, Bo"_qs) << name;
    }
}

TEST(TrackTest, RefusesWhatIsNoAudioFile) {
    const TestFolder folder;
    folder.write("empty.mp3", {});
    folder.write("text.flac", QByteArray("not sound at all\n").repeated(500));
    folder.write("zeros.wav", QByteArray(9000, '\0'));
    const QString file = QUrl::fromLocalFile(folder.path()).toString() + QLatin1Char('/');
    const std::pair<QString, AudioCoreError> rows[] = {
        {file + u"empty.mp3"_qs, AudioCoreError::openFailure()},
        {file + u"text.flac"_qs, AudioCoreError::openFailure()},
        {file + u"zeros.wav"_qs, AudioCoreError::openFailure()},
        {file, AudioCoreError::openFailure()},
        {file + u"none.mp3"_qs, AudioCoreError::readFailure()},
        {u"http://127.0.0.1:9/a.mp3"_qs, AudioCoreError::unresolvableSource()}};
    for (const auto &[url, expected] : rows) {
        try {
            (void)Track::file(QUrl(url));
            ADD_FAILURE() << url.toStdString();
        } catch (const AudioCoreError &error) {
            EXPECT_EQ(error, expected) << url.toStdString();
        }
    }
}

TEST(TrackTest, DamagedFilesGiveATrackOrAnError) {
    std::mt19937 random(3);
    const TestFolder folder;
    for (const char *name : {"a.wav", "a.aiff", "a.flac", "a.mp3", "a.ogg", "a.opus", "a.m4a", "a.mka"}) {
        SCOPED_TRACE(name);
        const QString path = folder.path(name);
        writeAudioFile(path, {.seconds = 0.2, .sampleRate = 48000, .tags = {{u"title"_qs, u"Dusk"_qs}}});
        const QByteArray sound = folder.read(path);
        for (int round = 0; round < 20; ++round) {
            QByteArray damaged = round % 2 ? sound : sound.left(round * 20);
            for (int hit = 0; hit < round && !damaged.isEmpty(); ++hit)
                damaged[std::min<qsizetype>(random() % 1024, damaged.size() - 1)] =
                    static_cast<char>(random());
            try {
                const Track track = Track::file(QUrl::fromLocalFile(folder.write(name, damaged)));
                EXPECT_TRUE(std::isfinite(track.duration) && track.duration >= 0);
                EXPECT_FALSE(track.title.isEmpty());
            } catch (const AudioCoreError &error) {
                EXPECT_EQ(error, AudioCoreError::openFailure());
            }
        }
    }
}

TEST(TrackInfoTest, ListsWhatIsKnown) {
    using Text = std::pair<double, const char *>;
    for (const auto &[seconds, text] :
         {Text{-5, "0:00"}, {59.99, "0:59"}, {3599.9, "59:59"}, {36061, "10:01:01"}, {NAN, "0:00"}})
        EXPECT_EQ(TrackInfo::durationText(seconds), QLatin1String(text)) << seconds;
    for (const auto &[rate, text] :
         {Text{44100, "44.1 kHz"}, {47960, "48 kHz"}, {11025, "11 kHz"}, {INFINITY, "0 kHz"}})
        EXPECT_EQ(TrackInfo::rateText(rate), QLatin1String(text)) << rate;

    const auto rows = [](const Track &track, std::optional<PlaybackFormat> format) {
        QStringList lines;
        for (const TrackInfo::Row &row : TrackInfo::fromTrack(track, format).rows())
            lines.append(row.label + u": "_qs + row.value);
        return lines.join(u", "_qs);
    };
    Track track;
    track.title = u"Dusk"_qs;
    EXPECT_EQ(rows(track, {}), u"Title: Dusk"_qs);
    track = {{}, u"Dusk"_qs, u"Ana"_qs, u"Night"_qs, 61, 900, {}, 1, {}};
    EXPECT_EQ(rows(track, PlaybackFormat{96000, 2, u"FLAC"_qs, 24}),
              u"Title: Dusk, Artist: Ana, Album: Night, Duration: 1:01, Format: FLAC, 24-bit, "
              "Bitrate: 900 kbps, Sample rate: 96 kHz, Channels: Mono"_qs);
}

TEST(PlaylistSelectionTest, FollowsClicks) {
    std::vector<Track> tracks(5);
    for (Track &track : tracks)
        track.id = QUuid::createUuid();
    PlaylistSelection selection;
    const auto expect = [&](const IndexSet &rows) { EXPECT_EQ(selection.indices(tracks), rows); };
    selection.shiftClick(1, tracks); // nothing to start a range from
    expect({1});
    selection.shiftClick(3, tracks);
    expect({1, 2, 3});
    selection.shiftClick(0, tracks);
    expect({0, 1});
    selection.commandClick(0, tracks);
    selection.commandClick(4, tracks);
    expect({1, 4});
    for (const auto click :
         {&PlaylistSelection::click, &PlaylistSelection::commandClick, &PlaylistSelection::shiftClick})
        for (const int outside : {-1, 5})
            (selection.*click)(outside, tracks);
    expect({1, 4});
    selection.invert(tracks);
    expect({0, 2, 3});
    std::swap(tracks[0], tracks[4]);
    expect({2, 3, 4});
    tracks.pop_back();
    selection.prune(tracks);
    EXPECT_EQ(selection.ids, QSet<QUuid>({tracks[2].id, tracks[3].id}));
    selection.shiftClick(2, tracks); // the anchor's row is gone
    expect({2});
}

} // namespace
