#pragma once

#include "AudioCore/Queue/Track.h"
#include "LibraryBrowser/LibraryBrowser.h"
#include "LibraryBrowser/LibraryItem.h"
#include "LibraryBrowser/TrackListModel.h"

#include <vector>

class QMenu;

namespace vantor {

/// What can be done with items of the library, for all pages and menus of its window. Main thread; borrows
/// the browser.
class LibraryActions : public QObject {
    Q_OBJECT

  public:
    /// Finds the local files of items and hands them over; not called when it cannot.
    using FindFiles =
        std::function<void(const QList<MediaID> &, std::function<void(const std::vector<Track> &)>)>;

    LibraryActions(LibraryBrowser &browser, FindFiles findFiles, QObject *parent = nullptr);

    [[nodiscard]] LibraryBrowser &browser() { return m_browser; }

    void play(const QList<LibraryItem> &items, PlayMode::Kind how);
    /// The tracks of a list that are selected; a single one of an album plays the album from there on.
    void playTracks(const TrackListModel &list, const QList<LibraryTrack> &selected);
    void appendTracks(const TrackListModel &list, const QList<LibraryTrack> &selected);

    /// Adds the commands for items; nothing for those that are only references.
    void fillMenu(QMenu &menu, const QList<LibraryItem> &items);
    void fillMenu(QMenu &menu, const TrackListModel &list, const QList<LibraryTrack> &selected);

  Q_SIGNALS:
    /// A page of its own, or played when it has none.
    void opened(const vantor::LibraryItem &item);
    void infoAsked(const vantor::Track &track);

  private:
    void addFavorite(QMenu &menu, const QList<LibraryItem> &items);
    void addFiles(QMenu &menu, const QList<MediaID> &ids, bool isTracks);

    LibraryBrowser &m_browser;
    FindFiles m_findFiles;
};

} // namespace vantor
