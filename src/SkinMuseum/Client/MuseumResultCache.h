#pragma once

#include "SkinMuseum/Wire/MuseumQuery.h"

#include <QCoroTask>
#include <QDateTime>
#include <QThreadPool>

#include <chrono>
#include <functional>
#include <optional>

namespace vantor {

/// The museum's answers on disk, for when it is out of reach. Main thread; files are read and written on a
/// worker, whose end the destructor waits for.
class MuseumResultCache {
  public:
    static constexpr std::chrono::seconds defaultTTL{86'400};
    static constexpr qint64 maxAnswer = 2LL << 20; ///< bytes; none that is longer is kept

    struct Limits {
        std::chrono::seconds ttl = defaultTTL;
        qsizetype maxEntries = 500;
        qint64 maxBytes = 24LL << 20;
    };
    struct Entry {
        QByteArray answer;    ///< as the museum sent it
        bool isStale = false; ///< older than `ttl`
    };

    /// `directory` is the cache's alone; made when needed.
    MuseumResultCache(QString directory, const Limits &limits,
                      std::function<QDateTime()> now = &QDateTime::currentDateTimeUtc);
    ~MuseumResultCache();
    Q_DISABLE_COPY_MOVE(MuseumResultCache)

    [[nodiscard]] QCoro::Task<std::optional<Entry>> page(QString key);
    /// Kept a moment later; the oldest ones go until the rest is within the limits.
    void store(const QString &key, const QByteArray &answer);

  private:
    [[nodiscard]] QString pathOf(const QString &key) const;

    const QString m_directory;
    const Limits m_limits;
    const std::function<QDateTime()> m_now;
    QThreadPool m_pool; ///< one thread, so that what is stored is found
};

} // namespace vantor
