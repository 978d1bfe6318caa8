#pragma once

#include "MusicAssistantKit/Connection/MAWebSocketTransport.h"
#include "SendspinKit/Clock/SendspinClockSync_p.h"
#include "SendspinKit/Session/SendspinConnectionConfiguration.h"
#include "SendspinKit/Session/SendspinEvent.h"
#include "SendspinKit/Session/SendspinPlayerState.h"

namespace vantor {

/// One attempt to be a server's player, from opening the socket to its end. When it has ended, the object is
/// of no more use.
class SendspinConnection : public QObject {
    Q_OBJECT
  public:
    enum class Phase { auth, hello, syncing, running };

    SendspinConnection(std::unique_ptr<MAWebSocketTransport> transport, Scheduler &scheduler,
                       const SendspinClock &clock, const SendspinConnectionConfiguration &configuration,
                       const SendspinPlayerState &state);

    void open();
    void report(const SendspinPlayerState &state);
    /// Says goodbye; nothing follows.
    void leave(SendspinGoodbyeReason reason);

  Q_SIGNALS:
    /// Everything but `Disconnected`.
    void occurred(const vantor::SendspinEvent &event);
    /// After each burst from `Synchronized` on, and just before it.
    void clockKnown(const vantor::SendspinClockState &clock);
    /// Once, at any time; nothing follows.
    void failed(const vantor::SendspinError &error);

  private:
    void begin();
    void takeFrame(const MAWebSocketFrame &frame);
    void takeMessage(const SendspinIncoming &message, std::int64_t receivedAt);
    void takeHello(const SendspinServerHello &hello);
    void takeStreamMessage(const SendspinIncoming &message);
    void takeCommand(const SendspinIncoming::ServerCommand &command);
    void takeAudio(const QByteArray &frame);
    void takeMalformed(const SendspinError &error);
    void sayHello();
    void synchronize();
    void takeClock();
    void sendState();
    [[nodiscard]] SendspinError closedError(const MAWebSocketFrame::Closed &closed) const;
    [[nodiscard]] SendspinError lostError(const QString &detail) const;
    void fail(const SendspinError &error);
    void end();
    void limitHandshake(const char *awaited);

    std::unique_ptr<MAWebSocketTransport> m_transport;
    Scheduler &m_scheduler;
    const SendspinClock &m_clock;
    const SendspinConnectionConfiguration m_configuration;
    SendspinPlayerState m_state;
    SendspinClockSync m_sync;
    Phase m_phase;
    bool m_ended = false;
    bool m_hasOpened = false;
    int m_malformed = 0;                                 ///< in a row
    std::unique_ptr<Scheduler::Pending> m_handshake;     ///< goes off when the server stalls before its hello
    std::unique_ptr<Scheduler::Pending> m_stateDeadline; ///< when the clock is not known in time
};

} // namespace vantor
