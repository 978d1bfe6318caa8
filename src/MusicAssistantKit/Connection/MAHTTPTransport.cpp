#include "MusicAssistantKit/Connection/MAHTTPTransport.h"

#include "MusicAssistantKit/Connection/MusicAssistantError.h"
#include "Platform/AsyncStream.h"

#include <QNetworkReply>
#include <QTimer>

namespace vantor {

namespace {

/// Collects the body of one reply; owns the reply.
class Download : public QObject {
  public:
    enum class End { finished, tooLong, timedOut };

    Download(QNetworkReply *reply, qint64 maxBytes, std::chrono::milliseconds timeout)
        : m_reply(reply), m_maxBytes(maxBytes) {
        reply->setParent(this);
        // Bounds what waits unread, however fast the server sends.
        reply->setReadBufferSize(256 << 10);
        std::tie(m_whenFinished, m_finished) = AsyncStream<bool>::make(latestValueOnly);
        connect(reply, &QNetworkReply::readyRead, this, &Download::read);
        connect(reply, &QNetworkReply::finished, this, [this] { m_whenFinished.finish(); });
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

    QNetworkReply *m_reply;
    qint64 m_maxBytes;
    End m_end = End::finished;
    QByteArray m_body;
    AsyncStreamProducer<bool> m_whenFinished;
    AsyncStream<bool> m_finished;
    QTimer m_timer;
};

} // namespace

QtHTTPTransport::QtHTTPTransport() {
    m_network.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

QCoro::Task<MAHTTPAnswer> QtHTTPTransport::get(QUrl url, qint64 maxBytes, std::chrono::milliseconds timeout) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    Download download(m_network.get(request), maxBytes, timeout);
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
