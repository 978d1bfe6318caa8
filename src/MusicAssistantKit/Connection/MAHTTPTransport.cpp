#include "MusicAssistantKit/Connection/MAHTTPTransport.h"

#include "MusicAssistantKit/Connection/MusicAssistantError.h"
#include "Platform/HTTPDownload.h"

#include <QLocale>

namespace vantor {

QtHTTPTransport::QtHTTPTransport() : m_network(std::make_shared<QNetworkAccessManager>()) {
    m_network->setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

QCoro::Task<MAHTTPAnswer> QtHTTPTransport::get(QUrl url, qint64 maxBytes, std::chrono::milliseconds timeout) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    HTTPDownload download(m_network, m_network->get(request), {.maxBytes = maxBytes, .timeout = timeout});
    [[maybe_unused]] const auto end = co_await download.finished().next();
    HTTPAnswer answer = download.takeAnswer();
    if (answer.end == HTTPAnswer::End::timedOut)
        throw MusicAssistantError::timeout(url.path());
    if (answer.status == 0 || answer.isBroken || answer.end != HTTPAnswer::End::finished)
        throw MusicAssistantError::transport(
            {.kind = MATransportError::Kind::network, .detail = answer.errorText});
    QDateTime date = QLocale::c().toDateTime(QString::fromLatin1(answer.header("Date")),
                                             QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'"));
    date.setTimeSpec(Qt::UTC);
    co_return MAHTTPAnswer{.status = answer.status,
                           .body = std::move(answer.body),
                           .date = date.isValid() ? std::optional(date) : std::nullopt};
}

} // namespace vantor
