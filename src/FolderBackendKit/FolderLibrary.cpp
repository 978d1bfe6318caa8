#include "FolderBackendKit/FolderLibrary.h"

#include "FolderBackendKit/FolderWalk.h"
#include "Platform/TextFolding.h"

#include <algorithm>

namespace vantor {

namespace {

/// The part of `count` items that a request asks for.
std::pair<int, int> stretch(PageRequest request, int count) {
    const int first = std::clamp(request.offset, 0, count);
    return {first, first + std::clamp(request.limit, 0, count - first)};
}

/// `item(i)` is the i-th of `count` items.
template <class Item, class ItemAt>
Page<Item> pageOf(PageRequest request, int count, const ItemAt &item) {
    const auto [first, last] = stretch(request, count);
    QList<Item> items;
    items.reserve(last - first);
    for (int i = first; i < last; ++i)
        items.append(item(i));
    return Page<Item>::make(items, {first, request.limit}, count);
}

MediaID idOf(const FolderTrack &track) {
    return {MediaKind::track, FolderWalk::identifier(track.relativePath)};
}

} // namespace

FolderLibrary::FolderLibrary(FolderIndex index) : m_index(std::move(index)) {
    std::vector<std::pair<QString, int>> titles;
    for (const StoredAlbum &album : m_index.albums) {
        const int place = static_cast<int>(titles.size());
        titles.emplace_back(TextFolding::folded(album.title), place);
        Range &albums = m_artists[album.artistID->rawValue];
        albums = {albums.last == 0 ? place : albums.first, place + 1};
    }
    std::ranges::sort(titles);
    for (const auto &[title, place] : titles)
        m_albumsByTitle.push_back(place);
    m_artistOf.resize(m_index.albums.size());
    for (std::size_t i = 0; i < m_index.artists.size(); ++i) {
        const Range albums = m_artists.value(m_index.artists[i].id.rawValue);
        std::fill(m_artistOf.begin() + albums.first, m_artistOf.begin() + albums.last, static_cast<int>(i));
    }
    const int count = static_cast<int>(m_index.tracks.size());
    m_albums.reserve(static_cast<qsizetype>(m_index.albums.size()));
    m_tracks.reserve(m_index.tracks.size());
    for (int place = 0, first = 0; place < count; ++place) {
        const FolderTrack &track = m_index.tracks[static_cast<std::size_t>(place)];
        m_tracks.emplace_back(qHash(FolderWalk::identifier(track.relativePath)), place);
        const bool isLast =
            place + 1 == count || m_index.tracks[static_cast<std::size_t>(place) + 1].album != track.album;
        if (isLast)
            m_albums.insert(albumOf(track).id.rawValue, {std::exchange(first, place + 1), place + 1});
    }
    std::ranges::sort(m_tracks);
}

void FolderLibrary::prepareSearch() const {
    std::call_once(m_searchOnce, [this] {
        indexWords();
        m_isSearchable = true;
    });
}

int FolderLibrary::placeOf(const QString &trackID) const {
    const auto same = std::ranges::equal_range(m_tracks, qHash(trackID), {}, &std::pair<size_t, int>::first);
    const auto found = std::ranges::find_if(same, [&](const auto &entry) {
        const FolderTrack &track = m_index.tracks[static_cast<std::size_t>(entry.second)];
        return FolderWalk::identifier(track.relativePath) == trackID;
    });
    return found == same.end() ? -1 : found->second;
}

void FolderLibrary::indexWords() const {
    for (const StoredArtist &artist : m_index.artists)
        m_artistWords.add(artist.name);
    for (const StoredAlbum &album : m_index.albums)
        m_albumWords.add(album.title);
    for (const FolderTrack &track : m_index.tracks) {
        m_trackWords.add(track.library.title);
        m_trackArtistWords.add(track.library.artistName.value_or(QString()));
    }
    m_artistWords.finish();
    m_albumWords.finish();
    m_trackWords.finish();
    m_trackArtistWords.finish();
}

Page<LibraryArtist> FolderLibrary::artists(PageRequest page) const {
    const auto artist = [this](int place) { return m_index.artists[static_cast<std::size_t>(place)]; };
    return pageOf<LibraryArtist>(page, static_cast<int>(m_index.artists.size()), artist);
}

Page<LibraryAlbum> FolderLibrary::albums(PageRequest page) const {
    const auto album = [this](int at) {
        return m_index.albums[static_cast<std::size_t>(m_albumsByTitle[static_cast<std::size_t>(at)])];
    };
    return pageOf<LibraryAlbum>(page, static_cast<int>(m_albumsByTitle.size()), album);
}

std::optional<Page<LibraryAlbum>> FolderLibrary::albums(const MediaID &artist, PageRequest page) const {
    const auto found = m_artists.constFind(artist.rawValue);
    if (artist.kind != MediaKind::artist || found == m_artists.cend())
        return std::nullopt;
    const auto album = [&](int at) { return m_index.albums[static_cast<std::size_t>(found->first + at)]; };
    return pageOf<LibraryAlbum>(page, found->last - found->first, album);
}

std::optional<QList<LibraryTrack>> FolderLibrary::tracks(const MediaID &album) const {
    if (album.kind != MediaKind::album || !m_albums.contains(album.rawValue))
        return std::nullopt;
    QList<LibraryTrack> list;
    for (const int place : places(album))
        list.append(track(place));
    return list;
}

std::vector<int> FolderLibrary::places(const MediaID &item) const {
    Range range;
    if (item.kind == MediaKind::track) {
        const int place = placeOf(item.rawValue);
        range = place < 0 ? Range() : Range{place, place + 1};
    } else if (item.kind == MediaKind::album) {
        range = m_albums.value(item.rawValue);
    } else if (item.kind == MediaKind::artist) {
        const Range albums = m_artists.value(item.rawValue);
        // Tracks follow each other in the order of the albums, none of which is empty.
        const auto album = &FolderTrack::album;
        const auto first = std::ranges::lower_bound(m_index.tracks, albums.first, {}, album);
        const auto last = std::ranges::lower_bound(m_index.tracks, albums.last, {}, album);
        range = {static_cast<int>(first - m_index.tracks.begin()),
                 static_cast<int>(last - m_index.tracks.begin())};
    }
    std::vector<int> list;
    for (int place = range.first; place < range.last; ++place)
        list.push_back(place);
    return list;
}

LibraryTrack FolderLibrary::track(int place) const {
    const FolderTrack &track = m_index.tracks[static_cast<std::size_t>(place)];
    const StoredAlbum &album = albumOf(track);
    const StoredTrack &known = track.library;
    return {.id = idOf(track),
            .title = known.title,
            .artistID = known.artistName ? std::nullopt : album.artistID,
            .artistName = known.artistName ? *known.artistName : album.artistName.value_or(QString()),
            .albumID = album.id,
            .albumName = album.title,
            .trackNumber = known.trackNumber,
            .discNumber = known.discNumber,
            .duration = known.duration,
            .bitrate = known.bitrate,
            .sampleRate = known.sampleRate,
            .channels = known.channels,
            .artwork = album.artwork,
            .isFavorite = {},
            .playlistPosition = {}};
}

std::optional<MediaID> FolderLibrary::trackAt(const QString &relativePath) const {
    const QString id = FolderWalk::identifier(relativePath);
    return placeOf(id) >= 0 ? std::optional(MediaID{MediaKind::track, id}) : std::nullopt;
}

} // namespace vantor
