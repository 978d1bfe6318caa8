#include "SendspinKit/Session/SendspinConnection_p.h"
#include "SendspinKit/Wire/SendspinNames_p.h"
#include "SendspinKit/Wire/SendspinOutgoing_p.h"

#include <QLoggingCategory>

namespace vantor {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

Q_LOGGING_CATEGORY(logConnection, "co.kelvane.vantor.sendspin.connection")

/// For each step: the connection with the sign-in, and the hello.
constexpr auto handshakeTimeout = 10s;
/// From the server's hello, or a jump of its clock, to the state that says that the player is ready.
constexpr auto stateDeadline = 15s;
/// With which the server's proxy refuses a token.
constexpr int closeCodeUnauthorized = 4001;
/// A message that cannot be read is passed over; who sends only such for so long is left.
constexpr int maxMalformed = 50;

} // namespace

SendspinConnection::SendspinConnection(std::unique_ptr<MAWebSocketTransport> transport, Scheduler &scheduler,
                                       const SendspinClock &clock,
                                       const SendspinConnectionConfiguration &configuration,
                                       const SendspinPlayerState &state)
    : m_transport(std::move(transport)), m_scheduler(scheduler), m_clock(clock),
      m_configuration(configuration), m_state(state), m_sync(scheduler, clock),
      m_phase(configuration.token.isEmpty() ? Phase::hello : Phase::auth) {
    connect(m_transport.get(), &MAWebSocketTransport::opened, this, &SendspinConnection::begin);
    connect(m_transport.get(), &MAWebSocketTransport::received, this, &SendspinConnection::takeFrame);
    connect(m_transport.get(), &MAWebSocketTransport::receivedBinary, this, &SendspinConnection::takeAudio);
    connect(m_transport.get(), &MAWebSocketTransport::failed, this,
            [this](const MATransportError &error) { fail(lostError(error.detail)); });
    connect(&m_sync, &SendspinClockSync::asked, this,
            [this](std::int64_t time) { m_transport->send(sendspinoutgoing::time(time)); });
    connect(&m_sync, &SendspinClockSync::finishedBurst, this, &SendspinConnection::takeClock);
    connect(&m_sync, &SendspinClockSync::jumped, this, &SendspinConnection::synchronize);
    connect(&m_sync, &SendspinClockSync::unanswered, this,
            [this] { fail(SendspinError::timeout(u"server/time"_s)); });
}

void SendspinConnection::open() {
    limitHandshake(m_phase == Phase::auth ? "sign-in" : "server/hello");
    m_transport->open();
}

void SendspinConnection::begin() {
    m_hasOpened = true;
    if (m_phase == Phase::auth)
        m_transport->send(sendspinoutgoing::auth(m_configuration));
    else
        sayHello();
}

void SendspinConnection::sayHello() {
    m_phase = Phase::hello;
    limitHandshake("server/hello");
    m_transport->send(sendspinoutgoing::hello(m_configuration));
}

void SendspinConnection::takeFrame(const MAWebSocketFrame &frame) {
    const std::int64_t receivedAt = m_clock.now();
    if (m_ended)
        return;
    if (const auto *closed = std::get_if<MAWebSocketFrame::Closed>(&frame.content)) {
        fail(closedError(*closed));
        return;
    }
    try {
        takeMessage(SendspinIncoming::decode(std::get<MAWebSocketFrame::Text>(frame.content).text),
                    receivedAt);
        m_malformed = 0;
    } catch (const SendspinError &error) {
        takeMalformed(error);
    }
}

void SendspinConnection::takeMessage(const SendspinIncoming &message, std::int64_t receivedAt) {
    if (m_phase == Phase::auth) {
        const auto *other = std::get_if<SendspinIncoming::Ignored>(&message.content);
        if (other && other->type == "auth_ok"_L1)
            sayHello();
    } else if (m_phase == Phase::hello) {
        if (const auto *hello = std::get_if<SendspinServerHello>(&message.content))
            takeHello(*hello);
    } else if (const auto *time = std::get_if<SendspinIncoming::ServerTime>(&message.content)) {
        m_sync.take(*time, receivedAt);
    } else if (const auto *command = std::get_if<SendspinIncoming::ServerCommand>(&message.content)) {
        takeCommand(*command);
    } else {
        takeStreamMessage(message);
    }
}

void SendspinConnection::takeHello(const SendspinServerHello &hello) {
    if (!hello.isPlayerActive()) {
        fail(SendspinError::roleRejected());
        return;
    }
    synchronize();
    Q_EMIT occurred({SendspinEvent::Connected{hello}});
    if (!m_ended)
        m_sync.start();
}

void SendspinConnection::synchronize() {
    m_phase = Phase::syncing;
    m_handshake.reset();
    m_stateDeadline = m_scheduler.after(stateDeadline, [this] { fail(SendspinError::timeout(u"clock"_s)); });
}

