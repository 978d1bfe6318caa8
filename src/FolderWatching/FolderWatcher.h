#pragma once

#include <QObject>
#include <QStringList>

#include <chrono>
#include <memory>
#include <thread>

namespace vantor {

/// Tells when something below a folder has changed: files that were added, removed, renamed, rewritten or
/// touched, and folders with all that is in them.
///
/// Every subfolder is watched, new ones too; links to folders and what is hidden (a name that begins with a
/// dot) are passed over. The folder itself may be a link, may be missing and may go and come back; both are
/// changes. Where the system cannot tell of every change, changed() comes periodically as well.
///
/// Main thread. Everything is done on a thread of the watcher's own, so that neither a large tree nor a storm
/// of changes holds the main thread up; the destructor waits for the folder that is being listed.
///
/// Not QFileSystemWatcher, which says nothing of a file that is rewritten in place unless every file is
/// watched, knows no subfolders and sets its watches up on the caller's thread: 11,000 folders take that one
/// 0.4 s to list and watch. Here they take 0.2 s of another thread, and 3 MiB.
class FolderWatcher : public QObject {
    Q_OBJECT
  public:
    struct Settings {
        std::chrono::milliseconds quiet{1000};     ///< after the last change until it is told
        std::chrono::milliseconds longest{10'000}; ///< after the first one, whatever still goes on
        std::chrono::milliseconds poll{60'000};    ///< between signals where changes go unnoticed
        std::chrono::milliseconds presence{3000};  ///< between looks whether the folder has gone or come back
        int maxFolders = 100'000;                  ///< watched at most
    };

    /// Local path in NativePath's form, absolute.
    explicit FolderWatcher(const QString &folder, QObject *parent = nullptr);
    FolderWatcher(const QString &folder, const Settings &settings, QObject *parent = nullptr);
    ~FolderWatcher() override;

    /// Whether there may be changes that only the periodic signals tell.
    [[nodiscard]] bool isPolling() const { return !m_pollingReason.isEmpty(); }
    /// Why, as a sentence for the user; empty unless polling.
    [[nodiscard]] const QString &pollingReason() const { return m_pollingReason; }

  Q_SIGNALS:
    /// The folders whose entries changed, some of which may be gone by now. None: any of them, because there
    /// are too many or it is not known which.
    void changed(const QStringList &directories);
    void pollingChanged();

  private:
    class Loop;

    void setPollingReason(const QString &reason);

    QString m_pollingReason;
    std::unique_ptr<Loop> m_loop;
    std::thread m_thread;
};

} // namespace vantor
