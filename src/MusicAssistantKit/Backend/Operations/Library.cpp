#include "MusicAssistantKit/Backend/Items/MAItemURI.h"
#include "MusicAssistantKit/Backend/Operations/Pages_p.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

QString pluralOf(MediaKind kind) {
    return rawValue(kind) + u's';
}

/// What asks for one item. Fails for what is no item of the server's.
QJsonObject itemArgs(const MediaID &id) {
    const auto uri = MAItemURI::parse(id.rawValue);
    if (!uri)
        throw MusicBackendError::notFound(id);
    return {{u"item_id"_s, uri->itemID}, {u"provider_instance_id_or_domain"_s, uri->provider}};
}

/// A list that comes whole.
template <typename Record>
QCoro::Task<QList<Record>> wholeList(MusicAssistantBackend::Private &d, MediaID of, QString command,
                                     QJsonObject args, Record (*read)(const MAReader &)) {
    constexpr qint64 notFound = 2;
    try {
        const MAJSON answer = co_await d.call(command, args, {});
        const auto decoded = co_await d.decoded(answer, read);
        co_return decoded.records;
    } catch (const MusicAssistantError &error) {
        if (error.errorCase() == MusicAssistantError::Case::server && error.code() == notFound)
            throw MusicBackendError::notFound(of);
        throw;
    }
}

template <typename Record>
QList<Record> atMost(QList<Record> records, int limit) {
    if (records.size() > limit)
        records.resize(limit);
    return records;
}

} // namespace

MALibraryList MALibraryList::of(MediaKind kind, bool favoritesOnly) {
    MALibraryList list;
    const QString folder = u"music/%1/"_s.arg(pluralOf(kind));
    list.items = folder + u"library_items"_s;
    list.count = folder + u"count"_s;
    list.itemsArgs.insert("order_by"_L1, u"sort_name"_s);
    if (kind == MediaKind::track || kind == MediaKind::playlist) // summaries lack the format and the source
        list.itemsArgs.insert("summary"_L1, false);
    if (favoritesOnly) {
        list.itemsArgs.insert("favorite"_L1, true);
        list.countArgs = {{u"favorite"_s, true}, {u"favorite_only"_s, true}};
        list.needed = MusicBackendCapability::favorites;
    } else if (kind == MediaKind::artist) {
        list.itemsArgs.insert("album_artists_only"_L1, true);
        list.countArgs = {{u"album_artists_only"_s, true}};
    }
    if (kind == MediaKind::radio)
        list.needed |= MusicBackendCapability::radio;
    return list;
}

QCoro::Task<std::optional<int>> countOf(MusicAssistantBackend::Private &d, MALibraryList list) {
    const auto self = d.q.shared_from_this();
    std::optional<qint64> count;
    try {
        const MAJSON answer = co_await d.call(list.count, list.countArgs, list.needed);
        count = answer.integer();
    } catch (const std::exception &) {
        // A list does without.
    }
    constexpr qint64 most = std::numeric_limits<int>::max();
    if (!count || *count < 0 || *count > most)
        co_return std::nullopt;
    co_return static_cast<int>(*count);
}

QCoro::Task<Page<LibraryArtist>> MusicAssistantBackend::artists(PageRequest page) {
    return pageOf(*d, MALibraryList::of(MediaKind::artist, false), page, &malibrary::readArtist);
}

QCoro::Task<Page<LibraryAlbum>> MusicAssistantBackend::albums(std::optional<MediaID> artist,
                                                              PageRequest page) {
    const auto self = shared_from_this();
    if (!artist) {
        const auto all = MALibraryList::of(MediaKind::album, false);
        const auto found = co_await pageOf(*d, all, page, &malibrary::readAlbum);
        co_return found;
    }
    QJsonObject args = itemArgs(*artist);
    args.insert("album_artists_only"_L1, true);
    const QString command = u"music/artists/artist_albums"_s;
    const auto found = co_await wholeList(*d, *artist, command, args, &malibrary::readAlbum);
    co_return Page<LibraryAlbum>::last(found);
}

QCoro::Task<QList<LibraryTrack>> MusicAssistantBackend::tracks(MediaID album) {
    const auto self = shared_from_this();
    const QJsonObject args = itemArgs(album);
    const QString command = u"music/albums/album_tracks"_s;
    const auto found = co_await wholeList(*d, album, command, args, &malibrary::readTrack);
    co_return found;
}

QCoro::Task<Page<LibraryPlaylist>> MusicAssistantBackend::playlists(PageRequest page) {
    const auto self = shared_from_this();
    const auto found =
        co_await pageOf(*d, MALibraryList::of(MediaKind::playlist, false), page, &malibrary::readPlaylist);
    const auto shown = d->withEditing(found);
    co_return shown;
}

QCoro::Task<QList<LibraryTrack>> MusicAssistantBackend::tracksOfPlaylist(MediaID playlist) {
    const auto self = shared_from_this();
    const QJsonObject args = itemArgs(playlist);
    const QString command = u"music/playlists/playlist_tracks"_s;
    const auto found = co_await wholeList(*d, playlist, command, args, &malibrary::readTrack);
    co_return found;
}

QCoro::Task<Page<LibraryRadio>> MusicAssistantBackend::radios(PageRequest page) {
    return pageOf(*d, MALibraryList::of(MediaKind::radio, false), page, &malibrary::readRadio);
}

QCoro::Task<SearchResults> MusicAssistantBackend::search(QString text, int limit) {
    const auto self = shared_from_this();
    if (text.trimmed().isEmpty() || limit <= 0)
        co_return SearchResults();
    const QJsonObject args{{u"search_query"_s, text.trimmed()},
                           {u"media_types"_s, QJsonArray{u"artist"_s, u"album"_s, u"track"_s}},
                           {u"limit"_s, limit}};
    const MAJSON answer = co_await d->call(u"music/search"_s, args, MusicBackendCapability::search);
    if (answer.kind() != MAJSON::Kind::object)
        throw MusicAssistantBackendErrors::unreadableAnswer();
    const auto artists = co_await decodedAside(answer.member("artists"_L1), &malibrary::readArtist);
    const auto albums = co_await decodedAside(answer.member("albums"_L1), &malibrary::readAlbum);
    const auto tracks = co_await decodedAside(answer.member("tracks"_L1), &malibrary::readTrack);
    co_return SearchResults{
        .artists = atMost(artists, limit), .albums = atMost(albums, limit), .tracks = atMost(tracks, limit)};
}

QCoro::Task<> MusicAssistantBackend::removeFromLibrary(MediaID id) {
    const auto self = shared_from_this();
    const auto uri = MAItemURI::parse(id.rawValue);
    if (!uri || !uri->isOfLibrary())
        throw MusicBackendError::notFound(id);
    const QJsonObject args{{u"media_type"_s, rawValue(id.kind)}, {u"library_item_id"_s, uri->itemID}};
    co_await d->call(u"music/library/remove_item"_s, args, {});
}

} // namespace vantor
