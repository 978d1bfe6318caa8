#include "MusicAssistantKit/Backend/Items/MAItemURI.h"
#include "MusicAssistantKit/Backend/Operations/Pages_p.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

QCoro::Task<> MusicAssistantBackend::setFavorite(MediaID id, bool on) {
    const auto self = shared_from_this();
    const MusicBackendCapabilities needed = MusicBackendCapability::favorites;
    const auto uri = MAItemURI::parse(id.rawValue);
    if (!uri)
        throw MusicBackendError::notFound(id);
    if (on) {
        co_await d->call(u"music/favorites/add_item"_s, {{u"item"_s, id.rawValue}}, needed);
        co_return;
    }
    if (!uri->isOfLibrary())
        throw MusicAssistantBackendErrors::notInLibrary();
    const QJsonObject args{{u"media_type"_s, rawValue(id.kind)}, {u"library_item_id"_s, uri->itemID}};
    co_await d->call(u"music/favorites/remove_item"_s, args, needed);
}

QCoro::Task<std::optional<int>> MusicAssistantBackend::favoriteCount(MediaKind kind) {
    const auto self = shared_from_this();
    const auto list = MALibraryList::of(kind, true);
    const MAJSON answer = co_await d->call(list.count, list.countArgs, list.needed);
    const auto count = answer.integer();
    if (!count || *count < 0 || *count > std::numeric_limits<int>::max())
        co_return std::nullopt;
    co_return static_cast<int>(*count);
}

QCoro::Task<Page<LibraryArtist>> MusicAssistantBackend::favoriteArtists(PageRequest page) {
    return pageOf(*d, MALibraryList::of(MediaKind::artist, true), page, &malibrary::readArtist);
}

QCoro::Task<Page<LibraryAlbum>> MusicAssistantBackend::favoriteAlbums(PageRequest page) {
    return pageOf(*d, MALibraryList::of(MediaKind::album, true), page, &malibrary::readAlbum);
}

QCoro::Task<Page<LibraryTrack>> MusicAssistantBackend::favoriteTracks(PageRequest page) {
    return pageOf(*d, MALibraryList::of(MediaKind::track, true), page, &malibrary::readTrack);
}

QCoro::Task<Page<LibraryPlaylist>> MusicAssistantBackend::favoritePlaylists(PageRequest page) {
    const auto self = shared_from_this();
    const auto found =
        co_await pageOf(*d, MALibraryList::of(MediaKind::playlist, true), page, &malibrary::readPlaylist);
    const auto shown = d->withEditing(found);
    co_return shown;
}

QCoro::Task<Page<LibraryRadio>> MusicAssistantBackend::favoriteRadios(PageRequest page) {
    return pageOf(*d, MALibraryList::of(MediaKind::radio, true), page, &malibrary::readRadio);
}

QCoro::Task<> MusicAssistantBackend::favoriteCurrentTrack(OutputDevice::ID on) {
    const auto self = shared_from_this();
    const MAPlayer player = co_await d->player(on);
    constexpr qint64 playerCommandFailed = 11; // nothing plays there
    try {
        co_await d->callOutput(on, u"players/add_currently_playing_to_favorites"_s,
                               {{u"player_id"_s, player.playerID}}, MusicBackendCapability::favorites);
    } catch (const MusicAssistantError &error) {
        if (error.errorCase() == MusicAssistantError::Case::server && error.code() == playerCommandFailed)
            throw MusicAssistantBackendErrors::requestFailed();
        throw;
    }
}

} // namespace vantor
