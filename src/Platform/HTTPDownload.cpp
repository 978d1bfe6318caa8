#include "Platform/HTTPDownload.h"

#include <QNetworkAccessManager>

namespace vantor {

QByteArray HTTPAnswer::header(QByteArrayView name) const {
    for (const auto &[known, value] : headers) {
        if (QByteArrayView(known).compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

HTTPDownload::HTTPDownload(std::shared_ptr<QNetworkAccessManager> network, QNetworkReply *reply,
                           const Limits &limits)
    : m_network(std::move(network)), m_reply(reply), m_limits(limits) {
    m_reply->setParent(nullptr);
    // Bounds what waits unread, however fast the server sends.
    m_reply->setReadBufferSize(256 << 10);
    std::tie(m_whenFinished, m_finished) = AsyncStream<bool>::make(latestValueOnly);
    connect(reply, &QNetworkReply::readyRead, this, &HTTPDownload::read);
    connect(reply, &QNetworkReply::finished, this, [this] {
        m_timer.stop();
        m_silence.stop();
        m_whenFinished.finish();
    });
    for (QTimer *const timer : {&m_timer, &m_silence}) {
        timer->setSingleShot(true);
        timer->callOnTimeout(this, [this] { stop(HTTPAnswer::End::timedOut); });
    }
    m_timer.start(limits.timeout);
    m_silence.setInterval(limits.silence);
    if (limits.silence.count() > 0)
        m_silence.start();
}

void HTTPDownload::read() {
    m_answer.body += m_reply->read(m_limits.maxBytes + 1 - m_answer.body.size());
    if (m_answer.body.size() > m_limits.maxBytes)
        return stop(HTTPAnswer::End::tooLong);
    if (m_limits.silence.count() > 0)
        m_silence.start();
    if (onProgress)
        onProgress(m_answer.body.size(), m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong());
}

void HTTPDownload::stop(HTTPAnswer::End end) {
    if (m_answer.end != HTTPAnswer::End::finished)
        return;
    m_answer.end = end;
    m_reply->abort();
}

void HTTPDownload::abandon() {
    onProgress = nullptr;
    m_timer.stop();
    m_silence.stop();
    m_answer.end = HTTPAnswer::End::abandoned;
    m_answer.isBroken = true;
    m_reply.reset();
    m_network.reset();
    m_whenFinished.finish();
}

HTTPAnswer HTTPDownload::takeAnswer() {
    if (m_reply) {
        onProgress = nullptr;
        if (m_answer.end == HTTPAnswer::End::finished)
            read();
        m_answer.status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        const QNetworkReply::NetworkError error = m_reply->error();
        // Those further up are a server's refusals, which are whole answers.
        m_answer.isBroken = error != QNetworkReply::NoError && error < QNetworkReply::ContentAccessDenied;
        m_answer.errorText = m_reply->errorString();
        m_answer.headers = m_reply->rawHeaderPairs();
    }
    return std::move(m_answer);
}

} // namespace vantor
