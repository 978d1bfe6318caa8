#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Queue/PlaylistSelection.h"
#include "AudioCore/Queue/TrackInfo.h"
#include "tests/Support/AudioFileBuilder.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>

#include <random>

using namespace vantor;

namespace {

QString utf8(const char *text) {
    return QString::fromUtf8(text);
}

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
        const QString path = folder.filePath(utf8("Über 夜.v2.")) + QLatin1String(row.extension);
        AudioFileContent content{.seconds = 1.5, .sampleRate = row.sampleRate, .channels = row.channels};
        writeAudioFile(path, content);
        const Track untagged = Track::file(QUrl::fromLocalFile(path));
        EXPECT_EQ(untagged.title, utf8("Über 夜.v2"));
        EXPECT_EQ(untagged.artist, QString());
        EXPECT_EQ(untagged.album, std::nullopt);
        EXPECT_NEAR(untagged.duration, content.seconds, row.tolerance);
        EXPECT_EQ(untagged.sampleRate, row.sampleRate);
        EXPECT_EQ(untagged.channels, row.channels);
        EXPECT_GT(untagged.bitrate.value_or(0), 1);
        EXPECT_LT(untagged.bitrate.value_or(0), 3100);

        content.tags = {{utf8("title"), utf8("Żółw\n")},
                        {utf8("artist"), utf8("Ana & 夜")},
                        {utf8("album"), utf8("Dusk")}};
        writeAudioFile(path, content);
        const Track tagged = Track::file(QUrl::fromLocalFile(path));
        EXPECT_NE(tagged.id, untagged.id);
        EXPECT_EQ(tagged.source, untagged.source);
        EXPECT_EQ(tagged.title, utf8("Żółw"));
        EXPECT_EQ(tagged.artist, utf8("Ana & 夜"));
        EXPECT_EQ(tagged.album, utf8("Dusk"));
    }
}

TEST(TrackTest, JoinsSeveralArtists) {
    const QTemporaryDir folder;
    for (const char *name : {"a.flac", "a.mp3", "a.m4a"}) {
        const QString path = folder.filePath(utf8(name));
        writeAudioFile(path, {.seconds = 0.1});
        TagLib::FileRef file(path.toUtf8().constData());
        TagLib::PropertyMap tags;
        tags["ARTIST"] = TagLib::StringList("Ana").append("Bo").append("Ana");
        file.file()->setProperties(tags);
        ASSERT_TRUE(file.save());
        EXPECT_EQ(Track::file(QUrl::fromLocalFile(path)).artist, utf8("Ana, Bo")) << name;
    }
}

TEST(TrackTest, RefusesWhatIsNoAudioFile) {
    const QTemporaryDir folder;
    const auto failureOf = [](const QUrl &url) -> std::optional<AudioCoreError> {
        try {
            (void)Track::file(url);
        } catch (const AudioCoreError &error) {
            return error;
        }
        return std::nullopt;
    };
    const auto write = [&](const char *name, const QByteArray &bytes) {
        QFile file(folder.filePath(utf8(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return QUrl::fromLocalFile(file.fileName());
    };
    EXPECT_EQ(failureOf(write("empty.mp3", {})), AudioCoreError::openFailure());
    EXPECT_EQ(failureOf(write("text.flac", QByteArray("not sound at all\n").repeated(500))),
              AudioCoreError::openFailure());
    EXPECT_EQ(failureOf(write("zeros.wav", QByteArray(9000, '\0'))), AudioCoreError::openFailure());
    EXPECT_EQ(failureOf(QUrl::fromLocalFile(folder.path())), AudioCoreError::openFailure());
    EXPECT_EQ(failureOf(QUrl::fromLocalFile(folder.filePath(utf8("none.mp3")))),
              AudioCoreError::readFailure());
    EXPECT_EQ(failureOf(QUrl(utf8("http://127.0.0.1:9/a.mp3"))), AudioCoreError::unresolvableSource());
}

TEST(TrackTest, DamagedFilesGiveATrackOrAnError) {
    std::mt19937 random(3);
    const QTemporaryDir folder;
    for (const char *extension : {"wav", "aiff", "flac", "mp3", "ogg", "opus", "m4a", "mka"}) {
        SCOPED_TRACE(extension);
        QFile file(folder.filePath(utf8("a.")) + utf8(extension));
        writeAudioFile(file.fileName(),
                       {.seconds = 0.2, .sampleRate = 48000, .tags = {{utf8("title"), utf8("Dusk")}}});
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray sound = file.readAll();
        for (int round = 0; round < 20; ++round) {
            QByteArray damaged =
                sound.left(round % 2 ? sound.size() : std::min<qsizetype>(round * 20, sound.size()));
            for (int hit = 0; hit < round && !damaged.isEmpty(); ++hit)
                damaged[std::min<qsizetype>(random() % 1024, damaged.size() - 1)] =
                    static_cast<char>(random());
            file.close();
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(damaged) == damaged.size());
            file.close();
            try {
                const Track track = Track::file(QUrl::fromLocalFile(file.fileName()));
                EXPECT_TRUE(std::isfinite(track.duration) && track.duration >= 0);
                EXPECT_FALSE(track.title.isEmpty());
            } catch (const AudioCoreError &error) {
                EXPECT_EQ(error, AudioCoreError::openFailure());
            }
        }
    }
}

TEST(TrackInfoTest, WritesTimesAndRates) {
    for (const auto &[seconds, text] :
         std::initializer_list<std::pair<double, const char *>>{{-5, "0:00"},
                                                                {59.99, "0:59"},
                                                                {3599.9, "59:59"},
                                                                {3600, "1:00:00"},
                                                                {36061, "10:01:01"},
                                                                {NAN, "0:00"}})
        EXPECT_EQ(TrackInfo::durationText(seconds), QLatin1String(text)) << seconds;
    for (const auto &[rate, text] :
         std::initializer_list<std::pair<double, const char *>>{{44100, "44.1 kHz"},
                                                                {48000, "48 kHz"},
                                                                {47960, "48 kHz"},
                                                                {11025, "11 kHz"},
                                                                {INFINITY, "0 kHz"}})
        EXPECT_EQ(TrackInfo::rateText(rate), QLatin1String(text)) << rate;
}

TEST(TrackInfoTest, ListsWhatIsKnown) {
    Track track;
    track.title = utf8("Dusk");
    EXPECT_EQ(TrackInfo::fromTrack(track, {}).rows(),
              (std::vector<TrackInfo::Row>{{utf8("Title"), utf8("Dusk")}}));
    track.artist = utf8("Ana");
    track.album = utf8("Night");
    track.duration = 61;
    track.bitrate = 900;
    track.channels = 1;
    const std::vector<TrackInfo::Row> rows{
        {utf8("Title"), utf8("Dusk")},          {utf8("Artist"), utf8("Ana")},
        {utf8("Album"), utf8("Night")},         {utf8("Duration"), utf8("1:01")},
        {utf8("Format"), utf8("FLAC, 24-bit")}, {utf8("Bitrate"), utf8("900 kbps")},
        {utf8("Sample rate"), utf8("96 kHz")},  {utf8("Channels"), utf8("Mono")}};
    EXPECT_EQ(TrackInfo::fromTrack(track, PlaybackFormat{96000, 2, utf8("FLAC"), 24}).rows(), rows);
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
    for (const int outside : {-1, 5}) {
        selection.click(outside, tracks);
        selection.commandClick(outside, tracks);
        selection.shiftClick(outside, tracks);
    }
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
