#pragma once

#include "Platform/Scheduler.h"
#include "SendspinKit/Clock/SendspinClock.h"
#include "SendspinKit/Clock/SendspinClockState.h"
#include "SendspinKit/Wire/SendspinIncoming.h"

#include <QObject>

namespace vantor {

/// Keeps the server's clock known on one connection: asks for its time in bursts, for as long as it lives.
///
/// The questions of a burst go out one by one, each after the answer to the one before, so that none waits
/// behind another on the way.
class SendspinClockSync : public QObject {
    Q_OBJECT
  public:
    SendspinClockSync(Scheduler &scheduler, const SendspinClock &clock)
        : m_scheduler(scheduler), m_clock(clock) {}

    void start() { beginBurst(); }
    /// Nothing follows.
    void stop() {
        m_timeReply.reset();
        m_nextBurst.reset();
    }
    /// `receivedAt`: when the answer came, by the local clock.
    void take(const SendspinIncoming::ServerTime &answer, std::int64_t receivedAt);
    [[nodiscard]] const SendspinClockState &state() const { return m_state; }
    /// Whether sound can be scheduled by it.
    [[nodiscard]] bool isSynchronized() const;

  Q_SIGNALS:
    /// To be sent at once.
    void asked(std::int64_t clientTransmitted);
    void finishedBurst();
    /// The server's clock is another one than it was: what was known of it has been thrown away.
    void jumped();
    /// The server keeps an answer to itself. Nothing follows.
    void unanswered();

  private:
    void beginBurst();
    void ask();
    void finishBurst();
    [[nodiscard]] bool contradicts(const SendspinClockSample &sample) const;
    [[nodiscard]] std::chrono::milliseconds pause() const;

    Scheduler &m_scheduler;
    const SendspinClock &m_clock;
    SendspinClockState m_state;
    SendspinClockBurst m_burst;
    std::optional<std::int64_t> m_askedAt;           ///< while an answer is waited for
    int m_contradictions = 0;                        ///< in a row
    std::unique_ptr<Scheduler::Pending> m_timeReply; ///< goes off when the answer does not come
    std::unique_ptr<Scheduler::Pending> m_nextBurst;
};

} // namespace vantor
