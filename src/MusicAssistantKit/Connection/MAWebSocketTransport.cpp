#include "MusicAssistantKit/Connection/MAWebSocketTransport.h"

#include <QWebSocket>

namespace vantor {

namespace {

class QtWebSocketTransport : public MAWebSocketTransport {
  public:
    QtWebSocketTransport(const QUrl &url, quint64 longestFrame) : m_url(url) {
        m_socket.setMaxAllowedIncomingFrameSize(longestFrame);
        m_socket.setMaxAllowedIncomingMessageSize(longestFrame);
        connect(&m_socket, &QWebSocket::connected, this, [this] {
            m_opened = true;
            Q_EMIT opened();
        });
        connect(&m_socket, &QWebSocket::pong, this, &MAWebSocketTransport::ponged);
        connect(&m_socket, &QWebSocket::textMessageReceived, this, [this](const QString &text) {
            if (!m_ended)
                Q_EMIT received({MAWebSocketFrame::Text{text}});
        });
        connect(&m_socket, &QWebSocket::binaryMessageReceived, this, [this](const QByteArray &data) {
            if (!m_ended)
                Q_EMIT receivedBinary(data);
        });
        // Of a connection that never was, the socket says first that it ended and then why.
        connect(&m_socket, &QWebSocket::disconnected, this, [this] {
            if (m_opened)
                endClosed();
            else
                QMetaObject::invokeMethod(this, &QtWebSocketTransport::endFailed, Qt::QueuedConnection);
        });
        connect(&m_socket, qOverload<QAbstractSocket::SocketError>(&QWebSocket::error), this,
                [this](QAbstractSocket::SocketError error) {
                    // When the other side closed, its reason follows.
                    if (!m_opened || error != QAbstractSocket::RemoteHostClosedError)
                        endFailed();
                });
    }

    ~QtWebSocketTransport() override { m_socket.disconnect(this); } // it says when it goes

    void open() override { m_socket.open(m_url); }
    void send(const QString &text) override {
        m_socket.sendTextMessage(text);
        m_socket.flush();
    }
    void ping() override { m_socket.ping(); }
    void close() override {
        m_ended = true;
        m_socket.close();
        m_socket.flush();
    }

  private:
    void endClosed() {
        if (std::exchange(m_ended, true))
            return;
        Q_EMIT received(
            {MAWebSocketFrame::Closed{static_cast<int>(m_socket.closeCode()), m_socket.closeReason()}});
    }

    void endFailed() {
        if (std::exchange(m_ended, true))
            return;
        Q_EMIT failed({.kind = MATransportError::Kind::network, .detail = m_socket.errorString()});
    }

    const QUrl m_url;
    bool m_opened = false;
    bool m_ended = false;
    QWebSocket m_socket;
};

} // namespace

std::unique_ptr<MAWebSocketTransport> QtWebSocketTransports::make(const QUrl &url) {
    return std::make_unique<QtWebSocketTransport>(url, static_cast<quint64>(m_longestFrame));
}

} // namespace vantor
