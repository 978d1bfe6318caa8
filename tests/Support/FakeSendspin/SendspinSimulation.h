#pragma once

#include "SendspinKit/Session/SendspinSession.h"
#include "tests/Support/FakeSendspin/FakeSendspin.h"
#include "tests/Support/ManualScheduler.h"

#include <QPointer>

namespace vantor {

/// The time that a simulation goes by, which is the player's clock at once.
class VirtualTime : public Timeline, public SendspinClock {
  public:
    [[nodiscard]] std::int64_t now() const override { return 5'000'000'000 + scheduler.now().count(); }
    [[nodiscard]] std::unique_ptr<Scheduler::Pending> after(std::chrono::microseconds delay,
                                                            std::function<void()> action) override {
        return scheduler.afterExactly(delay, std::move(action));
    }

    ManualScheduler scheduler;
};

/// Reaches a server without a socket, over its made network.
class SimulatedTransport : public MAWebSocketTransport {
  public:
    SimulatedTransport(FakeSendspin &server, Timeline &time) : m_server(server), m_time(time) {}
    ~SimulatedTransport() override { detach(); }

    void open() override {
        m_opening = m_time.after(std::chrono::milliseconds(1), [this] {
            const QPointer self(this);
            m_peer =
                m_server.attach({.sendText =
                                     [self](const QString &text) {
                                         if (self && self->m_peer)
                                             Q_EMIT self->received({MAWebSocketFrame::Text{text}});
                                     },
                                 .sendBinary =
                                     [self](const QByteArray &data) {
                                         if (self && self->m_peer)
                                             Q_EMIT self->receivedBinary(data);
                                     },
                                 .close =
                                     [self](int code, const QString &reason) {
                                         if (self && self->m_peer) {
                                             self->detach();
                                             Q_EMIT self->received({MAWebSocketFrame::Closed{code, reason}});
                                         }
                                     }});
            Q_EMIT opened();
        });
    }
    void send(const QString &text) override {
        if (m_peer)
            m_peer->takeText(text);
    }
    void ping() override {}
    void close() override { detach(); }

  private:
    void detach() {
        if (m_peer)
            m_server.detach(std::exchange(m_peer, nullptr));
    }

    FakeSendspin &m_server;
    Timeline &m_time;
    QPointer<FakeSendspinPeer> m_peer;
    std::unique_ptr<Scheduler::Pending> m_opening;
};

class SimulatedTransports : public MAWebSocketTransports {
  public:
    SimulatedTransports(FakeSendspin &server, Timeline &time) : m_server(server), m_time(time) {}
    [[nodiscard]] std::unique_ptr<MAWebSocketTransport> make(const QUrl &) override {
        return std::make_unique<SimulatedTransport>(m_server, m_time);
    }

  private:
    FakeSendspin &m_server;
    Timeline &m_time;
};

/// A real session against a server in virtual time: hours take seconds, and every run is the same. Without an
/// event loop everything happens in advance().
class SendspinSimulation {
  public:
    explicit SendspinSimulation(unsigned seed = 1) : server(time, seed) {
        QObject::connect(&session, &SendspinSession::occurred, &session,
                         [this](const SendspinEvent &event) { events.push_back(event); });
    }

    VirtualTime time;
    FakeSendspin server;
    SimulatedTransports transports{server, time};
    std::vector<SendspinEvent> events;
    SendspinSession session{transports, time.scheduler, time};
    SendspinConnectionConfiguration configuration{
        .baseURL = QUrl(QStringLiteral("http://house.example:8095")),
        .token = MusicAssistantToken(QStringLiteral("secret-token")),
        .clientID = QStringLiteral("vantor-1"),
        .name = QStringLiteral("Vantor (desk)"),
        .deviceInfo = {},
        .format = {.codec = QStringLiteral("flac")},
        .bufferCapacity = 1'000'000,
        .requiredLeadTimeMs = 200,
        .minBufferMs = 500};

    void advance(std::chrono::microseconds by) { time.scheduler.advance(by); }
    /// By how many microseconds the session is wrong about the server's clock at this moment.
    [[nodiscard]] std::int64_t clockError() const {
        return session.clock().filter.computeServerTime(time.now()) - server.clock();
    }
};

} // namespace vantor
