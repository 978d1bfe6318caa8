#include "MusicBackendKit/LibraryChange.h"

namespace vantor {

LibraryChange LibraryChange::playlistAdded(const MediaID &id) {
    return {Kind::playlistAdded, id, std::nullopt};
}

LibraryChange LibraryChange::playlistUpdated(const MediaID &id) {
    return {Kind::playlistUpdated, id, std::nullopt};
}

LibraryChange LibraryChange::playlistDeleted(const MediaID &id) {
    return {Kind::playlistDeleted, id, std::nullopt};
}

LibraryChange LibraryChange::favoriteChanged(const MediaID &id, std::optional<bool> isFavorite) {
    return {Kind::favoriteChanged, id, isFavorite};
}

LibraryChange LibraryChange::played() {
    return {Kind::played, {}, std::nullopt};
}

} // namespace vantor
