#pragma once

#include "MusicAssistantKit/Backend/Items/MAMediaItems.h"
#include "MusicBackendKit/LibraryItems.h"
#include "MusicBackendKit/Recommendations.h"

/// What the server's items are in the words of the library. Pure functions; any thread.
namespace vantor::malibrary {

/// The URI; when the server sent none, or one that says nothing, it is made of the item's identity.
[[nodiscard]] MediaID mediaID(const MAMediaItem &item, MediaKind kind);
/// What a URI names; none for what is no item of the library's kinds.
[[nodiscard]] std::optional<MediaID> mediaID(const QString &uri);

/// The picture's path and query on the server, without a size.
[[nodiscard]] std::optional<ArtworkRef> artwork(const MAMediaItemImage &image);
[[nodiscard]] std::optional<ArtworkRef> artwork(const MAMetadata &metadata);
/// Of a track: its own picture or its album's.
[[nodiscard]] std::optional<ArtworkRef> artwork(const MATrack &track);
/// Of a URL that the server sent: only its own pictures count.
[[nodiscard]] std::optional<ArtworkRef> artwork(const QString &imageURL);

[[nodiscard]] QString names(const QList<MAItemMapping> &artists);

[[nodiscard]] LibraryArtist artist(const MAArtist &artist);
[[nodiscard]] LibraryAlbum album(const MAAlbum &album);
[[nodiscard]] LibraryTrack track(const MATrack &track);
/// Whether its tracks can be moved depends on the server, too: this says no.
[[nodiscard]] LibraryPlaylist playlist(const MAPlaylist &playlist);
[[nodiscard]] LibraryRadio radio(const MARadio &radio);

[[nodiscard]] RecommendationRow row(const MARecommendationFolder &folder);
/// Throws MADecodingError.
[[nodiscard]] RecommendationItem recommendation(const MAReader &reader);

// From the server's JSON in one step. Throw MADecodingError.
[[nodiscard]] LibraryArtist readArtist(const MAReader &reader);
[[nodiscard]] LibraryAlbum readAlbum(const MAReader &reader);
[[nodiscard]] LibraryTrack readTrack(const MAReader &reader);
[[nodiscard]] LibraryRadio readRadio(const MAReader &reader);
[[nodiscard]] LibraryPlaylist readPlaylist(const MAReader &reader);

/// Lets tracks have what they have in common, such as the name of their album, in memory once.
void shareTexts(QList<LibraryTrack> &tracks);

} // namespace vantor::malibrary
