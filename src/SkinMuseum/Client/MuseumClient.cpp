#include "SkinMuseum/Client/MuseumClient.h"

#include "SkinMuseum/Client/MuseumResultCache.h"
#include "SkinMuseum/Client/MuseumTransport.h"
#include "SkinMuseum/MuseumError.h"

#include <QCoroFuture>
#include <QCoroTimer>
#include <QtConcurrentRun>

namespace vantor {

namespace {

using Decoded = std::variant<MuseumPage, MuseumError>;

bool isSuccess(int status) {
    return status >= 200 && status <= 299;
}

/// How long the server wants to be left alone, in the only form that is heeded: seconds.
std::optional<std::chrono::seconds> retryAfter(const HTTPAnswer &answer) {
    const QByteArray text = answer.header("Retry-After").trimmed();
    const bool isNumber =
        !text.isEmpty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
    if (!isNumber)
        return std::nullopt;
    bool fits = false;
    const std::chrono::seconds asked(text.toInt(&fits));
    return fits ? std::min(asked, MuseumClient::maxRetryAfter) : MuseumClient::maxRetryAfter;
}

QCoro::Task<> sleepFor(std::chrono::milliseconds time) {
    co_await QCoro::sleepFor(time);
}

Decoded decoded(const QByteArray &body, const MuseumQuery &query) {
    try {
        return decodePage(body, query);
    } catch (const MuseumError &error) {
        return error;
    }
}

} // namespace

MuseumClient::MuseumClient(std::shared_ptr<MuseumTransport> transport,
                           std::shared_ptr<MuseumResultCache> cache, QByteArray userAgent,
                           const QUrl &endpoint, Sleep sleep)
    : m_transport(std::move(transport)), m_cache(std::move(cache)), m_userAgent(std::move(userAgent)),
      m_endpoint(endpoint), m_sleep(sleep ? std::move(sleep) : Sleep(&sleepFor)) {}

QCoro::Task<QByteArray> MuseumClient::post(std::shared_ptr<MuseumTransport> transport, QUrl endpoint,
                                           QByteArray userAgent, QByteArray body, Sleep sleep,
                                           HeldUp heldUp) {
    const MuseumRequest request{.url = endpoint, .userAgent = userAgent, .maxBytes = maxAnswer, .body = body};
    HTTPAnswer answer = co_await transport->send(request);
    const std::optional<std::chrono::seconds> wait =
        answer.status != 0 && !isSuccess(answer.status) ? retryAfter(answer) : std::nullopt;
    if (wait) {
        if (heldUp)
            heldUp();
        co_await sleep(*wait);
        answer = co_await transport->send(request);
    }
    if (answer.status == 0)
        throw MuseumError::offline();
    if (!isSuccess(answer.status))
        throw MuseumError::http(answer.status);
    if (answer.end == HTTPAnswer::End::tooLong)
        throw MuseumError::decoding();
    if (answer.isBroken || answer.end != HTTPAnswer::End::finished)
        throw MuseumError::offline();
    co_return answer.body;
}

QCoro::Task<MuseumPage> MuseumClient::page(MuseumQuery query, HeldUp heldUp) {
    const std::shared_ptr<MuseumResultCache> cache = m_cache; // the client may go meanwhile
    const QByteArray question = query.request().encoded();
    const QByteArray body = co_await post(m_transport, m_endpoint, m_userAgent, question, m_sleep, heldUp);
    const QFuture<Decoded> decoding = QtConcurrent::run(&decoded, body, query);
    const Decoded result = co_await decoding;
    if (const auto *error = std::get_if<MuseumError>(&result))
        throw *error;
    if (cache)
        cache->store(query.cacheKey(), body);
    co_return std::get<MuseumPage>(result);
}

QCoro::Task<std::optional<MuseumClient::CachedPage>> MuseumClient::cachedPage(MuseumQuery query) {
    if (!m_cache)
        co_return std::nullopt;
    const QString key = query.cacheKey();
    const std::optional<MuseumResultCache::Entry> entry = co_await m_cache->page(key);
    if (!entry)
        co_return std::nullopt;
    const QFuture<Decoded> decoding = QtConcurrent::run(&decoded, entry->answer, query);
    const Decoded result = co_await decoding;
    const auto *const page = std::get_if<MuseumPage>(&result);
    if (!page)
        co_return std::nullopt;
    co_return CachedPage{*page, entry->isStale};
}

} // namespace vantor
