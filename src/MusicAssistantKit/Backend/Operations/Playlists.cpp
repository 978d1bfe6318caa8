#include "MusicAssistantKit/Backend/Items/MAItemURI.h"
#include "MusicAssistantKit/Backend/Operations/Pages_p.h"
#include "MusicAssistantKit/Backend/PlaylistMove.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr MusicBackendCapability playlistEditing = MusicBackendCapability::playlistEditing;
constexpr qint64 invalidData = 3;

bool isServerError(const MusicAssistantError &error, qint64 code) {
    return error.errorCase() == MusicAssistantError::Case::server && error.code() == code;
}

/// A playlist as the server has it now.
struct PresentPlaylist {
    MAJSON json;
    LibraryPlaylist record;
};

QCoro::Task<PresentPlaylist> presentPlaylist(MusicAssistantBackend::Private &d, MediaID id) {
    const auto uri = MAItemURI::parse(id.rawValue);
    if (!uri)
        throw MusicBackendError::notFound(id);
    const QJsonObject args{{u"item_id"_s, uri->itemID}, {u"provider_instance_id_or_domain"_s, uri->provider}};
    constexpr qint64 notFound = 2;
    try {
        const MAJSON answer = co_await d.call(u"music/playlists/get"_s, args, playlistEditing);
        co_return PresentPlaylist{answer, d.decodedOne(answer, &malibrary::readPlaylist)};
    } catch (const MusicAssistantError &error) {
        if (isServerError(error, notFound))
            throw MusicBackendError::notFound(id);
        throw;
    }
}

/// The ID in the library of a playlist whose tracks may be changed.
QCoro::Task<QString> editableID(MusicAssistantBackend::Private &d, MediaID id) {
    const PresentPlaylist playlist = co_await presentPlaylist(d, id);
    if (!playlist.record.isEditable || !playlist.record.libraryID)
        throw MusicAssistantBackendErrors::readOnlyPlaylist(playlist.record.name);
    co_return *playlist.record.libraryID;
}

/// The server takes albums and playlists apart by itself, but not artists.
QCoro::Task<QStringList> urisOf(MusicAssistantBackend::Private &d, QList<MediaID> ids) {
    QStringList uris;
    for (const MediaID &id : ids) {
        const auto uri = MAItemURI::parse(id.rawValue);
        if (!uri)
            throw MusicBackendError::notFound(id);
        if (id.kind != MediaKind::artist) {
            uris.append(id.rawValue);
            continue;
        }
        const QJsonObject args{{u"item_id"_s, uri->itemID},
                               {u"provider_instance_id_or_domain"_s, uri->provider}};
        const MAJSON answer = co_await d.call(u"music/artists/artist_tracks"_s, args, playlistEditing);
        const auto tracks = co_await d.decoded(answer, &malibrary::readTrack);
        for (const LibraryTrack &track : tracks.records)
            uris.append(track.id.rawValue);
    }
    co_return uris;
}

} // namespace

QCoro::Task<LibraryPlaylist> MusicAssistantBackend::createPlaylist(QString name) {
    const auto self = shared_from_this();
    if (name.trimmed().isEmpty())
        throw MusicAssistantBackendErrors::newPlaylistWithoutName();
    const QJsonObject args{{u"name"_s, name.trimmed()}};
    const MAJSON answer = co_await d->call(u"music/playlists/create_playlist"_s, args, playlistEditing);
    const auto created = d->withEditing(d->decodedOne(answer, &malibrary::readPlaylist));
    co_return created;
}

QCoro::Task<> MusicAssistantBackend::renamePlaylist(MediaID id, QString name) {
    const auto self = shared_from_this();
    if (name.trimmed().isEmpty())
        throw MusicAssistantBackendErrors::playlistWithoutName();
    const PresentPlaylist playlist = co_await presentPlaylist(*d, id);
    if (playlist.record.source.kind == PlaylistSource::Kind::builtIn)
        throw MusicAssistantBackendErrors::builtInRename();
    if (!playlist.record.libraryID)
        throw MusicAssistantBackendErrors::readOnlyPlaylist(playlist.record.name);
    // Only the whole item with its new name replaces the old name.
    QJsonObject update = playlist.json.value().toObject();
    update.insert("name"_L1, name.trimmed());
    const QJsonObject args{
        {u"item_id"_s, *playlist.record.libraryID}, {u"update"_s, update}, {u"overwrite"_s, true}};
    co_await d->call(u"music/playlists/update"_s, args, playlistEditing);
}

QCoro::Task<> MusicAssistantBackend::deletePlaylist(MediaID id) {
    const auto self = shared_from_this();
    const PresentPlaylist playlist = co_await presentPlaylist(*d, id);
    if (playlist.record.source.kind == PlaylistSource::Kind::builtIn)
        throw MusicAssistantBackendErrors::builtInDelete();
    if (!playlist.record.libraryID)
        throw MusicAssistantBackendErrors::readOnlyPlaylist(playlist.record.name);
    const QJsonObject args{{u"media_type"_s, rawValue(MediaKind::playlist)},
                           {u"library_item_id"_s, *playlist.record.libraryID}};
    co_await d->call(u"music/library/remove_item"_s, args, playlistEditing);
}

