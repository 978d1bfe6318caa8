#pragma once

#include "SkinMuseum/Wire/MuseumPage.h"

#include <QCache>
#include <QCoroTask>
#include <QDateTime>
#include <QFuture>
#include <QHash>
#include <QObject>
#include <QPromise>
#include <QThreadPool>

#include <deque>
#include <functional>
#include <memory>

namespace vantor {

class MuseumTransport;

/// The museum's pictures of skins as it sends them, in memory and on disk. Main thread; files are a worker's.
class MuseumScreenshotCache : public QObject {
    Q_OBJECT

  public:
    static constexpr qint64 maxPicture = 4LL << 20; ///< bytes
    static constexpr qint64 maxPixels = 4'000'000;

    struct Limits {
        qint64 maxDiskBytes = 256LL << 20; ///< the oldest files leave first
        qsizetype maxMemoryEntries = 48;   ///< the least recently used leave first
        qsizetype maxMemoryBytes = qsizetype(16) << 20;
        int maxConcurrentFetches = 6;
    };

    /// `directory` is the cache's alone; made when needed.
    MuseumScreenshotCache(std::shared_ptr<MuseumTransport> transport, QByteArray userAgent, QString directory,
                          const Limits &limits,
                          std::function<QDateTime()> now = &QDateTime::currentDateTimeUtc);
    /// Waits for files that are being read or written.
    ~MuseumScreenshotCache() override;

    /// A PNG, JPEG or the like; fetched once for all who ask meanwhile. A failure is the future's exception,
    /// a MuseumError: `offline`, `http`, `tooLarge`, `decoding`.
    [[nodiscard]] QFuture<QByteArray> screenshot(const MuseumSkin &skin);
    /// It cannot be decoded: when it is asked for again, it is fetched again.
    void drop(const QString &md5);

  private:
    using Promise = std::shared_ptr<QPromise<QByteArray>>;

    QCoro::Task<> load(MuseumSkin skin, Promise promise);
    [[nodiscard]] QFuture<void> turn();
    void endTurn();
    void keep(const QString &md5, const QByteArray &picture);
    [[nodiscard]] qsizetype costOf(const QByteArray &picture) const;
    [[nodiscard]] QString pathOf(const QString &md5) const;

    const std::shared_ptr<MuseumTransport> m_transport;
    const QByteArray m_userAgent;
    const QString m_directory;
    const Limits m_limits;
    const std::function<QDateTime()> m_now;
    QCache<QString, QByteArray> m_memory; ///< each costs its bytes, or more
    QHash<QString, QFuture<QByteArray>> m_inFlight;
    int m_activeFetches = 0;
    std::deque<QPromise<void>> m_waiters;
    qint64 m_untrimmed; ///< bytes written since the folder was looked through
    QThreadPool m_pool;
};

} // namespace vantor
