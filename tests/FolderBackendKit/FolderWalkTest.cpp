#include "FolderBackendKit/FolderWalk.h"

#include "MusicBackendKit/MusicBackendError.h"
#include "Platform/NativePath.h"
#include "tests/Support/TestFolder.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace vantor {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// "artist|album|year|disc|path" of every job.
std::vector<std::string> jobs(const FolderWalk &walk) {
    std::vector<std::string> lines;
    for (const FolderWalk::Job &job : walk.jobs) {
        const FolderWalk::Album &album = walk.albums[static_cast<std::size_t>(job.album)];
        const auto artist = std::ranges::find(walk.artists, album.artistKey, &FolderWalk::Artist::key);
        const auto number = [](std::optional<int> value) {
            return value ? QString::number(*value) : QString();
        };
        lines.push_back(
            QStringList{artist->name, album.title, number(album.year), number(job.disc), job.relativePath}
                .join(u'|')
                .toStdString());
    }
    return lines;
}

std::vector<std::string> jobs(const TestFolder &folder) {
    FolderWalk walk;
    walk.run(folder.path());
    return jobs(walk);
}

void link(const TestFolder &folder, const char *target, const char *name) {
    const QByteArray path = QFile::encodeName(folder.path(name));
    ASSERT_EQ(symlink(target, path.constData()), 0) << name;
}

} // namespace

TEST(FolderWalkTest, FoldersBecomeArtistsAlbumsAndDiscs) {
    const TestFolder folder;
    for (const char *path :
         {"Abba/1976 - Arrival/01.mp3", "Abba/Gold (1992)/CD1/02.mp3", "Abba/Gold (1992)/CD1/Extra/03.mp3",
          "Abba/Gold (1992)/CD 010/04.mp3", "Abba/Gold (1992)/00.FLAC", "Abba/Disc 2/05.mp3",
          "Abba/Single.ogg", "Too High.mp3", ".hidden/X/1.mp3", "Abba/.hidden.mp3", "Empty/Album/readme.txt"})
        folder.write(path, "x");
    EXPECT_THAT(jobs(folder),
                ElementsAre("Abba|Arrival|1976||Abba/1976 - Arrival/01.mp3",
                            "Abba|Disc 2|||Abba/Disc 2/05.mp3", "Abba|Gold|1992||Abba/Gold (1992)/00.FLAC",
                            "Abba|Gold|1992|10|Abba/Gold (1992)/CD 010/04.mp3",
                            "Abba|Gold|1992|1|Abba/Gold (1992)/CD1/02.mp3",
                            "Abba|Gold|1992|1|Abba/Gold (1992)/CD1/Extra/03.mp3",
                            "Abba|Singles|||Abba/Single.ogg", "Unknown Artist|Unknown Album|||Too High.mp3"));
}

TEST(FolderWalkTest, NamesAreComposedAndInTheOrderOfTheirCodePoints) {
    const TestFolder folder;
    for (const char *name : {"Zed", "abba", "E\u0301toile", "\u00C8ve", "Ff", "\U0001F3B5", "\uFF21"})
        folder.write((QByteArray(name) + "/A/1.mp3").constData(), "x");
    FolderWalk walk;
    walk.run(folder.path());
    std::vector<std::string> names;
    for (const FolderWalk::Artist &artist : walk.artists)
        names.push_back(artist.name.toStdString());
    EXPECT_THAT(names, ElementsAre("Ff", "Zed", "abba", "\u00C8ve", "\u00C9toile", "\uFF21", "\U0001F3B5"));
}

