#include "MusicAssistantKit/Connection/MAHTTPTransport.h"

#include "MusicAssistantKit/Connection/MusicAssistantError.h"
#include "Platform/AsyncStream.h"

#include <QNetworkReply>
#include <QTimer>

namespace vantor {

namespace {

/// Collects the body of one reply; owns the reply, which must not outlive its manager.
class Download : public QObject {
  public:
    enum class End { finished, tooLong, timedOut };

    Download(std::shared_ptr<QNetworkAccessManager> network, const QNetworkRequest &request, qint64 maxBytes,
             std::chrono::milliseconds timeout)
        : m_network(std::move(network)), m_reply(m_network->get(request)), m_maxBytes(maxBytes) {
        m_reply->setParent(nullptr);
        // Bounds what waits unread, however fast the server sends.
        m_reply->setReadBufferSize(256 << 10);
        std::tie(m_whenFinished, m_finished) = AsyncStream<bool>::make(latestValueOnly);
        connect(m_reply.get(), &QNetworkReply::readyRead, this, &Download::read);
        connect(m_reply.get(), &QNetworkReply::finished, this, [this] { m_whenFinished.finish(); });
        m_timer.setSingleShot(true);
        m_timer.callOnTimeout(this, [this] { stop(End::timedOut); });
        m_timer.start(timeout);
    }

    [[nodiscard]] QNetworkReply &reply() { return *m_reply; }
    [[nodiscard]] End end() const { return m_end; }
    /// Ends with the reply. Not inside its signal: there it must not be destroyed.
    [[nodiscard]] const AsyncStream<bool> &finished() const { return m_finished; }
    void read() {
        m_body += m_reply->read(m_maxBytes + 1 - m_body.size());
        if (m_body.size() > m_maxBytes)
            stop(End::tooLong);
    }
    [[nodiscard]] QByteArray takeBody() {
        read();
        return std::move(m_body);
    }

  private:
    void stop(End end) {
        if (m_end != End::finished)
            return;
        m_end = end;
        m_reply->abort();
    }

    std::shared_ptr<QNetworkAccessManager> m_network;
    std::unique_ptr<QNetworkReply> m_reply;
    qint64 m_maxBytes;
    End m_end = End::finished;
    QByteArray m_body;
    AsyncStreamProducer<bool> m_whenFinished;
    AsyncStream<bool> m_finished;
    QTimer m_timer;
};

} // namespace

QtHTTPTransport::QtHTTPTransport() : m_network(std::make_shared<QNetworkAccessManager>()) {
    m_network->setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

QCoro::Task<MAHTTPAnswer> QtHTTPTransport::get(QUrl url, qint64 maxBytes, std::chrono::milliseconds timeout) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    Download download(m_network, request, maxBytes, timeout);
    QNetworkReply &reply = download.reply();
    [[maybe_unused]] const auto end = co_await download.finished().next();
    QByteArray body = download.takeBody();
    if (download.end() == Download::End::timedOut)
        throw MusicAssistantError::timeout(url.path());
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool broke =
        reply.error() != QNetworkReply::NoError && reply.error() < QNetworkReply::ContentAccessDenied;
    if (status == 0 || broke || download.end() == Download::End::tooLong)
        throw MusicAssistantError::transport(
            {.kind = MATransportError::Kind::network, .detail = reply.errorString()});
    co_return MAHTTPAnswer{.status = status, .body = std::move(body)};
}

} // namespace vantor
