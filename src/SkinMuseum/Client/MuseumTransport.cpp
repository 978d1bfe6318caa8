#include "SkinMuseum/Client/MuseumTransport.h"

#include <QNetworkAccessManager>
#include <QScopeGuard>
#include <QSslConfiguration>

namespace vantor {

namespace {

constexpr int maxRedirects = 5;

QNetworkRequest prepared(const MuseumRequest &asked, const QSslConfiguration &tls) {
    QNetworkRequest request(asked.url);
    request.setSslConfiguration(tls);
    request.setHeader(QNetworkRequest::UserAgentHeader, asked.userAgent);
    if (asked.body.isEmpty()) // archives and pictures as they are, with their own length
        request.setRawHeader("Accept-Encoding", "identity");
    else
        request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
    // From https, only to https.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(maxRedirects);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    // Several connections serve as well, and are what is tried here.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    return request;
}

} // namespace

QtMuseumTransport::QtMuseumTransport(const QList<QSslCertificate> &authorities, const Limits &limits)
    : m_limits(limits), m_tls(QSslConfiguration::defaultConfiguration()),
      m_network(std::make_shared<QNetworkAccessManager>()), m_downloads(std::make_shared<Downloads>()) {
    // Once any are named, Qt looks none of the system's up by itself.
    if (!authorities.isEmpty())
        m_tls.setCaCertificates(QSslConfiguration::systemCaCertificates() + authorities);
}

QtMuseumTransport::~QtMuseumTransport() {
    close();
}

void QtMuseumTransport::close() {
    m_network.reset();
    for (HTTPDownload *const download : std::exchange(*m_downloads, {}))
        download->abandon();
}

QCoro::Task<HTTPAnswer> QtMuseumTransport::send(MuseumRequest request) {
    if (!m_network || request.url.scheme() != QLatin1String("https"))
        co_return HTTPAnswer{.isBroken = true};
    const QNetworkRequest prepare = prepared(request, m_tls);
    QNetworkReply *const reply =
        request.body.isEmpty() ? m_network->get(prepare) : m_network->post(prepare, request.body);
    HTTPDownload download(
        m_network, reply,
        {.maxBytes = request.maxBytes, .timeout = m_limits.timeout, .silence = m_limits.silence});
    download.onProgress = std::move(request.onProgress);
    const std::shared_ptr<Downloads> downloads = m_downloads;
    downloads->insert(&download);
    const auto unlist = qScopeGuard([&] { downloads->erase(&download); });
    const std::stop_callback abandoning(request.stop, [&download] { download.abandon(); });
    [[maybe_unused]] const auto end = co_await download.finished().next();
    HTTPAnswer answer = download.takeAnswer();
    co_return answer;
}

} // namespace vantor
