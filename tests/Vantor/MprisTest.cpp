#include "AudioCore/NowPlaying/NowPlayingBridge.h"
#include "MusicLibraryKit/ArtworkCache.h"
#include "PlayerFixture.h"
#include "Vantor/Mpris/MprisService.h"
#include "Vantor/Mpris/SessionBus.h"
#include "Vantor/Windows/Commands.h"
#include "tests/Support/MadeSpeakers.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QSignalSpy>
#include <QStandardPaths>

#include <signal.h>
#include <sys/wait.h>

using namespace vantor;

namespace {

const QString player = QStringLiteral("org.mpris.MediaPlayer2.Player");
const QString root = QStringLiteral("org.mpris.MediaPlayer2");
const QString objectPath = QStringLiteral("/org/mpris/MediaPlayer2");
const QString name = QStringLiteral("org.mpris.MediaPlayer2.vantor");

/// What the service says over the bus by itself.
class Listener : public QObject {
    Q_OBJECT

  public:
    std::vector<QVariantMap> changes;
    std::vector<qlonglong> seeks;

  public Q_SLOTS:
    void takeChanges(const QString &interface, const QVariantMap &changed) {
        EXPECT_EQ(interface, player);
        changes.push_back(changed);
    }
    void takeSeek(qlonglong position) { seeks.push_back(position); }
};

/// A message bus of our own, on which the service under test and a client have a connection each.
class MprisTest : public PlayerFixture {
  protected:
    // The bus's library reads the address once in a process.
    static void SetUpTestSuite() {
        if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
            return;
        const std::string address = "unix:path=" + s_busFolder.path("bus").toStdString();
        s_daemon = spawn({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address});
        qputenv("DBUS_SESSION_BUS_ADDRESS", QByteArray::fromStdString(address));
        EXPECT_TRUE(waitFor([] { return QFile::exists(s_busFolder.path("bus")); }));
    }
    static void TearDownTestSuite() {
        if (s_daemon == 0)
            return;
        kill(s_daemon, SIGKILL);
        waitpid(s_daemon, nullptr, 0);
    }

    void SetUp() override {
        if (s_daemon == 0)
            GTEST_SKIP() << "NOT TESTED: dbus-daemon is not installed";
        qputenv("XDG_CACHE_HOME", QFile::encodeName(m_folder.path()));
        m_bridge.install();
    }
    void TearDown() override { QDBusConnection::disconnectFromBus(QStringLiteral("client")); }

    void connectToBus(const QString &expected = name) {
        m_service.connectToBus();
        ASSERT_TRUE(waitFor([&] { return m_client.interface()->isServiceRegistered(expected); }));
        m_client.connect(name, objectPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                         QStringLiteral("PropertiesChanged"), &m_listener,
                         SLOT(takeChanges(QString, QVariantMap)));
        m_client.connect(name, objectPath, player, QStringLiteral("Seeked"), &m_listener,
                         SLOT(takeSeek(qlonglong)));
    }
    /// Not a blocking call, because caller and called share this thread.
    QVariant call(const QString &interface, const char *method, const QVariantList &arguments = {}) {
        QDBusMessage message =
            QDBusMessage::createMethodCall(name, objectPath, interface, QLatin1String(method));
        message.setArguments(arguments);
        const QDBusPendingCall pending = m_client.asyncCall(message);
        EXPECT_TRUE(waitFor([&] { return pending.isFinished(); }));
        EXPECT_FALSE(pending.isError()) << method << ": " << pending.error().message().toStdString();
        return pending.reply().arguments().value(0);
    }
    QVariant get(const char *property, const QString &interface = player) {
        const QVariantList arguments{interface, QLatin1String(property)};
        return call(QStringLiteral("org.freedesktop.DBus.Properties"), "Get", arguments)
            .value<QDBusVariant>()
            .variant();
    }
    void set(const char *property, const QVariant &value) {
        call(QStringLiteral("org.freedesktop.DBus.Properties"), "Set",
             {player, QLatin1String(property), QVariant::fromValue(QDBusVariant(value))});
    }
    QVariantMap metadata() { return qdbus_cast<QVariantMap>(get("Metadata")); }
    /// What the bus was told since the last time, once something was.
    QVariantMap changes() {
        EXPECT_TRUE(waitFor([&] { return !m_listener.changes.empty(); }));
        QVariantMap all;
        for (const QVariantMap &changed : std::exchange(m_listener.changes, {}))
            all.insert(changed);
        return all;
    }
    void playTwoTones() {
        m_player.enqueue({Track::file(writeTone("a.wav", 60)), Track::file(writeTone("b.wav", 60))});
        m_player.play(0);
        ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
        get("Position"); // and what is under way has arrived
        m_listener.changes.clear();
    }

