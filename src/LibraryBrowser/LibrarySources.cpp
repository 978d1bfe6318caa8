#include "LibraryBrowser/LibrarySources_p.h"

namespace vantor::LibrarySources {

namespace {

LibraryItem itemOf(const LibraryArtist &artist) {
    return LibraryItem::artist(artist);
}

template <typename Record>
LibraryItem itemOf(const Record &record) {
    return {record};
}

template <typename Record>
QCoro::Task<Page<LibraryItem>> itemsOf(QCoro::Task<Page<Record>> answer) {
    const Page<Record> page = co_await answer;
    Page<LibraryItem> items{{}, page.offset, page.total, page.nextOffset};
    items.items.reserve(page.items.size());
    for (const Record &record : page.items)
        items.items.append(itemOf(record));
    co_return items;
}

QCoro::Task<Page<LibraryItem>> albumsOf(QCoro::Task<QList<LibraryAlbum>> answer) {
    const QList<LibraryAlbum> albums = co_await answer;
    Page<LibraryItem> items = Page<LibraryItem>::last({});
    for (const LibraryAlbum &album : albums)
        items.items.append({album});
    items.total = static_cast<int>(items.items.size());
    co_return items;
}

QCoro::Task<Page<LibraryTrack>> wholeList(QCoro::Task<QList<LibraryTrack>> answer) {
    const QList<LibraryTrack> tracks = co_await answer;
    co_return Page<LibraryTrack>::last(tracks);
}

} // namespace

Items albums(const Backend &backend) {
    return [backend](PageRequest page) { return itemsOf(backend->albums(std::nullopt, page)); };
}

Items albums(const Backend &backend, const ArtistGroup &artist) {
    return [backend, artist](PageRequest page) { return albumsOf(backend->albums(artist, page.limit)); };
}

Items playlists(const Backend &backend) {
    return [backend](PageRequest page) { return itemsOf(backend->playlists(page)); };
}

Items radios(const Backend &backend) {
    return [backend](PageRequest page) { return itemsOf(backend->radios(page)); };
}

Items favorites(const Backend &backend, MediaKind kind) {
    return [backend, kind](PageRequest page) {
        switch (kind) {
        case MediaKind::artist:
            return itemsOf(backend->favoriteArtists(page));
        case MediaKind::album:
            return itemsOf(backend->favoriteAlbums(page));
        case MediaKind::track:
            return itemsOf(backend->favoriteTracks(page));
        case MediaKind::playlist:
            return itemsOf(backend->favoritePlaylists(page));
        case MediaKind::radio:
            break;
        }
        return itemsOf(backend->favoriteRadios(page));
    };
}

Tracks tracks(const Backend &backend, const MediaID &of) {
    return [backend, of](PageRequest) {
        return wholeList(of.kind == MediaKind::playlist ? backend->tracksOfPlaylist(of)
                                                        : backend->tracks(of));
    };
}

Tracks favoriteTracks(const Backend &backend) {
    return [backend](PageRequest page) { return backend->favoriteTracks(page); };
}

} // namespace vantor::LibrarySources
