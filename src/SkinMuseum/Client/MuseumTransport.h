#pragma once

#include "Platform/HTTPDownload.h"

#include <QCoroTask>
#include <QSslCertificate>
#include <QUrl>

#include <set>
#include <stop_token>

class QNetworkAccessManager;

namespace vantor {

/// One request to the museum or to where it keeps its files.
struct MuseumRequest {
    QUrl url;
    QByteArray userAgent;
    qint64 maxBytes = 0;  ///< of the answer; what is longer is broken off
    QByteArray body = {}; ///< posted as JSON; empty: the file is fetched
    std::function<void(qint64 received, qint64 total)> onProgress = {};
    std::stop_token stop = {}; ///< to be asked on the main thread; then there is no answer
};

/// Sends requests over HTTP. Main thread. In a shared_ptr, which what is under way holds as well.
class MuseumTransport {
  public:
    virtual ~MuseumTransport() = default;
    /// Never throws: what went wrong is in the answer, whose status is 0 when there was none.
    [[nodiscard]] virtual QCoro::Task<HTTPAnswer> send(MuseumRequest request) = 0;
    /// Lets go of the network: what is under way, and what is sent from now on, gets no answer.
    virtual void close() = 0;
};

/// The real one. Asks addresses in https only, and follows redirections to such only.
class QtMuseumTransport : public MuseumTransport {
  public:
    struct Limits {
        std::chrono::milliseconds timeout{120'000};
        std::chrono::milliseconds silence{20'000};
    };

    /// `authorities`: whom to trust beside those whom the system trusts.
    explicit QtMuseumTransport(const QList<QSslCertificate> &authorities, const Limits &limits);
    explicit QtMuseumTransport(const QList<QSslCertificate> &authorities = {})
        : QtMuseumTransport(authorities, Limits()) {}
    ~QtMuseumTransport() override;
    Q_DISABLE_COPY_MOVE(QtMuseumTransport)

    [[nodiscard]] QCoro::Task<HTTPAnswer> send(MuseumRequest request) override;
    void close() override;

  private:
    using Downloads = std::set<HTTPDownload *>;

    const Limits m_limits;
    QSslConfiguration m_tls;
    std::shared_ptr<QNetworkAccessManager> m_network; ///< none once closed
    std::shared_ptr<Downloads> m_downloads;           ///< shared with what is under way
};

} // namespace vantor
