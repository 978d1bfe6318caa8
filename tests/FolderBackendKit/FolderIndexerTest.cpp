#include "FolderBackendKit/FolderIndexer.h"

#include "FolderBackendKit/FolderIndexFile.h"
#include "FolderBackendKit/FolderLibrary.h"
#include "tests/Support/MusicFiles.h"

#include <QDir>

#include <gmock/gmock.h>

namespace vantor {

namespace {

using test::MusicFiles;
using testing::ElementsAre;

const MusicFiles &music() {
    static const MusicFiles files;
    return files;
}

/// Reads as the real one does and keeps what it was asked for.
class Reader {
  public:
    FolderIndex scan(const QString &root, const FolderIndex &previous = {}) {
        m_read.clear();
        const FolderIndexer indexer([this](const QString &path) { return read(path); }, 1);
        return indexer.build(root, previous).value();
    }
    [[nodiscard]] const QStringList &lastRead() const { return m_read; }

  private:
    FileMetadata read(const QString &path) {
        m_read.append(path.section(u'/', -1));
        return FileMetadata::read(path);
    }

    QStringList m_read;
};

std::vector<std::string> lines(const FolderIndex &index) {
    std::vector<std::string> result;
    for (const FolderTrack &track : index.tracks) {
        const StoredAlbum &album = index.albums[static_cast<std::size_t>(track.album)];
        const auto number = [](std::optional<int> value) {
            return value ? QString::number(*value) : QStringLiteral("-");
        };
        result.push_back(QStringLiteral("%1/%2 %3.%4 %5")
                             .arg(*album.artistName, album.title, number(track.library.discNumber),
                                  number(track.library.trackNumber), track.library.title)
                             .toStdString());
    }
    return result;
}

} // namespace

TEST(FolderIndexerTest, TagsWinOverNamesAndFoldersOverTags) {
    const TestFolder folder;
    music().write(folder.path("The Band/1970 - Late/9 - file.flac"), {.title = QStringLiteral("Tagged"),
                                                                      .artist = QStringLiteral("Other"),
                                                                      .track = QStringLiteral("2/9"),
                                                                      .disc = QStringLiteral("3/3")});
    music().write(folder.path("The Band/1970 - Late/Disc 1/08 Named.mp3"), {.disc = QStringLiteral("7")});
    music().write(folder.path("The Band/1970 - Late/Disc 1/09 Numbered.ogg"), {.track = QStringLiteral("1")});
    music().write(folder.path("The Band/1970 - Late/Disc 1/Last.mp3"));
    music().write(folder.path("The Band/Early (1969)/10 b.mp3"));
    music().write(folder.path("The Band/Early (1969)/2 a.mp3"));
    music().write(folder.path("The Band/Undated/x.mp3"));
    music().write(folder.path("The Band/Alone.mp3"));
    music().write(folder.path("Aardvark/Z/x.mp3"));
    music().write(folder.path("Cat/Z/x.mp3"));
    const FolderIndex index = Reader().scan(folder.path());
    EXPECT_THAT(lines(index),
                ElementsAre("Aardvark/Z -.- x", "The Band/Early -.2 a", "The Band/Early -.10 b",
                            "The Band/Late 1.1 Numbered", "The Band/Late 1.8 Named", "The Band/Late 1.- Last",
                            "The Band/Late 3.2 Tagged", "The Band/Undated -.- x",
                            "The Band/Singles -.- Alone", "Cat/Z -.- x"));
    const StoredTrack &track = index.tracks[6].library;
    EXPECT_NEAR(track.duration.value(), 0.25, 0.05);
    EXPECT_EQ(track.sampleRate, 44100);
    EXPECT_EQ(track.channels, 2);
    EXPECT_EQ(index.summary, (FolderIndexSummary{0, 10, 0}));
    const FolderLibrary library(index);
    EXPECT_EQ(library.track(6).artistName, u"Other");
    EXPECT_EQ(library.track(6).artistID, std::nullopt); // who has no folder
    EXPECT_EQ(library.track(5).artistName, u"The Band");
    EXPECT_EQ(library.search(QStringLiteral("other late"), 5).tracks, QList{library.track(6)});
}

TEST(FolderIndexerTest, OnlyWhatHasChangedIsReadAgain) {
    const TestFolder folder;
    for (const char *name : {"a", "b", "c"})
        music().write(folder.path("A/B/") + QLatin1String(name) + QLatin1String(".mp3"));
    folder.write("A/B/broken.mp3", QByteArray(5000, 'x'));
    folder.write("A/B/other.doc", "x");
    Reader reader;
    const FolderIndex first = reader.scan(folder.path());
    EXPECT_EQ(first.summary, (FolderIndexSummary{0, 3, 2, 1}));

    FolderIndex again = reader.scan(folder.path(), first);
    EXPECT_THAT(reader.lastRead(), ElementsAre());
    EXPECT_EQ(again.summary, (FolderIndexSummary{3, 0, 2, 1}));
    again.summary = first.summary;
    again.builtAt = first.builtAt;
    EXPECT_EQ(again, first);

    music().write(folder.path("A/B/b.mp3"), {.title = QStringLiteral("New")});
    QFile::remove(folder.path("A/B/c.mp3"));
    const FolderIndex changed = reader.scan(folder.path(), again);
    EXPECT_THAT(reader.lastRead(), ElementsAre(QStringLiteral("b.mp3")));
    EXPECT_THAT(lines(changed), ElementsAre("A/B -.- a", "A/B -.- New"));
}

TEST(FolderIndexerTest, IdentifiersOutlastTheRenamingOfOthers) {
    const TestFolder folder;
    for (const char *path : {"A/B/1.mp3", "A/B/2.mp3", "A/C/1.mp3", "A/s.mp3", "D/E/1.mp3", "high.mp3"})
        music().write(folder.path(path));
    Reader reader;
    const FolderIndex before = reader.scan(folder.path());
    for (const auto &[from, to] : {std::pair("A/B/1.mp3", "A/B/9.mp3"), {"A/C", "A/Z"}, {"D", "0"}})
        ASSERT_TRUE(QFile::rename(folder.path(from), folder.path(to)));
    const FolderLibrary after(reader.scan(folder.path(), before));
    const std::pair<MediaID, std::size_t> rows[] = {
        {{MediaKind::track, QStringLiteral("A/B/2.mp3")}, 1},
        {{MediaKind::album, QStringLiteral("A/B")}, 2},
        {{MediaKind::artist, QStringLiteral("A")}, 4},
        {{MediaKind::track, QStringLiteral("A/s.mp3")}, 1},
        {{MediaKind::album, QStringLiteral("A/")}, 1},
        {{MediaKind::artist, QStringLiteral(".")}, 1},
        {{MediaKind::artist, QStringLiteral("D")}, 0},
    };
    for (const auto &[id, count] : rows) {
        SCOPED_TRACE(id.description().toStdString());
        EXPECT_EQ(after.places(id).size(), count);
    }
}

TEST(FolderIndexerTest, TagsOfAMillionBytesAreCut) {
    const TestFolder folder;
    music().write(folder.path("A/B/1.flac"), {.title = QString(1'000'000, u'x')});
    music().write(folder.path("A/B/2.mp3"),
                  {.title = QString(1'000'000, u'y'), .track = QString(100'000, u'9')});
    const FolderIndex index = Reader().scan(folder.path());
    ASSERT_EQ(index.tracks.size(), 2U);
    for (const FolderTrack &track : index.tracks) {
        EXPECT_LE(track.library.title.size(), 1024);
        EXPECT_EQ(track.library.trackNumber, std::nullopt);
    }
}

TEST(FolderIndexFileTest, GivesBackWhatWasWrittenAndNothingOfDamagedFiles) {
    const TestFolder folder;
    music().write(folder.path("music/A/B (1999)/1.mp3"));
    folder.write("music/A/B (1999)/x.doc", "x");
    FolderIndex index = Reader().scan(folder.path("music"));
    index.tracks[0].relativePath += QChar(0xDCFF); // a byte that is no text
    const QString path = folder.path("new/folder/index");
    ASSERT_TRUE(FolderIndexFile::write(path, index));
    EXPECT_EQ(FolderIndexFile::read(path), index);

    const QByteArray bytes = TestFolder::read(path);
    for (qsizetype length = 0; length < bytes.size(); ++length) {
        SCOPED_TRACE(length);
        folder.write("cut", bytes.first(length));
        EXPECT_EQ(FolderIndexFile::read(folder.path("cut")), std::nullopt);
    }
    for (qsizetype at = 0; at < bytes.size(); ++at) { // whatever it gives, a library can be made of it
        QByteArray changed = bytes;
        changed[at] = static_cast<char>(~changed[at]);
        folder.write("changed", changed);
        if (auto read = FolderIndexFile::read(folder.path("changed")))
            static_cast<void>(FolderLibrary(*std::move(read)).search(QStringLiteral("a"), 10));
    }
    EXPECT_EQ(FolderIndexFile::read(folder.path("missing")), std::nullopt);
    EXPECT_FALSE(FolderIndexFile::write(folder.path("cut/below/index"), index));
}

} // namespace vantor