    inline static const TestFolder s_busFolder;
    inline static pid_t s_daemon = 0;
    QDBusConnection m_client =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("client"));
    Listener m_listener;
    int m_raised = 0;
    Commands m_commands{m_model};
    MprisService m_service{m_model, m_commands, [this] { ++m_raised; }};
    NowPlayingBridge m_bridge{m_player, m_commands, m_service.center()};
};

} // namespace

TEST_F(MprisTest, ABusThatSaysNothingIsDoneWithout) {
    const QByteArray good = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    QLocalServer silent;
    ASSERT_TRUE(silent.listen(m_folder.path("silent")));
    const std::pair<QByteArray, QByteArray> rows[] = {
        {good, good},
        {"unix:path=/nowhere/bus", "unix:path=/nowhere/bus"},
        {"unix:guid=1,path=" + QFile::encodeName(silent.fullServerName()), "disabled:"},
    };
    for (const auto &[address, expected] : rows) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        SessionBus::avoidIfSilent();
        EXPECT_EQ(qgetenv("DBUS_SESSION_BUS_ADDRESS"), expected);
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", good);
}

TEST_F(MprisTest, TheProgramIsFoundRaisedAndEnded) {
    connectToBus();
    EXPECT_EQ(get("Identity", root), QStringLiteral("Vantor"));
    EXPECT_EQ(get("DesktopEntry", root), QStringLiteral("co.kelvane.vantor"));
    EXPECT_TRUE(get("SupportedMimeTypes", root).toStringList().contains(QStringLiteral("audio/flac")));
    EXPECT_EQ(get("PlaybackStatus"), QStringLiteral("Stopped"));
    EXPECT_EQ(get("CanPlay"), false);
    EXPECT_EQ(metadata(), QVariantMap());
    EXPECT_TRUE(get("SupportedUriSchemes", root).toStringList().contains(QStringLiteral("https")));
    for (const char *command : {"Play", "Pause", "PlayPause", "Stop", "Next", "Previous"})
        call(player, command);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr); // no dialog asks for files
    call(root, "Raise");
    EXPECT_EQ(m_raised, 1);
    QAction &quits = m_commands.action(Commands::Id::quit);
    quits.disconnect(&m_commands);
    const QSignalSpy quit(&quits, &QAction::triggered);
    call(root, "Quit");
    EXPECT_EQ(quit.count(), 1);
}

TEST_F(MprisTest, ASecondOneTakesANameOfItsOwn) {
    ASSERT_TRUE(m_client.registerService(name));
    connectToBus(name + QStringLiteral(".instance%1").arg(QCoreApplication::applicationPid()));
}

TEST_F(MprisTest, TheTransportAndTheOptionsFollowTheBus) {
    connectToBus();
    playTwoTones();
    EXPECT_EQ(get("PlaybackStatus"), QStringLiteral("Playing"));
    m_player.seek(30);
    const struct {
        const char *command;
        const char *status;
        double from; ///< the earliest place at which it may stand, in seconds
    } rows[] = {{"Play", "Playing", 30},      {"Pause", "Paused", 30},     {"Pause", "Paused", 30},
                {"PlayPause", "Playing", 30}, {"PlayPause", "Paused", 30}, {"Play", "Playing", 30},
                {"Stop", "Stopped", 0},       {"Pause", "Stopped", 0},     {"PlayPause", "Playing", 0}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.command);
        call(player, row.command);
        EXPECT_TRUE(waitFor([&] { return get("PlaybackStatus") == QLatin1String(row.status); }));
        EXPECT_GE(m_player.currentTime(), row.from);
    }
    call(player, "Next");
    EXPECT_EQ(m_player.queue().currentIndex(), 1);
    EXPECT_EQ(get("CanGoNext"), false);
    call(player, "Previous");
    EXPECT_EQ(m_player.queue().currentIndex(), 0);
    for (const char *loop : {"Track", "Playlist", "None"}) {
        set("LoopStatus", QLatin1String(loop));
        set("LoopStatus", QStringLiteral("Sometimes"));
        EXPECT_EQ(get("LoopStatus"), QLatin1String(loop));
    }
    set("Shuffle", true);
    EXPECT_TRUE(m_player.isShuffled());
    for (const auto &[asked, expected] : {std::pair(0.25, 0.25), {7.0, 1.0}, {-1.0, 0.0}, {qQNaN(), 0.0}}) {
        set("Volume", asked);
        EXPECT_EQ(get("Volume"), expected);
    }
    set("Rate", 0.0);
    EXPECT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::paused; }));
    call(player, "Stop");
    EXPECT_EQ(get("PlaybackStatus"), QStringLiteral("Stopped"));
    call(player, "OpenUri", {writeTone("c d.wav", 5).toString(QUrl::FullyEncoded)});
    EXPECT_TRUE(waitFor([&] { return m_player.queue().current()->title == QStringLiteral("c d"); }));
}

