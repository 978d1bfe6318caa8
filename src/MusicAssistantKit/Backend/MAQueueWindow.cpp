#include "MusicAssistantKit/Backend/MAOutputWatchers_p.h"
#include "MusicAssistantKit/Backend/PlayerMapping.h"

#include <QCoroFuture>
#include <QPointer>
#include <QtConcurrentRun>

// Which stretch of a queue is kept for its watchers, and when it is read again.

namespace vantor {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qint64 windowSize = 1'000;
/// Of what was played, so that one can go back; the rest lies ahead.
constexpr qint64 windowBefore = 200;
/// The current item comes no closer than this to the end of the stretch, unless the queue ends there.
constexpr qint64 windowMargin = 50;
/// Between two readings of the same items.
constexpr auto readingPause = 300ms;
constexpr auto pauseAfterFailure = 5s;

qint64 windowStart(const MAPlayerQueue &queue) {
    const qint64 latest = std::max<qint64>(queue.items - windowSize, 0);
    return std::clamp<qint64>(queue.currentIndex.value_or(0) - windowBefore, 0, latest);
}

} // namespace

bool MAOutputWatchers::needsItems(const QueueWatch &watch, const MAPlayerStore::Queue &queue) const {
    const MAPlayerQueue &record = queue.record;
    if (watch.isStale || watch.queueID != record.queueID || watch.told != record.items)
        return true;
    // The same question would get the same answer.
    if (!record.currentIndex || watch.items.isEmpty() || watch.offset == windowStart(record))
        return false;
    const qint64 first = watch.items.first().index;
    const qint64 end = first + watch.items.size();
    const bool isNearStart = first > 0 && *record.currentIndex < first + windowMargin;
    const bool isNearEnd = end < record.items && *record.currentIndex >= end - windowMargin;
    return isNearStart || isNearEnd;
}

void MAOutputWatchers::publishQueue(const OutputDevice::ID &output, QueueWatch &watch) {
    const MAPlayer *const player = m_store.player(output);
    const MAPlayerStore::Queue *const queue = player ? m_store.queue(m_store.queueID(*player)) : nullptr;
    auto next = RemoteQueueSnapshot::empty(output);
    if (queue) {
        next.isShuffled = queue->record.shuffleEnabled;
        next.repeats = maplayer::repeats(queue->record);
    }
    if (queue && queue->record.items > 0) {
        if (needsItems(watch, *queue) && !watch.isReading && !watch.pause)
            readItems(output, queue->record.queueID);
        if (watch.queueID != queue->record.queueID)
            return; // its items come first
        next.items = watch.items;
        next.total = static_cast<int>(std::max(watch.total, qint64(watch.items.size())));
        const qint64 current = queue->record.currentIndex.value_or(-1);
        if (current >= 0 && current < next.total)
            next.currentIndex = static_cast<int>(current);
        next.isComplete = watch.items.size() >= next.total;
    } else if (!m_store.hasPlayers() || !m_store.hasQueues()) {
        return; // it may have items
    }
    if (watch.last == next)
        return;
    watch.last = next;
    watch.streams.send(next);
}

QCoro::Task<> MAOutputWatchers::readItems(OutputDevice::ID output, QString queueID) {
    const QPointer self(this);
    const int era = m_era;
    QueueWatch &before = m_queues[output.rawValue];
    before.isReading = true;
    before.isStale = false;
    const MAPlayerQueue record = m_store.queue(queueID)->record;
    const int offset = static_cast<int>(windowStart(record));
    std::optional<QList<RemoteQueueItem>> items;
    try {
        const MAJSON page =
            co_await m_call(u"player_queues/items"_s,
                            {{u"queue_id"_s, queueID}, {u"limit"_s, windowSize}, {u"offset"_s, offset}});
        items = co_await QtConcurrent::run(&maplayer::queueItems, page, offset);
    } catch (const std::exception &) {
        // What is shown stays for the moment.
    }
    if (!self || era != m_era)
        co_return;
    const auto watch = m_queues.find(output.rawValue);
    if (watch == m_queues.end())
        co_return;
    QueueWatch &after = watch->second;
    after.isReading = false;
    after.isStale |= !items;
    if (items) {
        items->resize(std::min<qsizetype>(items->size(), windowSize));
        after.queueID = queueID;
        after.items = *items;
        after.offset = offset;
        after.told = record.items;
        const bool isLast = items->size() < windowSize;
        after.total = isLast ? record.items : std::max(record.items, offset + qint64(items->size()));
    }
    after.pause = m_clock.after(items ? readingPause : pauseAfterFailure, [this, output] {
        if (const auto known = m_queues.find(output.rawValue); known != m_queues.end()) {
            const auto timer = std::move(known->second.pause);
            publishQueue(output, known->second);
        }
    });
    publishQueue(output, after);
}

} // namespace vantor
