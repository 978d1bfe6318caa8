#pragma once

#include <QByteArray>

#include <sys/types.h>

#include <atomic>
#include <functional>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

struct inotify_event;

namespace vantor {

/// The system's watches on a folder and all its subfolders. One thread, but for `stop`, which ends a listing.
class WatchTree {
  public:
    /// Why some changes go unnoticed.
    enum class Gap { none, unavailable, tooManyFolders, silentFileSystem };
    /// Takes the path of a folder whose entries changed.
    using Report = std::function<void(const QByteArray &folder)>;

    WatchTree(const QByteArray &root, int maxFolders, const std::atomic_bool &stop);
    ~WatchTree();
    WatchTree(const WatchTree &) = delete;
    WatchTree &operator=(const WatchTree &) = delete;

    /// Watches everything anew. Reports the folders that have changed since `since` (seconds since 1970), for
    /// what happened in them before they were watched.
    void restart(double since, const Report &report);

    /// Readable when there are events; −1 when the system gives none.
    [[nodiscard]] int descriptor() const { return m_descriptor; }
    /// Reports what some of the waiting events say, and watches the folders that are new. Returns false when
    /// the tree has to be watched anew, because events were lost or the root has gone.
    [[nodiscard]] bool readEvents(const Report &report);

    /// False when the root has gone, come back, been replaced or become readable since the watches were set.
    [[nodiscard]] bool isRootTheSame() const;
    [[nodiscard]] std::size_t size() const { return m_watches.size(); }
    [[nodiscard]] Gap gap() const { return m_gap; }

  private:
    using Identity = std::pair<dev_t, ino_t>;

    [[nodiscard]] std::optional<Identity> identity() const;
    void close();
    void watch(const QByteArray &folder, double since, const Report &report);
    /// False when it cannot be watched.
    [[nodiscard]] bool add(const QByteArray &folder);
    [[nodiscard]] std::vector<QByteArray> subfolders(const QByteArray &folder, double since,
                                                     const Report &report);
    void forget(const QByteArray &folder);
    void forget(int watch);
    void handle(const inotify_event &event, const QByteArray &name, const Report &report);

    const QByteArray m_root;
    const std::size_t m_maxFolders;
    const std::atomic_bool &m_stop;
    int m_descriptor = -1;
    Gap m_gap = Gap::none;
    bool m_isLost = false;
    std::optional<Identity> m_identity;
    std::map<QByteArray, int> m_watches; ///< by path, so that a folder's subfolders follow each other
    std::unordered_map<int, QByteArray> m_paths;
};

} // namespace vantor
