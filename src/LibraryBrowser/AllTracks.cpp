#include "LibraryBrowser/AllTracks_p.h"

#include <QCoroFuture>
#include <QPromise>
#include <QScopeGuard>

#include <algorithm>
#include <utility>
#include <vector>

namespace vantor {

namespace {

constexpr int mostTracks = 1'000'000'000; ///< whatever albums tell

}

struct AllTracks::Walk {
    QList<LibraryAlbum> albums{}; ///< when counted, all; else those whose tracks are still to be asked for
    std::optional<PageRequest> nextAlbums = PageRequest::first();
    std::vector<int> ends{}; ///< when counted: the place behind the last track of each album
    bool isCounted = false;
    bool isUncountable = false;  ///< an album does not tell how many tracks it has
    QFuture<void> counting{};    ///< while it is under way
    QList<LibraryTrack> found{}; ///< not handed over yet: the page may fail, and is tried again
};

AllTracks::AllTracks(std::shared_ptr<MusicBackend> backend)
    : m_backend(std::move(backend)), m_walk(std::make_shared<Walk>()) {}

void AllTracks::renew() {
    m_walk = std::make_shared<Walk>();
}

QCoro::Task<Page<LibraryTrack>> AllTracks::page(PageRequest request) {
    const auto self = shared_from_this();
    if (request.offset == 0 && m_walk->isUncountable) // which goes one way only
        renew();
    const std::shared_ptr<Walk> walk = m_walk;
    while (walk->counting.isRunning()) {
        const QFuture<void> counting = walk->counting;
        co_await counting;
    }
    if (!walk->isCounted && !walk->isUncountable)
        co_await count(walk);
    Page<LibraryTrack> page;
    if (walk->isCounted)
        page = co_await pageAt(walk, request);
    else
        page = co_await nextPage(walk, request);
    co_return page;
}

QCoro::Task<> AllTracks::count(std::shared_ptr<Walk> walk) {
    QPromise<void> counting;
    counting.start();
    walk->counting = counting.future();
    const auto end = qScopeGuard([&] { counting.finish(); });
    while (walk->nextAlbums) {
        const PageRequest wanted = *walk->nextAlbums;
        const Page<LibraryAlbum> page = co_await m_backend->albums(std::nullopt, wanted);
        // A source that does not get on would never end.
        const bool advances = page.nextOffset && *page.nextOffset > wanted.offset;
        walk->nextAlbums = advances ? page.next(wanted.limit) : std::nullopt;
        walk->albums += page.items;
        for (const LibraryAlbum &album : page.items) {
            if (!album.trackCount) {
                walk->isUncountable = true;
                co_return;
            }
            const int before = walk->ends.empty() ? 0 : walk->ends.back();
            walk->ends.push_back(before + std::clamp(*album.trackCount, 0, mostTracks - before));
        }
    }
    walk->isCounted = true;
}

QCoro::Task<Page<LibraryTrack>> AllTracks::pageAt(std::shared_ptr<Walk> walk, PageRequest request) {
    const std::vector<int> &ends = walk->ends;
    const int total = ends.empty() ? 0 : ends.back();
    const int end = std::min(request.offset + request.limit, total);
    auto album = static_cast<std::size_t>(std::ranges::upper_bound(ends, request.offset) - ends.begin());
    QList<LibraryTrack> tracks;
    for (int at = request.offset; at < end; ++album) {
        const int first = album == 0 ? 0 : ends[album - 1];
        const MediaID id = walk->albums[static_cast<qsizetype>(album)].id;
        const QList<LibraryTrack> all = co_await m_backend->tracks(id);
        // As many as it told of, or the pages would not fit together.
        const int last = std::min({static_cast<int>(all.size()), ends[album] - first, end - first});
        tracks += all.mid(at - first, std::max(0, last - (at - first)));
        at = ends[album];
    }
    co_return Page<LibraryTrack>::make(tracks, {request.offset, end - request.offset}, total);
}

QCoro::Task<Page<LibraryTrack>> AllTracks::nextPage(std::shared_ptr<Walk> walk, PageRequest request) {
    while (walk->found.size() < request.limit) {
        if (walk->albums.isEmpty()) {
            if (!walk->nextAlbums)
                break;
            const PageRequest wanted = *walk->nextAlbums;
            const Page<LibraryAlbum> page = co_await m_backend->albums(std::nullopt, wanted);
            const bool advances = page.nextOffset && *page.nextOffset > wanted.offset;
            walk->nextAlbums = advances ? page.next(wanted.limit) : std::nullopt;
            walk->albums = page.items;
            continue;
        }
        const MediaID album = walk->albums.first().id;
        const QList<LibraryTrack> tracks = co_await m_backend->tracks(album);
        walk->albums.removeFirst();
        walk->found += tracks;
    }
    Page<LibraryTrack> page{std::exchange(walk->found, {}), request.offset, {}, {}};
    if (!walk->albums.isEmpty() || walk->nextAlbums)
        page.nextOffset = request.offset + static_cast<int>(page.items.size());
    co_return page;
}

} // namespace vantor
