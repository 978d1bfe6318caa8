#include "SendspinKit/Session/SendspinSession.h"

#include "MusicAssistantKit/Connection/MAEndpoints.h"
#include "SendspinKit/Session/SendspinConnection_p.h"

#include <QLoggingCategory>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(logSession, "co.kelvane.vantor.sendspin.session")

void logConnecting(const QUrl &url, const QUrl &baseURL) {
    const bool hasPrefix = !baseURL.path().isEmpty() && baseURL.path() != "/"_L1;
    qCInfo(logSession, "Sendspin connecting (scheme %s, path prefix %s)", qUtf8Printable(url.scheme()),
           hasPrefix ? "true" : "false");
}

} // namespace

SendspinSession::SendspinSession(MAWebSocketTransports &transports, Scheduler &scheduler,
                                 const SendspinClock &clock, SendspinReconnectPolicy reconnect)
    : m_transports(transports), m_scheduler(scheduler), m_clock(clock), m_reconnect(std::move(reconnect)) {}

SendspinSession::~SendspinSession() {
    part(SendspinGoodbyeReason::shutdown);
}

void SendspinSession::start(const SendspinConnectionConfiguration &configuration) {
    QMetaObject::invokeMethod(this, [this, configuration] {
        leave(SendspinGoodbyeReason::restart);
        qCInfo(logSession, "Sendspin starting");
        m_configuration = configuration;
        m_attempt = 0;
        connectToServer();
    });
}

void SendspinSession::stop(SendspinGoodbyeReason reason) {
    QMetaObject::invokeMethod(this, [this, reason] { leave(reason); });
}

void SendspinSession::report(const SendspinPlayerState &state) {
    QMetaObject::invokeMethod(this, [this, state] {
        m_state = state;
        if (m_connection)
            m_connection->report(state);
    });
}

SendspinClockState SendspinSession::clock() const {
    const MutexLock lock(m_publishing);
    return m_published;
}

void SendspinSession::publish(const SendspinClockState &clock) {
    const MutexLock lock(m_publishing);
    m_published = clock;
}

void SendspinSession::connectToServer() {
    const QUrl url = webSocketURL(m_configuration->baseURL, u"/sendspin"_s);
    logConnecting(url, m_configuration->baseURL);
    publish({});
    m_connection = std::make_unique<SendspinConnection>(m_transports.make(url), m_scheduler, m_clock,
                                                        *m_configuration, m_state);
    connect(m_connection.get(), &SendspinConnection::occurred, this, &SendspinSession::take);
    connect(m_connection.get(), &SendspinConnection::clockKnown, this, &SendspinSession::publish);
    connect(m_connection.get(), &SendspinConnection::failed, this, &SendspinSession::retryAfter);
    m_connection->open();
}

void SendspinSession::take(const SendspinEvent &event) {
    SendspinPlayerState state = m_state;
    if (const auto *volume = std::get_if<SendspinEvent::SetVolume>(&event.content))
        state.volume = volume->volume;
    else if (const auto *mute = std::get_if<SendspinEvent::SetMute>(&event.content))
        state.muted = mute->muted;
    else if (const auto *delay = std::get_if<SendspinEvent::SetStaticDelay>(&event.content))
        state.staticDelayMs = delay->milliseconds;
    else if (std::holds_alternative<SendspinEvent::Synchronized>(event.content))
        m_attempt = 0;
    if (state != m_state)
        report(state);
    Q_EMIT occurred(event);
}

void SendspinSession::retryAfter(const SendspinError &error) {
    qCWarning(logSession, "Sendspin disconnected: %s", qUtf8Printable(error.description()));
    m_connection.release()->deleteLater(); // it is just telling
    m_retry = m_scheduler.after(m_reconnect.delay(++m_attempt), [this] { connectToServer(); });
    Q_EMIT occurred({SendspinEvent::Disconnected{error}});
}

// That the server cannot be told goodbye any more is no failure.
std::unique_ptr<SendspinConnection> SendspinSession::part(SendspinGoodbyeReason reason) {
    if (m_connection) {
        m_connection->disconnect(this);
        m_connection->leave(reason);
    }
    return std::move(m_connection);
}

void SendspinSession::leave(SendspinGoodbyeReason reason) {
    if (!m_configuration)
        return;
    qCInfo(logSession, "Sendspin stopping");
    m_configuration.reset();
    m_retry.reset();
    if (auto connection = part(reason))
        connection.release()->deleteLater(); // it may have just told something
    Q_EMIT occurred({SendspinEvent::Disconnected{}});
}

} // namespace vantor
