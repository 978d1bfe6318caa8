// The hashes of all records: of all their fields, in the order of their declaration.

#include "MusicBackendKit/ArtistGroup.h"
#include "MusicBackendKit/LibraryChange.h"
#include "MusicBackendKit/MediaIDTransfer.h"
#include "MusicBackendKit/NowPlaying.h"
#include "MusicBackendKit/PlayRequest.h"
#include "MusicBackendKit/Recommendations.h"
#include "MusicBackendKit/RemoteQueue.h"
#include "MusicBackendKit/SearchResults.h"
#include "MusicBackendKit/TransportCommand.h"

namespace vantor {

namespace {

template <typename Field>
size_t hashed(size_t seed, const Field &field) noexcept {
    using ::qHash;
    if constexpr (std::is_enum_v<Field>)
        return qHash(static_cast<int>(field), seed);
    else
        return qHash(field, seed);
}

template <typename Field>
size_t hashed(size_t seed, const std::optional<Field> &field) noexcept {
    return field ? hashed(seed, *field) : qHashMulti(seed, -1);
}

template <typename Flag>
size_t hashed(size_t seed, const QFlags<Flag> &flags) noexcept {
    return qHashMulti(seed, flags.toInt());
}

/// Each field's hash is the seed of the next.
template <typename... Fields>
size_t hashAll(size_t seed, const Fields &...fields) noexcept {
    ((seed = hashed(qHashMulti(seed, 0), fields)), ...);
    return seed;
}

} // namespace

size_t qHash(const MediaID &v, size_t seed) noexcept {
    return hashAll(seed, v.kind, v.rawValue);
}

size_t qHash(const ArtworkRef &v, size_t seed) noexcept {
    return hashAll(seed, v.rawValue);
}

size_t qHash(const MediaIDTransfer &v, size_t seed) noexcept {
    return hashAll(seed, v.ids);
}

size_t qHash(const LibraryArtist &v, size_t seed) noexcept {
    return hashAll(seed, v.id, v.name, v.sortName, v.artwork, v.isFavorite);
}

size_t qHash(const LibraryAlbum &v, size_t seed) noexcept {
    return hashAll(seed, v.id, v.title, v.artistID, v.artistName, v.year, v.trackCount, v.artwork,
                   v.isFavorite);
}

size_t qHash(const LibraryTrack &v, size_t seed) noexcept {
    return hashAll(seed, v.id, v.title, v.artistID, v.artistName, v.albumID, v.albumName, v.trackNumber,
                   v.discNumber, v.duration, v.bitrate, v.sampleRate, v.channels, v.artwork, v.isFavorite,
                   v.playlistPosition);
}

size_t qHash(const PlaylistSource &v, size_t seed) noexcept {
    return hashAll(seed, v.kind, v.providerName);
}

size_t qHash(const LibraryPlaylist &v, size_t seed) noexcept {
    return hashAll(seed, v.id, v.name, v.trackCount, v.artwork, v.isEditable, v.isDynamic, v.owner, v.source,
                   v.editing, v.isFavorite, v.libraryID);
}

size_t qHash(const LibraryRadio &v, size_t seed) noexcept {
    return hashAll(seed, v.id, v.name, v.artwork, v.isFavorite);
}

size_t qHash(const SearchResults &v, size_t seed) noexcept {
    return hashAll(seed, v.artists, v.albums, v.tracks);
}

size_t qHash(const RecommendationRow &v, size_t seed) noexcept {
    return hashAll(seed, v.provider, v.itemID, v.name, v.subtitle, v.icon, v.isEnabledByDefault, v.kind,
                   v.providerName);
}

size_t qHash(const RecommendationItem::Other &v, size_t seed) noexcept {
    return hashAll(seed, v.name, v.uri, v.subtitle, v.kind, v.artwork);
}

size_t qHash(const RecommendationItem &v, size_t seed) noexcept {
    return std::visit([seed](const auto &record) { return hashAll(seed, record); }, v.value);
}

size_t qHash(const OutputDevice::ID &v, size_t seed) noexcept {
    return hashAll(seed, v.rawValue);
}

size_t qHash(const OutputDevice &v, size_t seed) noexcept {
    return hashAll(seed, v.id, v.name, v.kind, v.isAvailable, v.isGroup, v.groupableWith);
}

size_t qHash(const NowPlaying &v, size_t seed) noexcept {
    return hashAll(seed, v.output, v.state, v.item, v.title, v.artist, v.album, v.duration, v.elapsed,
                   v.updatedAt, v.volume, v.artwork);
}

size_t qHash(const OutputActivity &v, size_t seed) noexcept {
    return hashAll(seed, v.output, v.name, v.state, v.leader, v.updatedAt);
}

size_t qHash(const RemoteQueueItem &v, size_t seed) noexcept {
    return hashAll(seed, v.id, v.index, v.title, v.artist, v.album, v.duration, v.item, v.isAvailable);
}

size_t qHash(const RemoteQueueSnapshot &v, size_t seed) noexcept {
    return hashAll(seed, v.output, v.items, v.currentIndex, v.total, v.isComplete, v.isShuffled, v.repeats);
}

size_t qHash(const QueueEdit &v, size_t seed) noexcept {
    return hashAll(seed, v.kind, v.index, v.items, v.itemID, v.shift);
}

size_t qHash(const PlayMode &v, size_t seed) noexcept {
    return hashAll(seed, v.kind, v.startIndex);
}

size_t qHash(const PlayRequest &v, size_t seed) noexcept {
    return hashAll(seed, v.items, v.mode);
}

size_t qHash(const TransportCommand &v, size_t seed) noexcept {
    return hashAll(seed, v.kind, v.value, v.isOn);
}

size_t qHash(const LibraryChange &v, size_t seed) noexcept {
    return hashAll(seed, v.kind, v.id, v.isFavorite);
}

size_t qHash(const ArtistGroup &v, size_t seed) noexcept {
    return hashAll(seed, v.id, v.name, v.sortName, v.members, v.artwork);
}

} // namespace vantor
