#include "MusicAssistantKit/Backend/MusicAssistantBackendErrors.h"
#include "tests/MusicAssistantKit/BackendFixture.h"

#include <QJsonDocument>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Kind = FakeMusicAssistant::CommandFault::Kind;
using State = MusicAssistantStatus::State;

/// Everything that is logged while it lives.
class LogKeeper {
  public:
    LogKeeper() {
        s_text.clear();
        QLoggingCategory::setFilterRules(u"co.kelvane.vantor.*=true"_s);
        m_former = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &message) { s_text += message + u'\n'; });
    }
    ~LogKeeper() {
        qInstallMessageHandler(m_former);
        QLoggingCategory::setFilterRules({});
    }
    [[nodiscard]] static const QString &text() { return s_text; }

  private:
    static inline QString s_text;
    QtMessageHandler m_former;
};

class MusicAssistantFaultTest : public BackendFixture {
  protected:
    bool waitFor(State state) {
        return waitUntil([&] { return backend->status().state == state; });
    }
};

} // namespace

TEST_F(MusicAssistantFaultTest, ARestartInTheMiddleOfAnEditEndsItOnceAndEverythingGoesOn) {
    open();
    players->append(u"kitchen"_s, {FakeLibrary::uri(u"track"_s, 0)});
    const auto statuses = watch(backend->statusUpdates());
    const auto playing = watch(backend->nowPlaying(kitchen));
    const auto queue = watch(backend->queue(kitchen));
    const auto stream = backend->libraryChanges();
    const MediaID mine = id(MediaKind::playlist, 0);
    setFault("music/playlists/add_playlist_tracks", {.kind = Kind::doesDrops});
    EXPECT_EQ(failureOf(backend->add({id(MediaKind::track, 7)}, mine)),
              u"Can't reach the Music Assistant server."_s);
    server.stop();
    ASSERT_TRUE(waitFor(State::reconnecting));
    EXPECT_EQ(backend->status().text, u"Reconnecting to Home…"_s);
    EXPECT_EQ(failureOf(backend->albums({}, {})), u"Not connected to Music Assistant."_s);
    EXPECT_FALSE(playing->isOver);

    players->queues[u"kitchen"_s].current = 0;
    players->queues[u"kitchen"_s].state = u"playing"_s;
    server.commandFaults.clear();
    ASSERT_TRUE(server.listen(server.port()));
    ASSERT_TRUE(waitFor(State::connected));
    ASSERT_TRUE(waitUntil([&] { return playing->value->item == id(MediaKind::track, 0); }));
    ASSERT_TRUE(waitUntil([&] { return queue->value && queue->value->total == 1; }));
    EXPECT_GT(stream.missed(), 0U) << "lists that are open do not know that they have to be read again";
    EXPECT_EQ(statuses->value->connection, 2);
    EXPECT_EQ(outcomeOf(backend->tracksOfPlaylist(mine)).value->last().id, id(MediaKind::track, 7));
}

TEST_F(MusicAssistantFaultTest, AnswersThatComeTooLateOrTwiceReachNobody) {
    callTimeout = 100ms;
    open();
    setFault("music/albums/library_items", {.kind = Kind::delays, .delay = 300ms});
    EXPECT_EQ(failureOf(backend->albums({}, {})), u"Can't reach the Music Assistant server."_s);
    setFault("music/albums/album_tracks", {.kind = Kind::doubles});
    EXPECT_EQ(outcomeOf(backend->tracks(id(MediaKind::album, 0))).value->size(), 10);
    QTest::qWait(350);
    EXPECT_EQ(outcomeOf(backend->artists({})).value->items.size(), 20);
    EXPECT_EQ(backend->status().state, State::connected);
}

