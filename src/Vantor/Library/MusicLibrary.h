#pragma once

#include "LibraryBrowser/LibraryBrowser.h"
#include "MusicLibraryKit/ArtworkCache.h"
#include "Vantor/Library/FolderSource.h"
#include "Vantor/Library/MusicAssistantSource.h"
#include "Vantor/Preferences/PreferencesPage.h"

class QSettings;

namespace vantor {

class LibraryWindow;
class PlayerModel;

/// The program's music sources, of which one is the library at a time, and the window that shows it: the
/// user's music folder and, when there are servers, Music Assistant. The choice is remembered. Nothing is
/// read or connected before somebody wants to see it. Main thread; borrows everything.
class MusicLibrary : public QObject {
    Q_OBJECT

  public:
    MusicLibrary(PlayerModel &model, QSettings &settings, MusicAssistantServers &servers);
    ~MusicLibrary() override;

    [[nodiscard]] FolderSource &folder() { return m_folder; }
    [[nodiscard]] LibraryBrowser &browser() { return m_browser; }
    [[nodiscard]] MusicAssistantServers &servers() { return m_servers; }

    /// Those that there are, one at least.
    [[nodiscard]] QList<LibrarySource *> sources();
    [[nodiscard]] LibrarySource &current();
    /// Whether this program plays what is current, and not the source itself.
    [[nodiscard]] bool playsHere() const { return m_current == &m_folder; }
    void choose(LibrarySource &source);

    /// Connects the source, as far as it has not been.
    void open();
    /// The same, if the source is a server: its speakers may be playing.
    void resume();
    void showWindow();
    /// Looks through the music folder for what has changed.
    void rescan();

  Q_SIGNALS:
    void sourcesChanged(); ///< which there are, their names, or which one is current
    void settingsAsked(vantor::PreferencesPage page);

  private:
    using Receiver = std::function<void(const std::vector<Track> &)>;

    [[nodiscard]] LibrarySource &wanted();
    void follow(LibrarySource &source);
    void settle();
    void takeBackend();
    void takeContent();
    void takeCapabilities();
    void takeActivity();
    void findFiles(const QList<MediaID> &ids, const Receiver &take);

    PlayerModel &m_model;
    QSettings &m_settings;
    MusicAssistantServers &m_servers;
    FolderSource m_folder;
    MusicAssistantSource m_musicAssistant;
    ArtworkCache m_artwork;
    LibraryBrowser m_browser;
    LibrarySource *m_current;
    bool m_isOpen = false;
    std::unique_ptr<LibraryWindow> m_window;
};

} // namespace vantor
