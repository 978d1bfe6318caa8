#pragma once

#include "SkinMuseum/Wire/MuseumPage.h"

#include <QCache>
#include <QCoroTask>
#include <QDeadlineTimer>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QThreadPool>
#include <QTimer>

#include <vector>

namespace vantor {

class MuseumScreenshotCache;

/// The museum's screenshots as views paint them: decoded and scaled by workers. What was asked for last is
/// loaded first. Main thread; borrows the cache.
class MuseumPictures : public QObject {
    Q_OBJECT

  public:
    static constexpr int mostLoads = 8;
    static constexpr qsizetype memoryLimit = qsizetype(28) << 20; ///< bytes
    /// In which one that could not be loaded is not asked for again: longer with every time.
    static constexpr std::chrono::milliseconds firstPause{5'000};
    static constexpr std::chrono::milliseconds longestPause{600'000};

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
    void changed(const QString &md5); ///< it has come, or failed, or may be asked for again

  private:
    using Key = std::pair<QString, int>; ///< MD5 and height
    struct Request {
        MuseumSkin skin;
        int height = 0;
    };

    struct Failure {
        QDeadlineTimer pause;
        int times = 0;
        bool isOver = false; ///< the pause, and everybody knows
    };

    void takeFailure(const QString &md5);
    void endPauses();
    void startPause();
    void loadSoon();
    void loadNext();
    QCoro::Task<> load(Request request);

    MuseumScreenshotCache &m_cache;
    QCache<Key, QImage> m_images{memoryLimit};
    QHash<QString, Failure> m_failures;
    QTimer m_pause;                ///< until the first of them may be asked for again
    std::vector<Request> m_wanted; ///< the newest is the last
    QSet<Key> m_loading;
    bool m_loadsSoon = false;
    QThreadPool m_pool;
};

} // namespace vantor
