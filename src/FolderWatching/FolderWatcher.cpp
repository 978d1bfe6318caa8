#include "FolderWatching/FolderWatcher.h"

#include "FolderWatching/PendingChanges_p.h"
#include "FolderWatching/WatchTree_p.h"
#include "Platform/NativePath.h"

#include <QLoggingCategory>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

Q_LOGGING_CATEGORY(folderWatcherLog, "co.kelvane.vantor.FolderWatcher")

namespace vantor {

namespace {

using Clock = PendingChanges::Clock;

QString sentence(WatchTree::Gap gap) {
    switch (gap) {
    case WatchTree::Gap::none:
        return {};
    case WatchTree::Gap::unavailable:
        return QStringLiteral("The system offers no more watches on folders, so changes show up after a "
                              "minute.");
    case WatchTree::Gap::tooManyFolders:
        return QStringLiteral("The folder has more subfolders than can be watched, so some changes show up "
                              "after a minute.");
    case WatchTree::Gap::silentFileSystem:
        break;
    }
    return QStringLiteral("The folder is on a file system that does not tell of every change, so some show "
                          "up after a minute.");
}

constexpr double everything = 0; ///< all times are later

/// A little earlier than now: file times come from a coarser clock.
double recently() {
    constexpr std::chrono::milliseconds tick{10};
    const auto now = std::chrono::system_clock::now() - tick;
    return std::chrono::duration<double>(now.time_since_epoch()).count();
}

} // namespace

/// What runs on the watcher's thread. Tells the watcher by queued calls.
class FolderWatcher::Loop {
  public:
    Loop(FolderWatcher &watcher, const QByteArray &root, const Settings &settings)
        : m_watcher(watcher), m_settings(settings), m_tree(root, settings.maxFolders, m_stop),
          m_changes(settings.quiet, settings.longest) {}
    ~Loop() { close(m_wake); }
    Loop(const Loop &) = delete;
    Loop &operator=(const Loop &) = delete;

    void run();
    /// Any thread.
    void stop() {
        m_stop = true;
        eventfd_write(m_wake, 1);
    }

  private:
    void restart(double since);
    void wait() const;
    void look();
    void poll();
    void tellGap();
    void tell();

    FolderWatcher &m_watcher;
    const Settings m_settings;
    const double m_start = recently();
    std::atomic_bool m_stop = false;
    const int m_wake = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    WatchTree m_tree;
    PendingChanges m_changes;
    const WatchTree::Report m_report = [this](const QByteArray &folder) { m_changes.add(folder); };
    Clock::time_point m_nextLook = Clock::now() + m_settings.presence;
    std::optional<Clock::time_point> m_nextPoll;
    WatchTree::Gap m_gap = WatchTree::Gap::none;
};

void FolderWatcher::Loop::run() {
    restart(m_start);
    while (!m_stop) {
        wait();
        look();
    }
}

void FolderWatcher::Loop::restart(double since) {
    const Clock::time_point start = Clock::now();
    m_tree.restart(since, m_report);
    const std::chrono::duration<double, std::milli> time = Clock::now() - start;
    qCInfo(folderWatcherLog, "%zu folders watched after %.1f ms", m_tree.size(), time.count());
}

void FolderWatcher::Loop::wait() const {
    Clock::time_point until = m_nextLook;
    for (const auto &time : {m_nextPoll, m_changes.due()}) {
        if (time)
            until = std::min(until, *time);
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
    // A negative descriptor is passed over.
    std::array<pollfd, 2> descriptors{{{m_wake, POLLIN, 0}, {m_tree.descriptor(), POLLIN, 0}}};
    ::poll(descriptors.data(), descriptors.size(), static_cast<int>(std::max<std::int64_t>(left, 0)));
}

void FolderWatcher::Loop::look() {
    bool isWhole = m_tree.descriptor() < 0 || m_tree.readEvents(m_report);
    if (Clock::now() >= m_nextLook) {
        isWhole = isWhole && m_tree.isRootTheSame();
        m_nextLook = Clock::now() + m_settings.presence;
    }
    if (!isWhole) {
        restart(everything);
        m_changes.addEverything();
    }
    if (m_nextPoll && Clock::now() >= *m_nextPoll)
        poll();
    tellGap();
    if (const auto due = m_changes.due(); due && Clock::now() >= *due)
        tell();
}

void FolderWatcher::Loop::poll() {
    if (m_gap != WatchTree::Gap::silentFileSystem)
        restart(everything); // perhaps there is room for all by now
    m_nextPoll = Clock::now() + m_settings.poll;
    m_changes.addEverything();
    tell();
}

void FolderWatcher::Loop::tellGap() {
    if (m_tree.gap() == m_gap)
        return;
    m_gap = m_tree.gap();
    m_nextPoll.reset();
    if (m_gap != WatchTree::Gap::none)
        m_nextPoll = Clock::now() + m_settings.poll;
    const auto set = [watcher = &m_watcher, reason = sentence(m_gap)] { watcher->setPollingReason(reason); };
    QMetaObject::invokeMethod(&m_watcher, set, Qt::QueuedConnection);
}

void FolderWatcher::Loop::tell() {
    QStringList paths;
    for (const QByteArray &folder : m_changes.take())
        paths.append(NativePath::text(folder));
    const auto emitChanged = [watcher = &m_watcher, paths] { Q_EMIT watcher->changed(paths); };
    QMetaObject::invokeMethod(&m_watcher, emitChanged, Qt::QueuedConnection);
}

FolderWatcher::FolderWatcher(const QString &folder, QObject *parent)
    : FolderWatcher(folder, Settings(), parent) {}

FolderWatcher::FolderWatcher(const QString &folder, const Settings &settings, QObject *parent)
    : QObject(parent), m_loop(std::make_unique<Loop>(*this, NativePath::bytes(folder), settings)),
      m_thread([loop = m_loop.get()] { loop->run(); }) {}

FolderWatcher::~FolderWatcher() {
    m_loop->stop();
    m_thread.join();
}

void FolderWatcher::setPollingReason(const QString &reason) {
    m_pollingReason = reason;
    Q_EMIT pollingChanged();
}

} // namespace vantor
