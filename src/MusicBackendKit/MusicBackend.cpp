#include "MusicBackendKit/MusicBackend.h"

#include "MusicBackendKit/MusicBackendError.h"

#include <limits>
#include <vector>

namespace vantor {

namespace {

/// The default of an operation: fails for the lack of a capability.
template <typename Result>
QCoro::Task<Result> unsupported(MusicBackendCapability needed) {
    co_await std::suspend_never(); // makes a coroutine of it, so that the task holds the error
    throw MusicBackendError::unsupported(needed);
}

} // namespace

QCoro::Task<Page<LibraryRadio>> MusicBackend::radios(PageRequest) {
    return unsupported<Page<LibraryRadio>>(MusicBackendCapability::radio);
}

QCoro::Task<QList<RecommendationRow>> MusicBackend::recommendationRows() {
    return unsupported<QList<RecommendationRow>>(MusicBackendCapability::recommendations);
}

QCoro::Task<QList<RecommendationItem>> MusicBackend::recommendationItems(RecommendationRow) {
    return unsupported<QList<RecommendationItem>>(MusicBackendCapability::recommendations);
}

QCoro::Task<> MusicBackend::setFavorite(MediaID, bool) {
    return unsupported<void>(MusicBackendCapability::favorites);
}

QCoro::Task<std::optional<int>> MusicBackend::favoriteCount(MediaKind) {
    return unsupported<std::optional<int>>(MusicBackendCapability::favorites);
}

QCoro::Task<Page<LibraryArtist>> MusicBackend::favoriteArtists(PageRequest) {
    return unsupported<Page<LibraryArtist>>(MusicBackendCapability::favorites);
}

QCoro::Task<Page<LibraryAlbum>> MusicBackend::favoriteAlbums(PageRequest) {
    return unsupported<Page<LibraryAlbum>>(MusicBackendCapability::favorites);
}

QCoro::Task<Page<LibraryTrack>> MusicBackend::favoriteTracks(PageRequest) {
    return unsupported<Page<LibraryTrack>>(MusicBackendCapability::favorites);
}

QCoro::Task<Page<LibraryPlaylist>> MusicBackend::favoritePlaylists(PageRequest) {
    return unsupported<Page<LibraryPlaylist>>(MusicBackendCapability::favorites);
}

QCoro::Task<Page<LibraryRadio>> MusicBackend::favoriteRadios(PageRequest) {
    return unsupported<Page<LibraryRadio>>(MusicBackendCapability::favorites);
}

QCoro::Task<LibraryPlaylist> MusicBackend::createPlaylist(QString) {
    return unsupported<LibraryPlaylist>(MusicBackendCapability::playlistEditing);
}

QCoro::Task<> MusicBackend::renamePlaylist(MediaID, QString) {
    return unsupported<void>(MusicBackendCapability::playlistEditing);
}

QCoro::Task<> MusicBackend::deletePlaylist(MediaID) {
    return unsupported<void>(MusicBackendCapability::playlistEditing);
}

QCoro::Task<> MusicBackend::add(QList<MediaID>, MediaID) {
    return unsupported<void>(MusicBackendCapability::playlistEditing);
}

QCoro::Task<> MusicBackend::remove(QList<int>, MediaID) {
    return unsupported<void>(MusicBackendCapability::playlistEditing);
}

QCoro::Task<> MusicBackend::movePlaylistTrack(MediaID, int, int) {
    return unsupported<void>(MusicBackendCapability::playlistEditing);
}

QCoro::Task<LibraryPlaylist> MusicBackend::importPlaylist(QString) {
    return unsupported<LibraryPlaylist>(MusicBackendCapability::playlistEditing);
}

QCoro::Task<QString> MusicBackend::exportPlaylist(MediaID) {
    return unsupported<QString>(MusicBackendCapability::playlists);
}

QCoro::Task<LibraryRadio> MusicBackend::addRadio(QString, QString) {
    return unsupported<LibraryRadio>(MusicBackendCapability::radio);
}

QCoro::Task<QList<RemoteQueueItem>> MusicBackend::queueItems(OutputDevice::ID, PageRequest) {
    return unsupported<QList<RemoteQueueItem>>(MusicBackendCapability::remoteOutputs);
}

QCoro::Task<> MusicBackend::edit(QueueEdit, OutputDevice::ID) {
    return unsupported<void>(MusicBackendCapability::queueEditing);
}

QCoro::Task<> MusicBackend::saveQueueAsPlaylist(OutputDevice::ID, QString) {
    return unsupported<void>(MusicBackendCapability::queueEditing);
}

QCoro::Task<> MusicBackend::favoriteCurrentTrack(OutputDevice::ID) {
    return unsupported<void>(MusicBackendCapability::favorites);
}

QCoro::Task<> MusicBackend::transfer(OutputDevice::ID, OutputDevice::ID, bool) {
    return unsupported<void>(MusicBackendCapability::remoteOutputs);
}

QCoro::Task<> MusicBackend::setGroupMembers(OutputDevice::ID, QList<OutputDevice::ID>,
                                            QList<OutputDevice::ID>) {
    return unsupported<void>(MusicBackendCapability::remoteOutputs);
}

QCoro::Task<RecommendationItem> MusicBackend::resolve(RecommendationItem item) {
    co_return item;
}

AsyncStream<LibraryChange> MusicBackend::libraryChanges() {
    return {};
}

std::optional<OutputControls> MusicBackend::controls(const OutputDevice::ID &) const {
    return std::nullopt;
}

QCoro::Task<> MusicBackend::setMuted(OutputDevice::ID, bool) {
    return unsupported<void>(MusicBackendCapability::remoteOutputs);
}

AsyncStream<QList<OutputActivity>> MusicBackend::activities() {
    return {};
}

AsyncStream<RemoteQueueSnapshot> MusicBackend::queue(OutputDevice::ID on) {
    auto [producer, stream] = AsyncStream<RemoteQueueSnapshot>::make(latestValueOnly);
    producer.yield(RemoteQueueSnapshot::empty(on));
    return std::move(stream);
}

QCoro::Task<QList<LibraryAlbum>> MusicBackend::allAlbums(MediaID artist, int pageSize, int limit) {
    const auto self = shared_from_this();
    QList<LibraryAlbum> all;
    std::optional<PageRequest> request = PageRequest{0, pageSize};
    while (request && all.size() < limit) {
        const Page<LibraryAlbum> page = co_await albums(artist, *request);
        all += page.items;
        // A source that does not get on would never end.
        const bool advances = page.nextOffset && *page.nextOffset > request->offset;
        request = advances ? page.next(pageSize) : std::nullopt;
    }
    if (all.size() > limit)
        all.resize(limit);
    co_return all;
}

QCoro::Task<QList<LibraryAlbum>> MusicBackend::albums(ArtistGroup group, int pageSize) {
    std::vector<QCoro::Task<QList<LibraryAlbum>>> requests; // which run from now on
    for (const MediaID &member : group.memberIDs())
        requests.push_back(allAlbums(member, pageSize, std::numeric_limits<int>::max()));
    QList<LibraryAlbum> all;
    for (const auto &request : requests) {
        const QList<LibraryAlbum> found = co_await request;
        all += found;
    }
    co_return all;
}

} // namespace vantor
