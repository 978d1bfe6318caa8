#include "LocalPlayback/Queue/QueueAutosaver.h"

#include "AudioCore/Playback/Player.h"
#include "LocalPlayback/LocalPlaybackError.h"

#include <QLoggingCategory>

#include <atomic>

Q_LOGGING_CATEGORY(queueAutosaverLog, "co.kelvane.vantor.QueueAutosaver")

namespace vantor {

/// Everything but the two atomics belongs to the pool's one thread.
struct QueueAutosaver::Writer {
    QueueStore store;
    std::optional<QueueSnapshot> baseline; ///< what the file holds, or what counts as saved
    std::atomic_int saveCount = 0;
    std::atomic_bool failed = false;

    /// Lets go of the tracks that the queue shares before it writes, so that the next edit need not copy
    /// them.
    void write(PlayQueue queue) {
        QueueSnapshot snapshot = QueueSnapshot::fromQueue(std::exchange(queue, {}));
        if (snapshot == baseline)
            return;
        try {
            store.save(snapshot);
            baseline = std::move(snapshot);
            failed = false;
            ++saveCount;
        } catch (const LocalPlaybackError &error) {
            failed = true;
            qCWarning(queueAutosaverLog, "%s", qUtf8Printable(error.description()));
        }
    }
};

QueueAutosaver::QueueAutosaver(Player &output, QueueStore store, std::chrono::milliseconds delay,
                               QObject *parent)
    : QObject(parent), m_output(output), m_writer(new Writer{.store = std::move(store), .baseline = {}}) {
    m_pool.setMaxThreadCount(1);
    m_pending.setSingleShot(true);
    m_pending.setInterval(delay);
    connect(&m_pending, &QTimer::timeout, this, [this] {
        if (m_pool.activeThreadCount() > 0)
            m_pending.start(); // a slow disk must not gather snapshots
        else
            beginSave();
    });
}

QueueAutosaver::~QueueAutosaver() = default;

void QueueAutosaver::start() {
    if (std::exchange(m_started, true))
        return;
    m_pool.start([writer = m_writer, queue = m_output.queue()]() mutable {
        writer->baseline = QueueSnapshot::fromQueue(std::exchange(queue, {}));
    });
    connect(&m_output, &Player::queueChanged, this, &QueueAutosaver::scheduleSave);
}

void QueueAutosaver::scheduleSave() {
    if (!m_pending.isActive())
        m_pending.start();
}

void QueueAutosaver::beginSave() {
    m_pending.stop();
    // The copy shares the tracks; what takes time is done there.
    m_pool.start(
        [writer = m_writer, queue = m_output.queue()]() mutable { writer->write(std::move(queue)); });
}

void QueueAutosaver::saveNow() {
    beginSave();
    m_pool.waitForDone();
}

void QueueAutosaver::flush() {
    m_pool.waitForDone();
    if (m_pending.isActive() || m_writer->failed)
        saveNow();
}

int QueueAutosaver::saveCount() const {
    return m_writer->saveCount;
}

} // namespace vantor
