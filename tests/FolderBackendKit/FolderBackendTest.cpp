#include "FolderBackendKit/FolderBackend.h"

#include "AudioCore/Decoding/FileInput.h"
#include "FolderBackendKit/LocalOutput.h"
#include "MusicBackendKit/MusicBackendError.h"
#include "Platform/NativePath.h"
#include "tests/Support/MusicFiles.h"
#include "tests/Support/WaitFor.h"

#include <QCoroTask>
#include <QDir>
#include <QImage>

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>

namespace vantor {

namespace {

using test::MusicFiles;
using testing::ElementsAre;
using State = FolderIndexStatus::State;

class RecordingOutput : public LocalOutput {
  public:
    void play(const std::vector<Track> &tracks, PlayMode mode) override {
        titles.clear();
        for (const Track &track : tracks)
            titles.push_back(track.title.toStdString());
        last = tracks.back();
        lastMode = mode;
    }
    void transport(TransportCommand command) override { commands.append(command); }
    AsyncStream<NowPlaying> nowPlaying() override { return {}; }

    std::vector<std::string> titles;
    Track last;
    PlayMode lastMode;
    QList<TransportCommand> commands;
};

/// The sentence a task fails with; empty when it does not.
template <typename T>
QCoro::Task<QString> failure(QCoro::Task<T> task) {
    try {
        co_await task;
    } catch (const MusicBackendError &error) {
        co_return error.description();
    }
    co_return QString();
}

class FolderBackendTest : public testing::Test {
  protected:
    FolderBackendTest() {
        write("Abba/Arrival (1976)/1 Money.mp3");
        write("Abba/Arrival (1976)/2 Knowing.mp3");
        write("Abba/Gold (1992)/1 Fernando.flac");
        write("The Band/Alone.mp3");
    }
    ~FolderBackendTest() override {
        if (backend)
            QCoro::waitFor(backend->disconnect());
        m_updates = {};
        QCoreApplication::processEvents(); // ends watch()
    }

    void write(const char *path) const {
        static const MusicFiles files;
        files.write(music(path));
    }
    [[nodiscard]] QString music(const char *path = "") const {
        return folder.path("music/") + QString::fromUtf8(path);
    }

    void make() {
        using namespace std::chrono_literals;
        if (backend)
            QCoro::waitFor(backend->disconnect());
        backend = std::make_shared<FolderBackend>(music(), folder.path("cache/index"), output,
                                                  FolderWatcher::Settings{50ms, 500ms, 500ms, 100ms, 1000});
        m_updates = backend->statusUpdates();
        watch();
    }
    QCoro::Task<> watch() {
        while (true) {
            const auto next = co_await m_updates.next();
            if (!next)
                co_return; // the fixture may be gone
            status = *next;
        }
    }
    [[nodiscard]] bool becomes(State state) {
        return waitFor([&] { return status.state == state; }, std::chrono::seconds(10));
    }

    [[nodiscard]] std::vector<std::string> artists() const {
        std::vector<std::string> names;
        for (const LibraryArtist &artist : QCoro::waitFor(backend->artists({})).items)
            names.push_back(artist.name.toStdString());
        return names;
    }
    [[nodiscard]] QString unreadable() const {
        return QStringLiteral("The music folder “%1” can't be read.").arg(QDir::cleanPath(music()));
    }

    TestFolder folder;
    RecordingOutput output;
    std::shared_ptr<FolderBackend> backend;
    FolderIndexStatus status;