TEST_F(MusicAssistantFaultTest, NonsenseIsToldAndHarmsNothing) {
    open();
    setFault("*", {.kind = Kind::garbles});
    MusicAssistantBackend &b = *backend;
    const OutputDevice speaker{.id = kitchen, .name = {}, .groupableWith = {}};
    const auto unreadable = u"Music Assistant's answer could not be read."_s;
    EXPECT_EQ(failureOf(b.artists({})), unreadable);
    EXPECT_EQ(failureOf(b.albums(id(MediaKind::artist, 0), {})), unreadable);
    EXPECT_EQ(failureOf(b.tracksOfPlaylist(id(MediaKind::playlist, 0))), unreadable);
    EXPECT_EQ(failureOf(b.createPlaylist(u"x"_s)), unreadable);
    EXPECT_EQ(failureOf(b.add({id(MediaKind::track, 0)}, id(MediaKind::playlist, 0))), unreadable);
    EXPECT_EQ(failureOf(b.recommendationRows()), unreadable);
    EXPECT_EQ(failureOf(b.addRadio(u"u"_s, u"n"_s)), unreadable);
    EXPECT_EQ(outcomeOf(b.favoriteCount(MediaKind::track)).value.value(), std::nullopt);
    EXPECT_TRUE(outcomeOf(b.search(u"x"_s, 5)).value->isEmpty());
    EXPECT_EQ(
        failureOf(b.play({id(MediaKind::track, 0), id(MediaKind::track, 1)}, speaker, PlayMode::replace(1))),
        QString());
    for (const auto &event :
         {u"player_updated"_s, u"queue_updated"_s, u"queue_items_updated"_s, u"queue_time_updated"_s,
          u"media_item_added"_s, u"media_item_played"_s, u"favorite_updated"_s}) {
        for (const QJsonValue &data :
             {QJsonValue(), QJsonValue(7), QJsonValue(u"x"_s), QJsonValue(QJsonArray{1}),
              QJsonValue(QJsonObject{{u"player_id"_s, QJsonArray()}})}) {
            server.sendEvent(event, u"kitchen"_s, data);
            server.sendEvent(event, data, data);
        }
    }
    runEvents();
    server.commandFaults.clear();
    EXPECT_EQ(outcomeOf(b.artists({})).value->items.size(), 20);
    EXPECT_EQ(failureOf(b.transport(TransportCommand::stop(), kitchen)), QString());
}

TEST_F(MusicAssistantFaultTest, OneBadEntryDoesNotHideTheOthers) {
    open();
    const char *const bad[] = {"null",
                               "7",
                               "[]",
                               "{}",
                               R"({"item_id":"1","provider":"library"})",
                               R"({"item_id":[],"provider":"library","name":"x"})",
                               R"({"item_id":"1","provider":7,"name":"x"})"};
    const char *const odd[] = {
        R"({"item_id":5,"provider":"library","name":"a"})",
        R"({"item_id":"5","provider":"library","name":"a","uri":7,"media_type":{},"metadata":[],"favorite":"yes",)"
        R"("artists":{"0":1},"year":"1999","provider_mappings":7,"available":"no","image":[]})",
        R"({"item_id":"5","provider":"library","name":"a","uri":"nothing","year":99999999999,"artists":[7,null,{}],)"
        R"("provider_mappings":[{"item_id":"1","audio_format":"flac"},4],"metadata":{"images":[null,{"path":7}]}})"};
    QJsonArray page;
    for (const char *const text : bad)
        page.append(QJsonDocument::fromJson("[" + QByteArray(text) + "]").array().first());
    for (const char *const text : odd)
        page.append(QJsonDocument::fromJson(text).object());
    server.onCommand(u"music/albums/library_items"_s,
                     [&](const QJsonObject &, const FakeAnswer &answer) { answer.result(page); });
    const auto albums = outcomeOf(backend->albums({}, {0, static_cast<int>(page.size())}));
    ASSERT_TRUE(albums.value);
    ASSERT_EQ(albums.value->items.size(), std::size(odd));
    for (const LibraryAlbum &album : albums.value->items) {
        EXPECT_EQ(album.id, (MediaID{MediaKind::album, u"library://album/5"_s}));
        EXPECT_EQ(album.title, u"a"_s);
        EXPECT_EQ(album.year, std::nullopt);
        EXPECT_EQ(album.artistName, std::nullopt);
        EXPECT_EQ(album.artwork, std::nullopt);
    }
    EXPECT_EQ(albums.value->nextOffset, page.size()) << "the page was full";
}

TEST_F(MusicAssistantFaultTest, WithoutATokenOrAServerTheSentenceIsGiven) {
    using namespace MusicAssistantBackendErrors;
    const std::pair<MusicBackendError, QString> rows[] = {
        {noServer(SettingsPage::musicAssistant),
         u"Add a Music Assistant server under Settings › Music Assistant."_s},
        {noServer(SettingsPage::library), u"Add a Music Assistant server under Settings › Library."_s},
        {noToken(SettingsPage::musicAssistant),
         u"Enter the Music Assistant token under Settings › Music Assistant."_s},
        {noToken(SettingsPage::library), u"Enter the Music Assistant token under Settings › Library."_s},
        {unreadableToken(), u"The Music Assistant token could not be read."_s},
        {noServerReachable(), u"No Music Assistant server reachable"_s},
    };
    for (const auto &[problem, sentence] : rows) {
        const MusicAssistantBackend::Server chosen{.id = {}, .name = u"Home"_s, .settings = problem};
        const auto none = std::make_shared<MusicAssistantBackend>(
            chosen,
            MusicAssistantBackend::Collaborators{.transports = transports, .http = http, .clock = clock});
        EXPECT_EQ(failureOf(none->connect()), sentence);
        EXPECT_EQ(failureOf(none->artists({})), sentence);
        EXPECT_EQ(failureOf(none->artwork({u"/x"_s}, 80)), sentence);
        EXPECT_EQ(none->status().text, sentence);
    }
}

