#pragma once

#include "tests/Support/FakeSendspin/FakeSendspinPeer.h"

#include <QSet>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>
#include <QWebSocket>
#include <QWebSocketServer>

namespace vantor {

/// A Sendspin server that plays a made stream to all its clients in step: the endpoint of a music server,
/// with its sign-in, or, without tokens, the Sendspin server itself. Over sockets once it listens, or over
/// links that a simulation makes. Main thread.
///
/// What is public and no function may be changed at any time.
class FakeSendspin : public QObject {
  public:
    enum class Fault {
        none,
        saysNothing,
        unreachable,       ///< signs in and then closes, as a proxy does whose server is away
        closesDuringHello, ///< as a server does that wants encryption
        brokenHello,
        refusesRole,
        ignoresTime,
    };
    enum class Seek {
        clears,  ///< stream/clear
        restarts ///< stream/end and stream/start
    };

    /// `seed`: of what chance does.
    explicit FakeSendspin(Timeline &time, unsigned seed = 1);
    ~FakeSendspin() override;

    QSet<QString> tokens{QStringLiteral("secret-token")};
    QString serverID = QStringLiteral("fake-sendspin");
    QString name = QStringLiteral("Fake Home");
    Fault fault = Fault::none;
    FakeNetwork network;

    // The server's clock: ahead of the timeline's by `skew`, and faster by `drift` parts per million from
    // when that was set.
    void setClock(std::int64_t skew, double drift);
    [[nodiscard]] std::int64_t clock() const { return clockAt(m_time.now()); }
    [[nodiscard]] std::int64_t clockAt(std::int64_t timelineInstant) const;

    /// On this machine only; 0 for any free port.
    bool listen(quint16 port = 0);
    [[nodiscard]] QUrl url() const;
    /// A client that connected elsewhere.
    void take(QWebSocket *socket);
    /// Drops the clients without a word.
    void dropClients();
    FakeSendspinPeer *attach(FakeLink link);
    void detach(FakeSendspinPeer *peer);
    [[nodiscard]] std::vector<FakeSendspinPeer *> clients() const;

    /// From that place of the made content on, in seconds, to sound after `lead`. Without effect when there
    /// is no such codec here.
    void play(const MadeFormat &format, double from = 0,
              std::chrono::microseconds lead = std::chrono::milliseconds(500));
    void seek(double to, Seek how);
    void changeFormat(const MadeFormat &format);
    void endStream();
    /// To all: "server/command" with these members.
    void command(const QString &command, const QJsonObject &members);
    void send(const QString &type, const QJsonObject &payload);

    /// What came from clients, but for "client/time".
    [[nodiscard]] const QList<QJsonObject> &received() const { return m_received; }
    /// The payloads of one type.
    [[nodiscard]] QList<QJsonObject> received(const QString &type) const;

    // For the peers.
    [[nodiscard]] Timeline &time() { return m_time; }
    [[nodiscard]] MadeStream *stream() { return m_stream.get(); }
    [[nodiscard]] std::chrono::microseconds delay(bool isToServer) {
        return network.delay(m_time.now(), isToServer, m_chance);
    }
    void record(const QJsonObject &message);

  private:
    void greet(QWebSocket *socket);
    void pumpLater();

    Timeline &m_time;
    std::mt19937 m_chance;
    std::int64_t m_skew = 0;
    double m_drift = 0;
    std::int64_t m_driftsFrom = 0;
    QTcpServer m_listener;
    QWebSocketServer m_upgrades;
    std::vector<std::unique_ptr<FakeSendspinPeer>> m_peers;
    std::vector<std::unique_ptr<FakeSendspinPeer>> m_gone; ///< what they have sent may still be on its way
    std::unique_ptr<Scheduler::Pending> m_burial;
    std::unique_ptr<MadeStream> m_stream;
    std::unique_ptr<Scheduler::Pending> m_pump;
    QList<QJsonObject> m_received;
};

} // namespace vantor
