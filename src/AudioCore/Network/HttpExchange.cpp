#include "AudioCore/Network/HttpExchange.h"

#include "AudioCore/Network/IcyProtocol.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpSocket>

namespace vantor {

static constexpr qint64 waitingBytes = 256 * 1024;
static constexpr int mostRedirections = 5;
static constexpr int httpPort = 80;

HttpExchange::HttpExchange(QNetworkAccessManager &network, const QNetworkRequest &request, QObject *parent)
    : QObject(parent), m_url(request.url()) {
    QNetworkRequest own = request;
    own.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    own.setMaximumRedirectsAllowed(mostRedirections);
    own.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    own.setAttribute(QNetworkRequest::Http2AllowedAttribute, false); // it knows no bound for what waits
    m_reply = network.get(own);
    m_reply->setParent(this);
    m_reply->setReadBufferSize(waitingBytes);
    connect(m_reply, &QNetworkReply::requestSent, this, [this] {
        m_isRequestSent = true;
        Q_EMIT requestSent();
    });
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &HttpExchange::takeHeaders);
    connect(m_reply, &QNetworkReply::readyRead, this, [this] {
        takeHeaders();
        Q_EMIT readable();
    });
    connect(m_reply, &QNetworkReply::finished, this, &HttpExchange::takeReplyEnd);
}

HttpExchange::~HttpExchange() {
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
    }
    if (m_socket) {
        m_socket->disconnect(this);
        m_socket->abort();
    }
}

void HttpExchange::takeHeaders() {
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool isRedirection = status >= 300 && status < 400;
    if (m_answer || status == 0 || (isRedirection && !m_reply->isFinished()))
        return;
    m_answer = Answer{.status = status, .url = m_reply->url(), .headers = {}};
    for (const auto &[name, value] : m_reply->rawHeaderPairs())
        m_answer->headers.insert(name.toLower(), value);
    Q_EMIT answered();
}

void HttpExchange::takeReplyEnd() {
    takeHeaders();
    m_hasEnded = true;
    m_isComplete = m_reply->error() == QNetworkReply::NoError;
    m_isForeign = !m_answer && m_isRequestSent &&
                  (m_reply->error() == QNetworkReply::RemoteHostClosedError ||
                   m_reply->error() == QNetworkReply::ProtocolFailure);
    Q_EMIT ended();
}

HttpExchange *HttpExchange::withOldServer(const QNetworkRequest &request, QObject *parent) {
    auto *const exchange = new HttpExchange(parent);
    exchange->openSocket(request);
    return exchange;
}

void HttpExchange::openSocket(const QNetworkRequest &request) {
    m_url = request.url();
    m_socket = new QTcpSocket(this);
    m_socket->setReadBufferSize(waitingBytes);
    QByteArray text =
        "GET " + m_url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::RemoveFragment);
    if (m_url.path().isEmpty())
        text.insert(4, '/');
    text += " HTTP/1.0\r\nHost: " + m_url.host(QUrl::FullyEncoded).toLatin1() + "\r\n";
    for (const QByteArray &name : request.rawHeaderList())
        text += name + ": " + request.rawHeader(name) + "\r\n";
    connect(m_socket, &QTcpSocket::connected, this, [this, text] {
        m_socket->write(text + "\r\n");
        m_isRequestSent = true;
        Q_EMIT requestSent();
    });
    connect(m_socket, &QTcpSocket::readyRead, this, &HttpExchange::takeSocketBytes);
    connect(m_socket, &QTcpSocket::disconnected, this, &HttpExchange::takeSocketEnd);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &HttpExchange::takeSocketEnd);
    m_socket->connectToHost(m_url.host(), static_cast<quint16>(m_url.port(httpPort)));
}

void HttpExchange::takeSocketBytes() {
    if (!m_answer) {
        m_head += m_socket->read(IcyProtocol::longestHead - m_head.size());
        const std::optional<IcyProtocol::Head> head = IcyProtocol::parseHead(m_head);
        if (!head)
            return;
        if (head->status == 0) {
            m_socket->abort();
            return;
        }
        m_head.remove(0, head->length);
        m_answer = Answer{.status = head->status, .url = m_url, .headers = head->headers};
        Q_EMIT answered();
    }
    Q_EMIT readable();
}

void HttpExchange::takeSocketEnd() {
    if (std::exchange(m_hasEnded, true))
        return;
    m_isComplete = m_answer && m_socket->error() == QAbstractSocket::RemoteHostClosedError;
    Q_EMIT ended();
}

bool HttpExchange::hasBytes() const {
    const QIODevice *const device = m_reply ? static_cast<QIODevice *>(m_reply) : m_socket;
    return (m_answer && !m_head.isEmpty()) || device->bytesAvailable() > 0;
}

QByteArray HttpExchange::read(qint64 most) {
    if (m_head.isEmpty())
        return m_reply ? m_reply->read(most) : m_socket->read(most);
    QByteArray first = m_head.left(most);
    m_head.remove(0, first.size());
    return first;
}

} // namespace vantor
