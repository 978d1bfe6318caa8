#pragma once

#include "FolderBackendKit/FolderIndex.h"
#include "LibraryBrowser/LibraryBrowser.h"
#include "MusicLibraryKit/ArtworkCache.h"
#include "Vantor/Library/LibraryOutput.h"

#include <memory>

class QSettings;

namespace vantor {

class FolderBackend;
class LibraryWindow;
class PlayerModel;

/// The user's music folder as the program's library, and the window that shows it. Nothing is read before
/// somebody wants to see it. Main thread; borrows the model and the settings.
class MusicLibrary : public QObject {
    Q_OBJECT

  public:
    MusicLibrary(PlayerModel &model, QSettings &settings);
    ~MusicLibrary() override;

    void showWindow();
    /// Looks through the folder for what has changed.
    void rescan();
    [[nodiscard]] bool isScanning() const { return m_status.state == FolderIndexStatus::State::indexing; }
    /// What there is to say about the folder, as a sentence; empty before it was looked at.
    [[nodiscard]] QString status() const;

  Q_SIGNALS:
    void statusChanged();
    void settingsAsked(); ///< those of the library

  private:
    void open();
    void useFolder();
    using Receiver = std::function<void(const std::vector<Track> &)>;

    QCoro::Task<> findFiles(QList<MediaID> ids, Receiver take);
    QCoro::Task<> followStatus();
    QCoro::Task<> reindex();
    void take(const FolderIndexStatus &status);

    PlayerModel &m_model;
    QSettings &m_settings;
    LibraryOutput m_output;
    ArtworkCache m_artwork;
    LibraryBrowser m_browser;
    std::shared_ptr<FolderBackend> m_folder; ///< none before open()
    AsyncStream<FolderIndexStatus> m_updates;
    FolderIndexStatus m_status;
    std::unique_ptr<LibraryWindow> m_window;
};

} // namespace vantor