TEST_F(MusicAssistantFaultTest, PlayersAndQueuesAreReadAgainUntilTheyAreThere) {
    make();
    players->append(u"kitchen"_s, {FakeLibrary::uri(u"track"_s, 0)});
    const auto queue = watch(backend->queue(kitchen));
    setFault("players/all", {.kind = Kind::fails});
    setFault("player_queues/all", {.kind = Kind::stalls});
    ASSERT_EQ(failureOf(backend->connect()), QString());
    ASSERT_TRUE(waitUntil([&] { return sawCommand("players/all") && sawCommand("player_queues/all"); }));
    server.commandFaults.clear();
    ASSERT_TRUE(waitUntil([&] { return queue->value.has_value(); }));
    EXPECT_EQ(queue->value->total, 1) << "no empty queue was shown before";
    EXPECT_EQ(outcomeOf(backend->outputs()).value->size(), 7);
}

TEST_F(MusicAssistantFaultTest, AQueueOfAnImpossibleLengthIsNotReadOverAndOver) {
    open();
    const auto queue = watch(backend->queue(kitchen));
    for (const double items : {5e9, 2'147'483'647.0, -7.0, 1e300})
        server.sendEvent(u"queue_updated"_s, u"kitchen"_s,
                         QJsonObject{{u"queue_id"_s, u"kitchen"_s},
                                     {u"items"_s, items},
                                     {u"current_index"_s, -9'223'372'036'854'775'807LL}});
    server.sendEvent(
        u"queue_updated"_s, u"kitchen"_s,
        QJsonObject{{u"queue_id"_s, u"kitchen"_s}, {u"items"_s, 5e9}, {u"current_index"_s, 4e7}});
    ASSERT_TRUE(waitUntil([&] { return queue->value && queue->value->total > 0; }));
    QTest::qWait(1'000);
    EXPECT_LE(countOf("player_queues/items"), 2);
    EXPECT_TRUE(queue->value->items.isEmpty());
}

TEST_F(MusicAssistantFaultTest, ARejectedTokenIsToldByEverythingAndNeverShown) {
    const LogKeeper log;
    make();
    server.tokens = {u"another"_s};
    const auto rejected = u"The Music Assistant token was rejected."_s;
    EXPECT_EQ(failureOf(backend->connect()), rejected);
    ASSERT_TRUE(waitFor(State::failed));
    EXPECT_EQ(backend->status().text, rejected);
    EXPECT_EQ(failureOf(backend->artists({})), rejected);
    server.tokens = {u"secret-token"_s};
    connectBackend();
    for (const auto kind : {Kind::fails, Kind::garbles, Kind::drops}) {
        setFault("*", {.kind = kind});
        failureOf(backend->tracks(id(MediaKind::album, 0)));
        failureOf(backend->transport(TransportCommand::play(), kitchen));
        server.commandFaults.clear();
        ASSERT_TRUE(waitUntil([&] { return failureOf(backend->artists({})).isEmpty(); }));
    }
    EXPECT_GT(log.text().size(), 0);
    EXPECT_FALSE(log.text().contains(u"secret-token"_s)) << log.text().toStdString();
    const auto carriers = std::count_if(
        server.receivedFrames().begin(), server.receivedFrames().end(), [](const QString &frame) {
            return frame.contains("secret-token"_L1) && !frame.contains("\"auth\""_L1);
        });
    EXPECT_EQ(carriers, 0);
}

TEST_F(MusicAssistantFaultTest, MayGoAtAnyTime) {
    open();
    setFault("music/artists/library_items", {.kind = Kind::stalls});
    const auto waiting = begun(backend->artists({}));
    const auto playing = watch(backend->nowPlaying(kitchen));
    const auto queue = watch(backend->queue(kitchen));
    runEvents();
    outcomeOf(backend->disconnect());
    ASSERT_TRUE(waitUntil([&] { return waiting->isOver && playing->isOver && queue->isOver; }));
    EXPECT_EQ(waiting->failure, u"Can't reach the Music Assistant server."_s);
    const std::weak_ptr<MusicAssistantBackend> gone = backend;
    backend.reset();
    EXPECT_TRUE(waitUntil([&] { return gone.expired(); }));
    EXPECT_TRUE(waitUntil([&] { return server.clientCount() == 0; }));
}
