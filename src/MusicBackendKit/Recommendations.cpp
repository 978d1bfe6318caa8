#include "MusicBackendKit/Recommendations.h"

namespace vantor {

namespace {

QString nameOf(const LibraryAlbum &album) {
    return album.title;
}
QString nameOf(const LibraryTrack &track) {
    return track.title;
}
template <typename Record>
QString nameOf(const Record &record) {
    return record.name;
}

std::optional<QString> subtitleOf(const LibraryArtist &) {
    return std::nullopt;
}
std::optional<QString> subtitleOf(const LibraryAlbum &album) {
    return album.artistName;
}
std::optional<QString> subtitleOf(const LibraryTrack &track) {
    return track.artistName.isEmpty() ? std::nullopt : std::optional(track.artistName);
}
std::optional<QString> subtitleOf(const LibraryPlaylist &playlist) {
    return playlist.owner;
}
std::optional<QString> subtitleOf(const RecommendationItem::Other &other) {
    return other.subtitle;
}

std::optional<MediaID> mediaIDOf(const RecommendationItem::Other &) {
    return std::nullopt;
}
template <typename Record>
std::optional<MediaID> mediaIDOf(const Record &record) {
    return record.id;
}

} // namespace

QString RecommendationRow::id() const {
    return provider + QChar(0x1f) + itemID; // the ASCII unit separator
}

QString RecommendationItem::id() const {
    const std::optional<MediaID> record = mediaID();
    return record ? record->description() : std::get<Other>(value).uri;
}

std::optional<MediaID> RecommendationItem::mediaID() const {
    return std::visit([](const auto &record) { return mediaIDOf(record); }, value);
}

QString RecommendationItem::name() const {
    return std::visit([](const auto &record) { return nameOf(record); }, value);
}

std::optional<QString> RecommendationItem::subtitle() const {
    return std::visit([](const auto &record) { return subtitleOf(record); }, value);
}

std::optional<MediaKind> RecommendationItem::kind() const {
    const std::optional<MediaID> record = mediaID();
    return record ? record->kind : std::get<Other>(value).kind;
}

std::optional<ArtworkRef> RecommendationItem::artwork() const {
    return std::visit([](const auto &record) { return record.artwork; }, value);
}

bool RecommendationItem::isMapping() const {
    const auto *other = std::get_if<Other>(&value);
    // There is no item for a radio station to become.
    return other && other->kind && *other->kind != MediaKind::radio;
}

} // namespace vantor
