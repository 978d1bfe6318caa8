#pragma once

#include "LibraryBrowser/LibraryBrowser.h"
#include "MusicBackendKit/RadioURLInput.h"

namespace vantor {

/// What the user changes in the playlists and radio stations of the source that is browsed: one change after
/// another, each with the source that it was asked for. `then` is called when the source has carried it out,
/// unless this object has gone by then; what goes wrong is told by LibraryBrowser::failed(). Open lists
/// follow. Main thread; borrows the browser.
class LibraryEdits : public QObject {
    Q_OBJECT

  public:
    using Then = std::function<void()>;

    explicit LibraryEdits(LibraryBrowser &browser, QObject *parent = nullptr);

    /// Whether a change is under way, so that positions may not be what they were.
    [[nodiscard]] bool isBusy() const { return !m_edits.empty(); }

    /// A playlist with these items in it.
    void createPlaylist(const QString &name, const QList<MediaID> &items,
                        const std::function<void(const LibraryPlaylist &)> &then);
    void renamePlaylist(const MediaID &playlist, const QString &name, const Then &then);
    void deletePlaylist(const MediaID &playlist, const Then &then);
    void add(const QList<MediaID> &items, const MediaID &playlist, const Then &then);
    /// Positions are those of LibraryTrack::playlistPosition.
    void remove(const QList<int> &positions, const MediaID &playlist, const Then &then);
    void move(const MediaID &playlist, int from, int to, const Then &then);
    void importPlaylist(const QString &m3u, const std::function<void(const LibraryPlaylist &)> &then);
    void exportPlaylist(const MediaID &playlist, const std::function<void(const QString &m3u)> &then);
    void addRadio(const RadioURLInput &radio, const Then &then);

  private:
    using Backend = std::shared_ptr<MusicBackend>;
    using Work = std::function<QCoro::Task<>(const Backend &)>;
    struct Edit {
        Backend backend;
        Work work;
        Then then;
    };

    void start(const Work &work, const Then &then);
    void announce(const LibraryChange &change, const Then &then);
    QCoro::Task<> run();

    LibraryBrowser &m_browser;
    std::deque<Edit> m_edits; ///< the first one is being carried out
};

} // namespace vantor
