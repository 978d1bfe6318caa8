#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

namespace vantor {

/// Stands between a client and a server on this machine and can stop passing anything on, as a network does
/// that went away without a word.
class TcpRelay : public QObject {
  public:
    explicit TcpRelay(quint16 target) : m_target(target) {
        connect(&m_server, &QTcpServer::newConnection, this, &TcpRelay::take);
        m_server.listen(QHostAddress::LocalHost);
    }

    [[nodiscard]] QUrl url() const {
        return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort()));
    }
    void freeze() { m_frozen = true; }
    void thaw() { m_frozen = false; }

  private:
    void take() {
        auto *near = m_server.nextPendingConnection();
        auto *far = new QTcpSocket(near);
        const auto pass = [this](QTcpSocket *from, QTcpSocket *to) {
            connect(from, &QTcpSocket::readyRead, this, [this, from, to] {
                if (!m_frozen)
                    to->write(from->readAll());
            });
            connect(from, &QTcpSocket::disconnected, to, &QTcpSocket::disconnectFromHost);
        };
        pass(near, far);
        pass(far, near);
        far->connectToHost(QHostAddress::LocalHost, m_target);
    }

    const quint16 m_target;
    bool m_frozen = false;
    QTcpServer m_server;
};

} // namespace vantor
