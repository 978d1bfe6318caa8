#include "tests/MusicAssistantKit/BackendFixture.h"

#include <QDateTime>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

class MusicAssistantOutputTest : public BackendFixture {
  protected:
    /// The tracks from 0 on, playing the first.
    void fill(const QString &player, int count) {
        QStringList tracks;
        for (int i = 0; i < count; ++i)
            tracks.append(FakeLibrary::uri(u"track"_s, i));
        auto &queue = players->queues[player];
        queue = {};
        players->append(player, tracks);
        queue.current = 0;
        queue.state = u"playing"_s;
    }
    [[nodiscard]] OutputDevice device(const OutputDevice::ID &output) {
        const auto outputs = *outcomeOf(backend->outputs()).value;
        const auto found = std::find_if(outputs.begin(), outputs.end(),
                                        [&](const OutputDevice &device) { return device.id == output; });
        return found == outputs.end() ? OutputDevice{.id = {u"missing"_s}, .name = {}, .groupableWith = {}}
                                      : *found;
    }
    [[nodiscard]] static double now() {
        return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
    }
};

} // namespace

TEST_F(MusicAssistantOutputTest, ListsThePlayersThatAreShown) {
    make();
    players->addSendspinClient(u"client"_s, u"Protocol"_s);
    players->players[u"bedroom"_s].insert("enabled"_L1, false);
    connectBackend();
    QStringList names;
    const auto outputs = *outcomeOf(backend->outputs()).value;
    for (const OutputDevice &output : outputs)
        names.append(output.name);
    EXPECT_EQ(names, (QStringList{u"This Mac"_s, u"Downstairs"_s, u"Garden"_s, u"Kitchen"_s, u"Living Room"_s,
                                  u"Office"_s}));
    EXPECT_TRUE(device({u"downstairs"_s}).isGroup);
    EXPECT_FALSE(device({u"garden"_s}).isAvailable);
    const QSet<OutputDevice::ID> others{{u"downstairs"_s}, {u"garden"_s}, {u"living-room"_s}, {u"office"_s}};
    EXPECT_EQ(device(kitchen).groupableWith, others);
}

TEST_F(MusicAssistantOutputTest, ThisComputerIsThePlayerThatTheServerMadeOfItsClient) {
    open();
    const OutputDevice here = OutputDevice::thisMac();
    const MediaID track = id(MediaKind::track, 0);
    const auto playing = watch(backend->nowPlaying(here.id));
    backend->setLocalClientID(u"us"_s);
    players->addSendspinClient(u"us"_s, u"Us"_s);
    players->showSendspinClient(u"somebody"_s, u"Another client"_s);
    EXPECT_EQ(failureOf(backend->play({track}, here, PlayMode::replace(0))),
              u"Music Assistant is still setting up this Mac as a player. Try again in a few seconds."_s);
    EXPECT_EQ(backend->localPlayerID(), std::nullopt);

    players->showSendspinClient(u"us"_s, u"Us"_s);
    EXPECT_EQ(failureOf(backend->play({track}, here, PlayMode::replace(0))), QString());
    EXPECT_EQ(backend->localPlayerID(), u"up-us"_s);
    EXPECT_EQ(argsOf("player_queues/play_media")["queue_id"_L1].toString(), u"up-us"_s);
    ASSERT_TRUE(waitUntil([&] { return playing->value->item == track; }));
    EXPECT_EQ(device({u"up-us"_s}).id.rawValue, u"missing"_s) << "it is listed once";
    EXPECT_TRUE(device(kitchen).groupableWith->contains(here.id));

    players->players[u"up-us"_s].insert("available"_L1, false);
    players->changed(u"up-us"_s);
    EXPECT_TRUE(waitUntil([&] {
        return failureOf(backend->transport(TransportCommand::stop(), here.id)) ==
               u"This Mac isn't connected to Music Assistant right now."_s;
    }));
    backend->setLocalClientID(std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return !playing->value->title; }));
    EXPECT_EQ(device({u"up-us"_s}).name, u"Us"_s);
}

