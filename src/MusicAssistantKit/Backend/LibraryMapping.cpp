#include "MusicAssistantKit/Backend/LibraryMapping.h"

#include "MusicAssistantKit/Backend/Items/MAItemURI.h"

#include <QSet>

#include <limits>

namespace vantor::malibrary {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto builtInProvider = "builtin"_L1;

/// What makes sense as a number of the library's.
std::optional<int> count(const std::optional<qint64> &number, qint64 least) {
    if (!number || *number < least || *number > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(*number);
}

/// Only a full item tells; there, what is not marked is none.
std::optional<bool> favorite(const MAMediaItem &item) {
    return item.isMapping ? std::nullopt : std::optional(item.favorite.value_or(false));
}

std::optional<MediaID> mediaID(const MAItemMapping &mapping, MediaKind kind) {
    if (mapping.uri && MAItemURI::parse(*mapping.uri))
        return MediaID{kind, *mapping.uri};
    const MAItemURI made{.provider = mapping.provider, .mediaType = rawValue(kind), .itemID = mapping.itemID};
    return MediaID{kind, made.text()};
}

/// "filesystem_local" reads "Filesystem Local".
QString providerName(const QString &domain) {
    QStringList words = domain.split(u'_', Qt::SkipEmptyParts);
    for (QString &word : words)
        word[0] = word[0].toUpper();
    return words.join(u' ');
}

PlaylistSource sourceOf(const MAPlaylist &playlist) {
    const auto &mappings = playlist.providerMappings;
    const QString domain = mappings.isEmpty() ? playlist.provider : mappings.first().providerDomain;
    if (domain == builtInProvider) // where the users' own playlists live too
        return playlist.isEditable.value_or(false) ? PlaylistSource::user() : PlaylistSource::builtIn();
    if (domain == "library"_L1)
        return PlaylistSource::user();
    return PlaylistSource::provider(providerName(domain));
}

PlaylistEditing editingOf(const LibraryPlaylist &playlist) {
    PlaylistEditing editing;
    if (!playlist.libraryID || playlist.source.kind == PlaylistSource::Kind::builtIn)
        return editing;
    if (playlist.isEditable && !playlist.isDynamic)
        editing |= PlaylistEditingOption::addRemove;
    // A provider would bring its playlist back under its own name.
    if (playlist.source.kind == PlaylistSource::Kind::user)
        editing |= PlaylistEditing(PlaylistEditingOption::rename) | PlaylistEditingOption::delete_;
    return editing;
}

} // namespace

MediaID mediaID(const MAMediaItem &item, MediaKind kind) {
    if (item.uri && MAItemURI::parse(*item.uri))
        return {kind, *item.uri};
    return {kind, MAItemURI{item.provider, rawValue(kind), item.itemID}.text()};
}

std::optional<MediaID> mediaID(const QString &uri) {
    const auto parts = MAItemURI::parse(uri);
    const auto kind = parts ? mediaKindFromRawValue(parts->mediaType) : std::nullopt;
    return kind ? std::optional(MediaID{*kind, uri}) : std::nullopt;
}

QString names(const QList<MAItemMapping> &artists) {
    QStringList all;
    for (const MAItemMapping &artist : artists)
        all.append(artist.name);
    return all.join(", "_L1);
}

LibraryArtist artist(const MAArtist &artist) {
    return {.id = mediaID(artist, MediaKind::artist),
            .name = artist.name,
            .sortName = artist.sortName,
            .artwork = artwork(artist.metadata),
            .isFavorite = favorite(artist)};
}

LibraryAlbum album(const MAAlbum &album) {
    LibraryAlbum made{.id = mediaID(album, MediaKind::album),
                      .title = album.name,
                      .artistID = {},
                      .artistName = {},
                      .year = count(album.year, 1),
                      .trackCount = {},
                      .artwork = artwork(album.metadata),
                      .isFavorite = favorite(album)};
    if (!album.artists.isEmpty()) {
        made.artistID = mediaID(album.artists.first(), MediaKind::artist);
        made.artistName = album.artists.first().name;
    }
    return made;
}

LibraryTrack track(const MATrack &track) {
    LibraryTrack made;
    made.id = mediaID(track, MediaKind::track);
    made.title = track.name;
    if (!track.artists.isEmpty())
        made.artistID = mediaID(track.artists.first(), MediaKind::artist);
    made.artistName = names(track.artists);
    if (track.album) {
        made.albumID = mediaID(*track.album, MediaKind::album);
        made.albumName = track.album->name;
    }
    made.trackNumber = count(track.trackNumber, 1);
    made.discNumber = count(track.discNumber, 1);
    if (track.duration && *track.duration > 0)
        made.duration = track.duration;
    if (!track.providerMappings.isEmpty()) {
        const MAAudioFormat &format = track.providerMappings.first().audioFormat;
        made.bitrate = count(format.bitRate, 1);
        if (const auto rate = count(format.sampleRate, 1))
            made.sampleRate = *rate;
        made.channels = count(format.channels, 1);
    }
    made.artwork = artwork(track);
    made.isFavorite = favorite(track);
    made.playlistPosition = count(track.position, 0);
    return made;
}

LibraryPlaylist playlist(const MAPlaylist &playlist) {
    LibraryPlaylist made;
    made.id = mediaID(playlist, MediaKind::playlist);
    made.name = playlist.name;
    made.artwork = artwork(playlist.metadata);
    made.isEditable = playlist.isEditable.value_or(false);
    made.isDynamic = playlist.isDynamic.value_or(false);
    made.owner = playlist.owner;
    made.source = sourceOf(playlist);
    if (playlist.provider == "library"_L1)
        made.libraryID = playlist.itemID;
    made.editing = editingOf(made);
    made.isFavorite = favorite(playlist);
    return made;
}

LibraryRadio radio(const MARadio &radio) {
    return {.id = mediaID(radio, MediaKind::radio),
            .name = radio.name,
            .artwork = artwork(radio.metadata),
            .isFavorite = favorite(radio)};
}

RecommendationRow row(const MARecommendationFolder &folder) {
    RecommendationRow made;
    made.provider = folder.provider;
    made.itemID = folder.itemID;
    made.name = folder.name;
    made.subtitle = folder.subtitle;
    made.icon = folder.icon;
    made.isEnabledByDefault = folder.enabledByDefault.value_or(true);
    made.kind =
        folder.type == "timeline"_L1 ? RecommendationRow::Kind::timeline : RecommendationRow::Kind::shelf;
    if (folder.provider != "library"_L1) // "spotify--x7Kd" is one of several accounts
        made.providerName = providerName(folder.provider.section("--"_L1, 0, 0));
    return made;
}

RecommendationItem recommendation(const MAReader &reader) {
    const auto item = MAMediaItem::decode(reader);
    const auto kind = mediaKindFromRawValue(item.mediaType.value_or(QString()));
    if (!item.isMapping && kind == MediaKind::artist)
        return RecommendationItem::artist(readArtist(reader));
    if (!item.isMapping && kind == MediaKind::album)
        return RecommendationItem::album(readAlbum(reader));
    if (!item.isMapping && kind == MediaKind::track)
        return RecommendationItem::track(readTrack(reader));
    if (!item.isMapping && kind == MediaKind::playlist)
        return RecommendationItem::playlist(readPlaylist(reader));
    return RecommendationItem::other(
        {.name = item.name,
         .uri = item.uri.value_or(
             MAItemURI{item.provider, item.mediaType.value_or(u"unknown"_s), item.itemID}.text()),
         .subtitle = reader.optionalString("subtitle"),
         .kind = kind,
         .artwork = artwork(item.metadata)});
}

LibraryArtist readArtist(const MAReader &reader) {
    return artist(MAArtist::decode(reader));
}

LibraryAlbum readAlbum(const MAReader &reader) {
    return album(MAAlbum::decode(reader));
}

LibraryTrack readTrack(const MAReader &reader) {
    return track(MATrack::decode(reader));
}

LibraryRadio readRadio(const MAReader &reader) {
    return radio(MARadio::decode(reader));
}

LibraryPlaylist readPlaylist(const MAReader &reader) {
    return playlist(MAPlaylist::decode(reader));
}

void shareTexts(QList<LibraryTrack> &tracks) {
    QSet<QString> known;
    const auto share = [&known](QString &text) { text = *known.insert(text); };
    for (LibraryTrack &track : tracks) {
        share(track.artistName);
        if (track.artistID)
            share(track.artistID->rawValue);
        if (track.albumID)
            share(track.albumID->rawValue);
        if (track.albumName)
            share(*track.albumName);
        if (track.artwork)
            share(track.artwork->rawValue);
    }
}

} // namespace vantor::malibrary
