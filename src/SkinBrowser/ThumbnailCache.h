#pragma once

#include "Platform/ThreadSafety.h"

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QSize>
#include <QString>
#include <QThreadPool>

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

namespace vantor {

class ThumbnailFiles;

/// Small pictures of skins: the main window as the skin draws it, in its idle state.
///
/// Made in the background from the archive, kept on disk under the skin's content hash and in memory up to a
/// limit. What was asked for last is made first, since that is what is in view. Main thread; nothing blocks.
/// The destructor waits for the pictures that are being made.
class ThumbnailCache : public QObject {
    Q_OBJECT
  public:
    static constexpr QSize size{275, 116};                        ///< in pixels of the skin; views scale it
    static constexpr qsizetype memoryLimit = qsizetype(64) << 20; ///< bytes

    /// `folder` is made when the first picture is kept. It is trimmed to `diskLimit` bytes, oldest use first,
    /// once in a run.
    explicit ThumbnailCache(const QString &folder, qint64 diskLimit = qint64(512) << 20,
                            QObject *parent = nullptr);
    ~ThumbnailCache() override;

    /// The picture when it is in memory; otherwise none, and ready() or failed() follows, unless it has
    /// failed already. `path` is where the archive lies, in NativePath's form.
    [[nodiscard]] std::optional<QImage> picture(const QString &hash, const QString &path);
    /// Forgets what was asked for and not begun: its rows have left the view.
    void forgetRequests();
    /// Whether the picture is known to be impossible; another path may help.
    [[nodiscard]] bool hasFailed(const QString &hash) const { return m_failures.contains(hash); }

  Q_SIGNALS:
    void ready(const QString &hash);
    void failed(const QString &hash); ///< no picture can be made of this skin; not asked again in this run

  private:
    struct Request {
        QString hash;
        QString path;
    };

    void ask(const Request &request);
    void take(const Request &request, const std::optional<QImage> &picture);

    // On a worker thread.
    void work();
    [[nodiscard]] std::optional<Request> next();
    [[nodiscard]] std::optional<QImage> make(const Request &request);
    void trim();

    const std::unique_ptr<const ThumbnailFiles> m_files;
    const qint64 m_diskLimit;
    QCache<QString, QImage> m_memory{memoryLimit};
    QSet<QString> m_asked;              ///< waiting or being made
    QHash<QString, QString> m_failures; ///< by hash, the path that was tried

    std::atomic_bool m_stop = false;
    std::atomic_bool m_isTrimmed = false;
    Mutex m_mutex;
    std::vector<Request> m_waiting VANTOR_GUARDED_BY(m_mutex); ///< the newest is the last
    int m_workers VANTOR_GUARDED_BY(m_mutex) = 0;
    const int m_maxWorkers;
    QThreadPool m_pool;
};

} // namespace vantor
