#pragma once

#include "MusicAssistantKit/Wire/MAEnvelope.h"

#include <QFutureWatcher>
#include <QObject>

#include <deque>

namespace vantor {

/// Makes envelopes of text frames, in their order. The pages of a large library are decoded on another
/// thread, so that the main one goes on; what is short is decoded at once. Main thread.
class MAFrameDecoder : public QObject {
    Q_OBJECT
  public:
    MAFrameDecoder();

    /// False, and nothing is taken, when too much waits already.
    [[nodiscard]] bool add(const QString &text);
    /// Whether everything that was added has been announced.
    [[nodiscard]] bool isIdle() const { return m_waiting.empty(); }

  Q_SIGNALS:
    void decoded(const vantor::MAEnvelope &envelope);

  private:
    void decodeFirst();
    void announce();

    std::deque<QString> m_waiting; ///< the first one is being decoded
    qsizetype m_waitingLength = 0;
    QFutureWatcher<MAEnvelope> m_watcher;
};

} // namespace vantor
