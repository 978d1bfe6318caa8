#pragma once

#include "MusicBackendKit/MusicBackend.h"

#include <QCache>
#include <QImage>
#include <QObject>
#include <QThreadPool>

#include <chrono>
#include <functional>

namespace vantor {

/// The pictures of a music source, in memory and on disk, for views that paint them. Main thread; decoding,
/// scaling and files are worker threads' business.
///
/// A view paints what image() returns and repaints an item on imageChanged(). What is asked for last is
/// loaded first; a request that is not repeated for a while lapses instead of being loaded, because its item
/// has been scrolled away.
class ArtworkCache : public QObject {
    Q_OBJECT

  public:
    struct Limits {
        qint64 memoryBytes = 64LL << 20;
        qint64 diskBytes = 256LL << 20; ///< passed by a sixteenth at most before the oldest files go
        std::chrono::milliseconds failureMemory{60'000}; ///< how long a source is not asked again
        std::chrono::milliseconds patience{2'000};       ///< after which a request lapses
    };
    /// How many pictures are asked for at the same time.
    static constexpr int mostLoads = 4;
    /// The largest side that is kept, in pixels.
    static constexpr int largestSide = 2048;

    using Clock = std::chrono::steady_clock;

    /// `folder` is the cache's alone; made when needed.
    ArtworkCache(QString folder, Limits limits, std::function<Clock::time_point()> now = &Clock::now);
    /// Waits for files that are being read or written; not for the source.
    ~ArtworkCache() override;

    /// Whose pictures are asked for from now on; none without a backend. Pictures of several sources are
    /// kept.
    void setBackend(std::shared_ptr<MusicBackend> backend);

    /// The picture of the present source, at most `pixels` wide and high. A null image when there is none, or
    /// none yet: then it is loaded, once for all who ask. Emits nothing before it returns.
    [[nodiscard]] QImage image(const ArtworkRef &ref, int pixels);

  Q_SIGNALS:
    /// The picture has come, or a request for it has lapsed: whoever still shows it asks again.
    void imageChanged(const vantor::ArtworkRef &ref, int pixels);

  private:
    struct Key {
        QString source;
        ArtworkRef ref;
        int pixels = 0;

        bool operator==(const Key &) const = default;
        friend size_t qHash(const Key &key, size_t seed = 0) noexcept {
            return qHashMulti(seed, key.source, key.ref, key.pixels);
        }
    };
    [[nodiscard]] QString pathOf(const Key &key) const;
    [[nodiscard]] bool hasFailed(const Key &key) const;
    void wait(const Key &key);
    void loadSoon();
    void loadNext();
    QCoro::Task<> load(Key key);
    void finish(const Key &key, const QImage &image);
    void countWritten(qint64 bytes);

    const QString m_folder;
    const Limits m_limits;
    const std::function<Clock::time_point()> m_now;
    std::shared_ptr<MusicBackend> m_backend;
    QCache<Key, QImage> m_images;
    QHash<Key, Clock::time_point> m_failures; ///< until when the source is not asked again
    QHash<Key, Clock::time_point> m_waiting;  ///< when they were asked for last
    QSet<Key> m_loading;
    bool m_loadsSoon = false;
    qint64 m_untrimmed; ///< bytes written since the folder was looked through
    QThreadPool m_pool;
};

} // namespace vantor
