#pragma once

#include "LocalPlayback/Queue/QueueAutosaver.h"

#include <QObject>
#include <QThreadPool>

namespace vantor {

class PlayerModel;

/// Brings back the queue of the last run and keeps the present one from then on. The file is read on a worker
/// thread; until its queue is in the player, imports wait and nothing is saved, so that neither comes before
/// what they belong behind. Main thread; borrows the model.
class SavedQueue : public QObject {
    Q_OBJECT

  public:
    /// A queue of nothing but this file is not brought back.
    SavedQueue(PlayerModel &model, const QUrl &demo);
    /// Saves what is not saved yet; what was not brought back by then stays in the file.
    ~SavedQueue() override;

  Q_SIGNALS:
    /// `hasTracks`: there was something of the user's own in it.
    void restored(bool hasTracks);

  private:
    void take(std::optional<QueueSnapshot> saved);

    PlayerModel &m_model;
    QUrl m_demo;
    QueueStore m_store;
    QueueAutosaver m_autosaver;
    RepeatMode m_repeatAtStart;
    bool m_shuffledAtStart;
    QThreadPool m_pool;
};

} // namespace vantor
