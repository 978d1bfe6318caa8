#pragma once

#include "FolderBackendKit/FolderIndex.h"
#include "Vantor/Library/LibraryOutput.h"
#include "Vantor/Library/LibrarySource.h"

namespace vantor {

class FolderBackend;
class PlayerModel;
class Preferences;

/// The user's music folder. Main thread; borrows the model.
class FolderSource : public LibrarySource {
    Q_OBJECT

  public:
    explicit FolderSource(PlayerModel &model);
    ~FolderSource() override;

    [[nodiscard]] QString key() const override;
    [[nodiscard]] QString name() const override;
    void open() override;
    void close() override;
    void retry() override {}
    [[nodiscard]] QString activity() const override;

    /// Looks through the folder for what has changed, also while it is closed. Failures are told by failed().
    QCoro::Task<> rescan();
    [[nodiscard]] bool isScanning() const { return m_status.state == FolderIndexStatus::State::indexing; }
    /// What there is to say about the folder, as a sentence; empty before it was looked at.
    [[nodiscard]] QString status() const;

    /// Finds the files of items and hands them over, unless that fails.
    QCoro::Task<> findFiles(QList<MediaID> ids, std::function<void(const std::vector<Track> &)> take);

  Q_SIGNALS:
    void failed(const QString &sentence);

  private:
    void use();
    void leave();
    QCoro::Task<> followStatus();
    void take(const FolderIndexStatus &status);
    [[nodiscard]] QString unreadable() const;

    Preferences &m_preferences;
    LibraryOutput m_output;
    bool m_isOpen = false;
    std::shared_ptr<FolderBackend> m_folder; ///< none while it is closed and not scanned
    AsyncStream<FolderIndexStatus> m_updates;
    FolderIndexStatus m_status;
};

} // namespace vantor