  private:
    AsyncStream<FolderIndexStatus> m_updates;
};

const MediaID abba{MediaKind::artist, QStringLiteral("Abba")};
const MediaID arrival{MediaKind::album, QStringLiteral("Abba/Arrival (1976)")};
const MediaID fernando{MediaKind::track, QStringLiteral("Abba/Gold (1992)/1 Fernando.flac")};

} // namespace

TEST_F(FolderBackendTest, TellsWhatIsMissingUntilThereIsALibrary) {
    const auto none = std::make_shared<FolderBackend>(QString(), folder.path("index"), output);
    const QString choose = QStringLiteral("Choose a music folder under Settings › Library.");
    EXPECT_EQ(QCoro::waitFor(failure(none->connect())), choose);
    EXPECT_EQ(QCoro::waitFor(failure(none->artists({}))), choose);
    EXPECT_EQ(QCoro::waitFor(failure(none->reindex())), choose);
    make();
    EXPECT_EQ(QCoro::waitFor(failure(backend->artists({}))), u"Not connected to the music source.");
    EXPECT_EQ(status.state, State::notConnected);
    QCoro::waitFor(backend->connect());
    EXPECT_THAT(artists(), ElementsAre("Abba", "The Band"));
    EXPECT_TRUE(becomes(State::ready));
    EXPECT_EQ(status.summary, (FolderIndexSummary{0, 4, 0}));
    EXPECT_EQ(QCoro::waitFor(failure(backend->tracks(abba))), u"Could not find artist Abba.");
    QCoro::waitFor(backend->disconnect());
    EXPECT_EQ(QCoro::waitFor(failure(backend->artists({}))), u"Not connected to the music source.");
    EXPECT_TRUE(becomes(State::notConnected));
}

TEST_F(FolderBackendTest, ShowsTheLibraryFromLastTimeWhileTheFolderIsAway) {
    make();
    QCoro::waitFor(backend->connect());
    make();
    ASSERT_TRUE(QFile::rename(music(), folder.path("away")));
    QCoro::waitFor(backend->connect());
    EXPECT_THAT(artists(), ElementsAre("Abba", "The Band"));
    ASSERT_TRUE(becomes(State::failed));
    EXPECT_EQ(status.message, unreadable());
    EXPECT_EQ(QCoro::waitFor(failure(backend->reindex())), unreadable());
    EXPECT_THAT(artists(), ElementsAre("Abba", "The Band"));
    EXPECT_EQ(QCoro::waitFor(failure(backend->play({arrival}, OutputDevice::thisMac(), PlayMode::append()))),
              u"None of these tracks is on disk any more.");

    ASSERT_TRUE(QFile::rename(folder.path("away"), music()));
    ASSERT_TRUE(becomes(State::ready));
    EXPECT_EQ(status.summary, (FolderIndexSummary{4, 0, 0}));
}

TEST_F(FolderBackendTest, AFolderThatWasNeverReadComesWhenItAppears) {
    make();
    ASSERT_TRUE(QFile::rename(music(), folder.path("away")));
    EXPECT_EQ(QCoro::waitFor(failure(backend->connect())), unreadable());
    EXPECT_EQ(QCoro::waitFor(failure(backend->artists({}))), unreadable());
    ASSERT_TRUE(QFile::rename(folder.path("away"), music()));
    ASSERT_TRUE(becomes(State::ready));
    EXPECT_THAT(artists(), ElementsAre("Abba", "The Band"));
}

TEST_F(FolderBackendTest, FollowsWhatChangesInTheFolder) {
    make();
    QCoro::waitFor(backend->connect());
    ASSERT_TRUE(becomes(State::ready));
    const int revision = status.revision;
    write("Cat/Album/1.ogg");
    ASSERT_TRUE(waitFor([&] { return status.revision > revision; }));
    EXPECT_THAT(artists(), ElementsAre("Abba", "The Band", "Cat"));
    ASSERT_TRUE(QDir(music("Abba")).removeRecursively());
    ASSERT_TRUE(waitFor([&] { return artists().size() == 2; }));
    const int last = status.revision;
    QCoro::waitFor(backend->reindex());
    EXPECT_TRUE(becomes(State::ready));
    EXPECT_EQ(status.revision, last); // nothing to reload
}

TEST_F(FolderBackendTest, PlaysFilesThatAreThere) {
    make();
    QCoro::waitFor(backend->connect());
    const OutputDevice here = OutputDevice::thisMac();
    QCoro::waitFor(
        backend->play({abba, {MediaKind::artist, QStringLiteral("The Band")}}, here, PlayMode::replace(1)));
    EXPECT_THAT(output.titles, ElementsAre("Money", "Knowing", "Fernando", "Alone"));
    EXPECT_EQ(output.lastMode, PlayMode::replace(3));
    EXPECT_EQ(output.last.artist, u"The Band");
    EXPECT_EQ(output.last.album, u"Singles");
    const QUrl file = std::get<QUrl>(output.last.source);
    EXPECT_EQ(file.toLocalFile(), music("The Band/Alone.mp3"));
    EXPECT_EQ(backend->trackOf(file), (MediaID{MediaKind::track, QStringLiteral("The Band/Alone.mp3")}));
    EXPECT_EQ(backend->trackOf(QUrl::fromLocalFile(folder.path("elsewhere.mp3"))), std::nullopt);

    QFile::remove(music("Abba/Arrival (1976)/2 Knowing.mp3"));
    QFile::remove(music("Abba/Gold (1992)/1 Fernando.flac"));
    output.titles.clear();
    const std::vector<Track> found = QCoro::waitFor(backend->localTracks({abba, fernando}));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].title, u"Money");
    EXPECT_EQ(QCoro::waitFor(failure(backend->localTracks({fernando}))),
              u"None of these tracks is on disk any more.");
    EXPECT_THAT(output.titles, ElementsAre()); // nothing was played
    QCoro::waitFor(backend->play({arrival, fernando}, here, PlayMode::replace(1)));
    EXPECT_THAT(output.titles, ElementsAre("Money"));
    EXPECT_EQ(output.lastMode, PlayMode::replace(0));
    EXPECT_EQ(QCoro::waitFor(failure(backend->play({fernando}, here, PlayMode::replace(0)))),
              u"None of these tracks is on disk any more.");
    OutputDevice speaker = here;
    speaker.id.rawValue = QStringLiteral("speaker");
    EXPECT_EQ(QCoro::waitFor(failure(backend->play({arrival}, speaker, PlayMode::append()))),
              u"That output is not available.");
    QCoro::waitFor(backend->transport(TransportCommand::next(), here.id));
    EXPECT_THAT(output.commands, ElementsAre(TransportCommand::next()));
}

