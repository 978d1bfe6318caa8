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

/// A single track begins its list there.
std::optional<PlayRequest> playRequest(const TrackListModel &list, const QList<LibraryTrack> &selected) {
    const QList<LibraryTrack> tracks = list.tracks();
    const qsizetype place = selected.size() == 1 ? tracks.indexOf(selected.first()) : -1;
    if (place >= 0)
        return PlayRequest::playFrom(place, tracks);
    return PlayRequest::play(idsOf(selected), tracks, list.album());
}

} // namespace

LibraryActions::LibraryActions(LibraryBrowser &browser, FindFiles findFiles, QObject *parent)
    : QObject(parent), m_browser(browser), m_findFiles(std::move(findFiles)), m_playlists(browser),
      m_playing(browser) {}

bool LibraryActions::offersFavorites() const {
    return m_browser.capabilities().testFlag(MusicBackendCapability::favorites);
}

void LibraryActions::toggleFavorite(const LibraryItem &item) {
    m_browser.setFavorite(item.ids(), !item.isFavorite().value_or(false));
}

void LibraryActions::play(const QList<LibraryItem> &items, PlayMode::Kind how) {
    const QList<MediaID> ids = idsOf(items);
    if (!ids.isEmpty())
        m_browser.play({ids, {how, 0}});
}

void LibraryActions::playTracks(const TrackListModel &list, const QList<LibraryTrack> &selected) {
    if (const auto request = playRequest(list, selected))
        m_browser.play(*request);
}

void LibraryActions::appendTracks(const TrackListModel &list, const QList<LibraryTrack> &selected) {
    if (const auto request = PlayRequest::append(idsOf(selected), list.tracks()))
        m_browser.play(*request);
}

void LibraryActions::fillMenu(QMenu &menu, const QList<LibraryItem> &items) {
    if (idsOf(items).isEmpty())
        return;
    menu.addAction(tr("Play"), this, [this, items] { play(items, PlayMode::Kind::replace); });
    menu.addAction(tr("Append"), this, [this, items] { play(items, PlayMode::Kind::append); });
    const MediaKind kind = items.first().kind().value_or(MediaKind::track);
    if (items.size() == 1 && kind != MediaKind::track && kind != MediaKind::radio) {
        menu.addSeparator();
        menu.addAction(tr("Open"), this, [this, items] { Q_EMIT opened(items.first()); });
    }
    addMore(menu, items);
}

void LibraryActions::fillPageMenu(QMenu &menu, const LibraryItem &item) {
    addMore(menu, {item});
}

void LibraryActions::addMore(QMenu &menu, const QList<LibraryItem> &items) {
    menu.addSeparator();
    const auto isStation = [](const LibraryItem &item) { return item.kind() == MediaKind::radio; };
    if (std::ranges::none_of(items, isStation))
        m_playlists.fillTargets(menu, menu.parentWidget()->window(), idsOf(items));
    addFavorite(menu, items);
    const LibraryItem &first = items.first();
    if (const auto *const playlist = std::get_if<LibraryPlaylist>(&first.record);
        playlist && items.size() == 1)
        m_playlists.fillMenu(menu, menu.parentWidget()->window(), *playlist);
    const auto *const track = std::get_if<LibraryTrack>(&first.record);
    menu.addSeparator();
    addFiles(menu, first.ids());
    if (track && items.size() == 1)
        addInfo(menu, *track);
}

void LibraryActions::fillMenu(QMenu &menu, const TrackListModel &list, const QList<LibraryTrack> &selected) {
    if (selected.isEmpty())
        return;
    // The list may have changed by the time that an entry is chosen; the tracks are those of now.
    const auto request = playRequest(list, selected);
    const auto appending = PlayRequest::append(idsOf(selected), list.tracks());
    menu.addAction(tr("Play"), this, [this, request] {
        if (request)
            m_browser.play(*request);
    });
    menu.addAction(tr("Append"), this, [this, appending] {
        if (appending)
            m_browser.play(*appending);
    });
    if (selected.size() == 1)
        addJumps(menu, list, selected.first());
    QList<LibraryItem> items;
    for (const LibraryTrack &track : selected)
        items.append({track});
    addMore(menu, items);
}

void LibraryActions::addJumps(QMenu &menu, const TrackListModel &list, const LibraryTrack &track) {
    menu.addSeparator();
    if (track.albumID && track.albumID != list.album()) {
        LibraryAlbum album;
        album.id = *track.albumID;
        album.title = track.albumName.value_or(QString());
        album.artistID = track.artistID;
        album.artistName = track.artistName;
        album.artwork = track.artwork;
        menu.addAction(tr("Go to Album"), this, [this, album] { Q_EMIT opened({album}); });
    }
    if (track.artistID) {
        LibraryArtist artist;
        artist.id = *track.artistID;
        artist.name = track.artistName;
        menu.addAction(tr("Go to Artist"), this,
                       [this, artist] { Q_EMIT opened(LibraryItem::artist(artist)); });
    }
}

void LibraryActions::addFavorite(QMenu &menu, const QList<LibraryItem> &items) {
    if (!offersFavorites())
        return;
    const bool areAll =
        std::ranges::all_of(items, [](const LibraryItem &item) { return item.isFavorite().value_or(false); });
    menu.addAction(areAll ? tr("Remove from Favourites") : tr("Add to Favourites"), this,
                   [this, ids = idsOf(items), areAll] { m_browser.setFavorite(ids, !areAll); });
}

// A source that plays elsewhere, too, is a server, whose files are not here.
bool LibraryActions::hasFiles() const {
    return m_findFiles && !m_browser.capabilities().testFlag(MusicBackendCapability::remoteOutputs);
}

void LibraryActions::addFiles(QMenu &menu, const QList<MediaID> &ids) {
    if (!hasFiles())
        return;
    menu.addAction(tr("Show in Folder"), this, [this, ids] {
        m_findFiles(ids.mid(0, 1), [](const std::vector<Track> &tracks) {
            if (const QUrl *const file = tracks.empty() ? nullptr : std::get_if<QUrl>(&tracks.front().source))
                showInFolder(*file);
        });
    });
}

// What a file tells itself is more than the library knows.
void LibraryActions::addInfo(QMenu &menu, const LibraryTrack &track) {
    menu.addAction(tr("Info…"), this, [this, track] {
        if (hasFiles()) {
            m_findFiles({track.id}, [this](const std::vector<Track> &tracks) {
                if (!tracks.empty())
                    Q_EMIT infoAsked(tracks.front());
            });
            return;
        }
        Track known;
        known.title = track.title;
        known.artist = track.artistName;
        known.album = track.albumName;
        known.duration = track.duration.value_or(0);
        known.bitrate = track.bitrate;
        known.sampleRate = track.sampleRate;
        known.channels = track.channels;
        known.source = track.id;
        Q_EMIT infoAsked(known);
    });
}

} // namespace vantor
