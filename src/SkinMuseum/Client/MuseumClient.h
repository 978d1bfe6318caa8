#pragma once

#include "SkinMuseum/Wire/MuseumPage.h"

#include <QCoroTask>

#include <chrono>
#include <functional>
#include <memory>

namespace vantor {

class MuseumResultCache;
class MuseumTransport;
struct HTTPAnswer;

/// Asks the museum for pages of skins. Main thread; decoding is a worker's. May go while it works.
class MuseumClient {
  public:
    using Sleep = std::function<QCoro::Task<>(std::chrono::milliseconds)>;
    /// Called when the museum asks for patience, before it is waited for.
    using HeldUp = std::function<void()>;

    struct CachedPage {
        MuseumPage page;
        bool isStale = false; ///< more than a day old

        bool operator==(const CachedPage &) const = default;
    };

    static constexpr const char *defaultEndpoint = "https://api.webampskins.org/graphql";
    static constexpr std::chrono::seconds maxRetryAfter{10};
    static constexpr qint64 maxAnswer = 2LL << 20; ///< bytes; sixty skins take thirty thousand

    /// `cache`: none to keep nothing. `sleep`: none for the real one.
    MuseumClient(std::shared_ptr<MuseumTransport> transport, std::shared_ptr<MuseumResultCache> cache,
                 QByteArray userAgent, const QUrl &endpoint = QUrl(QLatin1String(defaultEndpoint)),
                 Sleep sleep = {});

    /// From the museum, and kept. When the museum asks for patience it gets it once, within limits. Throws
    /// MuseumError.
    [[nodiscard]] QCoro::Task<MuseumPage> page(MuseumQuery query, HeldUp heldUp = {});
    /// As the museum gave it last.
    [[nodiscard]] QCoro::Task<std::optional<CachedPage>> cachedPage(MuseumQuery query);

  private:
    [[nodiscard]] static QCoro::Task<QByteArray> post(std::shared_ptr<MuseumTransport> transport,
                                                      QUrl endpoint, QByteArray userAgent, QByteArray body,
                                                      Sleep sleep, HeldUp heldUp);

    const std::shared_ptr<MuseumTransport> m_transport;
    const std::shared_ptr<MuseumResultCache> m_cache;
    const QByteArray m_userAgent;
    const QUrl m_endpoint;
    const Sleep m_sleep;
};

} // namespace vantor