TEST_F(MprisTest, TheSelectedSpeakerIsToldAndCommanded) {
    const auto made = std::make_shared<MadeSpeakers>();
    MadeSpeakers::Speaker &kitchen = made->addSpeaker(u"kitchen"_qs, u"Kitchen"_qs, 3);
    kitchen.playing.state = NowPlaying::State::playing;
    kitchen.playing.artist = u"Cook"_qs;
    kitchen.playing.artwork = ArtworkRef{u"cover"_qs};
    LibraryBrowser browser;
    ArtworkCache pictures(m_folder.path("artwork"), {});
    pictures.setBackend(made);
    m_model.remote().setBrowser(&browser, &pictures);
    browser.setBackend(made);
    connectToBus();
    playTwoTones();
    const QVariant localTrack = metadata().value(QStringLiteral("mpris:trackid"));
    browser.chooseOutput({u"kitchen"_qs});
    ASSERT_TRUE(waitFor([&] { return metadata().contains(QStringLiteral("mpris:artUrl")); }));
    const QVariantMap remote = metadata();
    EXPECT_EQ(remote.value(QStringLiteral("xesam:title")), u"Kitchen 1"_qs);
    EXPECT_EQ(remote.value(QStringLiteral("xesam:artist")).toStringList(), QStringList(u"Cook"_qs));
    EXPECT_EQ(remote.value(QStringLiteral("mpris:length")).toLongLong(), 200'000'000);
    EXPECT_EQ(get("Volume"), 0.5);
    EXPECT_EQ(get("CanGoNext"), true);
    EXPECT_TRUE(changes().contains(QStringLiteral("Metadata")));
    const QVariant track = remote.value(QStringLiteral("mpris:trackid"));
    call(player, "SetPosition", {localTrack, QVariant::fromValue(qlonglong{5'000'000})}); // of another track
    call(player, "SetPosition", {track, QVariant::fromValue(qlonglong{60'000'000})});
    ASSERT_TRUE(waitFor([&] { return kitchen.playing.elapsed == 60; }));
    EXPECT_EQ(m_listener.seeks, std::vector<qlonglong>{60'000'000});
    call(player, "PlayPause");
    EXPECT_EQ(get("PlaybackStatus"), u"Paused"_qs);
    EXPECT_TRUE(waitFor([&] { return kitchen.playing.state == NowPlaying::State::paused; }));
    call(player, "Next");
    EXPECT_TRUE(waitFor([&] { return kitchen.current == 1; }));
    set("Volume", 0.25);
    EXPECT_TRUE(waitFor([&] { return kitchen.playing.volume == 0.25; }));
    EXPECT_EQ(m_player.state(), PlaybackState::playing);
    EXPECT_EQ(m_player.queue().currentIndex(), 0);
    m_model.remote().setBrowser(nullptr);
    EXPECT_EQ(metadata().value(QStringLiteral("mpris:trackid")), localTrack);
}

// A slow track takes commands, too.
TEST_F(MprisTest, WhileATrackLoadsItIsWhatWillComeOfIt) {
    m_player.enqueue({Track::file(writeTone("a.wav", 60))});
    auto *const adaptor = m_service.findChild<MprisPlayer *>();
    adaptor->Play();
    EXPECT_EQ(adaptor->playbackStatus(), QStringLiteral("Playing"));
    adaptor->Pause();
    EXPECT_EQ(adaptor->playbackStatus(), QStringLiteral("Paused"));
    adaptor->Play();
    EXPECT_EQ(adaptor->playbackStatus(), QStringLiteral("Playing"));
    EXPECT_EQ(m_player.state(), PlaybackState::loading);
    EXPECT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
}

TEST_F(MprisTest, PositionsAreInMicrosecondsAndOfOneTrackOnly) {
    connectToBus();
    playTwoTones();
    call(player, "Pause");
    const QVariant id = metadata().value(QStringLiteral("mpris:trackid"));
    const QVariant other = QVariant::fromValue(QDBusObjectPath("/co/kelvane/vantor/track/other"));
    const struct {
        const char *method;
        QVariantList arguments;
        double expected; // seconds
    } rows[] = {
        {"SetPosition", {id, 30'000'000LL}, 30},
        {"SetPosition", {other, 10'000'000LL}, 30},
        {"SetPosition", {id, 61'000'000LL}, 30},
        {"SetPosition", {id, -1LL}, 30},
        {"Seek", {-10'000'000LL}, 20},
        {"Seek", {5'500'000LL}, 25.5},
        {"Seek", {-90'000'000LL}, 0},
    };
    for (const auto &row : rows) {
        call(player, row.method, row.arguments);
        EXPECT_EQ(get("Position"), qRound64(row.expected * 1e6)) << row.method;
    }
    EXPECT_EQ(m_listener.seeks, (std::vector<qlonglong>{30'000'000, 20'000'000, 25'500'000, 0}));
    call(player, "Seek", {90'000'000LL}); // beyond the end
    EXPECT_EQ(m_player.queue().currentIndex(), 1);
}