QCoro::Task<> MusicAssistantBackend::add(QList<MediaID> ids, MediaID playlist) {
    const auto self = shared_from_this();
    const QString library = co_await editableID(*d, playlist);
    const QStringList uris = co_await urisOf(*d, ids);
    const QList<QStringList> messages = Private::inMessages(uris);
    for (const QStringList &part : messages) {
        const QJsonObject args{{u"db_playlist_id"_s, library}, {u"uris"_s, QJsonArray::fromStringList(part)}};
        co_await d->callTask(u"music/playlists/add_playlist_tracks"_s, args, playlistEditing);
    }
}

QCoro::Task<> MusicAssistantBackend::remove(QList<int> positions, MediaID playlist) {
    const auto self = shared_from_this();
    const QString library = co_await editableID(*d, playlist);
    if (positions.isEmpty())
        co_return;
    QJsonArray wanted;
    for (const int position : positions)
        wanted.append(position);
    const QJsonObject args{{u"db_playlist_id"_s, library}, {u"positions_to_remove"_s, wanted}};
    co_await d->callTask(u"music/playlists/remove_playlist_tracks"_s, args, playlistEditing);
}

QCoro::Task<> MusicAssistantBackend::movePlaylistTrack(MediaID playlist, int from, int to) {
    const auto self = shared_from_this();
    co_await d->probed();
    if (!d->canMovePlaylistTracks())
        throw MusicAssistantBackendErrors::reorderingUnsupported();
    const QString library = co_await editableID(*d, playlist);
    if (from == to)
        co_return;
    // Of the server as it is now: it may be another version since the connection was lost.
    const auto args = playlistMoveArguments(d->commands.parameters(playlistMoveCommand()), library, from, to);
    if (!args)
        throw MusicAssistantBackendErrors::reorderingUnsupported();
    try {
        co_await d->callTask(playlistMoveCommand(), *args, playlistEditing);
    } catch (const MusicBackendError &error) {
        if (error.errorCase() == MusicBackendError::Case::unsupported)
            throw MusicAssistantBackendErrors::reorderingUnsupported();
        throw;
    }
}

QCoro::Task<LibraryPlaylist> MusicAssistantBackend::importPlaylist(QString m3u) {
    const auto self = shared_from_this();
    if (m3u.trimmed().isEmpty())
        throw MusicAssistantBackendErrors::emptyPlaylistFile();
    MAJSON answer;
    try {
        answer =
            co_await d->call(u"music/playlists/import_playlist"_s, {{u"m3u_data"_s, m3u}}, playlistEditing);
    } catch (const MusicAssistantError &error) {
        if (isServerError(error, invalidData))
            throw MusicAssistantBackendErrors::emptyPlaylistFile();
        throw;
    }
    const auto imported = d->withEditing(d->decodedOne(answer, &malibrary::readPlaylist));
    co_return imported;
}

QCoro::Task<QString> MusicAssistantBackend::exportPlaylist(MediaID id) {
    const auto self = shared_from_this();
    const PresentPlaylist playlist = co_await presentPlaylist(*d, id);
    if (!playlist.record.libraryID)
        throw MusicBackendError::notFound(id);
    const QJsonObject args{{u"db_playlist_id"_s, *playlist.record.libraryID}};
    const MAJSON answer =
        co_await d->call(u"music/playlists/export_playlist"_s, args, MusicBackendCapability::playlists);
    const auto text = answer.string();
    if (!text)
        throw MusicAssistantBackendErrors::unreadableAnswer();
    co_return *text;
}

QCoro::Task<LibraryRadio> MusicAssistantBackend::addRadio(QString url, QString name) {
    const auto self = shared_from_this();
    const QJsonObject args{{u"url"_s, url}, {u"name"_s, name}};
    const MAJSON answer = co_await d->call(u"builtin/add_radio"_s, args, MusicBackendCapability::radio);
    const LibraryRadio added = d->decodedOne(answer, &malibrary::readRadio);
    co_return added;
}

bool MusicAssistantBackend::Private::canMovePlaylistTracks() const {
    return commands.mayHave(playlistMoveCommand()) &&
           playlistMoveArguments(commands.parameters(playlistMoveCommand()), u"1"_s, 1, 2);
}

LibraryPlaylist MusicAssistantBackend::Private::withEditing(LibraryPlaylist playlist) const {
    const bool isEditable = playlist.editing.testFlag(PlaylistEditingOption::addRemove);
    playlist.editing.setFlag(PlaylistEditingOption::reorder, isEditable && canMovePlaylistTracks());
    return playlist;
}

Page<LibraryPlaylist> MusicAssistantBackend::Private::withEditing(Page<LibraryPlaylist> page) const {
    for (LibraryPlaylist &playlist : page.items)
        playlist = withEditing(playlist);
    return page;
}

} // namespace vantor
