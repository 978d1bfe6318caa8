#include "MusicAssistantKit/Backend/MADecodedAside_p.h"
#include "MusicAssistantKit/Backend/MAOutputWatchers_p.h"

#include <QPointer>

namespace vantor {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Sooner than anybody sees, later than a burst of events takes.
constexpr auto workingOutDelay = 40ms;
/// Of one look: a server that names ever new players must not fill the memory.
constexpr qsizetype mostNews = 2'000;

template <typename Key, typename Value>
void put(QHash<Key, Value> &news, const Key &key, const Value &value) {
    if (news.size() < mostNews || news.contains(key))
        news.insert(key, value);
}

template <typename Watches>
void forgetUnwatched(Watches &watches) {
    std::erase_if(watches, [](const auto &entry) { return !entry.second.streams.isWanted(); });
}

} // namespace

void MAOutputWatchers::setLocalClientID(const std::optional<QString> &id) {
    m_store.setLocalClientID(id);
    publish();
}

void MAOutputWatchers::take(const MAServerEvent &event) {
    const QString id = event.objectID.value_or(QString());
    const bool hasRecord = event.data.kind() == MAJSON::Kind::object;
    if (event.event == "player_updated"_L1 || event.event == "player_added"_L1) {
        if (hasRecord)
            put(m_newPlayers, id, event.data);
    } else if (event.event == "player_removed"_L1) {
        put(m_newPlayers, id, MAJSON());
    } else if (event.event == "queue_time_updated"_L1) {
        if (const auto seconds = event.data.number())
            put(m_newTimes, id, *seconds);
    } else if (event.event == "queue_updated"_L1 || event.event == "queue_added"_L1 ||
               event.event == "queue_items_updated"_L1) {
        if (hasRecord) {
            put(m_newQueues, id, event.data);
            m_newTimes.remove(id); // told before, maybe of another track
        }
        if (event.event == "queue_items_updated"_L1 && m_changedItems.size() < mostNews)
            m_changedItems.insert(id);
    } else {
        return;
    }
    workOutSoon();
}

void MAOutputWatchers::workOutSoon() {
    if (m_workingOut)
        return;
    m_workingOut = m_clock.after(workingOutDelay, [this] {
        if (m_listsInWork == 0)
            return workOut();
        const auto timer = std::move(m_workingOut);
        workOutSoon();
    });
}

void MAOutputWatchers::workOut() {
    const auto timer = std::move(m_workingOut);
    const double instant = secondsNow();
    const auto players = std::exchange(m_newPlayers, {});
    for (auto news = players.begin(); news != players.end(); ++news) {
        if (const auto player = readable(*news, &MAPlayer::decode))
            m_store.apply(*player, instant);
        else if (news->isNull())
            m_store.removePlayer(news.key());
    }
    for (const MAJSON &news : std::exchange(m_newQueues, {})) {
        if (const auto queue = readable(news, &MAPlayerQueue::decode))
            m_store.apply(*queue, instant);
    }
    const auto times = std::exchange(m_newTimes, {});
    for (auto time = times.begin(); time != times.end(); ++time)
        m_store.applyTime(time.key(), *time, instant);
    for (auto &[output, watch] : m_queues)
        watch.isStale |= m_changedItems.contains(watch.queueID);
    m_changedItems.clear();
    publish();
}

template <typename Record>
QCoro::Task<std::optional<QList<Record>>> MAOutputWatchers::readAll(QString command,
                                                                    Record (*decode)(const MAReader &)) {
    const QPointer self(this);
    const int era = m_era;
    const MAJSON answer = co_await m_call(command, {});
    if (!self || era != m_era)
        co_return std::nullopt;
    if (m_workingOut && m_listsInWork == 0)
        workOut(); // that is older than the list, and what comes from now on is newer
    ++m_listsInWork;
    const QList<Record> records = co_await decodedAside(answer, decode);
    if (!self)
        co_return std::nullopt;
    --m_listsInWork;
    co_return era == m_era ? std::optional(records) : std::nullopt;
}

QCoro::Task<> MAOutputWatchers::reloadPlayers() {
    const auto players = co_await readAll(u"players/all"_s, &MAPlayer::decode);
    if (!players)
        co_return;
    m_store.setPlayers(*players, secondsNow());
    publish();
}

QCoro::Task<> MAOutputWatchers::reloadQueues() {
    const auto queues = co_await readAll(u"player_queues/all"_s, &MAPlayerQueue::decode);
    if (!queues)
        co_return;
    m_store.setQueues(*queues, secondsNow());
    for (auto &[output, watch] : m_queues) {
        watch.isStale = true;
        watch.pause.reset();
    }
    publish();
}