TEST_F(MprisTest, OnlyWhatHasChangedIsToldAndThePositionNever) {
    connectToBus();
    playTwoTones();
    const std::pair<std::function<void()>, QStringList> rows[] = {
        {[&] { m_player.setVolume(0.5F); }, {QStringLiteral("Volume")}},
        {[&] {
             m_player.seek(20);
             m_player.pause();
         },
         {QStringLiteral("PlaybackStatus")}},
        {[&] { m_player.setRepeatMode(RepeatMode::all); }, {QStringLiteral("LoopStatus")}},
        {[&] { m_player.setShuffled(true); }, {QStringLiteral("Shuffle")}},
        {[&] { m_player.play(1); }, {QStringLiteral("Metadata"), QStringLiteral("PlaybackStatus")}},
        {[&] { m_player.stop(); }, {QStringLiteral("CanSeek"), QStringLiteral("PlaybackStatus")}},
    };
    for (const auto &[change, expected] : rows) {
        change();
        ASSERT_TRUE(waitFor([&] { return m_player.state() != PlaybackState::loading; }));
        (void)waitFor([until = QDeadlineTimer(100)] { return until.hasExpired(); });
        EXPECT_EQ(changes().keys(), expected);
    }
}

TEST_F(MprisTest, TheTrackIsDescribedWithItsCover) {
    connectToBus();
    writeAudioFile(m_folder.path("a #1.flac"),
                   {.seconds = 5,
                    .tags = {{QStringLiteral("title"), QStringLiteral("Żółw")},
                             {QStringLiteral("artist"), QStringLiteral("Ana & 夜")},
                             {QStringLiteral("album"), QStringLiteral("Dusk")}}});
    QImage cover(8, 8, QImage::Format_ARGB32);
    cover.fill(Qt::green);
    ASSERT_TRUE(cover.save(m_folder.path("cover.png")));
    m_player.enqueue({Track::file(file("a #1.flac"))});
    m_player.play();
    QVariantMap shown;
    ASSERT_TRUE(waitFor([&] {
        shown = metadata();
        return shown.contains(QStringLiteral("mpris:artUrl")) &&
               shown.contains(QStringLiteral("mpris:length"));
    }));
    const QString art = QUrl(shown.take(QStringLiteral("mpris:artUrl")).toString()).toLocalFile();
    EXPECT_EQ(QImage(art).pixelColor(4, 4), QColor(Qt::green));
    EXPECT_EQ(QFileInfo(art).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    const auto id = qvariant_cast<QDBusObjectPath>(shown.take(QStringLiteral("mpris:trackid")));
    EXPECT_TRUE(id.path().startsWith(QStringLiteral("/co/kelvane/vantor/track/")));
    const QVariantMap expected{{QStringLiteral("mpris:length"), 5'000'000LL},
                               {QStringLiteral("xesam:title"), QStringLiteral("Żółw")},
                               {QStringLiteral("xesam:artist"), QStringList{QStringLiteral("Ana & 夜")}},
                               {QStringLiteral("xesam:album"), QStringLiteral("Dusk")},
                               {QStringLiteral("xesam:url"), file("a #1.flac").toString(QUrl::FullyEncoded)}};
    EXPECT_EQ(shown, expected);
}

TEST_F(MprisTest, OldPicturesMakeRoomForNewOnes) {
    ArtworkFiles files(m_folder.path("art"));
    QString last;
    int written = 0;
    for (int i = 0; i < 2 * ArtworkFiles::mostFiles; ++i) {
        QImage picture(4, 4, QImage::Format_RGB32);
        picture.fill(QColor(i, 0, 0));
        files.write(picture, [&](const QString &path) { last = path, ++written; });
    }
    ASSERT_TRUE(waitFor([&] { return written == 2 * ArtworkFiles::mostFiles; }));
    EXPECT_TRUE(QFile::exists(last));
    EXPECT_EQ(QDir(m_folder.path("art")).entryList(QDir::Files).size(), ArtworkFiles::mostFiles);
}

#include "MprisTest.moc"
