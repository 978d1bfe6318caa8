#include "Vantor/Library/LibraryPlaceStore.h"

#include <QSettings>

namespace vantor::LibraryPlaceStore {

namespace {

const QString sectionKey = QStringLiteral("library/section");
const QString placeKey = QStringLiteral("library/place");

const QHash<LibrarySection, QString> &names() {
    static const QHash<LibrarySection, QString> all{
        {LibrarySection::artists, QStringLiteral("artists")},
        {LibrarySection::albums, QStringLiteral("albums")},
        {LibrarySection::tracks, QStringLiteral("tracks")},
        {LibrarySection::playlists, QStringLiteral("playlists")},
        {LibrarySection::radios, QStringLiteral("radios")},
        {LibrarySection::favorites, QStringLiteral("favorites")},
        {LibrarySection::recommendations, QStringLiteral("recommendations")}};
    return all;
}

// As a list: what it is, its ID and name, and what its page shows besides.
QStringList listOf(const LibraryPlace &place) {
    if (const auto *const album = std::get_if<LibraryAlbum>(&place.what))
        return {QStringLiteral("album"),
                album->id.rawValue,
                album->title,
                album->artistID ? album->artistID->rawValue : QString(),
                album->artistName.value_or(QString()),
                album->artwork ? album->artwork->rawValue : QString(),
                album->year ? QString::number(*album->year) : QString()};
    if (const auto *const playlist = std::get_if<LibraryPlaylist>(&place.what))
        return {QStringLiteral("playlist"), playlist->id.rawValue, playlist->name,
                QString::number(playlist->editing.toInt())};
    if (const auto *const artist = std::get_if<ArtistGroup>(&place.what)) {
        QStringList list{QStringLiteral("artist"), artist->id, artist->name};
        for (const MediaID &member : artist->memberIDs())
            list.append(member.rawValue);
        return list;
    }
    return {};
}

LibraryAlbum albumOf(const QStringList &list) {
    LibraryAlbum album;
    album.id.rawValue = list[1];
    album.title = list[2];
    if (!list.value(3).isEmpty())
        album.artistID = MediaID{MediaKind::artist, list[3]};
    album.artistName = list.value(4);
    if (!list.value(5).isEmpty())
        album.artwork = ArtworkRef{list[5]};
    if (!list.value(6).isEmpty())
        album.year = list[6].toInt();
    return album;
}

LibraryPlaylist playlistOf(const QStringList &list) {
    LibraryPlaylist playlist;
    playlist.id.rawValue = list[1];
    playlist.name = list[2];
    playlist.editing = PlaylistEditing::fromInt(list.value(3).toInt());
    return playlist;
}

ArtistGroup artistOf(const QStringList &list) {
    ArtistGroup group;
    group.id = list[1];
    group.name = list[2];
    for (const QString &member : list.mid(3)) {
        LibraryArtist artist;
        artist.id.rawValue = member;
        artist.name = group.name;
        group.members.append(artist);
    }
    return group;
}

} // namespace

void save(QSettings &settings, const LibraryPlace &place, const QString &sourceID) {
    const QStringList list = listOf(place);
    settings.setValue(sectionKey, names().value(place.section));
    settings.setValue(placeKey, list.isEmpty() ? list : QStringList{sourceID} + list);
}

LibrarySection section(const QSettings &settings) {
    return names().key(settings.value(sectionKey).toString(), LibrarySection::albums);
}

std::optional<LibraryPlace> place(const QSettings &settings, const QString &sourceID) {
    QStringList list = settings.value(placeKey).toStringList();
    if (list.size() < 4 || list.takeFirst() != sourceID)
        return std::nullopt;
    const LibrarySection from = section(settings);
    if (list.first() == QLatin1String("album"))
        return LibraryPlace{from, albumOf(list)};
    if (list.first() == QLatin1String("playlist"))
        return LibraryPlace{from, playlistOf(list)};
    if (list.first() == QLatin1String("artist") && list.size() > 3)
        return LibraryPlace{from, artistOf(list)};
    return std::nullopt;
}

} // namespace vantor::LibraryPlaceStore
