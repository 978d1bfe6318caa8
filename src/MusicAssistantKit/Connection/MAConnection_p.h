#pragma once

#include "MusicAssistantKit/Connection/MAFrameDecoder_p.h"
#include "MusicAssistantKit/Connection/MusicAssistantClient.h"

namespace vantor {

/// One connection from its opening to its end: the handshake, what is received, and whether the other side
/// still lives. Each attempt has an object of its own, so that what an old socket still says reaches nobody.
/// Main thread.
class MAConnection : public QObject {
    Q_OBJECT
  public:
    struct SignIn {
        MusicAssistantToken token;
        QString messageID;
        std::optional<QString> expectedServerID;
    };

    MAConnection(std::unique_ptr<MAWebSocketTransport> transport, Scheduler &clock,
                 const MusicAssistantClient::Timing &timing, SignIn signIn);

    void open();
    void send(const QString &text) { m_transport->send(text); }
    /// Says goodbye; no signal follows.
    void close();
    /// Whom the token signed in, once established.
    [[nodiscard]] const std::optional<MAUser> &user() const { return m_user; }

  Q_SIGNALS:
    /// The server is the right one and gets the token now.
    void authenticating();
    void established(const vantor::MAServerInfo &info);
    /// Once established.
    void received(const vantor::MAEnvelope &envelope);
    /// Once, at any time; nothing follows.
    void failed(const vantor::MusicAssistantError &error);

  private:
    enum class Phase { opening, authenticating, established, ended };

    void takeFrame(const MAWebSocketFrame &frame);
    void takeEnvelope(const MAEnvelope &envelope);
    void takeServerInfo(const MAServerInfo &info);
    void takeAuthReply(const MAEnvelope &envelope);
    void establish();
    /// Fails once everything that came before has been announced.
    void endAfterDecoding(const MusicAssistantError &error);
    void fail(const MusicAssistantError &error);
    [[nodiscard]] MusicAssistantError closedError() const;
    void limitHandshake();
    void awaitNextPing();
    void ping();
    void hear();

    std::unique_ptr<MAWebSocketTransport> m_transport;
    Scheduler &m_clock;
    const MusicAssistantClient::Timing m_timing;
    const SignIn m_signIn;
    MAFrameDecoder m_decoder;
    Phase m_phase = Phase::opening;
    std::optional<MAServerInfo> m_info;
    std::optional<MAUser> m_user;
    std::optional<MusicAssistantError> m_ending;
    bool m_awaitsPong = false;
    std::unique_ptr<Scheduler::Pending> m_timer; ///< of the handshake, then of the pings
};

} // namespace vantor