TEST_F(FolderBackendTest, FilesWhoseNamesAreNoTextPlayUnderAStandIn) {
    write("Zed/Album/1.mp3");
    const QByteArray root = QFile::encodeName(music("Zed/"));
    ASSERT_EQ(rename((root + "Album").constData(), (root + "D\xE9nu").constData()), 0);
    const QByteArray path = root + "D\xE9nu/4 Bj\xF6rk.mp3";
    ASSERT_EQ(rename((root + "D\xE9nu/1.mp3").constData(), path.constData()), 0);
    make();
    QCoro::waitFor(backend->connect());
    const MediaID zed{MediaKind::artist, QStringLiteral("Zed")};
    const auto albums = QCoro::waitFor(backend->albums(zed, {})).items;
    ASSERT_EQ(albums.size(), 1);
    EXPECT_EQ(albums[0].title, u"Dénu");
    const auto tracks = QCoro::waitFor(backend->tracks(albums[0].id));
    ASSERT_EQ(tracks.size(), 1);
    EXPECT_EQ(tracks[0].title, u"Björk");
    EXPECT_EQ(tracks[0].trackNumber, 4);
    const auto found = QCoro::waitFor(backend->localTracks({tracks[0].id}));
    ASSERT_EQ(found.size(), 1U);
    const QUrl file = std::get<QUrl>(found[0].source);
    EXPECT_EQ(NativePath::bytes(NativePath::fromUrl(file)), path);
    EXPECT_EQ(backend->trackOf(file), tracks[0].id);
    EXPECT_GT(FileInput(NativePath::fromUrl(file)).size(), 1000);
    QCoro::waitFor(backend->disconnect());
    std::filesystem::remove_all(root.toStdString()); // which Qt cannot
}

TEST_F(FolderBackendTest, RequestsStayInTheirOrder) {
    make();
    QCoro::waitFor(backend->connect());
    const OutputDevice here = OutputDevice::thisMac();
    const auto large = backend->play(QList<MediaID>(2000, abba), here, PlayMode::replace(0));
    const auto small = backend->play({fernando}, here, PlayMode::append());
    ASSERT_TRUE(waitFor([&] { return large.isReady() && small.isReady(); }));
    EXPECT_THAT(output.titles, ElementsAre("Fernando"));
}

TEST_F(FolderBackendTest, GivesPicturesAndSaysWhenThereIsNone) {
    folder.write("music/Abba/Arrival (1976)/folder.jpg", MusicFiles::cover(1));
    make();
    QCoro::waitFor(backend->connect());
    const auto albums = QCoro::waitFor(backend->albums(abba, {})).items;
    const QByteArray bytes = QCoro::waitFor(backend->artwork(albums.at(0).artwork.value(), 64));
    EXPECT_EQ(QImage::fromData(bytes).size(), QSize(64, 64));
    EXPECT_EQ(QCoro::waitFor(failure(backend->artwork(albums.at(1).artwork.value(), 64))),
              u"The album art is missing.");
}

TEST_F(FolderBackendTest, MayBeDroppedOrLeftInTheMiddleOfAScan) {
    MusicFiles().writeCollection(music(), 200);
    make();
    const auto left = failure(backend->connect());
    QCoro::waitFor(backend->disconnect());
    EXPECT_EQ(QCoro::waitFor(left), u"Not connected to the music source.");
    const auto again = failure(backend->connect());
    backend.reset();
    EXPECT_EQ(QCoro::waitFor(again), QString()); // whoever awaits it keeps it
}

} // namespace vantor
