#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QDateTime>
#include <QNetworkAccessManager>
#include <QUrl>

#include <chrono>
#include <memory>
#include <optional>

namespace vantor {

/// A server's answer over HTTP.
struct MAHTTPAnswer {
    int status = 0;
    QByteArray body;
    std::optional<QDateTime> date = {}; ///< of the server's clock when it answered, in whole seconds
};

/// Plain questions to a server, beside the WebSocket. Main thread.
class MAHTTPTransport {
  public:
    virtual ~MAHTTPTransport() = default;
    /// Redirections are not followed: their status is the answer. Throws MusicAssistantError: `transport`
    /// when there is no answer or its body is longer than `maxBytes`, `timeout`.
    [[nodiscard]] virtual QCoro::Task<MAHTTPAnswer> get(QUrl url, qint64 maxBytes,
                                                        std::chrono::milliseconds timeout) = 0;
};

/// The real one. It may go while it works.
class QtHTTPTransport : public MAHTTPTransport {
  public:
    QtHTTPTransport();
    [[nodiscard]] QCoro::Task<MAHTTPAnswer> get(QUrl url, qint64 maxBytes,
                                                std::chrono::milliseconds timeout) override;

  private:
    std::shared_ptr<QNetworkAccessManager> m_network; ///< shared with what is under way
};

} // namespace vantor