TEST_F(MusicAssistantOutputTest, FollowsWhatPlays) {
    make();
    fill(u"kitchen"_s, 3);
    players->queues[u"kitchen"_s].elapsed = 12;
    connectBackend();
    const auto playing = watch(backend->nowPlaying(kitchen));
    ASSERT_TRUE(waitUntil([&] { return playing->value && playing->value->title; }));
    const auto track = outcomeOf(backend->tracks(id(MediaKind::album, 0))).value->first();
    EXPECT_EQ(playing->value->state, NowPlaying::State::playing);
    EXPECT_EQ(playing->value->item, track.id);
    EXPECT_EQ(playing->value->title, track.title);
    EXPECT_EQ(playing->value->artist, track.artistName);
    EXPECT_EQ(playing->value->album, track.albumName);
    EXPECT_EQ(playing->value->duration, track.duration);
    EXPECT_EQ(playing->value->artwork, track.artwork);
    EXPECT_EQ(playing->value->volume, 0.4);
    EXPECT_EQ(playing->value->elapsed, 12);
    EXPECT_NEAR(playing->value->updatedAt, now(), 30);

    players->advance(2);
    ASSERT_TRUE(waitUntil([&] { return playing->value->elapsed == 14; }));
    players->advance(*track.duration - 14); // by itself into the next one
    ASSERT_TRUE(waitUntil([&] { return playing->value->item == id(MediaKind::track, 1); }));
    EXPECT_EQ(playing->value->state, NowPlaying::State::playing);
    EXPECT_EQ(failureOf(backend->transport(TransportCommand::next(), kitchen)), QString());
    ASSERT_TRUE(waitUntil([&] { return playing->value->item == id(MediaKind::track, 2); }));
    EXPECT_EQ(failureOf(backend->transport(TransportCommand::setVolume(0.5), kitchen)), QString());
    EXPECT_EQ(failureOf(backend->transport(TransportCommand::pause(), kitchen)), QString());
    ASSERT_TRUE(waitUntil(
        [&] { return playing->value->state == NowPlaying::State::paused && playing->value->volume == 0.5; }));
    server.sendEvent(u"player_removed"_s, u"kitchen"_s, {});
    ASSERT_TRUE(waitUntil([&] { return !playing->value->title; }));
    outcomeOf(backend->disconnect());
    EXPECT_TRUE(waitUntil([&] { return playing->isOver; }));
}

TEST_F(MusicAssistantOutputTest, AWrongClockOfTheServerDoesNotMoveTheProgress) {
    for (const double ahead : {-86'400.0, -60.0, -8.0, 0.0, 8.0, 60.0, 86'400.0}) {
        for (const double age : {0.0, 30.0}) {
            SCOPED_TRACE(std::to_string(ahead) + " " + std::to_string(age));
            make();
            fill(u"kitchen"_s, 1);
            players->queues[u"kitchen"_s].elapsed = 10;
            players->queues[u"kitchen"_s].age = age;
            server.clockAhead = ahead;
            connectBackend();
            const auto playing = watch(backend->nowPlaying(kitchen));
            const auto isNear = [&](double elapsed) {
                return playing->value && playing->value->title &&
                       std::abs(playing->value->elapsedAt(now()) - elapsed - age) < 4;
            };
            EXPECT_TRUE(waitUntil([&] { return isNear(10); }));
            players->queues[u"kitchen"_s].elapsed = 40;
            players->changed(u"kitchen"_s);
            ASSERT_TRUE(waitUntil([&] { return playing->value->elapsed == 40; }));
            EXPECT_TRUE(isNear(40)) << playing->value->elapsedAt(now());
            TearDown();
        }
    }
}

