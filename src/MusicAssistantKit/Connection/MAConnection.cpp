#include "MusicAssistantKit/Connection/MAConnection_p.h"

#include <QLoggingCategory>

namespace vantor {

namespace {
Q_LOGGING_CATEGORY(logConnection, "co.kelvane.vantor.musicassistant.connection")
}

MAConnection::MAConnection(std::unique_ptr<MAWebSocketTransport> transport, Scheduler &clock,
                           const MusicAssistantClient::Timing &timing, SignIn signIn)
    : m_transport(std::move(transport)), m_clock(clock), m_timing(timing), m_signIn(std::move(signIn)) {
    connect(m_transport.get(), &MAWebSocketTransport::received, this, &MAConnection::takeFrame);
    connect(m_transport.get(), &MAWebSocketTransport::ponged, this, &MAConnection::hear);
    connect(m_transport.get(), &MAWebSocketTransport::failed, this, [this](const MATransportError &error) {
        const bool lives = m_phase == Phase::established;
        endAfterDecoding(lives ? MusicAssistantError::disconnected() : MusicAssistantError::transport(error));
    });
    connect(&m_decoder, &MAFrameDecoder::decoded, this, &MAConnection::takeEnvelope);
}

void MAConnection::open() {
    limitHandshake();
    m_transport->open();
}

void MAConnection::close() {
    m_phase = Phase::ended;
    m_timer.reset();
    m_transport->close();
}

void MAConnection::takeFrame(const MAWebSocketFrame &frame) {
    if (m_phase == Phase::ended || m_ending)
        return;
    hear();
    if (const auto *closed = std::get_if<MAWebSocketFrame::Closed>(&frame.content)) {
        qCDebug(logConnection) << "closed by the server, code" << closed->code.value_or(0);
        endAfterDecoding(closedError());
        return;
    }
    if (!m_decoder.add(std::get<MAWebSocketFrame::Text>(frame.content).text)) {
        qCWarning(logConnection) << "the server sends faster than its frames can be read";
        fail(MusicAssistantError::disconnected());
    }
}

void MAConnection::takeEnvelope(const MAEnvelope &envelope) {
    switch (m_phase) {
    case Phase::opening:
        if (const auto *info = std::get_if<MAServerInfo>(&envelope.content))
            takeServerInfo(*info);
        break;
    case Phase::authenticating:
        takeAuthReply(envelope);
        break;
    case Phase::established:
        Q_EMIT received(envelope);
        break;
    case Phase::ended:
        break;
    }
    if (m_ending && m_decoder.isIdle())
        fail(*m_ending);
}

void MAConnection::takeServerInfo(const MAServerInfo &info) {
    if (const auto problem = MusicAssistantClient::schemaProblem(info)) {
        fail(*problem);
        return;
    }
    if (m_signIn.expectedServerID && *m_signIn.expectedServerID != info.serverID) {
        fail(MusicAssistantError::serverMismatch());
        return;
    }
    m_info = info;
    m_phase = Phase::authenticating;
    limitHandshake();
    Q_EMIT authenticating();
    m_transport->send(MARequest::auth(m_signIn.token).encoded(m_signIn.messageID));
}

void MAConnection::takeAuthReply(const MAEnvelope &envelope) {
    const auto *result = std::get_if<MAEnvelope::Result>(&envelope.content);
    const auto *error = std::get_if<MAEnvelope::Error>(&envelope.content);
    if (error && error->messageID == m_signIn.messageID) {
        qCInfo(logConnection) << "sign-in refused, code" << error->code;
        fail(MusicAssistantError::tokenRejected());
    } else if (!result || result->messageID != m_signIn.messageID) {
        qCWarning(logConnection) << "unexpected auth reply";
        fail(MusicAssistantError::handshakeFailed());
    } else {
        try {
            const auto answer = MAAuthResult::decode(MAReader(result->result));
            m_user = answer.user;
            if (answer.authenticated)
                establish();
            else
                fail(MusicAssistantError::tokenRejected());
        } catch (const MADecodingError &problem) {
            qCWarning(logConnection) << "unexpected auth reply:" << problem.detail();
            fail(MusicAssistantError::handshakeFailed());
        }
    }
}

void MAConnection::establish() {
    m_phase = Phase::established;
    awaitNextPing();
    Q_EMIT established(*m_info);
}

void MAConnection::endAfterDecoding(const MusicAssistantError &error) {
    if (m_phase == Phase::ended || m_ending)
        return;
    m_ending = error;
    m_timer.reset();
    if (m_decoder.isIdle())
        fail(error);
}

void MAConnection::fail(const MusicAssistantError &error) {
    if (m_phase == Phase::ended)
        return;
    close();
    Q_EMIT failed(error);
}

MusicAssistantError MAConnection::closedError() const {
    if (m_phase == Phase::established)
        return MusicAssistantError::disconnected();
    if (m_phase == Phase::authenticating)
        qCWarning(logConnection) << "closed during auth";
    return MusicAssistantError::handshakeFailed();
}

void MAConnection::limitHandshake() {
    m_timer = m_clock.after(m_timing.handshakeTimeout, [this] {
        qCWarning(logConnection) << "the server stalls during the handshake";
        fail(MusicAssistantError::handshakeFailed());
    });
}

void MAConnection::awaitNextPing() {
    m_awaitsPong = false;
    m_timer = m_clock.after(m_timing.pingInterval, [this] { ping(); });
}

void MAConnection::ping() {
    m_awaitsPong = true;
    m_timer = m_clock.after(m_timing.pongTimeout, [this] {
        qCWarning(logConnection) << "no answer to a ping";
        fail(MusicAssistantError::disconnected());
    });
    m_transport->ping();
}

void MAConnection::hear() {
    if (m_phase == Phase::established && m_awaitsPong && !m_ending)
        awaitNextPing();
}

} // namespace vantor
