#pragma once

#include "MusicBackendKit/ArtistGroup.h"
#include "MusicBackendKit/Recommendations.h"

#include <variant>

namespace vantor {

/// Anything that a list of the library shows: one record, or the artists that are one to the user. A value;
/// any thread.
struct LibraryItem {
    std::variant<ArtistGroup, LibraryAlbum, LibraryTrack, LibraryPlaylist, LibraryRadio,
                 RecommendationItem::Other>
        record;

    [[nodiscard]] static LibraryItem artist(const LibraryArtist &artist);
    [[nodiscard]] static LibraryItem recommended(const RecommendationItem &item);

    /// What it is; none for something that the source has no record for.
    [[nodiscard]] std::optional<MediaKind> kind() const;
    /// Every artist of a group; none for something that the source has no record for.
    [[nodiscard]] QList<MediaID> ids() const;
    [[nodiscard]] QString title() const;
    /// Who it is by, or what there is to say about it; may be empty.
    [[nodiscard]] QString subtitle() const;
    [[nodiscard]] std::optional<ArtworkRef> artwork() const;
    /// Of a group: of any of its members. None when the source does not tell.
    [[nodiscard]] std::optional<bool> isFavorite() const;
    /// True when this is about the item and changes it.
    bool setFavorite(const MediaID &id, std::optional<bool> isFavorite);

    bool operator==(const LibraryItem &) const = default;
};

} // namespace vantor