TEST_F(MusicAssistantOutputTest, AGroupedPlayerShowsItsLeadersQueue) {
    open();
    fill(u"kitchen"_s, 2);
    const auto playing = watch(backend->nowPlaying(bedroom));
    const auto activities = watch(backend->activities());
    EXPECT_EQ(failureOf(backend->setGroupMembers(kitchen, {bedroom}, {})), QString());
    players->changed(u"kitchen"_s);
    ASSERT_TRUE(waitUntil([&] { return playing->value && playing->value->item == id(MediaKind::track, 0); }));
    ASSERT_TRUE(waitUntil([&] { return sawCommand("player_queues/get_active_queue"); }));
    const auto row = [&] {
        return *std::find_if(activities->value->begin(), activities->value->end(),
                             [&](const OutputActivity &one) { return one.output == bedroom; });
    };
    ASSERT_TRUE(waitUntil([&] { return activities->value && row().leader == kitchen; }));
    EXPECT_EQ(row().state, NowPlaying::State::playing);
    EXPECT_EQ(backend->outputState(kitchen)->members, (QList<OutputDevice::ID>{kitchen, bedroom}));
    EXPECT_EQ(failureOf(backend->transport(TransportCommand::next(), bedroom)), QString());
    EXPECT_EQ(argsOf("player_queues/next")["queue_id"_L1].toString(), u"kitchen"_s);
    EXPECT_EQ(failureOf(backend->setGroupMembers(kitchen, {}, {bedroom})), QString());
    ASSERT_TRUE(waitUntil([&] { return !playing->value->title && !row().leader; }));
}

TEST_F(MusicAssistantOutputTest, StartsAtTheChosenTrackWhateverTheServerMakesOfIt) {
    open();
    const OutputDevice speaker = device(kitchen);
    QList<MediaID> tracks;
    for (int i = 0; i < 8; ++i)
        tracks.append(id(MediaKind::track, i * 3));
    for (const bool heeds : {false, true}) {
        players->heedsStartItem = heeds;
        const int before = countOf("player_queues/play_index");
        EXPECT_EQ(failureOf(backend->play(tracks, speaker, PlayMode::replace(5))), QString());
        EXPECT_EQ(players->queues[u"kitchen"_s].current, 5);
        EXPECT_EQ(countOf("player_queues/play_index") - before, heeds ? 0 : 1);
    }
}

