#include "Vantor/Remote/RemotePlaylist.h"

#include "MusicBackendKit/MusicBackendError.h"
#include "Vantor/Remote/QueueMoves.h"

#include <algorithm>
#include <utility>

namespace vantor {

namespace {

constexpr std::chrono::milliseconds movePause{300};
constexpr std::chrono::milliseconds settleTime{2000};
constexpr std::chrono::milliseconds firstRetry{2000};
constexpr std::chrono::milliseconds longestRetry{60'000};
const QChar unknownMark(0); // begins no ID of a server

QString unknownID(int row) {
    return unknownMark + QString::number(row);
}

Track trackOf(const RemoteQueueItem &item) {
    static const QUuid space(QStringLiteral("{6a1f64be-6b53-4c0e-9f3b-0d4f5a6b7c81}"));
    Track track;
    track.id = QUuid::createUuidV5(space, item.id);
    track.title = item.isAvailable ? item.title : RemotePlaylist::tr("%1 (not available)").arg(item.title);
    track.artist = item.artist.value_or(QString());
    track.album = item.album;
    track.duration = item.duration.value_or(0);
    if (item.item)
        track.source = *item.item;
    return track;
}

Track unknownTrack(int row) {
    Track track;
    track.id = QUuid(static_cast<uint>(row), 1, 1, 0, 0, 0, 0, 0, 0, 0, 0);
    track.title = QStringLiteral("…");
    return track;
}

} // namespace

RemotePlaylist::RemotePlaylist(RemoteOutput &output, QObject *parent)
    : PlaylistQueue(parent), m_output(output), m_retryPause(firstRetry) {
    m_committing.setSingleShot(true);
    m_committing.setInterval(movePause);
    connect(&m_committing, &QTimer::timeout, this, &RemotePlaylist::commitMoves);
    m_settling.setSingleShot(true);
    m_settling.setInterval(settleTime);
    connect(&m_settling, &QTimer::timeout, this, &RemotePlaylist::takeQueue);
    m_tryingAgain.setSingleShot(true);
    connect(&m_tryingAgain, &QTimer::timeout, this, [this] {
        m_pages -= std::exchange(m_failedPages, {});
        Q_EMIT changed(); // so that those that are seen are wanted
    });
    connect(&output, &RemoteOutput::queueChanged, this, &RemotePlaylist::takeQueue);
    takeQueue();
}

// What it holds

/// Another speaker's queue comes.
void RemotePlaylist::forget() {
    m_turn = std::make_shared<char>();
    m_tracks.clear();
    m_ids.clear();
    m_current.reset();
    m_pages.clear();
    m_failedPages.clear();
    m_tryingAgain.stop();
    m_retryPause = firstRetry;
    m_moved.clear();
    m_edits.clear();
    m_isEditing = false;
    m_committing.stop();
    m_settling.stop();
    Q_EMIT changed();
}

bool RemotePlaylist::knows(int row) const {
    return row >= 0 && row < m_ids.size() && !m_ids[row].startsWith(unknownMark);
}

void RemotePlaylist::takeQueue() {
    const RemoteQueueSnapshot &queue = m_output.queue();
    if (queue.output.rawValue.isEmpty()) {
        forget();
        return;
    }
    if (isBusy())
        return;
    m_settling.stop();
    tryAgainSoon();
    const auto told = static_cast<int>(std::min<qsizetype>(queue.items.size(), mostRows));
    const int count = queue.isComplete ? told : std::clamp(queue.total, told, mostRows);
    // What was loaded of a long queue holds as long as what is told of it fits.
    const bool fits = count == m_ids.size() && !queue.isComplete &&
                      std::ranges::all_of(queue.items, [&](const RemoteQueueItem &item) {
                          return !knows(item.index) || m_ids[item.index] == item.id;
                      });
    if (!fits) {
        ++m_edition;
        m_tracks.resize(static_cast<std::size_t>(count));
        m_ids.resize(count);
        for (int row = queue.isComplete ? count : 0; row < count; ++row) {
            m_ids[row] = unknownID(row);
            m_tracks[static_cast<std::size_t>(row)] = unknownTrack(row);
        }
    }
    takeItems(queue.items, queue.isComplete ? 0 : -1);
    m_current = queue.currentIndex;
    if (m_current && (*m_current < 0 || *m_current >= count))
        m_current.reset();
    Q_EMIT changed();
    Q_EMIT currentChanged();
}

/// `offset`: of the first item's row; −1: each one tells its row.
void RemotePlaylist::takeItems(const QList<RemoteQueueItem> &items, int offset) {
    for (qsizetype i = 0; i < items.size(); ++i) {
        const auto row = offset < 0 ? qsizetype{items[i].index} : offset + i;
        if (row < 0 || row >= m_ids.size())
            continue;
        m_ids[row] = items[i].id.isEmpty() ? unknownID(static_cast<int>(row)) : items[i].id;
        m_tracks[static_cast<std::size_t>(row)] = trackOf(items[i]);
    }
}

void RemotePlaylist::want(int first, int end) {
    for (int row = std::max(0, first); row < std::min<qsizetype>(end, m_ids.size()); ++row) {
        if (!knows(row) && !m_pages.contains(row / pageSize) && !isBusy())
            loadPage(row / pageSize);
    }
}

QCoro::Task<> RemotePlaylist::loadPage(int page) {
    const std::weak_ptr<char> turn = m_turn;
    const std::shared_ptr<MusicBackend> backend = m_output.backend();
    if (!backend)
        co_return;
    m_pages.insert(page);
    const PageRequest request{page * pageSize, pageSize};
    const OutputDevice::ID output = m_output.device().id;
    const int edition = m_edition;
    QList<RemoteQueueItem> items;
    try {
        items = co_await backend->queueItems(output, request);
    } catch (...) { // what it is called stays unknown for now; it can be played all the same
    }
    if (turn.expired())
        co_return;
    const bool isInPlace = edition == m_edition && !isBusy();
    if (isInPlace)
        takeItems(items.mid(0, pageSize), request.offset);
    if (knowsPage(page)) {
        m_pages.remove(page);
        m_retryPause = firstRetry;
    } else {
        tryAgainLater(page);
    }
    if (isInPlace && !items.isEmpty())
        Q_EMIT changed();
}

bool RemotePlaylist::knowsPage(int page) const {
    const int end = std::min<int>((page + 1) * pageSize, static_cast<int>(m_ids.size()));
    for (int row = page * pageSize; row < end; ++row) {
        if (!knows(row))
            return false;
    }
    return true;
}

// What has failed, came too late, or did not tell everything. A server that goes on failing is asked ever
// more rarely, until it tells something by itself.
void RemotePlaylist::tryAgainLater(int page) {
    m_failedPages.insert(page);
    if (m_tryingAgain.isActive())
        return;
    m_tryingAgain.start(m_retryPause);
    m_retryPause = std::min(2 * m_retryPause, longestRetry);
}

void RemotePlaylist::tryAgainSoon() {
    m_retryPause = firstRetry;
    if (m_tryingAgain.remainingTimeAsDuration() > firstRetry)
        m_tryingAgain.start(firstRetry);
}

// Edits

void RemotePlaylist::play(int row) {
    if (row < 0 || row >= m_ids.size())
        return;
    commitMoves();
    m_current = row;
    Q_EMIT currentChanged();
    edit({QueueEdit::play(row)});
}

void RemotePlaylist::remove(const IndexSet &rows) {
    if (rows.size() >= m_tracks.size() && !m_tracks.empty())
        return clear();
    QStringList ids;
    for (const int row : rows) {
        if (!knows(row)) {
            Q_EMIT m_output.failed(tr("The rest of the list is still loading"));
            want(row, row + 1);
            return;
        }
        ids.append(m_ids[row]);
    }
    if (ids.isEmpty())
        return;
    commitMoves();
    if (m_current)
        m_current =
            rows.contains(*m_current)
                ? std::nullopt
                : std::optional(*m_current -
                                static_cast<int>(std::distance(rows.begin(), rows.lower_bound(*m_current))));
    ++m_edition;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        m_tracks.erase(m_tracks.begin() + *row);
        m_ids.removeAt(*row);
    }
    Q_EMIT changed();
    edit({QueueEdit::remove(ids)});
}

void RemotePlaylist::clear() {
    m_committing.stop();
    m_moved.clear();
    m_tracks.clear();
    m_ids.clear();
    m_current.reset();
    Q_EMIT changed();
    edit({QueueEdit::clear()});
}

void RemotePlaylist::move(const IndexSet &rows, int step) {
    if (rows.empty() || step == 0 || *rows.begin() + step < 0 ||
        *rows.rbegin() + step >= static_cast<int>(m_tracks.size()))
        return;
    ++m_edition;
    if (m_moved.isEmpty())
        m_idsBefore = m_ids;
    const QString current = m_current ? m_ids[*m_current] : QString();
    const auto passRow = [&](int row) {
        m_moved.insert(m_ids[row]);
        for (int at = row; at != row + step; at += step > 0 ? 1 : -1) {
            const int next = at + (step > 0 ? 1 : -1);
            std::swap(m_tracks[static_cast<std::size_t>(at)], m_tracks[static_cast<std::size_t>(next)]);
            m_ids.swapItemsAt(at, next);
        }
    };
    if (step > 0)
        std::for_each(rows.rbegin(), rows.rend(), passRow);
    else
        std::ranges::for_each(rows, passRow);
    if (m_current)
        m_current = static_cast<int>(m_ids.indexOf(current));
    m_committing.start();
    Q_EMIT changed();
}

void RemotePlaylist::commitMoves() {
    m_committing.stop();
    if (m_moved.isEmpty())
        return;
    const QList<QueueEdit> edits = QueueMoves::edits(m_idsBefore, m_ids, m_moved);
    m_moved.clear();
    if (std::ranges::any_of(edits, [](const QueueEdit &edit) { return edit.itemID.startsWith(unknownMark); }))
        Q_EMIT m_output.failed(tr("The rest of the list is still loading"));
    else
        edit(edits);
    m_settling.start();
}

void RemotePlaylist::edit(const QList<QueueEdit> &edits) {
    m_edits.insert(m_edits.end(), edits.begin(), edits.end());
    if (!m_isEditing)
        editInTurn();
}

QCoro::Task<> RemotePlaylist::editInTurn() {
    const std::weak_ptr<char> turn = m_turn;
    m_isEditing = true;
    while (!turn.expired() && !m_edits.empty()) {
        const std::shared_ptr<MusicBackend> backend = m_output.backend();
        const QueueEdit next = m_edits.front();
        m_edits.pop_front();
        std::exception_ptr error;
        try {
            if (!backend)
                throw MusicBackendError::unknownOutput({});
            co_await backend->edit(next, m_output.device().id);
        } catch (...) {
            error = std::current_exception();
        }
        if (turn.expired())
            co_return;
        if (error) { // the others were meant for the queue that would have come of it
            m_edits.clear();
            m_isEditing = false;
            m_output.fail(error);
            takeQueue();
            co_return;
        }
    }
    m_isEditing = false;
    m_settling.start();
}

} // namespace vantor
