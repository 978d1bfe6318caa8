#include "AudioCore/Network/HttpExchange.h"

#include <QSslSocket>

namespace vantor {

static constexpr qint64 waitingBytes = 256 * 1024;
static constexpr int mostRedirections = 5;

static bool isSecure(const QUrl &url) {
    return url.scheme() == QLatin1String("https");
}

static quint16 portOf(const QUrl &url) {
    return static_cast<quint16>(url.port(isSecure(url) ? 443 : 80));
}

HttpExchange::HttpExchange(const QUrl &url, const QByteArray &headers, QObject *parent)
    : QObject(parent), m_headers(headers) {
    connectTo(url);
}

HttpExchange::~HttpExchange() {
    m_socket->disconnect(this);
    m_socket->abort();
}

void HttpExchange::connectTo(const QUrl &url) {
    m_url = url;
    m_bytes.clear();
    if (m_socket) {
        m_socket->disconnect(this);
        m_socket->abort();
        m_socket->deleteLater(); // it may be what calls
    }
    auto *const secure = isSecure(url) ? new QSslSocket(this) : nullptr;
    m_socket = secure ? secure : new QTcpSocket(this);
    m_socket->setReadBufferSize(waitingBytes);
    connect(m_socket, &QTcpSocket::readyRead, this, &HttpExchange::takeBytes);
    connect(m_socket, &QTcpSocket::disconnected, this, &HttpExchange::end);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &HttpExchange::end);
    if (secure) {
        connect(secure, &QSslSocket::encrypted, this, &HttpExchange::sendRequest);
        secure->connectToHostEncrypted(url.host(), portOf(url));
    } else {
        connect(m_socket, &QTcpSocket::connected, this, &HttpExchange::sendRequest);
        m_socket->connectToHost(url.host(), portOf(url));
    }
}

void HttpExchange::sendRequest() {
    const QByteArray place =
        m_url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::RemoveFragment);
    QByteArray host = m_url.host(QUrl::FullyEncoded).toLatin1();
    if (host.contains(':'))
        host = '[' + host + ']';
    if (m_url.port() >= 0)
        host += ':' + QByteArray::number(m_url.port());
    QByteArray request = "GET " + (place.startsWith('/') ? place : '/' + place) +
                         " HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n" + m_headers;
    if (!m_url.userName().isEmpty())
        request += "Authorization: Basic " + m_url.userInfo(QUrl::FullyDecoded).toUtf8().toBase64() + "\r\n";
    m_socket->write(request + "\r\n");
    Q_EMIT requestSent();
}

void HttpExchange::takeBytes() {
    while (!m_answer) {
        const QByteArray more = m_socket->read(HttpParsing::longestHead - m_bytes.size());
        m_bytes += more;
        const std::optional<HttpParsing::Head> head = HttpParsing::parseHead(m_bytes);
        if (!head)
            return;
        m_bytes.remove(0, head->length);
        const bool isInterim = head->status >= 100 && head->status < 200;
        if (isInterim)
            continue;
        const QByteArray location = head->headers.value("location");
        if (head->status >= 300 && head->status < 400 && !location.isEmpty())
            return follow(location);
        if (head->status == 0)
            return fail(QStringLiteral("this is no HTTP"));
        m_answer = Answer{.head = *head, .url = m_url};
        m_body = HttpParsing::Body(*head);
        Q_EMIT answered();
    }
    Q_EMIT readable();
}

void HttpExchange::follow(const QByteArray &location) {
    const QUrl target = m_url.resolved(QUrl::fromEncoded(location));
    const bool isWeb = isSecure(target) || (target.scheme() == QLatin1String("http") && !isSecure(m_url));
    if (!isWeb || target.host().isEmpty() || ++m_redirections > mostRedirections)
        fail(QStringLiteral("one redirection too many, or to a place that is not the web"));
    else
        connectTo(target);
}

void HttpExchange::end() {
    fail(m_socket->errorString());
}

void HttpExchange::fail(const QString &problem) {
    if (std::exchange(m_hasEnded, true))
        return;
    m_problem = problem;
    Q_EMIT ended();
}

bool HttpExchange::hasBytes() const {
    return m_answer && (!m_bytes.isEmpty() || m_socket->bytesAvailable() > 0);
}

QByteArray HttpExchange::read(qint64 most) {
    if (m_bytes.isEmpty())
        m_bytes = m_socket->read(most);
    QByteArrayView raw = QByteArrayView(m_bytes).first(std::min<qint64>(most, m_bytes.size()));
    const qsizetype taken = raw.size();
    QByteArray bytes;
    while (!raw.isEmpty())
        bytes.append(m_body.take(raw));
    m_bytes.remove(0, taken);
    return bytes;
}

} // namespace vantor
