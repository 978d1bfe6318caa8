#include "tests/MusicAssistantKit/BackendFixture.h"

#include <QElapsedTimer>
#include <QLoggingCategory>

#include <iostream>
#include <random>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

// An evening of somebody who does everything at once with a server that fails in every way. Takes its time,
// so that it runs only when it is asked for: VANTOR_RANDOM_SECONDS=600 VANTOR_RANDOM_SEED=1
// MusicAssistantKitTests --gtest_also_run_disabled_tests --gtest_filter='*Random*'

namespace {

class MusicAssistantRandomTest : public BackendFixture {
  protected:
    using CommandKind = FakeMusicAssistant::CommandFault::Kind;
    using Fault = FakeMusicAssistant::Fault;

    int pick(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }
    bool chance(int percent) { return pick(100) < percent; }
    MediaID anything() {
        const auto kind = static_cast<MediaKind>(pick(5));
        return id(kind, pick(kind == MediaKind::playlist ? 8 : 400));
    }
    MediaID playlist() { return id(MediaKind::playlist, pick(10)); }
    OutputDevice::ID output() {
        static const QStringList all{u"kitchen"_s, u"living-room"_s, u"bedroom"_s,  u"office"_s,
                                     u"garden"_s,  u"attic"_s,       u"this-mac"_s, u"downstairs"_s};
        return {all[pick(chance(80) ? 4 : static_cast<int>(all.size()))]};
    }
    PageRequest page() { return {pick(2'000) - 10, pick(600) - 5}; }
    QList<MediaID> some() {
        QList<MediaID> made;
        for (int i = pick(12); i >= 0; --i)
            made.append(anything());
        return made;
    }
    QString queueItem() { return u"q%1"_s.arg(pick(3'000)); }

    /// Begins it; what became of it is looked at later.
    template <typename T>
    void begin(QCoro::Task<T> task) {
        m_underWay.append([outcome = begun(std::move(task))] { return outcome->isOver; });
    }
    template <typename T>
    void keep(AsyncStream<T> stream) {
        const auto watched = watch(std::move(stream));
        if (chance(50)) // the consumer goes, the stream stays or goes with the source
            m_watched.append(watched);
    }

    void browse();
    void change();
    void play();
    void listen();
    void disturb();
    void step();
    void calm();
    void expectTheTruth(const OutputDevice::ID &player);

    void TearDown() override {
        m_watched.clear();
        BackendFixture::TearDown();
    }

    std::mt19937 m_random;
    QList<std::function<bool()>> m_underWay;
    QList<std::shared_ptr<void>> m_watched;
};

void MusicAssistantRandomTest::browse() {
    MusicAssistantBackend &b = *backend;
    switch (pick(15)) {
    case 0:
        return begin(b.artists(page()));
    case 1:
        return begin(b.albums(chance(50) ? std::optional(anything()) : std::nullopt, page()));
    case 2:
        return begin(b.tracks(anything()));
    case 3:
        return begin(b.playlists(page()));
    case 4:
        return begin(b.tracksOfPlaylist(playlist()));
    case 5:
        return begin(b.radios(page()));
    case 6:
        return begin(b.search(chance(80) ? u"silver"_s : QString(), pick(100) - 2));
    case 7:
        return begin(b.artwork({u"/imageproxy/"_s + QString(64, u'a')}, pick(2'000)));
    case 8:
        return begin(b.recommendationRows());
    case 9: {
        RecommendationRow row;
        row.provider = u"library"_s;
        row.itemID = chance(50) ? u"mixed"_s : u"recent"_s;
        return begin(b.recommendationItems(row));
    }
    case 10:
        return begin(b.favoriteCount(static_cast<MediaKind>(pick(5))));
    case 11:
        return begin(b.favoriteTracks(page()));
    case 12:
        return begin(b.favoriteAlbums(page()));
    case 13:
        return begin(b.favoritePlaylists(page()));
    default:
        return begin(b.outputs());
    }
}

void MusicAssistantRandomTest::change() {
    MusicAssistantBackend &b = *backend;
    const bool isLong = library->tracksOf(0).size() > 2'000;
    switch (pick(11)) {
    case 0:
        return begin(b.setFavorite(anything(), chance(50)));
    case 1:
        return begin(b.createPlaylist(chance(90) ? u"New"_s : u" "_s));
    case 2:
        return begin(b.renamePlaylist(playlist(), u"Other"_s));
    case 3:
        return begin(b.deletePlaylist(id(MediaKind::playlist, 8 + pick(40))));
    case 4:
        if (!isLong)
            return begin(b.add({id(MediaKind::album, pick(90)), id(MediaKind::artist, pick(9))}, playlist()));
        [[fallthrough]];
    case 5:
        return begin(b.remove({pick(40), 1, pick(4'000), -3}, playlist()));
    case 6:
        return begin(b.movePlaylistTrack(playlist(), pick(30), pick(30)));
    case 7:
        return begin(b.importPlaylist(chance(70) ? u"#EXTM3U\nx"_s : QString()));
    case 8:
        return begin(b.exportPlaylist(playlist()));
    case 9:
        return begin(b.addRadio(u"http://x.invalid"_s, u"X"_s));
    default:
        return begin(b.removeFromLibrary(anything()));
    }
}

void MusicAssistantRandomTest::play() {
    MusicAssistantBackend &b = *backend;
    using Transport = TransportCommand;
    const OutputDevice::ID on = output();
    const double value = chance(5) ? std::numeric_limits<double>::quiet_NaN() : pick(130) / 100.0 - 0.1;
    const Transport commands[] = {
        Transport::play(), Transport::pause(),    Transport::togglePlayPause(), Transport::stop(),
        Transport::next(), Transport::previous(), Transport::seek(value * 60),  {}};
    switch (pick(14)) {
    case 0:
    case 1:
    case 2:
        return begin(b.transport(commands[pick(7)], on));
    case 3:
        return begin(b.transport(Transport::setVolume(value), on));
    case 4:
        return begin(b.transport(
            chance(50) ? Transport::setShuffle(chance(50)) : Transport::setRepeat(chance(50)), on));
    case 5: {
        const auto queue = players->queues.find(on.rawValue);
        const bool isLong = queue != players->queues.end() && queue->second.entries.size() > 3'000;
        const auto mode = isLong || chance(60) ? PlayMode::replace(pick(14)) : PlayMode::append();
        return begin(b.play(some(), {.id = on, .name = {}, .groupableWith = {}}, mode));
    }
    case 6:
        return begin(b.edit(QueueEdit::play(pick(200) - 2), on));
    case 7:
        return begin(b.edit(QueueEdit::remove({queueItem(), queueItem()}), on));
    case 8:
        return begin(b.edit(QueueEdit::move(queueItem(), pick(20) - 10), on));
    case 9:
        return begin(chance(30) ? b.edit(QueueEdit::clear(), on) : b.saveQueueAsPlaylist(on, u"Saved"_s));
    case 10:
        return begin(b.favoriteCurrentTrack(on));
    case 11:
        return begin(b.transfer(on, output(), chance(50)));
    case 12:
        return begin(b.setGroupMembers(on, {output()}, {output()}));
    default:
        return begin(b.setMuted(on, chance(50)));
    }
}

void MusicAssistantRandomTest::listen() {
    switch (pick(6)) {
    case 0:
        return keep(backend->nowPlaying(output()));
    case 1:
        return keep(backend->queue(output()));
    case 2:
        return keep(backend->activities());
    case 3:
        return keep(backend->libraryChanges());
    case 4:
        return keep(backend->statusUpdates());
    default:
        if (!m_watched.isEmpty())
            m_watched.removeAt(pick(static_cast<int>(m_watched.size())));
    }
}

void MusicAssistantRandomTest::disturb() {
    switch (pick(10)) {
    case 0:
    case 1: {
        const auto &seen = server.receivedCommands();
        const QString command =
            seen.isEmpty() || chance(10) ? u"*"_s : seen[pick(static_cast<int>(seen.size()))].name;
        const int codes[] = {2, 3, 8, 10, 11, 12, 20, 22, 999};
        server.commandFaults.insert(command, {.kind = static_cast<CommandKind>(pick(7)),
                                              .code = codes[pick(9)],
                                              .delay = std::chrono::milliseconds(pick(300))});
        return;
    }
    case 2:
    case 3:
        return server.commandFaults.clear();
    case 4:
        return server.dropClients();
    case 5:
        server.stop();
        QTest::qWait(pick(60));
        server.listen(server.port());
        return;
    case 6:
        server.fault = static_cast<Fault>(pick(11));
        server.dropClients();
        QTest::qWait(pick(100));
        server.fault = Fault::none;
        return;
    case 7: {
        static const QStringList events{u"player_updated"_s, u"queue_updated"_s,     u"queue_items_updated"_s,
                                        u"player_removed"_s, u"media_item_played"_s, u"favorite_updated"_s};
        const QJsonValue data[] = {
            {}, 7, u"x"_s, QJsonObject{{u"queue_id"_s, u"office"_s}, {u"items"_s, 4e9}}};
        server.sendEvent(events[pick(static_cast<int>(events.size()))], output().rawValue, data[pick(4)]);
        return;
    }
    case 8:
        backend->setLocalClientID(chance(50) ? std::optional(u"us"_s) : std::nullopt);
        return players->showSendspinClient(u"us"_s, u"Us"_s);
    default:
        if (chance(40))
            begin(backend->disconnect());
        if (chance(70))
            begin(backend->connect());
    }
}

void MusicAssistantRandomTest::step() {
    const int what = pick(100);
    if (what < 35)
        browse();
    else if (what < 50)
        change();
    else if (what < 85)
        play();
    else if (what < 94)
        listen();
    else
        disturb();
    players->advance(pick(20));
    QTest::qWait(chance(30) ? 0 : pick(8));
}

/// No more faults; everything that was begun ends, and the connection is there.
void MusicAssistantRandomTest::calm() {
    server.commandFaults.clear();
    server.fault = Fault::none;
    server.stop();
    ASSERT_TRUE(server.listen(server.port()));
    outcomeOf(backend->disconnect());
    m_watched.clear();
    const bool allEnd = QTest::qWaitFor(
        [&] { return std::ranges::all_of(m_underWay, [](const auto &isOver) { return isOver(); }); }, 30'000);
    ASSERT_TRUE(allEnd) << "something never ends";
    m_underWay.clear();
    ASSERT_EQ(failureOf(backend->connect()), QString());
    for (auto &[id, player] : players->players) {
        player.insert("synced_to"_L1, QJsonValue());
        players->changed(id);
    }
}

void MusicAssistantRandomTest::expectTheTruth(const OutputDevice::ID &player) {
    SCOPED_TRACE(player.rawValue.toStdString());
    const auto playing = watch(backend->nowPlaying(player));
    const auto shown = watch(backend->queue(player));
    const FakePlayers::Queue &queue = players->queues[player.rawValue];
    const auto isTrue = [&] {
        if (!shown->value || !playing->value || shown->value->total != queue.entries.size())
            return false;
        for (const RemoteQueueItem &item : shown->value->items) {
            if (item.id != queue.entries[item.index].id)
                return false;
        }
        return (playing->value->state == NowPlaying::State::playing) == (queue.state == "playing"_L1) &&
               shown->value->currentIndex.value_or(-1) == queue.current;
    };
    EXPECT_TRUE(QTest::qWaitFor(isTrue, 60'000))
        << "shown " << (shown->value ? shown->value->total : -1) << " of " << queue.entries.size()
        << ", current " << (shown->value ? shown->value->currentIndex.value_or(-1) : -2) << ", not "
        << queue.current;
}

} // namespace

TEST_F(MusicAssistantRandomTest, DISABLED_AnEveningWithABadServer) {
    QLoggingCategory::setFilterRules(u"co.kelvane.vantor.*=false"_s);
    const int seconds = std::max(qEnvironmentVariableIntValue("VANTOR_RANDOM_SECONDS"), 10);
    const int seed = qEnvironmentVariableIntValue("VANTOR_RANDOM_SEED");
    m_random.seed(static_cast<unsigned>(seed));
    callTimeout = 10s;
    make({.tracks = 2'000});
    QElapsedTimer timer;
    timer.start();
    int rounds = 0;
    qsizetype steps = 0;
    while (timer.elapsed() < seconds * 1'000 && !HasFailure()) {
        SCOPED_TRACE("round " + std::to_string(rounds) + ", seed " + std::to_string(seed));
        begin(backend->connect());
        for (int i = 0; i < 400; ++i, ++steps)
            step();
        ASSERT_NO_FATAL_FAILURE(calm());
        for (const QString &player : {u"kitchen"_s, u"bedroom"_s, u"office"_s})
            expectTheTruth({player});
        EXPECT_EQ(outcomeOf(backend->artists({})).value->items.size(), 40);
        ++rounds;
    }
    QLoggingCategory::setFilterRules({});
    std::cout << rounds << " rounds, " << steps << " steps, " << server.receivedCommands().size()
              << " commands\n";
}
