#include "Vantor/Library/LibraryActions.h"

#include "Vantor/Windows/ShowInFolder.h"

#include <QMenu>

namespace vantor {

namespace {

QList<MediaID> idsOf(const QList<LibraryItem> &items) {
    QList<MediaID> ids;
    for (const LibraryItem &item : items)
        ids += item.ids();
    return ids;
}

QSet<MediaID> idsOf(const QList<LibraryTrack> &tracks) {
    QSet<MediaID> ids;
    for (const LibraryTrack &track : tracks)
        ids.insert(track.id);
    return ids;
}

} // namespace

LibraryActions::LibraryActions(LibraryBrowser &browser, FindFiles findFiles, QObject *parent)
    : QObject(parent), m_browser(browser), m_findFiles(std::move(findFiles)) {}

void LibraryActions::play(const QList<LibraryItem> &items, PlayMode::Kind how) {
    const QList<MediaID> ids = idsOf(items);
    if (!ids.isEmpty())
        m_browser.play({ids, {how, 0}});
}

void LibraryActions::playTracks(const TrackListModel &list, const QList<LibraryTrack> &selected) {
    if (const auto request = PlayRequest::play(idsOf(selected), list.tracks(), list.album()))
        m_browser.play(*request);
}

void LibraryActions::appendTracks(const TrackListModel &list, const QList<LibraryTrack> &selected) {
    if (const auto request = PlayRequest::append(idsOf(selected), list.tracks()))
        m_browser.play(*request);
}

void LibraryActions::fillMenu(QMenu &menu, const QList<LibraryItem> &items) {
    const QList<MediaID> ids = idsOf(items);
    if (ids.isEmpty())
        return;
    menu.addAction(tr("Play"), this, [this, items] { play(items, PlayMode::Kind::replace); });
    menu.addAction(tr("Append to Playlist"), this, [this, items] { play(items, PlayMode::Kind::append); });
    if (items.size() == 1 && items.first().kind() != MediaKind::track &&
        items.first().kind() != MediaKind::radio) {
        menu.addSeparator();
        menu.addAction(tr("Open"), this, [this, items] { Q_EMIT opened(items.first()); });
    }
    addFavorite(menu, items);
    addFiles(menu, ids, false);
}

void LibraryActions::fillMenu(QMenu &menu, const TrackListModel &list, const QList<LibraryTrack> &selected) {
    if (selected.isEmpty())
        return;
    // The list may have changed by the time that an entry is chosen; the tracks are those of now.
    const auto request = PlayRequest::play(idsOf(selected), list.tracks(), list.album());
    const auto appending = PlayRequest::append(idsOf(selected), list.tracks());
    menu.addAction(tr("Play"), this, [this, request] {
        if (request)
            m_browser.play(*request);
    });
    menu.addAction(tr("Append to Playlist"), this, [this, appending] {
        if (appending)
            m_browser.play(*appending);
    });
    QList<LibraryItem> items;
    QList<MediaID> ids;
    for (const LibraryTrack &track : selected) {
        items.append({track});
        ids.append(track.id);
    }
    const LibraryTrack &first = selected.first();
    if (selected.size() == 1 && first.albumID && first.albumID != list.album()) {
        menu.addSeparator();
        LibraryAlbum album;
        album.id = *first.albumID;
        album.title = first.albumName.value_or(QString());
        album.artistID = first.artistID;
        album.artistName = first.artistName;
        album.artwork = first.artwork;
        menu.addAction(tr("Go to Album"), this, [this, album] { Q_EMIT opened({album}); });
    }
    addFavorite(menu, items);
    addFiles(menu, ids, true);
}

void LibraryActions::addFavorite(QMenu &menu, const QList<LibraryItem> &items) {
    if (!m_browser.capabilities().testFlag(MusicBackendCapability::favorites))
        return;
    const bool areAll =
        std::ranges::all_of(items, [](const LibraryItem &item) { return item.isFavorite().value_or(false); });
    menu.addSeparator();
    menu.addAction(areAll ? tr("Remove from Favourites") : tr("Add to Favourites"), this,
                   [this, ids = idsOf(items), areAll] { m_browser.setFavorite(ids, !areAll); });
}

void LibraryActions::addFiles(QMenu &menu, const QList<MediaID> &ids, bool isTracks) {
    // What a server holds is no file of this computer.
    if (!m_findFiles || m_browser.capabilities().testFlag(MusicBackendCapability::remoteOutputs))
        return;
    menu.addSeparator();
    menu.addAction(tr("Show in Folder"), this, [this, ids] {
        m_findFiles(ids.mid(0, 1), [](const std::vector<Track> &tracks) {
            if (const QUrl *const file = tracks.empty() ? nullptr : std::get_if<QUrl>(&tracks.front().source))
                showInFolder(*file);
        });
    });
    if (!isTracks)
        return;
    menu.addAction(tr("File Info…"), this, [this, ids] {
        m_findFiles(ids.mid(0, 1), [this](const std::vector<Track> &tracks) {
            if (!tracks.empty())
                Q_EMIT infoAsked(tracks.front());
        });
    });
}

} // namespace vantor
