#include "SkinMuseum/Client/MuseumScreenshotCache.h"

#include "Platform/CacheFolder.h"
#include "Platform/PictureDecoder.h"
#include "SkinMuseum/Client/MuseumTransport.h"
#include "SkinMuseum/MuseumError.h"

#include <QCoroFuture>
#include <QFile>
#include <QPointer>
#include <QtConcurrentRun>

namespace vantor {

namespace {

/// What the file holds, when that is a picture.
QByteArray readPicture(const QString &path) {
    const QByteArray bytes = CacheFolder::read(path, MuseumScreenshotCache::maxPicture);
    return isPicture(bytes, MuseumScreenshotCache::maxPixels) ? bytes : QByteArray();
}

std::optional<MuseumError> problem(const HTTPAnswer &answer) {
    if (answer.status == 0)
        return MuseumError::offline();
    if (answer.status < 200 || answer.status > 299)
        return MuseumError::http(answer.status);
    if (answer.end == HTTPAnswer::End::tooLong)
        return MuseumError::tooLarge();
    if (answer.isBroken || answer.end != HTTPAnswer::End::finished)
        return MuseumError::offline();
    return std::nullopt;
}

void fail(QPromise<QByteArray> &promise, const MuseumError &error) {
    promise.setException(std::make_exception_ptr(error));
    promise.finish();
}

} // namespace

MuseumScreenshotCache::MuseumScreenshotCache(std::shared_ptr<MuseumTransport> transport, QByteArray userAgent,
                                             QString directory, const Limits &limits,
                                             std::function<QDateTime()> now)
    : m_transport(std::move(transport)), m_userAgent(std::move(userAgent)), m_directory(std::move(directory)),
      m_limits(limits), m_now(std::move(now)), m_memory(limits.maxMemoryBytes),
      m_untrimmed(limits.maxDiskBytes) {
    m_pool.setMaxThreadCount(1);
}

MuseumScreenshotCache::~MuseumScreenshotCache() {
    for (QPromise<void> &waiter : m_waiters)
        waiter.finish();
    m_pool.waitForDone();
}

QString MuseumScreenshotCache::pathOf(const QString &md5) const {
    return m_directory + QLatin1Char('/') + md5;
}

QFuture<QByteArray> MuseumScreenshotCache::screenshot(const MuseumSkin &skin) {
    if (const QByteArray *const kept = m_memory.object(skin.md5))
        return QtFuture::makeReadyFuture(*kept);
    const auto inFlight = m_inFlight.constFind(skin.md5);
    if (inFlight != m_inFlight.cend())
        return *inFlight;
    const auto promise = std::make_shared<QPromise<QByteArray>>();
    promise->start();
    QFuture<QByteArray> future = promise->future();
    if (skin.isAcceptable()) { // its identity becomes a file name
        m_inFlight.insert(skin.md5, future);
        load(skin, promise);
    } else {
        fail(*promise, MuseumError::decoding());
    }
    return future;
}

QCoro::Task<> MuseumScreenshotCache::load(MuseumSkin skin, Promise promise) {
    const QPointer<MuseumScreenshotCache> self(this);
    const QFuture<QByteArray> reading = QtConcurrent::run(&m_pool, &readPicture, pathOf(skin.md5));
    QByteArray picture = co_await reading;
    std::optional<MuseumError> error;
    if (picture.isEmpty() && self) {
        const QFuture<void> waiting = turn();
        co_await waiting;
        if (self) {
            const MuseumRequest request{
                .url = skin.screenshotURL, .userAgent = m_userAgent, .maxBytes = maxPicture};
            const HTTPAnswer answer = co_await m_transport->send(request);
            error = problem(answer);
            picture = answer.body;
        }
        if (self)
            endTurn();
        if (self && !error) {
            const QFuture<bool> checking = QtConcurrent::run(&m_pool, &isPicture, picture, maxPixels);
            if (!co_await checking)
                error = MuseumError::decoding();
        }
        if (self && !error)
            keep(skin.md5, picture);
    }
    if (!self)
        error = MuseumError::offline();
    if (self) {
        m_inFlight.remove(skin.md5);
        if (!error)
            m_memory.insert(skin.md5, new QByteArray(picture), costOf(picture));
    }
    if (error) {
        fail(*promise, *error);
    } else {
        promise->addResult(picture);
        promise->finish();
    }
}

void MuseumScreenshotCache::drop(const QString &md5) {
    m_memory.remove(md5);
    m_pool.start([path = pathOf(md5)] { QFile::remove(path); });
}

// At least a fair share of the memory each, so that the number is bounded as well.
qsizetype MuseumScreenshotCache::costOf(const QByteArray &picture) const {
    return std::max(picture.size(), m_limits.maxMemoryBytes / m_limits.maxMemoryEntries);
}

QFuture<void> MuseumScreenshotCache::turn() {
    QPromise<void> waiter;
    waiter.start();
    QFuture<void> future = waiter.future();
    if (m_activeFetches < m_limits.maxConcurrentFetches) {
        ++m_activeFetches;
        waiter.finish();
    } else {
        m_waiters.push_back(std::move(waiter));
    }
    return future;
}

void MuseumScreenshotCache::endTurn() {
    if (m_waiters.empty()) {
        --m_activeFetches;
        return;
    }
    m_waiters.front().finish(); // its fetch takes this one's place
    m_waiters.pop_front();
}

void MuseumScreenshotCache::keep(const QString &md5, const QByteArray &picture) {
    m_untrimmed += picture.size();
    const bool trims = m_untrimmed >= m_limits.maxDiskBytes / 16;
    if (trims)
        m_untrimmed = 0;
    const qint64 rest = m_limits.maxDiskBytes - m_limits.maxDiskBytes / 16;
    m_pool.start([path = pathOf(md5), picture, time = m_now(), trims, directory = m_directory, rest] {
        CacheFolder::write(path, picture, time);
        if (trims)
            CacheFolder::trim(directory, rest);
    });
}

} // namespace vantor
