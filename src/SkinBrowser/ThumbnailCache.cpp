#include "SkinBrowser/ThumbnailCache.h"

#include "SkinBrowser/ThumbnailFiles_p.h"
#include "SkinKit/Loading/SkinParser.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"
#include "SkinLibrary/Ingest/SkinContentHash.h"
#include "SkinLibrary/Ingest/SkinIndexer.h"
#include "SkinLibrary/Ingest/SkinIngester.h"

#include <system_error>

namespace vantor {

namespace {

/// To be raised when the pictures of main windows change.
constexpr int renderingVersion = 1;

/// Whether the file is still the one that the index knows by this hash.
bool isStill(const QString &hash, const QString &path) {
    try {
        return SkinIngester().digests(path).sha256 == hash;
    } catch (const std::system_error &) {
        return false;
    }
}

std::optional<QImage> drawn(const QString &path) {
    try {
        const Skin skin = SkinParser::parse(SkinIngester::archive(path));
        return MainWindowRenderer::picture(skin, {}, 1);
    } catch (const std::exception &) { // SkinError, or no memory
        return std::nullopt;
    }
}

} // namespace

ThumbnailCache::ThumbnailCache(const QString &folder, qint64 diskLimit, QObject *parent)
    : QObject(parent), m_files(std::make_unique<ThumbnailFiles>(folder, renderingVersion, size)),
      m_diskLimit(diskLimit), m_maxWorkers(SkinIndexer::defaultConcurrency()) {
    m_pool.setMaxThreadCount(m_maxWorkers + 1); // and the trimming
}

ThumbnailCache::~ThumbnailCache() {
    m_stop = true;
    m_pool.waitForDone();
}

std::optional<QImage> ThumbnailCache::picture(const QString &hash, const QString &path) {
    if (const QImage *known = m_memory.object(hash))
        return *known;
    const auto failure = m_failures.constFind(hash);
    if (failure == m_failures.cend() || *failure != path)
        ask({hash, path});
    return std::nullopt;
}

void ThumbnailCache::ask(const Request &request) {
    MutexLock lock(m_mutex);
    const auto isSame = [&](const Request &other) { return other.hash == request.hash; };
    const bool isBeingMade = m_asked.contains(request.hash) && std::erase_if(m_waiting, isSame) == 0;
    if (isBeingMade)
        return;
    m_asked.insert(request.hash);
    m_waiting.push_back(request);
    if (m_workers < m_maxWorkers) {
        ++m_workers;
        m_pool.start([this] { work(); });
    }
}

void ThumbnailCache::forgetRequests() {
    MutexLock lock(m_mutex);
    for (const Request &request : std::exchange(m_waiting, {}))
        m_asked.remove(request.hash);
}

void ThumbnailCache::take(const Request &request, const std::optional<QImage> &picture) {
    m_asked.remove(request.hash);
    if (!picture) {
        m_failures.insert(request.hash, request.path);
        Q_EMIT failed(request.hash);
        return;
    }
    m_failures.remove(request.hash);
    m_memory.insert(request.hash, new QImage(*picture), picture->sizeInBytes());
    Q_EMIT ready(request.hash);
}

void ThumbnailCache::work() {
    while (const std::optional<Request> request = next()) {
        const auto deliver = [this, request = *request, picture = make(*request)] { take(request, picture); };
        QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
    }
}

std::optional<ThumbnailCache::Request> ThumbnailCache::next() {
    MutexLock lock(m_mutex);
    if (m_waiting.empty() || m_stop) {
        --m_workers;
        return std::nullopt;
    }
    const Request request = m_waiting.back();
    m_waiting.pop_back();
    return request;
}

std::optional<QImage> ThumbnailCache::make(const Request &request) {
    if (!SkinContentHash::isValid(request.hash)) // it becomes a file name
        return std::nullopt;
    if (const std::optional<QImage> kept = m_files->load(request.hash))
        return kept;
    const std::optional<QImage> picture = drawn(request.path);
    if (picture && isStill(request.hash, request.path)) {
        m_files->save(request.hash, *picture);
        if (!m_isTrimmed.exchange(true))
            m_pool.start([this] { trim(); });
    }
    return picture;
}

void ThumbnailCache::trim() {
    m_files->trim(m_diskLimit, m_stop);
}

} // namespace vantor
