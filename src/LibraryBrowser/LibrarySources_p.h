#pragma once

#include "LibraryBrowser/LibraryItem.h"
#include "MusicBackendKit/MusicBackend.h"

#include <functional>

/// What lists ask a music source for. Main thread. A source without a backend has nothing.
namespace vantor::LibrarySources {

using Backend = std::shared_ptr<MusicBackend>;
using Items = std::function<QCoro::Task<Page<LibraryItem>>(PageRequest)>;
using Tracks = std::function<QCoro::Task<Page<LibraryTrack>>(PageRequest)>;

[[nodiscard]] Items albums(const Backend &backend);
[[nodiscard]] Items albums(const Backend &backend, const ArtistGroup &artist);
[[nodiscard]] Items playlists(const Backend &backend);
[[nodiscard]] Items radios(const Backend &backend);
[[nodiscard]] Items favorites(const Backend &backend, MediaKind kind);

/// Of an album or a playlist.
[[nodiscard]] Tracks tracks(const Backend &backend, const MediaID &of);
[[nodiscard]] Tracks favoriteTracks(const Backend &backend);

} // namespace vantor::LibrarySources