void SendspinConnection::takeClock() {
    if (m_ended || !m_sync.isSynchronized())
        return;
    Q_EMIT clockKnown(m_sync.state());
    if (m_ended || m_phase == Phase::running)
        return;
    m_phase = Phase::running;
    m_stateDeadline.reset();
    sendState();
    Q_EMIT occurred({SendspinEvent::Synchronized()});
}

void SendspinConnection::takeStreamMessage(const SendspinIncoming &message) {
    if (const auto *start = std::get_if<SendspinIncoming::StreamStart>(&message.content))
        Q_EMIT occurred({SendspinEvent::StreamStarted{start->format}});
    else if (std::holds_alternative<SendspinIncoming::StreamClear>(message.content))
        Q_EMIT occurred({SendspinEvent::StreamCleared()});
    else if (std::holds_alternative<SendspinIncoming::StreamEnd>(message.content))
        Q_EMIT occurred({SendspinEvent::StreamEnded()});
    else if (const auto *update = std::get_if<SendspinGroupUpdate>(&message.content))
        Q_EMIT occurred({SendspinEvent::GroupUpdated{*update}});
}

void SendspinConnection::takeCommand(const SendspinIncoming::ServerCommand &command) {
    const auto required = [&](const auto &member) {
        if (!member)
            throw SendspinError::malformed(u"server/command: %1 without a value"_s.arg(command.command),
                                           u"server/command"_s);
        return *member;
    };
    const SendspinPlayerState before = m_state;
    if (command.command == sendspinnames::volume)
        Q_EMIT occurred({SendspinEvent::SetVolume{required(command.volume)}});
    else if (command.command == sendspinnames::mute)
        Q_EMIT occurred({SendspinEvent::SetMute{required(command.mute)}});
    else if (command.command == sendspinnames::setStaticDelay ||
             command.command == sendspinnames::setOutputDelay)
        Q_EMIT occurred({SendspinEvent::SetStaticDelay{required(command.staticDelayMs)}});
    else
        return;
    if (m_state == before && m_phase == Phase::running && !m_ended)
        sendState(); // nothing has changed, and the server waits to hear so
}

void SendspinConnection::takeAudio(const QByteArray &frame) {
    if (m_ended)
        return;
    try {
        const auto chunk = SendspinIncoming::decodeAudio(frame);
        m_malformed = 0;
        if (chunk && (m_phase == Phase::syncing || m_phase == Phase::running))
            Q_EMIT occurred({SendspinEvent::Audio{*chunk}});
    } catch (const SendspinError &error) {
        takeMalformed(error);
    }
}

void SendspinConnection::takeMalformed(const SendspinError &error) {
    qCWarning(logConnection, "Sendspin malformed message: %s", qUtf8Printable(error.detail()));
    ++m_malformed;
    if (m_phase == Phase::auth || m_phase == Phase::hello || m_malformed == maxMalformed)
        fail(error);
}

void SendspinConnection::report(const SendspinPlayerState &state) {
    if (std::exchange(m_state, state) != state && m_phase == Phase::running && !m_ended)
        sendState();
}

void SendspinConnection::sendState() {
    m_transport->send(sendspinoutgoing::state(m_configuration, m_state));
}

void SendspinConnection::leave(SendspinGoodbyeReason reason) {
    if (m_ended)
        return;
    if (m_phase == Phase::syncing || m_phase == Phase::running)
        m_transport->send(sendspinoutgoing::goodbye(reason));
    end();
}

void SendspinConnection::end() {
    m_ended = true;
    m_handshake.reset();
    m_stateDeadline.reset();
    m_sync.stop();
    m_transport->close();
}

SendspinError SendspinConnection::closedError(const MAWebSocketFrame::Closed &closed) const {
    if (closed.code == closeCodeUnauthorized)
        return SendspinError::unauthorized(closed.reason);
    QString detail = u"closed by the server, code %1"_s.arg(closed.code.value_or(0));
    if (!closed.reason.isEmpty())
        detail += ": "_L1 + closed.reason;
    return lostError(detail);
}

/// A server that refuses this player just goes.
SendspinError SendspinConnection::lostError(const QString &detail) const {
    const bool isHandshake = m_hasOpened && (m_phase == Phase::auth || m_phase == Phase::hello);
    return isHandshake ? SendspinError::handshake(detail) : SendspinError::transport(detail);
}

void SendspinConnection::fail(const SendspinError &error) {
    if (m_ended)
        return;
    end();
    Q_EMIT failed(error);
}

void SendspinConnection::limitHandshake(const char *awaited) {
    m_handshake = m_scheduler.after(
        handshakeTimeout, [this, awaited] { fail(SendspinError::timeout(QString::fromLatin1(awaited))); });
}

} // namespace vantor
