#include "SkinMuseum/Model/MuseumPictures.h"

#include "Platform/PictureDecoder.h"
#include "SkinMuseum/Client/MuseumScreenshotCache.h"

#include <QCoroFuture>
#include <QPointer>
#include <QtConcurrentRun>

namespace vantor {

namespace {

constexpr qsizetype mostFailures = 4096;

/// In the form that is painted fastest.
QImage decoded(const QByteArray &bytes, int height) {
    return decodePicture(bytes, height, MuseumScreenshotCache::maxPixels)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

MuseumPictures::MuseumPictures(MuseumScreenshotCache &cache, QObject *parent)
    : QObject(parent), m_cache(cache) {
    m_pool.setMaxThreadCount(2);
    m_pool.setThreadPriority(QThread::LowPriority);
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &MuseumPictures::endPauses);
}

MuseumPictures::~MuseumPictures() {
    m_pool.waitForDone();
}

bool MuseumPictures::hasFailed(const QString &md5) const {
    const auto failure = m_failures.constFind(md5);
    return failure != m_failures.cend() && !failure->pause.hasExpired();
}

QImage MuseumPictures::picture(const MuseumSkin &skin, int height) {
    const Key key{skin.md5, height};
    if (const QImage *const kept = m_images.object(key))
        return *kept;
    if (m_loading.contains(key) || hasFailed(skin.md5))
        return {};
    std::erase_if(m_wanted,
                  [&](const Request &other) { return other.skin.md5 == skin.md5 && other.height == height; });
    m_wanted.push_back({skin, height});
    loadSoon();
    return {};
}

void MuseumPictures::takeFailure(const QString &md5) {
    if (m_failures.size() >= mostFailures)
        m_failures.clear();
    Failure &failure = m_failures[md5];
    const auto pause = firstPause * (1 << std::min(failure.times, 10));
    failure = {QDeadlineTimer(std::min<std::chrono::milliseconds>(pause, longestPause)), failure.times + 1};
    startPause();
}

// Who shows one of these asks for it again.
void MuseumPictures::endPauses() {
    QStringList over;
    for (auto failure = m_failures.begin(); failure != m_failures.end(); ++failure) {
        if (failure->pause.hasExpired() && !std::exchange(failure->isOver, true))
            over.append(failure.key());
    }
    startPause();
    for (const QString &md5 : over)
        Q_EMIT changed(md5);
}

void MuseumPictures::startPause() {
    std::optional<qint64> least;
    for (const Failure &failure : m_failures) {
        if (!failure.isOver)
            least = std::min(least.value_or(longestPause.count()), failure.pause.remainingTime());
    }
    if (least)
        m_pause.start(std::chrono::milliseconds(*least));
}

// Not at once: of one paint the last comes first, and nothing changes inside it.
void MuseumPictures::loadSoon() {
    if (!std::exchange(m_loadsSoon, true))
        QMetaObject::invokeMethod(this, &MuseumPictures::loadNext, Qt::QueuedConnection);
}

void MuseumPictures::loadNext() {
    m_loadsSoon = false;
    while (m_loading.size() < mostLoads && !m_wanted.empty()) {
        const Request request = std::move(m_wanted.back());
        m_wanted.pop_back();
        m_loading.insert({request.skin.md5, request.height});
        load(request);
    }
}

QCoro::Task<> MuseumPictures::load(Request request) {
    const QPointer<MuseumPictures> self(this);
    QImage image;
    try {
        const QFuture<QByteArray> fetching = m_cache.screenshot(request.skin);
        const QByteArray bytes = co_await fetching;
        if (!self)
            co_return;
        const QFuture<QImage> decoding = QtConcurrent::run(&m_pool, &decoded, bytes, request.height);
        image = co_await decoding;
        if (self && image.isNull())
            m_cache.drop(request.skin.md5);
    } catch (...) {
        // Whatever the reason, there is no picture; the list tells when the museum is out of reach.
    }
    if (!self)
        co_return;
    const Key key{request.skin.md5, request.height};
    m_loading.remove(key);
    if (image.isNull()) {
        takeFailure(request.skin.md5);
    } else {
        m_failures.remove(request.skin.md5);
        m_images.insert(key, new QImage(image), image.sizeInBytes());
    }
    loadSoon();
    Q_EMIT changed(request.skin.md5);
}

} // namespace vantor
