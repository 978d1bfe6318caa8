#pragma once

#include "LocalPlayback/Queue/QueueStore.h"

#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <chrono>
#include <memory>

namespace vantor {

class Player;

/// Saves the player's queue a short while after it changes. The delay runs from the first change that is not
/// saved yet, so that a burst of changes is one save and cannot put it off. The file is written on a thread
/// of its own; a failure is logged, and the next change or flush() tries again. Main thread. Borrows the
/// player, which has to live longer.
class QueueAutosaver : public QObject {
    Q_OBJECT

  public:
    QueueAutosaver(Player &output, QueueStore store, std::chrono::milliseconds delay,
                   QObject *parent = nullptr);
    /// Ends what is being written; a save that is pending is lost without flush().
    ~QueueAutosaver() override;

    /// Begins to observe: what the queue holds now counts as saved.
    void start();
    /// Saves at once and waits for it; nothing is written when the file holds this queue already.
    void saveNow();
    /// Writes what is pending, and waits until nothing is being written.
    void flush();
    /// Completed saves.
    [[nodiscard]] int saveCount() const;

  private:
    struct Writer;

    void scheduleSave();
    void beginSave();

    Player &m_output;
    bool m_started = false;
    QTimer m_pending;
    std::shared_ptr<Writer> m_writer;
    QThreadPool m_pool; ///< one thread, so that saves keep their order
};

} // namespace vantor
