#pragma once

#include "MusicAssistantKit/Connection/MAWebSocketTransport.h"
#include "MusicAssistantKit/Connection/ReconnectPolicy.h"
#include "Platform/Scheduler.h"
#include "Platform/ThreadSafety.h"
#include "SendspinKit/Clock/SendspinClock.h"
#include "SendspinKit/Clock/SendspinClockState.h"
#include "SendspinKit/Session/SendspinConnectionConfiguration.h"
#include "SendspinKit/Session/SendspinEvent.h"
#include "SendspinKit/Session/SendspinPlayerState.h"

#include <QObject>

namespace vantor {

class SendspinConnection;

/// A lost connection is waited for like every other one of a Music Assistant server.
using SendspinReconnectPolicy = ReconnectPolicy;

/// This computer as a player of a Music Assistant server: one connection at a time, which is made again
/// whenever it is lost, until the session is stopped.
///
/// It lives in a thread of its own, so that nothing delays the instants that the clock is measured by:
///
///     auto *session = new SendspinSession(transports, scheduler, clock);
///     session->moveToThread(&thread);
///     connect(&thread, &QThread::finished, session, &QObject::deleteLater);
///     thread.start();
///
/// Its functions may be called from any thread; what they ask for happens in the session's thread, in the
/// order of the calls. Its signals come from there; who lives elsewhere gets them by queued calls. Destroyed
/// in its thread, it takes its leave of the server ("shutdown").
class SendspinSession : public QObject {
    Q_OBJECT
  public:
    /// The longest frame that a server has reason to send, for the transports: QtWebSocketTransports
    /// transports(SendspinSession::longestFrame).
    static constexpr qint64 longestFrame = 1 << 20;

    /// The collaborators outlive the session and are used in its thread.
    SendspinSession(MAWebSocketTransports &transports, Scheduler &scheduler, const SendspinClock &clock,
                    SendspinReconnectPolicy reconnect = SendspinReconnectPolicy::standard());
    ~SendspinSession() override;

    /// Connects and stays connected. One that is under way ends first.
    void start(const SendspinConnectionConfiguration &configuration);
    /// Takes leave and ends; `Disconnected` without a reason is the last event.
    void stop(SendspinGoodbyeReason reason);
    /// What the server is told from now on; at once when it is connected.
    void report(const SendspinPlayerState &state);

    /// Any thread: what is known of the server's clock, as of the last burst. From the beginning of a
    /// connection until `Synchronized` it is as new; while a clock that has jumped is learnt anew, it stays
    /// what it was.
    [[nodiscard]] SendspinClockState clock() const VANTOR_EXCLUDES(m_publishing);

  Q_SIGNALS:
    void occurred(const vantor::SendspinEvent &event);

  private:
    void connectToServer();
    void take(const SendspinEvent &event);
    void publish(const SendspinClockState &clock) VANTOR_EXCLUDES(m_publishing);
    void retryAfter(const SendspinError &error);
    void leave(SendspinGoodbyeReason reason);
    std::unique_ptr<SendspinConnection> part(SendspinGoodbyeReason reason);

    MAWebSocketTransports &m_transports;
    Scheduler &m_scheduler;
    const SendspinClock &m_clock;
    const SendspinReconnectPolicy m_reconnect;
    std::optional<SendspinConnectionConfiguration> m_configuration; ///< none: stopped
    SendspinPlayerState m_state;
    int m_attempt = 0; ///< how many have failed in a row
    std::unique_ptr<SendspinConnection> m_connection;
    std::unique_ptr<Scheduler::Pending> m_retry;
    mutable Mutex m_publishing;
    SendspinClockState m_published VANTOR_GUARDED_BY(m_publishing);
};

} // namespace vantor