void MAOutputWatchers::readClock(double there, double from, double to) {
    m_store.clock.read(there, from, to);
    publish();
}

void MAOutputWatchers::end() {
    ++m_era;
    m_workingOut.reset();
    m_newPlayers.clear();
    m_newQueues.clear();
    m_newTimes.clear();
    m_changedItems.clear();
    m_nowPlaying.clear();
    m_queues.clear();
    m_activities = {};
    m_overview = {};
    m_asked.clear();
    const auto client = m_store.localClientID();
    m_store = {};
    m_store.setLocalClientID(client);
}

AsyncStream<NowPlaying> MAOutputWatchers::nowPlaying(const OutputDevice::ID &output) {
    auto &watch = m_nowPlaying[output.rawValue];
    if (!watch.streams.isWanted())
        watch.last = present(output);
    auto stream = watch.streams.subscribe(latestValueOnly, watch.last);
    askActiveQueues(); // may publish at once, which forgets what nobody watches
    return stream;
}

AsyncStream<RemoteQueueSnapshot> MAOutputWatchers::queue(const OutputDevice::ID &output) {
    auto &watch = m_queues[output.rawValue];
    auto stream = watch.last ? watch.streams.subscribe(latestValueOnly, *watch.last)
                             : watch.streams.subscribe(latestValueOnly);
    askActiveQueues();
    publishQueue(output, watch);
    return stream;
}

AsyncStream<QList<OutputActivity>> MAOutputWatchers::activities() {
    m_overview = overview();
    return m_activities.subscribe(latestValueOnly, m_overview.activities);
}

void MAOutputWatchers::publish() {
    askActiveQueues();
    publishNowPlaying();
    publishActivities();
    forgetUnwatched(m_queues);
    for (auto &[output, watch] : m_queues)
        publishQueue({output}, watch);
}

NowPlaying MAOutputWatchers::present(const OutputDevice::ID &output) const {
    return m_store.nowPlaying(output, secondsNow());
}

void MAOutputWatchers::publishNowPlaying() {
    forgetUnwatched(m_nowPlaying);
    for (auto &[output, watch] : m_nowPlaying) {
        NowPlaying next = present({output});
        const bool isIdle = next.state == NowPlaying::State::stopped && !next.title;
        if (isIdle) // when that was said does not matter
            next.updatedAt = watch.last.updatedAt;
        if (next == watch.last)
            continue;
        watch.last = next;
        watch.streams.send(next);
    }
}

MAOutputWatchers::Overview MAOutputWatchers::overview() const {
    Overview made{.activities = m_store.activities(secondsNow()), .devices = m_store.devices(), .states = {}};
    for (const OutputDevice &device : made.devices)
        made.states.append(m_store.state(device.id));
    return made;
}

void MAOutputWatchers::publishActivities() {
    if (!m_activities.isWanted())
        return;
    Overview next = overview();
    if (next == m_overview)
        return;
    m_overview = std::move(next);
    m_activities.send(m_overview.activities);
}

void MAOutputWatchers::askActiveQueues() {
    QSet<QString> outputs;
    for (const auto &[output, watch] : m_nowPlaying)
        outputs.insert(output);
    for (const auto &[output, watch] : m_queues)
        outputs.insert(output);
    for (const QString &output : outputs) {
        const MAPlayer *const player = m_store.player(OutputDevice::ID{output});
        if (player && !m_store.knowsActiveQueue(*player) && !m_asked.contains(player->playerID)) {
            m_asked.insert(player->playerID);
            askActiveQueue(player->playerID, MAPlayerStore::groupOf(*player));
        }
    }
}

QCoro::Task<> MAOutputWatchers::askActiveQueue(QString playerID, QString group) {
    const QPointer self(this);
    const int era = m_era;
    std::optional<MAPlayerQueue> queue;
    try {
        const MAJSON answer =
            co_await m_call(u"player_queues/get_active_queue"_s, {{u"player_id"_s, playerID}});
        queue = readable(answer, &MAPlayerQueue::decode);
    } catch (const std::exception &) {
        // The leader's queue stands in.
    }
    if (!self || era != m_era)
        co_return;
    m_asked.remove(playerID);
    m_store.setActiveQueue(playerID, group, queue ? queue->queueID : group);
    if (queue)
        m_store.apply(*queue, secondsNow());
    publish();
}

} // namespace vantor
