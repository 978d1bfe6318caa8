#pragma once

#include "MusicBackendKit/LibraryItems.h"

#include <QList>

namespace vantor {

/// What a search found. A value; any thread.
struct SearchResults {
    QList<LibraryArtist> artists;
    QList<LibraryAlbum> albums;
    QList<LibraryTrack> tracks;

    [[nodiscard]] bool isEmpty() const { return artists.isEmpty() && albums.isEmpty() && tracks.isEmpty(); }

    bool operator==(const SearchResults &) const = default;
};

[[nodiscard]] size_t qHash(const SearchResults &results, size_t seed = 0) noexcept;

} // namespace vantor
