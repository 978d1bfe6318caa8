#include "MusicLibraryKit/ArtworkCache.h"

#include "MusicLibraryKit/ArtworkFolder_p.h"
#include "Platform/CacheFolder.h"

#include <QCoroFuture>
#include <QCryptographicHash>
#include <QPointer>
#include <QtConcurrentRun>

#include <algorithm>

namespace vantor {

namespace {

/// More than any screen shows, so that the oldest has been scrolled away.
constexpr qsizetype mostWaiting = 2048;
constexpr qsizetype mostFailures = 4096;

/// The source's bytes, or none.
QCoro::Task<QByteArray> fetched(std::shared_ptr<MusicBackend> backend, ArtworkRef ref, int pixels) {
    QByteArray bytes;
    try {
        bytes = co_await backend->artwork(ref, pixels);
    } catch (...) {
        // Whatever the reason, there is no picture to show, and nobody to be told.
    }
    co_return bytes;
}

} // namespace

ArtworkCache::ArtworkCache(QString folder, Limits limits, std::function<Clock::time_point()> now)
    : m_folder(std::move(folder)), m_limits(limits), m_now(std::move(now)), m_images(limits.memoryBytes),
      m_untrimmed(limits.diskBytes) {
    m_pool.setMaxThreadCount(2);
}

ArtworkCache::~ArtworkCache() = default;

void ArtworkCache::setBackend(std::shared_ptr<MusicBackend> backend) {
    m_backend = std::move(backend);
    m_failures.clear();
    m_waiting.clear();
    m_loading.clear(); // which may hang for good when their source does
}

QImage ArtworkCache::image(const ArtworkRef &ref, int pixels) {
    if (!m_backend || pixels < 1)
        return {};
    const Key key{m_backend->sourceID(), ref, std::min(pixels, largestSide)};
    if (const QImage *image = m_images.object(key))
        return *image;
    if (m_loading.contains(key) || hasFailed(key))
        return {};
    wait(key);
    loadSoon();
    return {};
}

void ArtworkCache::wait(const Key &key) {
    if (m_waiting.size() >= mostWaiting && !m_waiting.contains(key))
        m_waiting.erase(std::min_element(m_waiting.cbegin(), m_waiting.cend()));
    m_waiting.insert(key, m_now());
}

QString ArtworkCache::pathOf(const Key &key) const {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QString &part : {key.source, key.ref.rawValue, QString::number(key.pixels)}) {
        hash.addData(part.toUtf8());
        hash.addData(QByteArrayView("\0", 1));
    }
    return m_folder + u'/' + QString::fromLatin1(hash.result().toHex());
}

bool ArtworkCache::hasFailed(const Key &key) const {
    const auto failure = m_failures.constFind(key);
    return failure != m_failures.cend() && m_now() < *failure;
}

// Not at once: nothing is loaded, or announced, inside a paint, and of one paint the last comes first.
void ArtworkCache::loadSoon() {
    if (!std::exchange(m_loadsSoon, true))
        QMetaObject::invokeMethod(this, &ArtworkCache::loadNext, Qt::QueuedConnection);
}

void ArtworkCache::loadNext() {
    m_loadsSoon = false;
    const QPointer<ArtworkCache> self(this); // whoever hears a signal may end it
    while (self && m_loading.size() < mostLoads && !m_waiting.isEmpty()) {
        const auto newest = std::max_element(m_waiting.cbegin(), m_waiting.cend());
        if (m_now() - *newest > m_limits.patience) {
            const QHash<Key, Clock::time_point> lapsed = std::exchange(m_waiting, {});
            for (auto entry = lapsed.cbegin(); self && entry != lapsed.cend(); ++entry)
                Q_EMIT imageChanged(entry.key().ref, entry.key().pixels);
            return;
        }
        const Key key = newest.key();
        m_waiting.remove(key);
        m_loading.insert(key);
        load(key);
    }
}

QCoro::Task<> ArtworkCache::load(Key key) {
    const QPointer<ArtworkCache> self(this);
    const std::shared_ptr<MusicBackend> backend = m_backend;
    const QString path = pathOf(key);
    const QFuture<QImage> kept = QtConcurrent::run(&m_pool, &ArtworkFolder::read, path, key.pixels);
    QImage image = co_await kept;
    if (!self)
        co_return;
    if (image.isNull()) {
        const QByteArray bytes = co_await fetched(backend, key.ref, key.pixels);
        if (!self)
            co_return;
        const QFuture<ArtworkFolder::Stored> storing =
            QtConcurrent::run(&m_pool, &ArtworkFolder::store, path, bytes, key.pixels);
        const ArtworkFolder::Stored stored = co_await storing;
        if (!self)
            co_return;
        countWritten(stored.written);
        image = stored.image;
    }
    finish(key, image);
}

void ArtworkCache::finish(const Key &key, const QImage &image) {
    m_loading.remove(key);
    if (image.isNull()) {
        if (m_failures.size() >= mostFailures)
            m_failures.clear();
        m_failures.insert(key, m_now() + m_limits.failureMemory);
    } else {
        m_images.insert(key, new QImage(image), image.sizeInBytes());
    }
    loadSoon();
    if (!image.isNull())
        Q_EMIT imageChanged(key.ref, key.pixels);
}

void ArtworkCache::countWritten(qint64 bytes) {
    m_untrimmed += bytes;
    if (bytes == 0 || m_untrimmed < m_limits.diskBytes / 16)
        return;
    m_untrimmed = 0;
    const qint64 rest = m_limits.diskBytes - m_limits.diskBytes / 16;
    m_pool.start([folder = m_folder, rest] { CacheFolder::trim(folder, rest); });
}

} // namespace vantor