TEST(FolderWalkTest, OtherFilesAreNotedButForSidecars) {
    const TestFolder folder;
    for (const char *path : {"notes.doc", "list.M3U8", "A/photo.raw", "A/B/cover.jpg", "A/B/film.avi",
                             "A/B/Scans/back.PNG", "A/B/jpg", "A/B/Thumbs.db", "A/B/1.mp3"})
        folder.write(path, "x");
    ASSERT_EQ(mkfifo(QFile::encodeName(folder.path("A/B/pipe.mp3")).constData(), 0600), 0);
    FolderWalk walk;
    walk.run(folder.path());
    std::vector<std::string> skipped;
    for (const FolderSkippedFile &file : walk.skipped) {
        EXPECT_EQ(file.reason, u"not an audio file");
        skipped.push_back(file.relativePath.toStdString());
    }
    EXPECT_THAT(skipped, ElementsAre("A/B/film.avi", "A/B/jpg", "A/photo.raw", "notes.doc"));
    ASSERT_EQ(walk.albums.size(), 1U);
    EXPECT_EQ(walk.albums[0].images.at(0).relativePath, u"A/B/cover.jpg");
    EXPECT_EQ(walk.albums[0].nestedImage->relativePath, u"A/B/Scans/back.PNG");
    EXPECT_EQ(walk.jobs.size(), 1U);
}

TEST(FolderWalkTest, LinksAreFollowedOnceAndNeverInACircle) {
    const TestFolder outside;
    outside.write("Album/1.mp3", "x");
    const TestFolder folder;
    folder.write("A/B/2.mp3", "x");
    link(folder, "..", "A/up");
    link(folder, ".", "A/B/self");
    link(folder, "nowhere", "A/B/broken.mp3");
    link(folder, "2.mp3", "A/B/3.mp3");
    link(folder, QFile::encodeName(outside.path()).constData(), "C");
    link(folder, QFile::encodeName(outside.path()).constData(), "D");
    link(folder, "../..", "A/B/root");
    EXPECT_THAT(jobs(folder), ElementsAre("A|B|||A/B/2.mp3", "A|B|||A/B/3.mp3", "C|Album|||C/Album/1.mp3"));
}

TEST(FolderWalkTest, NamesThatAreNoTextKeepTheirBytes) {
    const TestFolder folder;
    const QByteArray artist = QFile::encodeName(folder.path()) + "/Bj\xF6rk";
    ASSERT_EQ(mkdir(artist.constData(), 0700), 0);
    ASSERT_EQ(mkdir((artist + "/Debut").constData(), 0700), 0);
    QFile file(folder.path("A.mp3"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(
        rename(QFile::encodeName(file.fileName()).constData(), (artist + "/Debut/\xFF.mp3").constData()), 0);
    FolderWalk walk;
    walk.run(folder.path());
    ASSERT_EQ(walk.jobs.size(), 1U);
    EXPECT_EQ(walk.artists.at(0).name, u"Björk");
    EXPECT_EQ(NativePath::bytes(walk.jobs[0].relativePath), "Bj\xF6rk/Debut/\xFF.mp3");
    EXPECT_TRUE(FolderWalk::identifier(walk.jobs[0].relativePath).isValidUtf16());
    std::filesystem::remove_all(artist.toStdString()); // which Qt could not
}

TEST(FolderWalkTest, AFolderThatCannotBeListedIsAnError) {
    const TestFolder folder;
    const QString file = folder.write("file", "x");
    for (const QString &path : {file, file + QLatin1String("/below"), folder.path("missing")}) {
        SCOPED_TRACE(path.toStdString());
        try {
            FolderWalk().run(path);
            ADD_FAILURE() << "no error";
        } catch (const MusicBackendError &error) {
            EXPECT_EQ(error.description(), QStringLiteral("The music folder “%1” can't be read.").arg(path));
        }
    }
}

TEST(FolderWalkTest, AnAlbumHundredsOfFoldersDeepIsWalked) {
    const TestFolder folder;
    ASSERT_TRUE(QDir().mkpath(folder.path("A/B") + QStringLiteral("/d").repeated(900)));
    QDir().mkpath(folder.path("A/B"));
    folder.write("A/B/1.mp3", "x");
    EXPECT_THAT(jobs(folder), ElementsAre("A|B|||A/B/1.mp3"));
}

TEST(FolderWalkTest, StopsWhenTold) {
    const TestFolder folder;
    folder.write("A/B/1.mp3", "x");
    std::stop_source stop;
    stop.request_stop();
    FolderWalk walk;
    walk.run(folder.path(), stop.get_token());
    EXPECT_THAT(walk.jobs, IsEmpty());
}

} // namespace vantor
