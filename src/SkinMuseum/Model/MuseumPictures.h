#pragma once

#include "SkinMuseum/Wire/MuseumPage.h"

#include <QCache>
#include <QCoroTask>
#include <QElapsedTimer>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QThreadPool>

#include <vector>

namespace vantor {

class MuseumScreenshotCache;

/// The museum's screenshots as views paint them: decoded and scaled by workers. What was asked for last is
/// loaded first. Main thread; borrows the cache.
class MuseumPictures : public QObject {
    Q_OBJECT

  public:
    static constexpr int mostLoads = 8;
    static constexpr qsizetype memoryLimit = qsizetype(40) << 20;     ///< bytes
    static constexpr std::chrono::milliseconds failureMemory{30'000}; ///< in which nothing is asked again

    explicit MuseumPictures(MuseumScreenshotCache &cache, QObject *parent = nullptr);
    /// Waits for the pictures that are being decoded.
    ~MuseumPictures() override;

    /// The screenshot, at most `height` pixels high. Null when it is not there: then it is loaded and
    /// changed() follows, unless that has just failed.
    [[nodiscard]] QImage picture(const MuseumSkin &skin, int height);
    [[nodiscard]] bool hasFailed(const QString &md5) const;
    /// Forgets what was asked for and not begun: its rows have left the view.
    void forgetRequests() { m_wanted.clear(); }
    /// The reason for failures may be gone.
    void forgetFailures() { m_failures.clear(); }

  Q_SIGNALS:
    void changed(const QString &md5); ///< it has come, or failed

  private:
    using Key = std::pair<QString, int>; ///< MD5 and height
    struct Request {
        MuseumSkin skin;
        int height = 0;
    };

    void loadSoon();
    void loadNext();
    QCoro::Task<> load(Request request);

    MuseumScreenshotCache &m_cache;
    QCache<Key, QImage> m_images{memoryLimit};
    QHash<QString, QElapsedTimer> m_failures; ///< since when
    std::vector<Request> m_wanted;            ///< the newest is the last
    QSet<Key> m_loading;
    bool m_loadsSoon = false;
    QThreadPool m_pool;
};

} // namespace vantor