TEST_F(MusicAssistantOutputTest, StartsAtTheRightOneOfAList) {
    const MediaID gone = id(MediaKind::track, 5'000);
    const auto track = [&](int index) { return id(MediaKind::track, index); };
    QList<MediaID> many;
    for (int i = 0; i < 5'500; ++i)
        many.append(track(i % 1'000));
    const QList<MediaID> someGone = QList<MediaID>(300, gone) + many.first(1'500);
    struct Row {
        const char *name;
        QList<MediaID> tracks;
        int start;
        bool isShuffling;
        int place; ///< in the queue; -1: wherever it is
    };
    const Row rows[] = {
        {"twice, the second", {track(3), track(4), track(3), track(5)}, 2, false, 2},
        {"twice, the first", {track(4), track(3), track(3), track(5)}, 1, false, 1},
        {"twice, behind what is gone", {track(3), gone, gone, track(3), track(5)}, 3, false, 1},
        {"behind an album", {id(MediaKind::album, 7), track(3)}, 1, false, 10},
        {"behind much that is gone, the second", someGone, 1'310, false, 1'010},
        {"in the second message", many, 5'003, false, 5'003},
        {"shuffled", many.first(900), 700, true, -1},
    };
    open();
    const OutputDevice speaker = device(kitchen);
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        players->queues[u"kitchen"_s].isShuffling = row.isShuffling;
        EXPECT_EQ(failureOf(backend->play(row.tracks, speaker, PlayMode::replace(row.start))), QString());
        const auto &queue = players->queues[u"kitchen"_s];
        EXPECT_EQ(queue.entries[queue.current].uri, row.tracks[row.start].rawValue);
        if (row.place >= 0)
            EXPECT_EQ(queue.current, row.place);
    }
    players->queues[u"kitchen"_s].isShuffling = false;
    EXPECT_EQ(failureOf(backend->play(many, speaker, PlayMode::replace(0))), QString());
    EXPECT_EQ(players->queues[u"kitchen"_s].entries.size(), 5'500);
}

TEST_F(MusicAssistantOutputTest, ShowsAQueueAndItsEdits) {
    open();
    fill(u"kitchen"_s, 6);
    players->changed(u"kitchen"_s);
    const auto queue = watch(backend->queue(kitchen));
    const auto ids = [&] {
        QList<int> tracks;
        for (const RemoteQueueItem &item : queue->value->items)
            tracks.append(item.item->rawValue.section(u'/', 3).toInt() - 1);
        return tracks;
    };
    ASSERT_TRUE(waitUntil([&] { return queue->value && queue->value->total == 6; }));
    EXPECT_EQ(ids(), (QList{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(queue->value->currentIndex, 0);
    EXPECT_TRUE(queue->value->isComplete);
    const RemoteQueueItem third = queue->value->items[2];
    const auto track = outcomeOf(backend->tracks(id(MediaKind::album, 0))).value->at(2);
    EXPECT_EQ(third.index, 2);
    EXPECT_EQ(third.title, track.title);
    EXPECT_EQ(third.artist, track.artistName);
    EXPECT_EQ(third.album, track.albumName);

    EXPECT_EQ(failureOf(backend->edit(QueueEdit::move(third.id, 2), kitchen)), QString());
    ASSERT_TRUE(waitUntil([&] { return ids() == QList{0, 1, 3, 4, 2, 5}; }));
    EXPECT_EQ(failureOf(backend->edit(QueueEdit::remove({third.id, queue->value->items[3].id}), kitchen)),
              QString());
    ASSERT_TRUE(waitUntil([&] { return ids() == QList{0, 1, 3, 5}; }));
    EXPECT_EQ(failureOf(backend->edit(QueueEdit::remove({queue->value->items[1].id}), kitchen)),
              u"Track already buffered"_s);
    EXPECT_EQ(failureOf(backend->edit(QueueEdit::move(queue->value->items[1].id, 2), kitchen)),
              u"Track already buffered"_s);
    EXPECT_EQ(failureOf(backend->edit(QueueEdit::play(3), kitchen)), QString());
    ASSERT_TRUE(waitUntil([&] { return queue->value->currentIndex == 3; }));
    EXPECT_EQ(failureOf(backend->edit(QueueEdit::remove({queue->value->items[0].id}), kitchen)),
              u"Track already buffered"_s)
        << "it was played";
    fill(u"kitchen"_s, 60);
    players->buffered = 30;
    players->changed(u"kitchen"_s);
    ASSERT_TRUE(waitUntil([&] { return queue->value->items.size() == 60; }));
    const QString far = queue->value->items[29].id;
    const QString farther = queue->value->items[30].id;
    EXPECT_EQ(failureOf(backend->edit(QueueEdit::remove({farther}), kitchen)), QString());
    EXPECT_EQ(failureOf(backend->edit(QueueEdit::remove({far}), kitchen)), u"Track already buffered"_s);
    EXPECT_EQ(failureOf(backend->edit(QueueEdit::clear(), kitchen)), QString());
    ASSERT_TRUE(waitUntil([&] { return queue->value->items.isEmpty() && queue->value->total == 0; }));
    EXPECT_EQ(failureOf(backend->transport(TransportCommand::setShuffle(true), kitchen)), QString());
    EXPECT_EQ(failureOf(backend->transport(TransportCommand::setRepeat(true), kitchen)), QString());
    EXPECT_TRUE(waitUntil([&] { return queue->value->isShuffled == true && queue->value->repeats == true; }));
    EXPECT_EQ(failureOf(backend->transport(TransportCommand::setShuffle(false), kitchen)), QString());
    fill(u"kitchen"_s, 6);
    players->changed(u"kitchen"_s);
    ASSERT_TRUE(waitUntil([&] { return queue->value->items.size() == 6; }));
    EXPECT_EQ(failureOf(backend->transport(TransportCommand::setShuffle(true), kitchen)), QString());
    ASSERT_TRUE(waitUntil([&] { return ids() != QList{0, 1, 2, 3, 4, 5}; }));
    EXPECT_EQ(failureOf(backend->transport(TransportCommand::setShuffle(false), kitchen)), QString());
    EXPECT_TRUE(waitUntil([&] { return ids() == QList{0, 1, 2, 3, 4, 5}; }));
}

TEST_F(MusicAssistantOutputTest, ALongQueueIsShownAroundItsCurrentItem) {
    open({.tracks = 20'000});
    fill(u"kitchen"_s, 20'000);
    players->queues[u"kitchen"_s].current = 10'000;
    players->changed(u"kitchen"_s);
    const auto queue = watch(backend->queue(kitchen));
    ASSERT_TRUE(waitUntil([&] { return queue->value && queue->value->total == 20'000; }));
    const auto holds = [&](int index) {
        const auto &items = queue->value->items;
        return !items.isEmpty() && items.first().index <= index && items.last().index >= index;
    };
    EXPECT_FALSE(queue->value->isComplete);
    EXPECT_LE(queue->value->items.size(), 1'000);
    EXPECT_TRUE(holds(10'000));
    for (const int index : {19'999, 0, 700, 960}) {
        EXPECT_EQ(failureOf(backend->edit(QueueEdit::play(index), kitchen)), QString());
        ASSERT_TRUE(waitUntil([&] { return queue->value->currentIndex == index && holds(index); })) << index;
        const qsizetype row = index - queue->value->items.first().index;
        EXPECT_EQ(queue->value->items[row].item, id(MediaKind::track, index));
    }
    const auto further = outcomeOf(backend->queueItems(kitchen, {15'000, 20}));
    ASSERT_EQ(further.value->size(), 20);
    EXPECT_EQ(further.value->first().index, 15'000);
    EXPECT_EQ(further.value->first().item, id(MediaKind::track, 15'000));
}

TEST_F(MusicAssistantOutputTest, ABurstOfEventsIsWorkedOutOnce) {
    open();
    fill(u"kitchen"_s, 200);
    players->changed(u"kitchen"_s);
    const auto queue = watch(backend->queue(kitchen));
    const auto playing = watch(backend->nowPlaying(kitchen));
    ASSERT_TRUE(waitUntil([&] { return queue->value && queue->value->total == 200; }));
    const int before = countOf("player_queues/items");
    const QJsonObject record = players->queueRecord(u"kitchen"_s);
    for (int i = 0; i < 2'000; ++i)
        server.sendEvent(u"queue_items_updated"_s, u"kitchen"_s, record);
    players->queues[u"kitchen"_s].elapsed = 99;
    server.sendEvent(u"queue_time_updated"_s, u"kitchen"_s, 99);
    ASSERT_TRUE(waitUntil([&] { return playing->value->elapsed == 99; }));
    EXPECT_LT(countOf("player_queues/items") - before, 20);
    EXPECT_LT(playing->count, 100);
}

TEST_F(MusicAssistantOutputTest, OnlyTheLatestVolumeFollowsTheOneOnItsWay) {
    open();
    setFault("players/cmd/volume_set", {.kind = FakeMusicAssistant::CommandFault::Kind::delays});
    const auto first = begun(backend->transport(TransportCommand::setVolume(0.1), kitchen));
    ASSERT_TRUE(waitUntil([&] { return sawCommand("players/cmd/volume_set"); }));
    for (const double volume : {0.2, 0.3, 0.4})
        EXPECT_EQ(failureOf(backend->transport(TransportCommand::setVolume(volume), kitchen)), QString());
    ASSERT_TRUE(waitUntil([&] { return first->isOver; }));
    EXPECT_EQ(countOf("players/cmd/volume_set"), 2);
    EXPECT_EQ(players->players[u"kitchen"_s]["volume_level"_L1].toInt(), 40);
}

TEST_F(MusicAssistantOutputTest, AVolumeThatFailsDoesNotTakeTheNextOneAlong) {
    callTimeout = std::chrono::milliseconds(300);
    open();
    setFault("players/cmd/volume_set", {.kind = FakeMusicAssistant::CommandFault::Kind::stalls});
    const auto first = begun(backend->transport(TransportCommand::setVolume(0.1), kitchen));
    ASSERT_TRUE(waitUntil([&] { return sawCommand("players/cmd/volume_set"); }));
    for (const double volume : {0.6, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(failureOf(backend->transport(TransportCommand::setVolume(volume), kitchen)), QString());
    server.commandFaults.clear();
    ASSERT_TRUE(waitUntil([&] { return first->isOver; }));
    EXPECT_EQ(players->players[u"kitchen"_s]["volume_level"_L1].toInt(), 60);
}
