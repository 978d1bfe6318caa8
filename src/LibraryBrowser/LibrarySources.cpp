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

/// A walk over all albums that goes on where the page before ended.
struct TrackWalk {
    QList<LibraryAlbum> albums{}; ///< whose tracks are still to be asked for
    std::optional<PageRequest> nextAlbums = PageRequest::first();
    QList<LibraryTrack> found{}; ///< not handed over yet: the page may fail, and is tried again
};

QCoro::Task<Page<LibraryTrack>> walkOn(Backend backend, std::shared_ptr<TrackWalk> walk,
                                       PageRequest request) {
    while (walk->found.size() < request.limit) {
        if (walk->albums.isEmpty()) {
            if (!walk->nextAlbums)
                break;
            const PageRequest wanted = *walk->nextAlbums;
            const Page<LibraryAlbum> page = co_await backend->albums(std::nullopt, wanted);
            const bool advances = page.nextOffset && *page.nextOffset > wanted.offset;
            walk->nextAlbums = advances ? page.next(wanted.limit) : std::nullopt;
            walk->albums = page.items;
            continue;
        }
        const MediaID album = walk->albums.first().id;
        const QList<LibraryTrack> tracks = co_await backend->tracks(album);
        walk->albums.removeFirst();
        walk->found += tracks;
    }
    Page<LibraryTrack> page{std::exchange(walk->found, {}), request.offset, {}, {}};
    if (!walk->albums.isEmpty() || walk->nextAlbums)
        page.nextOffset = request.offset + static_cast<int>(page.items.size());
    co_return page;
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

Tracks allTracks(const Backend &backend) {
    // From the beginning it is another walk: one that nobody waits for any more may still be under way.
    const auto present = std::make_shared<std::shared_ptr<TrackWalk>>();
    return [backend, present](PageRequest page) {
        if (page.offset == 0)
            *present = std::make_shared<TrackWalk>();
        return walkOn(backend, *present, page);
    };
}

Tracks favoriteTracks(const Backend &backend) {
    return [backend](PageRequest page) { return backend->favoriteTracks(page); };
}

} // namespace vantor::LibrarySources
