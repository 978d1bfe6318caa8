#pragma once

#include "AudioCore/Queue/Track.h"
#include "LibraryBrowser/LibraryItem.h"
#include "LibraryBrowser/LibraryNowPlaying.h"
#include "LibraryBrowser/TrackListModel.h"
#include "Vantor/Library/PlaylistActions.h"

#include <vector>

namespace vantor {

/// What can be done with items of the library, for all pages and menus of its window, and what they are
/// marked with. Main thread; borrows the browser.
class LibraryActions : public QObject {
    Q_OBJECT

  public:
    /// Finds the local files of items and hands them over; not called when it cannot.
    using FindFiles =
        std::function<void(const QList<MediaID> &, std::function<void(const std::vector<Track> &)>)>;

    LibraryActions(LibraryBrowser &browser, FindFiles findFiles, QObject *parent = nullptr);

    [[nodiscard]] LibraryBrowser &browser() { return m_browser; }
    [[nodiscard]] PlaylistActions &playlists() { return m_playlists; }
    [[nodiscard]] const LibraryNowPlaying &playing() const { return m_playing; }
    [[nodiscard]] bool offersFavorites() const;

    void play(const QList<LibraryItem> &items, PlayMode::Kind how);
    /// The tracks of a list that are selected; a single one plays the list from there on.
    void playTracks(const TrackListModel &list, const QList<LibraryTrack> &selected);
    void appendTracks(const TrackListModel &list, const QList<LibraryTrack> &selected);

    /// Makes it a favourite, or none.
    void toggleFavorite(const LibraryItem &item);

    /// Adds the commands for items; nothing for those that are only references. The menu belongs to a window,
    /// over which they ask.
    void fillMenu(QMenu &menu, const QList<LibraryItem> &items);
    /// The same, on the item's own page.
    void fillPageMenu(QMenu &menu, const LibraryItem &item);
    void fillMenu(QMenu &menu, const TrackListModel &list, const QList<LibraryTrack> &selected);

  Q_SIGNALS:
    /// A page of its own, or played when it has none.
    void opened(const vantor::LibraryItem &item);
    void infoAsked(const vantor::Track &track);

  private:
    void addMore(QMenu &menu, const QList<LibraryItem> &items);
    void addFavorite(QMenu &menu, const QList<LibraryItem> &items);
    void addFiles(QMenu &menu, const QList<MediaID> &ids);
    void addInfo(QMenu &menu, const LibraryTrack &track);
    void addJumps(QMenu &menu, const TrackListModel &list, const LibraryTrack &track);
    [[nodiscard]] bool hasFiles() const;

    LibraryBrowser &m_browser;
    FindFiles m_findFiles;
    PlaylistActions m_playlists;
    LibraryNowPlaying m_playing;
};

} // namespace vantor
