#include "LocalPlayback/Loading/TrackLoader.h"

#include "tests/LocalPlayback/FolderFixture.h"
#include "tests/Support/AudioFileBuilder.h"

using namespace vantor;

namespace {

class TrackLoaderTest : public test::FolderFixture {
  protected:
    /// Titles of the tracks, and names and reasons of the others.
    [[nodiscard]] static QStringList load(const QUrl &url) {
        QStringList texts;
        TrackLoader::load({url}, false, [&](const TrackLoader::Batch &batch) {
            for (const Track &track : batch.tracks)
                texts << track.title;
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
    EXPECT_EQ(load(write(u"gone.m3u"_qs, QByteArray("gone.mp3\n").repeated(10'000))),
              QStringList(10'000, u"gone.mp3: This audio file could not be read."_qs));

    // The first track comes at once, and nothing after cancelling.
    std::atomic_bool cancelled = false;
    std::vector<size_t> deliveries;
    TrackLoader::load({list}, cancelled, [&](const TrackLoader::Batch &batch) {
        deliveries.push_back(batch.tracks.size());
        cancelled = true;
    });
    EXPECT_EQ(deliveries, std::vector<size_t>{1});
}
