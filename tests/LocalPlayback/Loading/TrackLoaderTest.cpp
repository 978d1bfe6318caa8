#include "LocalPlayback/Loading/TrackLoader.h"

#include "tests/Support/AudioFileBuilder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

class TrackLoaderTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(m_folder.path()).mkpath(u"album"_qs));
        writeAudioFile(m_folder.filePath(u"album/b.wav"_qs));
        writeAudioFile(m_folder.filePath(u"album/a.flac"_qs), {.tags = {{u"title"_qs, u"Tagged"_qs}}});
        write(u"album/album.m3u"_qs, "b.wav");
        write(u"album/notes.txt"_qs, "no sound");
    }
    QUrl write(const QString &name, const QByteArray &bytes) const {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return QUrl::fromLocalFile(m_folder.filePath(name));
    }
    [[nodiscard]] TrackLoader::Batch load(const QList<QUrl> &urls) const {
        TrackLoader::Batch all;
        TrackLoader::load(urls, m_cancelled, [&](const TrackLoader::Batch &batch) {
            all.tracks.insert(all.tracks.end(), batch.tracks.begin(), batch.tracks.end());
            all.skipped.insert(all.skipped.end(), batch.skipped.begin(), batch.skipped.end());
        });
        return all;
    }
    [[nodiscard]] static QStringList titles(const TrackLoader::Batch &batch) {
        QStringList titles;
        for (const Track &track : batch.tracks)
            titles << track.title;
        return titles;
    }

    QTemporaryDir m_folder;
    std::atomic_bool m_cancelled = false;
};

} // namespace

TEST_F(TrackLoaderTest, AFolderGivesItsAudioAndAListWhatItNames) {
    EXPECT_EQ(titles(load({QUrl::fromLocalFile(m_folder.filePath(u"album"_qs))})),
              (QStringList{u"Tagged"_qs, u"b"_qs}));

    const QUrl list = write(u"list.m3u"_qs, "#EXTINF:1,Somebody - Listed\nalbum/b.wav\n#EXTINF:1,Ignored\n"
                                            "album/a.flac\nalbum/notes.txt\nalbum/gone.mp3\nalbum");
    const TrackLoader::Batch batch = load({list});
    EXPECT_EQ(titles(batch), (QStringList{u"Somebody - Listed"_qs, u"Tagged"_qs}));
    QStringList skipped;
    for (const SkippedFile &file : batch.skipped)
        skipped << file.url.fileName() + u": "_qs + file.reason;
    EXPECT_EQ(skipped, (QStringList{u"notes.txt: This file is not a supported audio file."_qs,
                                    u"gone.mp3: This audio file could not be read."_qs,
                                    u"album: This file is not a supported audio file."_qs}));
}

TEST_F(TrackLoaderTest, TenThousandMissingFilesAreEachReported) {
    const TrackLoader::Batch batch = load({write(u"list.m3u"_qs, QByteArray("gone.mp3\n").repeated(10'000))});
    EXPECT_EQ(batch.tracks.size(), 0U);
    EXPECT_EQ(batch.skipped.size(), 10'000U);
}

TEST_F(TrackLoaderTest, TheFirstTrackComesAtOnceAndNothingAfterCancelling) {
    const QUrl list = write(u"list.m3u"_qs, QByteArray("album/b.wav\n").repeated(50));
    int deliveries = 0;
    TrackLoader::load({list}, m_cancelled, [&](const TrackLoader::Batch &batch) {
        EXPECT_EQ(batch.tracks.size(), 1U);
        ++deliveries;
        m_cancelled = true;
    });
    EXPECT_EQ(deliveries, 1);
}
