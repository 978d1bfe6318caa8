#pragma once

#include "MusicBackendKit/MediaID.h"

namespace vantor {

/// What a source announces so that open lists can refresh. A value; any thread.
struct LibraryChange {
    enum class Kind { playlistAdded, playlistUpdated, playlistDeleted, favoriteChanged, played };
    Kind kind = Kind::played;
    MediaID id;                     ///< of all but `played`
    std::optional<bool> isFavorite; ///< of `favoriteChanged`, when the source tells

    [[nodiscard]] static LibraryChange playlistAdded(const MediaID &id);
    [[nodiscard]] static LibraryChange playlistUpdated(const MediaID &id);
    [[nodiscard]] static LibraryChange playlistDeleted(const MediaID &id);
    [[nodiscard]] static LibraryChange favoriteChanged(const MediaID &id, std::optional<bool> isFavorite);
    [[nodiscard]] static LibraryChange played();

    bool operator==(const LibraryChange &) const = default;
};

[[nodiscard]] size_t qHash(const LibraryChange &change, size_t seed = 0) noexcept;

} // namespace vantor
