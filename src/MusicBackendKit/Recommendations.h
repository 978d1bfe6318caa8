#pragma once

#include "MusicBackendKit/LibraryItems.h"

#include <variant>

namespace vantor {

/// One row of recommendations; its items are asked for separately. A value; any thread.
struct RecommendationRow {
    enum class Kind { shelf, timeline };

    QString provider;
    QString itemID;
    QString name;
    std::optional<QString> subtitle;
    std::optional<QString> icon;
    bool isEnabledByDefault = true;
    Kind kind = Kind::shelf;
    std::optional<QString> providerName;

    /// Provider and item ID, joined by a separator that identifiers do not hold.
    [[nodiscard]] QString id() const;

    bool operator==(const RecommendationRow &) const = default;
};

/// One item of a row: a library record, or something that the library has no record for. A value; any thread.
struct RecommendationItem {
    struct Other {
        QString name;
        QString uri; ///< the source's own
        std::optional<QString> subtitle;
        std::optional<MediaKind> kind; ///< what the URI names, when the source tells
        std::optional<ArtworkRef> artwork;

        bool operator==(const Other &) const = default;
    };
    std::variant<LibraryArtist, LibraryAlbum, LibraryTrack, LibraryPlaylist, Other> value;

    [[nodiscard]] static RecommendationItem artist(const LibraryArtist &artist) { return {artist}; }
    [[nodiscard]] static RecommendationItem album(const LibraryAlbum &album) { return {album}; }
    [[nodiscard]] static RecommendationItem track(const LibraryTrack &track) { return {track}; }
    [[nodiscard]] static RecommendationItem playlist(const LibraryPlaylist &playlist) { return {playlist}; }
    [[nodiscard]] static RecommendationItem other(const Other &other) { return {other}; }

    [[nodiscard]] QString id() const;
    /// None for `other`.
    [[nodiscard]] std::optional<MediaID> mediaID() const;
    [[nodiscard]] QString name() const;
    [[nodiscard]] std::optional<QString> subtitle() const;
    [[nodiscard]] std::optional<MediaKind> kind() const;
    [[nodiscard]] std::optional<ArtworkRef> artwork() const;
    /// Only a reference: MusicBackend::resolve() makes a record of it, before which it can be neither opened
    /// nor played.
    [[nodiscard]] bool isMapping() const;

    bool operator==(const RecommendationItem &) const = default;
};

[[nodiscard]] size_t qHash(const RecommendationRow &row, size_t seed = 0) noexcept;
[[nodiscard]] size_t qHash(const RecommendationItem::Other &other, size_t seed = 0) noexcept;
[[nodiscard]] size_t qHash(const RecommendationItem &item, size_t seed = 0) noexcept;

} // namespace vantor
